#include "formats/byte_run1.h"

#include <cstring>

namespace pxm {

bool DecodeByteRun1(InputFile& in, uint8_t* out, size_t length) {
  size_t n = 0;
  while (n < length) {
    const int code = in.ReadByte();
    if (code < 0) return false;
    if (code < 128) {
      const size_t count = static_cast<size_t>(code) + 1;
      if (!in.ReadExact(out + n, count)) return false;
      n += count;
    } else if (code > 128) {
      const int value = in.ReadByte();
      if (value < 0) return false;
      const size_t count = static_cast<size_t>((~code & 0xFF) + 2);
      std::memset(out + n, value, count);
      n += count;
    }
    // 128 makes nothing.
  }
  return true;
}

void EncodeByteRun1(const uint8_t* row, size_t length, std::vector<uint8_t>& out) {
  constexpr size_t kMaxLiterals = 128;
  // The run search stops at position 127, not at a run of 128: this coder has always found
  // runs only in the first 127 bytes of a row, and its files are kept byte for byte.
  constexpr size_t kRunLimit = 127;
  size_t literalStart = 0;
  size_t literals = 0;
  auto flush = [&]() {
    if (literals == 0) return;
    out.push_back(static_cast<uint8_t>(literals - 1));
    out.insert(out.end(), row + literalStart, row + literalStart + literals);
    literals = 0;
  };
  size_t i = 0;
  while (i < length) {
    size_t k = 0;
    while (i + k < kRunLimit && i + k + 1 < length && row[i + k] == row[i + k + 1]) ++k;
    if (k == 0) {
      if (literals == kMaxLiterals) flush();
      if (literals == 0) literalStart = i;
      ++literals;
      ++i;
    } else {
      flush();
      out.push_back(static_cast<uint8_t>((256 - k) & 0xFF));
      out.push_back(row[i]);
      i += k + 1;
    }
  }
  flush();
}

}  // namespace pxm
