// Catalog pages: how many and under which names, what each cell holds, the destination's depth.

#include "batch/catalog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>

#include "batch/catalog_page.h"
#include "config/settings.h"
#include "core/error_codes.h"
#include "core/fixed_palette.h"
#include "core/scripted_host.h"
#include "core/sinks.h"
#include "core/sources.h"
#include "core/strings.h"
#include "formats/format_table.h"
#include "process/dither.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"
#include "thumbs/stock_thumbnails.h"
#include "thumbs/thumbnail_file.h"
#include "thumbs/thumbnail_path.h"

namespace pxm {
namespace {

using test::Picture;

class CatalogTest : public ::testing::Test {
 protected:
  // `count` small pictures of different sizes and depths, named p00.bmp, p01.bmp, ...
  std::vector<std::string> Pictures(size_t count) {
    std::vector<std::string> files;
    for (size_t i = 0; i < count; ++i) {
      const uint32_t bits = i % 3 == 0 ? 24 : (i % 3 == 1 ? 8 : 1);
      const std::string path = dir / FormatText("p%02zu.bmp", i);
      EXPECT_EQ(test::WritePicture(test::Pattern(40 + 7 * static_cast<uint32_t>(i), 30, bits,
                                                 static_cast<uint32_t>(i) + 1),
                                   path),
                0);
      files.push_back(path);
    }
    return files;
  }
  int Make(const std::vector<std::string>& files, const std::string& ext,
           CatalogResult* result = nullptr) {
    CatalogRequest request;
    request.destRow = FindFormatByExtension(ext);
    request.directory = out.path();
    return MakeCatalog(host, files, request, result);
  }

  ScopedSettings settings;
  test::TempDir dir;
  test::TempDir out;
  ScriptedHost host;
};

TEST_F(CatalogTest, OptionsWordKeepsItsDefaultMeaningAndRoundTrips) {
  EXPECT_EQ(DecodeCatalogOptions(3153), CatalogLayout{});
  const CatalogLayout wide{7, 15, false, true, 1024, 768};
  EXPECT_EQ(DecodeCatalogOptions(EncodeCatalogOptions(wide, 0xE)), wide);
  EXPECT_EQ(EncodeCatalogOptions(wide, 0xE) & 0xE, 0xEu) << "spare bits are kept";
  EXPECT_EQ(EncodeCatalogOptions(CatalogLayout{}, 3153), 3153u);
}

TEST_F(CatalogTest, PagesAreCountedAndNamedByTwentyCells) {
  const std::vector<std::string> files = Pictures(21);
  struct Case {
    size_t files;
    std::vector<std::string> pages;
  };
  for (const Case& c : {Case{1, {"CAT00001.gif"}}, Case{20, {"CAT00001.gif"}},
                        Case{21, {"CAT00001.gif", "CAT00002.gif"}}}) {
    std::filesystem::remove_all(out.path());
    std::filesystem::create_directory(out.path());
    CatalogResult result;
    ASSERT_EQ(
        Make({files.begin(), files.begin() + static_cast<ptrdiff_t>(c.files)}, "GIF", &result),
        kOk);
    EXPECT_EQ(test::ListDirectory(out.path()), c.pages) << c.files << " files";
    ASSERT_EQ(result.files.size(), c.files);
    EXPECT_EQ(result.files.back().output, out / c.pages.back());
    EXPECT_EQ(result.files.front().output, out / "CAT00001.gif");
  }
  // Every file got its thumbnail file on the way.
  EXPECT_TRUE(std::filesystem::exists(dir / "P20.THN"));
}

TEST_F(CatalogTest, EachCellShowsTheThumbnailRecordThroughTheFixedPalette) {
  const std::vector<std::string> files = Pictures(6);
  test::WriteFileBytes(dir / "broken.bmp", "BM broken");
  std::vector<std::string> named = files;
  named.insert(named.begin() + 2, dir / "broken.bmp");
  ASSERT_EQ(Make(named, "BMP"), kCorruptedFile);
  EXPECT_EQ(host.messages, std::vector<std::string>{dir / "broken.bmp - Corrupted file"});

  Picture page;
  ASSERT_EQ(test::ReadPicture(out / "CAT00001.bmp", page), 0);
  PageGrid grid;
  ASSERT_TRUE(LayoutCatalog(CatalogLayout{}, grid));
  ASSERT_EQ(page.width, grid.page.width);
  ASSERT_EQ(static_cast<uint64_t>(page.depth), grid.page.depth);
  const Palette& fixed = ThumbGetPalette(0);
  for (size_t i = 0; i < grid.cells.size(); ++i) {
    const PageRect& box = grid.cells[i].box;
    ThumbnailRecord record;
    if (i < named.size() && i != 2) {
      ASSERT_TRUE(ThumbReadThumbnail(record, ThumbnailFileOf(named[i])));
    } else if (i == 2) {
      ASSERT_TRUE(ThumbGetStockThumbnail(record, kStockMissing)) << "the unreadable file";
    }
    const PageRect place = ThumbnailPlace(box, record);
    for (int64_t y = box.y; y < box.Bottom(); ++y)
      for (int64_t x = box.x; x < box.Right(); ++x) {
        const bool inside = i < named.size() && x >= place.x && x < place.Right() && y >= place.y &&
                            y < place.Bottom();
        const Rgb want =
            inside ? fixed[record.At(static_cast<int>(x - place.x), static_cast<int>(y - place.y))]
                   : Rgb{255, 255, 255};
        ASSERT_EQ(page.Colour(static_cast<uint32_t>(x), static_cast<int32_t>(y)), want)
            << "cell " << i << " at " << x << "," << y;
      }
    // Captions are drawn in ink under the boxes that have a file, and nowhere else.
    bool ink = false;
    const PageRect& caption = grid.cells[i].caption;
    for (int64_t y = caption.y; y < caption.Bottom(); ++y)
      for (int64_t x = caption.x; x < caption.Right(); ++x)
        ink |= page.Colour(static_cast<uint32_t>(x), static_cast<int32_t>(y)) == Rgb{};
    EXPECT_EQ(ink, i < named.size()) << "cell " << i;
  }

  // On its way to the printer the page is the same picture.
  CatalogRequest request;
  size_t pages = 0;
  request.onPage = [&](ImageInfo& info, ImageStore& store, uint32_t number) {
    EXPECT_EQ(number, 1u);
    EXPECT_EQ(info.palette, ThumbGetPalette(0));
    std::vector<uint8_t> row(store.bytesPerLine);
    for (int32_t y = 0; y < info.depth; ++y) {
      store.GetRowQuiet(row, y);
      EXPECT_TRUE(std::equal(row.begin(), row.begin() + info.width,
                             page.rows[static_cast<size_t>(y)].begin()));
    }
    ++pages;
    return 0;
  };
  EXPECT_EQ(MakeCatalog(host, named, request), kCorruptedFile);
  EXPECT_EQ(pages, 1u);
}

TEST_F(CatalogTest, OneBitDestinationsGetThePageDitheredAndNothingIsLeftWhenCancelled) {
  const std::vector<std::string> files = Pictures(3);
  ASSERT_EQ(Make(files, "BMP"), kOk);
  ASSERT_EQ(Make(files, "MSP"), kOk);
  Picture colour;
  Picture mono;
  ASSERT_EQ(test::ReadPicture(out / "CAT00001.bmp", colour), 0);
  ASSERT_EQ(test::ReadPicture(out / "CAT00001.msp", mono), 0);
  ASSERT_EQ(mono.bits, 1u);

  // The same page through the dither engine in the DitherMode.
  ImageStore store(host);
  ASSERT_EQ(store.Create(colour.width, colour.depth, 8), kOk);
  for (int32_t y = 0; y < colour.depth; ++y)
    store.PutRowQuiet(colour.rows[static_cast<size_t>(y)], y);
  ImageInfo info;
  info.host = &host;
  info.width = colour.width;
  info.depth = colour.depth;
  info.bits = 8;
  info.palette = colour.palette;
  info.getLine = PlainRowSource(store);
  info.putLine = QuietRowSink(store);
  ASSERT_EQ(DitherImage(info, static_cast<uint32_t>(settings->DitherMode), "page"), kOk);
  std::vector<uint8_t> row(store.bytesPerLine);
  for (int32_t y = 0; y < colour.depth; ++y) {
    store.GetRowQuiet(row, y);
    for (uint32_t x = 0; x < colour.width; ++x)
      ASSERT_EQ(mono.Colour(x, y), info.palette[(row[x >> 3] >> (7 - (x & 7))) & 1])
          << x << "," << y;
  }

  // A click while the second page's thumbnail is made (bitmaps answer 4 after a click): the
  // first page stays, the second is never written, and no temporary file is left.
  std::filesystem::remove_all(out.path());
  std::filesystem::create_directory(out.path());
  std::filesystem::remove(ThumbnailFileOf(files[2]));
  std::array<FormatEntry, kFormatCount> table;
  std::copy(FormatTable().begin(), FormatTable().end(), table.begin());
  table[static_cast<size_t>(FindFormatByExtension("BMP"))].read =
      [](ImageInfo&, const std::string&) { return static_cast<int>(kCancelled); };
  CatalogRequest request;
  request.destRow = FindFormatByExtension("GIF");
  request.directory = out.path();
  request.layout.columns = 1;
  request.layout.rows = 2;
  CatalogResult result;
  EXPECT_EQ(MakeCatalog(host, files, request, &result, table), kCancelled);
  EXPECT_EQ(test::ListDirectory(out.path()), std::vector<std::string>{"CAT00001.gif"});
  EXPECT_EQ(result.pages, std::vector<std::string>{out / "CAT00001.gif"});
}

}  // namespace
}  // namespace pxm
