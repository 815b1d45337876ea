#include "batch/print_job.h"

#include <algorithm>
#include <new>

#include "batch/print_bands.h"
#include "config/settings.h"
#include "core/error_codes.h"
#include "core/names.h"
#include "core/sinks.h"
#include "core/sources.h"
#include "core/strings.h"
#include "process/dither.h"

namespace pxm {
namespace {

constexpr uint32_t kPpiMask = 0xFFF;

// Prints the picture in `store`; `picture` is its size as the file gives it (the store may hold
// it enlarged for expanded halftones).
int PrintPicture(Host& host, ImageInfo& info, ImageStore& store, std::string_view name,
                 const PrinterPage& page, PageSize picture, const BandSink& sink) {
  const uint32_t packing = store.storageBits;
  if (packing != 1 && packing != 8 && packing != 24) return kUnsuitableImage;
  // A copy of the settings of its own: the dither engine takes the print's contrast and
  // brightness in place of the Dither command's.
  OperationSettings settings;
  const PrintSetup setup = CurrentPrintSetup();
  settings->DitherContrast = setup.contrast;
  settings->DitherBrightness = setup.brightness;
  const auto mode = static_cast<uint32_t>(settings->DitherMode);

  const PrintPlacement plan = PlanPrint(page, picture, name);
  host.SetStatus(MessageWithName(kStrPrinting, name));
  host.ReportProgress(0, 0);
  store.ClearAbort();
  BandJob job{host, store, sink, page.size};
  int code;
  if (packing == 1) {
    code = SendBits(job, store, info.palette, plan.picture);
  } else if (!setup.halftone) {
    code = SendPicture(job, info, plan.picture, setup.contrast, setup.brightness);
  } else if (setup.expand) {
    info.getLine = PlainRowSource(store);
    info.putLine = QuietRowSink(store);
    code = DitherImage(info, mode, name);
    host.SetStatus(MessageWithName(kStrPrinting, name));
    if (code == kOk) code = SendBits(job, store, info.palette, plan.picture);
  } else {
    code = SendDeviceHalftone(job, info, plan.picture, mode, name);
  }
  if (code == kOk && !plan.captionText.empty()) code = SendCaption(job, plan);
  return store.Explain(code);
}

}  // namespace

PrintSetup CurrentPrintSetup() {
  const Settings& s = CurrentSettings();
  const auto word = static_cast<uint32_t>(s.PrintOptions);
  PrintSetup setup;
  setup.fitToPage = !(word & kPrintActualSize);
  setup.pixelsPerInch = (word & kPpiMask) ? (word & kPpiMask) : kDefaultPrintPpi;
  setup.centre = s.CentrePrintedImages != 0;
  setup.fileNames = s.PrintFileNames != 0;
  setup.contrast = s.PrintContrast;
  setup.brightness = s.PrintBrightness;
  setup.halftone = s.DitherPrintedHalftones != 0;
  setup.expand = s.ExpandPrintedHalftones != 0;
  return setup;
}

void StorePrintSetup(const PrintSetup& setup) {
  Settings& s = CurrentSettings();
  uint32_t word = static_cast<uint32_t>(s.PrintOptions) & ~(kPpiMask | kPrintActualSize);
  word |= std::clamp(setup.pixelsPerInch, 1u, kPpiMask);
  if (!setup.fitToPage) word |= kPrintActualSize;
  s.PrintOptions = static_cast<int32_t>(word);
  s.CentrePrintedImages = setup.centre ? 1 : 0;
  s.PrintFileNames = setup.fileNames ? 1 : 0;
  s.PrintContrast = setup.contrast;
  s.PrintBrightness = setup.brightness;
  s.DitherPrintedHalftones = setup.halftone ? 1 : 0;
  s.ExpandPrintedHalftones = setup.expand ? 1 : 0;
}

PrintPlacement PlanPrint(const PrinterPage& page, PageSize picture, std::string_view name) {
  const PrintSetup setup = CurrentPrintSetup();
  PrintRequest request;
  request.page = page.size;
  request.dpiX = page.dpiX;
  request.dpiY = page.dpiY;
  request.picture = picture;
  // No reader reports a picture's own resolution yet: every picture is taken to have the one
  // the print settings name.
  request.ppiX = request.ppiY = setup.pixelsPerInch;
  request.fitToPage = setup.fitToPage;
  request.centre = setup.centre;
  if (setup.fileNames) request.caption = name;
  return PlacePrint(request);
}

int PrintHeldPicture(Host& host, ImageInfo& info, ImageStore& store, std::string_view name,
                     const PrinterPage& page, const BandSink& sink) {
  try {
    return PrintPicture(host, info, store, name, page,
                        {store.width, static_cast<uint64_t>(std::max(store.depth, 0))}, sink);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

int PrintFile(Host& host, const std::string& source, const PrinterPage& page, const BandSink& sink,
              FormatTableView table) {
  WaitCursor cursor(host);
  Operation op(host, table);
  int code;
  try {
    code = [&] {
      int row;
      if (int c = OpenSource(op, source, row)) return c;
      const PageSize picture{op.info.width, static_cast<uint64_t>(std::max(op.info.depth, 0))};
      const PrintSetup setup = CurrentPrintSetup();
      // Expanded halftones are made on the picture read enlarged, as the Dither command reads
      // it, and then stretched to the page: each halftone cell covers many dots.
      uint32_t factor = 1;
      if (setup.halftone && setup.expand && op.info.bits != 1)
        factor = static_cast<uint32_t>(
            HalftoneSizeFactor(static_cast<uint32_t>(CurrentSettings().DitherMode)));
      const uint64_t width = uint64_t{op.info.width} * factor;
      const int64_t depth = int64_t{op.info.depth} * factor;
      if (width > UINT32_MAX || depth > INT32_MAX) return static_cast<int>(kMemoryError);
      const uint32_t storeBits = op.info.bits == 1 ? 1 : op.info.bits <= 8 ? 8 : 24;
      if (int c = op.store.Create(static_cast<uint32_t>(width), static_cast<int32_t>(depth),
                                  storeBits, SpillPolicy()))
        return c;
      op.store.zoom = static_cast<int>(factor);
      const auto total = static_cast<uint64_t>(op.info.depth);
      LineSink rows = factor == 1 ? BytePerPixelSink(op.store, total, op.info.bits)
                                  : EnlargingSink(op.store, total, op.info.bits);
      if (int c = ReadSource(op, row, source, std::move(rows))) return c;
      if (int c = PostRead(op.info)) return c;
      op.info.width = static_cast<uint32_t>(width);
      op.info.depth = static_cast<int32_t>(depth);
      return PrintPicture(host, op.info, op.store, NamePart(source), page, picture, sink);
    }();
  } catch (const std::bad_alloc&) {
    code = kMemoryError;
  }
  PostRead(op.info);  // a reader's own file goes whatever happened after it was made
  return op.store.Explain(code);
}

}  // namespace pxm
