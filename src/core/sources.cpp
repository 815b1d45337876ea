#include "core/sources.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "core/pixels.h"
#include "core/row_format.h"

namespace pxm {
namespace {

std::shared_ptr<std::vector<uint8_t>> Scratch(size_t n) {
  return std::make_shared<std::vector<uint8_t>>(n, 0);
}

// The scratch row grown to the store's current row: a source may be bound before the store of
// the file it reads is created.
std::span<uint8_t> Fit(std::vector<uint8_t>& scratch, size_t bytes) {
  if (scratch.size() < bytes) scratch.resize(bytes, 0);
  return std::span<uint8_t>(scratch.data(), bytes);
}

// Pixels a row buffer of `size` bytes can hold at `bits` per pixel.
uint32_t PixelsIn(size_t size, uint32_t storageBits) {
  uint64_t n = static_cast<uint64_t>(size) * 8 / storageBits;
  return static_cast<uint32_t>(std::min<uint64_t>(n, UINT32_MAX));
}

}  // namespace

LineSource ProgressRowSource(ImageStore& store, uint64_t total) {
  return [&store, total](std::span<uint8_t> row, int32_t r) {
    store.ReportRowProgress(total);
    return store.GetRow(row, r);
  };
}

LineSource PlainRowSource(ImageStore& store) {
  return [&store](std::span<uint8_t> row, int32_t r) { return store.GetRowQuiet(row, r); };
}

LineSource AbortableRowSource(ImageStore& store) {
  return [&store](std::span<uint8_t> row, int32_t r) { return store.GetRow(row, r); };
}

LineSource DibSource(ImageStore& store) {
  return [&store](std::span<uint8_t> row, int32_t r) {
    const uint8_t* slot = store.MemoryRow(r);
    if (!slot) return 0;
    size_t n = std::min(row.size(), store.bytesPerLine);
    std::memcpy(row.data(), slot, n);
    if (store.storageBits == 24) {
      size_t pixels = std::min<size_t>(store.width, n / 3);
      SwapRedBlue(row.data(), pixels);
    }
    return 0;
  };
}

LineSource ScalingSource(ImageStore& store, uint32_t outputBits) {
  auto source = Scratch(store.bytesPerLine);
  uint32_t outPacking = StorageBits(outputBits);
  return [&store, source, outPacking](std::span<uint8_t> row, int32_t r) {
    if (r < 0 || static_cast<size_t>(r) >= store.rowMap.size()) return store.abortFlag;
    std::span<uint8_t> stored = Fit(*source, store.bytesPerLine);
    int flag = store.GetRow(stored, static_cast<int32_t>(store.rowMap[static_cast<size_t>(r)]));
    const uint8_t* in = stored.data();
    uint32_t pixels = std::min<uint32_t>(static_cast<uint32_t>(store.columnMap.size()),
                                         PixelsIn(row.size(), outPacking));
    if (outPacking == 4) std::fill(row.begin(), row.end(), 0);
    for (uint32_t x = 0; x < pixels; ++x) {
      uint32_t sx = std::min(store.columnMap[x], store.width ? store.width - 1 : 0);
      uint32_t v = PixelAt(in, sx, store.storageBits);
      if (outPacking == 4) v &= 0x0Fu;
      SetPixelAt(row.data(), x, outPacking, v);
    }
    return flag;
  };
}

LineSource CroppingSource(ImageStore& store) {
  auto source = Scratch(store.bytesPerLine);
  return [&store, source](std::span<uint8_t> row, int32_t r) {
    std::span<uint8_t> stored = Fit(*source, store.bytesPerLine);
    int flag = store.GetRow(stored, static_cast<int32_t>(store.cropTop) + r);
    uint32_t left = std::min(store.cropLeft, store.width);
    uint32_t count = std::min({store.cropWidth, store.width - left,
                               PixelsIn(row.size(), store.storageBits)});
    CopyPixels(row.data(), stored.data(), left, count, store.storageBits);
    return flag;
  };
}

LineSource ColumnSourceAnticlockwise(ImageStore& store) {
  return [&store](std::span<uint8_t> row, int32_t r) {
    // Destination rows run along the source's columns: W - 1 - r, read top to bottom.
    if (r < 0 || static_cast<uint32_t>(r) >= store.width) return store.AbortCheck();
    uint32_t column = store.width - 1 - static_cast<uint32_t>(r);
    uint32_t pixels = std::min<uint32_t>(static_cast<uint32_t>(store.depth),
                                         PixelsIn(row.size(), store.storageBits));
    for (uint32_t x = 0; x < pixels; ++x) {
      const uint8_t* src = store.MemoryRow(static_cast<int32_t>(x));
      if (src) SetPixelAt(row.data(), x, store.storageBits, PixelAt(src, column, store.storageBits));
    }
    return store.AbortCheck();
  };
}

LineSource ColumnSourceClockwise(ImageStore& store) {
  return [&store](std::span<uint8_t> row, int32_t r) {
    if (r < 0 || static_cast<uint32_t>(r) >= store.width) return store.AbortCheck();
    uint32_t column = static_cast<uint32_t>(r);
    uint32_t pixels = std::min<uint32_t>(static_cast<uint32_t>(store.depth),
                                         PixelsIn(row.size(), store.storageBits));
    for (uint32_t x = 0; x < pixels; ++x) {
      const uint8_t* src = store.MemoryRow(store.depth - 1 - static_cast<int32_t>(x));
      if (src) SetPixelAt(row.data(), x, store.storageBits, PixelAt(src, column, store.storageBits));
    }
    return store.AbortCheck();
  };
}

LineSource FlipSource(ImageStore& store) {
  return [&store](std::span<uint8_t> row, int32_t r) {
    int flag = store.GetRow(row, store.depth - 1 - r);
    ReversePixels(row.data(), std::min(store.width, PixelsIn(row.size(), store.storageBits)),
                  store.storageBits);
    return flag;
  };
}

LineSource MirrorSource(ImageStore& store) {
  return [&store](std::span<uint8_t> row, int32_t r) {
    int flag = store.GetRow(row, r);
    ReversePixels(row.data(), std::min(store.width, PixelsIn(row.size(), store.storageBits)),
                  store.storageBits);
    return flag;
  };
}

LineSource UpsideDownSource(ImageStore& store) {
  return [&store](std::span<uint8_t> row, int32_t r) {
    return store.GetRow(row, store.depth - 1 - r);
  };
}

}  // namespace pxm
