#include "formats/photo_cd.h"

#include <array>
#include <cmath>
#include <cstring>
#include <new>
#include <span>
#include <string_view>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/row_format.h"
#include "formats/info_start.h"
#include "formats/photo_cd_pack.h"
#include "process/colour_reduce.h"
#include "process/effects_word.h"

namespace pxm {
namespace {

// PhotoCDResolution: seven sizes (Base/64 up to 64Base) as RGB, then as 256 colours, then as
// 256 greys. A value outside the list reads as its default.
constexpr int32_t kSizesPerKind = 7;
constexpr int32_t kChoices = 3 * kSizesPerKind;
constexpr int32_t kDefaultChoice = 10;
constexpr uint32_t kLargestStoredSize = 3;  // Base; 4Base and up are coded differences

enum Kind : uint32_t { kRgb = 0, kColours = 1, kGreys = 2 };

struct Choice {
  uint32_t size;  // 0 Base/64, 1 Base/16, 2 Base/4, 3 Base, 4 4Base, 5 16Base, 6 64Base
  Kind kind;
};

Choice ChoiceOf(int32_t setting) {
  if (setting < 0 || setting >= kChoices) setting = kDefaultChoice;
  return {static_cast<uint32_t>(setting % kSizesPerKind),
          static_cast<Kind>(setting / kSizesPerKind)};
}

constexpr std::string_view kSizeNames[kSizesPerKind] = {"Base/64", "Base/16", "Base/4", "Base",
                                                        "4Base",   "16Base",  "64Base"};
constexpr std::string_view kKindNames[3] = {"RGB", "256 colours", "256 greys"};

// The stored picture a size is read from: Base/64 is made from Base/16.
const PcdResolution& StoredFor(uint32_t size) {
  switch (size) {
    case 0:
    case 1:
      return kPcdBase16;
    case 2:
      return kPcdBase4;
    default:
      return kPcdBase;
  }
}

// Checks the signature and answers the turn of the picture (0 to 3). An overview pack of a disc
// is a Photo CD file too, but holds no picture of its own to read here.
int OpenPack(InputFile& in, uint32_t& turn) {
  uint8_t head[7];
  if (in.Seek(0) && in.ReadExact(head, sizeof head) && std::memcmp(head, "PCD_OPA", 7) == 0)
    return kUnsupportedFormat;
  if (!in.Seek(kPcdSignatureOffset) || !in.ReadExact(head, sizeof head) ||
      std::memcmp(head, "PCD_IPI", 7) != 0)
    return kCorruptedFile;
  uint8_t attributes = 0;
  if (!in.Seek(kPcdAttributeOffset) || !in.ReadExact(&attributes, 1)) return kCorruptedFile;
  turn = attributes & 3u;
  return kOk;
}

// Fixed-point terms of the YCC definition, 16 fraction bits, one table per term.
struct YccTables {
  std::array<int32_t, 256> luma{}, red{}, greenFrom1{}, greenFrom2{}, blue{};
  YccTables() {
    constexpr double kOne = 65536.0;
    for (int v = 0; v < 256; ++v) {
      const double c1 = 2.2179 * (v - 156);
      const double c2 = 1.8215 * (v - 137);
      luma[size_t(v)] = static_cast<int32_t>(std::lround(1.3584 * v * kOne));
      red[size_t(v)] = static_cast<int32_t>(std::lround(c2 * kOne));
      blue[size_t(v)] = static_cast<int32_t>(std::lround(c1 * kOne));
      greenFrom1[size_t(v)] = static_cast<int32_t>(std::lround(-0.194 * c1 * kOne));
      greenFrom2[size_t(v)] = static_cast<int32_t>(std::lround(-0.509 * c2 * kOne));
    }
  }
};

const YccTables& Tables() {
  static const YccTables tables;
  return tables;
}

inline uint8_t Limit(int32_t fixed) {
  const int32_t v = (fixed + 32768) >> 16;
  return static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
}

// The rows of the turned picture, made from the samples on demand.
class TurnedRows {
 public:
  TurnedRows(const PcdPlanes& planes, uint32_t turn) : p_(planes), turn_(turn), t_(Tables()) {}

  uint32_t Width() const { return turn_ & 1 ? p_.height : p_.width; }
  uint32_t Depth() const { return turn_ & 1 ? p_.width : p_.height; }

  void Rgb(int32_t row, uint8_t* out) const {
    const auto y = static_cast<uint32_t>(row);
    for (uint32_t x = 0; x < Width(); ++x, out += 3) {
      uint32_t sx, sy;
      Source(x, y, sx, sy);
      const int32_t l = t_.luma[p_.Luma(sx, sy)];
      const size_t c = p_.ChromaIndex(sx, sy);
      const uint8_t c1 = p_.chroma1[c];
      const uint8_t c2 = p_.chroma2[c];
      out[0] = Limit(l + t_.red[c2]);
      out[1] = Limit(l + t_.greenFrom1[c1] + t_.greenFrom2[c2]);
      out[2] = Limit(l + t_.blue[c1]);
    }
  }

  // Greys are the luma alone, on the scale the colours use: a neutral pixel has the same value
  // read either way.
  void Grey(int32_t row, uint8_t* out) const {
    const auto y = static_cast<uint32_t>(row);
    for (uint32_t x = 0; x < Width(); ++x) {
      uint32_t sx, sy;
      Source(x, y, sx, sy);
      out[x] = Limit(t_.luma[p_.Luma(sx, sy)]);
    }
  }

 private:
  // Where a pixel of the turned picture comes from. A quarter turn anticlockwise brings the
  // top right corner to the top left; clockwise the bottom left.
  void Source(uint32_t x, uint32_t y, uint32_t& sx, uint32_t& sy) const {
    switch (turn_) {
      case 1:
        sx = p_.width - 1 - y;
        sy = x;
        break;
      case 2:
        sx = p_.width - 1 - x;
        sy = p_.height - 1 - y;
        break;
      case 3:
        sx = y;
        sy = p_.height - 1 - x;
        break;
      default:
        sx = x;
        sy = y;
        break;
    }
  }

  const PcdPlanes& p_;
  uint32_t turn_;
  const YccTables& t_;
};

int DeliverRows(ImageInfo& info, const TurnedRows& rows, Kind kind) {
  const uint32_t width = rows.Width();
  const auto depth = static_cast<int32_t>(rows.Depth());
  if (kind == kColours) {
    // The colour reduction asks for every RGB row twice (once to choose the palette, once to
    // map it) and hands the indexes straight on.
    ImageInfo reduce;
    reduce.host = info.host;
    reduce.width = width;
    reduce.depth = depth;
    reduce.bits = 24;
    reduce.getLine = [&rows](std::span<uint8_t> row, int32_t y) {
      rows.Rgb(y, row.data());
      return 0;
    };
    reduce.putLine = info.putLine;
    if (int code = ReduceColours(reduce, kAutomaticReduction, info.fileName)) return code;
    info.palette = reduce.palette;
    return kOk;
  }
  std::vector<uint8_t> row(static_cast<size_t>(WorkingRowSize(width, kind == kRgb ? 24 : 8)));
  for (int32_t y = 0; y < depth; ++y) {
    if (kind == kRgb)
      rows.Rgb(y, row.data());
    else
      rows.Grey(y, row.data());
    if (info.putLine(row, y) != 0) return kCancelled;
  }
  return kOk;
}

}  // namespace

Rgb PhotoYccToRgb(uint8_t luma, uint8_t chroma1, uint8_t chroma2) {
  PcdPlanes one;
  one.width = one.height = 1;
  one.chromaShift = 0;
  one.luma = {luma};
  one.chroma1 = {chroma1};
  one.chroma2 = {chroma2};
  uint8_t rgb[3];
  TurnedRows(one, 0).Rgb(0, rgb);
  return Rgb{rgb[0], rgb[1], rgb[2]};
}

int PcdInfo(ImageInfo& info, const std::string& path, int purpose) {
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  uint32_t turn = 0;
  if (int code = OpenPack(in, turn)) return code;
  Choice choice = ChoiceOf(CurrentSettings().PhotoCDResolution);
  // Every size doubles the one before it, from Base/64's 96 x 64.
  uint32_t width = 96u << choice.size;
  uint32_t height = 64u << choice.size;
  info.fullWidth = 0;
  info.fullDepth = 0;
  if (purpose == 1 && choice.size > 1) {
    // A thumbnail is made from Base/16, whatever size is chosen: it is larger than any
    // thumbnail and read at once.
    info.fullWidth = turn & 1 ? height : width;
    info.fullDepth = static_cast<int32_t>(turn & 1 ? width : height);
    choice.size = 1;
    width = kPcdBase16.width;
    height = kPcdBase16.height;
  }
  std::string description = "Photo CD " + std::string(kSizeNames[choice.size]);
  if (choice.size > kLargestStoredSize) {
    SetText(info.description, description + " (coded differences, not read)",
            kMaxDescriptionLength);
    return kUnsupportedFunction;
  }
  // The pack holds its pictures at fixed places: one that ends before the chosen picture does is
  // cut short.
  if (in.Size() < PcdEndOf(StoredFor(choice.size))) return kCorruptedFile;
  info.width = turn & 1 ? height : width;
  info.depth = static_cast<int32_t>(turn & 1 ? width : height);
  info.bits = choice.kind == kRgb ? 24 : 8;
  // Greys keep this ramp; 256 colours replace it with the picture's own palette when read.
  for (uint32_t i = 0; i < 256; ++i) {
    const auto v = static_cast<uint8_t>(i);
    info.palette[i] = Rgb{v, v, v};
  }
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);
  info.privateWords[0] = choice.size;
  info.privateWords[1] = choice.kind;
  description += ", " + std::string(kKindNames[choice.kind]);
  if (turn != 0) description += turn == 2 ? ", turned half round" : ", turned a quarter";
  SetText(info.description, description, kMaxDescriptionLength);
  return kOk;
}

int PcdRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  uint32_t turn = 0;
  if (int code = OpenPack(in, turn)) return code;
  // The size and kind info chose (a thumbnail's info may have chosen a smaller size).
  const uint32_t size = info.privateWords[0];
  const uint32_t kind = info.privateWords[1];
  if (size > kLargestStoredSize || kind > kGreys) return kUnsupportedFunction;
  try {
    PcdPlanes planes;
    if (!ReadPcdPlanes(in, StoredFor(size), planes)) return kReadError;
    if (size == 0) planes = HalvePcdPlanes(planes);
    const TurnedRows rows(planes, turn);
    // The record sized the store: a file changed since info was taken must not overrun it.
    if (rows.Width() != info.width || static_cast<int32_t>(rows.Depth()) != info.depth ||
        info.bits != (kind == kRgb ? 24u : 8u))
      return kCorruptedFile;
    return DeliverRows(info, rows, static_cast<Kind>(kind));
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

}  // namespace pxm
