#include "support/photo_cd_builder.h"

namespace pxm::test {

std::string PhotoCdPack(const PcdSample& sample, uint32_t turn, size_t length) {
  struct Stored {
    uint32_t width, height, sector;
  };
  const Stored stored[] = {{192, 128, 4}, {384, 256, 23}, {768, 512, 96}};
  std::string file(96 * 2048 + 768 * 512 * 3 / 2, '\0');
  file.replace(0x800, 7, "PCD_IPI");
  file[0xE02] = static_cast<char>(turn);
  for (const Stored& s : stored) {
    size_t at = size_t{s.sector} * 2048;
    for (uint32_t y = 0; y < s.height; y += 2) {
      for (uint32_t row = y; row < y + 2; ++row)
        for (uint32_t x = 0; x < s.width; ++x) file[at++] = char(sample(0, x, row, s.width));
      for (int plane = 1; plane <= 2; ++plane)
        for (uint32_t x = 0; x < s.width / 2; ++x)
          file[at++] = char(sample(plane, x, y / 2, s.width / 2));
    }
  }
  if (length) file.resize(length, '\0');
  return file;
}

uint8_t PcdGradient(int plane, uint32_t x, uint32_t y, uint32_t width) {
  if (plane == 0) return uint8_t((x * 7 + y * 3 + width) % 220 + 10);
  if (plane == 1) return uint8_t(100 + (x * 5 + y) % 110);
  return uint8_t(60 + (x + y * 3 + width) % 150);
}

}  // namespace pxm::test
