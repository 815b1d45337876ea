#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <tiffio.h>

#include "core/file_io.h"

// The fence around libtiff: every handle reads or writes through the program's own file
// objects and carries its own silent error and warning handlers, so no process-wide state of
// the library is touched and nothing is printed. Failures come back as return values.
namespace pxm {

struct TiffCloser {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, TiffCloser>;

// The largest single allocation libtiff may make for one file (a compressed strip, a row).
constexpr int64_t kTiffMaxAllocation = int64_t{512} << 20;

// Opens the file for reading; null when libtiff refuses it. `file` must outlive the handle.
TiffHandle OpenTiffReader(InputFile& file, const std::string& name);

// A file being written through libtiff; libtiff appends at the end it is told about.
struct TiffOutput {
  OutputFile* file = nullptr;
  uint64_t end = 0;
};

// Opens a little-endian file for writing; null when libtiff refuses. `out` must outlive the
// handle, which must be closed (reset) before the file is committed.
TiffHandle OpenTiffWriter(TiffOutput& out, const std::string& name);

}  // namespace pxm
