#include "formats/icon_image.h"

#include <cstring>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/strings.h"
#include "formats/info_start.h"
#include "formats/png.h"
#include "formats/png_codec.h"

namespace pxm {
namespace {

constexpr uint8_t kPngSignature[8] = {137, 80, 78, 71, 13, 10, 26, 10};
// Signature, the first chunk's length and type, and the 13 bytes of IHDR.
constexpr size_t kPngStart = 8 + 8 + 13;
// Deflate packs at most 1032 bytes into one: a smaller PNG image cannot hold its header's size.
constexpr uint64_t kDeflateBestRatio = 1032;

int DescribePng(InputFile& in, uint64_t offset, IconImage& out) {
  uint8_t h[kPngStart];
  if (!in.Seek(offset) || !in.ReadExact(h, sizeof h)) return kCorruptedFile;
  if (std::memcmp(h + 12, "IHDR", 4) != 0) return kCorruptedFile;
  const uint32_t width = LoadBe32(h + 16);
  const uint32_t height = LoadBe32(h + 20);
  const uint32_t depth = h[24];
  // Samples a pixel by colour type: grey, -, colour, palette, grey and alpha, -, colour and alpha.
  constexpr uint8_t kChannels[7] = {1, 0, 3, 1, 2, 0, 4};
  const uint32_t channels = h[25] < 7 ? kChannels[h[25]] : 0;
  if (channels == 0) return kCorruptedFile;
  if (width == 0 || height == 0 || width > 0x7FFFFFFF || height > 0x7FFFFFFF) return kCorruptedFile;
  out.png = true;
  out.width = width;
  out.height = height;
  out.fileBits = depth * channels;
  const uint64_t picture = PackedPictureBytes(width, height, out.fileBits);
  return FileCouldHold(in.Size(), offset, picture, kDeflateBestRatio) ? kOk : kCorruptedFile;
}

}  // namespace

int DescribeIconImage(InputFile& in, uint64_t offset, IconImage& out) {
  out = IconImage{};
  out.offset = offset;
  uint8_t signature[8];
  if (!in.Seek(offset) || !in.ReadExact(signature, sizeof signature)) return kCorruptedFile;
  if (std::memcmp(signature, kPngSignature, sizeof signature) == 0)
    return DescribePng(in, offset, out);
  if (int code = ParseDib(in, offset, DibKind::kIcon, out.dib)) return code;
  out.width = out.dib.width;
  out.height = out.dib.height;
  out.fileBits = out.dib.fileBits;
  return kOk;
}

int IconRecord(ImageInfo& info, InputFile& in, const IconImage& image) {
  if (!image.png) {
    DescribeDib(info, image.dib);
    return kOk;
  }
  // The PNG reader's own account of the picture, its interlace text aside.
  const std::string description = info.description;
  const int code = PngDescribe(info, in, image.offset);
  info.description = description;
  return code;
}

int ReadIconImage(ImageInfo& info, InputFile& in, const IconImage& image) {
  if (!image.png) return ReadDibRows(info, in, image.dib);
  return PngResultCode(PngUnpackAt(info, in, image.offset));
}

std::string ImageSizeText(uint32_t width, uint32_t height, uint32_t bits) {
  return FormatText("%u x %u, %u %s", width, height, bits, bits == 1 ? "bit" : "bits");
}

}  // namespace pxm
