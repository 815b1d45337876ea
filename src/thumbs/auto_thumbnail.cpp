#include "thumbs/auto_thumbnail.h"

#include "config/settings.h"
#include "core/error_codes.h"

namespace pxm {

int AutoCreateThumbnail(Host& /*host*/, const std::string& /*path*/) {
  if (!CurrentSettings().AutoCreateThumbnail) return kOk;
  // Thumbnail files are not made by this build yet: the thumbnail library is still to come, so
  // the setting has no effect.
  return kOk;
}

}  // namespace pxm
