#include "process/effect_rows.h"

#include <algorithm>

namespace pxm {
namespace {

inline uint8_t Clamp255(int v) { return static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v); }

}  // namespace

void SharpenRow(uint8_t* rgb, uint32_t width) {
  // A single pixel has no neighbour to the right for the first-pixel rule: it stays.
  if (width < 2) return;
  for (int c = 0; c < 3; ++c) {
    uint8_t* p = rgb + c;
    p[0] = Clamp255(2 * p[0] - p[3]);
    for (size_t i = 3; i < 3 * (static_cast<size_t>(width) - 1); i += 3) {
      const int v = p[i];
      p[i] = Clamp255(v + (v - p[i - 3]) / 2 + (v - p[i + 3]) / 2);
    }
  }
}

void SoftenRow(uint8_t* rgb, uint32_t width) {
  if (width < 2) return;
  const size_t last = 3 * (static_cast<size_t>(width) - 1);
  for (int c = 0; c < 3; ++c) {
    uint8_t* p = rgb + c;
    p[0] = static_cast<uint8_t>((p[0] + p[3] / 2) * 2 / 3);
    for (size_t i = 3; i < last; i += 3)
      p[i] = static_cast<uint8_t>((p[i] + p[i - 3] / 2 + p[i + 3] / 2) / 2);
    p[last] = static_cast<uint8_t>((p[last] + p[last - 3] / 2) * 2 / 3);
  }
}

void SmudgeRow(uint8_t* rgb, const uint8_t* const below[2], uint32_t width, SmudgeDraw draw) {
  for (uint32_t x = 0; x < width; ++x) {
    const uint32_t dx = static_cast<uint32_t>(draw() % 3);
    const int dy = draw() % 3;
    if (x + dx >= width) continue;
    // dx is never negative and the row changes left to right: the source is always unchanged.
    const uint8_t* from = dy == 0 ? rgb : below[dy - 1];
    if (!from) continue;
    std::copy_n(from + 3 * static_cast<size_t>(x + dx), 3, rgb + 3 * static_cast<size_t>(x));
  }
}

void PosterizeBand(std::span<uint8_t* const> rows, uint32_t width, uint32_t n) {
  for (uint32_t x0 = 0; x0 < width; x0 += n) {
    const uint32_t x1 = std::min(width, x0 + n);
    uint32_t sum[3] = {0, 0, 0};
    for (uint8_t* row : rows)
      for (uint32_t x = x0; x < x1; ++x)
        for (int c = 0; c < 3; ++c) sum[c] += row[3 * static_cast<size_t>(x) + c];
    const uint32_t count = (x1 - x0) * static_cast<uint32_t>(rows.size());
    const uint8_t mean[3] = {static_cast<uint8_t>(sum[0] / count),
                             static_cast<uint8_t>(sum[1] / count),
                             static_cast<uint8_t>(sum[2] / count)};
    for (uint8_t* row : rows)
      for (uint32_t x = x0; x < x1; ++x) std::copy_n(mean, 3, row + 3 * static_cast<size_t>(x));
  }
}

}  // namespace pxm
