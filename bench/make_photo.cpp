// Writes a deterministic photograph-like 24-bit bitmap for the benchmarks: smooth light, a few
// soft shapes, and fine grain, so that compressors and quantizers see realistic statistics.
//   make_photo WIDTH HEIGHT OUT.bmp

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

void Le16(std::vector<uint8_t>& v, uint32_t x) {
  v.push_back(static_cast<uint8_t>(x));
  v.push_back(static_cast<uint8_t>(x >> 8));
}
void Le32(std::vector<uint8_t>& v, uint32_t x) {
  Le16(v, x & 0xFFFF);
  Le16(v, x >> 16);
}

uint8_t Clamp(double v) { return static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v); }

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: make_photo WIDTH HEIGHT OUT.bmp\n");
    return 2;
  }
  const uint32_t w = static_cast<uint32_t>(std::strtoul(argv[1], nullptr, 10));
  const uint32_t h = static_cast<uint32_t>(std::strtoul(argv[2], nullptr, 10));
  const uint64_t rowBytes = (static_cast<uint64_t>(w) * 3 + 3) / 4 * 4;
  std::FILE* out = std::fopen(argv[3], "wb");
  if (!out) return 1;
  std::vector<uint8_t> head;
  head.push_back('B');
  head.push_back('M');
  Le32(head, static_cast<uint32_t>(54 + rowBytes * h));
  Le32(head, 0);
  Le32(head, 54);
  Le32(head, 40);
  Le32(head, w);
  Le32(head, h);
  Le16(head, 1);
  Le16(head, 24);
  for (int i = 0; i < 6; ++i) Le32(head, 0);
  std::fwrite(head.data(), 1, head.size(), out);

  std::vector<uint8_t> row(rowBytes, 0);
  uint32_t seed = 12345;
  for (uint32_t yy = 0; yy < h; ++yy) {
    const uint32_t y = h - 1 - yy;  // bitmap rows run bottom-up
    const double fy = static_cast<double>(y) / h;
    for (uint32_t x = 0; x < w; ++x) {
      const double fx = static_cast<double>(x) / w;
      seed = seed * 1664525u + 1013904223u;
      const double grain = static_cast<double>((seed >> 24) & 15) - 7.5;
      const double sky = 1.0 - fy;
      const double hill = 0.5 + 0.5 * std::sin(fx * 7.0 + std::sin(fy * 5.0) * 2.0);
      const double sun = std::exp(-((fx - 0.7) * (fx - 0.7) + (fy - 0.25) * (fy - 0.25)) * 40.0);
      const double r = 60 + 120 * sky * (1 - hill * 0.4) + 180 * sun + grain;
      const double g = 80 + 100 * hill * (fy) + 90 * sky + 120 * sun + grain;
      const double b = 70 + 160 * sky - 40 * hill * fy + 40 * sun + grain;
      row[3 * x] = Clamp(b);
      row[3 * x + 1] = Clamp(g);
      row[3 * x + 2] = Clamp(r);
    }
    std::fwrite(row.data(), 1, rowBytes, out);
  }
  return std::fclose(out) == 0 ? 0 : 1;
}
