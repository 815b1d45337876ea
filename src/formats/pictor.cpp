#include "formats/pictor.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/pixels.h"
#include "core/row_format.h"
#include "core/strings.h"
#include "formats/info_start.h"
#include "formats/pc_palettes.h"
#include "formats/pictor_blocks.h"
#include "formats/pictor_layout.h"

namespace pxm {
namespace {

using namespace pictor;

// A block packs at best 65535 bytes into the five of one long run.
constexpr uint64_t kBestBlockRatio = 65535 / 5;

struct Layout {
  uint32_t width = 0;
  int32_t depth = 0;
  uint32_t bitsPerPlane = 0;
  uint32_t planes = 0;
  uint16_t paletteType = 0;
  uint16_t paletteSize = 0;

  uint32_t Bits() const { return bitsPerPlane * planes; }
  uint64_t RowBits() const { return uint64_t{width} * bitsPerPlane; }
  uint64_t PlaneRowBytes() const { return (RowBits() + 7) / 8; }
  uint64_t PlaneBits() const { return RowBits() * static_cast<uint64_t>(depth); }
  uint64_t DataStart() const { return kHeaderBytes + paletteSize; }
};

// Reads the header. Files of the other family that shares the extension lack the magic word;
// a plane of 0 bits is damage; planes that add up to more than 8 bits, or planes of 3, 5, 6 or 7
// bits, have no row layout here.
int ReadLayout(InputFile& in, Layout& l) {
  uint8_t h[kHeaderBytes];
  if (!in.ReadExact(h, sizeof h) || LoadLe16(h + kMagic) != kPicMagic) return kCorruptedFile;
  l.width = LoadLe16(h + kWidth);
  l.depth = LoadLe16(h + kHeight);
  l.bitsPerPlane = h[kPlaneInfo] & 0x0F;
  l.planes = (h[kPlaneInfo] >> 4) + 1u;
  // The palette flag is not looked at: files without the 0xFF carry the same fields all the same.
  l.paletteType = LoadLe16(h + kPaletteType);
  l.paletteSize = LoadLe16(h + kPaletteSize);
  if (l.width == 0 || l.depth == 0 || l.bitsPerPlane == 0) return kCorruptedFile;
  const uint32_t b = l.bitsPerPlane;
  if ((b != 1 && b != 2 && b != 4 && b != 8) || l.Bits() > 8) return kUnsupportedFormat;
  return kOk;
}

// The three colours after black of the CGA's six four-colour sets, by set number: cyan, magenta
// and grey; green, red and brown; cyan, red and grey; then the same three sets bright.
constexpr uint8_t kCgaSets[6][3] = {{3, 5, 7},    {2, 4, 6},    {3, 4, 7},
                                    {11, 13, 15}, {10, 12, 14}, {11, 12, 15}};

Palette BuildPalette(const Layout& l, const std::vector<uint8_t>& data) {
  Palette p{};
  const uint32_t bits = l.Bits();
  if (bits == 1) {
    p[1] = Rgb{255, 255, 255};
  } else if (bits == 2) {
    for (size_t i = 0; i < 3; ++i) p[i + 1] = CgaColour(kCgaSets[0][i]);
  } else {
    for (uint32_t i = 0; i < 16; ++i) p[i] = CgaColour(i);
  }
  const size_t n = data.size();
  switch (l.paletteType) {
    case kCgaPalette: {
      // The set number picks the colours after black; the border colour that follows it is a
      // screen setting, not a colour of the picture. One-bit pictures take black and the set's
      // first colour.
      const size_t set = n > 0 && data[0] < 6 ? data[0] : 0;
      p[0] = Rgb{};
      for (size_t i = 0; i < 3; ++i) p[i + 1] = CgaColour(kCgaSets[set][i]);
      break;
    }
    case kPcjrPalette:
      for (size_t i = 0; i < std::min<size_t>(n, 256); ++i) p[i] = CgaColour(data[i]);
      break;
    case kEgaPalette:
      for (size_t i = 0; i < std::min<size_t>(n, 256); ++i) p[i] = EgaColour(data[i]);
      break;
    case kVgaPalette:
    case kVga16Palette:
      for (size_t i = 0; i < std::min<size_t>(n / 3, 256); ++i)
        p[i] = Rgb{VgaLevel(data[3 * i]), VgaLevel(data[3 * i + 1]), VgaLevel(data[3 * i + 2])};
      break;
    default:
      break;  // no palette: the screen mode's own colours
  }
  return p;
}

std::string Describe(const Layout& l, bool packed) {
  const char* how = packed ? "run-length blocks" : "uncompressed";
  if (l.planes == 1) return FormatText("PC Paint, %u bits, %s", l.bitsPerPlane, how);
  return FormatText("PC Paint, %u planes of %u bit%s, %s", l.planes, l.bitsPerPlane,
                    l.bitsPerPlane == 1 ? "" : "s", how);
}

// Puts together one row of the picture from the same row of every plane: plane p gives bits p·b
// to p·b + b − 1 of each pixel.
class RowComposer {
 public:
  RowComposer(const Layout& l, uint32_t width) : l_(l), width_(width) {}

  void Compose(const std::vector<std::vector<uint8_t>>& planes, uint8_t* out) const {
    const uint32_t b = l_.bitsPerPlane;
    const uint32_t storage = StorageBits(l_.Bits());
    if (l_.planes == 1 && b == storage) {
      // One bit, four bits (nibbles high first) and eight bits are already the row's packing.
      std::memcpy(out, planes[0].data(), static_cast<size_t>((uint64_t{width_} * b + 7) / 8));
      return;
    }
    const uint32_t mask = (1u << b) - 1;
    for (uint32_t x = 0; x < width_; ++x) {
      const uint64_t bit = uint64_t{x} * b;
      const uint32_t shift = 8 - b - static_cast<uint32_t>(bit % 8);
      uint32_t v = 0;
      for (uint32_t p = 0; p < l_.planes; ++p)
        v |= ((planes[p][static_cast<size_t>(bit / 8)] >> shift) & mask) << (p * b);
      SetPixelAt(out, x, storage, v);
    }
  }

 private:
  const Layout& l_;
  uint32_t width_;
};

// The planes are one stream of bits: rows follow each other without padding to whole bytes (only
// pictures whose rows are whole bytes, as screens are, look the same either way), and each plane
// follows the last. Reads a plane's rows from wherever its first bit lies.
class PlaneBits {
 public:
  bool Start(PicStreamReader& stream, uint64_t firstBit) {
    stream_ = &stream;
    if (!stream.Skip(firstBit / 8)) return false;
    lead_ = static_cast<uint32_t>(firstBit % 8);
    return lead_ == 0 || stream.Read(&held_, 1);
  }
  // The next `bits` bits, packed from the first bit of `out`.
  bool Next(uint8_t* out, uint64_t bits) {
    const size_t needed = static_cast<size_t>((lead_ + bits + 7) / 8);
    bytes_.resize(needed + 1);
    size_t have = 0;
    if (lead_ > 0) bytes_[have++] = held_;
    if (needed > have && !stream_->Read(bytes_.data() + have, needed - have)) return false;
    bytes_[needed] = 0;
    const size_t outBytes = static_cast<size_t>((bits + 7) / 8);
    if (lead_ == 0) {
      std::memcpy(out, bytes_.data(), outBytes);
    } else {
      for (size_t i = 0; i < outBytes; ++i)
        out[i] = static_cast<uint8_t>((bytes_[i] << lead_) | (bytes_[i + 1] >> (8 - lead_)));
    }
    lead_ = static_cast<uint32_t>((lead_ + bits) % 8);
    if (lead_ > 0) held_ = bytes_[needed - 1];
    return true;
  }

 private:
  PicStreamReader* stream_ = nullptr;
  uint32_t lead_ = 0;  // bits of `held_` already taken
  uint8_t held_ = 0;
  std::vector<uint8_t> bytes_;
};

int ReadRows(ImageInfo& info, const std::string& path, InputFile& first, const Layout& l) {
  const uint32_t width = std::min(l.width, info.width);
  const int32_t depth = std::min(l.depth, info.depth);
  const size_t planeRow = static_cast<size_t>(l.PlaneRowBytes());

  // Each plane reads the file on its own, from where its first bit lies.
  std::vector<std::unique_ptr<InputFile>> files;
  std::vector<PicStreamReader> streams(l.planes);
  std::vector<PlaneBits> bits(l.planes);
  if (!streams[0].Start(first) || !bits[0].Start(streams[0], 0)) return kReadError;
  for (uint32_t p = 1; p < l.planes; ++p) {
    files.push_back(std::make_unique<InputFile>());
    InputFile& f = *files.back();
    if (!f.Open(path)) return kOpenError;
    if (!f.Seek(l.DataStart()) || !streams[p].Start(f) ||
        !bits[p].Start(streams[p], p * l.PlaneBits()))
      return kReadError;
  }

  std::vector<std::vector<uint8_t>> planes(l.planes, std::vector<uint8_t>(planeRow + 1));
  std::vector<uint8_t> row(static_cast<size_t>(WorkingRowSize(width, info.bits)),
                           static_cast<uint8_t>(info.background));
  const RowComposer composer(l, width);
  // Rows are kept bottom first. A picture taller than the record's (a file changed since info)
  // still passes its lower rows.
  for (int32_t fileRow = 0; fileRow < l.depth; ++fileRow) {
    for (uint32_t p = 0; p < l.planes; ++p)
      if (!bits[p].Next(planes[p].data(), l.RowBits())) return kReadError;
    const int32_t y = l.depth - 1 - fileRow;
    if (y >= depth) continue;
    composer.Compose(planes, row.data());
    if (info.putLine(row, y) != 0) return kCancelled;
  }
  return kOk;
}

}  // namespace

int PicInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  Layout l;
  if (int code = ReadLayout(in, l)) return code;
  info.width = l.width;
  info.depth = l.depth;
  info.bits = l.Bits();
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);

  std::vector<uint8_t> palette(l.paletteSize);
  uint8_t count[2];
  if (!in.ReadExact(palette.data(), palette.size()) || !in.ReadExact(count, 2))
    return kCorruptedFile;
  const bool packed = LoadLe16(count) != 0;
  if (!FileCouldHold(in.Size(), l.DataStart() + 2, (l.PlaneBits() * l.planes + 7) / 8,
                     packed ? kBestBlockRatio : 1))
    return kCorruptedFile;
  info.palette = BuildPalette(l, palette);
  info.description = Describe(l, packed);
  return kOk;
}

int PicRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  Layout l;
  if (int code = ReadLayout(in, l)) return code;
  // The record describes the picture the store was made for.
  if (l.Bits() != info.bits) return kCorruptedFile;
  if (!in.Seek(l.DataStart())) return kReadError;
  try {
    return ReadRows(info, path, in, l);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

}  // namespace pxm
