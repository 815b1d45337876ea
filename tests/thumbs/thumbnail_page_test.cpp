// The page of the thumbnail view without its window: the grid, and what each cell shows.

#include "thumbs/thumbnail_page.h"

#include <gtest/gtest.h>

#include "config/settings.h"
#include "support/temp_dir.h"
#include "thumbs/stock_thumbnails.h"
#include "thumbs/thumbnail_file.h"

namespace pxm {
namespace {

TEST(ThumbnailPageTest, GridGeometry) {
  struct Case {
    int width, height, status;
    int columns, rows, margin;
  };
  const Case cases[] = {
      {608, 600, 20, 5, 4, 44},  // (608 − 40) div 104 = 5; (608 − 520) div 2 = 44
      {144, 231, 57, 1, 1, 20},  // exactly one cell each way
      {143, 230, 57, 0, 0, 71},  // not quite: no cells, and the margin is half the width
  };
  for (const Case& c : cases) {
    ThumbGrid g = GridGeometry(c.width, c.height, c.status);
    EXPECT_EQ(g.columns, c.columns) << c.width;
    EXPECT_EQ(g.rows, c.rows) << c.height;
    EXPECT_EQ(g.margin, c.margin) << c.width;
  }
  ThumbGrid g = GridGeometry(608, 600, 20);
  EXPECT_EQ(CellAt(g, 0).x, 44);
  EXPECT_EQ(CellAt(g, 0).y, 57);
  EXPECT_EQ(CellAt(g, 6).x, 44 + 104);
  EXPECT_EQ(CellAt(g, 6).y, 116 + 57);
}

class FillPageTest : public ::testing::Test {
 protected:
  ScopedSettings settings;
  test::TempDir dir;
  ThumbCache cache;
  ThumbnailRecord Stock(int n) {
    ThumbnailRecord r;
    ThumbGetStockThumbnail(r, n);
    return r;
  }
};

TEST_F(FillPageTest, EachCellShowsWhatItsEntryHas) {
  ThumbnailRecord own;
  own.width = own.depth = 1;
  own.Row(0)[0] = 42;
  ASSERT_NE(ThumbWriteThumbnail(own, dir / "HAS.THN"), 0);
  const std::vector<std::string> entries = {"[..]",    "[sub]",    "[-a-]",    "[-c-]",
                                            "has.bmp", "none.bmp", "after.bmp"};
  ThumbGrid grid{3, 2, 0};
  PageRequest request{entries, 0, dir.path(), [](char drive) { return drive == 'a'; }};
  PageTable page = FillPage(grid, request, cache);
  ASSERT_EQ(page.size(), 6u);
  const ThumbnailRecord expected[] = {Stock(kStockDirectory),
                                      Stock(kStockDirectory),
                                      Stock(kStockRemovableDrive),
                                      Stock(kStockOtherDrive),
                                      own,
                                      Stock(kStockMissing)};
  for (size_t i = 0; i < 6; ++i) {
    ASSERT_TRUE(page[i]) << i;
    EXPECT_EQ(*page[i], expected[i]) << entries[i];
  }
  EXPECT_EQ(cache.Size(), 1u) << "the file's thumbnail went through the cache";

  // A later page starts at its first entry; cells past the end of the list stay empty.
  request.first = 3;
  page = FillPage(grid, request, cache);
  ASSERT_EQ(page.size(), 6u);
  EXPECT_EQ(*page[0], Stock(kStockOtherDrive));
  EXPECT_EQ(*page[1], own);
  EXPECT_FALSE(page[4]);
  EXPECT_FALSE(page[5]);
}

TEST_F(FillPageTest, MissingPictureFromNoThumbnailImageElseStock3) {
  ThumbnailRecord mine;
  mine.width = mine.depth = 96;
  mine.pixels.fill(9);
  ASSERT_NE(ThumbWriteThumbnail(mine, dir / "MISSING.THN"), 0);
  const std::vector<std::string> entries = {"none.bmp"};
  PageRequest request{entries, 0, dir.path(), {}};
  const std::pair<std::string, ThumbnailRecord> cases[] = {
      {dir / "MISSING.THN", mine},
      {dir / "NOT-THERE.THN", Stock(kStockMissing)},
      {"", Stock(kStockMissing)},
  };
  for (const auto& [setting, picture] : cases) {
    settings->NoThumbnailImage = setting;
    PageTable page = FillPage(ThumbGrid{1, 1, 0}, request, cache);
    ASSERT_TRUE(page[0]) << setting;
    EXPECT_EQ(*page[0], picture) << setting;
  }
}

}  // namespace
}  // namespace pxm
