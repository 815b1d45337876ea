#include "formats/ico.h"

#include <gtest/gtest.h>

#include <functional>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "support/decoded.h"
#include "support/icon_files.h"

namespace pxm {
namespace {

using test::Bytes;
using test::IconBitmap;
using test::IconFile;
using test::Le;
using test::Raw;

// A value per pixel that differs across the picture at every depth.
uint32_t Value(uint32_t x, int32_t y, uint32_t bits) {
  const uint32_t v = 3 * x + 5 * static_cast<uint32_t>(y) + 1;
  return bits >= 16 ? v * 0x0D0B07 & 0xFFFFFF : v % (1u << bits);
}

TEST(IcoRead, EveryKindOfImage) {
  test::TempDir dir;
  for (uint32_t bits : {1u, 4u, 8u, 16u, 24u, 32u}) {
    SCOPED_TRACE(testing::Message() << bits << " bits");
    const auto pixel = [bits](uint32_t x, int32_t y) { return Value(x, y, bits); };
    const test::Decoded d =
        test::DecodeBytes(dir, "i.ico", IconFile(1, {IconBitmap(5, 3, bits, pixel)}));
    ASSERT_EQ(d.readCode, kOk);
    EXPECT_EQ(d.info.bits, bits <= 8 ? bits : 24);
    EXPECT_EQ(d.info.description, "Windows icon, 1 image");
    for (int32_t y = 0; y < 3; ++y)
      for (uint32_t x = 0; x < 5; ++x) {
        uint32_t want = pixel(x, y);
        // Five bits a channel, widened so that 31 is 255.
        if (bits == 16)
          for (int s : {0, 8, 16}) {
            const uint32_t c = (want >> (s + 3)) & 31;
            want = (want & ~(0xFFu << s)) | (((c << 3) | (c >> 2)) << s);
          }
        ASSERT_EQ(d.Pixel(x, y), want) << x << "," << y;
      }
    if (bits <= 8) {
      EXPECT_EQ(d.info.palette[1], test::IconPaletteEntry(1));
    }
  }
  // A PNG image, as Pixmill's PNG writer makes it; its colours come from its own table.
  const test::Picture p = test::Pattern(6, 4, 8);
  ASSERT_EQ(test::WritePicture(p, dir / "e.png"), kOk);
  const test::Decoded d =
      test::DecodeBytes(dir, "p.ico", IconFile(1, {test::ReadFileBytes(dir / "e.png")}));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.bits, 8u);
  EXPECT_EQ(d.info.palette[3], p.palette[3]);
  for (int32_t y = 0; y < 4; ++y)
    for (uint32_t x = 0; x < 6; ++x) ASSERT_EQ(d.Pixel(x, y), p.Pixel(x, y));
}

TEST(IcoRead, TheImageWithTheMostPixelsAndTheDeepestOfThoseIsThePicture) {
  test::TempDir dir;
  const auto fill = [](uint32_t v) { return [v](uint32_t, int32_t) { return v; }; };
  const std::string small = IconBitmap(16, 16, 24, fill(0x102030));
  const std::string grey = IconBitmap(32, 32, 4, fill(2));
  const std::string deep = IconBitmap(32, 32, 8, fill(7));
  const std::string other = IconBitmap(32, 32, 8, fill(9));
  // The first entry points past the end of the file: it is passed over.
  std::string file = IconFile(1, {small, grey, deep, other, small});
  file.replace(6 + 12, 4, Le(1u << 30, 4));
  const test::Decoded d = test::DecodeBytes(dir, "c.ico", file);
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.description, "Windows icon, 5 images");
  EXPECT_EQ(std::pair(d.info.width, d.info.bits), std::pair(32u, 8u));
  EXPECT_EQ(d.Pixel(31, 31), 7u);
  // Cursors share the layout.
  EXPECT_EQ(test::DecodeBytes(dir, "u.ico", IconFile(2, {small})).info.description,
            "Windows cursor, 1 image");
}

TEST(IcoRead, DamagedAndUnreadableFiles) {
  test::TempDir dir;
  const auto zero = [](uint32_t, int32_t) { return 0u; };
  const std::string good = IconFile(1, {IconBitmap(4, 4, 4, zero)});
  std::string twoBit = IconBitmap(4, 4, 4, zero);
  twoBit[14] = 2;
  std::string pngBomb = Raw({137, 80, 78, 71, 13, 10, 26, 10}) + Le(13, 4) + "IHDR";
  pngBomb += Raw({0, 0, 255, 255, 0, 0, 255, 255, 8, 6, 0, 0, 0}) + std::string(150, '\0');
  const std::pair<int, std::string> cases[] = {
      {kNoBitmap, Raw({0, 0, 1, 0, 0, 0})},
      {kCorruptedFile, Raw({0, 0, 3, 0, 1, 0}) + good.substr(6)},
      {kCorruptedFile, Raw({1, 0}) + good.substr(2)},
      {kCorruptedFile, good.substr(0, 20)},
      {kCorruptedFile, good.substr(0, good.size() - 40)},  // rows cut short
      {kUnsupportedFormat, IconFile(1, {twoBit})},
      // 65535 x 65535 pixels declared in 200 bytes, as a bitmap and as a PNG image.
      {kCorruptedFile,
       IconFile(1, {IconBitmap(1, 1, 1, zero).replace(4, 8, Le(65535, 4) + Le(131070, 4))})},
      {kCorruptedFile, IconFile(1, {pngBomb})},
  };
  for (const auto& [code, bytes] : cases)
    EXPECT_EQ(test::DecodeBytes(dir, "d.ico", bytes).infoCode, code) << bytes.size();
}

TEST(IcoWrite, OneImageWithAnOpaqueMask) {
  test::TempDir dir;
  for (auto [bits, readBits] : {std::pair{1u, 1u}, {2u, 4u}, {4u, 4u}, {6u, 8u}, {8u, 8u}})
    for (auto [w, h] : {std::pair{1u, 1}, {7u, 5}, {256u, 256}}) {
      SCOPED_TRACE(testing::Message() << bits << " bits, " << w << " x " << h);
      test::Picture p = test::Pattern(w, h, bits);
      if (bits == 1) p.palette[0] = Rgb{0, 0, 0}, p.palette[1] = Rgb{255, 255, 255};
      ASSERT_TRUE(test::RoundTrips(p, dir / "w.ico", readBits));
    }
  ASSERT_EQ(test::WritePicture(test::Pattern(256, 3, 4), dir / "e.ico"), kOk);
  const std::string f = test::ReadFileBytes(dir / "e.ico");
  // The directory: one icon 256 wide (written 0), 3 high, 16 colours, 4 bits at offset 22.
  const uint32_t rows = 128 * 3, mask = 32 * 3;
  EXPECT_EQ(f.substr(0, 22), Raw({0, 0, 1, 0, 1, 0, 0, 3, 16, 0, 1, 0, 4, 0}) +
                                 Le(40 + 64 + rows + mask, 4) + Le(22, 4));
  EXPECT_EQ(f.substr(22, 24), Le(40, 4) + Le(256, 4) + Le(6, 4) + Le(1, 2) + Le(4, 2) + Le(0, 4) +
                                  Le(rows + mask, 4));
  EXPECT_EQ(f.size(), 22u + 40 + 64 + rows + mask);
  EXPECT_EQ(f.substr(f.size() - mask), std::string(mask, '\0'));
  for (const test::Picture& refused : {test::Pattern(257, 2, 8), test::Pattern(2, 2, 24)})
    EXPECT_EQ(test::WritePicture(refused, dir / "r.ico"), kUnsuitableImage);
}

}  // namespace
}  // namespace pxm
