#include "batch/output_name.h"

#include "config/settings.h"
#include "core/names.h"
#include "core/platform.h"
#include "core/strings.h"

namespace pxm {

int BuildOutputName(Host& host, std::string& output, const std::string& source,
                    const std::string& destinationDirectory, const FormatEntry& destination) {
  if (destination.caps & kCapsClipboard) {
    output = std::string(LoadMessage(kStrClipboard));
    return kNameGoOn;
  }
  const Settings& settings = CurrentSettings();
  const std::string extension = destination.extension;
  output = ReplaceExtension(source, extension);

  if (settings.PromptforDestName) {
    auto chosen = host.SaveName(output);
    if (!chosen) return kNameCancelled;
    output = ReplaceExtension(*chosen, extension);
  } else if (!destinationDirectory.empty()) {
    std::string name = StripExtension(NamePart(source));
    // Six characters, so that with the extension the name still fits 8.3 systems.
    if (settings.FilenameUnderbars) name = name.substr(0, 6);
    output = JoinPath(destinationDirectory, name + "." + extension);
  }
  output = LowerCaseName(output);

  if (settings.PromptBeforeOverwrite && platform::FileExists(output) &&
      !host.ConfirmOverwrite(output))
    return kNameCancelled;
  return kNameGoOn;
}

}  // namespace pxm
