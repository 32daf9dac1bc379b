// Formats arbitrary bytes over a few arguments of every kind. Formats come from users
// and files, so no format and argument mix may crash, read outside its inputs or hit
// undefined behaviour.
#include <corlith/framework/Format.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

// Takes values from the front of the input. A plain reader of our own rather than
// clang's FuzzedDataProvider, so the replay build compiles with GCC as well. Running
// out of bytes gives zeros.
class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}

  template <typename T>
  T Take() {
    unsigned char raw[sizeof(T)] = {};
    const std::size_t n = std::min(sizeof(T), m_size);
    if (n != 0) std::memcpy(raw, m_data, n);
    m_data += n;
    m_size -= n;
    return std::bit_cast<T>(raw);
  }

  std::string TakeText(std::size_t maxLength) {
    const std::size_t n = std::min<std::size_t>(Take<std::uint8_t>() % (maxLength + 1), m_size);
    std::string text(reinterpret_cast<const char*>(m_data), n);
    m_data += n;
    m_size -= n;
    return text;
  }

  std::string TakeRest() {
    std::string text(reinterpret_cast<const char*>(m_data), m_size);
    m_data += m_size;
    m_size = 0;
    return text;
  }

 private:
  const std::uint8_t* m_data;
  std::size_t m_size;
};

// Texts live in exactly sized heap blocks with no terminator, so that reading one
// byte past a view is an ASan finding rather than a silent success.
std::unique_ptr<char[]> Bare(const std::string& bytes) {
  auto block = std::make_unique<char[]>(bytes.size());
  if (!bytes.empty()) std::memcpy(block.get(), bytes.data(), bytes.size());
  return block;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Bytes input(data, size);
  std::vector<std::unique_ptr<char[]>> texts;
  std::vector<corlith::FormatArg> args;
  const int count = input.Take<std::uint8_t>() % 7;
  for (int i = 0; i < count; ++i) {
    switch (input.Take<std::uint8_t>() % 7) {
      case 0:
        args.emplace_back(input.Take<std::int64_t>());
        break;
      case 1:
        args.emplace_back(input.Take<std::uint64_t>());
        break;
      case 2:
        // Raw bits, so NaNs, infinities and subnormals all turn up.
        args.emplace_back(std::bit_cast<double>(input.Take<std::uint64_t>()));
        break;
      case 3: {
        const std::string bytes = input.TakeText(32);
        texts.push_back(Bare(bytes));
        args.emplace_back(std::string_view(texts.back().get(), bytes.size()));
        break;
      }
      case 4:
        args.emplace_back(static_cast<const char*>(nullptr));
        break;
      case 5:
        args.emplace_back(reinterpret_cast<const void*>(input.Take<std::uintptr_t>()));
        break;
      default:
        args.emplace_back(input.Take<std::int8_t>());
        break;
    }
  }
  const std::string format = input.TakeRest();
  const auto block = Bare(format);
  const std::string_view view(block.get(), format.size());

  const std::string out = corlith::FormatV(view, args);
  // Text without a '%' is copied unchanged whatever the arguments.
  if (format.find('%') == std::string::npos && out != format) {
    __builtin_trap();
  }
  std::string appended = "prefix";
  corlith::AppendFormatV(appended, view, args);
  if (appended.compare(6, std::string::npos, out) != 0) {
    __builtin_trap();
  }
  return 0;
}
