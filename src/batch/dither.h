#pragma once

#include <string>

#include "batch/operation.h"
#include "core/host.h"

namespace pxm {

struct DitherOptions {
  // The format row to write; -1 writes the source's own format (under the source's name, when the
  // output-name rules give it back).
  int destRow = -1;
  // Where the output goes; empty = beside the source.
  std::string destinationDirectory;
};

// Reduces one file to black and white with the DitherMode, DitherContrast and DitherBrightness
// settings, reading it enlarged by the mode's halftone size factor, and writes the result.
// A 1-bit picture is refused with 13. Answers the error code of the file.
int Dither(Host& host, const std::string& source, const DitherOptions& options = {},
           FormatTableView table = FormatTable());

}  // namespace pxm
