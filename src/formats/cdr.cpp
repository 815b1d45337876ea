#include "formats/cdr.h"

#include <algorithm>
#include <cstring>

#include "config/settings.h"
#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/strings.h"
#include "formats/dib.h"
#include "formats/icon_image.h"
#include "formats/info_start.h"

namespace pxm {
namespace {

constexpr size_t kRiffHeader = 12;  // "RIFF", the size of what follows, the form type
constexpr size_t kChunkHeader = 8;  // the chunk's name and the size of its data
// Drawings hold a few dozen chunks at the top level; a damaged file of tiny chunks stops here.
constexpr uint32_t kMostChunks = 65536;

// Sizes of the bitmap headers in use: the 12-byte core header and the information headers.
bool BitmapHeaderSize(uint32_t n) {
  return n == 12 || n == 40 || n == 52 || n == 56 || n == 64 || n == 108 || n == 124;
}

bool Upper(uint8_t c, char want) {
  return c == static_cast<uint8_t>(want) || c == static_cast<uint8_t>(want + ('a' - 'A'));
}

// Finds the preview bitmap among the chunks of the top level. Answers 0 with the offset of its
// header; 2 for a file that is no RIFF file or a preview without a bitmap header; 8 for a RIFF
// file of another program; 20 for a drawing without a preview.
int FindPreview(InputFile& in, uint64_t& dib) {
  uint8_t h[kRiffHeader];
  if (!in.Seek(0) || !in.ReadExact(h, sizeof h) || std::memcmp(h, "RIFF", 4) != 0)
    return kCorruptedFile;
  // "CDR" and the version: a blank for the oldest, then 4 to 9 and letters.
  if (!Upper(h[8], 'C') || !Upper(h[9], 'D') || !Upper(h[10], 'R')) return kUnsupportedFormat;
  const uint64_t end = std::min<uint64_t>(8 + uint64_t{LoadLe32(h + 4)}, in.Size());
  uint64_t at = kRiffHeader;
  for (uint32_t n = 0; n < kMostChunks && at + kChunkHeader <= end; ++n) {
    uint8_t c[kChunkHeader];
    if (!in.Seek(at) || !in.ReadExact(c, sizeof c)) break;
    const uint32_t size = LoadLe32(c + 4);
    if (std::memcmp(c, "DISP", 4) == 0) {
      // The bitmap's header follows a 32-bit word of its own in the files written; a header
      // straight after the chunk's is taken too.
      uint8_t d[8];
      if (!in.ReadExact(d, sizeof d)) return kCorruptedFile;
      if (BitmapHeaderSize(LoadLe32(d + 4)))
        dib = at + kChunkHeader + 4;
      else if (BitmapHeaderSize(LoadLe32(d)))
        dib = at + kChunkHeader;
      else
        return kCorruptedFile;
      return kOk;
    }
    // Chunks are padded to an even length.
    at += kChunkHeader + uint64_t{size} + (size & 1);
  }
  return kNoBitmap;
}

// The preview's layout, or the code of a drawing whose preview cannot be read.
int LocatePreview(InputFile& in, DibLayout& dib) {
  uint64_t offset = 0;
  if (int code = FindPreview(in, offset)) return code;
  return ParseDib(in, offset, DibKind::kBitmap, dib);
}

bool PreviewsRead() {
  return CurrentSettings().ReadCDRBitmaps != 0;
}

}  // namespace

int CdrInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  if (!PreviewsRead()) {
    StartInfo(info, path);
    return kDisabledFeature;
  }
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  info.description = "Corel Draw preview";
  DibLayout dib;
  if (int code = LocatePreview(in, dib)) return code;
  info.imageCount = 1;
  if (info.imageIndex != 0) return kNoBitmap;
  DescribeDib(info, dib);
  return kOk;
}

int CdrRead(ImageInfo& info, const std::string& path) {
  if (!PreviewsRead()) return kDisabledFeature;
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  DibLayout dib;
  if (int code = LocatePreview(in, dib)) return code;
  if (info.imageIndex != 0) return kNoBitmap;
  return ReadDibRows(info, in, dib);
}

int CdrList(ImageInfo& info, const std::string& path, std::vector<std::string>& names) {
  if (!PreviewsRead()) return kDisabledFeature;
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  DibLayout dib;
  if (int code = LocatePreview(in, dib)) return code;
  info.imageCount = 1;
  names.push_back("Preview (" + ImageSizeText(dib.width, dib.height, dib.fileBits) + ")");
  return kOk;
}

}  // namespace pxm
