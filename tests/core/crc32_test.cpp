#include "core/crc32.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <random>
#include <vector>

namespace pxm {
namespace {

uint32_t Zlib(uint32_t crc, const uint8_t* p, size_t n) {
  return static_cast<uint32_t>(crc32(crc, p, static_cast<uInt>(n)));
}

TEST(Crc32, AgreesWithZlibAtEveryLengthOffsetAndStart) {
  std::mt19937 random(7);
  std::vector<uint8_t> data(5000);
  for (auto& b : data) b = static_cast<uint8_t>(random());
  const uint8_t check[] = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
  EXPECT_EQ(Crc32(0, check), 0xCBF43926u);
  // Every length through the folding thresholds (16, 64, 128), at unaligned starts, continuing
  // from earlier values the way a copy feeds its chunks.
  for (size_t offset : {0u, 1u, 7u, 15u})
    for (size_t n = 0; n <= 300; ++n)
      for (uint32_t start : {0u, 0xFFFFFFFFu, 0x12345678u})
        ASSERT_EQ(Crc32(start, {data.data() + offset, n}), Zlib(start, data.data() + offset, n))
            << "offset " << offset << " length " << n << " start " << start;
  EXPECT_EQ(Crc32(0, data), Zlib(0, data.data(), data.size()));
  uint32_t pieces = Crc32(Crc32(0, {data.data(), 1000}), {data.data() + 1000, 4000});
  EXPECT_EQ(pieces, Zlib(0, data.data(), data.size()));
}

}  // namespace
}  // namespace pxm
