// The thumbnail sink's three modes on pictures fed top row first, against records worked out by
// hand from the rules; and the "ThumbnailRemap" table.

#include "thumbs/thumbnail_sink.h"

#include <gtest/gtest.h>

#include <vector>

#include "process/bayer.h"
#include "support/picture.h"
#include "thumbs/thumbnail_remap.h"

namespace pxm {
namespace {

using test::Picture;
using Grid = std::vector<std::vector<int>>;

// The nearest level of a red or green value at a 4-bit cell's lower corner 16 × k among 0, 36,
// 72, 109, 145, 182, 218, 255 (ties go to the lower level); and of blue among 0, 85, 170, 255.
constexpr int kRedLevel[16] = {0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4, 5, 5, 6, 6, 7};
constexpr int kBlueLevel[16] = {0, 0, 0, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2, 3, 3};

ThumbnailRecord Sunk(const Picture& p, int mode) {
  ThumbnailRecord record;
  ThumbnailSource source{p.width, p.depth, p.bits, &p.palette, nullptr, &ThumbnailRemap()};
  ThumbnailSink sink(record, source, mode);
  for (int32_t y = 0; y < p.depth; ++y) sink.Put(p.rows[static_cast<size_t>(y)], y);
  return record;
}

// The record's pixels, with everything outside `expected` required to be 0.
void ExpectRecord(const ThumbnailRecord& r, const Grid& expected, const std::string& what) {
  for (int y = 0; y < kThumbSize; ++y)
    for (int x = 0; x < kThumbSize; ++x) {
      const bool inside = static_cast<size_t>(y) < expected.size() &&
                          static_cast<size_t>(x) < expected[static_cast<size_t>(y)].size();
      const int want = inside ? expected[static_cast<size_t>(y)][static_cast<size_t>(x)] : 0;
      ASSERT_EQ(r.At(x, y), want) << what << " at " << x << "," << y;
    }
}

// The same colours as a 24-bit picture and as an 8-bit one with those colours in its palette.
std::pair<Picture, Picture> TrueAndPalette(const std::vector<std::vector<Rgb>>& colours) {
  const uint32_t width = static_cast<uint32_t>(colours[0].size());
  const int32_t depth = static_cast<int32_t>(colours.size());
  Picture rgb = Picture::Blank(width, depth, 24);
  Picture indexed = Picture::Blank(width, depth, 8);
  uint32_t used = 0;
  for (int32_t y = 0; y < depth; ++y)
    for (uint32_t x = 0; x < width; ++x) {
      const Rgb c = colours[static_cast<size_t>(y)][x];
      rgb.SetPixel(x, y, uint32_t{c.red} << 16 | uint32_t{c.green} << 8 | c.blue);
      uint32_t i = 0;
      while (i < used && !(indexed.palette[i] == c)) ++i;
      if (i == used) indexed.palette[used++] = c;
      indexed.SetPixel(x, y, i);
    }
  return {rgb, indexed};
}

TEST(ThumbnailSinkTest, RemappedTrueColourFollowsTheRemapTable) {
  const InverseColourMap& remap = ThumbnailRemap();
  for (int k = 0; k < 16; ++k) {
    EXPECT_EQ(remap[static_cast<size_t>(k)], kRedLevel[k] << 5) << "red " << 16 * k;
    EXPECT_EQ(remap[static_cast<size_t>(16 * k)], kRedLevel[k] << 2) << "green " << 16 * k;
    EXPECT_EQ(remap[static_cast<size_t>(256 * k)], kBlueLevel[k]) << "blue " << 16 * k;
  }
  Picture ramp = Picture::Blank(96, 1, 24);
  Grid expected(1);
  for (uint32_t x = 0; x < 96; ++x) {
    const uint32_t red = x * 255 / 95;
    ramp.SetPixel(x, 0, red << 16 | 0x0A0A);  // green and blue 10 fall in cell 0
    expected[0].push_back(kRedLevel[red >> 4] << 5);
  }
  ExpectRecord(Sunk(ramp, kThumbRemapped), expected, "red ramp");
}

TEST(ThumbnailSinkTest, BayerMatrixRowFromStoredRowForPalettesAndSourceRowForTrueColour) {
  // A 192 x 192 checker halved: each destination pixel takes source column 2k + 1 (the last
  // across) of source row 2d (the first down), always a grey square. For grey 128,
  // c − ((c − 4M) >> 2) is 96 + M, which packs to 109 below M = 32 and to 146 from it.
  std::vector<std::vector<Rgb>> colours(192, std::vector<Rgb>(192));
  for (size_t y = 0; y < 192; ++y)
    for (size_t x = 0; x < 192; ++x)
      colours[y][x] = (x + y) % 2 ? Rgb{128, 128, 128} : Rgb{255, 255, 255};
  auto [rgb, indexed] = TrueAndPalette(colours);
  Grid fromStored(96), fromSource(96);
  for (size_t d = 0; d < 96; ++d)
    for (size_t k = 0; k < 96; ++k) {
      fromStored[d].push_back(kBayerMatrix[(95 - d) & 7][k & 7] < 32 ? 109 : 146);
      fromSource[d].push_back(kBayerMatrix[(2 * d) & 7][k & 7] < 32 ? 109 : 146);
    }
  ExpectRecord(Sunk(indexed, kThumbBayer), fromStored, "8 bits");
  ExpectRecord(Sunk(rgb, kThumbBayer), fromSource, "24 bits");
}

TEST(ThumbnailSinkTest, ErrorDiffusionEdgeRules) {
  struct Case {
    const char* what;
    std::vector<std::vector<Rgb>> picture;
    Grid expected;
  };
  const Rgb blue60{0, 0, 60};
  const Case cases[] = {
      // Row 0: 60 maps to 0 and sends 26 right, making 86, which maps to 85 (index 1). Nothing
      // goes down from the top row, so row 1 comes out the same. Row 1 does send 18 down to
      // column 0 and 3 below-right: row 2 starts from 78 and 63 and comes out the other way.
      {"the top row passes nothing straight down",
       {{blue60, blue60}, {blue60, blue60}, {blue60, blue60}},
       {{0, 1}, {0, 1}, {1, 0}}},
      // Row 0: 36 is exact; 31 maps to 0 and would send 5 below-left into column 0, but column 0
      // never receives it; its 13 to the right gives column 2 a below-left share of 2 for
      // column 1, which the top row does pass. Row 1: 28 maps to 0 (33 would have made 32) and
      // sends 12 right, where 2 + 36 + 12 = 50 maps to 32.
      {"column 0 never receives the below-left share",
       {{{36, 0, 0}, {31, 0, 0}}, {{28, 0, 0}, {36, 0, 0}}},
       {{32, 0}, {0, 32}}},
  };
  for (const Case& c : cases) {
    auto [rgb, indexed] = TrueAndPalette(c.picture);
    ExpectRecord(Sunk(rgb, kThumbDiffused), c.expected, std::string(c.what) + ", 24 bits");
    ExpectRecord(Sunk(indexed, kThumbDiffused), c.expected, std::string(c.what) + ", 8 bits");
  }
}

TEST(ThumbnailSinkTest, ScaleOnlyReducesAndKeepsProportions) {
  EXPECT_EQ(ThumbnailPercent(48, 192), 50u);
  EXPECT_EQ(ThumbnailPercent(97, 20), 98u);
  EXPECT_EQ(ThumbnailPercent(50, 50), 100u);
  // Steps of 0.1 add up to just under 1 after ten columns: column 10 still lands on 0.
  auto table = ThumbnailTable(960, 10);
  EXPECT_EQ(std::vector<int>(table.begin() + 9, table.begin() + 12), (std::vector<int>{0, 0, 1}));
  EXPECT_EQ(table[959], 95);
}

}  // namespace
}  // namespace pxm
