#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/file_io.h"

// ByteRun1, the run-length coding of IFF bodies: a signed control byte n; 0..127 copy the next
// n + 1 bytes, -1..-127 repeat the next byte 1 - n times, -128 does nothing.
namespace pxm {

// The most a decoded line can pass its length: a code is applied whole, and one code makes at
// most 128 bytes.
constexpr size_t kByteRun1Overrun = 128;

// Decodes codes from `in` until at least `length` bytes are in `out`, which holds at least
// length + kByteRun1Overrun bytes. Whatever the last code makes past `length` is lost with the
// line. False when the data ends first.
bool DecodeByteRun1(InputFile& in, uint8_t* out, size_t length);

// Appends the coding of one plane row to `out`. Runs are only looked for while the position is
// below 127: the rest of a longer row goes out as literals.
void EncodeByteRun1(const uint8_t* row, size_t length, std::vector<uint8_t>& out);

}  // namespace pxm
