// The three-way comparisons the numeric and pair arrays sort with, and the sort that
// runs them. The original sorted with the C library's qsort and comparators that take a
// 32-bit difference, which is not a consistent order when the difference overflows;
// std::sort and qsort may then read outside the array, so we sort with a merge sort
// that stays inside its buffers whatever the comparator answers.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace corlith {

/// The sign (-1, 0, 1) of the 32-bit difference a - b as the original computed it:
/// wrapped, so that for operands far apart the sign is deliberately the wrong one.
constexpr int WrappedDifferenceSign(int a, int b) {
  const auto diff = static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
  return (diff > 0) - (diff < 0);
}

/// Stable merge sort of n elements by a three-way comparator cmp(const T&, const T&).
/// Any answer of cmp, even an inconsistent one, leaves a permutation of the input.
template <class T, class Compare>
void MergeSort(T* data, std::size_t n, Compare cmp) {
  if (n < 2) return;
  // Short runs first by insertion (each step bounded by the run's start, so any answer
  // of cmp stays in bounds), then bottom-up merges of runs of width 16, 32 ...
  constexpr std::size_t kRun = 16;
  for (std::size_t lo = 0; lo < n; lo += kRun) {
    const std::size_t hi = std::min(lo + kRun, n);
    for (std::size_t i = lo + 1; i < hi; ++i) {
      T item = std::move(data[i]);
      std::size_t j = i;
      for (; j > lo && cmp(item, data[j - 1]) < 0; --j) data[j] = std::move(data[j - 1]);
      data[j] = std::move(item);
    }
  }
  if (n <= kRun) return;
  std::vector<T> buffer(data, data + n);
  T* from = buffer.data();
  T* to = data;
  // Each pass merges from `from` into `to`; the two swap roles before every pass.
  for (std::size_t width = kRun; width < n; width *= 2) {
    std::swap(from, to);
    for (std::size_t lo = 0; lo < n; lo += 2 * width) {
      const std::size_t mid = std::min(lo + width, n);
      const std::size_t hi = std::min(lo + 2 * width, n);
      std::size_t i = lo, j = mid, k = lo;
      while (i < mid && j < hi) to[k++] = cmp(from[j], from[i]) < 0 ? from[j++] : from[i++];
      while (i < mid) to[k++] = from[i++];
      while (j < hi) to[k++] = from[j++];
    }
  }
  if (to != data) std::copy(to, to + n, data);
}

}  // namespace corlith
