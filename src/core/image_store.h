#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <vector>

#include "core/host.h"

namespace pxm {

// CreateStore option bits. The spill policy comes in with them, so the store itself knows
// nothing of settings.
enum StoreOption : unsigned {
  kStoreMemoryOnly = 1,   // the work needs the picture in memory: never spill (16 otherwise)
  kStoreSpillAlways = 2,  // go straight to the spill file, as `UseVirtualMemoryAlways` asks
  kStoreNoSpill = 4,      // no spill file may be made: there is no virtual-memory drive (6)
};

// The one decoded picture of the running operation, bottom row first, in memory or in the spill
// file. Rows are numbered from the top; row r lives in slot depth - 1 - r.
class ImageStore {
 public:
  explicit ImageStore(Host& host) : host_(&host) {}
  ~ImageStore() { Free(); }
  ImageStore(const ImageStore&) = delete;
  ImageStore& operator=(const ImageStore&) = delete;

  // Creates the store for a picture; answers an error code (6 no memory and no spill file
  // allowed, 16 memory-only and no memory, 4 aborted while the spill file was made).
  int Create(uint32_t width, int32_t depth, uint32_t bits, unsigned options = 0);
  // Releases memory or closes the spill file; safe when nothing is held.
  void Free();

  bool IsHeld() const { return memory_ != nullptr || spillFile_ >= 0; }
  // Bytes of a row that hold pixels; the rest of `bytesPerLine` is rounding, always zero.
  size_t PackedBytes() const { return packedBytes_; }
  bool InMemory() const { return memory_ != nullptr; }
  Host& host() const { return *host_; }

  // Store or fetch row r (0 = top); the Quiet forms skip the abort check. Rows outside the
  // picture are ignored. Answer the abort flag.
  int PutRow(std::span<const uint8_t> row, int32_t r);
  int PutRowQuiet(std::span<const uint8_t> row, int32_t r);
  int GetRow(std::span<uint8_t> row, int32_t r);
  int GetRowQuiet(std::span<uint8_t> row, int32_t r);

  // The abort check: takes one user event from the host; a click beeps and sets the flag, which
  // stays set until ClearAbort(). Answers the flag.
  int AbortCheck();
  void ClearAbort() {
    abortFlag = 0;
    failure_ = 0;
  }
  // The code of a spill file that could not be written (11, a full disk) or read back (3), or
  // 0. Such a failure also sets the abort flag, so the reader or writer in hand stops at once.
  int Failure() const { return failure_; }
  // `code` as the caller should report it: an abort that a spill failure caused is that failure.
  int Explain(int code) const { return code == 4 && failure_ ? failure_ : code; }
  // Reports total × 65536 + rowsDone (as total and done) and advances rowsDone.
  void ReportRowProgress(uint64_t total);

  // Direct access to row r of a memory store (null for spill stores or rows outside).
  uint8_t* MemoryRow(int32_t r);
  const uint8_t* MemoryRow(int32_t r) const;

  // Picture geometry and the operation's shared state, named as the engine's parts know them.
  uint32_t width = 0;
  int32_t depth = 0;
  uint32_t sourceBits = 0;
  uint32_t storageBits = 0;
  size_t bytesPerLine = 0;
  int32_t rowCount = 0;
  int abortFlag = 0;
  uint64_t rowsDone = 0;
  int zoom = 1;                       // enlarging sink factor, 1..5
  std::vector<uint32_t> columnMap;    // scaling source tables
  std::vector<uint32_t> rowMap;
  uint32_t cropLeft = 0, cropTop = 0, cropWidth = 0;  // cropping source rectangle

 private:
  struct FreeDeleter {
    void operator()(uint8_t* p) const { std::free(p); }
  };
  int CreateSpill();
  bool SlotOffset(int32_t r, uint64_t& offset) const;

  void Fail(int code);

  Host* host_;
  size_t packedBytes_ = 0;  // bytes of a row before the rounding to 4
  int failure_ = 0;
  std::unique_ptr<uint8_t, FreeDeleter> memory_;
  int spillFile_ = -1;
  std::vector<uint8_t> spillRow_;
};

}  // namespace pxm
