#include "formats/photo_cd.h"

#include <gtest/gtest.h>

#include "config/settings.h"
#include "core/error_codes.h"
#include "support/decoded.h"
#include "support/photo_cd_builder.h"

namespace pxm {
namespace {

using test::PcdGradient;
using test::PhotoCdPack;

// Settings indexes: seven sizes from Base/64, as RGB, 256 colours, 256 greys.
constexpr int32_t kRgb = 0, kColours = 7, kGreys = 14;
constexpr int32_t kBase64 = 0, kBase16 = 1, kBase4 = 2, kBase = 3;

test::Decoded Decode(const test::TempDir& dir, const std::string& file, int32_t setting) {
  ScopedSettings settings;
  settings->PhotoCDResolution = setting;
  return test::DecodeBytes(dir, "p.pcd", file);
}

Rgb Colour(const test::Decoded& d, uint32_t x, int32_t y) {
  const uint32_t v = d.Pixel(x, y);
  if (d.info.bits == 24) return Rgb{uint8_t(v >> 16), uint8_t(v >> 8), uint8_t(v)};
  return d.info.palette[v];
}

TEST(PhotoCd, YccBecomesRgbByThePublishedEquations) {
  struct Case {
    uint8_t l, c1, c2;
    Rgb rgb;
  };
  const Case cases[] = {
      {0, 156, 137, {0, 0, 0}},
      {182, 156, 137, {247, 247, 247}},  // reference white is 1.3584 × 182
      {250, 156, 137, {255, 255, 255}},  // highlights past 255 are held there
      {100, 200, 100, {68, 151, 233}},
      {120, 60, 220, {255, 127, 0}},
  };
  for (const Case& c : cases) EXPECT_EQ(PhotoYccToRgb(c.l, c.c1, c.c2), c.rgb) << int(c.l);
}

TEST(PhotoCd, EverySizeAndKindReadsItsStoredSamples) {
  struct Case {
    int32_t setting;
    uint32_t width;
    int32_t depth;
    uint32_t bits;
  };
  const Case cases[] = {{kRgb + kBase16, 192, 128, 24}, {kRgb + kBase4, 384, 256, 24},
                        {kRgb + kBase, 768, 512, 24},   {kGreys + kBase4, 384, 256, 8},
                        {kRgb + kBase64, 96, 64, 24},   {kGreys + kBase64, 96, 64, 8}};
  test::TempDir dir;
  const std::string file = PhotoCdPack(PcdGradient);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.setting);
    const test::Decoded d = Decode(dir, file, c.setting);
    ASSERT_EQ(d.readCode, kOk);
    ASSERT_EQ(d.info.width, c.width);
    ASSERT_EQ(d.info.depth, c.depth);
    ASSERT_EQ(d.info.bits, c.bits);
    const bool halved = c.width == 96;
    const uint32_t w = halved ? 192 : c.width;
    for (int32_t y = 0; y < c.depth; ++y)
      for (uint32_t x = 0; x < c.width; ++x) {
        uint32_t sum = 0;
        for (uint32_t k = 0; k < (halved ? 4u : 1u); ++k)
          sum += PcdGradient(0, halved ? 2 * x + k % 2 : x, halved ? 2 * y + k / 2 : y, w);
        const auto l = uint8_t(halved ? (sum + 2) / 4 : sum);
        const uint32_t cx = halved ? x : x / 2, cy = halved ? y : y / 2;
        const Rgb want = c.bits == 8 ? PhotoYccToRgb(l, 156, 137)
                                     : PhotoYccToRgb(l, PcdGradient(1, cx, cy, w / 2),
                                                     PcdGradient(2, cx, cy, w / 2));
        ASSERT_EQ(Colour(d, x, y), want) << x << "," << y;
      }
  }
  EXPECT_EQ(Decode(dir, file, kGreys + kBase).info.description, "Photo CD Base, 256 greys");
}

TEST(PhotoCd, TheAttributeByteTurnsThePicture) {
  // A corner marked in each stored picture shows where the turn takes it.
  auto marked = [](int plane, uint32_t x, uint32_t y, uint32_t width) -> uint8_t {
    if (plane) return plane == 1 ? 156 : 137;
    const uint32_t height = width * 2 / 3;
    if (x == 0 && y == 0) return 10;                   // top left
    if (x == width - 1 && y == 0) return 40;           // top right
    if (x == width - 1 && y == height - 1) return 70;  // bottom right
    if (x == 0 && y == height - 1) return 100;         // bottom left
    return 180;
  };
  struct Case {
    uint32_t turn;
    uint32_t width;
    uint8_t topLeft, topRight;
  };
  const Case cases[] = {{0, 192, 10, 40}, {1, 128, 40, 70}, {2, 192, 70, 100}, {3, 128, 100, 10}};
  test::TempDir dir;
  for (const Case& c : cases) {
    const test::Decoded d = Decode(dir, PhotoCdPack(marked, c.turn), kGreys + kBase16);
    ASSERT_EQ(d.readCode, kOk);
    EXPECT_EQ(d.info.width, c.width) << c.turn;
    EXPECT_EQ(d.Pixel(0, 0), PhotoYccToRgb(c.topLeft, 156, 137).red) << c.turn;
    EXPECT_EQ(d.Pixel(c.width - 1, 0), PhotoYccToRgb(c.topRight, 156, 137).red) << c.turn;
  }
}

TEST(PhotoCd, TwoHundredFiftySixColoursKeepAFewColoursExactly) {
  // Four blocks of one colour each: the median cut keeps them all.
  auto blocks = [](int plane, uint32_t x, uint32_t y, uint32_t width) -> uint8_t {
    const uint32_t block = (x * 2 / width) + 2 * (y * 3 / width);
    const uint8_t values[3][4] = {{40, 90, 150, 200}, {120, 156, 200, 150}, {137, 180, 100, 130}};
    return values[plane][block];
  };
  test::TempDir dir;
  const test::Decoded d = Decode(dir, PhotoCdPack(blocks), kColours + kBase4);
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.bits, 8u);
  for (int32_t y = 0; y < d.info.depth; y += 5)
    for (uint32_t x = 0; x < d.info.width; x += 5)
      ASSERT_EQ(Colour(d, x, y), PhotoYccToRgb(blocks(0, x, y, 384), blocks(1, x / 2, y / 2, 192),
                                               blocks(2, x / 2, y / 2, 192)))
          << x << "," << y;
}

TEST(PhotoCd, RefusalsAndDamagedPacks) {
  test::TempDir dir;
  const std::string good = PhotoCdPack(PcdGradient);
  struct Case {
    const char* what;
    std::string file;
    int32_t setting;
    int infoCode;
  };
  std::string unsigned_ = good;
  unsigned_[0x801] = 'X';
  const Case cases[] = {
      {"larger sizes are coded differences", good, kRgb + 4, kUnsupportedFunction},
      {"64Base", good, kGreys + 6, kUnsupportedFunction},
      {"no signature", unsigned_, kRgb + kBase16, kCorruptedFile},
      {"overview pack", "PCD_OPA" + good.substr(7), kRgb + kBase16, kUnsupportedFormat},
      {"a 200-byte file", good.substr(0, 200), kRgb + kBase16, kCorruptedFile},
      {"cut inside Base", good.substr(0, good.size() - 1), kRgb + kBase, kCorruptedFile},
      {"cut inside Base/16", good.substr(0, 5 * 2048), kGreys + kBase64, kCorruptedFile},
      {"Base/4 whole, Base cut", good.substr(0, 95 * 2048), kColours + kBase4, kOk},
  };
  for (const Case& c : cases)
    EXPECT_EQ(Decode(dir, c.file, c.setting).infoCode, c.infoCode) << c.what;

  // Thumbnails are made from Base/16 whatever the size, 4Base included.
  ScopedSettings settings;
  settings->PhotoCDResolution = kRgb + 4;
  test::WriteFileBytes(dir / "c.pcd", good);
  ImageInfo info;
  ASSERT_EQ(PcdInfo(info, dir / "c.pcd", 1), kOk);
  EXPECT_EQ(std::tuple(info.width, info.fullWidth, info.fullDepth), std::tuple(192u, 1536u, 1024));
  // A pack cut after info was taken fails on reading.
  settings->PhotoCDResolution = kRgb + kBase;
  ASSERT_EQ(PcdInfo(info, dir / "c.pcd", 0), kOk);
  test::WriteFileBytes(dir / "c.pcd", good.substr(0, good.size() - 4096));
  info.putLine = [](std::span<uint8_t>, int32_t) { return 0; };
  EXPECT_EQ(PcdRead(info, dir / "c.pcd"), kReadError);
}

}  // namespace
}  // namespace pxm
