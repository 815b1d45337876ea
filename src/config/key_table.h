#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "config/settings.h"

namespace pxm {

// Kind bits of a key: what its value is and how the Setup dialog shows it.
enum KeyKind : uint16_t {
  kKindFlag = 0x0001,            // check box (a few such rows hold small numbers)
  kKindText = 0x0002,
  kKindNumber = 0x0004,          // no Setup control
  kKindFont = 0x0030,            // font face from a list
  kKindThumbnailList = 0x0040,   // index into the thumbnail write modes
  kKindSpin = 0x0080,
  kKindDirectory = 0x0302,       // directory text
  kKindPhotoCdList = 0x1000,
  kKindDrive = 0x2000,           // drive letter
  kKindTiffList = 0x4000,
  kKindVectorList = 0x8000,
};

constexpr uint16_t kNumberKindBits = 0x0001 | 0x0004 | 0x0040 | 0x0080 | 0x1000 | 0x2000 |
                                     0x4000 | 0x8000;
constexpr uint16_t kTextKindBits = 0x0002 | 0x0010;

// One row of the key table: it drives reading, writing and the Setup dialog alike.
struct KeyRow {
  std::string_view name;
  int32_t Settings::*number = nullptr;
  std::string Settings::*text = nullptr;
  uint16_t kind = 0;
  uint32_t control = 0;  // Setup dialog control, 0 for none

  bool IsNumber() const { return (kind & kNumberKindBits) != 0; }
  bool IsText() const { return (kind & kTextKindBits) != 0; }
};

// Every key, in the fixed order of the file.
std::span<const KeyRow> KeyTable();
// The row named exactly `name`, or null.
const KeyRow* FindKey(std::string_view name);

// The lists behind the list-index keys, as the Setup dialog shows them.
std::span<const std::string_view> PhotoCdReadOptions();
std::span<const std::string_view> TiffWriteOptions();
std::span<const std::string_view> VectorReadOptions();
std::span<const std::string_view> ThumbnailWriteModes();

}  // namespace pxm
