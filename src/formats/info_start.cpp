#include "formats/info_start.h"

#include "core/error_codes.h"
#include "core/names.h"

namespace pxm {

void StartInfo(ImageInfo& info, const std::string& path) {
  SetText(info.fileName, NamePart(path), kMaxNameLength);
  info.description.clear();
  info.background = 0;
}

int OpenForInfo(ImageInfo& info, const std::string& path, InputFile& in) {
  StartInfo(info, path);
  if (!in.Open(path)) return kOpenError;
  info.fileSize = static_cast<int32_t>(in.Size());
  return kOk;
}

}  // namespace pxm
