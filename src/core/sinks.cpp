#include "core/sinks.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "core/pixels.h"
#include "core/row_format.h"

namespace pxm {
namespace {

// A scratch row shared by the calls of one sink.
std::shared_ptr<std::vector<uint8_t>> Scratch(size_t n) {
  return std::make_shared<std::vector<uint8_t>>(n, 0);
}

// The scratch row grown to the store's current row: a command binds its sink once and creates
// the store anew, possibly larger, for every file.
uint8_t* Fit(std::vector<uint8_t>& scratch, size_t bytes) {
  if (scratch.size() < bytes) scratch.resize(bytes, 0);
  return scratch.data();
}

}  // namespace

LineSink ProgressRowSink(ImageStore& store, uint64_t total) {
  return [&store, total](std::span<uint8_t> row, int32_t r) {
    store.ReportRowProgress(total);
    return store.PutRow(row, r);
  };
}

LineSink PlainRowSink(ImageStore& store) {
  return [&store](std::span<uint8_t> row, int32_t r) { return store.PutRow(row, r); };
}

LineSink QuietRowSink(ImageStore& store) {
  return [&store](std::span<uint8_t> row, int32_t r) { return store.PutRowQuiet(row, r); };
}

LevelTable ViewGammaTable(int gamma) {
  return PowerCurve(gamma > 0 ? 100.0 / gamma : 1.0);
}

LineSink SwappedRgbSink(ImageStore& store, uint64_t total, uint32_t sourceBits, int viewGamma) {
  bool useGamma = sourceBits > 1 && viewGamma != 100;
  auto table = std::make_shared<LevelTable>(ViewGammaTable(viewGamma));
  return [&store, total, useGamma, table](std::span<uint8_t> row, int32_t r) {
    size_t pixels = std::min<size_t>(store.width, row.size() / 3);
    SwapRedBlue(row.data(), pixels);
    if (useGamma) {
      size_t n = std::min(row.size(), store.bytesPerLine);
      for (size_t i = 0; i < n; ++i) row[i] = (*table)[row[i]];
    }
    store.ReportRowProgress(total);
    return store.PutRow(row, r);
  };
}

LineSink BytePerPixelSink(ImageStore& store, uint64_t total, uint32_t sourceBits) {
  auto scratch = Scratch(store.bytesPerLine);
  uint32_t packing = StorageBits(sourceBits);
  return [&store, total, packing, scratch](std::span<uint8_t> row, int32_t r) {
    store.ReportRowProgress(total);
    if (packing != 4) return store.PutRow(row, r);  // 1, 8 and 24 bits are already in shape
    uint8_t* out = Fit(*scratch, store.bytesPerLine);
    uint32_t pixels = static_cast<uint32_t>(std::min<uint64_t>(
        {store.width, row.size() * 2, store.bytesPerLine}));
    for (uint32_t x = 0; x < pixels; ++x) out[x] = static_cast<uint8_t>(PixelAt(row.data(), x, 4));
    return store.PutRow(*scratch, r);
  };
}

LineSink ExpandToRgbSink(ImageStore& store, uint64_t total, uint32_t sourceBits,
                         const Palette& palette) {
  auto scratch = Scratch(store.bytesPerLine);
  uint32_t packing = StorageBits(sourceBits);
  return [&store, total, packing, &palette, scratch](std::span<uint8_t> row, int32_t r) {
    store.ReportRowProgress(total);
    uint8_t* slot = store.MemoryRow(r);
    uint8_t* out = slot ? slot : Fit(*scratch, store.bytesPerLine);
    size_t bytes = std::min(store.bytesPerLine, 3 * static_cast<size_t>(store.width));
    if (packing == 4 || packing == 8) {
      uint32_t pixels = static_cast<uint32_t>(
          std::min<uint64_t>(bytes / 3, packing == 4 ? row.size() * 2 : row.size()));
      for (uint32_t x = 0; x < pixels; ++x) {
        const Rgb& c = palette[PixelAt(row.data(), x, packing)];
        out[3 * x] = c.red;
        out[3 * x + 1] = c.green;
        out[3 * x + 2] = c.blue;
      }
    } else {
      std::memcpy(out, row.data(), std::min(bytes, row.size()));
    }
    if (!slot) store.PutRowQuiet(*scratch, r);
    return store.AbortCheck();
  };
}

LineSink EnlargingSink(ImageStore& store, uint64_t total, uint32_t sourceBits) {
  auto scratch = Scratch(store.bytesPerLine);
  uint32_t packing = StorageBits(sourceBits);
  return [&store, total, packing, scratch](std::span<uint8_t> row, int32_t r) {
    store.ReportRowProgress(total);
    const uint32_t zoom = static_cast<uint32_t>(std::max(1, store.zoom));
    const uint32_t inWidth = store.width / zoom;
    uint8_t* out = Fit(*scratch, store.bytesPerLine);
    std::fill(scratch->begin(), scratch->end(), 0);
    const uint32_t outBits = packing == 4 ? 8 : packing;
    const uint64_t room = static_cast<uint64_t>(store.bytesPerLine) * 8 / outBits / zoom;
    uint32_t rowPixels = static_cast<uint32_t>(
        std::min<uint64_t>({inWidth, row.size() * 8 / packing, room}));
    for (uint32_t x = 0; x < rowPixels; ++x) {
      uint32_t v = PixelAt(row.data(), x, packing);
      for (uint32_t k = 0; k < zoom; ++k) SetPixelAt(out, x * zoom + k, outBits, v);
    }
    int flag = 0;
    for (uint32_t k = 0; k < zoom; ++k)
      flag = store.PutRow(*scratch, static_cast<int32_t>(static_cast<uint32_t>(r) * zoom + k));
    return flag;
  };
}

}  // namespace pxm
