#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "core/file_io.h"

// The 80-byte header cards of a FITS file and the numbers in them.
namespace pxm {

constexpr size_t kFitsCardBytes = 80;
constexpr size_t kFitsBlockBytes = 2880;

struct FitsCard {
  std::string keyword;  // up to the first space or "="
  std::string value;    // after the spaces and "=" that follow, trailing spaces removed
};

// Splits one card. A value keeps any "/ comment" after it: numbers are read from its start.
FitsCard ParseFitsCard(const char* card);

// Reads the next card; false when 80 bytes are not there.
bool ReadFitsCard(InputFile& in, FitsCard& card);

// A whole number at the start of a value (spaces, a sign, digits), saturating at the int64
// limits; 0 without digits.
int64_t FitsInteger(const std::string& value);
// A real number at the start of a value; `fallback` without one.
double FitsReal(const std::string& value, double fallback);

// The card as written: "%-8.8s=%21.21s", or the keyword alone, padded with spaces to 80 bytes.
std::string FormatFitsCard(const std::string& keyword, const std::string& value);
std::string FormatFitsEndCard();

}  // namespace pxm
