#include "formats/corel_paint.h"

#include <cstring>
#include <string_view>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "formats/info_start.h"
#include "formats/tiff.h"

namespace pxm {
namespace {

// The header of version 7 and later files, little-endian: the signature "CPTnFILE", the colour
// model at 8, the number of blocks at 0x28 and the offset of the block table at 0x34; a note of
// 256 bytes ends it at 0x13C. Each entry of the block table is 8 bytes, its first word the
// block's offset; the first block (the background) starts with its width, height, tile width,
// tile height and bits a pixel.
constexpr size_t kHeaderBytes = 0x13C;
constexpr size_t kColourModel = 0x08;
constexpr size_t kBlockCount = 0x28;
constexpr size_t kBlockTable = 0x34;
constexpr size_t kBlockHeaderBytes = 20;
// A tile of one colour is stored in 16 bytes whatever its size: the best any file packs.
constexpr uint64_t kBestRatio = 16384;

enum class Kind { kNone, kTiff, kTiled };

Kind KindOf(const uint8_t* h, size_t n) {
  if (n >= 4 && (std::memcmp(h, "II*\0", 4) == 0 || std::memcmp(h, "MM\0*", 4) == 0))
    return Kind::kTiff;
  if (n >= 8 && std::memcmp(h, "CPT", 3) == 0 && h[3] >= '7' && h[3] <= '9' &&
      std::memcmp(h + 4, "FILE", 4) == 0)
    return Kind::kTiled;
  return Kind::kNone;
}

struct ColourModel {
  uint32_t code;
  uint32_t bits;  // as the record holds them: deeper than 8 is 24
  std::string_view name;
};

constexpr ColourModel kModels[] = {
    {1, 24, "RGB 24 bits"},    {3, 24, "CMYK 32 bits"},  {5, 8, "grey 8 bits"},
    {6, 1, "black and white"}, {10, 8, "256 colours"},   {11, 24, "Lab 24 bits"},
    {12, 24, "RGB 48 bits"},   {14, 24, "grey 16 bits"},
};

const ColourModel* ModelOf(uint32_t code) {
  for (const ColourModel& m : kModels)
    if (m.code == code) return &m;
  return nullptr;
}

int TiledInfo(ImageInfo& info, InputFile& in, const uint8_t* h) {
  const ColourModel* model = ModelOf(LoadLe32(h + kColourModel));
  if (!model || LoadLe32(h + kBlockCount) == 0) return kCorruptedFile;
  uint8_t entry[4];
  uint8_t block[kBlockHeaderBytes];
  if (!in.Seek(LoadLe32(h + kBlockTable)) || !in.ReadExact(entry, sizeof entry) ||
      !in.Seek(LoadLe32(entry)) || !in.ReadExact(block, sizeof block))
    return kCorruptedFile;
  const uint32_t width = LoadLe32(block);
  const uint32_t height = LoadLe32(block + 4);
  if (width == 0 || height == 0 || height > INT32_MAX) return kCorruptedFile;
  // A header that declares more picture than the file could hold even in one-colour tiles is
  // damaged.
  if (!FileCouldHold(in.Size(), kHeaderBytes, PackedPictureBytes(width, height, model->bits),
                     kBestRatio))
    return kCorruptedFile;
  info.width = width;
  info.depth = static_cast<int32_t>(height);
  info.bits = model->bits;
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);
  for (uint32_t i = 0; i < 256; ++i) {
    const auto v = static_cast<uint8_t>(model->bits == 1 ? (i ? 255 : 0) : i);
    info.palette[i] = Rgb{v, v, v};
  }
  SetText(info.description,
          "PHOTO-PAINT " + std::string(1, static_cast<char>(h[3])) + ", " +
              std::string(model->name) + ", tiles not read",
          kMaxDescriptionLength);
  return kOk;
}

}  // namespace

int CptInfo(ImageInfo& info, const std::string& path, int purpose) {
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  uint8_t h[kHeaderBytes];
  const size_t n = in.Read(h, sizeof h);
  switch (KindOf(h, n)) {
    case Kind::kTiff: {
      in.Close();
      const int code = TiffInfo(info, path, purpose);
      if (code == kOk)
        SetText(info.description, "PHOTO-PAINT 6 (TIFF), " + info.description,
                kMaxDescriptionLength);
      return code;
    }
    case Kind::kTiled:
      if (n < sizeof h) return kCorruptedFile;
      return TiledInfo(info, in, h);
    default:
      return kCorruptedFile;
  }
}

int CptRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  uint8_t h[8];
  const size_t n = in.Read(h, sizeof h);
  in.Close();
  switch (KindOf(h, n)) {
    case Kind::kTiff:
      return TiffRead(info, path);
    case Kind::kTiled:
      return kUnsupportedFunction;
    default:
      return kCorruptedFile;
  }
}

}  // namespace pxm
