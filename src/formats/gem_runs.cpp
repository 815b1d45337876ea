#include "formats/gem_runs.h"

#include <algorithm>
#include <cstring>

namespace pxm {
namespace {

constexpr uint8_t kPatternMark = 0x00;
constexpr uint8_t kLiteralMark = 0x80;
constexpr uint8_t kReplicationFlag = 0xFF;
constexpr size_t kLongestSolid = 0x7F;
constexpr size_t kLongestCount = 0xFF;

bool Solid(uint8_t b) {
  return b == 0x00 || b == 0xFF;
}

}  // namespace

bool GemLineDecoder::Row(uint8_t* row, size_t rowBytes, uint32_t& copies) {
  size_t x = 0;
  while (x < rowBytes) {
    const int mark = in_.ReadByte();
    if (mark < 0) return false;
    if (mark == kPatternMark) {
      const int n = in_.ReadByte();
      if (n < 0) return false;
      if (n == 0) {
        // Vertical replication: it belongs before a scanline's first row, but wherever it
        // stands it can only mean the scanline being decoded.
        const int flag = in_.ReadByte(), count = in_.ReadByte();
        if (flag != kReplicationFlag || count < 0) return false;
        copies = std::max(1, count);
        continue;
      }
      if (!in_.ReadExact(pattern_, patternBytes_)) return false;
      for (int k = 0; k < n && x < rowBytes; ++k) {
        const size_t take = std::min(patternBytes_, rowBytes - x);
        std::memcpy(row + x, pattern_, take);
        x += take;
      }
    } else if (mark == kLiteralMark) {
      const int n = in_.ReadByte();
      if (n < 0) return false;
      const size_t take = std::min<size_t>(static_cast<size_t>(n), rowBytes - x);
      if (!in_.ReadExact(row + x, take) || !in_.Skip(static_cast<size_t>(n) - take)) return false;
      x += take;
    } else {
      const size_t take = std::min<size_t>(static_cast<size_t>(mark & 0x7F), rowBytes - x);
      std::memset(row + x, (mark & 0x80) ? 0xFF : 0x00, take);
      x += take;
    }
  }
  return true;
}

uint32_t GemLineDecoder::Next(uint8_t* line, size_t rows, size_t rowBytes) {
  uint32_t copies = 1;
  for (size_t r = 0; r < rows; ++r)
    if (!Row(line + r * rowBytes, rowBytes, copies)) return 0;
  return copies;
}

void EncodeGemRow(const uint8_t* row, size_t n, size_t patternBytes, std::vector<uint8_t>& out) {
  size_t literalStart = 0, i = 0;
  auto flush = [&](size_t end) {
    while (literalStart < end) {
      const size_t k = std::min(end - literalStart, kLongestCount);
      out.push_back(kLiteralMark);
      out.push_back(static_cast<uint8_t>(k));
      out.insert(out.end(), row + literalStart, row + literalStart + k);
      literalStart += k;
    }
  };
  // A pattern item costs two bytes and the pattern: one-byte patterns pay from four repeats,
  // longer ones from two.
  const size_t worthRepeating = patternBytes == 1 ? 4 : 2;
  while (i < n) {
    size_t repeats = 1;
    while (repeats < kLongestCount && i + (repeats + 1) * patternBytes <= n &&
           std::memcmp(row + i, row + i + repeats * patternBytes, patternBytes) == 0)
      ++repeats;
    size_t solid = 0;
    while (solid < kLongestSolid && i + solid < n && row[i + solid] == row[i]) ++solid;
    // Runs of 0x00 or 0xFF bytes cost a byte for up to 127: never more than a pattern item.
    if (Solid(row[i]) && (solid >= 2 || literalStart == i)) {
      flush(i);
      out.push_back(static_cast<uint8_t>((row[i] ? 0x80 : 0x00) | solid));
      i += solid;
      literalStart = i;
    } else if (repeats >= worthRepeating) {
      flush(i);
      out.push_back(kPatternMark);
      out.push_back(static_cast<uint8_t>(repeats));
      out.insert(out.end(), row + i, row + i + patternBytes);
      i += repeats * patternBytes;
      literalStart = i;
    } else {
      ++i;
    }
  }
  flush(n);
}

void EncodeGemReplication(uint32_t copies, std::vector<uint8_t>& out) {
  out.insert(out.end(), {kPatternMark, kPatternMark, kReplicationFlag,
                         static_cast<uint8_t>(std::min<uint32_t>(copies, kLongestCount))});
}

}  // namespace pxm
