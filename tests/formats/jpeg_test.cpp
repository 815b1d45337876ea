#include "formats/jpeg.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "config/settings.h"
#include "core/error_codes.h"
#include "support/picture_files.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::Picture;
using Codes = std::pair<int, int>;  // info, then read

std::string Sample(const std::string& name) {
  return test::SourceDir() + "/tests/data/jpeg/" + name;
}

TEST(JpegInfo, SizesBitsAndColourSpaceNames) {
  struct Case {
    const char* file;
    int readRgb;
    uint32_t bits;
    const char* description;
  };
  // A grey file is 8 bits even when colour files are read as RGB.
  const Case cases[] = {{"colour.jpg", 0, 8, "YUV colour space"},
                        {"colour.jpg", 1, 24, "YUV colour space"},
                        {"progressive.jpg", 1, 24, "YUV colour space"},
                        {"grey.jpg", 0, 8, "Monochrome colour space"},
                        {"grey.jpg", 1, 8, "Monochrome colour space"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.file << " ReadJpegRgb " << c.readRgb);
    ScopedSettings settings;
    settings->ReadJpegRgb = c.readRgb;
    ImageInfo info;
    ASSERT_EQ(JpegInfo(info, Sample(c.file), 0), kOk);
    EXPECT_EQ(info.description, c.description);
    EXPECT_EQ(info.width, 21u);
    EXPECT_EQ(info.depth, 13);
    EXPECT_EQ(info.bits, c.bits);
    EXPECT_EQ(info.unpackedSize, 3u * c.bits * 13u);
    EXPECT_EQ(info.palette[200], (Rgb{200, 200, 200}));
  }
}

TEST(JpegRead, ForAThumbnailThePictureComesReducedAndTheRecordKeepsItsOwnSize) {
  ScopedSettings settings;
  settings->ReadJpegRgb = 1;
  test::TempDir dir;
  // 1000 x 700: halving keeps the longer side at 192 or more until 1/4 (250 x 175).
  ASSERT_EQ(test::WritePicture(test::Pattern(1000, 700, 24), dir / "big.jpg"), kOk);
  ImageInfo info;
  ASSERT_EQ(JpegInfo(info, dir / "big.jpg", 0), kOk);
  EXPECT_EQ(info.width, 1000u);
  EXPECT_EQ(info.fullWidth, 0u);
  ASSERT_EQ(JpegInfo(info, dir / "big.jpg", 1), kOk);
  EXPECT_EQ(info.width, 250u);
  EXPECT_EQ(info.depth, 175);
  EXPECT_EQ(info.fullWidth, 1000u);
  EXPECT_EQ(info.fullDepth, 700);
  int rows = 0;
  info.putLine = [&](std::span<uint8_t>, int32_t) { return ++rows, 0; };
  EXPECT_EQ(JpegRead(info, dir / "big.jpg"), kOk);
  EXPECT_EQ(rows, 175);
  // A picture already near thumbnail size is read whole.
  ASSERT_EQ(JpegInfo(info, Sample("colour.jpg"), 1), kOk);
  EXPECT_EQ(info.width, 21u);
  EXPECT_EQ(info.fullWidth, 0u);
}

TEST(JpegRead, EveryFatalConditionIsAMemoryError) {
  test::TempDir dir;
  const std::string whole = test::ReadFileBytes(Sample("colour.jpg"));
  auto codes = [&](const std::string& bytes) {
    test::WriteFileBytes(dir / "x.jpg", bytes);
    Picture p;
    ImageInfo info;
    const int read = test::ReadPicture(dir / "x.jpg", p, nullptr, &info);
    return Codes(JpegInfo(info, dir / "x.jpg", 0), read);
  };
  // Every fatal condition is "Memory error", the end of the data included.
  EXPECT_EQ(codes(whole.substr(0, whole.size() - 40)), Codes(kOk, kMemoryError));
  EXPECT_EQ(codes(whole.substr(0, 100)), Codes(kMemoryError, kMemoryError));
  EXPECT_EQ(codes("GIF89a"), Codes(kMemoryError, kMemoryError));
  EXPECT_EQ(codes(""), Codes(kMemoryError, kMemoryError));
  // A 12-bit file cannot be decoded by the 8-bit library.
  std::string twelve = whole;
  const size_t sof = twelve.find("\xFF\xC0");
  ASSERT_NE(sof, std::string::npos);
  twelve[sof + 4] = 12;
  EXPECT_EQ(codes(twelve).first, kMemoryError);
}

}  // namespace
}  // namespace pxm
