#include "formats/tiff_rows.h"

#include <cstring>

#include "core/pixels.h"
#include "core/row_format.h"

namespace pxm {
namespace {

void CopyRow(const TiffSamples& s, const uint8_t* in, uint8_t* out) {
  std::memcpy(out, in, TiffRowConverter::FileRowBytes(s));
}

// One-bit white-is-zero rows are inverted rather than given a reversed palette: one-bit
// pictures are black on 0 and white on 1 everywhere in the program, and some writers ignore a
// one-bit palette altogether.
void InvertRow(const TiffSamples& s, const uint8_t* in, uint8_t* out) {
  const uint64_t n = TiffRowConverter::FileRowBytes(s);
  for (uint64_t i = 0; i < n; ++i) out[i] = static_cast<uint8_t>(~in[i]);
}

void TwoBitToNibbles(const TiffSamples& s, const uint8_t* in, uint8_t* out) {
  for (uint32_t x = 0; x < s.width; x += 2) {
    const uint8_t b = in[x >> 2];
    const int shift = (x & 2) ? 0 : 4;  // pixels x and x+1 are one nibble of the input byte
    const uint8_t pair = static_cast<uint8_t>((b >> shift) & 0x0F);
    out[x >> 1] = static_cast<uint8_t>(((pair >> 2) << 4) | (pair & 3));
  }
}

void RgbWithExtraSamples(const TiffSamples& s, const uint8_t* in, uint8_t* out) {
  const uint32_t step = s.samplesPerPixel;
  for (uint32_t x = 0; x < s.width; ++x, in += step, out += 3) {
    out[0] = in[0];
    out[1] = in[1];
    out[2] = in[2];
  }
}

// Reads samples of any width from 1 to 32 bits. Samples of 16, 24 and 32 bits are whole bytes in
// the file's byte order; all others are a bit stream, first bit highest.
class SampleReader {
 public:
  SampleReader(const uint8_t* row, const TiffSamples& s)
      : row_(row), bps_(s.bitsPerSample), bigEndian_(s.wideBigEndian) {}
  uint32_t Next() {
    uint32_t v = 0;
    if (bps_ % 8 == 0 && bps_ > 8) {
      const uint32_t bytes = bps_ / 8;
      const uint8_t* p = row_ + (bit_ >> 3);
      for (uint32_t k = 0; k < bytes; ++k)
        v |= static_cast<uint32_t>(p[k]) << (bigEndian_ ? 8 * (bytes - 1 - k) : 8 * k);
    } else {
      for (uint32_t k = 0; k < bps_; ++k) {
        const uint64_t at = bit_ + k;
        v = (v << 1) | ((row_[at >> 3] >> (7 - (at & 7))) & 1u);
      }
    }
    bit_ += bps_;
    return v;
  }

 private:
  const uint8_t* row_;
  uint32_t bps_;
  bool bigEndian_;
  uint64_t bit_ = 0;
};

// A sample as the nearest 8-bit level.
uint8_t Level(uint32_t v, uint32_t bps) {
  if (bps == 8) return static_cast<uint8_t>(v);
  const uint64_t top = (uint64_t{1} << bps) - 1;
  return static_cast<uint8_t>((uint64_t{v} * 255 + top / 2) / top);
}

void AnySamples(const TiffSamples& s, const uint8_t* in, uint8_t* out) {
  SampleReader reader(in, s);
  const uint32_t storage = StorageBits(s.bits);
  const uint32_t mask = storage == 24 ? 0xFFFFFFu : (1u << storage) - 1u;
  const bool rgb = s.colour && s.samplesPerPixel >= 3;
  // Signed samples move up by half the range, so that the most negative shows black.
  const uint32_t flip = s.signedSamples ? 1u << (s.bitsPerSample - 1) : 0;
  for (uint32_t x = 0; x < s.width; ++x) {
    uint32_t first[3] = {};
    for (uint32_t k = 0; k < s.samplesPerPixel; ++k) {
      const uint32_t v = reader.Next() ^ flip;
      if (k < 3) first[k] = v;
    }
    uint32_t pixel;
    if (storage == 24) {
      uint8_t r = Level(first[0], s.bitsPerSample);
      uint8_t g = rgb ? Level(first[1], s.bitsPerSample) : r;
      uint8_t b = rgb ? Level(first[2], s.bitsPerSample) : r;
      if (!rgb && s.whiteIsZero) r = g = b = static_cast<uint8_t>(255 - r);
      pixel = (uint32_t{r} << 16) | (uint32_t{g} << 8) | b;
    } else {
      // Indices: a palette entry, or a grey level that the record's ramp gives its shade.
      pixel = first[0];
      if (storage == 1 && s.whiteIsZero) pixel ^= 1u;
    }
    SetPixelAt(out, x, storage, pixel & mask);
  }
}

}  // namespace

void WeaveSamples(const uint8_t* plane, uint8_t* chunky, uint32_t width, uint32_t bitsPerSample,
                  uint32_t planes, uint32_t k) {
  if (bitsPerSample % 8 == 0) {
    const size_t n = bitsPerSample / 8;
    for (uint32_t x = 0; x < width; ++x)
      std::memcpy(chunky + (size_t{x} * planes + k) * n, plane + size_t{x} * n, n);
    return;
  }
  for (uint32_t x = 0; x < width; ++x)
    for (uint32_t b = 0; b < bitsPerSample; ++b) {
      const uint64_t from = uint64_t{x} * bitsPerSample + b;
      const uint64_t to = (uint64_t{x} * planes + k) * bitsPerSample + b;
      const auto mask = static_cast<uint8_t>(0x80u >> (to & 7));
      if ((plane[from >> 3] >> (7 - (from & 7))) & 1u)
        chunky[to >> 3] |= mask;
      else
        chunky[to >> 3] &= static_cast<uint8_t>(~mask);
    }
}

uint64_t TiffRowConverter::FileRowBytes(const TiffSamples& s) {
  return (uint64_t{s.width} * s.samplesPerPixel * s.bitsPerSample + 7) / 8;
}

TiffRowConverter::TiffRowConverter(const TiffSamples& samples) : samples_(samples) {
  const TiffSamples& s = samples_;
  const uint32_t storage = StorageBits(s.bits);
  const bool single = s.samplesPerPixel == 1 && !s.signedSamples;
  if (single && s.bitsPerSample == 1 && storage == 1)
    routine_ = s.whiteIsZero ? InvertRow : CopyRow;
  else if (single && s.bitsPerSample == storage && (storage == 4 || storage == 8))
    routine_ = CopyRow;
  else if (single && s.bitsPerSample == 2 && storage == 4)
    routine_ = TwoBitToNibbles;
  else if (s.colour && !s.signedSamples && s.bitsPerSample == 8 && s.samplesPerPixel == 3 &&
           storage == 24)
    routine_ = CopyRow;
  else if (s.colour && !s.signedSamples && s.bitsPerSample == 8 && s.samplesPerPixel > 3 &&
           storage == 24)
    routine_ = RgbWithExtraSamples;
  else
    routine_ = AnySamples;
}

}  // namespace pxm
