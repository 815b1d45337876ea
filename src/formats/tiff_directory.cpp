#include "formats/tiff_directory.h"

#include "core/bytes.h"
#include "core/error_codes.h"

namespace pxm {
namespace {

// Offsets in the 8-byte file header.
enum HeaderOffset : size_t {
  kByteOrder = 0,  // "II" or "MM"
  kVersion = 2,    // 42, not checked: the byte order is what matters
  kFirstIfd = 4,
};

// Offsets in a 12-byte directory entry.
enum EntryOffset : size_t {
  kEntryTag = 0,
  kEntryType = 2,
  kEntryCount = 4,
  kEntryField = 8,
};
constexpr size_t kEntrySize = 12;

uint16_t Load16(const uint8_t* p, bool bigEndian) { return bigEndian ? LoadBe16(p) : LoadLe16(p); }
uint32_t Load32(const uint8_t* p, bool bigEndian) { return bigEndian ? LoadBe32(p) : LoadLe32(p); }

}  // namespace

const TiffEntry* TiffDirectory::Find(uint16_t tag) const {
  for (const TiffEntry& e : entries)
    if (e.tag == tag) return &e;
  return nullptr;
}

int ReadTiffDirectory(InputFile& file, TiffDirectory& dir) {
  dir = TiffDirectory{};
  dir.fileSize = file.Size();
  uint8_t header[8];
  if (!file.Seek(0) || !file.ReadExact(header, sizeof header)) return kCorruptedFile;
  const uint16_t order = LoadLe16(header + kByteOrder);
  if (order != kTiffIntel && order != kTiffMotorola) return kCorruptedFile;
  dir.bigEndian = order == kTiffMotorola;
  const uint32_t ifd = Load32(header + kFirstIfd, dir.bigEndian);
  uint8_t countBytes[2];
  if (!file.Seek(ifd) || !file.ReadExact(countBytes, 2)) return kCorruptedFile;
  const uint16_t count = Load16(countBytes, dir.bigEndian);
  // At most 65535 entries of 12 bytes: a bounded read, checked against the file all the same.
  if (uint64_t{ifd} + 2 + uint64_t{count} * kEntrySize > dir.fileSize) return kCorruptedFile;
  std::vector<uint8_t> bytes(size_t{count} * kEntrySize);
  if (count > 0 && !file.ReadExact(bytes.data(), bytes.size())) return kCorruptedFile;
  dir.entries.resize(count);
  for (size_t i = 0; i < count; ++i) {
    const uint8_t* p = bytes.data() + i * kEntrySize;
    TiffEntry& e = dir.entries[i];
    e.tag = Load16(p + kEntryTag, dir.bigEndian);
    e.type = Load16(p + kEntryType, dir.bigEndian);
    e.count = Load32(p + kEntryCount, dir.bigEndian);
    e.field = Load32(p + kEntryField, dir.bigEndian);
    for (size_t k = 0; k < 4; ++k) e.raw[k] = p[kEntryField + k];
  }
  return kOk;
}

uint32_t TiffTypeSize(uint16_t type) {
  switch (type) {
    case 1: case 2: case 6: case 7: return 1;   // BYTE, ASCII, SBYTE, UNDEFINED
    case 3: case 8: return 2;                   // SHORT, SSHORT
    case 4: case 9: case 11: case 13: return 4; // LONG, SLONG, FLOAT, IFD
    case 5: case 10: case 12: return 8;         // RATIONAL, SRATIONAL, DOUBLE
    default: return 0;
  }
}

std::optional<std::vector<uint32_t>> TiffValues(InputFile& file, const TiffDirectory& dir,
                                                const TiffEntry& entry, uint32_t limit) {
  if (entry.type != kTiffByte && entry.type != kTiffShort && entry.type != kTiffLong)
    return std::nullopt;
  const uint32_t size = TiffTypeSize(entry.type);
  const uint32_t n = entry.count < limit ? entry.count : limit;
  if (n == 0) return std::vector<uint32_t>{};
  const bool inline4 = uint64_t{entry.count} * size <= 4;
  // Values said to lie beyond the end of the file are refused before anything is allocated.
  if (!inline4 && uint64_t{entry.field} + uint64_t{n} * size > dir.fileSize) return std::nullopt;
  std::vector<uint8_t> bytes(size_t{n} * size);
  if (inline4) {
    for (size_t k = 0; k < bytes.size(); ++k) bytes[k] = entry.raw[k];
  } else if (!file.Seek(entry.field) || !file.ReadExact(bytes.data(), bytes.size())) {
    return std::nullopt;
  }
  std::vector<uint32_t> values(n);
  for (size_t i = 0; i < n; ++i) {
    const uint8_t* p = bytes.data() + i * size;
    values[i] = size == 1 ? p[0] : size == 2 ? Load16(p, dir.bigEndian) : Load32(p, dir.bigEndian);
  }
  return values;
}

std::optional<uint32_t> TiffFirstValue(InputFile& file, const TiffDirectory& dir,
                                       const TiffEntry& entry) {
  if (entry.count == 0) return std::nullopt;
  auto values = TiffValues(file, dir, entry, 1);
  if (!values) return std::nullopt;
  return (*values)[0];
}

uint32_t TiffTagValue(InputFile& file, const TiffDirectory& dir, uint16_t tag, uint32_t fallback) {
  const TiffEntry* e = dir.Find(tag);
  if (!e) return fallback;
  return TiffFirstValue(file, dir, *e).value_or(fallback);
}

}  // namespace pxm
