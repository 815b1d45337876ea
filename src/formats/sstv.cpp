#include "formats/sstv.h"

#include <algorithm>
#include <new>
#include <vector>

#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/pixels.h"
#include "core/row_format.h"
#include "formats/info_start.h"

namespace pxm {
namespace {

constexpr uint32_t kWidth = 256;
constexpr int32_t kDepth = 240;
constexpr size_t kRowBytes = 3 * kWidth;
constexpr uint64_t kFileBytes = kRowBytes * kDepth;
constexpr int kLargestSample = 63;

// Six-bit samples are shown four steps a level, as the receivers that wrote them did: 63 is
// 252. A byte beyond six bits, which no receiver wrote, is taken as full intensity.
uint8_t Expand(uint8_t v) {
  return static_cast<uint8_t>(std::min(v * 4, 255));
}

// The nearest six-bit level of a byte.
uint8_t Reduce(uint8_t v) {
  return static_cast<uint8_t>(std::min((v + 2) / 4, kLargestSample));
}

}  // namespace

int HrzInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  // With no header, the length is all there is to recognise: a shorter file is not a picture.
  if (in.Size() < kFileBytes) return kCorruptedFile;
  info.width = kWidth;
  info.depth = kDepth;
  info.bits = 24;
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);
  info.description = "Slow scan television picture";
  return kOk;
}

int HrzRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  if (in.Size() < kFileBytes || info.width != kWidth || info.depth != kDepth || info.bits != 24)
    return kCorruptedFile;
  std::vector<uint8_t> row(static_cast<size_t>(WorkingRowSize(kWidth, 24)));
  for (int32_t y = 0; y < kDepth; ++y) {
    if (!in.ReadExact(row.data(), kRowBytes)) return kReadError;
    for (size_t i = 0; i < kRowBytes; ++i) row[i] = Expand(row[i]);
    if (info.putLine(row, y) != 0) return kCancelled;
  }
  return kOk;
}

int HrzWrite(ImageInfo& info, const std::string& path) {
  if (info.width != kWidth || info.depth != kDepth) return kUnsuitableImage;
  const uint32_t storage = StorageBits(info.bits);
  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  std::vector<uint8_t> row, file(kRowBytes);
  try {
    row.assign(static_cast<size_t>(WorkingRowSize(kWidth, info.bits)), 0);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  for (int32_t y = 0; y < kDepth; ++y) {
    if (info.getLine(row, y) != 0) return kCancelled;
    for (uint32_t x = 0; x < kWidth; ++x) {
      const uint32_t v = PixelAt(row.data(), x, storage);
      const Rgb c = storage == 24 ? Rgb{static_cast<uint8_t>(v >> 16), static_cast<uint8_t>(v >> 8),
                                        static_cast<uint8_t>(v)}
                                  : info.palette[v];
      file[3 * x] = Reduce(c.red);
      file[3 * x + 1] = Reduce(c.green);
      file[3 * x + 2] = Reduce(c.blue);
    }
    if (!out.Write(file.data(), file.size())) return kWriteError;
  }
  return out.Commit() ? kOk : kWriteError;
}

}  // namespace pxm
