#pragma once

#include <cstdint>
#include <vector>

#include "core/file_io.h"

// The resource tables of Windows executables and libraries: the 16-bit "NE" layout and the
// 32- and 64-bit "PE" layout. Only the resources that hold pictures are gathered.
namespace pxm {

enum ResourceType : uint32_t {
  kResourceBitmap = 2,
  kResourceIcon = 3,
  kResourceGroupIcon = 14,
};

enum class LibraryKind { kNe16, kPe32, kPe64 };

struct Resource {
  uint32_t type = 0;
  uint32_t id = 0;      // the resource's number; 0 for resources known by a name
  uint64_t offset = 0;  // where its data starts in the file
  uint64_t size = 0;
};

// Gathers the bitmaps, icons and icon groups of the file in table order (the first language of
// each). Answers 0; 2 for a file that is no executable or whose tables are damaged; 8 for an
// executable of another layout (plain DOS, LE, LX); 20 when the file has no resources.
int ReadResources(InputFile& in, LibraryKind& kind, std::vector<Resource>& out);

}  // namespace pxm
