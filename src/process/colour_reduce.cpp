#include "process/colour_reduce.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <span>
#include <vector>

#include "core/error_codes.h"
#include "core/fixed_palette.h"
#include "core/row_format.h"
#include "core/strings.h"
#include "process/bayer.h"
#include "process/colour_map.h"
#include "process/effects_word.h"
#include "process/palette_choice.h"
#include "process/quantize.h"
#include "process/stage.h"

namespace pxm {
namespace {

// How a colour finds its index.
enum class Lookup { kMap, kOrthogonal, kOrdered };
// How the error of a pixel travels.
enum class Kernel { kNone, kFloyd, kBurkes, kStucki };

// Error rows hold three signed accumulators per pixel with two pixels of margin on either side,
// where shares past the row's ends land unread.
constexpr int64_t kMargin = 2;

struct Mapping {
  uint32_t width = 0;
  uint32_t bits = 8;
  const Palette* palette = nullptr;
  const InverseColourMap* map = nullptr;
  int16_t* rows[3] = {nullptr, nullptr, nullptr};  // this row's accumulators, then the rows below
};

template <Lookup L>
inline uint8_t Find(const Mapping& m, int r, int g, int b, int64_t x, int32_t y) {
  if constexpr (L == Lookup::kOrthogonal) {
    return ThumbPaletteIndex(r, g, b);
  } else if constexpr (L == Lookup::kOrdered) {
    // A channel is on where the colour reaches the middle of its matrix cell's range, so that 0
    // stays black and 255 lights every cell.
    const int t = 4 * kBayerMatrix[x & 7][y & 7] + 2;
    return static_cast<uint8_t>((r >= t ? 1 : 0) | (g >= t ? 2 : 0) | (b >= t ? 4 : 0));
  } else {
    return (*m.map)[InverseMapIndex(r, g, b)];
  }
}

inline void Store(uint8_t* out, int64_t x, uint32_t bits, uint8_t index) {
  if (bits >= 5) {
    out[x] = index;
  } else {
    uint8_t& byte = out[x >> 1];
    byte = (x & 1) ? static_cast<uint8_t>((byte & 0xF0) | (index & 0x0F))
                   : static_cast<uint8_t>((byte & 0x0F) | (index << 4));
  }
}

inline int16_t* At(int16_t* row, int64_t x) { return row + (x + kMargin) * 3; }

inline int Clamp255(int v) { return v < 0 ? 0 : v > 255 ? 255 : v; }

// Deep palettes: arithmetic shifts (rounding toward minus infinity), nothing limited until the
// pixel is read.
inline void AddShifted(int16_t* t, const int* e, int weight) {
  for (int c = 0; c < 3; ++c) t[c] = static_cast<int16_t>(t[c] + ((e[c] * weight) >> 4));
}

// Shallow palettes: truncation toward zero; a sum whose largest channel passes 255 loses that
// excess on all three channels, so its hue survives.
inline void AddKeepingHue(int16_t* t, const int* e, int weight) {
  for (int c = 0; c < 3; ++c) t[c] = static_cast<int16_t>(t[c] + e[c] * weight / 16);
  const int high = std::max({t[0], t[1], t[2]});
  if (high > 255)
    for (int c = 0; c < 3; ++c) t[c] = static_cast<int16_t>(t[c] - (high - 255));
}

// Burkes and Stucki: each share clamped into 0..255 as it is added.
template <int Divisor>
inline void AddClamped(int16_t* t, const int* e, int weight) {
  for (int c = 0; c < 3; ++c) t[c] = static_cast<int16_t>(Clamp255(t[c] + e[c] * weight / Divisor));
}

template <Kernel K, bool kShallow, bool kRightToLeft>
inline void Spread(const Mapping& m, int64_t x, const int* e) {
  const int64_t w = m.width;
  int16_t* here = m.rows[0];
  int16_t* next = m.rows[1];
  if constexpr (K == Kernel::kFloyd && !kShallow) {
    AddShifted(At(here, x + 1), e, 7);
    if (x - 1 >= 1) AddShifted(At(next, x - 1), e, 3);
    AddShifted(At(next, x), e, 5);
    AddShifted(At(next, x + 1), e, 1);
  } else if constexpr (K == Kernel::kFloyd && kRightToLeft) {
    AddKeepingHue(At(here, x - 1), e, 7);
    AddKeepingHue(At(next, x + 1), e, 3);
    AddKeepingHue(At(next, x), e, 5);
    AddKeepingHue(At(next, x - 1), e, 1);
  } else if constexpr (K == Kernel::kFloyd) {
    AddKeepingHue(At(here, x + 1), e, 7);
    if (x - 1 >= 1) AddKeepingHue(At(next, x - 1), e, 3);
    AddKeepingHue(At(next, x), e, 5);
    AddKeepingHue(At(next, x + 1), e, 1);
  } else {
    // Never mirrored: on right-to-left rows the shares ahead fall on pixels already mapped.
    constexpr int kDivisor = K == Kernel::kBurkes ? 32 : 42;
    constexpr int kAhead[2] = {8, 4};  // the nearer pixel takes 8 in both kernels here
    constexpr int kBelow[2][5] = {{2, 4, 8, 4, 2}, {1, 2, 4, 2, 1}};
    constexpr int kRowsBelow = K == Kernel::kBurkes ? 1 : 2;
    for (int k = 1; k <= 2; ++k)
      if (x + k < w) AddClamped<kDivisor>(At(here, x + k), e, kAhead[k - 1]);
    for (int dy = 0; dy < kRowsBelow; ++dy)
      for (int i = 0; i < 5; ++i) {
        const int64_t t = x + i - 2;
        if ((i < 2 && t < 1) || (i > 2 && t >= w)) continue;
        AddClamped<kDivisor>(At(m.rows[dy + 1], t), e, kBelow[dy][i]);
      }
  }
}

template <Lookup L, Kernel K, bool kShallow, bool kRightToLeft>
void MapPixels(const Mapping& m, uint8_t* out, int32_t y) {
  const int64_t w = m.width;
  if (w == 0) return;
  // Right-to-left rows stop after column 1: column 0 keeps what the output row held.
  const int64_t first = kRightToLeft ? w - 1 : 0;
  const int64_t end = kRightToLeft ? 0 : w;
  const int64_t step = kRightToLeft ? -1 : 1;
  for (int64_t x = first; x != end; x += step) {
    const int16_t* a = At(m.rows[0], x);
    const int r = Clamp255(a[0]), g = Clamp255(a[1]), b = Clamp255(a[2]);
    const uint8_t index = Find<L>(m, r, g, b, x, y);
    Store(out, x, m.bits, index);
    const Rgb& c = (*m.palette)[index];
    const int e[3] = {r - c.red, g - c.green, b - c.blue};
    Spread<K, kShallow, kRightToLeft>(m, x, e);
  }
}

// Without diffusion the row is looked up straight from its bytes.
template <Lookup L>
void MapRow(Mapping& m, const uint8_t* rgb, uint8_t* out, int32_t y) {
  for (int64_t x = 0; x < static_cast<int64_t>(m.width); ++x, rgb += 3)
    Store(out, x, m.bits, Find<L>(m, rgb[0], rgb[1], rgb[2], x, y));
}

template <Lookup L, Kernel K, bool kShallow>
void DiffuseRow(Mapping& m, const uint8_t* rgb, uint8_t* out, int32_t y) {
  int16_t* here = At(m.rows[0], 0);
  for (size_t i = 0; i < 3 * static_cast<size_t>(m.width); ++i)
    here[i] = static_cast<int16_t>(here[i] + rgb[i]);
  // Shallow palettes scan even rows right to left.
  if (kShallow && y % 2 == 0) MapPixels<L, K, kShallow, true>(m, out, y);
  else MapPixels<L, K, kShallow, false>(m, out, y);
}

using RowFn = void (*)(Mapping&, const uint8_t*, uint8_t*, int32_t);

template <Lookup L, Kernel K>
RowFn ChooseDepth(bool shallow) {
  if constexpr (K == Kernel::kNone) return MapRow<L>;
  else return shallow ? DiffuseRow<L, K, true> : DiffuseRow<L, K, false>;
}

template <Lookup L>
RowFn ChooseKernel(Kernel k, bool shallow) {
  switch (k) {
    case Kernel::kFloyd: return ChooseDepth<L, Kernel::kFloyd>(shallow);
    case Kernel::kBurkes: return ChooseDepth<L, Kernel::kBurkes>(shallow);
    case Kernel::kStucki: return ChooseDepth<L, Kernel::kStucki>(shallow);
    default: return ChooseDepth<L, Kernel::kNone>(shallow);
  }
}

RowFn ChooseRow(Lookup l, Kernel k, bool shallow) {
  switch (l) {
    case Lookup::kOrthogonal: return ChooseKernel<Lookup::kOrthogonal>(k, shallow);
    case Lookup::kOrdered: return ChooseKernel<Lookup::kOrdered>(Kernel::kNone, shallow);
    default: return ChooseKernel<Lookup::kMap>(k, shallow);
  }
}

Kernel KernelOf(uint32_t method) {
  switch (method) {
    case kMapFloyd: return Kernel::kFloyd;
    case kMapBurkes: return Kernel::kBurkes;
    case kMapStucki: return Kernel::kStucki;
    default: return Kernel::kNone;  // 1 and anything the dialog never sets: plain remapping
  }
}

bool IsQuantized(uint32_t choice) {
  return (choice >= kPaletteQuantized256 && choice <= kPaletteQuantized4) ||
         choice == kPaletteQuantized240;
}

class Reducer {
 public:
  Reducer(ImageInfo& image, uint32_t effects, std::string_view name)
      : image_(image),
        choice_(PaletteChoiceOf(effects)),
        kernel_(KernelOf(MethodOf(effects))),
        bits_(PaletteChoiceBits(choice_)),
        stage_(image, name) {}

  int Run() {
    if (bits_ == 0) return kUnsupportedFunction;
    const uint32_t width = image_.width;
    const int32_t depth = image_.depth;
    const size_t rowBytes = static_cast<size_t>(StoreBytesPerLine(width, 24));
    // The output row outlives each row: the leftward rows of shallow palettes never map column
    // 0, which keeps the index of the row above, and index 0 on the first row.
    std::vector<uint8_t> row(rowBytes, 0), out(rowBytes, 0);

    int entries = 0;
    Lookup lookup = Lookup::kMap;
    if (IsQuantized(choice_)) {
      if (int code = Quantize(entries)) return code;
    } else if (choice_ == kPaletteOrthogonal) {
      palette_ = ThumbGetPalette(0);
      lookup = Lookup::kOrthogonal;
    } else if (choice_ == kPaletteFixed16) {
      std::copy(kFixed16Colours.begin(), kFixed16Colours.end(), palette_.begin());
      entries = 16;
    } else {  // kPaletteBayer8
      for (uint32_t i = 0; i < 8; ++i) palette_[i] = CubeCorner(i);
      entries = 8;
      if (kernel_ == Kernel::kNone) lookup = Lookup::kOrdered;
    }
    if (lookup == Lookup::kMap) {
      // 4096 nearest-colour searches here replace one per pixel.
      stage_.Begin(kStrRemapping, 1);
      BuildInverseMap(map_, palette_, entries);
    }

    const bool ordered = lookup == Lookup::kOrdered;
    stage_.Begin(kernel_ == Kernel::kNone && !ordered ? kStrReducing : kStrDithering,
                 static_cast<uint64_t>(std::max(depth, 0)));
    Mapping m;
    m.width = width;
    m.bits = bits_;
    m.palette = &palette_;
    m.map = &map_;
    std::vector<int16_t> errors;
    if (kernel_ != Kernel::kNone) {
      const size_t perRow = (static_cast<size_t>(width) + 2 * kMargin) * 3;
      errors.assign(3 * perRow, 0);
      for (size_t i = 0; i < 3; ++i) m.rows[i] = errors.data() + i * perRow;
    }
    const RowFn mapRow = ChooseRow(lookup, kernel_, bits_ <= 4);
    const std::span<uint8_t> result(out.data(),
                                    static_cast<size_t>(StoreBytesPerLine(width, bits_)));
    for (int32_t y = 0; y < depth; ++y) {
      if (stage_.Poll(static_cast<uint64_t>(y)) || image_.getLine(row, y)) return kCancelled;
      mapRow(m, row.data(), out.data(), y);
      if (image_.putLine(result, y)) return kCancelled;
      if (kernel_ != Kernel::kNone) {
        // The row below becomes the current one; the freed row starts again from nothing.
        int16_t* done = m.rows[0];
        m.rows[0] = m.rows[1];
        m.rows[1] = m.rows[2];
        m.rows[2] = done;
        std::fill(done, done + (static_cast<size_t>(width) + 2 * kMargin) * 3, int16_t{0});
      }
    }
    image_.bits = bits_;
    image_.palette = palette_;
    return kOk;
  }

 private:
  int Quantize(int& entries) {
    const bool plus16 = choice_ == kPaletteQuantized240;
    const int wanted = plus16 ? 240 : 1 << bits_;
    stage_.Begin(kStrQuantizing, static_cast<uint64_t>(std::max(image_.depth, 0)));
    LineSource rows = [this](std::span<uint8_t> r, int32_t y) {
      return stage_.Poll(static_cast<uint64_t>(y)) || image_.getLine(r, y) ? 1 : 0;
    };
    int count = wanted;
    if (int code = QuantizeImage(image_.width, image_.depth, count, palette_, rows)) return code;
    SortPaletteByLuminance(palette_, wanted);
    // The fixed colours stay out of the map: the picture's pixels never use them.
    if (plus16) std::copy(kFixed16Colours.begin(), kFixed16Colours.end(), palette_.begin() + 240);
    entries = wanted;
    return kOk;
  }

  ImageInfo& image_;
  uint32_t choice_;
  Kernel kernel_;
  uint32_t bits_;
  Stage stage_;
  Palette palette_{};
  InverseColourMap map_{};
};

}  // namespace

int ReduceColours(ImageInfo& image, uint32_t effects, std::string_view name) {
  try {
    return Reducer(image, effects, name).Run();
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

}  // namespace pxm
