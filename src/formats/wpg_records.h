#pragma once

#include <cstdint>
#include <vector>

#include "core/file_io.h"
#include "core/image_info.h"

// The parts of a WordPerfect Graphics file that lead to its picture: the 16-byte prefix, the
// records, and the run-length rows of a bitmap record.
namespace pxm::wpg {

constexpr size_t kPrefixBytes = 16;
constexpr uint8_t kFileTypeGraphics = 0x16;

// Version 1 record types.
enum Record1 : uint8_t {
  kColourMap1 = 0x0E,
  kBitmap1 = 0x0B,  // width, height, depth, two resolutions, then the rows
  kStart1 = 0x0F,
  kEnd1 = 0x10,
  kBitmap1Placed = 0x14,  // an angle and two corners first, then as kBitmap1
};
// Version 2 record types.
enum Record2 : uint8_t {
  kEnd2 = 0x02,
  kColourMap2 = 0x0C,  // entries of red, green, blue and a fourth byte
  kBitmap2 = 0x0E,     // width, height, a depth code and a compression byte, then the rows
};

// Where the picture of a file is.
struct Picture {
  int version = 0;
  uint32_t width = 0;
  int32_t depth = 0;
  uint32_t bits = 0;   // 1, 2, 4, 8 or 24
  bool packed = true;  // version 1 bitmaps always are
  uint64_t dataStart = 0;
  uint64_t dataEnd = 0;
  Palette palette{};
};

// Reads the prefix and the records up to the first bitmap. Answers 0; 2 for a file that is not
// one or whose records are damaged; 8 for an encrypted file, another version or a bitmap depth
// without a layout; 20 when the file holds no bitmap.
int FindPicture(InputFile& in, Picture& picture);

// Bytes of one row of the picture in the file.
uint64_t RowBytes(const Picture& picture);

// The rows of a bitmap record, one at a time. Runs may carry on into the next row; a row may be
// repeated whole.
class RowUnpacker {
 public:
  RowUnpacker(InputFile& in, const Picture& picture);
  // The next row, RowBytes long. Answers 0, 3 when the record ends first, 2 for a damaged code
  // and 8 for a code that has no meaning here.
  int NextRow(uint8_t* row);

 private:
  int Byte();
  int ReadCode(int code, bool rowStart);
  int ReadCode1(int code, bool rowStart);
  int ReadCode2(int code, bool rowStart);
  InputFile& in_;
  const Picture& picture_;
  size_t rowBytes_;
  std::vector<uint8_t> previous_;
  uint8_t sample_[8] = {};  // what is being repeated
  uint8_t last_[8] = {};    // the last sample a repeat code gave
  size_t sampleSize_ = 1;
  uint64_t repeatBytes_ = 0;  // bytes still to come from repeating the sample
  size_t samplePos_ = 0;
  uint64_t plainBytes_ = 0;  // bytes still to come as they are in the file
  uint32_t repeatRows_ = 0;  // times still to repeat the previous row
};

}  // namespace pxm::wpg
