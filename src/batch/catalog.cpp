#include "batch/catalog.h"

#include <algorithm>
#include <memory>
#include <new>

#include "batch/catalog_page.h"
#include "config/settings.h"
#include "core/caption_font.h"
#include "core/error_codes.h"
#include "core/fixed_palette.h"
#include "core/names.h"
#include "core/platform.h"
#include "core/sinks.h"
#include "core/sources.h"
#include "core/strings.h"
#include "process/dither.h"
#include "thumbs/auto_thumbnail.h"
#include "thumbs/make_thumbnail.h"
#include "thumbs/thumbnail_file.h"
#include "thumbs/thumbnail_page.h"
#include "thumbs/thumbnail_path.h"

namespace pxm {
namespace {

constexpr uint32_t kNameBit = 1u;
constexpr uint32_t kSpareBits = 0xEu;
constexpr uint32_t kRowsShift = 4;
constexpr uint32_t kColumnsShift = 8;
constexpr uint32_t kSizeBit = 1u << 11;
constexpr uint32_t kWidthShift = 12;
constexpr uint32_t kDepthShift = 22;
constexpr uint32_t kSideMask = 0x3FF;

// Room between thumbnails, and from the outer ones to the page's edge (half of it).
constexpr uint32_t kCellSpacing = 8;

GridRequest GridRequestOf(const CatalogLayout& layout) {
  GridRequest want;
  want.columns = layout.columns;
  want.rows = layout.rows;
  want.page = {layout.pageWidth, layout.pageDepth};
  want.box = {kThumbSize, kThumbSize};
  want.captionLines = (layout.names ? 1u : 0u) + (layout.sizes ? 1u : 0u);
  want.lineHeight = kCaptionLineHeight;
  want.spacing = kCellSpacing;
  return want;
}

// Thumbnail paths keep only the picture's name, so pictures of one name with different
// extensions share a thumbnail file: a record made from another of them is not this file's.
bool MadeFrom(const ThumbnailRecord& record, const std::string& path) {
  return record.sourceName.empty() || record.mode == kStockMode ||
         EqualsIgnoreCase(record.sourceName, NamePart(path));
}

// The record of one file: from its thumbnail file, or made now (and written to a thumbnail file
// that did not exist yet). Answers 0 with `have` set, or the failure's code with `have` false.
int FetchRecord(Host& host, const std::string& path, ThumbnailRecord& record, bool& have,
                FormatTableView table) {
  have = false;
  host.SetStatus(MessageWithName(kStrReading, path));
  host.ReportProgress(0, 0);
  const std::string file = ThumbnailFileOf(path);
  if (ThumbReadThumbnail(record, file) && MadeFrom(record, path)) {
    have = true;
    return kOk;
  }
  const bool existed = platform::FileExists(file);
  bool made = false;
  if (int code = MakeThumbnailRecord(host, path, record, made, table)) return code;
  if (!made) return kOk;  // a row that gets no thumbnail: the missing picture stands in
  have = true;
  // The catalog works from the record in hand whether or not it can be kept.
  if (!existed && ThumbWriteThumbnail(record, file)) host.FileWritten(file);
  return kOk;
}

struct Page {
  uint32_t number = 0;
  std::string name;  // the output path; empty when pages go to `onPage`
  std::vector<ThumbnailRecord> records;
  std::vector<CatalogCell> cells;
};

// Draws the page into a store and writes it (or hands it on). `written` says whether a file was
// made: No to the overwrite question makes none and is no failure.
int FinishPage(Host& host, FormatTableView table, const CatalogRequest& request,
               const PageGrid& grid, const Page& page, bool& written) {
  written = false;
  if (grid.page.width > UINT32_MAX || grid.page.depth > INT32_MAX) return kMemoryError;
  Operation op(host, table);
  ImageInfo& info = op.info;
  info.width = static_cast<uint32_t>(grid.page.width);
  info.depth = static_cast<int32_t>(grid.page.depth);
  info.bits = 8;
  info.palette = ThumbGetPalette(0);
  const std::string shown =
      page.name.empty() ? CatalogPageName(page.number, FormatAt(-1)) : page.name;
  SetText(info.fileName, NamePart(shown), kMaxNameLength);
  info.sourceName = info.fileName;
  if (int code = op.store.Create(info.width, info.depth, 8, SpillPolicy())) return code;

  std::vector<uint8_t> row(op.store.bytesPerLine, kCatalogPaper);
  const std::span<uint8_t> pixels(row.data(), info.width);
  for (int32_t y = 0; y < info.depth; ++y) {
    DrawCatalogRow(grid, page.cells, static_cast<uint64_t>(y), pixels);
    if (op.store.PutRow(row, y)) return op.store.Explain(kCancelled);
  }
  if (request.onPage) return op.store.Explain(request.onPage(info, op.store, page.number));

  const FormatEntry& destination = op.table[static_cast<size_t>(request.destRow)];
  if (destination.maxBits < info.bits) {
    info.getLine = PlainRowSource(op.store);
    info.putLine = QuietRowSink(op.store);
    const auto mode = static_cast<uint32_t>(CurrentSettings().DitherMode);
    if (int code = DitherImage(info, mode, NamePart(page.name))) return op.store.Explain(code);
  }
  if (CurrentSettings().PromptBeforeOverwrite && platform::FileExists(page.name) &&
      !host.ConfirmOverwrite(page.name))
    return kOk;
  const int code = WriteDestination(op, request.destRow, page.name,
                                    ProgressRowSource(op.store, static_cast<uint64_t>(info.depth)));
  if (code != kOk) return op.store.Explain(code);
  written = true;
  op.store.Free();
  AutoCreateThumbnail(host, page.name);
  return kOk;
}

}  // namespace

CatalogLayout DecodeCatalogOptions(uint32_t word) {
  CatalogLayout layout;
  layout.names = (word & kNameBit) != 0;
  layout.sizes = (word & kSizeBit) != 0;
  layout.rows = std::max((word >> kRowsShift) & 0xFu, 1u);
  layout.columns = std::max((word >> kColumnsShift) & 0x7u, 1u);
  layout.pageWidth = ((word >> kWidthShift) & kSideMask) * kCatalogPageUnit;
  layout.pageDepth = ((word >> kDepthShift) & kSideMask) * kCatalogPageUnit;
  return layout;
}

uint32_t EncodeCatalogOptions(const CatalogLayout& layout, uint32_t previous) {
  const auto units = [](uint32_t side) {
    return std::min((side + kCatalogPageUnit / 2) / kCatalogPageUnit, kSideMask);
  };
  uint32_t word = previous & kSpareBits;
  if (layout.names) word |= kNameBit;
  if (layout.sizes) word |= kSizeBit;
  word |= std::clamp(layout.rows, 1u, kCatalogMaxRows) << kRowsShift;
  word |= std::clamp(layout.columns, 1u, kCatalogMaxColumns) << kColumnsShift;
  word |= units(layout.pageWidth) << kWidthShift;
  word |= units(layout.pageDepth) << kDepthShift;
  return word;
}

bool LayoutCatalog(const CatalogLayout& layout, PageGrid& grid) {
  return LayoutGrid(GridRequestOf(layout), grid);
}

std::string CatalogPageName(uint32_t number, const FormatEntry& destination) {
  const std::string extension = ToLowerAscii(destination.extension);
  if (extension.empty()) return FormatText("CAT%-5.5u", number);
  return FormatText("CAT%-5.5u.%s", number, extension.c_str());
}

std::vector<std::string> CatalogCaption(const CatalogLayout& layout, const std::string& path,
                                        const ThumbnailRecord& record) {
  std::vector<std::string> lines;
  if (layout.names) lines.push_back(NamePart(path));
  if (layout.sizes) {
    if (record.sourceWidth && record.sourceDepth)
      lines.push_back(
          FormatText("%u x %u x %u", record.sourceWidth, record.sourceDepth, record.sourceBits));
    else
      lines.emplace_back();
  }
  return lines;
}

int MakeCatalog(Host& host, std::span<const std::string> files, const CatalogRequest& request,
                CatalogResult* result, FormatTableView table) {
  WaitCursor cursor(host);
  // One copy of the settings for the whole catalog: a dialog changed meanwhile changes the next.
  OperationSettings settings;
  if (!request.onPage) {
    if (request.destRow < 0 || request.destRow >= kFormatCount) return kUnsupportedFormat;
    if (!table[static_cast<size_t>(request.destRow)].write) return kUnsupportedFunction;
  }
  PageGrid grid;
  if (!LayoutCatalog(request.layout, grid)) return kUnsuitableImage;
  const size_t perPage = grid.cells.size();

  int first = kOk;
  const auto fail = [&](const std::string& name, int code) {
    host.ShowMessage(FileErrorLine(name, code));
    if (first == kOk) first = code;
  };
  try {
    const std::unique_ptr<ThumbnailRecord> missing = MissingPicture();
    const ThumbnailRecord empty;
    Page page;
    for (size_t start = 0; start < files.size(); start += perPage) {
      if (host.AbortRequested()) return first == kOk ? kCancelled : first;
      const size_t count = std::min(perPage, files.size() - start);
      ++page.number;
      page.name.clear();
      if (!request.onPage)
        page.name =
            JoinPath(request.directory,
                     CatalogPageName(page.number, table[static_cast<size_t>(request.destRow)]));
      page.records.assign(count, ThumbnailRecord{});
      page.cells.assign(count, CatalogCell{});
      std::vector<FileResult> placed;
      for (size_t i = 0; i < count; ++i) {
        const std::string& path = files[start + i];
        bool have = false;
        const int code = FetchRecord(host, path, page.records[i], have, table);
        if (!have && missing) {
          page.records[i] = *missing;
          have = true;
        }
        page.cells[i].record = have ? &page.records[i] : nullptr;
        page.cells[i].caption =
            CatalogCaption(request.layout, path, code ? empty : page.records[i]);
        placed.push_back({start + i, path, {}, code});
        if (code != kOk) fail(path, code);
        if (code == kCancelled) {
          if (result) result->files.insert(result->files.end(), placed.begin(), placed.end());
          return first;
        }
      }
      bool written = false;
      const int code = FinishPage(host, table, request, grid, page, written);
      if (written) {
        for (FileResult& r : placed) r.output = page.name;
        if (result) result->pages.push_back(page.name);
      }
      if (result) result->files.insert(result->files.end(), placed.begin(), placed.end());
      if (code != kOk) {
        fail(page.name.empty() ? CatalogPageName(page.number, FormatAt(-1)) : page.name, code);
        if (code == kCancelled) return first;
      }
    }
  } catch (const std::bad_alloc&) {
    return first == kOk ? kMemoryError : first;
  }
  return first;
}

}  // namespace pxm
