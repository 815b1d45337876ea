#include "formats/uue.h"

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/host.h"
#include "core/names.h"
#include "core/platform.h"
#include "formats/format_table.h"
#include "formats/uue_decode.h"
#include "formats/info_start.h"

namespace pxm {
namespace {

constexpr size_t kOriginalNameLength = 12;

// The decoded file of the record, decoding it first unless an earlier call left it there (info
// and reading decode only once). The post-read step of the driver removes it.
int DecodedFile(ImageInfo& info, const std::string& path) {
  if (!info.temporaryFile.empty() && platform::FileExists(info.temporaryFile)) return kOk;
  UueDecoded decoded;
  const bool relaxed = CurrentSettings().RelaxedUUE != 0;
  if (int code = DecodeUueFile(path, HostOf(info), relaxed, decoded)) return code;
  info.temporaryFile = decoded.decodedPath;
  return kOk;
}

// The format row of the decoded file: its extension names it; a UUE file inside a UUE file is
// not followed.
int EmbeddedFormat(const std::string& decoded, const FormatEntry*& entry) {
  const int row = FindFormat(decoded);
  if (row < 0 || FormatAt(row).info == UueInfo) return kUnsupportedFormat;
  entry = &FormatAt(row);
  return kOk;
}

void Discard(ImageInfo& info) {
  if (info.temporaryFile.empty()) return;
  platform::RemoveFile(info.temporaryFile);
  info.temporaryFile.clear();
}

}  // namespace

int UueInfo(ImageInfo& info, const std::string& path, int purpose) {
  StartInfo(info, path);
  if (int code = DecodedFile(info, path)) return code;
  const std::string decoded = info.temporaryFile;
  const FormatEntry* entry = nullptr;
  int code = EmbeddedFormat(decoded, entry);
  if (code == kOk) code = entry->info ? entry->info(info, decoded, purpose) : kUnsupportedFunction;
  if (code != kOk) {
    // Nothing more will be read from it: the decoded file goes now.
    Discard(info);
    return code;
  }
  // The name as it was embedded, its first 12 characters in upper case.
  info.description =
      "Original name " + ToUpperAscii(NamePart(decoded).substr(0, kOriginalNameLength));
  return kOk;
}

int UueRead(ImageInfo& info, const std::string& path) {
  if (int code = DecodedFile(info, path)) return code;
  const std::string decoded = info.temporaryFile;
  const FormatEntry* entry = nullptr;
  if (int code = EmbeddedFormat(decoded, entry)) return code;
  if (!entry->read) return kUnsupportedFunction;
  return entry->read(info, decoded);
}

}  // namespace pxm
