#include "formats/cdr.h"

#include <gtest/gtest.h>

#include "config/settings.h"
#include "core/error_codes.h"
#include "support/decoded.h"
#include "support/icon_files.h"

namespace pxm {
namespace {

using test::Le;

std::string Chunk(const std::string& name, const std::string& data) {
  std::string s = name + Le(static_cast<uint32_t>(data.size()), 4) + data;
  return data.size() % 2 ? s + '\0' : s;
}

std::string Riff(const std::string& form, const std::string& chunks) {
  return "RIFF" + Le(static_cast<uint32_t>(4 + chunks.size()), 4) + form + chunks;
}

uint32_t Pixel(uint32_t x, int32_t y) {
  return (5 * x + 11 * static_cast<uint32_t>(y)) % 256;
}

TEST(CdrRead, ThePreviewIsThePicture) {
  test::TempDir dir;
  const std::string dib = test::DibBytes(7, 3, 8, Pixel, false);
  // An odd chunk before the preview is padded; the preview's bitmap follows a word of its own,
  // or comes straight after the chunk's header.
  for (const std::string& disp : {Le(1, 4) + dib, dib}) {
    const std::string file =
        Riff("CDR6", Chunk("vrsn", "\x58\x02\x01") + Chunk("DISP", disp) + Chunk("LIST", "page"));
    const test::Decoded d = test::DecodeBytes(dir, "d.cdr", file);
    ASSERT_EQ(d.readCode, kOk);
    EXPECT_EQ(d.info.description, "Corel Draw preview");
    EXPECT_EQ(std::tuple(d.info.width, d.info.depth, d.info.bits, d.info.imageCount),
              std::tuple(7u, 3, 8u, 1u));
    for (int32_t y = 0; y < 3; ++y)
      for (uint32_t x = 0; x < 7; ++x) ASSERT_EQ(d.Pixel(x, y), Pixel(x, y));
    EXPECT_EQ(d.info.palette[200], test::IconPaletteEntry(200));
    ImageInfo info;
    std::vector<std::string> names;
    ASSERT_EQ(CdrList(info, dir / "d.cdr", names), kOk);
    EXPECT_EQ(names, std::vector<std::string>{"Preview (7 x 3, 8 bits)"});
  }
  // The setting that reads previews, off.
  ScopedSettings settings;
  settings->ReadCDRBitmaps = 0;
  const test::Decoded off = test::DecodeFile(dir / "d.cdr");
  EXPECT_EQ(off.infoCode, kDisabledFeature);
  EXPECT_EQ(off.info.fileName, "d.cdr");
}

TEST(CdrRead, DrawingsWithoutAPreviewAndOtherFiles) {
  test::TempDir dir;
  std::string bomb = test::DibBytes(1, 1, 24, Pixel, false);
  bomb.replace(4, 8, Le(65535, 4) + Le(65535, 4));
  const std::pair<int, std::string> cases[] = {
      {kNoBitmap, Riff("CDR9", Chunk("vrsn", "ab"))},
      {kUnsupportedFormat, Riff("AVI ", Chunk("DISP", test::DibBytes(1, 1, 8, Pixel, false)))},
      {kCorruptedFile, "RIFX" + Riff("CDR5", "").substr(4)},
      {kCorruptedFile, Riff("CDR5", Chunk("DISP", Le(1, 4) + Le(77, 4) + std::string(40, 'x')))},
      {kCorruptedFile, Riff("cdr8", Chunk("DISP", Le(1, 4) + bomb))},
  };
  for (const auto& [code, bytes] : cases)
    EXPECT_EQ(test::DecodeBytes(dir, "c.cdr", bytes).infoCode, code) << bytes;
  EXPECT_EQ(test::DecodeFile(dir / "c.cdr", 0, 1).infoCode, kCorruptedFile);
}

}  // namespace
}  // namespace pxm
