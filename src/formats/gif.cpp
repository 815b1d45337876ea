#include "formats/gif.h"

#include <cstring>
#include <optional>

#include "config/settings.h"
#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/names.h"
#include "core/palette_bytes.h"
#include "formats/comment_source.h"
#include "formats/gif_blocks.h"
#include "formats/gif_codec.h"
#include "formats/info_start.h"

namespace pxm {
namespace {

constexpr size_t kMaxCommentBytes = 8192;

// The image the scan settled on.
struct Pick {
  bool found = false;
  uint32_t width = 0;
  uint32_t depth = 0;
  uint32_t bits = 0;
  uint8_t flags = 0;
  int codeSize = 0;
};

// Walks the blocks to the image the record asks for (the first, unless MultipleImageGIF is on).
// Colour tables go into `palette` when it is given (the info handler): every local table passed
// on the way is kept in it, over the global one. The file ends up at the chosen image's first
// data sub-block.
int Locate(GifFile& g, uint32_t wantedIndex, Palette* palette, Pick& pick) {
  pick.width = LoadLe16(g.header + kGifScreenWidth);
  pick.depth = LoadLe16(g.header + kGifScreenHeight);
  pick.bits = g.ScreenBits();
  GifBlockWalker walker(g);
  uint8_t table[kGifMaxTableBytes];
  size_t tableBytes = 0;
  if (!walker.ReadGlobalTable(table, tableBytes)) return kReadError;
  if (palette) PaletteFromBytes({table, tableBytes}, kRgbEntries, *palette);
  const bool multiple = CurrentSettings().MultipleImageGIF != 0;
  uint32_t passed = 0;
  GifBlock block;
  while (walker.Next(block)) {
    if (block.kind != GifBlock::Kind::kImage) continue;
    if (block.cut == GifBlock::Cut::kInDescriptor || block.cut == GifBlock::Cut::kInTable)
      return kReadError;
    const uint8_t* d = block.descriptor;
    pick.width = LoadLe16(d + kGifWidth);
    pick.depth = LoadLe16(d + kGifHeight);
    pick.flags = d[kGifImageFlags];
    if (pick.flags & 0x80) {
      if (palette) PaletteFromBytes({block.table, block.tableBytes}, kRgbEntries, *palette);
      pick.bits = (pick.flags & 7u) + 1;
    }
    if (block.cut == GifBlock::Cut::kBeforeCodeSize) return kCorruptedFile;
    pick.codeSize = block.codeSize;
    if (!multiple || passed >= wantedIndex) {
      walker.TakeData();
      pick.found = true;
      return kOk;
    }
    ++passed;
  }
  return kOk;  // the end of the file, or a zero, ends the scan with no image
}

bool WriteComment(OutputFile& out, const std::string& text) {
  const uint8_t head[2] = {kGifExtensionMark, kGifComment};
  if (!out.Write(head, 2)) return false;
  size_t at = 0;
  while (text.size() - at > 255) {
    if (!out.WriteByte(255) || !out.Write(text.data() + at, 255)) return false;
    at += 255;
  }
  const auto rest = static_cast<uint8_t>(text.size() - at);
  return out.WriteByte(rest) && out.Write(text.data() + at, rest) && out.WriteByte(0);
}

}  // namespace

uint32_t GifCountImages(const std::string& path) {
  GifFile g;
  if (g.Open(path) != kOk) return 0;
  GifBlockWalker walker(g);
  uint8_t table[kGifMaxTableBytes];
  size_t tableBytes = 0;
  walker.ReadGlobalTable(table, tableBytes);
  uint32_t count = 0;
  GifBlock block;
  while (walker.Next(block)) {
    if (block.kind != GifBlock::Kind::kImage) continue;
    if (block.cut == GifBlock::Cut::kInDescriptor) return count;
    ++count;
    if (block.cut != GifBlock::Cut::kNone || !walker.SkipData()) return count;
  }
  return count;
}

int GifReadComments(ImageInfo& /*info*/, const std::string& path, std::string& text) {
  GifFile g;
  const int code = g.Open(path);
  if (code == kOpenError) return kOpenError;
  if (code != kOk) return kOk;
  GifBlockWalker walker(g);
  uint8_t table[kGifMaxTableBytes];
  size_t tableBytes = 0;
  walker.ReadGlobalTable(table, tableBytes);
  GifBlock block;
  while (walker.Next(block)) {
    if (block.kind == GifBlock::Kind::kImage) {
      if (block.cut == GifBlock::Cut::kInDescriptor) return kOk;
    } else if (block.label == kGifPlainText || block.label == kGifComment) {
      std::string one;
      walker.GatherData(one, kMaxCommentBytes);
      // Each text goes on as a zero-terminated string.
      one.resize(one.find('\0') == std::string::npos ? one.size() : one.find('\0'));
      if (!text.empty()) text += '\r';
      text += one;
    }
  }
  return kOk;
}

int GifInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  StartInfo(info, path);
  info.readComments = GifReadComments;
  GifFile g;
  if (int code = g.Open(path, info.embedded)) return code;
  info.fileSize = static_cast<int32_t>(g.in.Size());
  info.description.assign(reinterpret_cast<const char*>(g.header), 6);
  info.description.resize(
      info.description.find('\0') == std::string::npos ? 6 : info.description.find('\0'));
  info.background = g.header[kGifBackground];
  Pick pick;
  if (int code = Locate(g, info.imageIndex, &info.palette, pick)) return code;
  info.width = pick.width;
  info.depth = static_cast<int32_t>(pick.depth);
  info.bits = pick.bits;
  if (!pick.found) return kCorruptedFile;
  // An LZW code of w bits stands for fewer than 2^w pixels, so a byte of data makes fewer than
  // 2731 at the widest codes (4096 / 12 a bit).
  if (!FileCouldHold(g.in.Size(), g.in.Tell(), PackedPictureBytes(pick.width, pick.depth, 8), 2731))
    return kCorruptedFile;
  info.flags = pick.flags;
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);
  // One-bit pictures always show black and white, whatever their colour table says.
  if (info.bits == 1) {
    info.palette[0] = Rgb{0, 0, 0};
    info.palette[1] = Rgb{255, 255, 255};
  }
  if (CurrentSettings().MultipleImageGIF) {
    const uint32_t count = GifCountImages(path);
    if (count > 1) info.imageCount = count;
  }
  return kOk;
}

int GifRead(ImageInfo& info, const std::string& path) {
  GifFile g;
  if (int code = g.Open(path, info.embedded)) return code;
  Pick pick;
  if (int code = Locate(g, info.imageIndex, nullptr, pick)) return code;
  // A file without an image reads as an empty picture.
  if (!pick.found) return kOk;
  return GifUnpackImage(g.in, pick.codeSize, pick.width, static_cast<int32_t>(pick.depth),
                        pick.bits, pick.flags, info.putLine);
}

int GifWrite(ImageInfo& info, const std::string& path) {
  const Settings& s = CurrentSettings();
  const uint32_t bits = info.bits;
  const uint32_t width = info.width;
  const int32_t depth = info.depth;
  // The format holds one to eight bits and 16-bit sizes.
  if (bits < 1 || bits > 8 || width > 0xFFFF || depth < 0 || depth > 0xFFFF)
    return kUnsuitableImage;
  const bool gif89 = s.CreateGif89 != 0;
  const bool interlaced = s.WriteGIFInterlaced != 0;

  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  uint8_t h[kGifHeaderBytes];
  std::memcpy(h, gif89 ? "GIF89a" : "GIF87a", 6);
  StoreLe16(h + kGifScreenWidth, width);
  StoreLe16(h + kGifScreenHeight, static_cast<uint32_t>(depth));
  h[kGifScreenFlags] = static_cast<uint8_t>(128 + (bits - 1) * 16 + (bits - 1));
  h[kGifBackground] = static_cast<uint8_t>(info.background);
  h[kGifAspect] = 0;
  if (!out.Write(h, sizeof h)) return kWriteError;
  uint8_t table[768];
  const size_t colours = size_t{1} << bits;
  PaletteToBytes(info.palette, kRgbEntries, {table, 3 * colours});
  if (!out.Write(table, 3 * colours)) return kWriteError;

  // The descriptor's table size carries bits - 1 although no local table follows; readers of
  // the program's files have always seen it so.
  uint8_t d[1 + kGifDescriptorBytes] = {kGifImageMark};
  StoreLe16(d + 1 + kGifWidth, width);
  StoreLe16(d + 1 + kGifHeight, static_cast<uint32_t>(depth));
  d[1 + kGifImageFlags] = static_cast<uint8_t>((bits - 1) + (interlaced ? kGifInterlaced : 0));
  if (!out.Write(d, sizeof d)) return kWriteError;
  // Any failure of the coding, a stop asked for by the source included, is a write error.
  if (GifCompressImage(out, width, depth, bits, interlaced, info.getLine) != kOk)
    return kWriteError;

  if (gif89 && s.WriteFileComments) {
    std::optional<std::string> text = CommentText(info);
    if (text && !WriteComment(out, *text)) return kWriteError;
  }
  if (!out.WriteByte(kGifTrailer)) return kWriteError;
  return out.Commit() ? kOk : kWriteError;
}

}  // namespace pxm
