#include "formats/png_codec.h"

#include <zlib.h>

#include <algorithm>

namespace pxm {

uint32_t PngUpdateCrc(uint32_t crc, std::span<const uint8_t> bytes) {
  uLong value = crc;
  // zlib takes lengths as 32-bit counts: feed larger spans in pieces.
  while (!bytes.empty()) {
    size_t n = std::min<size_t>(bytes.size(), 1u << 30);
    value = crc32(value, bytes.data(), static_cast<uInt>(n));
    bytes = bytes.subspan(n);
  }
  return static_cast<uint32_t>(value);
}

}  // namespace pxm
