#include "formats/png_codec.h"

#include "core/crc32.h"

namespace pxm {

uint32_t PngUpdateCrc(uint32_t crc, std::span<const uint8_t> bytes) { return Crc32(crc, bytes); }

}  // namespace pxm
