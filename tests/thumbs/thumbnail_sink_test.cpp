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

ThumbnailRecord Sunk(const Picture& p, int mode, const std::array<uint8_t, 256>* map = nullptr) {
  ThumbnailRecord record;
  ThumbnailSource source{p.width, p.depth, p.bits, &p.palette, map, &ThumbnailRemap()};
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

TEST(ThumbnailSinkTest, OneBitRowsAreWhiteOrBlackWhateverThePaletteAndMode) {
  Picture p = Picture::Blank(3, 2, 1);
  p.palette[0] = {255, 0, 0};
  p.palette[1] = {0, 0, 255};
  p.SetPixel(0, 0, 1);
  p.SetPixel(2, 0, 1);
  p.SetPixel(1, 1, 1);
  for (int mode : {kThumbRemapped, kThumbBayer, kThumbDiffused}) {
    ThumbnailRecord r = Sunk(p, mode);
    ExpectRecord(r, {{255, 0, 255}, {0, 255, 0}}, "mode " + std::to_string(mode));
    EXPECT_EQ(r.width, 3u);
    EXPECT_EQ(r.depth, 2u);
  }
}

TEST(ThumbnailSinkTest, PaletteRowsGoThroughTheColourMap) {
  std::array<uint8_t, 256> map{};
  for (int i = 0; i < 256; ++i) map[static_cast<size_t>(i)] = static_cast<uint8_t>(i + 10);
  Picture nibbles = Picture::Blank(5, 1, 4);
  Picture bytes = Picture::Blank(5, 1, 8);
  const uint32_t indexes[] = {0, 1, 2, 3, 15};
  for (uint32_t x = 0; x < 5; ++x) {
    nibbles.SetPixel(x, 0, indexes[x]);
    bytes.SetPixel(x, 0, indexes[x]);
  }
  const Grid expected = {{10, 11, 12, 13, 25}};
  // 2- to 4-bit pictures are remapped in every mode.
  for (int mode : {kThumbRemapped, kThumbBayer, kThumbDiffused})
    ExpectRecord(Sunk(nibbles, mode, &map), expected, "4 bits, mode " + std::to_string(mode));
  ExpectRecord(Sunk(bytes, kThumbRemapped, &map), expected, "8 bits");
}

TEST(ThumbnailSinkTest, RemappedTrueColourRampFollowsTheRemapTable) {
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
  // c − ((c − 4M) >> 2) is 192 + M for white, which packs to 219 below M = 32 and 255 from it;
  // 96 + M for grey 128, which packs to 109 or 146.
  const Rgb grey{128, 128, 128}, white{255, 255, 255};
  struct Case {
    const char* what;
    uint32_t size;
    bool checker;  // white where x + y is odd, else grey; otherwise plain grey
  };
  for (const Case& c : {Case{"grey 16 x 16", 16, false}, Case{"checker 192 x 192", 192, true}}) {
    std::vector<std::vector<Rgb>> colours(c.size, std::vector<Rgb>(c.size, grey));
    for (uint32_t y = 0; y < c.size; ++y)
      for (uint32_t x = 0; x < c.size; ++x)
        if (c.checker && (x + y) % 2) colours[y][x] = white;
    auto [rgb, indexed] = TrueAndPalette(colours);
    // Halved, each destination pixel takes source column 2k + 1 (the last across) of source row
    // 2d (the first down): always a white square of the checker.
    const int step = c.checker ? 2 : 1;
    const int low = c.checker ? 219 : 109, high = c.checker ? 255 : 146;
    const int size = static_cast<int>(c.size) / step;
    Grid fromStored(static_cast<size_t>(size)), fromSource(static_cast<size_t>(size));
    for (int d = 0; d < size; ++d)
      for (int k = 0; k < size; ++k) {
        const int stored = kBayerMatrix[(95 - d) & 7][k & 7];
        const int source = kBayerMatrix[(d * step) & 7][k & 7];
        fromStored[static_cast<size_t>(d)].push_back(stored < 32 ? low : high);
        fromSource[static_cast<size_t>(d)].push_back(source < 32 ? low : high);
      }
    ExpectRecord(Sunk(indexed, kThumbBayer), fromStored, std::string(c.what) + ", 8 bits");
    ExpectRecord(Sunk(rgb, kThumbBayer), fromSource, std::string(c.what) + ", 24 bits");
  }
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
  struct Case {
    uint32_t width;
    int32_t depth;
    uint32_t percent;
  };
  for (const Case& c : {Case{960, 480, 10}, Case{50, 50, 100}, Case{48, 192, 50}, Case{97, 20, 98},
                        Case{1, 1, 100}, Case{9600, 1, 1}}) {
    EXPECT_EQ(ThumbnailPercent(c.width, c.depth), c.percent) << c.width << " x " << c.depth;
  }
  // Steps of 0.1 add up to just under 1 after ten columns: column 10 still lands on 0.
  auto table = ThumbnailTable(960, 10);
  EXPECT_EQ(table[9], 0);
  EXPECT_EQ(table[10], 0);
  EXPECT_EQ(table[11], 1);
  EXPECT_EQ(table[959], 95);
  EXPECT_EQ(ThumbnailTable(50, 100)[49], 49);
}

TEST(ThumbnailRemapTest, NearestFixedColourOfEachCellCorner) {
  const InverseColourMap& remap = ThumbnailRemap();
  for (int k = 0; k < 16; ++k) {
    EXPECT_EQ(remap[static_cast<size_t>(k)], kRedLevel[k] << 5) << "red " << 16 * k;
    EXPECT_EQ(remap[static_cast<size_t>(16 * k)], kRedLevel[k] << 2) << "green " << 16 * k;
    EXPECT_EQ(remap[static_cast<size_t>(256 * k)], kBlueLevel[k]) << "blue " << 16 * k;
  }
  EXPECT_EQ(remap[4095], 255);
  EXPECT_EQ(remap[InverseMapIndex(200, 40, 90)], (5 << 5) | (1 << 2) | 1);  // corner 192, 32, 80
}

}  // namespace
}  // namespace pxm
