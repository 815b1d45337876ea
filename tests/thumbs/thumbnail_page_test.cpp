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
  // Width, height, status bar; columns, rows, margin.
  const std::array<int, 6> cases[] = {
      {608, 600, 20, 5, 4, 44},  // (608 − 40) div 104 = 5; (608 − 520) div 2 = 44
      {144, 231, 57, 1, 1, 20},  // exactly one cell each way
      {143, 230, 57, 0, 0, 71},  // not quite: no cells
  };
  for (const auto& [width, height, status, columns, rows, margin] : cases) {
    ThumbGrid g = GridGeometry(width, height, status);
    EXPECT_EQ((std::array<int, 3>{g.columns, g.rows, g.margin}),
              (std::array<int, 3>{columns, rows, margin}))
        << width << " x " << height;
  }
  CellPosition p = CellAt(GridGeometry(608, 600, 20), 6);
  EXPECT_EQ(p.x, 44 + 104);
  EXPECT_EQ(p.y, 116 + 57);
}

ThumbnailRecord Stock(int n) {
  ThumbnailRecord r;
  ThumbGetStockThumbnail(r, n);
  return r;
}

TEST(ThumbnailPageTest, EachCellShowsWhatItsEntryHas) {
  ScopedSettings settings;
  test::TempDir dir;
  ThumbCache cache;
  ThumbnailRecord own, mine;
  own.width = own.depth = 1;
  own.Row(0)[0] = 42;
  mine.width = mine.depth = 96;
  mine.pixels.fill(9);
  for (int a = 0; a < 4; ++a)
    for (int b = a + 1; b < 4; ++b) EXPECT_NE(Stock(a).pixels, Stock(b).pixels) << a << b;
  ASSERT_NE(ThumbWriteThumbnail(own, dir / "HAS.THN"), 0);
  ASSERT_NE(ThumbWriteThumbnail(mine, dir / "MISSING.THN"), 0);
  const std::vector<std::string> entries = {"[..]",  "[sub]",   "[-a-]",
                                            "[-c-]", "has.bmp", "none.bmp"};
  PageRequest request{entries, 0, dir.path(), [](char drive) { return drive == 'a'; }};

  // The missing picture: the NoThumbnailImage file, else stock picture 3.
  for (const auto& [setting, missing] : {std::pair{dir / "MISSING.THN", mine},
                                         std::pair{dir / "NOT-THERE.THN", Stock(kStockMissing)}}) {
    settings->NoThumbnailImage = setting;
    PageTable page = FillPage(ThumbGrid{3, 2, 0}, request, cache);
    const ThumbnailRecord expected[] = {Stock(kStockDirectory),
                                        Stock(kStockDirectory),
                                        Stock(kStockRemovableDrive),
                                        Stock(kStockOtherDrive),
                                        own,
                                        missing};
    ASSERT_EQ(page.size(), 6u);
    for (size_t i = 0; i < 6; ++i) {
      ASSERT_TRUE(page[i]) << i;
      EXPECT_EQ(*page[i], expected[i]) << entries[i] << " with " << setting;
    }
  }
  EXPECT_EQ(cache.Size(), 1u) << "the file's thumbnail went through the cache";

  // A later page starts at its first entry; cells past the end of the list stay empty.
  request.first = 4;
  PageTable page = FillPage(ThumbGrid{3, 2, 0}, request, cache);
  EXPECT_EQ(*page[0], own);
  EXPECT_FALSE(page[2]);
}

}  // namespace
}  // namespace pxm
