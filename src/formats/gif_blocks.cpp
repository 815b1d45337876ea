#include "formats/gif_blocks.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "core/error_codes.h"

namespace pxm {
namespace {

bool HasSignature(const uint8_t* h) {
  return std::memcmp(h, "GIF", 3) == 0;
}

// Skips data sub-blocks up to the zero length; a failed read counts as that zero.
bool SkipSubBlocks(InputFile& in) {
  for (;;) {
    const int length = in.ReadByte();
    if (length < 0) return false;
    if (length == 0) return true;
    if (!in.Skip(static_cast<uint64_t>(length)) || in.Tell() > in.Size()) return false;
  }
}

// Bytes of an extension's fixed part before its data sub-blocks, and whether sub-blocks follow.
struct FixedPart {
  size_t bytes;
  bool subBlocks;
};

FixedPart FixedPartOf(int label) {
  switch (label) {
    case kGifPlainText:
      return {13, true};
    case kGifControl:
      return {6, false};
    case kGifApplication:
      return {12, true};
    default:
      return {0, true};
  }
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

bool GifBlockWalker::ReadGlobalTable(uint8_t* table, size_t& bytes) {
  bytes = file_.HasGlobalTable() ? GifTableBytes(file_.header[kGifScreenFlags]) : 0;
  return bytes == 0 || file_.in.ReadExact(table, bytes);
}

bool GifBlockWalker::Next(GifBlock& block) {
  InputFile& in = file_.in;
  if (dataPending_) SkipData();
  for (;;) {
    const int b = in.ReadByte();
    if (b <= 0) return false;
    if (b == kGifExtensionMark) {
      block.kind = GifBlock::Kind::kExtension;
      block.label = in.ReadByte();
      if (block.label < 0) return false;
      const FixedPart part = FixedPartOf(block.label);
      std::fill(std::begin(block.fixed), std::end(block.fixed), uint8_t{0});
      in.Read(block.fixed, part.bytes);
      dataPending_ = part.subBlocks;
      return true;
    }
    if (b == kGifImageMark) {
      block.kind = GifBlock::Kind::kImage;
      block.cut = GifBlock::Cut::kNone;
      block.tableBytes = 0;
      dataPending_ = false;
      if (!in.ReadExact(block.descriptor, kGifDescriptorBytes)) {
        block.cut = GifBlock::Cut::kInDescriptor;
        return true;
      }
      const uint8_t flags = block.descriptor[kGifImageFlags];
      if (flags & 0x80) {
        block.tableBytes = GifTableBytes(flags);
        if (!in.ReadExact(block.table, block.tableBytes)) {
          block.cut = GifBlock::Cut::kInTable;
          return true;
        }
      }
      block.codeSize = in.ReadByte();
      if (block.codeSize < 0) {
        block.cut = GifBlock::Cut::kBeforeCodeSize;
        return true;
      }
      dataPending_ = true;
      return true;
    }
  }
}

bool GifBlockWalker::SkipData() {
  dataPending_ = false;
  return SkipSubBlocks(file_.in);
}

void GifBlockWalker::GatherData(std::string& text, size_t limit) {
  dataPending_ = false;
  InputFile& in = file_.in;
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
