#include "core/image_info.h"

#include "core/error_codes.h"
#include "core/host.h"
#include "core/platform.h"

namespace pxm {

void ImageInfo::Clear() {
  Host* keep = host;
  *this = ImageInfo{};
  host = keep;
}

int PostRead(ImageInfo& info) {
  if (!info.temporaryFile.empty()) {
    platform::RemoveFile(info.temporaryFile);
    info.temporaryFile.clear();
  }
  return kOk;
}

Host& HostOf(const ImageInfo& info) { return info.host ? *info.host : SilentHost(); }

uint32_t UnpackedSize(uint32_t width, uint32_t bits, int32_t depth) {
  // Computed in 32 bits on purpose: the record's field wraps exactly as it always has.
  return ((width + 7u) / 8u) * bits * static_cast<uint32_t>(depth);
}

void SetText(std::string& field, std::string_view text, size_t limit) {
  field.assign(text.substr(0, limit));
}

}  // namespace pxm
