// The page layout maths shared by catalog pages and printed pictures.

#include "process/page_layout.h"

#include <gtest/gtest.h>

namespace pxm {
namespace {

TEST(PageLayout, PrintedPictureAndCaptionPlacement) {
  struct Case {
    const char* what;
    PrintRequest request;
    PageRect picture;
    PageRect caption;
  };
  const PageSize letter{850, 1100};  // 8.5 x 11 inches at 100 dots per inch
  const Case cases[] = {
      {"fit, centred: the width fills the page",
       {letter, 100, 100, {400, 300}, 200, 200, true, true, ""},
       {0, 231, 850, 637},
       {}},
      {"actual size at 200 ppi, centred",
       {letter, 100, 100, {400, 300}, 200, 200, false, true, ""},
       {325, 475, 200, 150},
       {}},
      {"actual size, top left",
       {letter, 100, 100, {400, 300}, 200, 200, false, false, ""},
       {0, 0, 200, 150},
       {}},
      {"a caption line (10 dots and a 5-dot gap) is kept free under the picture",
       {letter, 100, 100, {400, 300}, 200, 200, true, true, "photo.bmp"},
       {0, 224, 850, 637},
       {398, 866, 54, 10}},
      {"larger than the page, centred: it hangs over both sides",
       {letter, 100, 100, {3000, 1000}, 100, 100, false, true, "x"},
       {-1075, 42, 3000, 1000},
       {422, 1047, 6, 10}},
      {"a printer with other resolutions across and down keeps the picture's shape",
       {{600, 600}, 200, 100, {100, 100}, 100, 100, true, false, ""},
       {0, 0, 600, 300},
       {}},
      {"at 600 dpi the caption is 8 times the font; pushed off the page it stays on it",
       {{1000, 1000}, 600, 600, {100, 200}, 60, 60, false, false, "tall.pcx"},
       {0, 0, 1000, 2000},
       {308, 920, 384, 80}},
  };
  for (const Case& c : cases) {
    const PrintPlacement p = PlacePrint(c.request);
    EXPECT_EQ(p.picture, c.picture) << c.what;
    EXPECT_EQ(p.caption, c.caption) << c.what;
    EXPECT_EQ(p.captionText, c.request.caption) << c.what;
  }
  PrintRequest narrow{{30, 100}, 72, 72, {10, 10}, 72, 72, true, true, "a-long-name.gif"};
  EXPECT_EQ(PlacePrint(narrow).captionText, "a-lon") << "cut to the page's width";
}

TEST(PageLayout, CatalogGrid) {
  struct Case {
    const char* what;
    GridRequest want;
    bool fits;
    PageSize page;
    size_t cell;
    PageRect box;
    PageRect caption;
  };
  const Case cases[] = {
      {"4 x 5 with two caption lines, page as big as the grid",
       {4, 5, {}, {96, 96}, 2, 10, 8},
       true,
       {416, 620},
       0,
       {4, 4, 96, 96},
       {4, 100, 96, 20}},
      {"the second row's second cell",
       {4, 5, {}, {96, 96}, 2, 10, 8},
       true,
       {416, 620},
       5,
       {108, 128, 96, 96},
       {108, 224, 96, 20}},
      {"a larger page is shared out, odd pixels round the grid",
       {4, 5, {503, 700}, {96, 96}, 2, 10, 8},
       true,
       {503, 700},
       0,
       {15, 12, 96, 96},
       {5, 108, 117, 20}},
      {"no captions",
       {2, 1, {}, {96, 96}, 0, 10, 8},
       true,
       {208, 104},
       1,
       {108, 4, 96, 96},
       {108, 100, 96, 0}},
      {"a page too narrow for the columns",
       {4, 5, {400, 620}, {96, 96}, 2, 10, 8},
       false,
       {},
       0,
       {},
       {}},
      {"no columns", {0, 5, {}, {96, 96}, 2, 10, 8}, false, {}, 0, {}, {}},
  };
  for (const Case& c : cases) {
    PageGrid grid;
    ASSERT_EQ(LayoutGrid(c.want, grid), c.fits) << c.what;
    if (!c.fits) {
      EXPECT_TRUE(grid.cells.empty()) << c.what;
      continue;
    }
    EXPECT_EQ(grid.page, c.page) << c.what;
    ASSERT_EQ(grid.cells.size(), size_t{c.want.columns} * c.want.rows) << c.what;
    EXPECT_EQ(grid.cells[c.cell].box, c.box) << c.what;
    EXPECT_EQ(grid.cells[c.cell].caption, c.caption) << c.what;
  }
}

}  // namespace
}  // namespace pxm
