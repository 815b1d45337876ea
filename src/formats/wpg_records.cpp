#include "formats/wpg_records.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "formats/pc_palettes.h"

namespace pxm::wpg {
namespace {

// The prefix: 0xFF "WPC", the offset of the first record, product, file type, major and minor
// version, an encryption key (0 when the file is not encrypted) and a reserved word.
enum PrefixOffset : size_t {
  kId = 0,
  kDataOffset = 4,
  kFileType = 9,
  kMajorVersion = 10,
  kEncryption = 12,
};

// Record lengths (and version 2 extensions) are one byte below 0xFF; else 0xFF and a word; a word
// with its high bit set is the high half of a 31-bit length whose low half follows.
bool ReadLength(InputFile& in, uint64_t& value) {
  int b = in.ReadByte();
  if (b < 0) return false;
  if (b != 0xFF) {
    value = static_cast<uint64_t>(b);
    return true;
  }
  uint8_t w[2];
  if (!in.ReadExact(w, 2)) return false;
  value = LoadLe16(w);
  if (!(value & 0x8000)) return true;
  uint8_t low[2];
  if (!in.ReadExact(low, 2)) return false;
  value = ((value & 0x7FFF) << 16) | LoadLe16(low);
  return true;
}

struct ColourMaps {
  Palette colours{};
  std::array<bool, 256> given{};

  // `entryBytes` are 3 in version 1 and 4 in version 2 (whose fourth byte is not a colour).
  bool Read(InputFile& in, uint64_t recordEnd, size_t entryBytes) {
    uint8_t h[4];
    if (!in.ReadExact(h, 4)) return false;
    const uint32_t first = LoadLe16(h);
    const uint32_t count = LoadLe16(h + 2);
    uint8_t e[4];
    for (uint32_t i = 0; i < count && first + i < 256; ++i) {
      if (in.Tell() + entryBytes > recordEnd || !in.ReadExact(e, entryBytes)) break;
      colours[first + i] = Rgb{e[0], e[1], e[2]};
      given[first + i] = true;
    }
    return true;
  }
};

// Without a colour map a one-bit picture is black and white and the others take the default
// map, which is the VGA's 256 colours.
Palette FinalPalette(const ColourMaps& maps, uint32_t bits) {
  Palette p = VgaDefaultPalette();
  if (bits == 1) {
    p[0] = Rgb{};
    p[1] = Rgb{255, 255, 255};
  }
  for (size_t i = 0; i < 256; ++i)
    if (maps.given[i]) p[i] = maps.colours[i];
  return p;
}

int ReadBitmapHeader(InputFile& in, Picture& p, int version, uint8_t type) {
  uint8_t h[20];
  if (version == 1) {
    // The placed kind has an angle and two corners first.
    if (type == kBitmap1Placed && !in.Skip(10)) return kCorruptedFile;
    if (!in.ReadExact(h, 10)) return kCorruptedFile;
    p.width = LoadLe16(h);
    p.depth = LoadLe16(h + 2);
    p.bits = LoadLe16(h + 4);
    if (p.bits != 1 && p.bits != 2 && p.bits != 4 && p.bits != 8) return kUnsupportedFormat;
  } else {
    if (!in.ReadExact(h, 6)) return kCorruptedFile;
    p.width = LoadLe16(h);
    p.depth = LoadLe16(h + 2);
    static constexpr uint32_t kBitsOfCode[9] = {0, 1, 2, 4, 8, 0, 0, 0, 24};
    p.bits = h[4] < 9 ? kBitsOfCode[h[4]] : 0;
    if (p.bits == 0 || h[5] > 1) return kUnsupportedFormat;
    p.packed = h[5] == 1;
  }
  if (p.width == 0 || p.depth == 0) return kCorruptedFile;
  return kOk;
}

}  // namespace

uint64_t RowBytes(const Picture& p) {
  return (uint64_t{p.width} * p.bits + 7) / 8;
}

int FindPicture(InputFile& in, Picture& p) {
  uint8_t h[kPrefixBytes];
  if (!in.ReadExact(h, sizeof h)) return kCorruptedFile;
  if (h[kId] != 0xFF || h[kId + 1] != 'W' || h[kId + 2] != 'P' || h[kId + 3] != 'C' ||
      h[kFileType] != kFileTypeGraphics)
    return kCorruptedFile;
  p.version = h[kMajorVersion];
  if ((p.version != 1 && p.version != 2) || LoadLe16(h + kEncryption) != 0)
    return kUnsupportedFormat;
  if (!in.Seek(std::max<uint64_t>(LoadLe32(h + kDataOffset), kPrefixBytes))) return kCorruptedFile;

  ColourMaps maps;
  const uint64_t size = in.Size();
  // Every record takes at least two bytes, so the walk ends.
  while (in.Tell() < size) {
    uint8_t type;
    uint64_t length = 0, extension = 0;
    if (p.version == 1) {
      int t = in.ReadByte();
      if (t < 0 || !ReadLength(in, length)) return kCorruptedFile;
      type = static_cast<uint8_t>(t);
    } else {
      int recordClass = in.ReadByte();
      int t = in.ReadByte();
      if (recordClass < 0 || t < 0 || !ReadLength(in, extension) || !ReadLength(in, length))
        return kCorruptedFile;
      type = static_cast<uint8_t>(t);
    }
    const uint64_t start = in.Tell();
    const uint64_t end = start + length;
    if ((p.version == 1 && type == kEnd1) || (p.version == 2 && type == kEnd2)) break;
    const bool bitmap =
        p.version == 1 ? (type == kBitmap1 || type == kBitmap1Placed) : type == kBitmap2;
    if (bitmap) {
      if (int code = ReadBitmapHeader(in, p, p.version, type)) return code;
      p.dataStart = in.Tell();
      // A file cut short keeps what it has; the reader then stops at its end.
      p.dataEnd = std::min(end, size);
      if (p.dataStart > p.dataEnd) return kCorruptedFile;
      p.palette = FinalPalette(maps, p.bits);
      return kOk;
    }
    if (end > size) return kCorruptedFile;
    const bool colourMap = p.version == 1 ? type == kColourMap1 : type == kColourMap2;
    if (colourMap && !maps.Read(in, end, p.version == 1 ? 3 : 4)) return kCorruptedFile;
    if (!in.Seek(end)) return kCorruptedFile;
  }
  return kNoBitmap;
}

RowUnpacker::RowUnpacker(InputFile& in, const Picture& picture)
    : in_(in),
      picture_(picture),
      rowBytes_(static_cast<size_t>(RowBytes(picture))),
      previous_(rowBytes_, 0) {
  // Version 2 bitmaps may be stored as they are.
  if (!picture.packed) plainBytes_ = UINT64_MAX;
}

int RowUnpacker::Byte() {
  if (in_.Tell() >= picture_.dataEnd) return -1;
  return in_.ReadByte();
}

int RowUnpacker::NextRow(uint8_t* row) {
  if (repeatRows_ > 0) {
    --repeatRows_;
    std::memcpy(row, previous_.data(), rowBytes_);
    return kOk;
  }
  size_t x = 0;
  while (x < rowBytes_) {
    if (repeatBytes_ > 0) {
      const size_t k = static_cast<size_t>(std::min<uint64_t>(repeatBytes_, rowBytes_ - x));
      for (size_t i = 0; i < k; ++i) {
        row[x++] = sample_[samplePos_];
        if (++samplePos_ == sampleSize_) samplePos_ = 0;
      }
      repeatBytes_ -= k;
    } else if (plainBytes_ > 0) {
      const size_t k = static_cast<size_t>(std::min<uint64_t>(plainBytes_, rowBytes_ - x));
      for (size_t i = 0; i < k; ++i) {
        const int b = Byte();
        if (b < 0) return kReadError;
        row[x++] = static_cast<uint8_t>(b);
      }
      plainBytes_ -= k;
    } else {
      const int b = Byte();
      if (b < 0) return kReadError;
      if (int code = ReadCode(b, x == 0)) return code;
      if (repeatRows_ > 0) {
        --repeatRows_;
        std::memcpy(row, previous_.data(), rowBytes_);
        x = rowBytes_;
      }
    }
  }
  std::memcpy(previous_.data(), row, rowBytes_);
  return kOk;
}

int RowUnpacker::ReadCode(int code, bool rowStart) {
  return picture_.version == 1 ? ReadCode1(code, rowStart) : ReadCode2(code, rowStart);
}

// Version 1: high bit set, a count and a byte to repeat (count 0: a count of 0xFF bytes follows);
// high bit clear, a count of bytes as they are (count 0: a count of repeats of the row before).
int RowUnpacker::ReadCode1(int code, bool rowStart) {
  const uint32_t n = static_cast<uint32_t>(code) & 0x7F;
  sampleSize_ = 1;
  samplePos_ = 0;
  if (n && !(code & 0x80)) {
    plainBytes_ = n;
    return kOk;
  }
  const int next = Byte();
  if (next < 0) return kReadError;
  if (code & 0x80) {
    sample_[0] = n ? static_cast<uint8_t>(next) : 0xFF;
    repeatBytes_ = n ? n : static_cast<uint64_t>(next);
    return kOk;
  }
  if (!rowStart) return kCorruptedFile;  // only whole rows repeat
  repeatRows_ = static_cast<uint32_t>(next);
  return kOk;
}

// Version 2 codes count from one and work on samples of a size that a code sets: repeat a
// sample, samples as they are, zero or 0xFF samples, the last sample again, or the row before.
int RowUnpacker::ReadCode2(int code, bool rowStart) {
  enum : int {
    kSampleSize = 0x7D,
    kXor = 0x7E,
    kBlack = 0x7F,
    kAgain = 0xFD,
    kRows = 0xFE,
    kWhite = 0xFF
  };
  if (code == kXor) return kUnsupportedFormat;
  samplePos_ = 0;
  const uint32_t count = (static_cast<uint32_t>(code) & 0x7F) + 1;
  if (code != kSampleSize && code != kBlack && code != kAgain && code != kRows && code != kWhite) {
    if (!(code & 0x80)) {
      plainBytes_ = uint64_t{count} * sampleSize_;
      return kOk;
    }
    for (size_t i = 0; i < sampleSize_; ++i) {
      const int b = Byte();
      if (b < 0) return kReadError;
      last_[i] = static_cast<uint8_t>(b);
    }
    std::memcpy(sample_, last_, sampleSize_);
    repeatBytes_ = uint64_t{count} * sampleSize_;
    return kOk;
  }
  const int n = Byte();
  if (n < 0) return kReadError;
  switch (code) {
    case kSampleSize:
      if (n < 1 || n > 8) return kCorruptedFile;
      sampleSize_ = static_cast<size_t>(n);
      return kOk;
    case kRows:
      if (!rowStart) return kCorruptedFile;
      repeatRows_ = static_cast<uint32_t>(n) + 1;
      return kOk;
    case kAgain:
      std::memcpy(sample_, last_, sampleSize_);
      break;
    default:
      std::memset(sample_, code == kWhite ? 0xFF : 0, sampleSize_);
      break;
  }
  repeatBytes_ = (static_cast<uint64_t>(n) + 1) * sampleSize_;
  return kOk;
}

}  // namespace pxm::wpg
