#include "process/reverse.h"

#include <cstring>
#include <vector>

#include "core/error_codes.h"

namespace pxm {
namespace {

void InvertBytes(uint8_t* row, size_t n) {
  size_t i = 0;
  // Eight bytes at a time; the compiler widens this further where it can.
  for (; i + 8 <= n; i += 8) {
    uint64_t word;
    std::memcpy(&word, row + i, 8);
    word = ~word;
    std::memcpy(row + i, &word, 8);
  }
  for (; i < n; ++i) row[i] = static_cast<uint8_t>(~row[i]);
}

int InvertRows(ImageStore& store) {
  if (store.InMemory()) {
    for (int32_t r = 0; r < store.depth; ++r) {
      InvertBytes(store.MemoryRow(r), store.PackedBytes());
      if (store.AbortCheck()) return kCancelled;
    }
    return kOk;
  }
  std::vector<uint8_t> row(store.bytesPerLine);
  for (int32_t r = 0; r < store.depth; ++r) {
    int flag = store.GetRow(row, r);
    InvertBytes(row.data(), store.PackedBytes());
    store.PutRowQuiet(row, r);
    if (flag) return kCancelled;
  }
  return kOk;
}

}  // namespace

int ReverseStore(ImageStore& store, ImageInfo& info) {
  if (info.bits == 1 || info.bits > 8) return InvertRows(store);
  const size_t entries = size_t{1} << info.bits;
  for (size_t i = 0; i < entries; ++i) {
    Rgb& c = info.palette[i];
    c = Rgb{static_cast<uint8_t>(~c.red), static_cast<uint8_t>(~c.green),
            static_cast<uint8_t>(~c.blue)};
  }
  return kOk;
}

}  // namespace pxm
