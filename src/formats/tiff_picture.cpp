#include "formats/tiff_picture.h"

#include <algorithm>

#include "core/error_codes.h"
#include "formats/info_start.h"

namespace pxm {
namespace {

constexpr uint32_t kMaxBitsPerSample = 64;
constexpr uint32_t kMaxOwnBitsPerSample = 32;  // wider samples only through libtiff's RGBA
constexpr uint32_t kMaxSamplesPerPixel = 16;
constexpr uint32_t kSignedInteger = 2;  // sample formats
constexpr uint32_t kIeeeFloat = 3;

TiffRoute RouteOf(const TiffPicture& p) {
  if (p.photometric == kTiffYCbCr && p.compression == kTiffJpeg) return TiffRoute::kJpegAsRgb;
  const bool plainModel = p.photometric <= kTiffPalette;
  const bool rgbComplete = p.photometric != kTiffRgb || p.samplesPerPixel >= 3;
  const bool paletteFits = p.photometric != kTiffPalette || p.bitsPerSample <= 8;
  if (!plainModel || !rgbComplete || !paletteFits || p.sampleFormat == kIeeeFloat ||
      p.bitsPerSample > kMaxOwnBitsPerSample)
    return TiffRoute::kRgbaStrips;
  if ((p.compression == kTiffNone || p.compression == kTiffPackBits) &&
      (p.planar == 1 || p.samplesPerPixel == 1))
    return TiffRoute::kOwnStrips;
  return TiffRoute::kScanlines;
}

}  // namespace

TiffSamples TiffPicture::Samples(bool wideBigEndian) const {
  TiffSamples s;
  s.width = width;
  s.bitsPerSample = bitsPerSample;
  s.samplesPerPixel = samplesPerPixel;
  s.wideBigEndian = wideBigEndian;
  s.whiteIsZero = photometric == kTiffWhiteIsZero;
  s.colour = photometric == kTiffRgb;
  s.signedSamples = sampleFormat == kSignedInteger;
  s.bits = bits;
  return s;
}

uint64_t TiffPicture::StripCount() const {
  const uint64_t rows = rowsPerStrip == 0 ? length : rowsPerStrip;
  return (uint64_t{length} + rows - 1) / rows;
}

int DescribeTiff(InputFile& file, const TiffDirectory& dir, TiffPicture& p) {
  p = TiffPicture{};
  // A tiled picture has tile offsets instead of strips, even where a writer left strip tags.
  if (!dir.Find(kTagImageWidth) || !dir.Find(kTagImageLength) || !dir.Find(kTagStripOffsets) ||
      dir.Find(kTagTileWidth))
    return kCorruptedFile;
  p.width = TiffTagValue(file, dir, kTagImageWidth, 0);
  p.length = TiffTagValue(file, dir, kTagImageLength, 0);
  p.bitsPerSample = TiffTagValue(file, dir, kTagBitsPerSample, 1);
  p.samplesPerPixel = TiffTagValue(file, dir, kTagSamplesPerPixel, 1);
  p.compression = TiffTagValue(file, dir, kTagCompression, kTiffNone);
  p.planar = TiffTagValue(file, dir, kTagPlanarConfig, 1);
  p.rowsPerStrip = TiffTagValue(file, dir, kTagRowsPerStrip, 0xFFFFFFFFu);
  p.sampleFormat = TiffTagValue(file, dir, kTagSampleFormat, 1);
  // Without a photometric tag the other tags tell what the samples are.
  const uint32_t guess = dir.Find(kTagColourMap) ? kTiffPalette
                         : p.samplesPerPixel >= 3 ? kTiffRgb
                                                  : kTiffBlackIsZero;
  p.photometric = TiffTagValue(file, dir, kTagPhotometric, guess);
  if (p.width == 0 || p.length == 0 || p.bitsPerSample == 0 ||
      p.bitsPerSample > kMaxBitsPerSample || p.samplesPerPixel == 0 ||
      p.samplesPerPixel > kMaxSamplesPerPixel)
    return kCorruptedFile;
  if (p.length > 0x7FFFFFFFu) return kCorruptedFile;  // the record's depth is signed
  p.route = RouteOf(p);
  // Samples beyond the colour's own (alpha) are dropped; deeper pictures are held as RGB.
  const bool rgb = p.photometric == kTiffRgb || p.route == TiffRoute::kJpegAsRgb ||
                   p.route == TiffRoute::kRgbaStrips;
  p.bits = rgb || p.bitsPerSample > 8 ? 24 : p.bitsPerSample;
  return kOk;
}

bool TiffDataCanHold(const TiffPicture& p, uint64_t fileSize) {
  const uint64_t bytes = RowsBytes(TiffRowConverter::FileRowBytes(p.Samples(false)), p.length);
  switch (p.compression) {
    case kTiffNone:
      return FileCouldHold(fileSize, 0, bytes, 1);
    // Two bytes make at most 128.
    case kTiffPackBits:
      return FileCouldHold(fileSize, 0, bytes, 64);
    // A code of at least 9 bits gives at most 4096 bytes.
    case kTiffLzw:
      return FileCouldHold(fileSize, 0, bytes, 3641);
    // Deflate makes at most 1032 bytes of one.
    case kTiffDeflate:
    case kTiffOldDeflate:
      return FileCouldHold(fileSize, 0, bytes, 1032);
    // Every coded row takes at least one bit.
    case kTiffHuffman:
    case kTiffGroup3:
    case kTiffGroup4:
      return FileCouldHold(fileSize, 0, p.length, 8);
    // Huffman-coded JPEG spends at least a bit on every 8 x 8 block of each component; the blocks
    // of all components cover at least one for every 128 pixels.
    case kTiffOldJpeg:
    case kTiffJpeg:
      return FileCouldHold(fileSize, 0, PackedPictureBytes(p.width, p.length, 8), 1024);
    // Other codecs (LZMA, Zstandard, ...) have no best ratio to go by.
    default: return true;
  }
}

void TiffPalette(InputFile& file, const TiffDirectory& dir, const TiffPicture& p,
                 Palette& palette) {
  const uint32_t bits = p.bits;
  if (bits == 1) {
    palette[0] = Rgb{0, 0, 0};
    palette[1] = Rgb{255, 255, 255};
  } else {
    // A grey ramp: entry i is (256 / 2^bits) × i, so a 2-bit white is 192. White-is-zero files
    // run the ramp the other way.
    const uint32_t entries = bits <= 8 ? 1u << bits : 256;
    const uint32_t step = 256 / entries;
    const bool reversed = bits <= 8 && p.photometric == kTiffWhiteIsZero;
    for (uint32_t i = 0; i < entries; ++i) {
      auto v = static_cast<uint8_t>(step * (reversed ? entries - 1 - i : i));
      palette[i] = Rgb{v, v, v};
    }
  }
  const TiffEntry* map = dir.Find(kTagColourMap);
  if (!map || bits > 8 || map->count < 3) return;
  // All reds, then all greens, then all blues.
  const uint32_t stride = map->count / 3;
  const uint32_t n = std::min({1u << bits, stride, 256u});
  auto values = TiffValues(file, dir, *map, 2 * stride + n);
  if (!values || values->size() < 2 * size_t{stride} + n) return;
  const std::vector<uint32_t>& v = *values;
  // Maps are 16-bit by the format, but some writers stored 8-bit values: a map with no value
  // above 255 is taken as it stands, any other keeps the high byte of each value.
  bool sixteen = false;
  for (uint32_t c = 0; c < 3; ++c)
    for (uint32_t i = 0; i < n; ++i) sixteen = sixteen || v[c * stride + i] > 255;
  const int shift = sixteen ? 8 : 0;
  for (uint32_t i = 0; i < n; ++i)
    palette[i] = Rgb{static_cast<uint8_t>(v[i] >> shift), static_cast<uint8_t>(v[stride + i] >> shift),
                     static_cast<uint8_t>(v[2 * stride + i] >> shift)};
}

std::string_view TiffCompressionName(uint32_t compression) {
  switch (compression) {
    case kTiffNone: return "Uncompressed";
    case kTiffHuffman: return "Huffman";
    case kTiffGroup3: return "CCITT 3";
    case kTiffGroup4: return "CCITT 4";
    case kTiffLzw: return "LZW";
    case kTiffPackBits: return "Run length compressed";
    default: return "Unknown compression type";
  }
}

}  // namespace pxm
