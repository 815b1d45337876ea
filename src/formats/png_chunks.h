#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "core/file_io.h"

// The chunks of a PNG file, read one at a time, shared by the info handler, the reader, the
// chunk report and the comment reader.
namespace pxm {

inline constexpr uint8_t kPngSignature[8] = {137, 80, 78, 71, 13, 10, 26, 10};
inline constexpr size_t kPngHeaderBytes = 13;  // IHDR's data

// Walks the chunks after the signature. Each step reads a chunk's length and type; reads of its
// data never pass the chunk's end, whatever its length says.
class PngChunkReader {
 public:
  // `start` is where the PNG data begins in the file: 0, or an image's offset inside another
  // file (an icon's, say).
  explicit PngChunkReader(InputFile& in, uint64_t start = 0)
      : in_(in), start_(start), next_(start + sizeof kPngSignature) {}

  // Checks the signature at the start of the PNG data: 0, 3 ("Error reading file") when the file is
  // shorter than the signature, 2 ("Corrupted file") when it is not a PNG signature.
  int Start();
  // Start, then the IHDR chunk, which must come first with its 13 bytes, read into `header`:
  // 0, 3 when the file ends first, 2 when the first chunk is anything else.
  int StartWithHeader(std::span<uint8_t, kPngHeaderBytes> header);

  // Goes to the next chunk (the first one after Start) and reads its length and type; false
  // when the file ends before they are whole.
  bool Next();
  uint32_t Length() const { return length_; }
  std::span<const uint8_t, 4> Type() const { return std::span<const uint8_t, 4>(type_, 4); }
  bool Is(std::string_view type) const;

  // The next bytes of the chunk's data, as many as fit in `out` and remain in the chunk and in
  // the file; answers how many were read.
  size_t Read(std::span<uint8_t> out);
  // True when all of `out` could be read.
  bool ReadExact(std::span<uint8_t> out) { return Read(out) == out.size(); }

  // The CRC over the chunk's type and all of its data, and the CRC stored after the data; false
  // when the file ends first. The data is read from its start again.
  bool ReadCrc(uint32_t& computed, uint32_t& stored);

 private:
  InputFile& in_;
  uint64_t start_;
  uint64_t next_;  // where the next chunk's length is
  uint64_t dataStart_ = 0;
  uint32_t length_ = 0;
  uint32_t read_ = 0;  // bytes of the data read so far
  uint8_t type_[4] = {};
};

}  // namespace pxm
