#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace pxm {

// A thumbnail is 96 × 96 one-byte indexes into the fixed palette.
constexpr int kThumbSize = 96;
constexpr size_t kThumbPixelBytes = size_t{kThumbSize} * kThumbSize;
// The record as a ".THN" file holds it: a 264-byte header, then the pixels.
constexpr size_t kThumbHeaderBytes = 264;
constexpr size_t kThumbRecordBytes = kThumbHeaderBytes + kThumbPixelBytes;
static_assert(kThumbRecordBytes == 9480);
// The mode field of a stock picture, which was drawn, not made from a file.
constexpr uint32_t kStockMode = 255;
constexpr size_t kSourceNameBytes = 224;

// One thumbnail: what it was made from, and its pixels. Rows are kept bottom row first, as the
// file holds them, so picture row r starts at (95 − r) × 96.
struct ThumbnailRecord {
  uint32_t width = 0;  // of the picture in the record, 1 to 96
  uint32_t depth = 0;
  uint32_t sourceWidth = 0;
  uint32_t sourceDepth = 0;
  uint32_t sourceBits = 0;
  uint32_t sourceFileSize = 0;
  uint32_t sourceTime = 0;  // modification time of the source, seconds since 1970; 0 unknown
  uint32_t mode = 0;        // thumbnail write mode used (0, 1, 2) or kStockMode
  std::string sourceName;   // at most kSourceNameBytes characters
  std::array<uint8_t, kThumbPixelBytes> pixels{};

  uint8_t* Row(int r) {
    return pixels.data() + static_cast<size_t>(kThumbSize - 1 - r) * kThumbSize;
  }
  const uint8_t* Row(int r) const {
    return pixels.data() + static_cast<size_t>(kThumbSize - 1 - r) * kThumbSize;
  }
  uint8_t At(int x, int r) const { return Row(r)[x]; }
  // Back to the state of a freshly allocated record: every field and pixel zero.
  void Clear() { *this = ThumbnailRecord{}; }

  friend bool operator==(const ThumbnailRecord&, const ThumbnailRecord&) = default;
};

// The record in its file layout (all numbers little-endian):
//   0  "PXMTHN01"        8  width          12  depth         16  source width
//  20  source depth     24  source bits    28  source size   32  source time
//  36  mode             40  source name, zero-padded to 224 bytes
// 264  the pixels, bottom row first
void EncodeThumbnail(const ThumbnailRecord& record, std::span<uint8_t, kThumbRecordBytes> out);
// False when the bytes are not a thumbnail: the wrong signature, or a picture size outside
// 1..96.
bool DecodeThumbnail(std::span<const uint8_t> bytes, ThumbnailRecord& record);

}  // namespace pxm
