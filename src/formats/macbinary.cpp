#include "formats/macbinary.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "core/bytes.h"

namespace pxm {
namespace {

// Offsets in the 128-byte header.
enum MacBinaryOffset : size_t {
  kOldVersion = 0,  // always 0
  kNameLength = 1,  // 1 to 63
  kName = 2,        // 63 bytes
  kType = 65,
  kCreator = 69,
  kFinderFlags = 73,
  kZeroA = 74,       // always 0
  kZeroB = 82,       // always 0
  kDataLength = 83,  // big-endian, like every number here
  kResourceLength = 87,
  kCreated = 91,
  kModified = 95,
  kCommentLength = 99,  // MacBinary II and later, like the fields below
  kSignature = 102,     // "mBIN" in MacBinary III
  kVersion = 122,       // 129 for II, 130 for III
  kMinimumVersion = 123,
  kCrc = 124,
};

constexpr size_t kMaxName = 63;
// Macintosh file systems of the time took names of at most 31 characters.
constexpr size_t kWrittenName = 31;
constexpr uint8_t kVersionTwo = 129;
// From 1 January 1904 to 1 January 1970: 66 years, 17 of them leap years.
constexpr int64_t kEpochDifference = (66 * 365 + 17) * 86400LL;

bool AllZero(const uint8_t* p, size_t n) {
  return std::all_of(p, p + n, [](uint8_t b) { return b == 0; });
}

}  // namespace

uint16_t MacBinaryCrc(std::span<const uint8_t> bytes) {
  uint16_t crc = 0;
  for (uint8_t b : bytes) {
    crc = static_cast<uint16_t>(crc ^ (b << 8));
    for (int k = 0; k < 8; ++k)
      crc = static_cast<uint16_t>((crc & 0x8000) ? (crc << 1) ^ 0x1021 : crc << 1);
  }
  return crc;
}

bool ParseMacBinary(std::span<const uint8_t, kMacBinaryBytes> h, uint64_t fileSize,
                    std::string_view expectedType, MacBinaryHeader& out) {
  if (h[kOldVersion] != 0 || h[kZeroA] != 0 || h[kZeroB] != 0) return false;
  if (h[kNameLength] == 0 || h[kNameLength] > kMaxName) return false;
  MacBinaryHeader m;
  std::memcpy(m.type.data(), &h[kType], 4);
  std::memcpy(m.creator.data(), &h[kCreator], 4);
  m.dataLength = LoadBe32(&h[kDataLength]);
  m.resourceLength = LoadBe32(&h[kResourceLength]);
  const bool typeMatches =
      !expectedType.empty() && std::string_view(m.type.data(), 4) == expectedType;
  const bool fits = m.dataLength <= fileSize - std::min<uint64_t>(fileSize, kMacBinaryBytes);
  if (std::memcmp(&h[kSignature], "mBIN", 4) == 0) {
    m.version = 3;
  } else if (LoadBe16(&h[kCrc]) == MacBinaryCrc(h.first(kCrc)) && !AllZero(&h[kCrc], 2)) {
    m.version = 2;
  } else if (typeMatches || (fits && AllZero(&h[kCommentLength], kCrc + 2 - kCommentLength))) {
    // The first version: nothing marks it, so only a header that says what the file should be,
    // or one whose later fields are empty as that version left them, is believed.
    m.version = 1;
  } else {
    return false;
  }
  out = m;
  return true;
}

std::array<uint8_t, kMacBinaryBytes> BuildMacBinary(std::string_view name, std::string_view type,
                                                    std::string_view creator, uint32_t dataLength,
                                                    uint32_t macTime) {
  std::array<uint8_t, kMacBinaryBytes> h{};
  std::string cut(name.substr(0, kWrittenName));
  std::replace(cut.begin(), cut.end(), ':', '-');
  if (cut.empty()) cut = "Untitled";
  h[kNameLength] = static_cast<uint8_t>(cut.size());
  std::memcpy(&h[kName], cut.data(), cut.size());
  std::memcpy(&h[kType], type.data(), std::min<size_t>(type.size(), 4));
  std::memcpy(&h[kCreator], creator.data(), std::min<size_t>(creator.size(), 4));
  StoreBe32(&h[kDataLength], dataLength);
  StoreBe32(&h[kCreated], macTime);
  StoreBe32(&h[kModified], macTime);
  h[kVersion] = kVersionTwo;
  h[kMinimumVersion] = kVersionTwo;
  StoreBe16(&h[kCrc], MacBinaryCrc(std::span<const uint8_t>(h).first(kCrc)));
  return h;
}

uint32_t MacTimeFromUnix(int64_t unixSeconds) {
  return static_cast<uint32_t>(unixSeconds + kEpochDifference);
}

}  // namespace pxm
