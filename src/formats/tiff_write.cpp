// Writing TIFF files: a baseline little-endian file that common readers open, written through
// libtiff. Strips of about 8 KiB, the resolution from TiffResolution in dots per inch, and a
// Software tag. Compression comes from the TiffOptions row by the picture's depth.

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/levels.h"
#include "core/row_format.h"
#include "formats/tiff.h"
#include "formats/tiff_library.h"
#include "formats/tiff_picture.h"

namespace pxm {
namespace {

// Compression codes per TiffOptions row: for 1-bit, 2- to 8-bit and 24-bit pictures.
constexpr std::array<std::array<uint16_t, 3>, 6> kCompressionTable = {{
    {kTiffNone, kTiffNone, kTiffNone},          // "None - None - None"
    {kTiffPackBits, kTiffNone, kTiffNone},      // "PBits - None - None"
    {kTiffPackBits, kTiffPackBits, kTiffNone},  // "PBits - PBits - None"
    {kTiffLzw, kTiffLzw, kTiffNone},            // "LZW - LZW - None"
    {kTiffLzw, kTiffLzw, kTiffLzw},             // "LZW - LZW - LZW"
    {kTiffGroup4, kTiffLzw, kTiffLzw},          // "Grp4 - LZW - LZW"
}};

constexpr uint64_t kStripBytes = 8192;
constexpr char kSoftware[] = "Pixmill";
constexpr int kTableOff = 65535;  // TiffContrast or TiffBrightness at this value: no grey table

// Contrast and brightness for grey files, over the full range.
LevelTable GreyTable(int contrast, int brightness) {
  if (contrast == kTableOff || brightness == kTableOff)
    return ContrastBrightnessTable(0, 0, 0, 255);
  return ContrastBrightnessTable(contrast, brightness, 0, 255);
}

// The colour map's gamma: TiffGamma in hundredths is the exponent itself.
LevelTable ColourMapGammaTable(int gammaHundredths) {
  return PowerCurve(gammaHundredths * 0.01);
}

// What is written for the picture, decided once before the rows.
struct Plan {
  uint16_t compression = kTiffNone;
  uint16_t photometric = kTiffBlackIsZero;
  uint16_t bitsPerSample = 8;
  uint16_t samplesPerPixel = 1;
  bool greyMapped = false;   // palette indices become grey levels through `grey`
  LevelTable grey{};
  std::vector<uint16_t> colourMap;  // all reds, greens, blues; empty for no map
};

Plan MakePlan(const ImageInfo& info, const Settings& s) {
  Plan plan;
  const size_t row = static_cast<size_t>(std::clamp(s.TiffOptions, 0, 5));
  const uint32_t storage = StorageBits(info.bits);
  const size_t column = storage == 1 ? 0 : storage == 24 ? 2 : 1;
  plan.compression = kCompressionTable[row][column];
  if (storage == 1) {
    // One-bit pictures keep their look: a palette whose first entry is the lighter one is
    // written as white-is-zero.
    const Rgb& a = info.palette[0];
    const Rgb& b = info.palette[1];
    plan.bitsPerSample = 1;
    plan.photometric = Luminance(a.red, a.green, a.blue) > Luminance(b.red, b.green, b.blue)
                           ? kTiffWhiteIsZero
                           : kTiffBlackIsZero;
  } else if (storage == 24) {
    plan.photometric = kTiffRgb;
    plan.samplesPerPixel = 3;
  } else if (s.CreateTifColour != 0) {
    plan.photometric = kTiffPalette;
    plan.bitsPerSample = static_cast<uint16_t>(storage);
    const size_t entries = size_t{1} << storage;
    const LevelTable gamma = ColourMapGammaTable(s.TiffGamma);
    plan.colourMap.resize(3 * entries);
    for (size_t i = 0; i < entries; ++i) {
      plan.colourMap[i] = static_cast<uint16_t>(gamma[info.palette[i].red] << 8);
      plan.colourMap[entries + i] = static_cast<uint16_t>(gamma[info.palette[i].green] << 8);
      plan.colourMap[2 * entries + i] = static_cast<uint16_t>(gamma[info.palette[i].blue] << 8);
    }
  } else {
    // Grey through a palette-to-grey table. The expanded grey takes the first byte of each
    // entry three times, as the dithering engine does, so both give the same greys.
    plan.greyMapped = true;
    const LevelTable table = GreyTable(s.TiffContrast, s.TiffBrightness);
    for (size_t i = 0; i < 256; ++i) {
      const Rgb& c = info.palette[i];
      if (s.CreateTifGreyExpand != 0) {
        plan.grey[i] = table[static_cast<size_t>(FirstByteGrey(c.red))];
      } else {
        plan.grey[i] = static_cast<uint8_t>(Luminance(c.red, c.green, c.blue));
      }
    }
  }
  return plan;
}

void SetTags(TIFF* t, const ImageInfo& info, const Plan& plan, uint32_t rowsPerStrip,
             int resolution) {
  TIFFSetField(t, TIFFTAG_IMAGEWIDTH, info.width);
  TIFFSetField(t, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(info.depth));
  TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, plan.bitsPerSample);
  TIFFSetField(t, TIFFTAG_SAMPLESPERPIXEL, plan.samplesPerPixel);
  TIFFSetField(t, TIFFTAG_COMPRESSION, plan.compression);
  TIFFSetField(t, TIFFTAG_PHOTOMETRIC, plan.photometric);
  TIFFSetField(t, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(t, TIFFTAG_ROWSPERSTRIP, rowsPerStrip);
  TIFFSetField(t, TIFFTAG_XRESOLUTION, static_cast<double>(resolution));
  TIFFSetField(t, TIFFTAG_YRESOLUTION, static_cast<double>(resolution));
  TIFFSetField(t, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
  TIFFSetField(t, TIFFTAG_SOFTWARE, kSoftware);
  if (!plan.colourMap.empty()) {
    const size_t n = plan.colourMap.size() / 3;
    TIFFSetField(t, TIFFTAG_COLORMAP, plan.colourMap.data(), plan.colourMap.data() + n,
                 plan.colourMap.data() + 2 * n);
  }
}

int WriteRows(ImageInfo& info, TIFF* t, const Plan& plan) {
  const uint32_t storage = StorageBits(info.bits);
  std::vector<uint8_t> in(WorkingRowSize(info.width, info.bits), 0);
  std::vector<uint8_t> grey(plan.greyMapped ? info.width : 0);
  for (int32_t y = 0; y < info.depth; ++y) {
    if (info.getLine(in, y) != 0) return kCancelled;
    uint8_t* row = in.data();
    if (plan.greyMapped) {
      if (storage == 4) {
        for (uint32_t x = 0; x < info.width; ++x)
          grey[x] = plan.grey[(x & 1) ? (in[x >> 1] & 0x0F) : (in[x >> 1] >> 4)];
      } else {
        for (uint32_t x = 0; x < info.width; ++x) grey[x] = plan.grey[in[x]];
      }
      row = grey.data();
    }
    if (TIFFWriteScanline(t, row, static_cast<uint32_t>(y), 0) < 0) return kWriteError;
  }
  return TIFFFlush(t) ? kOk : kWriteError;
}

int DoWrite(ImageInfo& info, const std::string& path) {
  const Settings& s = CurrentSettings();
  const Plan plan = MakePlan(info, s);

  OutputFile file;
  if (!file.Create(path)) return kCreateError;
  TiffOutput out{&file, 0};
  TiffHandle t = OpenTiffWriter(out, path);
  if (!t) return kWriteError;
  const uint64_t lineBytes =
      (uint64_t{info.width} * plan.bitsPerSample * plan.samplesPerPixel + 7) / 8;
  const auto rowsPerStrip = static_cast<uint32_t>(
      std::clamp<uint64_t>(kStripBytes / std::max<uint64_t>(lineBytes, 1), 1,
                           static_cast<uint64_t>(std::max(info.depth, 1))));
  SetTags(t.get(), info, plan, rowsPerStrip, std::max(s.TiffResolution, 1));
  if (int code = WriteRows(info, t.get(), plan)) return code;  // `file` removes what was written
  t.reset();
  return file.Commit() ? kOk : kWriteError;
}

}  // namespace

int TiffWrite(ImageInfo& info, const std::string& path) {
  try {
    return DoWrite(info, path);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

}  // namespace pxm
