#include "process/crop_selection.h"

#include <algorithm>
#include <cmath>

#include "core/strings.h"

namespace pxm {
namespace {

uint32_t Truncated(double v) {
  if (!(v > 0)) return 0;  // negative and NaN alike
  return v >= 4294967295.0 ? UINT32_MAX : static_cast<uint32_t>(v);
}

int32_t Held(int32_t v, uint32_t limit) {
  // The pointer can leave the window while the button is held; it stops at the bitmap's edges.
  int64_t clamped = std::clamp<int64_t>(v, 0, limit);
  return static_cast<int32_t>(std::min<int64_t>(clamped, INT32_MAX));
}

}  // namespace

double DisplayScale(uint32_t tenThousandths) { return tenThousandths * 0.0001; }

uint32_t ImageCoordinate(int32_t windowCoordinate, double scale) {
  return Truncated(windowCoordinate * (1.0 / scale));
}

void CropSelection::SetBitmapSize(uint32_t width, uint32_t depth) {
  bitmapWidth_ = width;
  bitmapDepth_ = depth;
}

int32_t CropSelection::ClampX(int32_t x) const { return Held(x, bitmapWidth_); }
int32_t CropSelection::ClampY(int32_t y) const { return Held(y, bitmapDepth_); }

bool CropSelection::Press(int32_t x, int32_t y) {
  if (HasSelection()) {
    Clear();
    return true;
  }
  left = right = ClampX(x);
  top = bottom = ClampY(y);
  return false;
}

void CropSelection::Drag(int32_t x, int32_t y) {
  right = ClampX(x);
  bottom = ClampY(y);
}

void CropSelection::Clear() { left = top = right = bottom = -1; }

void CropSelection::Normalised(int32_t& l, int32_t& t, int32_t& r, int32_t& b) const {
  l = std::min(left, right);
  r = std::max(left, right);
  t = std::min(top, bottom);
  b = std::max(top, bottom);
}

bool CropSelection::HasSelection() const {
  int32_t l, t, r, b;
  Normalised(l, t, r, b);
  return l < r && t < b;
}

CropRect CropSelection::ToImage(double scale) const {
  int32_t l, t, r, b;
  Normalised(l, t, r, b);
  const double inverse = 1.0 / scale;
  CropRect rect;
  rect.x = Truncated(l * inverse);
  rect.y = Truncated(t * inverse);
  rect.width = Truncated(r * inverse - l * inverse);
  rect.depth = Truncated(b * inverse - t * inverse);
  return rect;
}

std::string CropSelection::Caption(int32_t x, int32_t y, double scale) const {
  const uint32_t px = ImageCoordinate(x, scale), py = ImageCoordinate(y, scale);
  if (!HasSelection()) return FormatText("(%u,%u)", px, py);
  // The corners as dragged: where the button went down, then where the pointer is now.
  return FormatText("(%u,%u)      [ (%u,%u) (%u,%u) ]", px, py, ImageCoordinate(left, scale),
                    ImageCoordinate(top, scale), ImageCoordinate(right, scale),
                    ImageCoordinate(bottom, scale));
}

}  // namespace pxm
