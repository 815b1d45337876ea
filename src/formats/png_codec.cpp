#include "formats/png_codec.h"

#include <libdeflate.h>



namespace pxm {

uint32_t PngUpdateCrc(uint32_t crc, std::span<const uint8_t> bytes) {
  // The same CRC-32 as zlib's crc32, from the same starting value; libdeflate's runs several
  // times faster on processors with carry-less multiplication, which a verified copy (every byte
  // through it twice) feels.
  return libdeflate_crc32(crc, bytes.data(), bytes.size());
}

}  // namespace pxm
