#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

// MacBinary: the 128-byte header that Macintosh files carry when they were copied to other
// systems, with the file's name, type, creator and the lengths of its two forks. The data fork
// follows the header; its length is padded to a multiple of 128 bytes.
namespace pxm {

constexpr size_t kMacBinaryBytes = 128;

// What a MacBinary header says, once it has been recognised.
struct MacBinaryHeader {
  int version = 0;  // 1, 2 or 3
  std::array<char, 4> type{};
  std::array<char, 4> creator{};
  uint32_t dataLength = 0;
  uint32_t resourceLength = 0;
};

// CRC-16 of MacBinary II headers: polynomial 0x1021, starting from 0, bits taken high first.
uint16_t MacBinaryCrc(std::span<const uint8_t> bytes);

// Whether the first 128 bytes of a file of `fileSize` bytes are a MacBinary header, and if so
// what it says. MacBinary III carries "mBIN" and II a CRC of its first 124 bytes; the first
// version has no mark of its own, so it is taken only when its type is `expectedType` (when
// given) or when its unused tail is empty and its data fork fits in the file.
bool ParseMacBinary(std::span<const uint8_t, kMacBinaryBytes> h, uint64_t fileSize,
                    std::string_view expectedType, MacBinaryHeader& out);

// A MacBinary II header: the name (cut to 31 characters, colons made dashes, as Macintosh names
// cannot hold them), type, creator, data fork length and both dates (seconds since 1904), with
// the version bytes and the CRC set.
std::array<uint8_t, kMacBinaryBytes> BuildMacBinary(std::string_view name, std::string_view type,
                                                    std::string_view creator, uint32_t dataLength,
                                                    uint32_t macTime);

// Seconds since the start of 1904, the Macintosh's epoch, for a time in seconds since 1970.
uint32_t MacTimeFromUnix(int64_t unixSeconds);

}  // namespace pxm
