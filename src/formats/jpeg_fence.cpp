#include "formats/jpeg_fence.h"

#include <jerror.h>  // needs jpeglib.h first

#include <cstdlib>

#include "core/debug_log.h"
#include "core/error_codes.h"

namespace pxm {
namespace {

[[noreturn]] void ErrorExit(j_common_ptr cinfo) {
  auto* errors = reinterpret_cast<JpegErrorJump*>(cinfo->err);
  if (DebugLogEnabled()) {
    char message[JMSG_LENGTH_MAX];
    cinfo->err->format_message(cinfo, message);
    DebugLog("libjpeg", errors->file, message);
  }
  std::longjmp(errors->jump, 1);
}

void SayNothing(j_common_ptr) {}

[[noreturn]] void Fail(j_common_ptr cinfo, int code) {
  cinfo->err->msg_code = code;
  cinfo->err->error_exit(cinfo);
  std::abort();  // error_exit never returns
}

JpegFileSource& SourceOf(j_decompress_ptr cinfo) {
  return *reinterpret_cast<JpegFileSource*>(cinfo->src);
}

void InitSource(j_decompress_ptr) {}

boolean FillInputBuffer(j_decompress_ptr cinfo) {
  JpegFileSource& s = SourceOf(cinfo);
  size_t n = s.file->Read(s.buffer, s.size);
  if (n == 0) Fail(reinterpret_cast<j_common_ptr>(cinfo), JERR_INPUT_EOF);
  s.manager.next_input_byte = s.buffer;
  s.manager.bytes_in_buffer = n;
  return TRUE;
}

void SkipInputData(j_decompress_ptr cinfo, long count) {
  if (count <= 0) return;
  JpegFileSource& s = SourceOf(cinfo);
  auto n = static_cast<size_t>(count);
  if (n <= s.manager.bytes_in_buffer) {
    s.manager.next_input_byte += n;
    s.manager.bytes_in_buffer -= n;
    return;
  }
  // Past the buffered bytes: move the file instead of reading what is skipped.
  n -= s.manager.bytes_in_buffer;
  s.manager.bytes_in_buffer = 0;
  if (!s.file->Skip(n)) Fail(reinterpret_cast<j_common_ptr>(cinfo), JERR_INPUT_EOF);
}

void TermSource(j_decompress_ptr) {}

JpegFileDestination& DestinationOf(j_compress_ptr cinfo) {
  return *reinterpret_cast<JpegFileDestination*>(cinfo->dest);
}

void InitDestination(j_compress_ptr cinfo) {
  JpegFileDestination& d = DestinationOf(cinfo);
  d.manager.next_output_byte = d.buffer;
  d.manager.free_in_buffer = d.size;
}

boolean EmptyOutputBuffer(j_compress_ptr cinfo) {
  JpegFileDestination& d = DestinationOf(cinfo);
  d.file->Write(d.buffer, d.size);
  d.manager.next_output_byte = d.buffer;
  d.manager.free_in_buffer = d.size;
  return TRUE;
}

void TermDestination(j_compress_ptr cinfo) {
  JpegFileDestination& d = DestinationOf(cinfo);
  d.file->Write(d.buffer, d.size - d.manager.free_in_buffer);
}

void CountScans(j_common_ptr cinfo) {
  if (!cinfo->is_decompressor) return;
  auto* d = reinterpret_cast<j_decompress_ptr>(cinfo);
  if (d->input_scan_number > kMaxJpegScans) Fail(cinfo, JERR_NOTIMPL);
}

}  // namespace

jpeg_error_mgr* InitJpegErrors(JpegErrorJump& errors) {
  jpeg_error_mgr* m = jpeg_std_error(&errors.manager);
  m->error_exit = ErrorExit;
  m->output_message = SayNothing;
  return m;
}

int RunGuarded(JpegErrorJump& errors, int (*body)(void* job), void* job) {
  if (setjmp(errors.jump) != 0) return kMemoryError;
  return body(job);
}

void AttachJpegSource(j_decompress_ptr cinfo, JpegFileSource& source) {
  source.manager.init_source = InitSource;
  source.manager.fill_input_buffer = FillInputBuffer;
  source.manager.skip_input_data = SkipInputData;
  source.manager.resync_to_restart = jpeg_resync_to_restart;
  source.manager.term_source = TermSource;
  source.manager.next_input_byte = nullptr;
  source.manager.bytes_in_buffer = 0;
  cinfo->src = &source.manager;
}

void AttachJpegDestination(j_compress_ptr cinfo, JpegFileDestination& destination) {
  destination.manager.init_destination = InitDestination;
  destination.manager.empty_output_buffer = EmptyOutputBuffer;
  destination.manager.term_destination = TermDestination;
  cinfo->dest = &destination.manager;
}

void LimitJpegScans(j_decompress_ptr cinfo, jpeg_progress_mgr& progress) {
  progress.progress_monitor = CountScans;
  cinfo->progress = &progress;
}

}  // namespace pxm
