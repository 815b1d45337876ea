#include "fuzz_support.h"

#include <sys/mman.h>
#include <unistd.h>

#include "config/settings.h"
#include "core/host.h"
#include "core/image_store.h"
#include "core/row_format.h"
#include "core/sinks.h"
#include "formats/format_table.h"

namespace pxm::fuzz {
namespace {

// Pictures above this many stored bytes are described but not decoded: a fuzzer finds huge
// headers in seconds and the store would only spend memory on them.
constexpr uint64_t kMaxStoreBytes = 64ull << 20;

// The input as a file without touching the disk: a memory file reached through /proc.
class MemoryFile {
 public:
  MemoryFile(const uint8_t* data, size_t size, const char* extension) {
    fd_ = memfd_create("pxm-fuzz", MFD_CLOEXEC);
    if (fd_ < 0) return;
    size_t done = 0;
    while (done < size) {
      ssize_t w = write(fd_, data + done, size - done);
      if (w <= 0) break;
      done += static_cast<size_t>(w);
    }
    // The extension only picks the row; the handlers open the path as any file.
    path_ = "/proc/self/fd/" + std::to_string(fd_);
    (void)extension;
  }
  ~MemoryFile() {
    if (fd_ >= 0) close(fd_);
  }
  const std::string& path() const { return path_; }

 private:
  int fd_ = -1;
  std::string path_;
};

// A file a handler made for itself (a decoded attachment) goes with the record, whichever way the
// read ends, as the driver's post-read step removes it.
struct TemporaryFileGuard {
  ImageInfo& info;
  ~TemporaryFileGuard() {
    if (!info.temporaryFile.empty()) unlink(info.temporaryFile.c_str());
  }
};

void ReadOnce(const FormatEntry& entry, const std::string& path, uint32_t imageIndex) {
  QuietHost host;
  ImageInfo info;
  TemporaryFileGuard guard{info};
  info.host = &host;
  info.imageIndex = imageIndex;
  if (entry.info(info, path, 0) != 0) return;
  if (entry.listImages) {
    std::vector<std::string> lines;
    entry.listImages(info, path, lines);
  }
  uint64_t bytes = StoreBytesPerLine(info.width, info.bits) * static_cast<uint64_t>(info.depth > 0 ? info.depth : 0);
  if (info.width > (1u << 24) || bytes > kMaxStoreBytes) return;
  ImageStore store(host);
  if (store.Create(info.width, info.depth, info.bits, kStoreMemoryOnly) != 0) return;
  info.putLine = PlainRowSink(store);
  entry.read(info, path);
}

}  // namespace

std::vector<Target>& Targets() {
  static std::vector<Target> targets;
  return targets;
}

void FuzzFormat(const uint8_t* data, size_t size, const char* extension) {
  int row = FindFormatByExtension(extension);
  if (row < 0) return;
  const FormatEntry& entry = FormatAt(row);
  MemoryFile file(data, size, extension);
  if (file.path().empty()) return;
  ReadOnce(entry, file.path(), 0);
  if (entry.caps & kCapsMultiImage) ReadOnce(entry, file.path(), 1);
}

}  // namespace pxm::fuzz
