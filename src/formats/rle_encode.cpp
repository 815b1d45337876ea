#include "formats/rle_encode.h"

#include <algorithm>

namespace pxm {
namespace {

constexpr size_t kLongest = 255;  // pixels of one run or one absolute stretch

// Pixels from `x` that one run code can give: equal pixels, or for 4-bit runs pixels that repeat
// the pair they start with.
size_t RunAt(std::span<const uint8_t> p, size_t x, size_t period) {
  size_t n = std::min(period, p.size() - x);
  while (x + n < p.size() && n < kLongest && p[x + n] == p[x + n - period]) ++n;
  return n;
}

void PutRun(std::span<const uint8_t> p, size_t x, size_t n, bool fourBit,
            std::vector<uint8_t>& out) {
  out.push_back(static_cast<uint8_t>(n));
  if (!fourBit)
    out.push_back(p[x]);
  else
    out.push_back(static_cast<uint8_t>((p[x] << 4) | (n > 1 ? p[x + 1] & 0x0F : 0)));
}

// An absolute stretch: 0, the count, the pixels, padded to a whole number of 16-bit words.
void PutAbsolute(std::span<const uint8_t> p, size_t x, size_t n, bool fourBit,
                 std::vector<uint8_t>& out) {
  out.push_back(0);
  out.push_back(static_cast<uint8_t>(n));
  size_t bytes = 0;
  for (size_t i = 0; i < n; ++bytes) {
    if (!fourBit) {
      out.push_back(p[x + i++]);
      continue;
    }
    const uint8_t high = static_cast<uint8_t>(p[x + i++] << 4);
    const uint8_t low = i < n ? static_cast<uint8_t>(p[x + i++] & 0x0F) : 0;
    out.push_back(high | low);
  }
  if (bytes & 1) out.push_back(0);
}

}  // namespace

void EncodeRleRow(std::span<const uint8_t> pixels, bool fourBit, std::vector<uint8_t>& out) {
  // A run pays off from 2 equal pixels in 8-bit data, where an absolute byte costs a pixel; in
  // 4-bit data an absolute byte holds two pixels, so a run must reach 4 to win, and 6 to be
  // worth ending an absolute stretch for.
  const size_t period = fourBit ? 2 : 1;
  const size_t startRun = fourBit ? 4 : 2;
  const size_t breakRun = fourBit ? 6 : 3;
  size_t x = 0;
  while (x < pixels.size()) {
    const size_t run = RunAt(pixels, x, period);
    if (run >= startRun || x + run == pixels.size()) {
      PutRun(pixels, x, run, fourBit, out);
      x += run;
      continue;
    }
    size_t end = x + 1;
    while (end < pixels.size() && end - x < kLongest && RunAt(pixels, end, period) < breakRun)
      ++end;
    // Codes 0, 1 and 0, 2 are escapes: absolute stretches hold three pixels or more. In 4-bit
    // data they hold an even number: some readers take the half-filled last byte of an odd
    // stretch for the next code. What is left goes as runs of its own.
    size_t n = end - x;
    if (fourBit) n &= ~size_t{1};
    if (n >= 3) {
      PutAbsolute(pixels, x, n, fourBit, out);
    } else {
      n = 0;
    }
    for (size_t i = x + n; i < end;) {
      const size_t m = std::min(RunAt(pixels, i, period), end - i);
      PutRun(pixels, i, m, fourBit, out);
      i += m;
    }
    x = end;
  }
}

}  // namespace pxm
