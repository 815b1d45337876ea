#pragma once

#include <string>
#include <vector>

#include "batch/operation.h"

namespace pxm {

// The result of Get info for one file.
struct InfoResult {
  ImageInfo info;
  int row = -1;                      // the file's format row
  std::vector<std::string> report;   // the listImages slot's lines, when asked for
  int reportCode = 0;                // what the listImages slot answered
};

// Get info: the format's info handler, then for a multi-image row the select-image box (and info
// again for a chosen image other than the first). A motion row whose frames the program does not
// read answers 5. With `report`, the row's listImages slot then writes its report lines.
int GetInfo(Host& host, const std::string& path, bool report, InfoResult& result,
            FormatTableView table = FormatTable());

}  // namespace pxm
