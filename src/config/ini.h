#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "config/recent_dirs.h"
#include "config/settings.h"
#include "core/signature.h"

// "PXM.INI": one "[Pixmill]" section of "key = value" lines, read with the program's own line
// rules and written back whole.
namespace pxm {

// Applies one line of the file to the settings, with every rule of the reader: ";" lines are
// skipped, the line ends at its first control character, the key is matched as a prefix against
// the format extensions and then against the key table.
void ApplyConfigurationLine(std::string_view line, Settings& settings);

// Reads the file's lines into the settings; a missing file leaves them as they are.
void ReadConfiguration(const std::string& path, Settings& settings);

// The values of the file's "FileMenuPath" lines, added to `recent` in order.
void ReadRecentDirectories(const std::string& path, RecentDirectories& recent);

// The lines the writer writes after its five header lines, each without its line feed.
std::vector<std::string> ConfigurationLines(const Settings& settings,
                                            const RecentDirectories& recent);

// Writes the whole file, replacing the old one only once the new one is complete. With
// RememberLastDirectory on, the current directory first becomes StartupDirectory. Answers
// whether the file was written; failures are otherwise silent.
bool WriteConfiguration(const std::string& path, Settings& settings,
                        const RecentDirectories& recent);

// Decimal text as the reader converts it: an optional sign, digits, anything after ignored,
// wrapping around in 32 bits (so 4294967276 reads as -20); no digits give 0.
int32_t ParseConfigNumber(std::string_view text);

}  // namespace pxm
