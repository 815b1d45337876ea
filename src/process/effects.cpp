#include "process/effects.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <span>
#include <vector>

#include "core/error_codes.h"
#include "core/row_format.h"
#include "core/strings.h"
#include "process/colour_map.h"
#include "process/colour_reduce.h"
#include "process/effect_rows.h"
#include "process/palette_choice.h"
#include "process/stage.h"

namespace pxm {
namespace {

// Puts changed RGB rows back in the record's packing: as they are for 24-bit pictures, as
// indexes into the picture's own palette otherwise, found through its inverse map (a table
// lookup per pixel, never a palette search).
class Output {
 public:
  explicit Output(const ImageInfo& image)
      : bits_(image.bits),
        width_(image.width),
        rgbBytes_(static_cast<size_t>(StoreBytesPerLine(image.width, 24))) {}

  void Prepare(const ImageInfo& image, Stage& stage) {
    if (bits_ > 8) return;
    stage.Begin(kStrRemapping, 1);
    BuildInverseMap(map_, image.palette, 1 << bits_);
    packed_.assign(static_cast<size_t>(StoreBytesPerLine(width_, bits_)), 0);
  }

  int Put(ImageInfo& image, uint8_t* rgb, int32_t y) {
    if (bits_ > 8) return image.putLine(std::span<uint8_t>(rgb, rgbBytes_), y);
    uint8_t* out = packed_.data();
    std::fill(packed_.begin(), packed_.end(), 0);
    const uint32_t packing = StorageBits(bits_);
    for (uint32_t x = 0; x < width_; ++x, rgb += 3) {
      const uint8_t index = map_[InverseMapIndex(rgb[0], rgb[1], rgb[2])];
      if (packing == 8) out[x] = index;
      else if (packing == 4) out[x >> 1] |= static_cast<uint8_t>(x & 1 ? index & 0x0F : index << 4);
      else if (index & 1) out[x >> 3] |= static_cast<uint8_t>(0x80u >> (x & 7));
    }
    return image.putLine(packed_, y);
  }

 private:
  uint32_t bits_;
  uint32_t width_;
  size_t rgbBytes_;
  InverseColourMap map_{};
  std::vector<uint8_t> packed_;
};

class Effects {
 public:
  Effects(ImageInfo& image, uint32_t effects, std::string_view name)
      : image_(image),
        effects_(effects),
        stage_(image, name),
        rowBytes_(static_cast<size_t>(StoreBytesPerLine(image.width, 24))) {}

  int Run() {
    if (effects_ & kEffectReduce) return kUnsupportedFunction;  // ApplyEffect sends it on
    if (effects_ & kEffectGrey) return Grey();
    if (effects_ & kEffectSharpen) return InPlace(kStrSharpening, SharpenRow);
    if (effects_ & kEffectSoften) return InPlace(kStrSoftening, SoftenRow);
    if (effects_ & kEffectSmudge) return Smudge();
    if (effects_ & kEffectPosterize) return Posterize();
    if (effects_ & kEffectPromote) {
      // The rows already are the RGB triples the picture expands to.
      image_.bits = 24;
      return kOk;
    }
    return kUnsupportedFunction;
  }

 private:
  uint64_t Depth() const { return static_cast<uint64_t>(std::max(image_.depth, 0)); }
  std::vector<uint8_t> Row() const { return std::vector<uint8_t>(rowBytes_, 0); }
  int Get(std::vector<uint8_t>& row, int32_t y) { return image_.getLine(row, y); }

  int InPlace(int status, void (*effect)(uint8_t*, uint32_t)) {
    Output out(image_);
    out.Prepare(image_, stage_);
    std::vector<uint8_t> row = Row();
    stage_.Begin(status, Depth());
    for (int32_t y = 0; y < image_.depth; ++y) {
      if (stage_.Poll(static_cast<uint64_t>(y)) || Get(row, y)) return kCancelled;
      effect(row.data(), image_.width);
      if (out.Put(image_, row.data(), y)) return kCancelled;
    }
    return kOk;
  }

  // Rows below are read before the row above them is written back: the smudge takes its colours
  // from the picture as it was.
  int Smudge() {
    Output out(image_);
    out.Prepare(image_, stage_);
    std::vector<std::vector<uint8_t>> ring(3, Row());
    stage_.Begin(kStrSmudging, Depth());
    const int32_t depth = image_.depth;
    for (int32_t i = 0; i < 3 && i < depth; ++i)
      if (Get(ring[static_cast<size_t>(i)], i)) return kCancelled;
    // The runtime's generator, never reseeded: no two runs smudge alike.
    const SmudgeDraw draw = [] { return std::rand(); };
    for (int32_t y = 0; y < depth; ++y) {
      if (stage_.Poll(static_cast<uint64_t>(y))) return kCancelled;
      const uint8_t* below[2] = {y + 1 < depth ? ring[1].data() : nullptr,
                                 y + 2 < depth ? ring[2].data() : nullptr};
      SmudgeRow(ring[0].data(), below, image_.width, draw);
      if (out.Put(image_, ring[0].data(), y)) return kCancelled;
      std::rotate(ring.begin(), ring.begin() + 1, ring.end());
      if (y + 3 < depth && Get(ring[2], y + 3)) return kCancelled;
    }
    return kOk;
  }

  int Posterize() {
    uint32_t n = 2;  // the first block size when the word names none
    if (effects_ & kBlock2) n = 2;
    else if (effects_ & kBlock4) n = 4;
    else if (effects_ & kBlock8) n = 8;
    else if (effects_ & kBlock16) n = 16;
    Output out(image_);
    out.Prepare(image_, stage_);
    std::vector<std::vector<uint8_t>> band(n, Row());
    std::vector<uint8_t*> rows;
    stage_.Begin(kStrPosterizing, Depth());
    for (int32_t y0 = 0; y0 < image_.depth; y0 += static_cast<int32_t>(n)) {
      rows.clear();
      for (int32_t y = y0; y < image_.depth && y < y0 + static_cast<int32_t>(n); ++y) {
        std::vector<uint8_t>& row = band[static_cast<size_t>(y - y0)];
        if (stage_.Poll(static_cast<uint64_t>(y)) || Get(row, y)) return kCancelled;
        rows.push_back(row.data());
      }
      PosterizeBand(rows, image_.width, n);
      for (size_t i = 0; i < rows.size(); ++i)
        if (out.Put(image_, rows[i], y0 + static_cast<int32_t>(i))) return kCancelled;
    }
    return kOk;
  }

  int Grey() {
    uint32_t bits = PaletteChoiceTableBits(PaletteChoiceOf(effects_));
    if (bits == 0) return kUnsupportedFunction;
    // The orthogonal choice's table depth is 24: it makes 256 levels, an 8-bit grey picture.
    bits = std::min(bits, 8u);
    const uint32_t levels = 1u << bits;
    const int shift = static_cast<int>(8 - bits);
    std::vector<uint8_t> row = Row(), out(static_cast<size_t>(StoreBytesPerLine(image_.width, bits)), 0);
    stage_.Begin(kStrRemapping, Depth());
    for (int32_t y = 0; y < image_.depth; ++y) {
      if (stage_.Poll(static_cast<uint64_t>(y)) || Get(row, y)) return kCancelled;
      std::fill(out.begin(), out.end(), 0);
      const uint8_t* p = row.data();
      for (uint32_t x = 0; x < image_.width; ++x, p += 3) {
        const auto g = static_cast<uint8_t>(Luminance(p[0], p[1], p[2]) >> shift);
        if (bits <= 4) out[x >> 1] |= static_cast<uint8_t>(x & 1 ? g : g << 4);
        else out[x] = g;
      }
      if (image_.putLine(out, y)) return kCancelled;
    }
    image_.bits = bits;
    image_.palette = Palette{};
    for (uint32_t i = 0; i < levels; ++i) {
      const auto v = static_cast<uint8_t>(256 / levels * i);
      image_.palette[i] = Rgb{v, v, v};
    }
    return kOk;
  }

  ImageInfo& image_;
  uint32_t effects_;
  Stage stage_;
  size_t rowBytes_;
};

}  // namespace

int ApplyEffect(ImageInfo& image, uint32_t effects, std::string_view name) {
  if (effects & kEffectReduce) return ReduceColours(image, effects, name);
  try {
    return Effects(image, effects, name).Run();
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

}  // namespace pxm
