#include "formats/macpaint.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <new>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/names.h"
#include "core/row_format.h"
#include "formats/byte_run1.h"
#include "formats/info_start.h"
#include "formats/macbinary.h"
#include "formats/tiff_packbits.h"

namespace pxm {
namespace {

constexpr uint32_t kPageWidth = 576;
constexpr int32_t kPageDepth = 720;
constexpr size_t kRowBytes = kPageWidth / 8;
// The header: a 4-byte version (0, or 2 when the patterns are the painter's own), 38 fill
// patterns of 8 bytes, then padding to 512.
constexpr uint64_t kHeaderBytes = 512;
// PackBits at best: two bytes give a run of 128.
constexpr uint64_t kBestRatio = 64;

// Where the MacPaint data of a file lies.
struct Layout {
  uint64_t start = 0;  // the 512-byte header
  uint64_t end = 0;    // just past the data
  bool macBinary = false;
};

Layout Locate(InputFile& in) {
  Layout l{0, in.Size(), false};
  std::array<uint8_t, kMacBinaryBytes> h;
  MacBinaryHeader m;
  if (in.Size() >= kMacBinaryBytes && in.Seek(0) && in.ReadExact(h.data(), h.size()) &&
      ParseMacBinary(h, in.Size(), "PNTG", m)) {
    l.start = kMacBinaryBytes;
    l.macBinary = true;
    // The data fork's length ends the picture when the file holds that much; what follows is
    // padding or the resource fork.
    if (m.dataLength >= kHeaderBytes && m.dataLength <= in.Size() - kMacBinaryBytes)
      l.end = kMacBinaryBytes + m.dataLength;
  }
  return l;
}

bool Fits(const Layout& l) {
  return FileCouldHold(l.end, l.start + kHeaderBytes, uint64_t{kRowBytes} * kPageDepth, kBestRatio);
}

}  // namespace

int MacInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  const Layout l = Locate(in);
  if (!Fits(l)) return kCorruptedFile;
  info.width = kPageWidth;
  info.depth = kPageDepth;
  info.bits = 1;
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);
  info.palette[0] = Rgb{0, 0, 0};
  info.palette[1] = Rgb{255, 255, 255};
  info.description = l.macBinary ? "MacPaint picture, MacBinary header" : "MacPaint picture";
  return kOk;
}

int MacRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  // Every MacPaint picture is one page; a record for anything else was not made by MacInfo.
  if (info.width != kPageWidth || info.depth != kPageDepth || info.bits != 1) return kCorruptedFile;
  const Layout l = Locate(in);
  if (!Fits(l) || !in.Seek(l.start + kHeaderBytes)) return kCorruptedFile;
  // Some painters let a run go on into the next row; the rows are one stream here.
  PackBitsRows rows(in, l.end - in.Tell(), PackBits128::kNoOp);
  std::vector<uint8_t> row(static_cast<size_t>(WorkingRowSize(kPageWidth, 1)));
  for (int32_t y = 0; y < kPageDepth; ++y) {
    if (!rows.Unpack(row.data(), kRowBytes)) return kReadError;
    // In the file a set bit is black.
    for (size_t i = 0; i < kRowBytes; ++i) row[i] = static_cast<uint8_t>(~row[i]);
    if (info.putLine(row, y) != 0) return kCancelled;
  }
  return kOk;
}

int MacWrite(ImageInfo& info, const std::string& path) {
  const uint32_t width = info.width;
  const int32_t depth = info.depth;
  if (info.bits != 1 || width > kPageWidth || depth < 0 || depth > kPageDepth)
    return kUnsuitableImage;
  const bool macBinary = CurrentSettings().CreateMacbinaryHeader != 0;

  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  std::vector<uint8_t> row, packed;
  try {
    row.assign(static_cast<size_t>(WorkingRowSize(width, 1)), 0);
    packed.reserve(2 * kRowBytes);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  const uint64_t start = macBinary ? kMacBinaryBytes : 0;
  // Room for the MacBinary header, which needs the data's length, and a header of version 0:
  // no patterns of its own.
  const std::vector<uint8_t> zeros(start + kHeaderBytes, 0);
  if (!out.Write(zeros.data(), zeros.size())) return kWriteError;

  const size_t fullBytes = width / 8;
  const uint8_t lastMask = static_cast<uint8_t>(0xFF00u >> (width % 8));
  uint8_t page[kRowBytes];
  for (int32_t y = 0; y < kPageDepth; ++y) {
    std::fill(std::begin(page), std::end(page), 0);  // white
    if (y < depth) {
      if (info.getLine(row, y) != 0) return kCancelled;
      // Set bits are black in the file; the page beyond the picture stays white.
      for (size_t i = 0; i < fullBytes; ++i) page[i] = static_cast<uint8_t>(~row[i]);
      if (lastMask) page[fullBytes] = static_cast<uint8_t>(~row[fullBytes] & lastMask);
    }
    packed.clear();
    EncodeByteRun1(page, kRowBytes, packed);
    if (!out.Write(packed.data(), packed.size())) return kWriteError;
  }

  if (macBinary) {
    const uint64_t dataLength = out.Tell() - start;
    const std::vector<uint8_t> pad(
        (kMacBinaryBytes - dataLength % kMacBinaryBytes) % kMacBinaryBytes, 0);
    const std::string name = NamePart(info.fileName.empty() ? path : info.fileName);
    const auto header = BuildMacBinary(name, "PNTG", "MPNT", static_cast<uint32_t>(dataLength),
                                       MacTimeFromUnix(static_cast<int64_t>(std::time(nullptr))));
    if ((!pad.empty() && !out.Write(pad.data(), pad.size())) || !out.Seek(0) ||
        !out.Write(header.data(), header.size()))
      return kWriteError;
  }
  return out.Commit() ? kOk : kWriteError;
}

}  // namespace pxm
