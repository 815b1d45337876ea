#include "thumbs/auto_thumbnail.h"

#include "config/settings.h"
#include "core/error_codes.h"
#include "thumbs/make_thumbnail.h"
#include "thumbs/thumbnail_path.h"

namespace pxm {

int AutoCreateThumbnail(Host& host, const std::string& path) {
  if (!CurrentSettings().AutoCreateThumbnail || HasThumbnail(path)) return kOk;
  return MakeThumbnail(host, path);
}

}  // namespace pxm
