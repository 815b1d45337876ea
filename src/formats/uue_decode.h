#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/host.h"

// Decoding of uuencoded text: a "begin MODE NAME" line, data lines whose first character counts
// the bytes they carry, and an END line; a file may be split over several parts.
namespace pxm {

// The bytes of one data line, into `out` (room for 63 bytes); answers how many. The count is
// (first character - 32) AND 63; every group of four characters makes three bytes, of which the
// last group gives only as many as the count still asks for. A line shorter than its count
// needs is taken as padded with spaces, so stripped trailing spaces decode as zeros.
size_t DecodeUueLine(std::string_view line, uint8_t* out);
constexpr size_t kMaxUueLineBytes = 63;

// The characters a data line of `count` bytes has after its count character.
constexpr size_t UueLineLength(uint32_t count) {
  return (count + 2) / 3 * 4;
}

// What decoding made: the name in the begin line and the decoded file.
struct UueDecoded {
  std::string embeddedName;
  std::string decodedPath;
};

// Decodes the file at `path` into the program's private temporary directory, under the
// embedded name's name part only. Relaxed decoding skips lines that do not have the length
// their count announces and, at the end of a part without an END line, asks the host for the
// next part; strict decoding takes every line and ends at the end of the file. Answers 0, or 1
// (a part cannot be opened), 2 (no begin line), 4 (cancelled), 11 (the decoded file cannot be
// made). On failure no decoded file is left.
int DecodeUueFile(const std::string& path, Host& host, bool relaxed, UueDecoded& out);

}  // namespace pxm
