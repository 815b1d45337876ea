#pragma once

#include <cstdint>
#include <string_view>

#include "core/file_io.h"
#include "core/image_info.h"
#include "formats/tiff_directory.h"
#include "formats/tiff_rows.h"

// What the first directory of a TIFF file says about its picture, worked out once for the info
// handler and again by the reader, which must agree with what info told the store.
namespace pxm {

enum TiffCompression : uint32_t {
  kTiffNone = 1,
  kTiffHuffman = 2,
  kTiffGroup3 = 3,
  kTiffGroup4 = 4,
  kTiffLzw = 5,
  kTiffOldJpeg = 6,
  kTiffJpeg = 7,
  kTiffDeflate = 8,
  kTiffPackBits = 32773,
  kTiffOldDeflate = 32946,
};

enum TiffPhotometric : uint32_t {
  kTiffWhiteIsZero = 0,
  kTiffBlackIsZero = 1,
  kTiffRgb = 2,
  kTiffPalette = 3,
  kTiffYCbCr = 6,
};

// How the rows come out of the file.
enum class TiffRoute {
  kOwnStrips,    // uncompressed or PackBits strips read by the front end
  kScanlines,    // libtiff decodes scanlines in the file's samples
  kJpegAsRgb,    // libtiff's JPEG codec turns YCbCr into RGB scanlines
  kRgbaStrips,   // libtiff's RGBA conversion for CMYK, YCbCr and other colour models
};

struct TiffPicture {
  uint32_t width = 0;
  uint32_t length = 0;
  uint32_t bitsPerSample = 1;
  uint32_t samplesPerPixel = 1;
  uint32_t compression = kTiffNone;
  uint32_t photometric = kTiffBlackIsZero;
  uint32_t planar = 1;
  uint32_t rowsPerStrip = 0xFFFFFFFFu;
  uint32_t sampleFormat = 1;
  uint32_t bits = 1;  // the record's: 1, 2 to 8, or 24
  TiffRoute route = TiffRoute::kOwnStrips;

  // The samples of one row as the own strip reader and the scanline route see them.
  TiffSamples Samples(bool wideBigEndian) const;
  uint64_t StripCount() const;
};

// Answers 0, or 2 when width, length or strip offsets are missing or the sample layout is
// impossible.
int DescribeTiff(InputFile& file, const TiffDirectory& dir, TiffPicture& picture);

// Whether the file is long enough to hold the picture at the best ratio its compression can
// reach; a few bytes must not claim a picture of gigabytes.
bool TiffDataCanHold(const TiffPicture& picture, uint64_t fileSize);

// Fills the record's palette: black and white, a grey ramp, or the file's colour map.
void TiffPalette(InputFile& file, const TiffDirectory& dir, const TiffPicture& picture,
                 Palette& palette);

// "Uncompressed", "LZW", ... for a compression code.
std::string_view TiffCompressionName(uint32_t compression);

}  // namespace pxm
