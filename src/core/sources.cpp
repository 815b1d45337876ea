#include "core/sources.h"

#include <algorithm>
#include <cstddef>
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

// Destination pixel x copies source pixel map[x] (held at `last`). Rows of a scaled picture are
// built once per destination row, so the packing is settled before each row's pixel loop, never
// inside it. `out` is cleared beforehand for packings below a byte.
void ScaleRow(uint8_t* out, const uint8_t* in, const uint32_t* map, uint32_t pixels,
              uint32_t last, uint32_t inBits, uint32_t outBits) {
  if (inBits == 24 && outBits == 24) {
    for (uint32_t x = 0; x < pixels; ++x) {
      const uint8_t* p = in + 3 * size_t{std::min(map[x], last)};
      out[3 * size_t{x}] = p[0];
      out[3 * size_t{x} + 1] = p[1];
      out[3 * size_t{x} + 2] = p[2];
    }
  } else if (inBits == 8 && outBits == 8) {
    for (uint32_t x = 0; x < pixels; ++x) out[x] = in[std::min(map[x], last)];
  } else if (inBits == 8 && outBits == 4) {
    // 2..4-bit pictures are held a byte per pixel; only the low nibble is the pixel.
    for (uint32_t x = 0; x + 1 < pixels; x += 2)
      out[x >> 1] = static_cast<uint8_t>((in[std::min(map[x], last)] & 0x0F) << 4 |
                                         (in[std::min(map[x + 1], last)] & 0x0F));
    if (pixels & 1)
      out[pixels >> 1] = static_cast<uint8_t>((in[std::min(map[pixels - 1], last)] & 0x0F) << 4);
  } else if (inBits == 1 && outBits == 1) {
    for (uint32_t x = 0; x < pixels; ++x) {
      uint32_t sx = std::min(map[x], last);
      if ((in[sx >> 3] >> (7 - (sx & 7))) & 1) out[x >> 3] |= static_cast<uint8_t>(0x80u >> (x & 7));
    }
  } else {
    for (uint32_t x = 0; x < pixels; ++x) {
      uint32_t v = PixelAt(in, std::min(map[x], last), inBits);
      if (outBits == 4) v &= 0x0Fu;
      SetPixelAt(out, x, outBits, v);
    }
  }
}

// Gathers `count` pixels of one column into a row: the first from `first` (the start of a stored
// row), each next one `stride` bytes further on.
void GatherColumn(uint8_t* out, const uint8_t* first, ptrdiff_t stride, uint32_t column,
                  uint32_t count, uint32_t bits) {
  switch (bits) {
    case 24: {
      const uint8_t* p = first + 3 * size_t{column};
      for (uint32_t x = 0; x < count; ++x, p += stride) {
        out[3 * size_t{x}] = p[0];
        out[3 * size_t{x} + 1] = p[1];
        out[3 * size_t{x} + 2] = p[2];
      }
      break;
    }
    case 8: {
      const uint8_t* p = first + column;
      for (uint32_t x = 0; x < count; ++x, p += stride) out[x] = *p;
      break;
    }
    default: {
      const uint8_t* p = first;
      for (uint32_t x = 0; x < count; ++x, p += stride) SetPixelAt(out, x, bits, PixelAt(p, column, bits));
      break;
    }
  }
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
    const int32_t sourceRow = static_cast<int32_t>(store.rowMap[static_cast<size_t>(r)]);
    const uint8_t* in = store.MemoryRow(sourceRow);
    int flag;
    if (in) {
      flag = store.AbortCheck();
    } else {
      std::span<uint8_t> stored = Fit(*source, store.bytesPerLine);
      flag = store.GetRow(stored, sourceRow);
      in = stored.data();
    }
    uint32_t pixels = std::min<uint32_t>(static_cast<uint32_t>(store.columnMap.size()),
                                         PixelsIn(row.size(), outPacking));
    if (outPacking == 4 || outPacking == 1) std::fill(row.begin(), row.end(), 0);
    ScaleRow(row.data(), in, store.columnMap.data(), pixels, store.width ? store.width - 1 : 0,
             store.storageBits, outPacking);
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
    const uint8_t* top = store.MemoryRow(0);
    if (top) {
      uint32_t pixels = std::min<uint32_t>(static_cast<uint32_t>(store.depth),
                                           PixelsIn(row.size(), store.storageBits));
      // The store is bottom-up: going down the picture goes back through memory.
      GatherColumn(row.data(), top, -static_cast<ptrdiff_t>(store.bytesPerLine),
                   store.width - 1 - static_cast<uint32_t>(r), pixels, store.storageBits);
    }
    return store.AbortCheck();
  };
}

LineSource ColumnSourceClockwise(ImageStore& store) {
  return [&store](std::span<uint8_t> row, int32_t r) {
    if (r < 0 || static_cast<uint32_t>(r) >= store.width) return store.AbortCheck();
    const uint8_t* bottom = store.MemoryRow(store.depth - 1);
    if (bottom) {
      uint32_t pixels = std::min<uint32_t>(static_cast<uint32_t>(store.depth),
                                           PixelsIn(row.size(), store.storageBits));
      GatherColumn(row.data(), bottom, static_cast<ptrdiff_t>(store.bytesPerLine),
                   static_cast<uint32_t>(r), pixels, store.storageBits);
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
