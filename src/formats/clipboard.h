#pragma once

#include <string>

#include "core/image_info.h"

namespace pxm {

// The clipboard row's writer: builds a packed device-independent bitmap and its palette from the
// record's rows and hands them to the host. `path` is not used.
int ClipboardWrite(ImageInfo& info, const std::string& path);

}  // namespace pxm
