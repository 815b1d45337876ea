#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/file_io.h"

// The run coding of GEM bit images. A scanline is one coded row per plane (one row of packed
// pixels in true-colour files), each row a series of items:
//   0, n, pattern     the pattern (`patternBytes` long) n times
//   0, 0, 0xFF, n     vertical replication: the scanline is shown n times
//   0x80, n, bytes    n bytes as they are
//   other b           a solid run of b & 0x7F bytes, 0xFF when bit 7 is set, else 0
// Items never cross a row's end; what one makes past it is dropped.
namespace pxm {

class GemLineDecoder {
 public:
  GemLineDecoder(InputFile& in, size_t patternBytes) : in_(in), patternBytes_(patternBytes) {}
  // Decodes the next scanline into `line`: `rows` coded rows of `rowBytes` each, one after the
  // other. Answers how many times the scanline is to be shown (at least 1), or 0 when the data
  // ends early or breaks the rules above.
  uint32_t Next(uint8_t* line, size_t rows, size_t rowBytes);

 private:
  bool Row(uint8_t* row, size_t rowBytes, uint32_t& copies);
  InputFile& in_;
  size_t patternBytes_;
  uint8_t pattern_[256] = {};
};

// Appends the items of one row to `out`, with patterns of `patternBytes` (1 to 8).
void EncodeGemRow(const uint8_t* row, size_t n, size_t patternBytes, std::vector<uint8_t>& out);
// Appends a vertical replication item for a scanline shown `copies` times (2 to 255).
void EncodeGemReplication(uint32_t copies, std::vector<uint8_t>& out);

}  // namespace pxm
