// Making thumbnails of BMP files as Add thumbnails, AutoCreateThumbnail and `pxm thumbnail` do.

#include "thumbs/make_thumbnail.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "batch/add_thumbnails.h"
#include "batch/convert.h"
#include "config/settings.h"
#include "core/error_codes.h"
#include "core/scripted_host.h"
#include "formats/format_table.h"
#include "support/picture.h"
#include "support/temp_dir.h"
#include "thumbs/auto_thumbnail.h"
#include "thumbs/stock_thumbnails.h"
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

  void Write(const Picture& p, const std::string& name) {
    ASSERT_EQ(test::WritePicture(p, dir / name), 0) << name;
  }
  ThumbnailRecord Thumb(const std::string& name) {
    ThumbnailRecord r;
    EXPECT_EQ(ThumbReadThumbnail(r, dir / name), 1) << name;
    return r;
  }
  // Every pixel of the record: `inside` in the top-left width × depth, 0 elsewhere.
  static void ExpectFilled(const ThumbnailRecord& r, int width, int depth, int inside,
                           const std::string& what) {
    for (int y = 0; y < kThumbSize; ++y)
      for (int x = 0; x < kThumbSize; ++x)
        ASSERT_EQ(r.At(x, y), (x < width && y < depth) ? inside : 0)
            << what << " " << x << "," << y;
  }
};

TEST_F(MakeThumbnailTest, ReducesLargePicturesAndNeverEnlargesSmallOnes) {
  Picture wide = Picture::Blank(960, 480, 1);
  for (auto& row : wide.rows) std::fill(row.begin(), row.end(), 0xFF);
  Write(wide, "wide.bmp");
  std::string written;
  ASSERT_EQ(MakeThumbnail(host, dir / "wide.bmp", &written), 0);
  EXPECT_EQ(written, dir / "WIDE.THN");
  ThumbnailRecord r = Thumb("WIDE.THN");
  ExpectFilled(r, 96, 48, 255, "960 x 480");
  EXPECT_EQ(r.width, 96u);
  EXPECT_EQ(r.depth, 48u);
  EXPECT_EQ(r.sourceWidth, 960u);
  EXPECT_EQ(r.sourceDepth, 480u);
  EXPECT_EQ(r.sourceBits, 1u);
  EXPECT_EQ(r.sourceName, "wide.bmp");
  EXPECT_EQ(r.mode, 2u);  // the default, "Error diffused"
  EXPECT_EQ(r.sourceFileSize, std::filesystem::file_size(dir / "wide.bmp"));
  EXPECT_NE(r.sourceTime, 0u);

  // White in the palette: remapped to 255, and diffused with no error at all.
  Picture small = Picture::Blank(50, 50, 8);
  small.palette[0] = {255, 255, 255};
  Write(small, "small.bmp");
  for (int mode : {kThumbRemapped, kThumbDiffused}) {
    settings->DitherThumbnails = mode;
    ASSERT_EQ(MakeThumbnail(host, dir / "small.bmp"), 0);
    r = Thumb("SMALL.THN");
    ExpectFilled(r, 50, 50, 255, "50 x 50, mode " + std::to_string(mode));
    EXPECT_EQ(r.mode, static_cast<uint32_t>(mode));
  }
}

TEST_F(MakeThumbnailTest, PalettePicturesAreRemappedToTheNearestFixedColour) {
  // Nearest levels per channel: 200 lies as near 182 as 218 and the first entry wins, so
  // (200, 40, 90) gives levels 5, 1, 1; (250, 250, 250) gives 7, 7, 3; (100, 120, 20) 3, 3, 0.
  const Rgb colours[] = {{200, 40, 90}, {250, 250, 250}, {100, 120, 20}};
  const int expected[] = {165, 255, 108};
  for (uint32_t bits : {4u, 8u}) {
    Picture p = Picture::Blank(3, 1, bits);
    for (uint32_t x = 0; x < 3; ++x) {
      p.palette[x] = colours[x];
      p.SetPixel(x, 0, x);
    }
    Write(p, "pal.bmp");
    settings->DitherThumbnails = kThumbRemapped;
    host.statuses.clear();
    ASSERT_EQ(MakeThumbnail(host, dir / "pal.bmp"), 0);
    ThumbnailRecord r = Thumb("PAL.THN");
    for (int x = 0; x < 3; ++x) EXPECT_EQ(r.At(x, 0), expected[x]) << bits << " bits, " << x;
    EXPECT_EQ(host.statuses, (std::vector<std::string>{"Remapping " + dir / "pal.bmp",
                                                       "Reading " + dir / "pal.bmp"}));
    EXPECT_EQ(host.lastTotal, 1u);  // the reader's progress counts the one row
  }
  Write(Picture::Blank(2, 2, 24), "rgb.bmp");
  host.statuses.clear();
  ASSERT_EQ(MakeThumbnail(host, dir / "rgb.bmp"), 0);
  EXPECT_EQ(host.statuses, (std::vector<std::string>{"Reading " + dir / "rgb.bmp"}));
}

TEST_F(MakeThumbnailTest, Codes) {
  Write(Picture::Blank(4, 4, 8), "good.bmp");
  test::WriteFileBytes(dir / "bad.bmp", "BM not really");
  test::WriteFileBytes(dir / "clip.mov", "motion rows without their own frame reader");
  struct Case {
    const char* what;
    std::string file;
    std::string thumbnailPath;
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
    host.polls = 0;
    std::string written = "stale";
    EXPECT_EQ(MakeThumbnail(host, dir / c.file, &written), c.code) << c.what;
    EXPECT_EQ(written, "") << c.what;
  }
  EXPECT_EQ(test::ListDirectory(dir.path()),
            (std::vector<std::string>{"bad.bmp", "clip.mov", "good.bmp"}));
}

TEST_F(MakeThumbnailTest, AutoCreateThumbnailAfterConvertOnlyWhenThereIsNoneYet) {
  Write(Picture::Blank(4, 4, 8), "in.bmp");
  const int dib = FindFormatByExtension("DIB");
  ASSERT_EQ(Convert(host, dir / "in.bmp", dib), 0);
  EXPECT_FALSE(std::filesystem::exists(dir / "IN.THN")) << "AutoCreateThumbnail is off";

  settings->AutoCreateThumbnail = 1;
  ASSERT_EQ(Convert(host, dir / "in.bmp", dib), 0);
  EXPECT_EQ(Thumb("IN.THN").sourceName, "in.dib");
  EXPECT_EQ(host.writtenFiles.back(), dir / "in.dib") << "the thumbnail is not announced";

  ThumbnailRecord stock;
  ThumbGetStockThumbnail(stock, kStockDirectory);
  ASSERT_NE(ThumbWriteThumbnail(stock, dir / "IN.THN"), 0);
  ASSERT_EQ(AutoCreateThumbnail(host, dir / "in.bmp"), 0);
  EXPECT_EQ(Thumb("IN.THN"), stock) << "an existing thumbnail is kept";
}

TEST_F(MakeThumbnailTest, AddThumbnailsWalksTaggedFilesAndStopsOnlyWhenCancelled) {
  for (const char* name : {"a.bmp", "c.bmp", "d.bmp"}) Write(Picture::Blank(3, 3, 24), name);
  test::WriteFileBytes(dir / "b.bmp", "BM not really");
  std::vector<ListItem> items = {
      {"[..]", true}, {"a.bmp", true}, {"b.bmp", true}, {"c.bmp", false}, {"d.bmp", true}};
  EXPECT_EQ(AddThumbnails(host, items, dir.path()), kCorruptedFile);
  EXPECT_EQ(host.messages, (std::vector<std::string>{"b.bmp - Corrupted file"}));
  EXPECT_EQ(test::ListDirectory(dir.path()),
            (std::vector<std::string>{"A.THN", "D.THN", "a.bmp", "b.bmp", "c.bmp", "d.bmp"}));

  // Bitmaps report a click as a read error, and the walk goes on; a reader that answers 4
  // ends it.
  std::array<FormatEntry, kFormatCount> table;
  std::copy(FormatTable().begin(), FormatTable().end(), table.begin());
  table[static_cast<size_t>(FindFormatByExtension("BMP"))].read =
      [](ImageInfo&, const std::string&) { return static_cast<int>(kCancelled); };
  host.messages.clear();
  EXPECT_EQ(AddThumbnails(host, items, dir.path(), table), kCancelled);
  EXPECT_EQ(host.messages, (std::vector<std::string>{"a.bmp - Function cancelled"}));
}

}  // namespace
}  // namespace pxm
