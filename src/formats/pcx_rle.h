#pragma once

#include <cstddef>
#include <cstdint>

#include "core/file_io.h"

// The PCX byte-run scheme: a byte of 192 or more is a count (its low six bits) of copies of the
// byte that follows; any other byte is one literal pixel byte.
namespace pxm {

// Decodes rows of one file. The pending run count and the last byte read outlive a row: a run
// cut off at the end of a row goes on at the start of the next, which is how PCX writers have
// always been allowed to code. The count is cleared only when row 0 is asked for, which is why a
// line without a count byte spoils the next (difference D10 of the differences table).
class PcxRowDecoder {
 public:
  // Decodes `n` bytes into `out`, which must hold n + 1 bytes: a literal read after the row is
  // already full is stored one past its end. Answers 0 when exactly n bytes were stored, else 3.
  // Bytes past the end of the file read as 0.
  int Decode(InputFile& in, uint8_t* out, int64_t n, int32_t row);

  int32_t PendingCount() const { return count_; }

 private:
  uint8_t Next(InputFile& in) {
    int b = in.ReadByte();
    last_ = b < 0 ? 0 : static_cast<uint8_t>(b);
    return last_;
  }
  int32_t count_ = 0;
  uint8_t last_ = 0;
};

// Codes `n` bytes of `data` and writes them to `out`. data[n] and data[n + 1] must be readable:
// the run test compares each byte with the one after it, also at the end of the row. Answers 0,
// or 11 when the write failed.
int PcxEncodeRow(const uint8_t* data, size_t n, OutputFile& out);

}  // namespace pxm
