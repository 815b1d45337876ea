#pragma once

#include <cstdint>

// Rows of TIFF samples turned into rows in the store's packing. The routine is picked once per
// picture; common layouts (1, 4 and 8-bit indices, 8-bit RGB) are plain copies.
namespace pxm {

struct TiffSamples {
  uint32_t width = 0;
  uint32_t bitsPerSample = 1;    // 1 to 32
  uint32_t samplesPerPixel = 1;  // samples after the first three (alpha and such) are dropped
  bool wideBigEndian = false;    // byte order of 16-, 24- and 32-bit samples in the row
  bool whiteIsZero = false;      // grey levels run from white: 1-bit rows and grey RGB invert
  bool signedSamples = false;    // two's complement: the middle of the range is zero
  bool colour = false;           // three samples make a pixel (RGB)
  uint32_t bits = 1;             // the record's bits: 1, 2 to 8, or 24
};

class TiffRowConverter {
 public:
  explicit TiffRowConverter(const TiffSamples& samples);

  // Bytes of one row of samples in the file: rows start on a byte.
  static uint64_t FileRowBytes(const TiffSamples& samples);
  uint64_t FileRowBytes() const { return FileRowBytes(samples_); }

  // `in` holds FileRowBytes() bytes; `out` a stored row.
  void Convert(const uint8_t* in, uint8_t* out) const { routine_(samples_, in, out); }

 private:
  using Routine = void (*)(const TiffSamples&, const uint8_t*, uint8_t*);
  TiffSamples samples_;
  Routine routine_;
};

// Puts the samples of one plane row (`bitsPerSample` each) into place `k` of a row of `planes`
// samples per pixel. Whole-byte samples move as bytes; others bit by bit.
void WeaveSamples(const uint8_t* plane, uint8_t* chunky, uint32_t width, uint32_t bitsPerSample,
                  uint32_t planes, uint32_t k);

}  // namespace pxm
