#include "formats/pcx_rle.h"

#include <vector>

#include "core/error_codes.h"

namespace pxm {

int PcxRowDecoder::Decode(InputFile& in, uint8_t* out, int64_t n, int32_t row) {
  if (row == 0) count_ = 0;
  int64_t stored = 0;
  // A run left over from the row before. The count is taken down once more than the bytes it
  // stores, so a run that ends inside this row leaves -1 behind; -1 is not 0, and when no count
  // byte follows in this row the next row fills itself with the last byte read. Files written by
  // the program read back the same way, so the rule stays.
  for (;;) {
    const int32_t noted = count_--;
    if (noted == 0 || stored >= n) break;
    out[stored++] = last_;
  }
  do {
    const uint8_t b = Next(in);
    if ((b & 0xC0) != 0xC0) {
      out[stored++] = b;  // even when the row is full: the row then fails below
      continue;
    }
    count_ = (b & 0x3F) + 1;
    const uint8_t value = Next(in);
    // What does not fit stays in the count for the next row.
    while (--count_ != 0 && stored < n) out[stored++] = value;
  } while (stored < n);
  return stored == n ? kOk : kReadError;
}

int PcxEncodeRow(const uint8_t* data, size_t n, OutputFile& out) {
  std::vector<uint8_t> coded;
  coded.reserve(2 * n + 2);
  size_t i = 0;
  while (i < n) {
    // k counts equal neighbours, so a run of m equal bytes is coded as m - 1 copies and its last
    // byte again at the next step. That costs a byte per run, but keeps the output byte for byte
    // what every earlier file of the program holds.
    size_t k = 0;
    while (data[i + k] == data[i + k + 1] && i + k < n && k < 63) ++k;
    if (k > 0) {
      coded.push_back(static_cast<uint8_t>(192 + k));
      coded.push_back(data[i]);
      i += k;
    } else {
      if (data[i] >= 192) coded.push_back(193);
      coded.push_back(data[i]);
      ++i;
    }
  }
  return out.Write(coded.data(), coded.size()) ? kOk : kWriteError;
}

}  // namespace pxm
