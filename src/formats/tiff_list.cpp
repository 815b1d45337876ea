// The tag listing that Get info shows for a TIFF file: one line for the byte order, then one
// line per entry of the first directory, name and value text separated by a tab.

#include <algorithm>
#include <new>
#include <string>
#include <vector>

#include "config/settings.h"
#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/strings.h"
#include "formats/tiff.h"
#include "formats/tiff_directory.h"

namespace pxm {
namespace {

// The listing has always been built in a text buffer of this size; entries that no longer fit
// are left out, so a directory of thousands of entries stays a readable listing.
constexpr size_t kListingLimit = 7298;
constexpr size_t kNameLimit = 24;
constexpr size_t kAsciiLimit = 35;

// Hexadecimal numbers are padded to their width by the precision alone (a zero flag beside a
// precision does nothing): "?? (0131H)".
std::string TagName(uint16_t tag) {
  const int id = kStrTiffTagBase + tag;
  if (!HasMessage(id)) return FormatText("?? (%.4xH)", tag);
  std::string name(LoadMessage(id));
  if (name.size() > kNameLimit) name.resize(kNameLimit);
  return name;
}

std::string_view TypeName(uint16_t type) {
  switch (type) {
    case kTiffByte: return "Byte";
    case kTiffAscii: return "ASCII";
    case kTiffShort: return "Short";
    case kTiffLong: return "Long";
    case kTiffRational: return "Rational";
    default: return "Unknown";
  }
}

// Up to 35 characters, from the field itself when the text fits in it.
std::string AsciiText(InputFile& file, const TiffEntry& e) {
  const auto n = static_cast<size_t>(std::min<uint32_t>(e.count, kAsciiLimit));
  if (n == 0) return {};
  std::string text(n, '\0');
  if (e.count <= 4) {
    for (size_t k = 0; k < n; ++k) text[k] = static_cast<char>(e.raw[k]);
  } else {
    // Text past the end of the file is shown as far as the file goes.
    if (!file.Seek(e.field)) return {};
    text.resize(file.Read(text.data(), n));
  }
  if (auto end = text.find('\0'); end != std::string::npos) text.resize(end);
  return text;
}

std::string RationalText(InputFile& file, const TiffDirectory& dir, const TiffEntry& e) {
  uint8_t b[8];
  if (uint64_t{e.field} + 8 > dir.fileSize || !file.Seek(e.field) || !file.ReadExact(b, 8))
    return {};
  const uint32_t num = dir.bigEndian ? LoadBe32(b) : LoadLe32(b);
  const uint32_t den = dir.bigEndian ? LoadBe32(b + 4) : LoadLe32(b + 4);
  return FormatText("%g", static_cast<double>(num) / static_cast<double>(den));
}

// A big-endian SHORT in the field sits in its high half.
uint32_t ShortValue(const TiffDirectory& dir, const TiffEntry& e) {
  return dir.bigEndian && e.count < 3 ? e.field >> 16 : e.field;
}

std::string ValueText(InputFile& file, const TiffDirectory& dir, const TiffEntry& e) {
  if (CurrentSettings().TiffAlternateDetails != 0) {
    const uint32_t value = e.type == kTiffShort ? ShortValue(dir, e) : e.field;
    return FormatText("TYPE: %s\tL:%.8lx\tO:%.8lx", std::string(TypeName(e.type)).c_str(),
                      static_cast<unsigned long>(e.count), static_cast<unsigned long>(value));
  }
  switch (e.type) {
    case kTiffAscii: return AsciiText(file, e);
    case kTiffShort:
      if (e.count == 1) return FormatText("%u", ShortValue(dir, e));
      return FormatText("Offset = %-6u Length = %-6u", e.field, e.count);
    case kTiffRational: return RationalText(file, dir, e);
    default:
      if (e.count == 1) return FormatText("%lu", static_cast<unsigned long>(e.field));
      return FormatText("Offset = %-6lu Length = %-6lu", static_cast<unsigned long>(e.field),
                        static_cast<unsigned long>(e.count));
  }
}

int DoList(const std::string& path, std::vector<std::string>& lines) {
  InputFile file;
  if (!file.Open(path)) return kOpenError;
  TiffDirectory dir;
  if (int code = ReadTiffDirectory(file, dir)) return code;
  std::vector<std::string> listing;
  listing.push_back(dir.bigEndian ? "Number type\tMotorola" : "Number type\tIntel");
  size_t used = listing.back().size() + 1;
  for (const TiffEntry& e : dir.entries) {
    std::string line = TagName(e.tag) + "\t" + ValueText(file, dir, e);
    if (used + line.size() + 1 > kListingLimit) break;
    used += line.size() + 1;
    listing.push_back(std::move(line));
  }
  lines.insert(lines.end(), listing.begin(), listing.end());
  return kOk;
}

}  // namespace

int TiffList(ImageInfo& /*info*/, const std::string& path, std::vector<std::string>& lines) {
  try {
    return DoList(path, lines);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

}  // namespace pxm
