#pragma once

// Helpers shared by the codec tests: bytes written out by hand, and a decode straight through a
// format's handlers that keeps every row the sink saw.

#include <cstdint>
#include <initializer_list>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "core/error_codes.h"
#include "core/image_info.h"
#include "core/pixels.h"
#include "core/row_format.h"

namespace pxm::test {

using Bytes = std::vector<uint8_t>;

inline std::string Raw(std::initializer_list<int> bytes) {
  std::string s;
  for (int b : bytes) s += static_cast<char>(b);
  return s;
}
// `bytes` bytes of `value`, little- or big-endian.
inline std::string Le(uint32_t value, int bytes) {
  std::string s;
  for (int i = 0; i < bytes; ++i) s += static_cast<char>(value >> (8 * i));
  return s;
}
inline std::string Be(uint32_t value, int bytes) {
  std::string s;
  for (int i = bytes - 1; i >= 0; --i) s += static_cast<char>(value >> (8 * i));
  return s;
}

struct Decoded {
  int infoCode = -1;
  int readCode = -1;
  ImageInfo info;
  std::map<int32_t, Bytes> rows;  // each cut to the stored row length
  std::vector<int32_t> order;     // row numbers as they came
  uint32_t Pixel(uint32_t x, int32_t y) const {
    return PixelAt(rows.at(y).data(), x, StorageBits(info.bits));
  }
};

// Info then read; the sink answers 1 on its `abortOn`-th call (counting from 1).
template <typename InfoFn, typename ReadFn>
Decoded DecodeWith(InfoFn infoFn, ReadFn readFn, const std::string& path, int abortOn = 0,
                   uint32_t imageIndex = 0) {
  Decoded d;
  d.info.imageIndex = imageIndex;
  if ((d.infoCode = infoFn(d.info, path, 0)) != kOk) return d;
  d.info.putLine = [&](std::span<uint8_t> row, int32_t y) {
    const auto n = static_cast<std::ptrdiff_t>(StoreBytesPerLine(d.info.width, d.info.bits));
    d.rows[y] = Bytes(row.begin(), row.begin() + n);
    d.order.push_back(y);
    return static_cast<int>(d.order.size()) == abortOn ? 1 : 0;
  };
  d.readCode = readFn(d.info, path);
  d.info.putLine = nullptr;
  return d;
}

}  // namespace pxm::test
