#include "process/dither.h"

#include <gtest/gtest.h>

#include "core/error_codes.h"
#include "process/held_picture.h"

namespace pxm {
namespace {

using test::FromPixels;
using test::HeldPicture;
using test::PixelsOf;
using Rows = std::vector<std::vector<uint32_t>>;

constexpr uint32_t kFloydUni = kDitherFloyd | kDitherUnidirectional | kDitherSize1;
constexpr uint32_t kFloydBi = kDitherFloyd | kDitherBidirectional | kDitherSize1;

// Palette entries whose greys (with contrast and brightness 0, the table is the identity on
// 1..254) are worked out from the first byte: (59b div 100) + (30b div 100) + (11b div 100).
enum Entry : uint32_t {
  kBlack = 0,  // grey 1 (the table's floor): the minimum
  kWhite = 1,  // 255 -> 150 + 76 + 28 = 254: the maximum
  kG246 = 2,   // 247 -> 145 + 74 + 27
  kG131 = 3,   // 133 -> 78 + 39 + 14
  kG127 = 4,   // 128 -> 75 + 38 + 14
  kG200 = 5,   // 200 -> 118 + 60 + 22
  kG100 = 6,   // 100 -> 59 + 30 + 11
  kG128 = 7,   // 129 -> 76 + 38 + 14
  kG36 = 8,    // 37 -> 21 + 11 + 4
};

test::Picture Greys(uint32_t width, const Rows& rows) {
  test::Picture p = FromPixels(width, 8, rows);
  const uint8_t firsts[] = {0, 255, 247, 133, 128, 200, 100, 129, 37};
  for (size_t i = 0; i < std::size(firsts); ++i)
    // Only the first byte counts: the other two are set to throw a wrong channel off.
    p.palette[i] = Rgb{firsts[i], static_cast<uint8_t>(255 - firsts[i]), 17};
  return p;
}

// Dithers a grey palette picture (levels: minimum 1, maximum 254, L = 127) and answers its bits.
Rows Dither(uint32_t width, const Rows& rows, uint32_t mode) {
  HeldPicture held(Greys(width, rows), 8);
  held.settings->DitherContrast = 0;
  held.settings->DitherBrightness = 0;
  EXPECT_EQ(DitherImage(held.info, mode, "g.bmp"), kOk);
  EXPECT_EQ(held.info.bits, 1u);
  return PixelsOf(held.Result());
}

TEST(HalftoneSize, FromTheModeWord) {
  EXPECT_EQ(HalftoneSizeFactor(82), 1);
  EXPECT_EQ(HalftoneSizeFactor(kDitherFloyd | kDitherSize2), 2);
  EXPECT_EQ(HalftoneSizeFactor(kDitherStucki | kDitherSize5), 5);
  EXPECT_EQ(HalftoneSizeFactor(kDitherBurkes | kDitherSize3 | kDitherSize4), 3);
  // The threshold level 0x80 shares its bit with "200 percent".
  EXPECT_EQ(HalftoneSizeFactor(kDitherThreshold | 0x80), 1);
  EXPECT_EQ(HalftoneSizeFactor(kDitherBayer | kDitherSize2), 1);
}

TEST(DitherImage, WhiteTwentyFourBitPictureAndTheStrictThreshold) {
  test::Picture white = FromPixels(9, 24, Rows(2, std::vector<uint32_t>(9, 0xFFFFFF)));
  for (uint32_t mode : {kDitherThreshold | 255u, kDitherThreshold | 253u, kFloydUni,
                        kDitherStucki | kDitherBidirectional}) {
    HeldPicture held(white, 24);
    ASSERT_EQ(DitherImage(held.info, mode, "w.bmp"), kOk);
    // Grey 254 everywhere: only level 253 lies below it. With diffusion the level is the
    // extremes' mean, 254 itself, and the error against the minimum is 0.
    uint32_t expected = mode == (kDitherThreshold | 253u) ? 1 : 0;
    EXPECT_EQ(PixelsOf(held.Result()), Rows(2, std::vector<uint32_t>(9, expected))) << mode;
    EXPECT_EQ(held.info.palette[0], (Rgb{0, 0, 0}));
    EXPECT_EQ(held.info.palette[1], (Rgb{255, 255, 255}));
  }
}

TEST(DitherImage, TwentyFourBitGreyComesFromTheFirstByte) {
  test::Picture p = FromPixels(3, 24, {{0x00FFFF, 0xFF0000, 0x808080}});
  HeldPicture held(p, 24);
  held.settings->DitherContrast = 0;
  ASSERT_EQ(DitherImage(held.info, kDitherThreshold | 127, "c.bmp"), kOk);
  // Greys 1, 254, 127: only the pixel whose first byte is 255 passes 127.
  EXPECT_EQ(PixelsOf(held.Result()), (Rows{{0, 1, 0}}));
}

TEST(DitherImage, WorkedOutcomesOfSmallGreyPictures) {
  struct Case {
    uint32_t mode;
    Rows picture, expected;
  };
  const Rows row = {{kG200, kG100, kG100}};
  const Case cases[] = {
      // Only white is used, but black in the palette sets the minimum: L = (1 + 254) / 2 = 127,
      // and white loses nothing to diffusion.
      {kFloydUni, {{kWhite, kWhite, kWhite, kWhite}}, {{1, 1, 1, 1}}},
      {kDitherThreshold | 126, {{kG127, kG127}}, {{1, 1}}},
      // 246 is white with error -8; 7 × -8 / 16 = -3.5 becomes -3, so 131 reaches 128 and is
      // white (rounding down would leave it at 127, black).
      {kFloydUni, {{kG246, kG131}}, {{1, 1}}},
      // Burkes: 127 black (e 126): 31 to the next, 15 to the one after -> 158 white (e -96, -24)
      // -> 118 black. Stucki gives the nearer pixel 4/42 and the farther 8/42: 12 and 24 -> 139
      // white (e -115, -10) -> 141 white.
      {kDitherBurkes | kDitherUnidirectional, {{kG127, kG127, kG127}}, {{0, 1, 0}}},
      {kDitherStucki | kDitherUnidirectional, {{kG127, kG127, kG127}}, {{0, 1, 1}}},
      // Left to right: 200 white (e -54, -23 ahead) -> 77 black (e 76, +33) -> 133 white.
      // Right to left: 100 black (e 99, +43) -> 143 white (e -111, -48) -> 152 white.
      {kFloydUni, row, {{1, 0, 1}}},
      {kFloydBi, row, {{1, 1, 0}}},
      // Serpentine: row 0 goes right to left, row 1 left to right (a black row at the minimum
      // passes no error down).
      {kFloydBi, {{kBlack, kBlack, kBlack}, row[0]}, {{0, 0, 0}, {1, 0, 1}}},
      // Row 0: 127 black (e 126: +55 ahead, +39 below, +7 below right); 182 white (e -72) would
      // send -13 down-left to column 0, which the edge rule drops. Row 1: 100 + 39 = 139 white
      // (126, black, had the share arrived); its error -115 takes 127 + 7 - 22 = 112 down to 62.
      {kFloydUni, {{kG127, kG127}, {kG100, kG127}}, {{0, 1}, {1, 0}}},
  };
  for (const Case& c : cases)
    EXPECT_EQ(Dither(static_cast<uint32_t>(c.picture[0].size()), c.picture, c.mode), c.expected)
        << &c - cases;
  // Grey 127 down a column. Floyd-Steinberg: 127 black, 126 × 5/16 = 39 down -> 166 white,
  // -88 × 5/16 = -27 -> 100 black, 99 × 5/16 = 30 -> 157 white. Burkes (8/32): 31 -> 158 white,
  // -24 -> 103 black, 25 -> 152 white. Stucki: 24 and 12 down -> 151 white; -19 and -9 -> 120
  // black; 22 -> 140 white. Shares to the side vanish in either direction.
  for (uint32_t method : {kDitherFloyd, kDitherBurkes, kDitherStucki})
    for (uint32_t direction : {kDitherUnidirectional, kDitherBidirectional})
      EXPECT_EQ(Dither(1, {{kG127}, {kG127}, {kG127}, {kG127}}, method | direction),
                (Rows{{0}, {1}, {0}, {1}}))
          << method << " " << direction;
  // A constant 24-bit picture is its own extremes: every pixel sits at L and is black.
  test::Picture flat = FromPixels(5, 24, Rows(3, std::vector<uint32_t>(5, 0x5AC80A)));
  for (uint32_t mode :
       {kFloydUni, kDitherBurkes | kDitherUnidirectional, kDitherStucki | kDitherBidirectional}) {
    HeldPicture held(flat, 24);
    ASSERT_EQ(DitherImage(held.info, mode, "f.bmp"), kOk);
    EXPECT_EQ(PixelsOf(held.Result()), Rows(3, std::vector<uint32_t>(5, 0))) << mode;
  }
  // No direction bit: diffusion writes nothing and the row keeps its grey bytes (200 = 0xC8).
  HeldPicture held(Greys(3, row), 8);
  held.settings->DitherContrast = 0;
  ASSERT_EQ(DitherImage(held.info, kDitherFloyd | kDitherSize1, "n.bmp"), kOk);
  EXPECT_EQ(held.Result().rows[0][0], 200);
}

TEST(DitherImage, BayerPositions) {
  // Grey 128: white where the matrix holds less than 32, half of every 8 × 8 tile. Grey 36: white
  // where it holds less than 9; (column 0, row 2) holds 8 but (column 2, row 0) holds 12.
  Rows grey128(8, std::vector<uint32_t>(8, kG128));
  Rows out = Dither(8, grey128, kDitherBayer | kDitherSize1);
  int whites = 0;
  for (const auto& r : out)
    for (uint32_t v : r) whites += static_cast<int>(v);
  EXPECT_EQ(whites, 32);
  EXPECT_EQ(out[0][0], 1u);  // 0
  EXPECT_EQ(out[0][1], 0u);  // 48
  EXPECT_EQ(out[1][0], 0u);  // 32: not less than 32
  EXPECT_EQ(out[4][4], 1u);  // 1
  EXPECT_EQ(out[7][7], 1u);  // 21
  Rows low = Dither(9, Rows(9, std::vector<uint32_t>(9, kG36)), kDitherBayer | kDitherSize1);
  EXPECT_EQ(low[2][0], 1u);
  EXPECT_EQ(low[0][2], 0u);
  EXPECT_EQ(low[8][8], 1u);  // the tile repeats: (8, 8) is (0, 0)
}

TEST(DitherImage, RunsAreRepeatableOnBothStores) {
  test::Picture p = test::Pattern(37, 23, 24);
  for (uint32_t mode : {kFloydBi, kDitherBurkes | kDitherBidirectional | kDitherSize1,
                        kDitherStucki | kDitherUnidirectional, uint32_t{kDitherBayer}}) {
    HeldPicture a(p, 24), b(p, 24, true);
    ASSERT_TRUE(b.store.IsHeld() && !b.store.InMemory());
    ASSERT_EQ(DitherImage(a.info, mode, "a"), kOk);
    ASSERT_EQ(DitherImage(b.info, mode, "b"), kOk);
    EXPECT_EQ(a.Result().rows, b.Result().rows) << mode;
  }
}

TEST(DitherImage, StatusTextsAndCancelling) {
  test::Picture p = test::Pattern(10, 6, 24);
  HeldPicture held(p, 24);
  ASSERT_EQ(DitherImage(held.info, kFloydUni, "p.bmp"), kOk);
  EXPECT_EQ(held.host.statuses, (std::vector<std::string>{"Remapping p.bmp", "Dithering p.bmp"}));
  HeldPicture thresholded(p, 24);
  ASSERT_EQ(DitherImage(thresholded.info, kDitherThreshold | 9, "p.bmp"), kOk);
  EXPECT_EQ(thresholded.host.statuses.back(), "Thresholding p.bmp");

  HeldPicture clicked(p, 24);
  clicked.host.abortOnPoll = 9;  // in the second pass
  EXPECT_EQ(DitherImage(clicked.info, kFloydUni, "p.bmp"), kCancelled);
  EXPECT_EQ(clicked.host.beeps, 1u);
  HeldPicture failing(p, 24);
  failing.info.putLine = [](std::span<uint8_t>, int32_t) { return 1; };
  EXPECT_EQ(DitherImage(failing.info, kDitherBayer, "p.bmp"), kCancelled);
}

}  // namespace
}  // namespace pxm
