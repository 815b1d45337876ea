#include "formats/cut.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/names.h"
#include "core/pixels.h"
#include "core/platform.h"
#include "core/row_format.h"
#include "formats/cut_palette.h"
#include "formats/info_start.h"

namespace pxm {
namespace {

// The 6-byte header: width, height and a reserved word, little-endian. Each row follows as a
// word giving its packed length and the packed bytes: a code byte whose low seven bits count
// pixels, high bit set for one byte repeated, clear for that many bytes as they are; a code of 0
// ends the row.
constexpr size_t kHeaderBytes = 6;
constexpr uint8_t kRepeat = 0x80;
constexpr uint32_t kLongestCode = 127;
// A row's length word and end code take three bytes; a repeat code makes 127 pixels of two.
constexpr uint64_t kRowOverhead = 3;
constexpr uint64_t kBestRatio = kLongestCode / 2;

struct Header {
  uint32_t width = 0;
  int32_t depth = 0;
};

bool ReadHeader(InputFile& in, Header& h) {
  uint8_t raw[kHeaderBytes];
  if (!in.ReadExact(raw, sizeof raw)) return false;
  h.width = LoadLe16(raw);
  h.depth = LoadLe16(raw + 2);
  return h.width > 0 && h.depth > 0;
}

// Unpacks one row's bytes. Pixels past the width are dropped; a row that ends early leaves the
// rest of the row at the background.
void UnpackRow(const std::vector<uint8_t>& packed, uint8_t* row, uint32_t width) {
  size_t i = 0;
  uint32_t x = 0;
  while (i < packed.size()) {
    const uint8_t code = packed[i++];
    const uint32_t n = code & kLongestCode;
    if (n == 0) break;
    if (code & kRepeat) {
      if (i >= packed.size()) break;
      const uint8_t value = packed[i++];
      const uint32_t k = std::min(n, width - x);
      std::memset(row + x, value, k);
      x += k;
    } else {
      const size_t k = std::min<size_t>({n, width - x, packed.size() - i});
      std::memcpy(row + x, packed.data() + i, k);
      x += static_cast<uint32_t>(k);
      i += n;
    }
  }
}

// Packs a row of one byte a pixel: runs of three or more repeat, the rest go as they are.
void PackRow(const uint8_t* px, uint32_t width, std::vector<uint8_t>& out) {
  out.assign(2, 0);
  size_t literalStart = 0, literalCount = 0;
  auto flushLiteral = [&] {
    if (literalCount > 0) {
      out[literalStart] = static_cast<uint8_t>(literalCount);
      literalCount = 0;
    }
  };
  for (uint32_t x = 0; x < width;) {
    uint32_t run = 1;
    while (x + run < width && run < kLongestCode && px[x + run] == px[x]) ++run;
    if (run >= 3) {
      flushLiteral();
      out.insert(out.end(), {static_cast<uint8_t>(kRepeat | run), px[x]});
      x += run;
      continue;
    }
    if (literalCount == 0) {
      literalStart = out.size();
      out.push_back(0);
    }
    out.push_back(px[x++]);
    if (++literalCount == kLongestCode) flushLiteral();
  }
  flushLiteral();
  out.push_back(0);
}

void ToBytes(const uint8_t* row, uint32_t width, uint32_t bits, uint8_t* out) {
  const uint32_t storage = StorageBits(bits);
  if (storage == 8) {
    std::memcpy(out, row, width);
    return;
  }
  for (uint32_t x = 0; x < width; ++x) out[x] = static_cast<uint8_t>(PixelAt(row, x, storage));
}

// The palette file is made under a temporary name beside the name it will take. Under a driver
// (which writes the picture to a temporary file too) it is handed over as a companion that takes
// its name together with the picture; called on its final name, the writer renames it itself once
// the picture is complete.
int WritePaletteFile(ImageInfo& info, const std::string& picturePath, bool handOver) {
  const std::string finalName = HaloPaletteNameFor(picturePath);
  auto temporary = platform::CreateTemporaryFileIn(DirectoryPart(finalName), NamePart(finalName));
  if (!temporary) return kCreateError;
  const uint32_t entries = 1u << std::min<uint32_t>(info.bits, 8);
  OutputFile out;
  bool written =
      out.Create(*temporary) && WriteHaloPalette(out, info.palette, entries) && out.Commit();
  if (!written) {
    platform::RemoveFile(*temporary);
    return kWriteError;
  }
  if (handOver) {
    info.companions.push_back({*temporary, finalName});
    return kOk;
  }
  if (!platform::ReplaceFile(*temporary, finalName)) {
    platform::RemoveFile(*temporary);
    return kRenameError;
  }
  return kOk;
}

int WriteRows(ImageInfo& info, OutputFile& out) {
  const uint32_t width = info.width;
  std::vector<uint8_t> row(static_cast<size_t>(WorkingRowSize(width, info.bits)), 0);
  std::vector<uint8_t> bytes(width), packed;
  for (int32_t y = 0; y < info.depth; ++y) {
    if (info.getLine(row, y) != 0) return kCancelled;
    ToBytes(row.data(), width, info.bits, bytes.data());
    PackRow(bytes.data(), width, packed);
    // The length word holds 16 bits; only the widest rows of scattered pixels pass it.
    if (packed.size() - 2 > 0xFFFF) return kUnsuitableImage;
    StoreLe16(packed.data(), static_cast<uint32_t>(packed.size() - 2));
    if (!out.Write(packed.data(), packed.size())) return kWriteError;
  }
  return kOk;
}

}  // namespace

int CutInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  Header h;
  if (!ReadHeader(in, h)) return kCorruptedFile;
  info.width = h.width;
  info.depth = h.depth;
  info.bits = 8;
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);
  if (!FileCouldHold(in.Size(), kHeaderBytes + kRowOverhead * static_cast<uint64_t>(h.depth),
                     PackedPictureBytes(h.width, static_cast<uint64_t>(h.depth), 8), kBestRatio))
    return kCorruptedFile;
  for (uint32_t i = 0; i < 256; ++i) {
    const auto v = static_cast<uint8_t>(i);
    info.palette[i] = Rgb{v, v, v};
  }
  const auto palette = FindHaloPalette(path);
  const bool coloured = palette && ReadHaloPalette(*palette, info.palette);
  info.description = coloured ? "Dr. Halo picture with its palette file" : "Dr. Halo picture, grey";
  return kOk;
}

int CutRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  Header h;
  if (!ReadHeader(in, h)) return kCorruptedFile;
  const uint32_t width = std::min(h.width, info.width);
  const int32_t depth = std::min(h.depth, info.depth);
  try {
    std::vector<uint8_t> row(static_cast<size_t>(WorkingRowSize(width, 8)));
    std::vector<uint8_t> packed;
    for (int32_t y = 0; y < depth; ++y) {
      uint8_t length[2];
      if (!in.ReadExact(length, 2)) return kReadError;
      packed.resize(LoadLe16(length));
      if (!in.ReadExact(packed.data(), packed.size())) return kReadError;
      std::fill(row.begin(), row.end(), static_cast<uint8_t>(info.background));
      UnpackRow(packed, row.data(), width);
      if (info.putLine(row, y) != 0) return kCancelled;
    }
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  return kOk;
}

int CutWrite(ImageInfo& info, const std::string& path) {
  if (info.bits > 8) return kTooManyColours;
  if (info.width == 0 || info.depth <= 0 || info.width > 0xFFFF || info.depth > 0xFFFF)
    return kUnsuitableImage;
  const bool underDriver = !info.outputPath.empty();
  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  uint8_t h[kHeaderBytes] = {};
  StoreLe16(h, info.width);
  StoreLe16(h + 2, static_cast<uint32_t>(info.depth));
  if (!out.Write(h, sizeof h)) return kWriteError;
  int code;
  try {
    code = WriteRows(info, out);
  } catch (const std::bad_alloc&) {
    code = kMemoryError;
  }
  if (code != kOk) return code;
  if (!out.Commit()) return kWriteError;
  // The palette goes beside the name the picture will have, and only once the picture is whole.
  code = WritePaletteFile(info, underDriver ? info.outputPath : path, underDriver);
  if (code != kOk && !underDriver) platform::RemoveFile(path);
  return code;
}

}  // namespace pxm
