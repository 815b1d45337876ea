#include "process/quantize.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>
#include <vector>

#include "core/error_codes.h"
#include "core/row_format.h"

namespace pxm {
namespace {

constexpr size_t kCells = 4096;

// A histogram cell's coordinate (0..15) on an axis: red, green, blue.
constexpr int Coordinate(uint16_t cell, int axis) {
  return axis == 0 ? cell >> 8 : axis == 1 ? (cell >> 4) & 15 : cell & 15;
}

// The distinct colours seen so far, up to the number wanted. Looking a colour up is a hash probe,
// since pictures with few colours ask for it at every pixel.
class ExactColours {
 public:
  explicit ExactColours(int wanted) : wanted_(static_cast<size_t>(wanted)) {
    slots_.fill(kEmpty);
  }

  // One pixel. Once the list holds as many colours as wanted, the next pixel overflows it, even
  // one of a colour it holds: a picture with exactly the wanted number of colours therefore
  // usually goes to median cut.
  void See(uint32_t colour) {
    if (overflowed_) return;
    if (colours_.size() >= wanted_) {
      overflowed_ = true;
      return;
    }
    if (colour == last_) return;
    last_ = colour;
    size_t slot = (colour * 2654435761u) >> 22;  // 10 bits
    while (slots_[slot] != kEmpty) {
      if (slots_[slot] == colour) return;
      slot = (slot + 1) & (slots_.size() - 1);
    }
    slots_[slot] = colour;
    colours_.push_back(colour);
  }

  bool overflowed() const { return overflowed_; }
  const std::vector<uint32_t>& colours() const { return colours_; }

 private:
  static constexpr uint32_t kEmpty = 0xFFFFFFFFu;
  size_t wanted_;
  bool overflowed_ = false;
  uint32_t last_ = kEmpty;
  std::array<uint32_t, 1024> slots_;
  std::vector<uint32_t> colours_;
};

struct Box {
  int lower[3] = {0, 0, 0};        // 0..255 scale
  int extent[3] = {255, 255, 255};
  size_t first = 0;                // its cells: cells[first, first + cellCount)
  size_t cellCount = 0;
  uint64_t pixels = 0;
};

// Quicksort with the middle element as pivot, insertion sort below 8 elements. Cells with equal
// coordinates may change places, and where they land decides which box they join.
void SortCells(uint16_t* a, int64_t lo, int64_t hi, int axis) {
  while (hi - lo + 1 >= 8) {
    const int pivot = Coordinate(a[(lo + hi) / 2], axis);
    int64_t i = lo, j = hi;
    while (i <= j) {
      while (Coordinate(a[i], axis) < pivot) ++i;
      while (Coordinate(a[j], axis) > pivot) --j;
      if (i <= j) std::swap(a[i++], a[j--]);
    }
    // The smaller side first by recursion keeps the stack shallow.
    if (j - lo < hi - i) {
      SortCells(a, lo, j, axis);
      lo = i;
    } else {
      SortCells(a, i, hi, axis);
      hi = j;
    }
  }
  for (int64_t k = lo + 1; k <= hi; ++k) {
    uint16_t v = a[k];
    int64_t m = k - 1;
    while (m >= lo && Coordinate(a[m], axis) > Coordinate(v, axis)) {
      a[m + 1] = a[m];
      --m;
    }
    a[m + 1] = v;
  }
}

class MedianCut {
 public:
  MedianCut(const std::vector<uint32_t>& histogram, uint64_t pixels) : histogram_(histogram) {
    for (size_t i = 0; i < kCells; ++i)
      if (histogram[i]) cells_.push_back(static_cast<uint16_t>(i));
    Box first;
    first.cellCount = cells_.size();
    first.pixels = pixels;
    boxes_.push_back(first);
  }

  void Cut(size_t wanted) {
    while (boxes_.size() < wanted) {
      int chosen = -1, axis = 0, largest = -1;
      for (size_t b = 0; b < boxes_.size(); ++b) {
        if (boxes_[b].cellCount < 2) continue;
        for (int a = 0; a < 3; ++a)
          if (boxes_[b].extent[a] > largest) {
            largest = boxes_[b].extent[a];
            chosen = static_cast<int>(b);
            axis = a;
          }
      }
      if (chosen < 0) return;
      Split(static_cast<size_t>(chosen), axis);
    }
  }

  // Box colours: the plain mean of the cells' coordinates, unweighted by their pixel counts.
  int Colours(Palette& palette) const {
    for (size_t b = 0; b < boxes_.size(); ++b) {
      const Box& box = boxes_[b];
      if (box.cellCount == 0) continue;
      uint32_t sum[3] = {0, 0, 0};
      for (size_t i = box.first; i < box.first + box.cellCount; ++i)
        for (int a = 0; a < 3; ++a) sum[a] += static_cast<uint32_t>(Coordinate(cells_[i], a));
      const auto n = static_cast<uint32_t>(box.cellCount);
      palette[b] = Rgb{static_cast<uint8_t>(sum[0] * 16 / n), static_cast<uint8_t>(sum[1] * 16 / n),
                       static_cast<uint8_t>(sum[2] * 16 / n)};
    }
    return static_cast<int>(boxes_.size());
  }

 private:
  void Split(size_t b, int axis) {
    Box& old = boxes_[b];
    uint16_t* cells = cells_.data() + old.first;
    const auto n = static_cast<int64_t>(old.cellCount);
    SortCells(cells, 0, n - 1, axis);

    // The old box keeps the cells before the one that takes the running remainder below zero.
    int64_t remainder = static_cast<int64_t>(old.pixels / 2);
    int64_t kept = 0;
    uint64_t keptPixels = 0;
    for (; kept < n; ++kept) {
      const uint32_t count = histogram_[cells[kept]];
      remainder -= count;
      if (remainder < 0) break;
      keptPixels += count;
    }
    if (kept == 0) keptPixels = histogram_[cells[kept++]];
    if (kept == n) keptPixels -= histogram_[cells[--kept]];

    Box fresh = old;
    fresh.first = old.first + static_cast<size_t>(kept);
    fresh.cellCount = static_cast<size_t>(n - kept);
    fresh.pixels = old.pixels - keptPixels;
    // Bounds in 8-bit arithmetic, as the boxes have always been kept.
    fresh.lower[axis] = Coordinate(cells[kept], axis) * 16;
    fresh.extent[axis] = (old.lower[axis] + old.extent[axis] - fresh.lower[axis]) & 0xFF;
    old.extent[axis] = (Coordinate(cells[kept - 1], axis) * 16 - old.lower[axis]) & 0xFF;
    old.cellCount = static_cast<size_t>(kept);
    old.pixels = keptPixels;
    boxes_.push_back(fresh);
  }

  const std::vector<uint32_t>& histogram_;
  std::vector<uint16_t> cells_;
  std::vector<Box> boxes_;
};

}  // namespace

int QuantizeImage(uint32_t width, int32_t depth, int& count, Palette& palette,
                  const LineSource& getLine) {
  const int wanted = std::clamp(count, 1, 256);
  try {
    std::vector<uint32_t> histogram(kCells, 0);
    std::vector<uint8_t> row(static_cast<size_t>(StoreBytesPerLine(width, 24)), 0);
    ExactColours exact(wanted);
    for (int32_t y = 0; y < depth; ++y) {
      if (getLine(row, y)) return kCancelled;
      const uint8_t* p = row.data();
      for (uint32_t x = 0; x < width; ++x, p += 3) {
        ++histogram[(static_cast<size_t>(p[0] >> 4) << 8) | static_cast<size_t>(p[1] & 0xF0) |
                    (p[2] >> 4)];
        exact.See((static_cast<uint32_t>(p[0]) << 16) | (static_cast<uint32_t>(p[1]) << 8) | p[2]);
      }
    }

    for (int i = 0; i < wanted; ++i) palette[static_cast<size_t>(i)] = Rgb{};
    if (!exact.overflowed()) {
      const auto& colours = exact.colours();
      for (size_t i = 0; i < colours.size(); ++i)
        palette[i] = Rgb{static_cast<uint8_t>(colours[i] >> 16), static_cast<uint8_t>(colours[i] >> 8),
                         static_cast<uint8_t>(colours[i])};
      count = static_cast<int>(colours.size());
      return kOk;
    }
    MedianCut cut(histogram, static_cast<uint64_t>(width) * static_cast<uint64_t>(depth));
    cut.Cut(static_cast<size_t>(wanted));
    count = cut.Colours(palette);
    return kOk;
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

}  // namespace pxm
