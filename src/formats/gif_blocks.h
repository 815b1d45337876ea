#pragma once

#include <cstdint>
#include <string>

#include "core/file_io.h"

// The block structure of GIF files, shared by the GIF handlers: the header (also behind a
// MacBinary header), colour tables, sub-blocks and extensions.
namespace pxm {

// Offsets in the 13-byte header.
enum GifHeaderOffset : size_t {
  kGifSignature = 0,  // "GIF87a" or "GIF89a"; only "GIF" is compared
  kGifScreenWidth = 6,
  kGifScreenHeight = 8,
  kGifScreenFlags = 10,  // 0x80 global table, 0x70 colour resolution - 1, 0x07 table size - 1
  kGifBackground = 11,
  kGifAspect = 12,
};
constexpr size_t kGifHeaderBytes = 13;

// Offsets in the 9-byte image descriptor that follows the 0x2C introducer.
enum GifDescriptorOffset : size_t {
  kGifLeft = 0,
  kGifTop = 2,
  kGifWidth = 4,
  kGifHeight = 6,
  kGifImageFlags = 8,  // 0x80 local table, 0x40 interlaced, 0x07 table size - 1
};
constexpr size_t kGifDescriptorBytes = 9;

// Block introducers and extension labels.
constexpr int kGifImageMark = 0x2C;
constexpr int kGifExtensionMark = 0x21;
constexpr int kGifTrailer = 0x3B;
constexpr int kGifPlainText = 1;
constexpr int kGifControl = 249;
constexpr int kGifComment = 254;
constexpr int kGifApplication = 255;

// MacBinary puts a 128-byte header before the file's data.
constexpr uint64_t kMacBinaryBytes = 128;

struct GifFile {
  InputFile in;
  uint8_t header[kGifHeaderBytes] = {};
  bool macBinary = false;

  // Opens the file and finds the header, at the start or behind a MacBinary header: 1 when the
  // file cannot be opened, 2 when no header is found.
  int Open(const std::string& path, FileWindow window = {});
  uint32_t ScreenBits() const { return (header[kGifScreenFlags] & 7u) + 1; }
  bool HasGlobalTable() const { return (header[kGifScreenFlags] & 0x80) != 0; }
};

// Bytes of a colour table whose flags byte says `flags`.
constexpr size_t GifTableBytes(uint8_t flags) {
  return 3u << ((flags & 7u) + 1);
}

// Skips data sub-blocks up to the zero length; a failed read counts as that zero. Answers
// whether the terminator was reached inside the file.
bool SkipSubBlocks(InputFile& in);

// Skips an extension whose label has been read, by the label's fixed part: plain text 13
// bytes, then sub-blocks; graphic control its 6 bytes and nothing more; application 12 bytes,
// then sub-blocks; comments and anything else sub-blocks.
void SkipExtension(InputFile& in, int label);

// Appends the payload of data sub-blocks to `text`, keeping at most `limit` bytes.
void GatherSubBlocks(InputFile& in, std::string& text, size_t limit);

}  // namespace pxm
