#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "config/format_extensions.h"
#include "core/image_info.h"

namespace pxm {

// Handler contracts. Each answers an error code (0 = success) and works on the caller's record.
// info: fills the record from the header (purpose 1 = for a thumbnail); delivers no rows.
using InfoHandler = int (*)(ImageInfo& info, const std::string& path, int purpose);
// read: delivers every row to info.putLine; stops with 4 as soon as the sink answers 1.
using ReadHandler = int (*)(ImageInfo& info, const std::string& path);
// write: creates `path` and writes the picture the record describes, rows from info.getLine.
using WriteHandler = int (*)(ImageInfo& info, const std::string& path);
// listImages: adds one name per image (or the file's report lines) to `list`.
using ListImagesHandler = int (*)(ImageInfo& info, const std::string& path,
                                  std::vector<std::string>& list);

// Capability bits of a row.
enum FormatCaps : uint32_t {
  kCapsFile = 1,
  kCapsVector = 2,
  kCapsAnimated = 4,        // with kCapsMotion: View plays it itself
  kCapsMotion = 8,          // a motion format
  kCapsMovie = 16,
  kCapsClipboard = 32,      // not a file: the clipboard
  kCapsExternal = 64,       // a row filled at run time for an external format
  kCapsCorel = 128,
  kCapsMultiImage = 256,    // may hold several images: the select-image box follows info
  kCapsMpeg = 512,
  kCapsReadsFrames = 1024,  // a motion format whose frames the program reads itself
};

struct FormatEntry {
  ListImagesHandler listImages;
  InfoHandler info;
  ReadHandler read;
  WriteHandler write;
  const void* spare;  // empty in every row
  uint32_t maxBits;   // deepest picture the writer accepts: 1, 8 or 24
  char extension[4];
  std::string_view description;
  uint32_t enabled;   // the switch a row starts with; the live switch is in the settings
  uint32_t caps;
};

constexpr int kFormatCount = static_cast<int>(kFormatExtensions.size());

// The table, rows 0 to 41 in their fixed order.
std::span<const FormatEntry, kFormatCount> FormatTable();
// One row; a number outside the table gets a row without an extension whose handlers refuse
// with 8 ("Unsupported format"), or 5 for writing.
const FormatEntry& FormatAt(int row);

// The row for a path's extension (the first three characters after the dot, any case), or -1.
int FindFormat(std::string_view path);
// The row whose extension is `extension` (three letters, any case), or -1.
int FindFormatByExtension(std::string_view extension);
// FindFormat over another table with the same layout (drivers are tested against such tables).
int FindFormatIn(std::span<const FormatEntry, kFormatCount> table, std::string_view path);

// A row's on/off word (the low 16 bits of what the settings hold).
uint32_t FormatSwitch(int row);
// Whether a row is switched on: its word is exactly 1, as the destination dialog asks.
bool FormatEnabled(int row);

// Whether a handler is built in this program (not one that only answers 5 or 8).
bool CanRead(const FormatEntry& entry);
bool CanWrite(const FormatEntry& entry);

// Handlers of rows not built yet, and of rows whose handlers only ever refuse: they answer 5
// ("Unsupported function") or 8 ("Unsupported format").
int RefuseInfo5(ImageInfo&, const std::string&, int);
int RefuseRead5(ImageInfo&, const std::string&);
int RefuseWrite5(ImageInfo&, const std::string&);
int RefuseList5(ImageInfo&, const std::string&, std::vector<std::string>&);
int RefuseInfo8(ImageInfo&, const std::string&, int);
int RefuseRead8(ImageInfo&, const std::string&);

}  // namespace pxm
