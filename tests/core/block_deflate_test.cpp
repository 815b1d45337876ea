#include "core/block_deflate.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <random>
#include <vector>

namespace pxm {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes Zlib(const Bytes& data, int level) {
  uLongf n = compressBound(data.size());
  Bytes out(n);
  EXPECT_EQ(compress2(out.data(), &n, data.data(), data.size(), level), Z_OK);
  out.resize(n);
  return out;
}

Bytes Inflate(const Bytes& stream, size_t expected) {
  Bytes out(expected + 1);
  uLongf n = out.size();
  EXPECT_EQ(uncompress(out.data(), &n, stream.data(), stream.size()), Z_OK);
  out.resize(n);
  return out;
}

// Feeds `data` in pieces of uneven size, as rows of a picture arrive.
Bytes Blocks(const Bytes& data, int level, size_t blockBytes, unsigned threads) {
  Bytes out;
  BlockDeflate d(
      level, Z_DEFAULT_STRATEGY,
      [&](std::span<const uint8_t> b) {
        out.insert(out.end(), b.begin(), b.end());
        return true;
      },
      blockBytes, threads);
  size_t at = 0;
  for (size_t piece = 1; at < data.size(); piece = piece * 3 % 9001 + 1) {
    const size_t n = std::min(piece, data.size() - at);
    EXPECT_TRUE(d.Add({data.data() + at, n}));
    at += n;
  }
  EXPECT_TRUE(d.Finish());
  return out;
}

// A random 20000-byte pattern repeated with a little noise: every block after the first can
// only compress well if it sees the block before it.
Bytes Repetitive(size_t size) {
  std::mt19937 random(3);
  Bytes pattern(20000);
  for (auto& b : pattern) b = static_cast<uint8_t>(random());
  Bytes data(size);
  for (size_t i = 0; i < size; ++i)
    data[i] = static_cast<uint8_t>(pattern[i % pattern.size()] + (random() % 64 == 0));
  return data;
}

TEST(BlockDeflate, StreamsOfManyBlocksInflateToTheDataAtAboutOneStreamsSize) {
  const Bytes data = Repetitive(700000);
  for (int level : {1, 6, 9})
    for (unsigned threads : {1u, 2u, 5u}) {
      SCOPED_TRACE(testing::Message() << "level " << level << " threads " << threads);
      const Bytes single = Zlib(data, level);
      const Bytes blocks = Blocks(data, level, 50000, threads);
      EXPECT_EQ(Inflate(blocks, data.size()), data);
      EXPECT_EQ(blocks[0], single[0]);  // the header zlib writes for the level
      EXPECT_EQ(blocks[1], single[1]);
      // 14 seams cost a few bytes each, not a pattern sent again.
      EXPECT_LT(blocks.size(), single.size() + single.size() / 50 + 14 * 16);
    }
}

TEST(BlockDeflate, DataWithinOneBlockIsExactlyWhatZlibWrites) {
  const Bytes data = Repetitive(65536);
  for (size_t size : {size_t{0}, size_t{1}, size_t{40000}, size_t{65536}}) {
    const Bytes part(data.begin(), data.begin() + static_cast<ptrdiff_t>(size));
    EXPECT_EQ(Blocks(part, 6, 65536, 2), Zlib(part, 6)) << size << " bytes";
  }
  // One byte past a full block makes a second block.
  const Bytes more = Repetitive(65537);
  const Bytes two = Blocks(more, 6, 65536, 2);
  EXPECT_NE(two, Zlib(more, 6));
  EXPECT_EQ(Inflate(two, more.size()), more);
}

TEST(BlockDeflate, ASinkThatFailsStopsTheStream) {
  const Bytes data = Repetitive(300000);
  for (int failAt : {1, 2, 4}) {
    int calls = 0;
    BlockDeflate d(6, Z_DEFAULT_STRATEGY, [&](std::span<const uint8_t>) { return ++calls < failAt; },
                   40000, 2);
    bool added = true;
    for (size_t at = 0; at < data.size() && added; at += 1000)
      added = d.Add({data.data() + at, 1000});
    EXPECT_FALSE(added && d.Finish()) << "failing at write " << failAt;
    EXPECT_FALSE(d.Finish());
  }
}

}  // namespace
}  // namespace pxm
