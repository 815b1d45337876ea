#include "formats/png_chunks.h"

#include <algorithm>
#include <cstring>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "formats/png_codec.h"

namespace pxm {

int PngChunkReader::Start() {
  uint8_t signature[sizeof kPngSignature];
  if (!in_.Seek(start_) || !in_.ReadExact(signature, sizeof signature)) return kReadError;
  if (std::memcmp(signature, kPngSignature, sizeof signature) != 0) return kCorruptedFile;
  next_ = start_ + sizeof kPngSignature;
  return kOk;
}

int PngChunkReader::StartWithHeader(std::span<uint8_t, kPngHeaderBytes> header) {
  if (int code = Start()) return code;
  if (!Next()) return kReadError;
  if (!Is("IHDR") || Length() != kPngHeaderBytes) return kCorruptedFile;
  return ReadExact(header) ? kOk : kReadError;
}

bool PngChunkReader::Next() {
  uint8_t head[8];
  if (!in_.Seek(next_) || !in_.ReadExact(head, sizeof head)) return false;
  length_ = LoadBe32(head);
  std::memcpy(type_, head + 4, 4);
  dataStart_ = next_ + sizeof head;
  read_ = 0;
  next_ = dataStart_ + length_ + 4;  // past the data and the CRC
  return true;
}

bool PngChunkReader::Is(std::string_view type) const {
  return type.size() == 4 && std::memcmp(type_, type.data(), 4) == 0;
}

size_t PngChunkReader::Read(std::span<uint8_t> out) {
  const size_t wanted = std::min<size_t>(out.size(), length_ - read_);
  if (wanted == 0 || !in_.Seek(dataStart_ + read_)) return 0;
  const size_t got = in_.Read(out.data(), wanted);
  read_ += static_cast<uint32_t>(got);
  return got;
}

bool PngChunkReader::ReadCrc(uint32_t& computed, uint32_t& stored) {
  computed = PngUpdateCrc(0, Type());
  read_ = 0;
  uint8_t piece[4096];
  while (read_ < length_) {
    const size_t n = Read(piece);
    if (n == 0) return false;
    computed = PngUpdateCrc(computed, {piece, n});
  }
  uint8_t crc[4];
  if (!in_.Seek(dataStart_ + length_) || !in_.ReadExact(crc, sizeof crc)) return false;
  stored = LoadBe32(crc);
  return true;
}

}  // namespace pxm
