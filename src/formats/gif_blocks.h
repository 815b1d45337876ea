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
constexpr size_t kGifMaxTableBytes = 768;

// One image or extension, as the walker found it.
struct GifBlock {
  enum class Kind { kImage, kExtension };
  // Where the file ended inside an image's head, if it did.
  enum class Cut { kNone, kInDescriptor, kInTable, kBeforeCodeSize };

  Kind kind = Kind::kImage;
  // An image: its descriptor, its local colour table when its flags have one, and the code
  // size of its data, each there unless `cut` says the file ended before it.
  Cut cut = Cut::kNone;
  uint8_t descriptor[kGifDescriptorBytes] = {};
  uint8_t table[kGifMaxTableBytes] = {};
  size_t tableBytes = 0;
  int codeSize = 0;
  // An extension: its label and the fixed part that label has before any data sub-blocks
  // (plain text 13 bytes, graphic control 6 with its terminator, application 12), zeros where
  // the file ended.
  int label = 0;
  uint8_t fixed[13] = {};
};

// Walks the blocks of a GIF file, shared by info, the reader, the image count, the comment
// reader and the block report. Every read is bounded by the file; what a block holds past its
// fixed parts (data sub-blocks) is skipped unless the caller takes it.
class GifBlockWalker {
 public:
  // Starts after the header `file` has found.
  explicit GifBlockWalker(GifFile& file) : file_(file) {}

  // Reads the global colour table, when the screen has one, into `table` (at most 768 bytes;
  // `bytes` says how many). False when the file ends inside it.
  bool ReadGlobalTable(uint8_t* table, size_t& bytes);

  // The next image or extension. Bytes between blocks that start neither are passed over:
  // files with junk between blocks still read. The data of the block before that the caller
  // did not take is skipped first. False at the end of the file or at a zero byte, which end
  // the walk.
  bool Next(GifBlock& block);

  // The data sub-blocks of the block in hand, skipped: true when their terminator was reached
  // inside the file.
  bool SkipData();
  // The payload of the data sub-blocks of the block in hand appended to `text`, at most `limit`
  // bytes kept.
  void GatherData(std::string& text, size_t limit);
  // The file at the data of the image in hand, for its decoder; the data counts as taken.
  InputFile& TakeData() {
    dataPending_ = false;
    return file_.in;
  }

 private:
  GifFile& file_;
  bool dataPending_ = false;
};

}  // namespace pxm
