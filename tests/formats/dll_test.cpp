#include "formats/dll.h"

#include <gtest/gtest.h>

#include "core/error_codes.h"
#include "support/decoded.h"
#include "support/icon_files.h"

namespace pxm {
namespace {

using test::LibraryResource;

struct Image {
  uint32_t width;
  int32_t height;
  uint32_t bits;
  uint32_t Pixel(uint32_t x, int32_t y) const {
    const uint32_t v = 7 * x + 3 * static_cast<uint32_t>(y) + bits;
    return bits > 8 ? v * 0x050301 & 0xFFFFFF : v % (1u << bits);
  }
  std::string Bytes(bool icon) const {
    return test::DibBytes(
        width, height, bits, [this](uint32_t x, int32_t y) { return Pixel(x, y); }, icon);
  }
};

// Two icons in a group (listed in the group's order), one icon of no group, two bitmaps.
const Image kIcon1{16, 16, 4}, kIcon2{32, 32, 8}, kIcon5{8, 8, 1}, kBitmap3{9, 4, 8},
    kBitmap7{5, 3, 24};
const Image* const kPictures[] = {&kIcon2, &kIcon1, &kIcon5, &kBitmap3, &kBitmap7};

std::vector<LibraryResource> Resources() {
  std::vector<LibraryResource> r = {{3, 1, kIcon1.Bytes(true)},
                                    {3, 2, kIcon2.Bytes(true)},
                                    {3, 5, kIcon5.Bytes(true)},
                                    {2, 3, kBitmap3.Bytes(false)},
                                    {2, 7, kBitmap7.Bytes(false)}};
  r.push_back({14, 1, test::IconGroup({2, 1}, r)});
  return r;
}

TEST(DllRead, IconsAndBitmapsOfEveryLayout) {
  test::TempDir dir;
  struct Layout {
    const char* name;
    std::string file;
    const char* kind;
  };
  const Layout layouts[] = {{"l.dll", test::PeLibrary(Resources(), false), "32-bit"},
                            {"l.dll", test::PeLibrary(Resources(), true), "64-bit"},
                            {"l.vbx", test::NeLibrary(Resources()), "16-bit"}};
  for (const Layout& l : layouts) {
    SCOPED_TRACE(l.kind);
    test::WriteFileBytes(dir / l.name, l.file);
    ImageInfo info;
    std::vector<std::string> names;
    ASSERT_EQ(FormatAt(FindFormat(l.name)).listImages(info, dir / l.name, names), kOk);
    EXPECT_EQ(info.imageCount, 5u);
    EXPECT_EQ(test::JoinLines(names),
              "Icon 1 (32 x 32, 8 bits)\nIcon 2 (16 x 16, 4 bits)\nIcon 3 (8 x 8, 1 bit)\n"
              "Bitmap 1 (9 x 4, 8 bits)\nBitmap 2 (5 x 3, 24 bits)");
    for (uint32_t i = 0; i < 5; ++i) {
      SCOPED_TRACE(i);
      const Image& want = *kPictures[i];
      const test::Decoded d = test::DecodeFile(dir / l.name, 0, i);
      ASSERT_EQ(d.readCode, kOk);
      EXPECT_EQ(d.info.description, std::string(l.kind) + " Windows library, 5 images");
      EXPECT_EQ(d.info.imageCount, 5u);
      ASSERT_EQ(std::tuple(d.info.width, d.info.depth, d.info.bits),
                std::tuple(want.width, want.height, want.bits));
      for (int32_t y = 0; y < want.height; ++y)
        for (uint32_t x = 0; x < want.width; ++x) ASSERT_EQ(d.Pixel(x, y), want.Pixel(x, y));
      if (want.bits <= 8) {
        EXPECT_EQ(d.info.palette[1], test::IconPaletteEntry(1));
      }
    }
    EXPECT_EQ(test::DecodeFile(dir / l.name, 0, 5).infoCode, kNoBitmap);
  }
}

TEST(DllRead, FilesThatHoldNoPictures) {
  test::TempDir dir;
  const std::string pe = test::PeLibrary(Resources(), false);
  std::string noPointer = pe;
  noPointer.replace(0x3C, 4, std::string(4, '\0'));
  std::string linear = pe;
  linear.replace(64, 4, std::string("LE\0\0", 4));
  std::string noTable = pe;
  noTable.replace(64 + 24 + 96 + 16, 8, std::string(8, '\0'));
  Image huge{1, 1, 8};
  std::string bomb = huge.Bytes(false);
  bomb.replace(4, 8, test::Le(65535, 4) + test::Le(65535, 4));
  const std::pair<int, std::string> cases[] = {
      {kCorruptedFile, "ZM" + pe.substr(2)},
      {kUnsupportedFormat, noPointer},  // a DOS program
      {kUnsupportedFormat, linear},
      {kNoBitmap, noTable},
      {kNoBitmap, test::PeLibrary({{10, 1, "data"}}, false)},
      {kNoBitmap, test::NeLibrary({{6, 1, "strings"}})},
      {kCorruptedFile, test::NeLibrary({{2, 1, bomb}})},
  };
  for (const auto& [code, bytes] : cases)
    EXPECT_EQ(test::DecodeBytes(dir, "n.dll", bytes).infoCode, code) << bytes.size();
}

}  // namespace
}  // namespace pxm
