#include "core/image_store.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "core/error_codes.h"
#include "core/platform.h"
#include "core/row_format.h"
#include "core/strings.h"

namespace pxm {
namespace {

bool WriteAll(int fd, const uint8_t* data, size_t n, uint64_t offset) {
  while (n > 0) {
    ssize_t w = pwrite(fd, data, n, static_cast<off_t>(offset));
    if (w <= 0) return false;
    data += w;
    n -= static_cast<size_t>(w);
    offset += static_cast<uint64_t>(w);
  }
  return true;
}

// Large pictures are written into fresh memory row by row; huge pages cut the page faults of
// that first touch by a factor of 512.
void AdviseHugePages(uint8_t* block, size_t size) {
  constexpr size_t kPage = 4096;
  if (size < (8u << 20)) return;
  auto start = (reinterpret_cast<uintptr_t>(block) + kPage - 1) & ~(kPage - 1);
  auto end = (reinterpret_cast<uintptr_t>(block) + size) & ~(kPage - 1);
  madvise(reinterpret_cast<void*>(start), end - start, MADV_HUGEPAGE);
}

bool ReadAll(int fd, uint8_t* data, size_t n, uint64_t offset) {
  while (n > 0) {
    ssize_t r = pread(fd, data, n, static_cast<off_t>(offset));
    if (r <= 0) return false;
    data += r;
    n -= static_cast<size_t>(r);
    offset += static_cast<uint64_t>(r);
  }
  return true;
}

}  // namespace

int ImageStore::Create(uint32_t w, int32_t d, uint32_t bits, unsigned options) {
  Free();
  width = w;
  depth = d;
  sourceBits = bits;
  storageBits = StorageBits(bits);
  rowCount = d;
  abortFlag = 0;
  failure_ = 0;
  rowsDone = 0;
  if (w == 0 || d < 1) return kInformationError;

  uint64_t perLine = StoreBytesPerLine(w, bits);
  if (perLine > SIZE_MAX / 2) return kMemoryError;
  bytesPerLine = static_cast<size_t>(perLine);
  packedBytes_ = static_cast<size_t>(PackedRowBytes(w, bits));
  // One spare row beyond the picture: some processing reads one row past the last.
  uint64_t rows = static_cast<uint64_t>(d) + 1;
  bool fits = perLine == 0 || rows <= UINT64_MAX / perLine;
  uint64_t size = fits ? rows * perLine : UINT64_MAX;

  if (!(options & kStoreSpillAlways) && fits && size <= SIZE_MAX &&
      size <= platform::StoreMemoryLimit()) {
    // calloc hands large blocks over as untouched zero pages: cheap, and only the rows
    // actually written cost memory.
    memory_.reset(static_cast<uint8_t*>(std::calloc(static_cast<size_t>(size), 1)));
    if (memory_) {
      AdviseHugePages(memory_.get(), static_cast<size_t>(size));
      return kOk;
    }
  }
  if (options & kStoreMemoryOnly) return kNeedsMemoryStore;
  if (options & kStoreNoSpill) return kMemoryError;
  return CreateSpill();
}

int ImageStore::CreateSpill() {
  uint64_t spillBytes = static_cast<uint64_t>(depth) * bytesPerLine;
  if (bytesPerLine != 0 && spillBytes / bytesPerLine != static_cast<uint64_t>(depth))
    return kMemoryError;
  // A header claiming an absurd picture must not fill the disk before the reader finds out.
  if (spillBytes > platform::FreeDiskSpace(platform::TempRoot())) return kMemoryError;
  spillFile_ = platform::CreateSpillFile();
  if (spillFile_ < 0) return kMemoryError;
  try {
    spillRow_.assign(bytesPerLine, 0);
  } catch (const std::bad_alloc&) {
    Free();
    return kMemoryError;
  }

  // Writing every row now makes sure the disk really holds the picture before reading starts,
  // and gives the user a moving bar and a chance to cancel on a slow disk.
  host_->SetStatus(LoadMessage(kStrCreatingSpillFile));
  for (int32_t row = 0; row < depth; ++row) {
    host_->ReportProgress(static_cast<uint64_t>(depth), static_cast<uint64_t>(row));
    if (host_->PollAbort()) {
      host_->Beep();
      Free();
      return kCancelled;
    }
    if (!WriteAll(spillFile_, spillRow_.data(), bytesPerLine,
                  static_cast<uint64_t>(row) * bytesPerLine)) {
      Free();
      return kMemoryError;
    }
  }
  return kOk;
}

void ImageStore::Free() {
  memory_.reset();
  if (spillFile_ >= 0) close(spillFile_);  // the file was unlinked when it was made
  spillFile_ = -1;
  std::vector<uint8_t>().swap(spillRow_);
}

bool ImageStore::SlotOffset(int32_t r, uint64_t& offset) const {
  if (r < 0 || r >= rowCount) return false;
  offset = static_cast<uint64_t>(rowCount - 1 - r) * bytesPerLine;
  return true;
}

uint8_t* ImageStore::MemoryRow(int32_t r) {
  uint64_t offset;
  if (!memory_ || !SlotOffset(r, offset)) return nullptr;
  return memory_.get() + offset;
}

const uint8_t* ImageStore::MemoryRow(int32_t r) const {
  uint64_t offset;
  if (!memory_ || !SlotOffset(r, offset)) return nullptr;
  return memory_.get() + offset;
}

int ImageStore::PutRowQuiet(std::span<const uint8_t> row, int32_t r) {
  uint64_t offset;
  if (!IsHeld() || !SlotOffset(r, offset)) return abortFlag;
  // Only the row's own bytes are taken: readers hand over whole working buffers, and what lies
  // past the picture in them was never written. The slot's rounding is always zero, so writers
  // that copy whole stored rows write the same bytes every time.
  size_t n = std::min(row.size(), packedBytes_);
  if (memory_) {
    uint8_t* slot = memory_.get() + offset;
    std::memcpy(slot, row.data(), n);
    if (n < bytesPerLine) std::memset(slot + n, 0, bytesPerLine - n);
    return abortFlag;
  }
  const uint8_t* io = row.data();
  if (n < bytesPerLine) {
    // A short caller buffer goes through the store's own row so the file always moves whole rows.
    std::memcpy(spillRow_.data(), row.data(), n);
    std::memset(spillRow_.data() + n, 0, bytesPerLine - n);
    io = spillRow_.data();
  }
  if (!WriteAll(spillFile_, io, bytesPerLine, offset)) Fail(kWriteError);
  return abortFlag;
}

int ImageStore::GetRowQuiet(std::span<uint8_t> row, int32_t r) {
  uint64_t offset;
  if (!IsHeld() || !SlotOffset(r, offset)) return abortFlag;
  size_t n = std::min(row.size(), bytesPerLine);
  if (memory_) {
    std::memcpy(row.data(), memory_.get() + offset, n);
    return abortFlag;
  }
  uint8_t* io = n == bytesPerLine ? row.data() : spillRow_.data();
  if (!ReadAll(spillFile_, io, bytesPerLine, offset)) {
    std::memset(io, 0, bytesPerLine);
    Fail(kReadError);
  }
  if (io != row.data()) std::memcpy(row.data(), io, n);
  return abortFlag;
}

int ImageStore::PutRow(std::span<const uint8_t> row, int32_t r) {
  PutRowQuiet(row, r);
  return AbortCheck();
}

int ImageStore::GetRow(std::span<uint8_t> row, int32_t r) {
  GetRowQuiet(row, r);
  return AbortCheck();
}

void ImageStore::Fail(int code) {
  if (!failure_) failure_ = code;
  abortFlag = 1;
}

int ImageStore::AbortCheck() {
  if (host_->PollAbort() && !abortFlag) {
    host_->Beep();
    abortFlag = 1;
  }
  return abortFlag;
}

void ImageStore::ReportRowProgress(uint64_t total) {
  host_->ReportProgress(total, rowsDone);
  ++rowsDone;
}

}  // namespace pxm
