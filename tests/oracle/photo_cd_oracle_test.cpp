// Photo CD packs assembled in the test, read by Pixmill beside FFmpeg's decoder (its samples,
// exactly) and ImageMagick (its colours, on its own scale: D41 of the differences table).

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "config/settings.h"
#include "core/error_codes.h"
#include "formats/photo_cd.h"
#include "support/oracle.h"
#include "support/photo_cd_builder.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

constexpr int32_t kRgbBase16 = 1, kRgbBase4 = 2, kRgbBase = 3;

int ReadAs(int32_t setting, const std::string& path, test::Picture& p) {
  ScopedSettings settings;
  settings->PhotoCDResolution = setting;
  return test::ReadPicture(path, p);
}

TEST(PhotoCdOracle, FfmpegSeesTheSamplesPixmillConverts) {
  PXM_REQUIRE_ORACLE(test::HaveProgram("ffmpeg"), "FFmpeg");
  test::TempDir dir;
  // FFmpeg picks the smaller pictures only in packs longer than a bare Base pack; it shows its
  // chroma planes moved down by 28 and 9, and never turns the picture.
  test::WriteFileBytes(dir / "p.pcd", test::PhotoCdPack(test::PcdGradient, 0, 800000));
  struct Case {
    int lowres;
    int32_t setting;
    uint32_t width, height;
  };
  for (const Case c :
       {Case{4, kRgbBase16, 192, 128}, Case{3, kRgbBase4, 384, 256}, Case{2, kRgbBase, 768, 512}}) {
    SCOPED_TRACE(c.width);
    ASSERT_TRUE(test::RunIn(dir.path(), "ffmpeg -loglevel error -lowres " +
                                            std::to_string(c.lowres) +
                                            " -i p.pcd -f rawvideo -pix_fmt yuv420p -y p.yuv"));
    const std::string yuv = test::ReadFileBytes(dir / "p.yuv");
    ASSERT_EQ(yuv.size(), size_t{c.width} * c.height * 3 / 2);
    const auto at = [&](size_t i) { return static_cast<uint8_t>(yuv[i]); };
    const size_t lumaBytes = size_t{c.width} * c.height;
    test::Picture p;
    ASSERT_EQ(ReadAs(c.setting, dir / "p.pcd", p), kOk);
    ASSERT_EQ(p.width, c.width);
    for (uint32_t y = 0; y < c.height; ++y)
      for (uint32_t x = 0; x < c.width; ++x) {
        const size_t chroma = size_t{y / 2} * (c.width / 2) + x / 2;
        const Rgb want =
            PhotoYccToRgb(at(size_t{y} * c.width + x), uint8_t(at(lumaBytes + chroma) + 28),
                          uint8_t(at(lumaBytes + lumaBytes / 4 + chroma) + 9));
        ASSERT_EQ(p.Colour(x, int32_t(y)), want) << x << "," << y;
      }
  }
}

TEST(PhotoCdOracle, ImageMagickColoursOnItsScale) {
  PXM_REQUIRE_ORACLE(test::HaveProgram(test::kMagick), "ImageMagick");
  // Smooth chroma: ImageMagick spreads each chroma sample over its neighbours, Pixmill repeats
  // it, and the two agree closely only where neighbours are alike.
  auto smooth = [](int plane, uint32_t x, uint32_t y, uint32_t width) -> uint8_t {
    if (plane == 0) return uint8_t(20 + (x * 200) / width + (y * 30) / width);
    if (plane == 1) return uint8_t(110 + (x * 90) / width);
    return uint8_t(90 + (y * 120) / width);
  };
  test::TempDir dir;
  // ImageMagick turns quarter turns as Pixmill does and leaves a half turn alone (D42).
  for (uint32_t turn : {0u, 1u, 3u}) {
    test::WriteFileBytes(dir / "p.pcd", test::PhotoCdPack(smooth, turn));
    for (int32_t setting : {kRgbBase16, kRgbBase4, kRgbBase}) {
      SCOPED_TRACE(std::to_string(turn) + " " + std::to_string(setting));
      test::RgbImage want;
      // ImageMagick numbers the stored pictures 1 (Base/16) to 3 (Base).
      ASSERT_TRUE(test::MagickDecode(dir / "p.pcd", want, setting));
      // It keeps the headroom above reference white by dividing by the luma factor; Pixmill
      // holds what passes 255 there (D41).
      for (Rgb& c : want.pixels)
        for (uint8_t* v : {&c.red, &c.green, &c.blue})
          *v = uint8_t(std::min(255L, std::lround(*v * 1.3584)));
      test::Picture p;
      ASSERT_EQ(ReadAs(setting, dir / "p.pcd", p), kOk);
      EXPECT_TRUE(test::SameColours(p, want, 6));
    }
  }
}

}  // namespace
}  // namespace pxm
