#include "process/dither.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <span>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/levels.h"
#include "core/row_format.h"
#include "core/strings.h"
#include "process/bayer.h"
#include "process/stage.h"

namespace pxm {
namespace {

enum class Method { kThreshold, kBayer, kFloyd, kBurkes, kStucki, kNone };

Method MethodOf(uint32_t mode) {
  // Threshold first: its level byte may carry any of the other method bits.
  if (mode & kDitherThreshold) return Method::kThreshold;
  if (mode & kDitherBayer) return Method::kBayer;
  if (mode & kDitherFloyd) return Method::kFloyd;
  if (mode & kDitherBurkes) return Method::kBurkes;
  if (mode & kDitherStucki) return Method::kStucki;
  return Method::kNone;
}

// An error-diffusion kernel: weights over `divisor` for the pixels ahead in the scan direction and
// for columns dx = -2..+2 of the one or two rows below.
struct Kernel {
  int divisor;
  int ahead[2];
  int below[2][5];
  int rowsBelow;
};

constexpr Kernel kFloyd{16, {7, 0}, {{0, 3, 5, 1, 0}, {0, 0, 0, 0, 0}}, 1};
constexpr Kernel kBurkes{32, {8, 4}, {{2, 4, 8, 4, 2}, {0, 0, 0, 0, 0}}, 1};
// The nearer pixel ahead takes 4/42 and the farther 8/42: the engine's look depends on it.
constexpr Kernel kStucki{42, {4, 8}, {{2, 4, 8, 4, 2}, {1, 2, 4, 2, 1}}, 2};

// A share of the error, truncated toward zero.
template <const Kernel& K>
constexpr int Share(int error, int weight) {
  return error * weight / K.divisor;
}

// What one diffusion step needs besides the rows.
struct Levels {
  int level;
  int minimum;
  int maximum;
};

// Sets pixel x when it turns white and answers the error it leaves: measured against the picture's
// own grey extremes, not against 0 and 255.
inline int Decide(int g, uint32_t x, uint8_t* out, const Levels& l) {
  if (g > l.level) {
    out[x >> 3] |= static_cast<uint8_t>(0x80u >> (x & 7));
    return g - l.maximum;
  }
  return g - l.minimum;
}

// Left to right. Targets ahead and to the right below stop at the row's end; to the left below
// they must be at column 1 or more, so column 0 of the rows below never hears from its right.
template <const Kernel& K>
void DiffuseLeftToRight(uint8_t* row, uint8_t* const* below, uint8_t* out, uint32_t width,
                        const Levels& l) {
  const int64_t w = width;
  for (int64_t x = 0; x < w; ++x) {
    int e = Decide(row[x], static_cast<uint32_t>(x), out, l);
    if (e == 0) continue;
    for (int k = 0; k < 2; ++k)
      if (K.ahead[k] && x + k + 1 < w) row[x + k + 1] = ClampAdd(row[x + k + 1], Share<K>(e, K.ahead[k]));
    for (int dy = 0; dy < K.rowsBelow; ++dy) {
      uint8_t* r = below[dy];
      if (!r) continue;
      for (int i = 0; i < 5; ++i) {
        const int weight = K.below[dy][i];
        const int64_t t = x + i - 2;
        if (!weight || (i < 2 && t < 1) || (i > 2 && t >= w)) continue;
        r[t] = ClampAdd(r[t], Share<K>(e, weight));
      }
    }
  }
}

// Right to left, the kernel mirrored. Ahead (to the left) stops at column 0; the columns to the
// right below are never compared with the width: their shares land in the slack past the row's
// end and are lost there.
template <const Kernel& K>
void DiffuseRightToLeft(uint8_t* row, uint8_t* const* below, uint8_t* out, uint32_t width,
                        const Levels& l) {
  for (int64_t x = static_cast<int64_t>(width) - 1; x >= 0; --x) {
    int e = Decide(row[x], static_cast<uint32_t>(x), out, l);
    if (e == 0) continue;
    for (int k = 0; k < 2; ++k)
      if (K.ahead[k] && x - k - 1 >= 0) row[x - k - 1] = ClampAdd(row[x - k - 1], Share<K>(e, K.ahead[k]));
    for (int dy = 0; dy < K.rowsBelow; ++dy) {
      uint8_t* r = below[dy];
      if (!r) continue;
      for (int i = 0; i < 5; ++i) {
        const int weight = K.below[dy][i];
        const int64_t t = x - (i - 2);
        if (!weight || t < 0) continue;
        r[t] = ClampAdd(r[t], Share<K>(e, weight));
      }
    }
  }
}

using DiffuseFn = void (*)(uint8_t*, uint8_t* const*, uint8_t*, uint32_t, const Levels&);

struct Diffusion {
  DiffuseFn leftToRight;
  DiffuseFn rightToLeft;
  int rowsBelow;
};

template <const Kernel& K>
constexpr Diffusion DiffusionOf() {
  return {DiffuseLeftToRight<K>, DiffuseRightToLeft<K>, K.rowsBelow};
}

void ThresholdRow(const uint8_t* grey, uint8_t* out, uint32_t width, int level) {
  for (uint32_t x = 0; x < width; ++x)
    if (grey[x] > level) out[x >> 3] |= static_cast<uint8_t>(0x80u >> (x & 7));
}

void BayerRow(const uint8_t* grey, uint8_t* out, uint32_t width, int32_t y) {
  uint8_t column[8];
  for (int c = 0; c < 8; ++c) column[c] = kBayerMatrix[c][y & 7];
  for (uint32_t x = 0; x < width; ++x)
    if (column[x & 7] < grey[x] / 4) out[x >> 3] |= static_cast<uint8_t>(0x80u >> (x & 7));
}

// Every row buffer is a 24-bit stored row (enough for any store of this width) plus slack for
// the right-to-left shares that fall past the row's end.
constexpr size_t kSlack = 8;

struct Buffers {
  std::vector<std::vector<uint8_t>> working;  // the row being decided, then the rows below it
  std::vector<uint8_t> output;
};

class Engine {
 public:
  Engine(ImageInfo& image, uint32_t mode, std::string_view name)
      : image_(image), mode_(mode), method_(MethodOf(mode)), stage_(image, name) {}

  int Run() {
    const int rowsBelow = method_ == Method::kStucki                             ? 2
                          : method_ == Method::kFloyd || method_ == Method::kBurkes ? 1
                                                                                 : 0;
    const size_t rowBytes = static_cast<size_t>(StoreBytesPerLine(image_.width, 24)) + kSlack;
    Buffers b;
    try {
      b.working.assign(static_cast<size_t>(rowsBelow) + 1, std::vector<uint8_t>(rowBytes, 0));
      b.output.assign(rowBytes, 0);
    } catch (const std::bad_alloc&) {
      return kMemoryError;
    }
    if (int code = Remap(b.working[0])) return code;
    return Reduce(b);
  }

 private:
  // First pass: every pixel becomes its grey byte, in place in the store, and the extremes are
  // found: over every palette entry (used or not) for palette pictures, over the pixels for 24-bit.
  int Remap(std::vector<uint8_t>& buffer) {
    const Settings& s = CurrentSettings();
    // The working greys stay within 1..254: never pure black or white.
    const LevelTable table = ContrastBrightnessTable(s.DitherContrast, s.DitherBrightness, 1, 254);
    uint8_t greyOfByte[256];
    for (int b = 0; b < 256; ++b) greyOfByte[b] = table[static_cast<size_t>(FirstByteGrey(b))];

    const uint32_t width = image_.width;
    const int32_t depth = image_.depth;
    const bool palette = image_.bits <= 8;
    std::span<uint8_t> row(buffer.data(),
                           static_cast<size_t>(StoreBytesPerLine(width, palette ? 8 : 24)));
    stage_.Begin(kStrRemapping, static_cast<uint64_t>(std::max(depth, 0)));
    minimum_ = 255;
    maximum_ = 0;
    if (palette) {
      uint8_t greyOfIndex[256];
      for (size_t i = 0; i < 256; ++i) greyOfIndex[i] = greyOfByte[image_.palette[i].red];
      const size_t entries = size_t{1} << std::min<uint32_t>(image_.bits, 8);
      for (size_t i = 0; i < entries; ++i) {
        minimum_ = std::min<int>(minimum_, greyOfIndex[i]);
        maximum_ = std::max<int>(maximum_, greyOfIndex[i]);
      }
      for (int32_t y = 0; y < depth; ++y) {
        if (stage_.Poll(static_cast<uint64_t>(y)) || image_.getLine(row, y)) return kCancelled;
        for (uint32_t x = 0; x < width; ++x) row[x] = greyOfIndex[row[x]];
        if (image_.putLine(row, y)) return kCancelled;
      }
      return kOk;
    }
    for (int32_t y = 0; y < depth; ++y) {
      if (stage_.Poll(static_cast<uint64_t>(y)) || image_.getLine(row, y)) return kCancelled;
      uint8_t low = 255, high = 0;
      for (uint32_t x = 0; x < width; ++x) {
        const uint8_t g = greyOfByte[row[3 * static_cast<size_t>(x)]];
        row[x] = g;
        low = std::min(low, g);
        high = std::max(high, g);
      }
      minimum_ = std::min<int>(minimum_, low);
      maximum_ = std::max<int>(maximum_, high);
      if (image_.putLine(row, y)) return kCancelled;
    }
    return kOk;
  }

  // Second pass. The rows below the current one are held in the working buffers with the error
  // they have received so far; each row is read once and its 1-bit result stored once.
  int Reduce(Buffers& b) {
    const uint32_t width = image_.width;
    const int32_t depth = image_.depth;
    const Levels levels{method_ == Method::kThreshold ? static_cast<int>(mode_ & kDitherLevelMask)
                                                      : (minimum_ + maximum_) / 2,
                        minimum_, maximum_};
    image_.bits = 1;
    stage_.Begin(method_ == Method::kThreshold ? kStrThresholding : kStrDithering,
                 static_cast<uint64_t>(std::max(depth, 0)));

    Diffusion diffusion{};
    if (method_ == Method::kFloyd) diffusion = DiffusionOf<kFloyd>();
    if (method_ == Method::kBurkes) diffusion = DiffusionOf<kBurkes>();
    if (method_ == Method::kStucki) diffusion = DiffusionOf<kStucki>();
    const bool uni = (mode_ & kDitherUnidirectional) != 0;
    const bool bi = !uni && (mode_ & kDitherBidirectional) != 0;

    // Grey rows are one byte per pixel, whatever the store's own packing.
    const size_t greyBytes = static_cast<size_t>(StoreBytesPerLine(width, 8));
    const size_t packed = static_cast<size_t>(PackedRowBytes(width, 1));
    auto& ring = b.working;
    const int32_t held = static_cast<int32_t>(ring.size());
    for (int32_t i = 0; i < held && i < depth; ++i)
      if (image_.getLine(std::span<uint8_t>(ring[static_cast<size_t>(i)].data(), greyBytes), i))
        return kCancelled;

    uint8_t* below[2] = {nullptr, nullptr};
    for (int32_t y = 0; y < depth; ++y) {
      if (stage_.Poll(static_cast<uint64_t>(y))) return kCancelled;
      uint8_t* row = ring[0].data();
      uint8_t* out = b.output.data();
      std::memset(out, 0, packed);
      for (int32_t i = 1; i < held; ++i)
        below[i - 1] = y + i < depth ? ring[static_cast<size_t>(i)].data() : nullptr;

      bool store = true;
      switch (method_) {
        case Method::kThreshold: ThresholdRow(row, out, width, levels.level); break;
        case Method::kBayer: BayerRow(row, out, width, y); break;
        case Method::kNone: store = false; break;
        default:
          if (uni) diffusion.leftToRight(row, below, out, width, levels);
          else if (bi && y % 2 == 0) diffusion.rightToLeft(row, below, out, width, levels);
          else if (bi) diffusion.leftToRight(row, below, out, width, levels);
          else store = false;  // no direction: the row keeps what the store holds
          break;
      }
      if (store && image_.putLine(b.output, y)) return kCancelled;

      std::rotate(ring.begin(), ring.begin() + 1, ring.end());
      const int32_t next = y + held;
      if (next < depth &&
          image_.getLine(std::span<uint8_t>(ring.back().data(), greyBytes), next))
        return kCancelled;
    }
    image_.palette[0] = Rgb{0, 0, 0};
    image_.palette[1] = Rgb{255, 255, 255};
    return kOk;
  }

  ImageInfo& image_;
  uint32_t mode_;
  Method method_;
  Stage stage_;
  int minimum_ = 255;
  int maximum_ = 0;
};

}  // namespace

int HalftoneSizeFactor(uint32_t mode) {
  if (mode & (kDitherThreshold | kDitherBayer)) return 1;
  if (mode & kDitherSize2) return 2;
  if (mode & kDitherSize3) return 3;
  if (mode & kDitherSize4) return 4;
  if (mode & kDitherSize5) return 5;
  return 1;
}

int DitherImage(ImageInfo& image, uint32_t mode, std::string_view name) {
  try {
    return Engine(image, mode, name).Run();
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

}  // namespace pxm
