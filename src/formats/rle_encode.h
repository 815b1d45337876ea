#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace pxm {

// Appends the run-length codes of one bitmap row to `out`, without the end-of-line code that
// follows it. `pixels` holds one palette index a byte. With `fourBit` the codes are those of
// 4-bit files, whose runs repeat a pair of pixels, so a row of two alternating colours packs as
// well as a row of one; otherwise those of 8-bit files.
void EncodeRleRow(std::span<const uint8_t> pixels, bool fourBit, std::vector<uint8_t>& out);

}  // namespace pxm
