// Making thumbnails of BMP files as Add thumbnails, AutoCreateThumbnail and `pxm thumbnail` do.

#include "thumbs/make_thumbnail.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/scripted_host.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"
#include "thumbs/thumbnail_file.h"
#include "thumbs/thumbnail_sink.h"

namespace pxm {
namespace {

using test::Picture;

class MakeThumbnailTest : public ::testing::Test {
 protected:
  ScopedSettings settings;
  test::TempDir dir;
  ScriptedHost host;

  ThumbnailRecord Made(const Picture& p, const std::string& name, const std::string& thumb) {
    EXPECT_EQ(test::WritePicture(p, dir / name), 0);
    std::string written;
    EXPECT_EQ(MakeThumbnail(host, dir / name, &written), 0) << name;
    EXPECT_EQ(written, dir / thumb);
    ThumbnailRecord r;
    EXPECT_EQ(ThumbReadThumbnail(r, dir / thumb), 1) << thumb;
    return r;
  }
  // `inside` in the top-left width × depth of the record, 0 everywhere else.
  static void ExpectFilled(const ThumbnailRecord& r, int width, int depth, int inside) {
    for (int y = 0; y < kThumbSize; ++y)
      for (int x = 0; x < kThumbSize; ++x)
        ASSERT_EQ(r.At(x, y), (x < width && y < depth) ? inside : 0) << x << "," << y;
  }
};

TEST_F(MakeThumbnailTest, ReducesLargePicturesAndNeverEnlargesSmallOnes) {
  // 1-bit pixels that are set give 255 whatever the palette says and whatever the mode.
  Picture wide = Picture::Blank(960, 480, 1);
  wide.palette[1] = {255, 0, 0};
  for (auto& row : wide.rows) std::fill(row.begin(), row.end(), 0xFF);
  ThumbnailRecord r = Made(wide, "wide.bmp", "WIDE.THN");
  ExpectFilled(r, 96, 48, 255);
  EXPECT_EQ(r, (ThumbnailRecord{96, 48, 960, 480, 1, r.sourceFileSize, r.sourceTime, 2, "wide.bmp",
                                r.pixels}));
  EXPECT_EQ(r.sourceFileSize, std::filesystem::file_size(dir / "wide.bmp"));

  // White in the palette: remapped to 255, and diffused with no error at all.
  Picture small = Picture::Blank(50, 50, 8);
  small.palette[0] = {255, 255, 255};
  for (int mode : {kThumbRemapped, kThumbDiffused}) {
    settings->DitherThumbnails = mode;
    ExpectFilled(Made(small, "small.bmp", "SMALL.THN"), 50, 50, 255);
  }
}

TEST_F(MakeThumbnailTest, PalettePicturesAreRemappedToTheNearestFixedColour) {
  // Nearest levels per channel: 200 lies as near 182 as 218 and the first entry wins, so
  // (200, 40, 90) gives levels 5, 1, 1; (250, 250, 250) gives 7, 7, 3; (100, 120, 20) 3, 3, 0.
  const Rgb colours[] = {{200, 40, 90}, {250, 250, 250}, {100, 120, 20}};
  // 4-bit pictures are remapped in every mode; 8-bit ones when the mode says so.
  for (auto [bits, mode] : {std::pair{4u, kThumbDiffused}, std::pair{8u, kThumbRemapped}}) {
    Picture p = Picture::Blank(3, 1, bits);
    for (uint32_t x = 0; x < 3; ++x) {
      p.palette[x] = colours[x];
      p.SetPixel(x, 0, x);
    }
    settings->DitherThumbnails = mode;
    host.statuses.clear();
    ThumbnailRecord r = Made(p, "pal.bmp", "PAL.THN");
    EXPECT_EQ(std::vector<int>(r.Row(0), r.Row(0) + 3), (std::vector<int>{165, 255, 108})) << bits;
    EXPECT_EQ(host.statuses, (std::vector<std::string>{"Remapping " + dir / "pal.bmp",
                                                       "Reading " + dir / "pal.bmp"}));
  }
}

TEST_F(MakeThumbnailTest, Codes) {
  ASSERT_EQ(test::WritePicture(Picture::Blank(4, 4, 8), dir / "good.bmp"), 0);
  test::WriteFileBytes(dir / "bad.bmp", "BM not really");
  test::WriteFileBytes(dir / "clip.mov", "motion rows without their own frame reader");
  struct Case {
    const char* what;
    std::string file, thumbnailPath;
    uint64_t abortOnPoll;
    int code;
  };
  const Case cases[] = {
      {"no row has the extension", "pic.xyz", "", 0, kUnsupportedFormat},
      {"a motion row without frames is passed over", "clip.mov", "", 0, kOk},
      {"the info handler's code", "bad.bmp", "", 0, kCorruptedFile},
      {"the thumbnail cannot be written", "good.bmp", dir / "no-such-dir", 0, kCreateError},
      {"a click while reading (bitmaps call it a read error)", "good.bmp", "", 1, kReadError},
  };
  for (const Case& c : cases) {
    settings->ThumbnailPath = c.thumbnailPath;
    host.abortOnPoll = c.abortOnPoll;
    std::string written = "stale";
    EXPECT_EQ(MakeThumbnail(host, dir / c.file, &written), c.code) << c.what;
    EXPECT_EQ(written, "") << c.what;
  }
  EXPECT_EQ(test::ListDirectory(dir.path()),
            (std::vector<std::string>{"bad.bmp", "clip.mov", "good.bmp"}));
}

}  // namespace
}  // namespace pxm
