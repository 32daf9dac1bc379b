// Framework arrays to std::vector and back: expected contents written as a braced
// list, and failures that Google Test prints element by element. Templates over any
// array with begin()/end() (and Add() for the way back), so no layer is named here.
#pragma once

#include <initializer_list>
#include <iterator>
#include <string>
#include <type_traits>
#include <vector>

namespace corlith::test {

/// The elements of array, in order.
template <typename Array>
auto ToVector(const Array& array) {
  using Element = std::remove_cvref_t<decltype(*std::begin(array))>;
  return std::vector<Element>(std::begin(array), std::end(array));
}

/// project(element) for each element of array, in order (e.g. a field of pointer elements).
template <typename Array, typename Project>
auto ToVector(const Array& array, Project project) {
  using Result = std::remove_cvref_t<decltype(project(*std::begin(array)))>;
  std::vector<Result> out;
  for (const auto& element : array) out.push_back(project(element));
  return out;
}

/// The text of each CString element, which prints more readably than the CStrings.
template <typename Array>
std::vector<std::string> ToStrings(const Array& array) {
  return ToVector(array, [](const auto& text) { return std::string(text.view()); });
}

/// An array of the given Array type holding values, added in order.
template <typename Array, typename T>
Array ArrayOf(std::initializer_list<T> values) {
  Array array;
  for (const T& value : values) array.Add(value);
  return array;
}

}  // namespace corlith::test
