#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "core/file_io.h"

// The TIFF file header and its first image file directory, read by the front end itself. Values
// are taken from the file on demand and never beyond its end.
namespace pxm {

// Entry types of the directory.
enum TiffType : uint16_t {
  kTiffByte = 1,
  kTiffAscii = 2,
  kTiffShort = 3,
  kTiffLong = 4,
  kTiffRational = 5,
};

// Tags the front end uses.
enum TiffTag : uint16_t {
  kTagImageWidth = 256,
  kTagImageLength = 257,
  kTagBitsPerSample = 258,
  kTagCompression = 259,
  kTagPhotometric = 262,
  kTagStripOffsets = 273,
  kTagSamplesPerPixel = 277,
  kTagRowsPerStrip = 278,
  kTagStripByteCounts = 279,
  kTagPlanarConfig = 284,
  kTagColourMap = 320,
  kTagTileWidth = 322,
  kTagSampleFormat = 339,
};

// Byte-order words of the header.
constexpr uint16_t kTiffIntel = 18761;     // "II", little-endian
constexpr uint16_t kTiffMotorola = 19789;  // "MM", big-endian

struct TiffEntry {
  uint16_t tag = 0;
  uint16_t type = 0;
  uint32_t count = 0;
  uint32_t field = 0;     // the 32-bit value field read in the file's byte order
  uint8_t raw[4] = {};    // the same four bytes as they stand in the file
};

struct TiffDirectory {
  bool bigEndian = false;
  uint64_t fileSize = 0;
  std::vector<TiffEntry> entries;

  const TiffEntry* Find(uint16_t tag) const;
};

// Reads the header and the first directory. Answers 0; 2 for a bad byte-order word; 3 when the
// directory is cut short by the end of the file.
int ReadTiffDirectory(InputFile& file, TiffDirectory& dir);

// Size in bytes of one value of a type (0 for a type this reader does not know).
uint32_t TiffTypeSize(uint16_t type);

// The entry's BYTE, SHORT or LONG values, at most `limit` of them, inline or at the offset.
// Nothing when the values would lie outside the file or the type holds no integers.
std::optional<std::vector<uint32_t>> TiffValues(InputFile& file, const TiffDirectory& dir,
                                                const TiffEntry& entry, uint32_t limit);

// The first value of an integer entry (for a big-endian SHORT it sits in the high half of the
// field), or nothing.
std::optional<uint32_t> TiffFirstValue(InputFile& file, const TiffDirectory& dir,
                                       const TiffEntry& entry);

// The first value of a tag, or `fallback` when the tag is absent or unreadable.
uint32_t TiffTagValue(InputFile& file, const TiffDirectory& dir, uint16_t tag, uint32_t fallback);

}  // namespace pxm
