#pragma once

#include <cstdint>
#include <span>

namespace pxm {

// CRC-32 with the polynomial of PNG chunks and zlib streams, continued from `crc` (0 to start),
// exactly as zlib's crc32 computes it. Uses carry-less multiplication where the processor has it:
// a verified copy runs every byte of a file through this twice.
uint32_t Crc32(uint32_t crc, std::span<const uint8_t> bytes);

}  // namespace pxm
