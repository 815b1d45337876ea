#pragma once

#include <cstddef>
#include <string>

#include "core/host.h"

namespace pxm {

// The path a file is renamed to: a bare new name stays in the file's own directory; a name with
// a separator is a path of its own.
std::string RenameTarget(const std::string& path, const std::string& newName);

// Renames one file. An existing file of the new name is never replaced. Answers 9 when the
// rename fails (no such file, the name is taken, no permission) and 0 otherwise; the new path
// is announced to the host.
int RenameTaggedFile(Host& host, const std::string& path, const std::string& newName);

// The Delete command's question for `count` tagged files: "Delete the selected file?" for one,
// "Delete all %u selected files?" with the count otherwise. True when the answer is Yes.
bool ConfirmDelete(Host& host, size_t count);

// Deletes one tagged file; 1 when it cannot be removed.
int DeleteTaggedFile(const std::string& path);

}  // namespace pxm
