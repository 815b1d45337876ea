#include "formats/gif_blocks.h"

#include <algorithm>
#include <cstring>

#include "core/error_codes.h"

namespace pxm {
namespace {

bool HasSignature(const uint8_t* h) {
  return std::memcmp(h, "GIF", 3) == 0;
}

}  // namespace

int GifFile::Open(const std::string& path, FileWindow window) {
  if (!in.Open(path, window)) return kOpenError;
  if (in.ReadExact(header, kGifHeaderBytes) && HasSignature(header)) return kOk;
  // Files copied from a Macintosh may keep their MacBinary header.
  if (in.Seek(kMacBinaryBytes) && in.ReadExact(header, kGifHeaderBytes) && HasSignature(header)) {
    macBinary = true;
    return kOk;
  }
  return kCorruptedFile;
}

bool SkipSubBlocks(InputFile& in) {
  for (;;) {
    const int length = in.ReadByte();
    if (length < 0) return false;
    if (length == 0) return true;
    if (!in.Skip(static_cast<uint64_t>(length)) || in.Tell() > in.Size()) return false;
  }
}

void SkipExtension(InputFile& in, int label) {
  uint8_t fixed[13];
  switch (label) {
    case kGifPlainText:
      in.Read(fixed, 13);
      SkipSubBlocks(in);
      break;
    case kGifControl:
      in.Read(fixed, 6);
      break;
    case kGifApplication:
      in.Read(fixed, 12);
      SkipSubBlocks(in);
      break;
    default:
      SkipSubBlocks(in);
      break;
  }
}

void GatherSubBlocks(InputFile& in, std::string& text, size_t limit) {
  uint8_t block[255];
  for (;;) {
    const int length = in.ReadByte();
    if (length <= 0) return;
    const size_t got = in.Read(block, static_cast<size_t>(length));
    const size_t keep = std::min(got, limit - std::min(limit, text.size()));
    text.append(reinterpret_cast<const char*>(block), keep);
    if (got < static_cast<size_t>(length)) return;
  }
}

}  // namespace pxm
