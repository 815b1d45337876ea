#include "formats/gif.h"

#include <cstring>
#include <optional>

#include "config/settings.h"
#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/names.h"
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

// Reads `bytes` of colour table into the palette, or skips them when `palette` is null.
bool TakeTable(InputFile& in, size_t bytes, Palette* palette) {
  if (!palette) return in.Skip(bytes);
  uint8_t table[768];
  if (!in.ReadExact(table, bytes)) return false;
  for (size_t i = 0; i < bytes / 3; ++i)
    (*palette)[i] = Rgb{table[3 * i], table[3 * i + 1], table[3 * i + 2]};
  return true;
}

// Walks the blocks to the image the record asks for (the first, unless MultipleImageGIF is on).
// Colour tables go into `palette` when it is given (the info handler), and are skipped
// otherwise (the reader). The file ends up at the chosen image's first data sub-block. Stray
// bytes between blocks are passed over: files with junk between blocks still read.
int Locate(GifFile& g, uint32_t wantedIndex, Palette* palette, Pick& pick) {
  InputFile& in = g.in;
  pick.width = LoadLe16(g.header + kGifScreenWidth);
  pick.depth = LoadLe16(g.header + kGifScreenHeight);
  pick.bits = g.ScreenBits();
  if (g.HasGlobalTable() && !TakeTable(in, GifTableBytes(g.header[kGifScreenFlags]), palette))
    return kReadError;
  const bool multiple = CurrentSettings().MultipleImageGIF != 0;
  uint32_t passed = 0;
  for (;;) {
    const int b = in.ReadByte();
    if (b <= 0) return kOk;  // the end of the file, or a zero, ends the scan with no image
    if (b == kGifExtensionMark) {
      SkipExtension(in, in.ReadByte());
    } else if (b == kGifImageMark) {
      uint8_t d[kGifDescriptorBytes];
      if (!in.ReadExact(d, sizeof d)) return kReadError;
      pick.width = LoadLe16(d + kGifWidth);
      pick.depth = LoadLe16(d + kGifHeight);
      pick.flags = d[kGifImageFlags];
      if (pick.flags & 0x80) {
        if (!TakeTable(in, GifTableBytes(pick.flags), palette)) return kReadError;
        pick.bits = (pick.flags & 7u) + 1;
      }
      const int codeSize = in.ReadByte();
      if (codeSize < 0) return kCorruptedFile;
      pick.codeSize = codeSize;
      if (!multiple || passed >= wantedIndex) {
        pick.found = true;
        return kOk;
      }
      ++passed;
      SkipSubBlocks(in);
    }
  }
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
  InputFile& in = g.in;
  if (g.HasGlobalTable()) in.Skip(GifTableBytes(g.header[kGifScreenFlags]));
  uint32_t count = 0;
  for (;;) {
    const int b = in.ReadByte();
    if (b <= 0) return count;
    if (b == kGifExtensionMark) {
      SkipExtension(in, in.ReadByte());
    } else if (b == kGifImageMark) {
      uint8_t d[kGifDescriptorBytes];
      if (!in.ReadExact(d, sizeof d)) return count;
      ++count;
      if (d[kGifImageFlags] & 0x80) in.Skip(GifTableBytes(d[kGifImageFlags]));
      if (in.ReadByte() < 0 || !SkipSubBlocks(in)) return count;
    }
  }
}

int GifReadComments(ImageInfo& /*info*/, const std::string& path, std::string& text) {
  GifFile g;
  const int code = g.Open(path);
  if (code == kOpenError) return kOpenError;
  if (code != kOk) return kOk;
  InputFile& in = g.in;
  if (g.HasGlobalTable()) in.Skip(GifTableBytes(g.header[kGifScreenFlags]));
  for (;;) {
    const int b = in.ReadByte();
    if (b <= 0) return kOk;
    if (b == kGifImageMark) {
      uint8_t d[kGifDescriptorBytes];
      if (!in.ReadExact(d, sizeof d)) return kOk;
      if (d[kGifImageFlags] & 0x80) in.Skip(GifTableBytes(d[kGifImageFlags]));
      in.ReadByte();
      SkipSubBlocks(in);
    } else if (b == kGifExtensionMark) {
      const int label = in.ReadByte();
      if (label != kGifPlainText && label != kGifComment) {
        SkipExtension(in, label);
        continue;
      }
      uint8_t fixed[13];
      if (label == kGifPlainText) in.Read(fixed, sizeof fixed);
      std::string one;
      GatherSubBlocks(in, one, kMaxCommentBytes);
      // Each text goes on as a zero-terminated string.
      one.resize(one.find('\0') == std::string::npos ? one.size() : one.find('\0'));
      if (!text.empty()) text += '\r';
      text += one;
    }
  }
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
  for (size_t i = 0; i < colours; ++i) {
    table[3 * i] = info.palette[i].red;
    table[3 * i + 1] = info.palette[i].green;
    table[3 * i + 2] = info.palette[i].blue;
  }
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
