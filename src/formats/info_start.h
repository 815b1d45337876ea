#pragma once

#include <string>

#include "core/file_io.h"
#include "core/image_info.h"

namespace pxm {

// What every info handler does before it looks at the file: the name part into fileName, an
// empty description, background 0.
void StartInfo(ImageInfo& info, const std::string& path);

// StartInfo, then opens the file and records its length. Answers 0, or 1 ("Error opening file").
int OpenForInfo(ImageInfo& info, const std::string& path, InputFile& in);

}  // namespace pxm
