#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "batch/file_walk.h"
#include "batch/operation.h"
#include "core/host.h"
#include "process/page_layout.h"
#include "thumbs/thumbnail_record.h"

// Catalog pages: the thumbnails of many files, a grid of them to a page, with their names and
// sizes under them, written as pictures "CAT00001.gif", "CAT00002.gif", ... or handed to the
// printer.
namespace pxm {

// The layout of a catalog page, as the catalog dialog shows it.
struct CatalogLayout {
  uint32_t columns = 4;
  uint32_t rows = 5;
  bool names = true;       // caption line with the file's name
  bool sizes = true;       // caption line with the picture's width, depth and bits
  uint32_t pageWidth = 0;  // the page in pixels; 0 in either: just big enough for the grid
  uint32_t pageDepth = 0;
  friend bool operator==(const CatalogLayout&, const CatalogLayout&) = default;
};

// The `CatalogOptions` word (default 3153: 4 columns of 5 rows, names and sizes, the page as
// big as the grid):
//   bit 0        caption line with the file name
//   bits 1-3     spare, kept as they are
//   bits 4-7     rows per page, 1 to 15
//   bits 8-10    columns per page, 1 to 7
//   bit 11       caption line with the picture size
//   bits 12-21   page width in units of 8 pixels (0: as big as the grid)
//   bits 22-31   page depth in units of 8 pixels (0: as big as the grid)
// A count of 0 is read as 1.
constexpr uint32_t kCatalogMaxColumns = 7;
constexpr uint32_t kCatalogMaxRows = 15;
constexpr uint32_t kCatalogPageUnit = 8;
constexpr uint32_t kCatalogMaxPageSide = 1023 * kCatalogPageUnit;
CatalogLayout DecodeCatalogOptions(uint32_t word);
// The word for `layout`, keeping the spare bits of `previous`; counts and page sides are held
// to what the word can say (the page rounded to whole units).
uint32_t EncodeCatalogOptions(const CatalogLayout& layout, uint32_t previous);

// The grid of a catalog page with `layout`: thumbnail boxes of 96 x 96 with their caption lines.
// False when the page is too small for it.
bool LayoutCatalog(const CatalogLayout& layout, PageGrid& grid);

// The name of page `number` (from 1) in the destination's format: "CAT00001.gif"; "CAT00001"
// for a row without an extension (pages on their way to the printer).
std::string CatalogPageName(uint32_t number, const FormatEntry& destination);

// The caption lines of a thumbnail, as `layout` asks for them: the name part of `path`, and
// "W x D x B" from the record (nothing for a record that knows no size).
std::vector<std::string> CatalogCaption(const CatalogLayout& layout, const std::string& path,
                                        const ThumbnailRecord& record);

// A finished page, 8 bits in the fixed palette, held in `store`: what printing does with it.
// Answers an error code; anything but 0 ends the catalog.
using CatalogPageHandler = std::function<int(ImageInfo& page, ImageStore& store, uint32_t number)>;

struct CatalogRequest {
  CatalogLayout layout;
  // The format pages are written in; its depth rules hold (a 1-bit format gets the page
  // dithered in the DitherMode). Not used when `onPage` is set.
  int destRow = -1;
  // Where pages are written: empty is the current directory.
  std::string directory;
  // When set, each page goes here instead of into a file.
  CatalogPageHandler onPage;
};

struct CatalogResult {
  std::vector<FileResult> files;   // each file's code, and the page it is on
  std::vector<std::string> pages;  // the pages written, in order
};

// Makes the catalog of `files`, in their order, page by page. Each file shows "Reading %s" and
// its thumbnail record is taken from its ".THN" file, or made (and written there when it had
// none). A file whose thumbnail cannot be had shows the missing-thumbnail picture and its
// failure as "NAME - TEXT"; 4 (the user's click) ends the catalog, and a page in hand is not
// written. A page whose name exists is written over, after the overwrite question when
// `PromptBeforeOverwrite` is on (No leaves the file and goes on). Answers the first failure's
// code, 13 for a layout the page cannot hold, 8 for a row outside the table, 5 for a format
// without a writer.
int MakeCatalog(Host& host, std::span<const std::string> files, const CatalogRequest& request,
                CatalogResult* result = nullptr, FormatTableView table = FormatTable());

}  // namespace pxm
