#include "batch/rename_delete.h"

#include <string>

#include "core/error_codes.h"
#include "core/names.h"
#include "core/platform.h"
#include "core/strings.h"

namespace pxm {

std::string RenameTarget(const std::string& path, const std::string& newName) {
  if (newName.find(kSeparator) != std::string::npos) return newName;
  return DirectoryPart(path) + newName;
}

int RenameTaggedFile(Host& host, const std::string& path, const std::string& newName) {
  if (newName.empty() || !platform::FileExists(path)) return kRenameError;
  const std::string target = RenameTarget(path, newName);
  if (!platform::RenameNoReplace(path, target)) return kRenameError;
  host.FileWritten(target);
  return kOk;
}

bool ConfirmDelete(Host& host, size_t count) {
  const std::string question = count == 1 ? std::string(LoadMessage(kStrDeleteOne))
                                           : FillText(LoadMessage(kStrDeleteMany), "%u",
                                                      std::to_string(count));
  return host.AskYesNo(question) == kIdYes;
}

int DeleteTaggedFile(const std::string& path) {
  if (platform::IsDirectory(path)) return kOpenError;
  return platform::RemoveFile(path) ? kOk : kOpenError;
}

}  // namespace pxm
