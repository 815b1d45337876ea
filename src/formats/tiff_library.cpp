#include "formats/tiff_library.h"

#include <cstdio>

#include "core/debug_log.h"

namespace pxm {
namespace {

// Messages are the library's business; the handler answers with a code, and errors go to the
// debug log only. Answering 1 tells libtiff the message was handled, so its process-wide
// handlers are never reached.
int LogError(TIFF* tiff, void*, const char* module, const char* format, va_list arguments) {
  const char* file = tiff ? TIFFFileName(tiff) : module;
  DebugLogFormat("libtiff", file ? file : "", format, arguments);
  return 1;
}
int Silent(TIFF*, void*, const char*, const char*, va_list) { return 1; }

struct OptionsDeleter {
  void operator()(TIFFOpenOptions* o) const { TIFFOpenOptionsFree(o); }
};

std::unique_ptr<TIFFOpenOptions, OptionsDeleter> QuietOptions() {
  std::unique_ptr<TIFFOpenOptions, OptionsDeleter> options(TIFFOpenOptionsAlloc());
  if (!options) return options;
  TIFFOpenOptionsSetErrorHandlerExtR(options.get(), LogError, nullptr);
  TIFFOpenOptionsSetWarningHandlerExtR(options.get(), Silent, nullptr);
  TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), kTiffMaxAllocation);
  return options;
}

int NoClose(thandle_t) { return 0; }
int NoMap(thandle_t, void**, toff_t*) { return 0; }
void NoUnmap(thandle_t, void*, toff_t) {}

InputFile& In(thandle_t h) { return *static_cast<InputFile*>(h); }

tmsize_t ReadIn(thandle_t h, void* buffer, tmsize_t n) {
  if (n < 0) return -1;
  return static_cast<tmsize_t>(In(h).Read(buffer, static_cast<size_t>(n)));
}
tmsize_t WriteIn(thandle_t, void*, tmsize_t) { return -1; }

toff_t Target(uint64_t current, uint64_t end, toff_t offset, int whence) {
  if (whence == SEEK_CUR) return current + offset;
  if (whence == SEEK_END) return end + offset;
  return offset;
}

toff_t SeekIn(thandle_t h, toff_t offset, int whence) {
  InputFile& f = In(h);
  const toff_t target = Target(f.Tell(), f.Size(), offset, whence);
  if (!f.Seek(target)) return static_cast<toff_t>(-1);
  return target;
}
toff_t SizeIn(thandle_t h) { return In(h).Size(); }

TiffOutput& Out(thandle_t h) { return *static_cast<TiffOutput*>(h); }

tmsize_t ReadOut(thandle_t, void*, tmsize_t) { return -1; }
tmsize_t WriteOut(thandle_t h, void* buffer, tmsize_t n) {
  TiffOutput& o = Out(h);
  if (n < 0 || !o.file->Write(buffer, static_cast<size_t>(n))) return -1;
  if (o.file->Tell() > o.end) o.end = o.file->Tell();
  return n;
}
toff_t SeekOut(thandle_t h, toff_t offset, int whence) {
  TiffOutput& o = Out(h);
  const toff_t target = Target(o.file->Tell(), o.end, offset, whence);
  // Writing is sequential but for the header's pointer to the directory: only move for real.
  if (target != o.file->Tell() && !o.file->Seek(target)) return static_cast<toff_t>(-1);
  return target;
}
toff_t SizeOut(thandle_t h) { return Out(h).end; }

}  // namespace

TiffHandle OpenTiffReader(InputFile& file, const std::string& name) {
  auto options = QuietOptions();
  if (!options) return nullptr;
  return TiffHandle(TIFFClientOpenExt(name.c_str(), "r", &file, ReadIn, WriteIn, SeekIn, NoClose,
                                      SizeIn, NoMap, NoUnmap, options.get()));
}

TiffHandle OpenTiffWriter(TiffOutput& out, const std::string& name) {
  auto options = QuietOptions();
  if (!options) return nullptr;
  return TiffHandle(TIFFClientOpenExt(name.c_str(), "wl", &out, ReadOut, WriteOut, SeekOut,
                                      NoClose, SizeOut, NoMap, NoUnmap, options.get()));
}

}  // namespace pxm
