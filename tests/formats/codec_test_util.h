#pragma once

// A decode straight through given handlers that keeps every row the sink saw, in the order it
// came (bytes written by hand are built with support/decoded.h).

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
#include "support/decoded.h"

namespace pxm::test {

using Bytes = std::vector<uint8_t>;

// Info then read; the sink answers 1 on its `abortOn`-th call (counting from 1).
template <typename InfoFn, typename ReadFn>
Decoded DecodeThrough(InfoFn infoFn, ReadFn readFn, const std::string& path, int abortOn = 0,
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
