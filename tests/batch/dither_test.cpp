#include "batch/dither.h"

#include <gtest/gtest.h>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/scripted_host.h"
#include "formats/format_table.h"
#include "process/dither.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::Picture;

class DitherCommand : public ::testing::Test {
 protected:
  void SetUp() override {
    settings->DitherContrast = 0;
    settings->DitherBrightness = 0;
  }
  std::string Write(const std::string& name, const Picture& p) {
    EXPECT_EQ(test::WritePicture(p, dir / name), 0);
    return dir / name;
  }

  ScopedSettings settings;
  test::TempDir dir;
  ScriptedHost host;
};

TEST_F(DitherCommand, WritesTheSourceFormatOverTheSource) {
  Picture p = test::Pattern(13, 7, 24);
  std::string source = Write("pic.bmp", p);
  settings->DitherMode = static_cast<int32_t>(kDitherThreshold | 127);
  ASSERT_EQ(Dither(host, source), kOk);
  EXPECT_EQ(test::ListDirectory(dir.path()), std::vector<std::string>{"pic.bmp"});
  EXPECT_EQ(host.statuses, (std::vector<std::string>{"Reading " + source, "Remapping " + source,
                                                     "Thresholding " + source,
                                                     "Writing " + source}));
  Picture out;
  ASSERT_EQ(test::ReadPicture(source, out), 0);
  ASSERT_EQ(out.bits, 1u);
  for (int32_t y = 0; y < 7; ++y)
    for (uint32_t x = 0; x < 13; ++x) {
      // Contrast and brightness 0 keep the grey of the first byte, within 1..254.
      int b = p.Colour(x, y).red;
      int grey = std::clamp((59 * b) / 100 + (30 * b) / 100 + (11 * b) / 100, 1, 254);
      EXPECT_EQ(out.Pixel(x, y), grey > 127 ? 1u : 0u) << x << "," << y;
    }
}

TEST_F(DitherCommand, ReadsFourBitPicturesEnlargedByTheSizeFactor) {
  // Black and white only: no pixel leaves an error, so the result is the picture enlarged.
  Picture p = Picture::Blank(3, 2, 4);
  for (int i = 1; i < 16; ++i) p.palette[static_cast<size_t>(i)] = Rgb{255, 255, 255};
  p.SetPixel(0, 0, 1);
  p.SetPixel(2, 1, 7);
  std::string source = Write("four.bmp", p);
  settings->DitherMode = static_cast<int32_t>(kDitherFloyd | kDitherBidirectional | kDitherSize2);
  DitherOptions options;
  options.destRow = FindFormatByExtension("DIB");
  ASSERT_EQ(Dither(host, source, options), kOk);
  Picture out;
  ASSERT_EQ(test::ReadPicture(dir / "four.dib", out), 0);
  ASSERT_EQ(out.width, 6u);
  ASSERT_EQ(out.depth, 4);
  for (int32_t y = 0; y < 4; ++y)
    for (uint32_t x = 0; x < 6; ++x)
      EXPECT_EQ(out.Pixel(x, y), p.Pixel(x / 2, y / 2) ? 1u : 0u) << x << "," << y;
}

TEST_F(DitherCommand, RefusesOneBitPicturesAndKeepsThem) {
  std::string source = Write("mono.bmp", test::Pattern(9, 4, 1));
  std::string before = test::ReadFileBytes(source);
  EXPECT_EQ(Dither(host, source), kUnsuitableImage);
  EXPECT_EQ(test::ReadFileBytes(source), before);
  EXPECT_EQ(Dither(host, dir / "missing.bmp"), kOpenError);
}

}  // namespace
}  // namespace pxm
