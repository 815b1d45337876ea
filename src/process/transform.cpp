#include "process/transform.h"

#include <array>
#include <charconv>

#include "core/sources.h"

namespace pxm {
namespace {

struct ModeName {
  std::string_view word;
  int32_t mode;
};

constexpr std::array<ModeName, 5> kModeNames{{
    {"rotate90", kRotate90},
    {"rotate180", kRotate180},
    {"rotate270", kRotate270},
    {"flip-h", kFlipHorizontal},
    {"flip-v", kFlipVertical},
}};

}  // namespace

bool IsTransformMode(int32_t mode) { return mode >= kRotate90 && mode <= kFlipVertical; }

bool IsQuarterTurn(int32_t mode) { return mode == kRotate90 || mode == kRotate270; }

std::optional<int32_t> ParseTransformMode(std::string_view word) {
  for (const ModeName& m : kModeNames)
    if (m.word == word) return m.mode;
  int32_t number = 0;
  auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
  if (error == std::errc() && end == word.data() + word.size() && IsTransformMode(number))
    return number;
  return std::nullopt;
}

LineSource TransformSource(ImageStore& store, int32_t mode) {
  switch (mode) {
    case kRotate90: return ColumnSourceAnticlockwise(store);
    case kRotate180: return FlipSource(store);
    case kRotate270: return ColumnSourceClockwise(store);
    case kFlipHorizontal: return MirrorSource(store);
    case kFlipVertical: return UpsideDownSource(store);
    default: return {};
  }
}

void TransformedSize(int32_t mode, uint32_t& width, int32_t& depth) {
  if (!IsQuarterTurn(mode)) return;
  uint32_t oldWidth = width;
  width = static_cast<uint32_t>(depth);
  depth = static_cast<int32_t>(oldWidth);
}

}  // namespace pxm
