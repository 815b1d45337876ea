#pragma once

#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include <jpeglib.h>

#include "core/file_io.h"

// The fence around libjpeg. The library reports a fatal condition by calling error_exit, which
// must not return; here it jumps back into RunGuarded. The jump skips every frame between the
// two, so the code that runs under RunGuarded keeps only trivially destructible locals: buffers
// and files belong to the caller, outside the fence.
namespace pxm {

struct JpegErrorJump {
  jpeg_error_mgr manager;  // first, so libjpeg's pointer to it is a pointer to the whole
  std::jmp_buf jump;
  const char* file = "";  // named in the debug log with libjpeg's message
};

// Installs the jumping error_exit and a message method that says nothing: warnings about odd
// data are no business of the user's, only a fatal condition is, and its message goes to the
// debug log before the jump.
jpeg_error_mgr* InitJpegErrors(JpegErrorJump& errors);

// Runs body(job) with the jump armed; answers what the body answered, or 6 ("Memory error")
// when libjpeg gave up. Every fatal libjpeg condition, a damaged file included, becomes 6.
int RunGuarded(JpegErrorJump& errors, int (*body)(void* job), void* job);

// A data source reading an InputFile through `buffer`. The end of the file is a fatal error:
// a truncated file must not be shown as a picture with a grey bottom.
struct JpegFileSource {
  jpeg_source_mgr manager;  // first, as above
  InputFile* file = nullptr;
  uint8_t* buffer = nullptr;
  size_t size = 0;
};
void AttachJpegSource(j_decompress_ptr cinfo, JpegFileSource& source);

// A data destination writing an OutputFile through `buffer`. A failed write is not reported to
// libjpeg: the OutputFile remembers it and refuses to commit.
struct JpegFileDestination {
  jpeg_destination_mgr manager;  // first, as above
  OutputFile* file = nullptr;
  uint8_t* buffer = nullptr;
  size_t size = 0;
};
void AttachJpegDestination(j_compress_ptr cinfo, JpegFileDestination& destination);

// A progress monitor that gives up on a file with more than `kMaxJpegScans` scans: each scan
// of a progressive file costs a pass over the whole picture, and a few bytes make a scan.
constexpr int kMaxJpegScans = 1000;
void LimitJpegScans(j_decompress_ptr cinfo, jpeg_progress_mgr& progress);

}  // namespace pxm
