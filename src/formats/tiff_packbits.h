#pragma once

#include <cstddef>
#include <cstdint>

#include "core/file_io.h"

// PackBits strips: a control byte n below 128 copies the next n + 1 bytes, any other repeats the
// next byte 257 - n times. The control byte 128 is meant as a no-op, but some encoders wrote it
// as a run of 129; a strip is first unpacked that way and, when that does not give exactly the
// bytes the strip should hold, again with 128 as the no-op.
namespace pxm {

enum class PackBits128 { kRun, kNoOp };

// Bytes that `length` compressed bytes from the file's position unpack to (the position moves
// past them). Data cut short by the end of the file counts what it holds.
uint64_t CountPackBits(InputFile& file, uint64_t length, PackBits128 mode);

// Unpacks a strip from the file's position a row at a time; a run may continue into the next
// row, as some encoders let it.
class PackBitsRows {
 public:
  PackBitsRows(InputFile& file, uint64_t length, PackBits128 mode)
      : file_(file), left_(length), mode_(mode) {}
  // Fills `n` bytes; false when the strip's data ends first.
  bool Unpack(uint8_t* out, size_t n);

 private:
  int Next();  // the next compressed byte, or -1 at the end of the strip

  InputFile& file_;
  uint64_t left_;
  PackBits128 mode_;
  uint32_t literal_ = 0;  // bytes still to copy
  uint32_t repeat_ = 0;   // copies of `value_` still to give
  uint8_t value_ = 0;
};

}  // namespace pxm
