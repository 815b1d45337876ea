#pragma once

#include <string>

#include "batch/operation.h"
#include "core/host.h"

namespace pxm {

struct ConvertOptions {
  // Where the output goes; empty = beside the source.
  std::string destinationDirectory;
};

// Rewrites one file in the destination row's format, unchanged: refuses a picture deeper than
// the destination holds with 12; motion destinations take every frame of a motion source
// straight from its reader. Answers the error code of the file.
int Convert(Host& host, const std::string& source, int destRow, const ConvertOptions& options = {},
            FormatTableView table = FormatTable());

}  // namespace pxm
