#include "thumbs/thumbnail_path.h"

#include "config/settings.h"
#include "core/names.h"
#include "core/platform.h"

namespace pxm {
namespace {

// Longest thumbnail path that a bare name is still moved under the image's directory for.
constexpr size_t kLongestPath = 260;

}  // namespace

std::string ThumbnailPathOf(std::string_view image) {
  std::string name = UpperCaseName(ReplaceExtension(NamePart(image), "THN"));
  return JoinPath(CurrentSettings().ThumbnailPath, name);
}

std::string ThumbnailFileOf(std::string_view image) {
  std::string path = ThumbnailPathOf(image);
  if (!DirectoryPart(path).empty()) return path;
  std::string beside = DirectoryPart(image) + path;
  return beside.size() <= kLongestPath ? beside : path;
}

bool HasThumbnail(std::string_view image) {
  return platform::FileExists(ThumbnailFileOf(image));
}

}  // namespace pxm
