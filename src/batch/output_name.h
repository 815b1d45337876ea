#pragma once

#include <string>

#include "core/host.h"
#include "formats/format_table.h"

namespace pxm {

// BuildOutputName's answers.
enum OutputNameResult : int { kNameGoOn = 1, kNameCancelled = 2 };

// The name a command writes its result under: the source path with the destination's extension,
// or a name from the save dialog (PromptforDestName), or the name cut to six characters in the
// destination directory (FilenameUnderbars); the name part in lower case; then the overwrite
// question (PromptBeforeOverwrite). For the clipboard row it is "Clipboard". Answers 1 to go on,
// 2 when the user cancelled.
int BuildOutputName(Host& host, std::string& output, const std::string& source,
                    const std::string& destinationDirectory, const FormatEntry& destination);

}  // namespace pxm
