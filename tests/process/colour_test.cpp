#include <gtest/gtest.h>

#include <set>

#include "core/error_codes.h"
#include "process/colour_map.h"
#include "process/colour_reduce.h"
#include "process/effects_word.h"
#include "process/held_picture.h"
#include "process/palette_choice.h"
#include "process/quantize.h"

namespace pxm {
namespace {

using test::FromPixels;
using test::HeldPicture;
using test::PixelsOf;
using Rows = std::vector<std::vector<uint32_t>>;

constexpr uint32_t kRed = 0xFF0000, kBlue = 0x0000FF, kWhite = 0xFFFFFF, kBlack = 0;

Rgb C(uint32_t v) {
  return Rgb{static_cast<uint8_t>(v >> 16), static_cast<uint8_t>(v >> 8), static_cast<uint8_t>(v)};
}

// Quantizes a one-row picture of the given colours.
int Quantize(const std::vector<uint32_t>& colours, int& count, Palette& palette) {
  test::Picture p = FromPixels(static_cast<uint32_t>(colours.size()), 24, {colours});
  LineSource rows = [&p](std::span<uint8_t> row, int32_t y) {
    std::copy(p.rows[static_cast<size_t>(y)].begin(), p.rows[static_cast<size_t>(y)].end(),
              row.begin());
    return 0;
  };
  return QuantizeImage(p.width, p.depth, count, palette, rows);
}

Rows Reduce(uint32_t width, const Rows& rows, uint32_t choice, uint32_t method,
            Palette* palette = nullptr) {
  HeldPicture held(FromPixels(width, 24, rows), 24);
  EXPECT_EQ(ReduceColours(held.info, EffectsWord(kEffectReduce, choice, method), "r.bmp"), kOk);
  EXPECT_EQ(held.info.bits, PaletteChoiceBits(choice));
  if (palette) *palette = held.info.palette;
  return PixelsOf(held.Result());
}

TEST(ColourMap, NearestColourAndTheLuminanceSort) {
  Palette p{};
  p[1] = p[2] = Rgb{10, 10, 10};
  p[3] = Rgb{255, 0, 0};
  EXPECT_EQ(NearestColour(9, 9, 9, p, 4), 1);  // the first of two equal entries
  EXPECT_EQ(NearestColour(200, 0, 0, p, 4), 3);
  EXPECT_EQ(NearestColour(200, 0, 0, p, 3), 1);  // entries past the count are not looked at
  // Luminances: white 254, (0,0,255) 28, (28,28,28) 8 + 16 + 3 = 27, (0,48,0) 28.
  Palette s{};
  s[0] = Rgb{255, 255, 255};
  s[1] = Rgb{0, 0, 255};
  s[2] = Rgb{28, 28, 28};
  s[3] = Rgb{0, 48, 0};
  Palette partial = s;
  SortPaletteByLuminance(s, 4);
  EXPECT_EQ((std::vector<Rgb>{s[0], s[1], s[2], s[3]}),
            (std::vector<Rgb>{{28, 28, 28}, {0, 0, 255}, {0, 48, 0}, {255, 255, 255}}));
  SortPaletteByLuminance(partial, 3);
  EXPECT_EQ(partial[0], (Rgb{28, 28, 28}));
  EXPECT_EQ(partial[3], (Rgb{0, 48, 0}));
}

TEST(Quantize, ExactColoursUnlessTheListFillsBeforeTheLastPixel) {
  Palette p{};
  int count = 4;
  ASSERT_EQ(Quantize({0x102030, 0x405060, 0x102030, 0x708090}, count, p), kOk);
  EXPECT_EQ(count, 3);
  EXPECT_EQ((std::vector<Rgb>{p[0], p[1], p[2], p[3]}),
            (std::vector<Rgb>{C(0x102030), C(0x405060), C(0x708090), C(0)}));
  // The fourth colour arrives with the last pixel: still exact.
  count = 4;
  ASSERT_EQ(Quantize({0x102030, 0x405060, 0x708090, 0xA0B0C0}, count, p), kOk);
  EXPECT_EQ(count, 4);
  EXPECT_EQ(p[3], C(0xA0B0C0));
  // One more pixel, even of a known colour, finds the list full: median cut, whose colours are
  // cell coordinates times 16.
  count = 4;
  ASSERT_EQ(Quantize({0x102030, 0x405060, 0x708090, 0xA0B0C0, 0x102030}, count, p), kOk);
  EXPECT_EQ(count, 4);
  EXPECT_EQ(std::set<uint32_t>({0x102030, 0x405060, 0x708090, 0xA0B0C0}),
            (std::set<uint32_t>{p[0].red * 65536u + p[0].green * 256u + p[0].blue,
                                p[1].red * 65536u + p[1].green * 256u + p[1].blue,
                                p[2].red * 65536u + p[2].green * 256u + p[2].blue,
                                p[3].red * 65536u + p[3].green * 256u + p[3].blue}));
}

TEST(Quantize, OneCellMakesOneBoxAndTheRestBlack) {
  Palette p{};
  p[1] = Rgb{1, 2, 3};
  int count = 4;
  ASSERT_EQ(Quantize({0x102030, 0x112131, 0x122232, 0x132333, 0x142434}, count, p), kOk);
  EXPECT_EQ(count, 1);
  EXPECT_EQ((std::vector<Rgb>{p[0], p[1], p[2], p[3]}),
            (std::vector<Rgb>{{16, 32, 48}, {}, {}, {}}));
}

TEST(Quantize, TiesGoToTheEarlierBoxAndRedBeforeGreen) {
  // Cells (0,0,0), (0,15,0), (15,0,0), (15,0,15), one pixel each. All extents are 255: box 0
  // splits on red into {P, Q} and {R, S}. Then box 0 (red extent 0, green 255) ties with box 1
  // (green and blue 255) and, being earlier, splits on green. Box 1's colour is the plain mean
  // of R and S.
  Palette p{};
  int count = 3;
  ASSERT_EQ(Quantize({0x000000, 0x00F000, 0xF00000, 0xF000F0}, count, p), kOk);
  EXPECT_EQ(count, 3);
  EXPECT_EQ((std::vector<Rgb>{p[0], p[1], p[2]}),
            (std::vector<Rgb>{{0, 0, 0}, {240, 0, 120}, {0, 240, 0}}));
}

TEST(ColourReduction, ExactColoursSortedAfterTheBlackFillers) {
  // Luminances: (10,10,200) 30, (200,10,10) 66, (255,255,0) 226; the fourth entry is black.
  Palette p;
  Rows out = Reduce(3, {{0xC80A0A, 0x0A0AC8, 0xFFFF00}}, kPaletteQuantized4, kMapRemap, &p);
  EXPECT_EQ(out, (Rows{{2, 1, 3}}));
  EXPECT_EQ((std::vector<Rgb>{p[0], p[1], p[2], p[3]}),
            (std::vector<Rgb>{{0, 0, 0}, {10, 10, 200}, {200, 10, 10}, {255, 255, 0}}));
}

TEST(ColourReduction, PlusSixteenNeverUsesTheFixedEntries) {
  test::Picture pattern = test::Pattern(64, 20, 24);
  HeldPicture held(pattern, 24);
  ASSERT_EQ(ReduceColours(held.info, EffectsWord(kEffectReduce, kPaletteQuantized240, kMapFloyd),
                          "p.bmp"),
            kOk);
  EXPECT_EQ(held.host.statuses, (std::vector<std::string>{"Quantizing p.bmp", "Remapping p.bmp",
                                                          "Dithering p.bmp"}));
  uint32_t highest = 0;
  for (const auto& row : PixelsOf(held.Result()))
    for (uint32_t v : row) highest = std::max(highest, v);
  EXPECT_LT(highest, 240u);
  for (size_t i = 0; i < 16; ++i) EXPECT_EQ(held.info.palette[240 + i], kFixed16Colours[i]);
  // The fixed table itself, as the Windows choice uses it.
  EXPECT_EQ(kFixed16Colours[8], (Rgb{192, 192, 192}));
  EXPECT_EQ(kFixed16Colours[11], (Rgb{255, 255, 0}));
}

TEST(ColourReduction, OrthogonalIndexesComeFromTheTopBits) {
  for (uint32_t method : {kMapRemap, kMapFloyd}) {
    Palette p;
    EXPECT_EQ(Reduce(4, {{kBlack, kWhite, kRed, 0x40A0C0}}, kPaletteOrthogonal, method, &p),
              (Rows{{0, 255, 224, 64 + 20 + 3}}))
        << method;
    EXPECT_EQ(p[255], (Rgb{255, 255, 255}));
  }
  // Deep palettes shift the error arithmetically: red 224 maps to 255 (e -31) and 7 × -31 >> 4 =
  // -14 takes 205 down to 191, below the 192 boundary (truncation would stop at 192).
  EXPECT_EQ(Reduce(2, {{0xE00000, 0xCD0000}}, kPaletteOrthogonal, kMapFloyd), (Rows{{224, 160}}));
}

TEST(ColourReduction, ShallowRightToLeftRowsLeaveColumnZero) {
  // Fixed 16 colours, exact palette colours everywhere, so no error travels. Even rows run right
  // to left and stop at column 1: row 0's column 0 keeps the cleared output row, row 2's keeps
  // row 1's red.
  const Rows picture = {{kBlue, kWhite, kWhite}, {kRed, kWhite, kWhite}, {kBlue, kWhite, kWhite}};
  EXPECT_EQ(Reduce(3, picture, kPaletteFixed16, kMapFloyd),
            (Rows{{0, 15, 15}, {9, 15, 15}, {9, 15, 15}}));
  EXPECT_EQ(Reduce(3, picture, kPaletteFixed16, kMapStucki),
            (Rows{{0, 15, 15}, {9, 15, 15}, {9, 15, 15}}));
  EXPECT_EQ(Reduce(3, picture, kPaletteFixed16, kMapRemap),
            (Rows{{12, 15, 15}, {9, 15, 15}, {12, 15, 15}}));
}

TEST(ColourReduction, ShallowExcessKeepsTheHue) {
  // Row 1 runs left to right. (191,0,0) maps to (128,0,0): e = (63,0,0), 7 × 63 / 16 = 27 ahead,
  // making (277,140,0); the excess 22 comes off every channel: (255,118,0), whose map cell
  // (240,112,0) is nearest red (9). Clamping red alone would give cell (240,128,0): (128,128,0).
  EXPECT_EQ(Reduce(2, {{kBlack, kBlack}, {0xBF0000, 0xFA8C00}}, kPaletteFixed16, kMapFloyd),
            (Rows{{0, 0}, {1, 9}}));
}

TEST(ColourReduction, BayerFixedOrdersEachChannelByTheMatrix) {
  Palette p;
  Rows grey = Reduce(8, Rows(8, std::vector<uint32_t>(8, 0x808080)), kPaletteBayer8, kMapRemap, &p);
  EXPECT_EQ(p[0], (Rgb{0, 0, 0}));
  EXPECT_EQ(p[1], (Rgb{255, 0, 0}));
  EXPECT_EQ(p[6], (Rgb{0, 255, 255}));
  EXPECT_EQ(p[7], (Rgb{255, 255, 255}));
  int lit = 0;
  for (const auto& row : grey)
    for (uint32_t v : row) {
      EXPECT_TRUE(v == 0 || v == 7);
      lit += v == 7;
    }
  EXPECT_EQ(lit, 32);  // half the cells at mid grey
  EXPECT_EQ(grey[0][0], 7u);
  EXPECT_EQ(grey[0][1], 0u);  // matrix 48
  EXPECT_EQ(Reduce(9, Rows(3, std::vector<uint32_t>(9, kWhite)), kPaletteBayer8, kMapRemap),
            Rows(3, std::vector<uint32_t>(9, 7)));
  EXPECT_EQ(Reduce(3, {{kRed, kBlack, kBlue}}, kPaletteBayer8, kMapRemap), (Rows{{1, 0, 4}}));
}

TEST(ColourReduction, RepeatableAndRefusals) {
  test::Picture p = test::Pattern(23, 11, 24, 5);
  for (uint32_t choice : {kPaletteQuantized256, kPaletteQuantized16, kPaletteQuantized4}) {
    for (uint32_t method : {kMapRemap, kMapFloyd, kMapBurkes, kMapStucki}) {
      HeldPicture a(p, 24), b(p, 24, true);
      const uint32_t word = EffectsWord(kEffectReduce, choice, method);
      ASSERT_EQ(ReduceColours(a.info, word, "a"), kOk);
      ASSERT_EQ(ReduceColours(b.info, word, "b"), kOk);
      EXPECT_EQ(a.Result().rows, b.Result().rows);
      EXPECT_EQ(a.info.palette, b.info.palette);
    }
  }
  HeldPicture none(p, 24);
  EXPECT_EQ(ReduceColours(none.info, EffectsWord(kEffectReduce, 0, kMapRemap), "n"),
            kUnsupportedFunction);
  HeldPicture clicked(p, 24);
  clicked.host.abortOnPoll = 3;
  EXPECT_EQ(ReduceColours(clicked.info, EffectsWord(kEffectReduce, 2, 1), "c"), kCancelled);
}

}  // namespace
}  // namespace pxm
