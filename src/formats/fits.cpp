#include "formats/fits.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <new>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/names.h"
#include "core/pixels.h"
#include "core/row_format.h"
#include "core/signature.h"
#include "core/strings.h"
#include "formats/fits_cards.h"
#include "formats/report_list.h"
#include "formats/info_start.h"

namespace pxm {
namespace {

// What the header says about the picture, up to its END card.
struct Header {
  int64_t axes = 0;
  int64_t width = 0;
  int64_t depth = 0;
  uint32_t sampleBits = 0;  // |BITPIX|
  double zero = 0.0;        // BZERO
  double scale = 1.0;       // BSCALE
  bool ended = false;       // an END card was found
};

uint32_t AbsoluteBits(int64_t bitpix) {
  const int64_t a = bitpix < 0 ? -bitpix : bitpix;
  return a > 0xFFFF ? 0xFFFF : static_cast<uint32_t>(a);
}

// Reads cards until END or until a card cannot be read whole.
Header ReadHeader(InputFile& in) {
  Header h;
  FitsCard card;
  while (ReadFitsCard(in, card)) {
    if (card.keyword == "END") {
      h.ended = true;
      break;
    }
    if (card.keyword == "NAXIS")
      h.axes = FitsInteger(card.value);
    else if (card.keyword == "NAXIS1")
      h.width = FitsInteger(card.value);
    else if (card.keyword == "NAXIS2")
      h.depth = FitsInteger(card.value);
    else if (card.keyword == "BITPIX")
      h.sampleBits = AbsoluteBits(FitsInteger(card.value));
    else if (card.keyword == "BZERO")
      h.zero = FitsReal(card.value, 0.0);
    else if (card.keyword == "BSCALE")
      h.scale = FitsReal(card.value, 1.0);
  }
  return h;
}

uint64_t NextBlock(uint64_t offset) {
  return (offset + kFitsBlockBytes - 1) / kFitsBlockBytes * kFitsBlockBytes;
}

// The row as the reader takes it from the file: |BITPIX| div 8 bytes a pixel.
uint64_t RowLength(uint64_t width, uint32_t sampleBits) {
  return width * (sampleBits / 8);
}

// A value becomes a pixel by truncation to a 32-bit integer, keeping its low byte; a value out
// of that range gives the integer's "indefinite" value, whose low byte is 0.
uint8_t LowByte(double v) {
  if (!(v > -2147483649.0 && v < 2147483648.0)) return 0;
  return static_cast<uint8_t>(static_cast<int32_t>(v));
}

// Turns one row of samples into a byte a pixel. The sizes have their own rules (difference D31
// of the differences table): 16-bit samples are taken every four bytes (so the right
// half of a row comes from beyond it), 24-bit samples repeat their first byte, and both 16 and
// 32 bits are halved.
class RowConverter {
 public:
  RowConverter(uint32_t sampleBits, double scale, double zero)
      : sampleBits_(sampleBits), scale_(scale), zero_(zero) {
    for (uint32_t s = 0; s < 256; ++s) table_[s] = LowByte(s * scale + zero);
  }
  void operator()(const uint8_t* in, uint8_t* out, uint32_t width) const {
    if (sampleBits_ <= 8) {
      for (uint32_t x = 0; x < width; ++x) out[x] = table_[in[x]];
    } else if (sampleBits_ == 16) {
      for (uint32_t x = 0; x < width; ++x)
        out[x] = LowByte((LoadBe16(in + 4 * size_t{x}) * scale_ + zero_) * 0.5);
    } else if (sampleBits_ == 24) {
      for (uint32_t x = 0; x < width; ++x) {
        const uint32_t b = in[3 * size_t{x}];
        const auto n = static_cast<int32_t>((b << 24) | (b << 16) | (b << 8));
        out[x] = LowByte((n * scale_ + zero_) * (1.0 / 3.0));
      }
    } else if (sampleBits_ == 32) {
      for (uint32_t x = 0; x < width; ++x) {
        const auto n = static_cast<int32_t>(LoadBe32(in + 4 * size_t{x}));
        out[x] = LowByte((n * scale_ + zero_) * 0.5);
      }
    }
    // Any other size (64 bits) is not converted: the row keeps what it held.
  }

 private:
  uint32_t sampleBits_;
  double scale_;
  double zero_;
  std::array<uint8_t, 256> table_{};
};

int ReadRows(ImageInfo& info, InputFile& in, const Header& h) {
  const uint32_t width = info.width;
  const uint64_t rowLength = RowLength(width, h.sampleBits);
  // The input row is also read four bytes a pixel for 16-bit samples; what lies past the row
  // stays zero.
  const uint64_t inSize = std::max({rowLength, 4 * uint64_t{width}, uint64_t{kMinimumWorkingRow}});
  const uint64_t outSize = std::max<uint64_t>(WorkingRowSize(width, info.bits), width);
  std::vector<uint8_t> raw(static_cast<size_t>(inSize), 0);
  std::vector<uint8_t> row(static_cast<size_t>(outSize), static_cast<uint8_t>(info.background));
  const RowConverter convert(h.sampleBits, h.scale, h.zero);
  for (int32_t y = 0; y < info.depth; ++y) {
    if (!in.ReadExact(raw.data(), static_cast<size_t>(rowLength))) return kReadError;
    convert(raw.data(), row.data(), width);
    if (info.putLine(row, y) != 0) return kCancelled;
  }
  return kOk;
}

bool StartsWithSimple(InputFile& in) {
  char start[6];
  return in.ReadExact(start, sizeof start) && std::memcmp(start, "SIMPLE", 6) == 0;
}

}  // namespace

int FitsInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  StartInfo(info, path);
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  char start[6];
  if (!in.ReadExact(start, sizeof start)) return kReadError;
  if (std::memcmp(start, "SIMPLE", 6) != 0) return kCorruptedFile;
  info.fileSize = static_cast<int32_t>(in.Size());
  if (!in.Seek(0)) return kReadError;
  const Header h = ReadHeader(in);
  const uint64_t dataStart = NextBlock(in.Tell());

  if (h.width == 0 || h.depth == 0) return kNoBitmap;
  // Sizes the record cannot hold, no sample size, or samples the file cannot hold mean a damaged
  // header; refusing here keeps an absurd size from ever reaching the image store.
  if (h.width < 0 || h.width > std::numeric_limits<uint32_t>::max() || h.depth < 0 ||
      h.depth > std::numeric_limits<int32_t>::max() || h.sampleBits == 0)
    return kCorruptedFile;
  const uint64_t rowLength = RowLength(static_cast<uint64_t>(h.width), std::max(h.sampleBits, 8u));
  if (!FileCouldHold(in.Size(), dataStart, RowsBytes(rowLength, static_cast<uint64_t>(h.depth)), 1))
    return kCorruptedFile;

  info.width = static_cast<uint32_t>(h.width);
  info.depth = static_cast<int32_t>(h.depth);
  info.bits = h.sampleBits <= 7 ? h.sampleBits : 8;
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);
  info.description =
      FormatText("%u axis - %u bits of grey", static_cast<unsigned>(h.axes), h.sampleBits);
  info.palette[0] = Rgb{0, 0, 0};
  info.palette[1] = Rgb{255, 255, 255};
  if (info.bits == 8)
    for (uint32_t i = 0; i < 256; ++i) {
      auto v = static_cast<uint8_t>(i);
      info.palette[i] = Rgb{v, v, v};
    }
  return kOk;
}

int FitsRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  const Header h = ReadHeader(in);
  if (!in.Seek(NextBlock(in.Tell()))) return kReadError;
  try {
    return ReadRows(info, in, h);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

int FitsWrite(ImageInfo& info, const std::string& path) {
  const uint32_t width = info.width;
  const int32_t depth = info.depth;
  const uint32_t bits = info.bits;
  std::array<uint8_t, 256> grey{};
  if (bits <= 8)
    for (uint32_t i = 0; i < (1u << bits); ++i)
      grey[i] = static_cast<uint8_t>(
          Luminance(info.palette[i].red, info.palette[i].green, info.palette[i].blue));

  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  std::vector<uint8_t> row, file;
  try {
    row.assign(static_cast<size_t>(WorkingRowSize(width, bits)), 0);
    file.assign(width, 0);
  } catch (const std::bad_alloc&) {
    return kMemoryError;  // `out` deletes the file
  }

  // DATAMAX reads "255.0000000E+00", as files from this program always have.
  std::string header =
      FormatFitsCard("SIMPLE", "T") + FormatFitsCard("BITPIX", "8") + FormatFitsCard("NAXIS", "2") +
      FormatFitsCard("NAXIS1", std::to_string(width)) +
      FormatFitsCard("NAXIS2", std::to_string(depth)) +
      FormatFitsCard("ORIGIN", std::string(kFileSignature)) +
      FormatFitsCard("BSCALE", "1.0000000E+00") + FormatFitsCard("BZERO", "0.0000000E+00") +
      FormatFitsCard("DATAMIN", "0.0000000E+00") + FormatFitsCard("DATAMAX", "255.0000000E+00") +
      FormatFitsEndCard();
  while (header.size() < kFitsBlockBytes) header += std::string(kFitsCardBytes, ' ');
  if (!out.Write(header.data(), header.size())) return kWriteError;

  const uint32_t storage = StorageBits(bits);
  for (int32_t y = 0; y < depth; ++y) {
    if (info.getLine(row, y) != 0) return kCancelled;
    const uint8_t* r = row.data();
    if (storage == 1) {
      for (uint32_t x = 0; x < width; ++x) file[x] = PixelAt(r, x, 1) ? 255 : 0;
    } else if (storage == 4) {
      for (uint32_t x = 0; x < width; ++x) file[x] = grey[PixelAt(r, x, 4)];
    } else if (storage == 8) {
      for (uint32_t x = 0; x < width; ++x) file[x] = grey[r[x]];
    } else {
      for (uint32_t x = 0; x < width; ++x) {
        const uint8_t* p = r + 3 * size_t{x};
        file[x] = static_cast<uint8_t>(Luminance(p[0], p[1], p[2]));
      }
    }
    if (!out.Write(file.data(), width)) return kWriteError;
  }
  const uint64_t end = out.Tell();
  const std::vector<uint8_t> zeros(static_cast<size_t>(NextBlock(end) - end), 0);
  if (!out.Write(zeros.data(), zeros.size())) return kWriteError;
  return out.Commit() ? kOk : kWriteError;
}

int FitsList(ImageInfo& /*info*/, const std::string& path, std::vector<std::string>& lines) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  if (!StartsWithSimple(in) || !in.Seek(0)) return kCorruptedFile;
  FitsCard card;
  while (ReadFitsCard(in, card) && card.keyword != "END")
    AddListLine(lines, card.keyword + " = " + card.value);
  return kOk;
}

}  // namespace pxm
