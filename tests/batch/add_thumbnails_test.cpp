// Thumbnails made by the batch commands: after Convert when AutoCreateThumbnail is on, and for
// every tagged file by Add thumbnails.

#include "batch/add_thumbnails.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>

#include "batch/convert.h"
#include "config/settings.h"
#include "core/error_codes.h"
#include "core/scripted_host.h"
#include "formats/format_table.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"
#include "thumbs/auto_thumbnail.h"

namespace pxm {
namespace {

using test::Picture;

class AddThumbnailsTest : public ::testing::Test {
 protected:
  ScopedSettings settings;
  test::TempDir dir;
  ScriptedHost host;
};

TEST_F(AddThumbnailsTest, AutoCreateThumbnailAfterConvertOnlyWhenThereIsNoneYet) {
  ASSERT_EQ(test::WritePicture(Picture::Blank(4, 4, 8), dir / "in.bmp"), 0);
  const int dib = FindFormatByExtension("DIB");
  ASSERT_EQ(Convert(host, dir / "in.bmp", dib), 0);
  EXPECT_FALSE(std::filesystem::exists(dir / "IN.THN")) << "AutoCreateThumbnail is off";
  settings->AutoCreateThumbnail = 1;
  ASSERT_EQ(Convert(host, dir / "in.bmp", dib), 0);
  EXPECT_EQ(test::ReadFileBytes(dir / "IN.THN").substr(40, 7), std::string("in.dib", 7));
  test::WriteFileBytes(dir / "IN.THN", "anything");
  ASSERT_EQ(AutoCreateThumbnail(host, dir / "in.bmp"), 0);
  EXPECT_EQ(test::ReadFileBytes(dir / "IN.THN"), "anything") << "an existing file is kept";
}

TEST_F(AddThumbnailsTest, AddThumbnailsWalksTaggedFilesAndStopsOnlyWhenCancelled) {
  for (const char* name : {"a.bmp", "c.bmp", "d.bmp"})
    ASSERT_EQ(test::WritePicture(Picture::Blank(3, 3, 24), dir / name), 0);
  test::WriteFileBytes(dir / "b.bmp", "BM not really");
  std::vector<ListItem> items = {
      {"[..]", true}, {"a.bmp", true}, {"b.bmp", true}, {"c.bmp", false}, {"d.bmp", true}};
  EXPECT_EQ(AddThumbnails(host, items, dir.path()), kCorruptedFile);
  EXPECT_EQ(host.messages, (std::vector<std::string>{"b.bmp - Corrupted file"}));
  EXPECT_EQ(test::ListDirectory(dir.path()),
            (std::vector<std::string>{"A.THN", "D.THN", "a.bmp", "b.bmp", "c.bmp", "d.bmp"}));

  // A reader that answers 4 (bitmaps say 3 after a click) ends the walk.
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
