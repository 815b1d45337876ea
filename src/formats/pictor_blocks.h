#pragma once

#include <cstdint>
#include <vector>

#include "core/file_io.h"

// The data of a PC Paint (Pictor) picture: one stream of bytes, kept either as it is or cut into
// blocks, each block run-length packed with a marker byte of its own.
namespace pxm {

// Reads the stream as bytes, whichever way it is kept. Several readers may walk the same file at
// different places (one per bit plane).
class PicStreamReader {
 public:
  // `in` stands at the block count word that follows the palette.
  bool Start(InputFile& in);
  // The next `n` bytes of the stream; false when the data ends first.
  bool Read(uint8_t* out, size_t n);
  // Passes over `n` bytes; whole blocks are passed without being unpacked.
  bool Skip(uint64_t n);

 private:
  bool NextBlock();
  InputFile* in_ = nullptr;
  bool raw_ = false;
  uint32_t blocksLeft_ = 0;
  uint64_t blockEnd_ = 0;      // file offset just past the current block's packed bytes
  uint32_t unpackedLeft_ = 0;  // bytes the current block still makes
  uint8_t marker_ = 0;
  uint32_t runLeft_ = 0;
  uint8_t runValue_ = 0;
  std::vector<uint8_t> scratch_;
};

// Bytes of unpacked data per block: the size real files use, more only when a picture would need
// more blocks than the count word can number.
uint32_t PicBlockBytes(uint64_t streamBytes);

// Packs one block: the 5-byte block header (packed size, unpacked size, marker) and the runs. The
// marker is the byte value the block uses least, so that literal markers, which cost three bytes,
// stay rare.
void PackPicBlock(const uint8_t* data, size_t n, std::vector<uint8_t>& out);

}  // namespace pxm
