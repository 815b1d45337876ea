#include "formats/png.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <optional>

#include "config/settings.h"
#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/fixed_palette.h"
#include "core/names.h"
#include "core/palette_bytes.h"
#include "core/row_format.h"
#include "core/strings.h"
#include "formats/comment_source.h"
#include "formats/info_start.h"
#include "formats/png_chunks.h"
#include "formats/png_codec.h"

namespace pxm {
namespace {

// Offsets in the 13 bytes of IHDR; numbers are big-endian.
enum HeaderOffset : size_t {
  kWidth = 0,
  kHeight = 4,
  kBitDepth = 8,
  kColourType = 9,  // 1 palette, 2 colour, 4 alpha, as bits
  kCompression = 10,
  kFilter = 11,
  kInterlace = 12,
};

// Samples a pixel of a colour type holds, when the bit depth is one the type allows; 0 for
// a combination the format does not have.
uint32_t SamplesPerPixel(uint8_t colourType, uint8_t bitDepth) {
  const bool wide = bitDepth == 8 || bitDepth == 16;
  const bool narrow = bitDepth == 1 || bitDepth == 2 || bitDepth == 4;
  switch (colourType) {
    case 0:
      return wide || narrow ? 1 : 0;
    case 2:
      return wide ? 3 : 0;
    case 3:
      return bitDepth != 16 && (wide || narrow) ? 1 : 0;
    case 4:
      return wide ? 2 : 0;
    case 6:
      return wide ? 4 : 0;
    default:
      return 0;
  }
}

// A whole chunk: length, type, data and the CRC over type and data.
bool WriteChunk(OutputFile& out, const char* type, const uint8_t* data, size_t length) {
  uint8_t head[8];
  StoreBe32(head, static_cast<uint32_t>(length));
  std::memcpy(head + 4, type, 4);
  uint32_t crc = PngUpdateCrc(0, {head + 4, 4});
  crc = PngUpdateCrc(crc, {data, length});
  uint8_t tail[4];
  StoreBe32(tail, crc);
  return out.Write(head, 8) && (length == 0 || out.Write(data, length)) && out.Write(tail, 4);
}

// A "Comment" text chunk. The text goes in with its carriage returns as they are.
bool WriteComment(OutputFile& out, const std::string& text) {
  std::string data = "Comment";
  data.push_back('\0');
  data += text;
  return WriteChunk(out, "tEXt", reinterpret_cast<const uint8_t*>(data.data()), data.size());
}

// Bit depth and colour type written for a picture of `bits`, and its raw bytes a row.
struct Layout {
  uint8_t bitDepth;
  uint8_t colourType;
  uint64_t rowBytes;
  int filterBytesPerPixel;  // 0: rows are not filtered
};

Layout LayoutFor(uint32_t bits, uint32_t width) {
  const uint64_t w = width;
  if (bits == 1) return {1, 3, (w + 7) / 8, 0};
  // Two- and three-bit pictures are held four bits a pixel, and written so.
  if (bits >= 2 && bits <= 4) return {4, 3, (w + 1) / 2, 0};
  if (bits >= 5 && bits <= 8) return {8, 3, w, 1};
  return {8, 2, 3 * w, 3};
}

int WriteImage(ImageInfo& info, OutputFile& out, const Layout& layout, int level) {
  std::vector<uint8_t> row;
  try {
    row.assign(static_cast<size_t>(
                   std::max<uint64_t>(WorkingRowSize(info.width, info.bits), layout.rowBytes)),
               0);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  const uint64_t start = out.Tell();
  if (!out.Write("\0\0\0\0IDAT", 8)) return kWriteError;
  PngDeflate deflate;
  const auto rowBytes = static_cast<size_t>(layout.rowBytes);
  if (!PngBeginDeflate(deflate, out, level, rowBytes, layout.filterBytesPerPixel))
    return kWriteError;
  for (int32_t r = 0; r < info.depth; ++r) {
    if (info.getLine(row, r) != 0) return kCancelled;
    if (!PngDeflateData(deflate, {row.data(), rowBytes})) return kWriteError;
  }
  if (!PngEndDeflate(deflate)) return kWriteError;
  // The length is the compressed data alone: from after the type to before the CRC.
  const uint64_t end = out.Tell();
  const uint64_t length = end - start - 12;
  if (length > 0x7FFFFFFF) return kWriteError;
  uint8_t be[4];
  StoreBe32(be, static_cast<uint32_t>(length));
  if (!out.Seek(start) || !out.Write(be, 4) || !out.Seek(end)) return kWriteError;
  return kOk;
}

}  // namespace

void PngGreyRamp(uint32_t bits, Palette& palette) {
  const uint32_t entries = 1u << std::min(bits, 8u);
  const uint32_t step = 256 / entries;
  for (uint32_t i = 0; i < entries; ++i) {
    const auto v = static_cast<uint8_t>(Luminance(
        static_cast<int>(step * i), static_cast<int>(step * i), static_cast<int>(step * i)));
    palette[i] = Rgb{v, v, v};
  }
}

int PngResultCode(int result) {
  switch (result) {
    case kPngOk:
      return kOk;
    case kPngNoMemory:
      return kMemoryError;
    case kPngCannotRead:
    case kPngTruncated:
      return kReadError;
    case kPngWriteFailed:
      return kWriteError;
    case kPngNoImage:
      return kNoBitmap;
    case kPngCancelled:
      return kCancelled;
    default:
      return kCorruptedFile;
  }
}

int PngDescribe(ImageInfo& info, InputFile& in, uint64_t start) {
  PngChunkReader chunks(in, start);
  uint8_t h[kPngHeaderBytes];
  if (int code = chunks.StartWithHeader(h)) return code;
  info.palette[0] = Rgb{0, 0, 0};
  info.palette[1] = Rgb{255, 255, 255};

  const uint32_t width = LoadBe32(h + kWidth);
  const uint32_t height = LoadBe32(h + kHeight);
  // The format allows 1 to 2^31 - 1 each way; nothing else can describe a picture.
  if (width == 0 || height == 0 || width > 0x7FFFFFFF || height > 0x7FFFFFFF) return kCorruptedFile;
  const uint32_t samples = SamplesPerPixel(h[kColourType], h[kBitDepth]);
  if (samples == 0) return kCorruptedFile;
  // Deflate makes at most 1032 bytes of one, and the rows hold at least their pixels.
  if (in.Size() < start ||
      !FileCouldHold(in.Size() - start, sizeof kPngSignature + 12 + kPngHeaderBytes,
                     PackedPictureBytes(width, height, samples * h[kBitDepth]), 1032))
    return kCorruptedFile;
  info.width = width;
  info.depth = static_cast<int32_t>(height);
  info.bits = h[kBitDepth];
  // Eight pixels a byte's worth of width whatever the depth, as the record has always said.
  info.unpackedSize = static_cast<uint32_t>(((width + 7u) & ~7u) * height);
  info.description = LoadMessage(h[kInterlace] == 0 ? kStrNoInterlace : kStrAdam7Interlace);
  switch (h[kColourType]) {
    case 0:
      PngGreyRamp(info.bits, info.palette);
      break;
    case 2:
    case 6:
      info.bits = 24;
      info.palette = ThumbGetPalette(0);
      break;
    case 4:
      info.bits = 8;
      PngGreyRamp(8, info.palette);
      break;
    default:
      break;  // 3, palette: the bit depth, and the colours from PLTE
  }

  while (chunks.Next()) {
    if (chunks.Is("PLTE")) {
      uint8_t table[768];
      PaletteFromBytes({table, chunks.Read(table)}, kRgbEntries, info.palette);
    } else if (chunks.Is("IEND")) {
      return kOk;
    }
  }
  return kReadError;  // the file ends before IEND
}

int PngInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  StartInfo(info, path);
  info.readComments = PngReadComments;
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  info.fileSize = static_cast<int32_t>(in.Size());
  return PngDescribe(info, in, 0);
}

int PngRead(ImageInfo& info, const std::string& path) {
  return PngResultCode(PngUnpackImage(info, path));
}

int PngWrite(ImageInfo& info, const std::string& path) {
  const Settings& s = CurrentSettings();
  const Layout layout = LayoutFor(info.bits, info.width);
  if (info.width == 0 || info.depth <= 0 || info.width > 0x7FFFFFFF) return kUnsuitableImage;
  // Levels below 1 compress at 1, above 8 at 9.
  const int32_t stored = s.PngCompression;
  const int level = stored < 1 ? 1 : stored > 8 ? 9 : stored;

  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  if (!out.Write(kPngSignature, sizeof kPngSignature)) return kWriteError;
  uint8_t h[kPngHeaderBytes] = {};
  StoreBe32(h + kWidth, info.width);
  StoreBe32(h + kHeight, static_cast<uint32_t>(info.depth));
  h[kBitDepth] = layout.bitDepth;
  h[kColourType] = layout.colourType;
  if (!WriteChunk(out, "IHDR", h, sizeof h)) return kWriteError;

  if (s.WriteFileComments) {
    std::optional<std::string> text = CommentText(info);
    if (text && !WriteComment(out, *text)) return kWriteError;
    if (s.PngAddCompFac &&
        !WriteComment(out, FormatText("Compression factor: %u", static_cast<uint32_t>(stored))))
      return kWriteError;
  }
  if (layout.colourType == 3) {
    // One-bit pictures are always black and white; the record's palette says so from now on.
    if (layout.bitDepth == 1) {
      info.palette[0] = Rgb{0, 0, 0};
      info.palette[1] = Rgb{255, 255, 255};
    }
    uint8_t table[768];
    const size_t entries = size_t{1} << layout.bitDepth;
    PaletteToBytes(info.palette, kRgbEntries, {table, 3 * entries});
    if (!WriteChunk(out, "PLTE", table, 3 * entries)) return kWriteError;
  }
  if (int code = WriteImage(info, out, layout, level)) return code;
  if (!WriteChunk(out, "IEND", nullptr, 0)) return kWriteError;
  return out.Commit() ? kOk : kWriteError;
}

}  // namespace pxm
