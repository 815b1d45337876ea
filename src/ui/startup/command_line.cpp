#include "startup/command_line.h"

#include <filesystem>

#include "core/names.h"
#include "core/platform.h"

namespace pxm::ui {
namespace {

std::string Absolute(const std::string& path, const std::string& currentDirectory) {
  std::filesystem::path p(path);
  if (p.is_relative()) p = std::filesystem::path(currentDirectory) / p;
  return p.lexically_normal().string();
}

std::string WithoutTrailingSeparator(std::string path) {
  while (path.size() > 1 && path.back() == kSeparator) path.pop_back();
  return path;
}

}  // namespace

StartRequest ParseStartArguments(const std::vector<std::string>& arguments,
                                 const std::string& currentDirectory) {
  StartRequest request;
  for (const std::string& argument : arguments) {
    std::string path = Absolute(argument, currentDirectory);
    if (platform::IsDirectory(path)) {
      if (request.directory.empty()) request.directory = WithoutTrailingSeparator(path);
      continue;
    }
    if (!platform::FileExists(path)) continue;
    std::string directory = WithoutTrailingSeparator(DirectoryPart(path));
    if (request.directory.empty()) request.directory = directory;
    if (directory == request.directory) request.tagged.push_back(NamePart(path));
  }
  return request;
}

}  // namespace pxm::ui
