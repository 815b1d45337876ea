#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "core/image_info.h"
#include "formats/format_table.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"

namespace pxm::test {

using Bytes = std::vector<uint8_t>;

// What a format's info and reader made of a file, straight through the handlers of the file's
// row: the record after info and every row the sink saw, cut to the packed row length.
struct Decoded {
  int infoCode = -1;
  int readCode = -1;
  ImageInfo info;
  std::map<int32_t, Bytes> rows;  // cut to the packed row length
  std::vector<int32_t> order;     // row numbers as they came

  // Pixel value at (x, y) in the store's packing (0xRRGGBB for 24 bits).
  uint32_t Pixel(uint32_t x, int32_t y) const;
};

// Decodes the file through the row of its extension; the sink answers 1 on the `abortOn`-th row
// (counting from 1; 0 never).
Decoded DecodeFile(const std::string& path, int abortOn = 0, uint32_t imageIndex = 0);
// Saves `bytes` as `dir`/`name` and decodes it.
Decoded DecodeBytes(const TempDir& dir, const std::string& name, const std::string& bytes,
                    int abortOn = 0);

// Writes the picture to `path` and reads it back: the pixel values, and for palette pictures
// the palette entries in use, come back as they were, in a picture of `bits`.
testing::AssertionResult RoundTrips(const Picture& p, const std::string& path, uint32_t bits);

// Report lines joined by "\n"; and a report written so, its lines "=" made the 49-dash rule
// under each heading.
std::string JoinLines(const std::vector<std::string>& lines);
std::string Rules(const std::string& text);

// Building file bytes in tests.
std::string Raw(std::initializer_list<int> bytes);
std::string Le(uint32_t value, int bytes);
std::string Be(uint32_t value, int bytes);
// Data lines of up to 45 bytes each as uuencode writes them, "`" standing for zero sixbits; no
// line ends.
std::vector<std::string> UuencodeLines(const std::string& bytes);

}  // namespace pxm::test
