#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "config/settings.h"

// The entries of the file list for one directory, without any window: picture files of the
// formats switched on, then "[name]" for each subdirectory and "[..]" for the parent, all in the
// list's order.
namespace pxm::ui {

// The list's order: letters compared without regard to case, so "[" (a directory) sorts after
// digits and before letters; entries equal but for case keep a fixed order.
bool ListOrder(std::string_view a, std::string_view b);

// Whether a file name is listed: a format row is found for it that is switched on and is
// neither the clipboard nor a row filled at run time. Hidden names (a leading dot, the
// writers' temporary files among them) are not listed.
bool ListsAsPicture(std::string_view name, const Settings& settings);

// Whether a directory name is listed: hidden ones only with ShowHiddenDirectories, names with
// an extension only with AllowDirectoryExtensions.
bool ListsAsDirectory(std::string_view name, const Settings& settings);

// Every entry of `directory`, sorted. "[..]" is there unless the directory is the root.
std::vector<std::string> BuildFileList(const std::string& directory, const Settings& settings);

// Whether an entry names a directory ("[name]" or "[..]").
inline bool IsDirectoryEntry(std::string_view entry) {
  return !entry.empty() && entry.front() == '[';
}
// The directory name inside the brackets.
std::string DirectoryOfEntry(std::string_view entry);

}  // namespace pxm::ui
