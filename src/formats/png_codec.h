#pragma once

#include <cstdint>
#include <span>

// The PNG codec library: deflate coding and the CRC of PNG chunks, also used to verify copies.
namespace pxm {

// Folds bytes into a CRC-32 (the PNG and zlib polynomial). Start with 0; the value after the
// last bytes is the CRC.
uint32_t PngUpdateCrc(uint32_t crc, std::span<const uint8_t> bytes);

}  // namespace pxm
