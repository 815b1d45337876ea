// The engine side of printing: which dots the bands fill, with what, and when it stops.

#include <gtest/gtest.h>

#include <algorithm>

#include "batch/print_job.h"
#include "config/settings.h"
#include "core/error_codes.h"
#include "core/levels.h"
#include "core/scripted_host.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::Picture;

// A page the bands are drawn on, as a printer would: 1-bit bands dot for dot, others stretched
// by nearest neighbour. Counts how often each dot was drawn.
struct Canvas {
  explicit Canvas(PageSize s)
      : size(s), dots(s.width * s.depth, Rgb{1, 2, 3}), hits(s.width * s.depth, 0) {}

  int Draw(const PrintBand& band) {
    bands.push_back(band);
    EXPECT_LE(band.rows, 64u);
    for (int64_t y = band.target.y; y < band.target.Bottom(); ++y)
      for (int64_t x = band.target.x; x < band.target.Right(); ++x) {
        if (x < 0 || y < 0 || x >= static_cast<int64_t>(size.width) ||
            y >= static_cast<int64_t>(size.depth))
          continue;
        const auto sx = static_cast<size_t>((x - band.target.x) * band.width / band.target.width);
        const auto sy = static_cast<size_t>((y - band.target.y) * band.rows / band.target.depth);
        const uint8_t* row = band.pixels.data() + sy * band.bytesPerLine;
        Rgb c;
        if (band.bits == 24)
          c = {row[3 * sx], row[3 * sx + 1], row[3 * sx + 2]};
        else if (band.bits == 8)
          c = (*band.palette)[row[sx]];
        else
          c = (*band.palette)[(row[sx >> 3] >> (7 - (sx & 7))) & 1];
        const size_t i = static_cast<size_t>(y) * size.width + static_cast<size_t>(x);
        dots[i] = c;
        ++hits[i];
      }
    return kOk;
  }
  BandSink Sink() {
    return [this](const PrintBand& band) { return Draw(band); };
  }
  Rgb At(int64_t x, int64_t y) const {
    return dots[static_cast<size_t>(y) * size.width + static_cast<size_t>(x)];
  }
  int Hits(int64_t x, int64_t y) const {
    return hits[static_cast<size_t>(y) * size.width + static_cast<size_t>(x)];
  }
  bool Inside(const PageRect& r, int64_t x, int64_t y) const {
    return x >= r.x && x < r.Right() && y >= r.y && y < r.Bottom();
  }

  PageSize size;
  std::vector<Rgb> dots;
  std::vector<int> hits;
  std::vector<PrintBand> bands;  // their pixels are gone once drawn
};

class PrintTest : public ::testing::Test {
 protected:
  std::string Write(const Picture& p, const std::string& name) {
    EXPECT_EQ(test::WritePicture(p, dir / name), 0);
    return dir / name;
  }

  ScopedSettings settings;
  test::TempDir dir;
  ScriptedHost host;
};

TEST_F(PrintTest, HalftonesCoverEveryDotOfThePictureOnceWithTheCaptionUnderIt) {
  // Black and white halves: the halftone leaves no error to spread, so each dot shows the half
  // it comes from.
  Picture p = Picture::Blank(20, 10, 24);
  for (int32_t y = 0; y < 10; ++y)
    for (uint32_t x = 10; x < 20; ++x) p.SetPixel(x, y, 0xFFFFFF);
  const std::string source = Write(p, "halves.bmp");
  settings->DitherPrintedHalftones = 1;
  const PrinterPage page{{150, 210}, 72, 72};
  for (int spill : {0, 1}) {
    settings->UseVirtualMemoryAlways = spill;
    Canvas canvas(page.size);
    host.statuses.clear();
    ASSERT_EQ(PrintFile(host, source, page, canvas.Sink()), kOk);
    EXPECT_EQ(std::count(host.statuses.begin(), host.statuses.end(), "Reading " + source), 1);
    EXPECT_EQ(host.statuses.back(), "Printing halves.bmp");
    const PrintPlacement plan = PlanPrint(page, {20, 10}, "halves.bmp");
    ASSERT_EQ(plan.picture, (PageRect{0, 60, 150, 75})) << "fitted and centred above the caption";
    bool ink = false;
    for (int64_t y = 0; y < 210; ++y)
      for (int64_t x = 0; x < 150; ++x) {
        if (canvas.Inside(plan.picture, x, y)) {
          ASSERT_EQ(canvas.Hits(x, y), 1) << x << "," << y;
          const bool white = (x - plan.picture.x) * 20 / 150 >= 10;
          ASSERT_EQ(canvas.At(x, y), white ? (Rgb{255, 255, 255}) : Rgb{}) << x << "," << y;
        } else if (canvas.Inside(plan.caption, x, y)) {
          ASSERT_EQ(canvas.Hits(x, y), 1);
          ink |= canvas.At(x, y) == Rgb{};
        } else {
          ASSERT_EQ(canvas.Hits(x, y), 0) << "spill " << spill << " at " << x << "," << y;
        }
      }
    EXPECT_TRUE(ink) << "the file name is printed";
    EXPECT_GT(canvas.bands.size(), 2u) << "the picture comes in bands";
  }

  // A click while the first band is printed: no further band is sent.
  Canvas stopped(page.size);
  const BandSink click = [&](const PrintBand& band) {
    host.abortOnPoll = host.polls + 1;
    return stopped.Draw(band);
  };
  EXPECT_EQ(PrintFile(host, source, page, click), kCancelled);
  EXPECT_EQ(stopped.bands.size(), 1u);
}

TEST_F(PrintTest, ColourGoesAtThePictureResolutionThroughContrastAndBrightness) {
  const Picture p = test::Pattern(13, 70, 8);
  const std::string source = Write(p, "colour.bmp");
  settings->PrintOptions = 100 | static_cast<int32_t>(kPrintActualSize);
  settings->CentrePrintedImages = 0;
  settings->PrintFileNames = 0;
  settings->PrintContrast = 10;
  settings->PrintBrightness = 40;
  const PrinterPage page{{600, 600}, 300, 300};
  Canvas canvas(page.size);
  ASSERT_EQ(PrintFile(host, source, page, canvas.Sink()), kOk);

  const LevelTable levels = ContrastBrightnessTable(10, 40, 0, 255);
  int64_t bottom = 0;
  for (const PrintBand& band : canvas.bands) {
    EXPECT_EQ(band.bits, 8u);
    EXPECT_EQ(band.width, 13u);
    EXPECT_EQ(band.target.x, 0);
    EXPECT_EQ(band.target.width, 39u) << "13 pixels at 100 ppi on a 300 dpi page";
    EXPECT_EQ(band.target.y, bottom) << "bands follow each other without gap or overlap";
    bottom = band.target.Bottom();
  }
  EXPECT_EQ(bottom, 210);
  EXPECT_EQ(canvas.bands.size(), 2u);
  for (int32_t y = 0; y < 70; ++y)
    for (uint32_t x = 0; x < 13; ++x) {
      const Rgb c = p.Colour(x, y);
      EXPECT_EQ(canvas.At(3 * x + 1, 3 * y + 1),
                (Rgb{levels[c.red], levels[c.green], levels[c.blue]}));
    }

  // A printer that fails stops the job with its code.
  EXPECT_EQ(PrintFile(host, source, page, [](const PrintBand&) { return 15; }), 15);
}

TEST_F(PrintTest, ExpandedHalftoneCellsGrowWithThePicture) {
  const std::string source = Write(test::Pattern(6, 4, 24), "grey.bmp");
  settings->DitherPrintedHalftones = 1;
  settings->PrintFileNames = 0;
  const PrinterPage page{{60, 40}, 72, 72};  // ten dots a picture pixel
  for (int expand : {1, 0}) {
    settings->ExpandPrintedHalftones = expand;
    Canvas canvas(page.size);
    ASSERT_EQ(PrintFile(host, source, page, canvas.Sink()), kOk);
    bool uniform = true;
    for (int64_t y = 0; y < 40; ++y)
      for (int64_t x = 0; x < 60; ++x) {
        ASSERT_EQ(canvas.Hits(x, y), 1);
        uniform &= canvas.At(x, y) == canvas.At(x / 10 * 10, y / 10 * 10);
      }
    EXPECT_EQ(uniform, expand == 1) << "expanded halftones dither the picture's own pixels";
  }
}

}  // namespace
}  // namespace pxm
