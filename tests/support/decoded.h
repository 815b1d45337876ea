#pragma once

#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "core/image_info.h"
#include "formats/format_table.h"

namespace pxm::test {

// What a format's info and reader made of a file, straight through the handlers: the record
// after info and every row the sink saw, cut to the stored row length.
struct Decoded {
  int infoCode = -1;
  int readCode = -1;
  ImageInfo info;
  std::map<int32_t, std::vector<uint8_t>> rows;
  std::vector<int32_t> order;  // row numbers in the order they arrived

  // Pixel value at (x, y) in the store's packing (0xRRGGBB for 24 bits).
  uint32_t Pixel(uint32_t x, int32_t y) const;
};

// Runs info and then the reader of `path`'s format row (or the given handlers) into a sink that
// keeps every row; the sink answers 1 on the `abortOn`-th row (counting from 1; 0 never).
Decoded Decode(const std::string& path, int abortOn = 0, Host* host = nullptr);
Decoded DecodeWith(InfoHandler info, ReadHandler read, const std::string& path, int abortOn = 0,
                   Host* host = nullptr);

// Building file bytes in tests.
std::string Raw(std::initializer_list<int> bytes);
std::string Le(uint32_t value, int bytes);
std::string Be(uint32_t value, int bytes);
std::vector<uint8_t> Bytes(const std::string& text);
// Data lines of up to 45 bytes each as uuencode writes them, "`" standing for zero sixbits; no
// line ends.
std::vector<std::string> UuencodeLines(const std::string& bytes);

}  // namespace pxm::test
