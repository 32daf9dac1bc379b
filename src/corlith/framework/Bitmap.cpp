#include <corlith/framework/Bitmap.h>

#include <mutex>
#include <unordered_map>
#include <utility>

namespace corlith {
namespace {

// The live blocks and their sizes: the original asks the allocator for a block's size
// (GlobalSize); a hash map keyed by the block's address answers the same in O(1).
struct BlockRegistry {
  std::mutex mutex;
  std::unordered_map<const void*, std::size_t> sizes;
};

BlockRegistry& Registry() {
  // Never destroyed: PackedDibs in static storage may outlive any other static.
  static auto* registry = new BlockRegistry;
  return *registry;
}

}  // namespace

PackedDib::PackedDib(std::size_t size) {
  if (size < sizeof(BITMAPINFOHEADER)) {
    return;
  }
  // A byte array from new[] implicitly creates the header and colour-table objects
  // that get() and colors() hand out.
  m_block.reset(new std::byte[size]());
  m_size = size;
  auto& registry = Registry();
  const std::lock_guard lock(registry.mutex);
  registry.sizes[m_block.get()] = size;
}

PackedDib::PackedDib(PackedDib&& other) noexcept
    : m_block(std::move(other.m_block)), m_size(std::exchange(other.m_size, 0)) {}

PackedDib& PackedDib::operator=(PackedDib&& other) noexcept {
  if (this != &other) {
    Release();
    m_block = std::move(other.m_block);
    m_size = std::exchange(other.m_size, 0);
  }
  return *this;
}

PackedDib::~PackedDib() { Release(); }

void PackedDib::Release() noexcept {
  if (m_block == nullptr) {
    return;
  }
  {
    auto& registry = Registry();
    const std::lock_guard lock(registry.mutex);
    registry.sizes.erase(m_block.get());
  }
  m_block.reset();
  m_size = 0;
}

RGBQUAD* PackedDib::colors() const {
  if (!m_block) {
    return nullptr;
  }
  return reinterpret_cast<RGBQUAD*>(m_block.get() + get()->bmiHeader.biSize);
}

std::byte* PackedDib::bits() const {
  if (!m_block) {
    return nullptr;
  }
  const auto& h = get()->bmiHeader;
  return m_block.get() + h.biSize + DibColorCount(h) * sizeof(RGBQUAD);
}

std::size_t DibBlockSize(const BITMAPINFO* dib) {
  if (dib == nullptr) {
    return 0;
  }
  auto& registry = Registry();
  const std::lock_guard lock(registry.mutex);
  const auto it = registry.sizes.find(dib);
  return it == registry.sizes.end() ? 0 : it->second;
}

}  // namespace corlith
