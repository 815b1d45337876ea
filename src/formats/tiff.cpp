#include "formats/tiff.h"

#include <algorithm>
#include <new>
#include <optional>
#include <vector>

#include "core/error_codes.h"
#include "core/names.h"
#include "core/row_format.h"
#include "formats/info_start.h"
#include "formats/tiff_decode.h"
#include "formats/tiff_packbits.h"
#include "formats/tiff_picture.h"
#include "formats/tiff_rows.h"

namespace pxm {
namespace {

int DoInfo(ImageInfo& info, const std::string& path) {
  InputFile file;
  if (int code = OpenForInfo(info, path, file)) return code;
  TiffDirectory dir;
  if (int code = ReadTiffDirectory(file, dir)) return code;
  TiffPicture p;
  if (int code = DescribeTiff(file, dir, p)) return code;
  info.width = p.width;
  info.depth = static_cast<int32_t>(p.length);
  info.bits = p.bits;
  const uint64_t rowBytes =
      (uint64_t{p.samplesPerPixel} * p.width * p.bitsPerSample + 7) / 8;
  info.unpackedSize = static_cast<uint32_t>(rowBytes * p.length);
  TiffPalette(file, dir, p, info.palette);
  SetText(info.description, TiffCompressionName(p.compression), kMaxDescriptionLength);
  if (!TiffDataCanHold(p, file.Size())) return kCorruptedFile;
  return kOk;
}

// The front end's own strips: uncompressed rows straight from the file, PackBits rows through
// the tolerant unpacker. Strips are taken in order, each from its offset.
class OwnStrips {
 public:
  OwnStrips(ImageInfo& info, InputFile& file, const TiffDirectory& dir, const TiffPicture& p)
      : info_(info), file_(file), dir_(dir), p_(p), convert_(p.Samples(dir.bigEndian)) {}

  int Read() {
    const uint64_t strips = p_.StripCount();
    const TiffEntry* offsetsEntry = dir_.Find(kTagStripOffsets);
    const TiffEntry* countsEntry = dir_.Find(kTagStripByteCounts);
    // Only as many values as the file holds and the picture needs are ever read.
    const auto limit = static_cast<uint32_t>(std::min<uint64_t>(strips, 0xFFFFFFFFu));
    auto offsets = TiffValues(file_, dir_, *offsetsEntry, limit);
    if (!offsets) return kReadError;
    std::optional<std::vector<uint32_t>> counts;
    if (countsEntry) counts = TiffValues(file_, dir_, *countsEntry, limit);

    rowBytes_ = convert_.FileRowBytes();
    in_.assign(rowBytes_, 0);
    out_.assign(WorkingRowSize(info_.width, info_.bits), 0);
    const uint64_t rowsPerStrip = p_.rowsPerStrip == 0 ? p_.length : p_.rowsPerStrip;
    for (uint64_t s = 0; s < strips; ++s) {
      if (s >= offsets->size()) return kReadError;  // the picture runs past its strips
      const uint64_t top = s * rowsPerStrip;
      const auto rows = static_cast<uint32_t>(std::min<uint64_t>(rowsPerStrip, p_.length - top));
      const uint64_t offset = (*offsets)[s];
      if (offset >= file_.Size() || !file_.Seek(offset)) return kReadError;
      int code;
      if (p_.compression == kTiffPackBits) {
        const uint64_t available = file_.Size() - offset;
        const uint64_t length = counts && s < counts->size()
                                    ? std::min<uint64_t>((*counts)[s], available)
                                    : available;
        code = PackBitsStrip(static_cast<uint32_t>(top), rows, offset, length);
      } else {
        code = PlainStrip(static_cast<uint32_t>(top), rows);
      }
      if (code != kOk) return code;
    }
    return kOk;
  }

 private:
  int Deliver(uint32_t y) {
    convert_.Convert(in_.data(), out_.data());
    return info_.putLine(out_, static_cast<int32_t>(y)) != 0 ? kCancelled : kOk;
  }

  int PlainStrip(uint32_t top, uint32_t rows) {
    for (uint32_t i = 0; i < rows; ++i) {
      if (!file_.ReadExact(in_.data(), rowBytes_)) return kReadError;
      if (int code = Deliver(top + i)) return code;
    }
    return kOk;
  }

  int PackBitsStrip(uint32_t top, uint32_t rows, uint64_t offset, uint64_t length) {
    const uint64_t expected = rowBytes_ * rows;
    const PackBits128 mode = CountPackBits(file_, length, PackBits128::kRun) == expected
                                 ? PackBits128::kRun
                                 : PackBits128::kNoOp;
    if (!file_.Seek(offset)) return kReadError;
    PackBitsRows unpack(file_, length, mode);
    for (uint32_t i = 0; i < rows; ++i) {
      if (!unpack.Unpack(in_.data(), rowBytes_)) return kReadError;
      if (int code = Deliver(top + i)) return code;
    }
    return kOk;
  }

  ImageInfo& info_;
  InputFile& file_;
  const TiffDirectory& dir_;
  const TiffPicture& p_;
  TiffRowConverter convert_;
  uint64_t rowBytes_ = 0;
  std::vector<uint8_t> in_;
  std::vector<uint8_t> out_;
};

int DoRead(ImageInfo& info, const std::string& path) {
  InputFile file;
  if (!file.Open(path)) return kOpenError;
  TiffDirectory dir;
  if (int code = ReadTiffDirectory(file, dir)) return code;
  TiffPicture p;
  if (int code = DescribeTiff(file, dir, p)) return code;
  // The store was made for what info saw; a file changed since then is not decoded into it.
  if (p.width != info.width || static_cast<int32_t>(p.length) != info.depth || p.bits != info.bits)
    return kCorruptedFile;
  if (!TiffDataCanHold(p, file.Size())) return kCorruptedFile;
  if (p.route == TiffRoute::kOwnStrips) return OwnStrips(info, file, dir, p).Read();
  return ReadTiffThroughLibrary(info, file, path, p);
}

}  // namespace

int TiffInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  try {
    return DoInfo(info, path);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

int TiffRead(ImageInfo& info, const std::string& path) {
  try {
    return DoRead(info, path);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

}  // namespace pxm
