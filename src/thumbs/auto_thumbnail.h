#pragma once

#include <string>

#include "core/host.h"

namespace pxm {

// After a successful write: when AutoCreateThumbnail is on and the new file has no thumbnail
// yet, makes one. Answers the code of the thumbnail making (0 when none was needed).
int AutoCreateThumbnail(Host& host, const std::string& path);

}  // namespace pxm
