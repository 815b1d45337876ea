#include "process/effects.h"

#include <gtest/gtest.h>

#include "core/error_codes.h"
#include "process/held_picture.h"

namespace pxm {
namespace {

using test::FromPixels;
using test::HeldPicture;
using test::PixelsOf;
using Rows = std::vector<std::vector<uint32_t>>;

uint32_t Grey(uint32_t v) { return v * 0x010101; }
uint32_t RedOnly(uint32_t v) { return v << 16; }

// Runs an effect on a 24-bit picture of the given rows and answers its pixels.
Rows Apply(uint32_t width, const Rows& rows, uint32_t effects) {
  HeldPicture held(FromPixels(width, 24, rows), 24);
  EXPECT_EQ(ApplyEffect(held.info, effects, "e.bmp"), kOk);
  return PixelsOf(held.Result());
}

Rows Map(const Rows& rows, uint32_t (*f)(uint32_t)) {
  Rows out = rows;
  for (auto& r : out)
    for (auto& v : r) v = f(v);
  return out;
}

TEST(Effects, SharpenUsesTheChangedLeftNeighbour) {
  // [60, 51, 60]: 2 × 60 - 51 = 69; then (51 - 69) / 2 + (51 - 60) / 2 = -9 - 4 (toward zero)
  // gives 38; the last pixel stays. [100, 50, 100, 200]: 150, 50 - 50 - 25 -> 0, 100 + 50 - 50.
  EXPECT_EQ(Apply(3, Map({{60, 51, 60}}, Grey), kEffectSharpen), Map({{69, 38, 60}}, Grey));
  EXPECT_EQ(Apply(4, Map({{100, 50, 100, 200}}, Grey), kEffectSharpen),
            Map({{150, 0, 100, 200}}, Grey));
  // Channels are sharpened each on its own; a flat row and a single pixel do not change.
  EXPECT_EQ(Apply(2, {{0x0A6400, 0x106400}}, kEffectSharpen), (Rows{{0x046400, 0x106400}}));
  EXPECT_EQ(Apply(5, Rows(2, std::vector<uint32_t>(5, 0x3C7DF0)), kEffectSharpen),
            Rows(2, std::vector<uint32_t>(5, 0x3C7DF0)));
  EXPECT_EQ(Apply(1, {{0x123456}, {0xFEDCBA}}, kEffectSharpen), (Rows{{0x123456}, {0xFEDCBA}}));
}

TEST(Effects, SoftenAtTheEnds) {
  // (90 + 15) × 2 / 3 = 70; (30 + 35 + 30) / 2 = 47; (60 + 23) × 2 / 3 = 55.
  EXPECT_EQ(Apply(3, Map({{90, 30, 60}}, Grey), kEffectSoften), Map({{70, 47, 55}}, Grey));
  EXPECT_EQ(Apply(1, {{0x123456}}, kEffectSoften), (Rows{{0x123456}}));
}

TEST(Effects, PosterizeAveragesOnlyThePixelsInside) {
  const Rows picture = {{10, 20, 30, 40, 50}, {11, 21, 31, 41, 51}, {100, 200, 7, 9, 255}};
  // Blocks of 2: (10+20+11+21)/4 = 15, (30+40+31+41)/4 = 35, (50+51)/2 = 50; the last band has
  // one row: 150, 8, 255.
  EXPECT_EQ(Apply(5, Map(picture, RedOnly), kEffectPosterize | kBlock2),
            Map({{15, 15, 35, 35, 50}, {15, 15, 35, 35, 50}, {150, 150, 8, 8, 255}}, RedOnly));
  // One 16 x 16 block covers it all: 876 / 15 = 58.
  EXPECT_EQ(Apply(5, Map(picture, RedOnly), kEffectPosterize | kBlock16),
            Map(Rows(3, std::vector<uint32_t>(5, 58)), RedOnly));
}

TEST(Effects, GreyScaleLevelsAndPalette) {
  // Luminances: white 254, red 76, green 150, black 0; shifted right by 4.
  HeldPicture held(FromPixels(4, 24, {{0xFFFFFF, 0xFF0000, 0x00FF00, 0}}), 24);
  ASSERT_EQ(ApplyEffect(held.info, EffectsWord(kEffectGrey, kPaletteQuantized16), "g.bmp"), kOk);
  EXPECT_EQ(held.info.bits, 4u);
  EXPECT_EQ(PixelsOf(held.Result()), (Rows{{15, 4, 9, 0}}));
  EXPECT_EQ(held.info.palette[1], (Rgb{16, 16, 16}));
  EXPECT_EQ(held.info.palette[15], (Rgb{240, 240, 240}));
  EXPECT_EQ(held.host.statuses, std::vector<std::string>{"Remapping g.bmp"});
  // The orthogonal choice's depth is 24 in the table: 256 levels in 8 bits.
  HeldPicture full(FromPixels(2, 24, {{0xFFFFFF, 0x00FF00}}), 24);
  ASSERT_EQ(ApplyEffect(full.info, EffectsWord(kEffectGrey, kPaletteOrthogonal), "g"), kOk);
  EXPECT_EQ(full.info.bits, 8u);
  EXPECT_EQ(PixelsOf(full.Result()), (Rows{{254, 150}}));
  EXPECT_EQ(full.info.palette[200], (Rgb{200, 200, 200}));
}

TEST(Effects, PalettePicturesGetIndexesOfTheirOwnPalette) {
  // A 2-bit picture held as RGB. Sharpened: 96 stays, 96 + 0 + (96 - 255) / 2 = 17, white stays;
  // 17's map cell (16,16,16) is nearest black, 96's nearest entry 2.
  test::Picture p = FromPixels(3, 24, {{Grey(96), Grey(96), Grey(255)}});
  p.palette = Palette{};
  p.palette[1] = Rgb{255, 255, 255};
  p.palette[2] = Rgb{96, 96, 96};
  HeldPicture held(p, 2);
  ASSERT_EQ(ApplyEffect(held.info, kEffectSharpen, "s.bmp"), kOk);
  EXPECT_EQ(held.info.bits, 2u);
  EXPECT_EQ(held.info.palette, p.palette);
  EXPECT_EQ(PixelsOf(held.Result()), (Rows{{2, 0, 1}}));
  EXPECT_EQ(held.host.statuses,
            (std::vector<std::string>{"Remapping s.bmp", "Sharpening s.bmp"}));
  // Promotion keeps the RGB rows and makes the record 24-bit.
  HeldPicture promoted(p, 8);
  ASSERT_EQ(ApplyEffect(promoted.info, kEffectPromote, "p.bmp"), kOk);
  EXPECT_EQ(promoted.info.bits, 24u);
  EXPECT_EQ(promoted.Result().rows, p.rows);
}

TEST(Effects, SmudgeTakesColoursFromTheNeighbourhoodBelowAndRight) {
  test::Picture p = test::Pattern(17, 9, 24, 3);
  HeldPicture held(p, 24);
  ASSERT_EQ(ApplyEffect(held.info, kEffectSmudge, "m.bmp"), kOk);
  test::Picture out = held.Result();
  int moved = 0;
  for (int32_t y = 0; y < p.depth; ++y)
    for (uint32_t x = 0; x < p.width; ++x) {
      bool found = false;
      for (uint32_t dx = 0; dx < 3 && x + dx < p.width; ++dx)
        for (int32_t dy = 0; dy < 3 && y + dy < p.depth; ++dy)
          found = found || out.Pixel(x, y) == p.Pixel(x + dx, y + dy);
      EXPECT_TRUE(found) << x << "," << y;
      moved += out.Pixel(x, y) != p.Pixel(x, y);
    }
  EXPECT_GT(moved, 0);
}

TEST(Effects, RepeatableOnBothStoresAndRefusals) {
  test::Picture p = test::Pattern(21, 19, 24, 7);
  for (uint32_t word : {uint32_t{kEffectSharpen}, uint32_t{kEffectSoften}, kEffectPosterize | kBlock4,
                        kEffectPosterize | kBlock8, EffectsWord(kEffectGrey, kPaletteQuantized8)}) {
    HeldPicture a(p, 24), b(p, 24, true);
    ASSERT_EQ(ApplyEffect(a.info, word, "a"), kOk);
    ASSERT_EQ(ApplyEffect(b.info, word, "b"), kOk);
    EXPECT_EQ(a.Result().rows, b.Result().rows) << word;
  }
  HeldPicture none(p, 24);
  EXPECT_EQ(ApplyEffect(none.info, kBlock2, "n"), kUnsupportedFunction);
  EXPECT_EQ(ApplyEffect(none.info, kEffectGrey, "n"), kUnsupportedFunction);  // no palette choice
  HeldPicture clicked(p, 24);
  clicked.host.abortOnPoll = 4;
  EXPECT_EQ(ApplyEffect(clicked.info, kEffectSoften, "c"), kCancelled);
}

}  // namespace
}  // namespace pxm
