#include "thumbs/thumbnail_record.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "core/bytes.h"

namespace pxm {
namespace {

constexpr std::string_view kSignature = "PXMTHN01";

// Offsets of the header fields.
enum : size_t {
  kOffSignature = 0,
  kOffWidth = 8,
  kOffDepth = 12,
  kOffSourceWidth = 16,
  kOffSourceDepth = 20,
  kOffSourceBits = 24,
  kOffSourceSize = 28,
  kOffSourceTime = 32,
  kOffMode = 36,
  kOffSourceName = 40,
  kOffPixels = kThumbHeaderBytes,
};
static_assert(kOffSourceName + kSourceNameBytes == kOffPixels);

bool InPictureRange(uint32_t size) {
  return size >= 1 && size <= kThumbSize;
}

}  // namespace

void EncodeThumbnail(const ThumbnailRecord& record, std::span<uint8_t, kThumbRecordBytes> out) {
  std::fill(out.begin(), out.begin() + kOffPixels, uint8_t{0});
  std::memcpy(out.data() + kOffSignature, kSignature.data(), kSignature.size());
  StoreLe32(out.data() + kOffWidth, record.width);
  StoreLe32(out.data() + kOffDepth, record.depth);
  StoreLe32(out.data() + kOffSourceWidth, record.sourceWidth);
  StoreLe32(out.data() + kOffSourceDepth, record.sourceDepth);
  StoreLe32(out.data() + kOffSourceBits, record.sourceBits);
  StoreLe32(out.data() + kOffSourceSize, record.sourceFileSize);
  StoreLe32(out.data() + kOffSourceTime, record.sourceTime);
  StoreLe32(out.data() + kOffMode, record.mode);
  size_t nameBytes = std::min(record.sourceName.size(), kSourceNameBytes);
  std::memcpy(out.data() + kOffSourceName, record.sourceName.data(), nameBytes);
  std::memcpy(out.data() + kOffPixels, record.pixels.data(), kThumbPixelBytes);
}

bool DecodeThumbnail(std::span<const uint8_t> bytes, ThumbnailRecord& record) {
  if (bytes.size() != kThumbRecordBytes) return false;
  if (std::memcmp(bytes.data() + kOffSignature, kSignature.data(), kSignature.size()) != 0)
    return false;
  const uint8_t* p = bytes.data();
  uint32_t width = LoadLe32(p + kOffWidth);
  uint32_t depth = LoadLe32(p + kOffDepth);
  if (!InPictureRange(width) || !InPictureRange(depth)) return false;
  record.width = width;
  record.depth = depth;
  record.sourceWidth = LoadLe32(p + kOffSourceWidth);
  record.sourceDepth = LoadLe32(p + kOffSourceDepth);
  record.sourceBits = LoadLe32(p + kOffSourceBits);
  record.sourceFileSize = LoadLe32(p + kOffSourceSize);
  record.sourceTime = LoadLe32(p + kOffSourceTime);
  record.mode = LoadLe32(p + kOffMode);
  const char* name = reinterpret_cast<const char*>(p + kOffSourceName);
  record.sourceName.assign(name, strnlen(name, kSourceNameBytes));
  std::memcpy(record.pixels.data(), p + kOffPixels, kThumbPixelBytes);
  return true;
}

}  // namespace pxm
