#include "core/debug_log.h"

#include <cstdio>
#include <cstdlib>

namespace pxm {

bool DebugLogEnabled() {
  // A function's static is set up exactly once even when threads ask at the same time.
  static const bool enabled = [] {
    const char* value = std::getenv("PXM_LOG");
    return value != nullptr && std::string_view(value) == "1";
  }();
  return enabled;
}

void DebugLog(std::string_view source, std::string_view file, std::string_view message) {
  if (!DebugLogEnabled()) return;
  while (!message.empty() && (message.back() == '\n' || message.back() == '\r'))
    message.remove_suffix(1);
  // One call writes the whole line: the stream is locked for the call, so lines of several
  // threads never interleave.
  std::fprintf(stderr, "pxm: %.*s: %.*s%s%.*s\n", static_cast<int>(source.size()), source.data(),
               static_cast<int>(file.size()), file.data(), file.empty() ? "" : ": ",
               static_cast<int>(message.size()), message.data());
}

void DebugLogFormat(std::string_view source, std::string_view file, const char* format,
                    va_list arguments) {
  if (!DebugLogEnabled()) return;
  char message[1024];
  std::vsnprintf(message, sizeof message, format, arguments);
  DebugLog(source, file, message);
}

}  // namespace pxm
