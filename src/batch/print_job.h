#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "batch/operation.h"
#include "core/host.h"
#include "process/page_layout.h"

// The engine side of the Print command: one picture to a page, placed by the page layout rules,
// with contrast and brightness, halftoned by the dither engine when asked, and handed to the
// printer in bands of rows so that a picture in the spill file never has to be in memory whole.
// The front end owns the printer: it asks for the page, draws each band where it says, and
// starts the next page or abandons the job. Status texts: "Reading %s", then "Printing %s".
namespace pxm {

// The print settings as the print dialog shows them. `PrintOptions` packs two of them (default
// 200: fit to the page, 200 pixels per inch at actual size):
//   bits 0-11   pixels per inch of a picture printed at actual size (0 is read as 200)
//   bit 12      actual size; clear, the picture is fitted to the page
struct PrintSetup {
  bool fitToPage = true;
  uint32_t pixelsPerInch = 200;
  bool centre = true;     // CentrePrintedImages
  bool fileNames = true;  // PrintFileNames
  int32_t contrast = 30;  // PrintContrast
  int32_t brightness = 30;
  bool halftone = false;  // DitherPrintedHalftones: made by the dither engine in the DitherMode
  bool expand = false;    // ExpandPrintedHalftones: halftone cells grow with the picture
  friend bool operator==(const PrintSetup&, const PrintSetup&) = default;
};

constexpr uint32_t kDefaultPrintPpi = 200;
constexpr uint32_t kPrintActualSize = 1u << 12;

// The setup the settings in force hold, and the settings written back from a setup (the print
// dialog's Ok); bits of `PrintOptions` above 12 are kept.
PrintSetup CurrentPrintSetup();
void StorePrintSetup(const PrintSetup& setup);

// The printable area of a page and the printer's resolution.
struct PrinterPage {
  PageSize size;  // in dots
  uint32_t dpiX = 300;
  uint32_t dpiY = 300;
};

// Rows for the printer. `pixels` holds `rows` rows of `width` pixels, `bytesPerLine` apart, in
// the store's packing: 1 bit (most significant first, a set bit is palette entry 1), 8 bits
// (palette indexes) or 24 bits (red, green, blue). They fill `target`, in dots of the page:
// 1-bit bands are always at the printer's resolution (one pixel a dot, exactly as made); other
// bands are at the picture's own resolution and are stretched to `target`, which may reach past
// the page's edge by less than a picture pixel.
struct PrintBand {
  PageRect target;
  uint32_t width = 0;
  uint32_t rows = 0;
  uint32_t bits = 0;
  const Palette* palette = nullptr;  // for 1 and 8 bits
  size_t bytesPerLine = 0;
  std::span<const uint8_t> pixels;
};

// Draws a band; answers 0 to go on, or the code to stop with (15, "Printer error").
using BandSink = std::function<int(const PrintBand& band)>;

// Where the picture and its caption go on `page` with the settings in force: what the print
// preview shows and the bands fill.
PrintPlacement PlanPrint(const PrinterPage& page, PageSize picture, std::string_view name);

// Reads `source` and prints it on one page: the picture's bands, then the caption's. Answers 0,
// the reader's code, 4 when the user clicks (no further band is sent; the front end abandons
// the page), or the sink's code.
int PrintFile(Host& host, const std::string& source, const PrinterPage& page, const BandSink& sink,
              FormatTableView table = FormatTable());

// Prints a picture already held in `store` (one byte per pixel for 2 to 8 bits), as a catalog
// page on its way to the printer is; `info` describes it and `name` is its caption. Halftones
// are made in the store itself, so the picture is spent afterwards.
int PrintHeldPicture(Host& host, ImageInfo& info, ImageStore& store, std::string_view name,
                     const PrinterPage& page, const BandSink& sink);

}  // namespace pxm
