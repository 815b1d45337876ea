#include "formats/jpeg.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/strings.h"
#include "support/picture.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::Picture;
using Codes = std::pair<int, int>;  // info, then read

std::string Sample(const std::string& name) { return test::SourceDir() + "/tests/data/jpeg/" + name; }

bool Near(const Rgb& a, const Rgb& b, int tolerance) {
  return std::abs(a.red - b.red) <= tolerance && std::abs(a.green - b.green) <= tolerance &&
         std::abs(a.blue - b.blue) <= tolerance;
}

// Blocks of 16 × 16 pixels of one colour each: away from their edges (where the decoder's
// smooth chroma upsampling mixes neighbours) they survive the compressor almost unchanged.
Picture Blocks(uint32_t bits, uint32_t blocksAcross, int32_t blocksDown) {
  Picture p = Picture::Blank(16 * blocksAcross, 16 * blocksDown, bits);
  const uint32_t colours = bits == 24 ? 0 : 1u << std::min(bits, 8u);
  for (uint32_t i = 0; i < colours; ++i)
    p.palette[i] = Rgb{static_cast<uint8_t>(250 - i * 29 % 240), static_cast<uint8_t>(i * 71 % 256),
                       static_cast<uint8_t>(40 + i * 13 % 200)};
  for (int32_t y = 0; y < p.depth; ++y)
    for (uint32_t x = 0; x < p.width; ++x) {
      const uint32_t block = (x / 16) + (static_cast<uint32_t>(y) / 16) * blocksAcross;
      p.SetPixel(x, y, colours ? block % colours : 0x10305Fu * (block + 1));
    }
  return p;
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
    info.background = 7;
    info.description = "old";
    ASSERT_EQ(JpegInfo(info, Sample(c.file), 0), kOk);
    EXPECT_EQ(info.fileName, c.file);
    EXPECT_EQ(info.description, c.description);
    EXPECT_EQ(info.width, 21u);
    EXPECT_EQ(info.depth, 13);
    EXPECT_EQ(info.bits, c.bits);
    EXPECT_EQ(info.background, 0u);
    EXPECT_EQ(info.fileSize, static_cast<int32_t>(std::filesystem::file_size(Sample(c.file))));
    EXPECT_EQ(info.unpackedSize, 3u * c.bits * 13u);
    EXPECT_EQ(info.palette[200], (Rgb{200, 200, 200}));
  }
}

TEST(JpegRead, TruncatedDamagedAndMissingFiles) {
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
  EXPECT_EQ(ErrorText(kMemoryError), "Memory error");
  // A 12-bit file cannot be decoded by the 8-bit library.
  std::string twelve = whole;
  const size_t sof = twelve.find("\xFF\xC0");
  ASSERT_NE(sof, std::string::npos);
  twelve[sof + 4] = 12;
  EXPECT_EQ(codes(twelve).first, kMemoryError);

  ImageInfo info;
  EXPECT_EQ(JpegInfo(info, dir / "missing.jpg", 0), kOpenError);
  EXPECT_EQ(JpegRead(info, dir / "missing.jpg"), kOpenError);
}

TEST(JpegRead, GreyRgbAndQuantizedRowsAndAnAbort) {
  // The grey file through both settings: 8-bit rows, grey levels straight from the file with
  // ReadJpegRgb, through the quantizer's grey map without it.
  Picture grey[2];
  for (int rgb : {0, 1}) {
    ScopedSettings settings;
    settings->ReadJpegRgb = rgb;
    ASSERT_EQ(test::ReadPicture(Sample("grey.jpg"), grey[rgb]), kOk);
    EXPECT_EQ(grey[rgb].bits, 8u);
    const Rgb c = grey[rgb].palette[77];
    EXPECT_TRUE(c.red == c.green && c.green == c.blue);
  }
  EXPECT_EQ(grey[1].palette[77], (Rgb{77, 77, 77}));
  const auto plain = test::Colours(grey[1]), mapped = test::Colours(grey[0]);
  for (size_t i = 0; i < plain.size(); ++i) ASSERT_TRUE(Near(plain[i], mapped[i], 2)) << i;

  // Colour: quantized pixels are close to the full-colour ones, with at most 256 colours.
  Picture full, quantized;
  {
    ScopedSettings settings;
    settings->ReadJpegRgb = 1;
    ASSERT_EQ(test::ReadPicture(Sample("colour.jpg"), full), kOk);
  }
  for (int dither : {0, 1}) {
    ScopedSettings settings;
    settings->DitherOnJpegRead = dither;
    ASSERT_EQ(test::ReadPicture(Sample("colour.jpg"), quantized), kOk);
    ASSERT_EQ(quantized.bits, 8u);
    const auto a = test::Colours(full), b = test::Colours(quantized);
    std::set<uint32_t> used;
    int far = 0;
    for (size_t i = 0; i < a.size(); ++i) {
      used.insert(quantized.Pixel(static_cast<uint32_t>(i % 21), static_cast<int32_t>(i / 21)));
      far += Near(a[i], b[i], 64) ? 0 : 1;
    }
    EXPECT_EQ(far, 0) << "dither " << dither;
    EXPECT_GT(used.size(), 8u);
  }

  // The sink's stop ends the read with "Function cancelled".
  ImageInfo info;
  ASSERT_EQ(JpegInfo(info, Sample("progressive.jpg"), 0), kOk);
  int rows = 0;
  info.putLine = [&](std::span<uint8_t>, int32_t y) {
    EXPECT_EQ(y, rows);
    return ++rows == 4 ? 1 : 0;
  };
  EXPECT_EQ(JpegRead(info, Sample("progressive.jpg")), kCancelled);
  EXPECT_EQ(rows, 4);
}

TEST(JpegWrite, PalettePicturesThroughTheirPaletteAndEveryDepth) {
  test::TempDir dir;
  ScopedSettings settings;
  settings->ReadJpegRgb = 1;
  settings->JpegCompressionFactor = 95;
  for (uint32_t bits : {1u, 3u, 4u, 8u, 24u}) {
    SCOPED_TRACE(bits);
    const Picture p = Blocks(bits, 3, 2);
    ASSERT_EQ(test::WritePicture(p, dir / "a.jpg"), kOk);
    Picture q;
    ImageInfo info;
    ASSERT_EQ(test::ReadPicture(dir / "a.jpg", q, nullptr, &info), kOk);
    // Always a colour file, also for two colours.
    EXPECT_EQ(info.description, "YUV colour space");
    ASSERT_EQ(q.bits, 24u);
    for (int32_t y = 0; y < p.depth; ++y)
      for (uint32_t x = 0; x < p.width; ++x)
        if (x % 16 >= 2 && x % 16 < 14 && y % 16 >= 2 && y % 16 < 14) {
          ASSERT_TRUE(Near(q.Colour(x, y), p.Colour(x, y), 6)) << x << "," << y;
        }
  }
  // Odd sizes down to one pixel.
  for (auto [w, h] : {std::pair{1u, 1}, {17u, 3}, {5u, 33}}) {
    ASSERT_EQ(test::WritePicture(test::Pattern(w, h, 24), dir / "b.jpe"), kOk);
    Picture q;
    ASSERT_EQ(test::ReadPicture(dir / "b.jpe", q), kOk);
    EXPECT_EQ(q.width, w);
    EXPECT_EQ(q.depth, h);
  }
}

TEST(JpegWrite, QualityChangesTheFileAndACancelLeavesNothing) {
  test::TempDir dir;
  const Picture p = test::Pattern(40, 30, 24);
  std::uintmax_t sizes[2] = {};
  for (int i = 0; i < 2; ++i) {
    ScopedSettings settings;
    settings->JpegCompressionFactor = i == 0 ? 20 : 90;
    ASSERT_EQ(test::WritePicture(p, dir / "q.jpg"), kOk);
    sizes[i] = std::filesystem::file_size(dir / "q.jpg");
  }
  EXPECT_LT(sizes[0], sizes[1]);

  ImageInfo info;
  info.width = 40;
  info.depth = 30;
  info.bits = 24;
  int asked = 0;
  info.getLine = [&](std::span<uint8_t> row, int32_t y) {
    EXPECT_EQ(y, asked);
    std::copy(p.rows[static_cast<size_t>(y)].begin(), p.rows[static_cast<size_t>(y)].end(),
              row.begin());
    return ++asked == 20 ? 1 : 0;
  };
  EXPECT_EQ(JpegWrite(info, dir / "c.jpg"), kCancelled);
  EXPECT_FALSE(std::filesystem::exists(dir / "c.jpg"));
  EXPECT_EQ(JpegWrite(info, dir / "no/such/dir/c.jpg"), kCreateError);
}

}  // namespace
}  // namespace pxm
