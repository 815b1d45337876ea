#include "formats/tiff_packbits.h"

#include <algorithm>
#include <cstring>

namespace pxm {

uint64_t CountPackBits(InputFile& file, uint64_t length, PackBits128 mode) {
  uint64_t total = 0;
  while (length > 0) {
    const int n = file.ReadByte();
    if (n < 0) break;
    --length;
    if (n < 128) {
      const uint64_t take = std::min<uint64_t>(uint64_t(n) + 1, length);
      const uint64_t before = file.Tell();
      if (!file.Skip(take)) break;
      // Skipping past the end is not an error of the seek: count only what the file holds.
      const uint64_t held = std::min<uint64_t>(take, file.Size() > before ? file.Size() - before : 0);
      total += held;
      length -= take;
      if (held < take) break;
    } else if (n == 128 && mode == PackBits128::kNoOp) {
      continue;
    } else {
      if (length == 0 || file.ReadByte() < 0) break;
      --length;
      total += 257u - static_cast<unsigned>(n);
    }
  }
  return total;
}

int PackBitsRows::Next() {
  if (left_ == 0) return -1;
  --left_;
  return file_.ReadByte();
}

bool PackBitsRows::Unpack(uint8_t* out, size_t n) {
  size_t done = 0;
  while (done < n) {
    if (repeat_ > 0) {
      const size_t take = std::min<size_t>(repeat_, n - done);
      std::memset(out + done, value_, take);
      done += take;
      repeat_ -= static_cast<uint32_t>(take);
      continue;
    }
    if (literal_ > 0) {
      const size_t take = std::min<size_t>(literal_, n - done);
      if (take > left_) return false;
      if (!file_.ReadExact(out + done, take)) return false;
      left_ -= take;
      done += take;
      literal_ -= static_cast<uint32_t>(take);
      continue;
    }
    const int c = Next();
    if (c < 0) return false;
    if (c < 128) {
      literal_ = static_cast<uint32_t>(c) + 1;
    } else if (c == 128 && mode_ == PackBits128::kNoOp) {
      continue;
    } else {
      const int v = Next();
      if (v < 0) return false;
      value_ = static_cast<uint8_t>(v);
      repeat_ = 257u - static_cast<unsigned>(c);
    }
  }
  return true;
}

}  // namespace pxm
