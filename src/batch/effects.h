#pragma once

#include <cstdint>
#include <string>

#include "batch/operation.h"
#include "core/host.h"

namespace pxm {

struct EffectsOptions {
  // Where the output goes; empty = beside the source.
  std::string destinationDirectory;
};

// Applies the effect of the effects word to one file and writes it in the destination row's
// format. The picture is read as RGB; a 1-bit picture is refused with 13. When the destination
// cannot hold the result, it is reduced to 256 colours first (and refused with 12 when even that
// does not fit). Answers the error code of the file.
int Effects(Host& host, const std::string& source, int destRow, uint32_t effects,
            const EffectsOptions& options = {}, FormatTableView table = FormatTable());

}  // namespace pxm
