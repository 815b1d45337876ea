#pragma once

#include <string>

#include "batch/operation.h"

namespace pxm {

// Rotates or flips one file (`mode` 101..105, as TransformMode holds it) and writes it in the
// destination row's format. The quarter turns need the picture in memory and answer 16 when it
// would have to spill. Answers 8 (unknown source or destination), 5 (no reader or writer, or an
// unknown mode), 12 (the destination cannot hold the depth), 4 (output name declined or a
// click), 6, or the reader's or writer's code.
int TransformFile(Host& host, const std::string& source, int destRow, int32_t mode,
                  const std::string& destinationDirectory = {},
                  FormatTableView table = FormatTable());

// Writes the negative of one file in the destination row's format: pixels inverted for 1-bit
// and 24-bit pictures, the palette for the others. The same codes as TransformFile but 16.
int ReverseFile(Host& host, const std::string& source, int destRow,
                const std::string& destinationDirectory = {},
                FormatTableView table = FormatTable());

}  // namespace pxm
