#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/row_format.h"
#include "formats/wpg.h"
#include "formats/wpg_records.h"

namespace pxm {
namespace {

using namespace wpg;

constexpr uint32_t kDotsPerInch = 75;
constexpr uint32_t kUnitsPerInch = 1200;  // the start record measures the picture in these
constexpr uint32_t kLongestCode = 127;
constexpr uint32_t kMostRepeats = 255;

// A record's type and its length in the five-byte form, which holds any length up to 31 bits
// and can be patched once the data is written.
void PutRecordStart(std::vector<uint8_t>& out, uint8_t type, uint32_t length) {
  const uint32_t high = (length >> 16) | 0x8000;
  out.insert(out.end(), {type, 0xFF, static_cast<uint8_t>(high), static_cast<uint8_t>(high >> 8),
                         static_cast<uint8_t>(length), static_cast<uint8_t>(length >> 8)});
}

uint32_t FileBits(uint32_t bits) {
  return bits == 1 ? 1 : bits <= 4 ? 4 : 8;
}

// Packs one row: runs of three or more repeat, the rest go as they are.
void PackRow(const uint8_t* row, size_t n, std::vector<uint8_t>& out) {
  size_t literalAt = 0, literal = 0;
  for (size_t x = 0; x < n;) {
    size_t run = 1;
    while (x + run < n && run < kLongestCode && row[x + run] == row[x]) ++run;
    if (run >= 3) {
      literal = 0;
      out.insert(out.end(), {static_cast<uint8_t>(0x80 | run), row[x]});
      x += run;
      continue;
    }
    if (literal == 0) {
      literalAt = out.size();
      out.push_back(0);
    }
    out.push_back(row[x++]);
    out[literalAt] = static_cast<uint8_t>(++literal);
    if (literal == kLongestCode) literal = 0;
  }
}

int WriteBitmapData(ImageInfo& info, OutputFile& out, size_t rowBytes) {
  std::vector<uint8_t> row(static_cast<size_t>(WorkingRowSize(info.width, info.bits)), 0);
  std::vector<uint8_t> previous(rowBytes), packed;
  uint32_t repeats = 0;
  auto flushRepeats = [&] {
    if (repeats > 0) packed.insert(packed.end(), {0, static_cast<uint8_t>(repeats)});
    repeats = 0;
  };
  for (int32_t y = 0; y < info.depth; ++y) {
    if (info.getLine(row, y) != 0) return kCancelled;
    // The store's rows of one, four and eight bits are packed as the file packs them.
    if (y > 0 && std::equal(previous.begin(), previous.end(), row.begin())) {
      if (++repeats == kMostRepeats) flushRepeats();
      continue;
    }
    flushRepeats();
    PackRow(row.data(), rowBytes, packed);
    std::copy(row.begin(), row.begin() + static_cast<std::ptrdiff_t>(rowBytes), previous.begin());
    if (packed.size() >= 64 * 1024) {
      if (!out.Write(packed.data(), packed.size())) return kWriteError;
      packed.clear();
    }
  }
  flushRepeats();
  return out.Write(packed.data(), packed.size()) ? kOk : kWriteError;
}

}  // namespace

int WpgWrite(ImageInfo& info, const std::string& path) {
  if (info.bits > 8) return kTooManyColours;
  if (info.width == 0 || info.depth <= 0 || info.width > 0xFFFF || info.depth > 0xFFFF)
    return kUnsuitableImage;
  const uint32_t bits = FileBits(info.bits);
  const size_t rowBytes = static_cast<size_t>((uint64_t{info.width} * bits + 7) / 8);
  const uint32_t entries = 1u << bits;

  std::vector<uint8_t> head = {0xFF, 'W', 'P', 'C', 16, 0, 0, 0, 1, kFileTypeGraphics,
                               1,    0,   0,   0,   0,  0};
  // The start record gives the picture's size at the bitmap's resolution.
  const auto units = [](uint32_t pixels) {
    return std::min<uint64_t>(uint64_t{pixels} * kUnitsPerInch / kDotsPerInch, 0xFFFF);
  };
  head.insert(head.end(), {kStart1, 6, 1, 0});
  head.resize(head.size() + 4);
  StoreLe16(&head[head.size() - 4], static_cast<uint32_t>(units(info.width)));
  StoreLe16(&head[head.size() - 2],
            static_cast<uint32_t>(units(static_cast<uint32_t>(info.depth))));
  PutRecordStart(head, kColourMap1, 4 + 3 * entries);
  head.insert(head.end(),
              {0, 0, static_cast<uint8_t>(entries), static_cast<uint8_t>(entries >> 8)});
  for (uint32_t i = 0; i < entries; ++i)
    head.insert(head.end(), {info.palette[i].red, info.palette[i].green, info.palette[i].blue});
  const size_t lengthAt = head.size() + 1;
  PutRecordStart(head, kBitmap1, 0);
  for (uint32_t word :
       {info.width, static_cast<uint32_t>(info.depth), bits, kDotsPerInch, kDotsPerInch}) {
    head.resize(head.size() + 2);
    StoreLe16(&head[head.size() - 2], word);
  }

  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  if (!out.Write(head.data(), head.size())) return kWriteError;
  const uint64_t dataStart = out.Tell();
  try {
    if (int code = WriteBitmapData(info, out, rowBytes)) return code;
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
  const uint64_t end = out.Tell();
  const uint64_t length = end - dataStart + 10;
  if (length > 0x7FFFFFFF) return kUnsuitableImage;
  std::vector<uint8_t> patch;
  PutRecordStart(patch, 0, static_cast<uint32_t>(length));
  const uint8_t tail[] = {kEnd1, 0};
  if (!out.Seek(lengthAt) || !out.Write(patch.data() + 1, patch.size() - 1) || !out.Seek(end) ||
      !out.Write(tail, sizeof tail))
    return kWriteError;
  return out.Commit() ? kOk : kWriteError;
}

}  // namespace pxm
