#pragma once

#include <string>

#include "batch/operation.h"
#include "process/scale_tables.h"

namespace pxm {

// Scales one file by nearest neighbour and writes it in the destination row's format under the
// usual output name. The picture is read a byte per pixel (1-bit pictures stay packed) and the
// destination rows are built by the scaling source as the writer pulls them, so no scaled copy
// is ever held. Answers 8 (unknown source or destination), 5 (no reader or writer), 12 (the
// destination cannot hold the depth), 4 (output name declined or a click), 6 (no memory for the
// tables), 13 (the result would have no pixels), or the reader's or writer's code.
int ScaleFile(Host& host, const std::string& source, int destRow, const ScaleSettings& scale,
              const std::string& destinationDirectory = {},
              FormatTableView table = FormatTable());

}  // namespace pxm
