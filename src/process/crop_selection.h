#pragma once

#include <cstdint>
#include <string>

// The crop window's selection: kept in window coordinates while the user drags, turned into
// image coordinates through the display scale when it is shown or saved.
namespace pxm {

// A rectangle of the picture in image coordinates.
struct CropRect {
  uint32_t x = 0;
  uint32_t y = 0;
  uint32_t width = 0;
  uint32_t depth = 0;
  friend bool operator==(const CropRect&, const CropRect&) = default;
};

// The display scale held in ten-thousandths (5000 = half size).
double DisplayScale(uint32_t tenThousandths);
// A window coordinate in image coordinates: coordinate × (1.0 / scale), truncated toward zero.
uint32_t ImageCoordinate(int32_t windowCoordinate, double scale);

class CropSelection {
 public:
  // The size of the displayed bitmap; pointer positions are held to it.
  void SetBitmapSize(uint32_t width, uint32_t depth);

  // Left button down. Without a selection both corners go to the pointer and nothing is shown
  // yet; with one, it is dropped (all four values -1). Answers whether a selection was dropped.
  bool Press(int32_t x, int32_t y);
  // Mouse move with the left button held: the second corner follows the pointer.
  void Drag(int32_t x, int32_t y);
  // Forgets the selection, as after a save.
  void Clear();

  // A selection exists when the normalised rectangle is not empty.
  bool HasSelection() const;
  // left <= right and top <= bottom, whichever way the user dragged.
  void Normalised(int32_t& left, int32_t& top, int32_t& right, int32_t& bottom) const;
  // The normalised selection in image coordinates: origin = corner × (1 / scale), size =
  // far corner × (1 / scale) - near corner × (1 / scale), each truncated.
  CropRect ToImage(double scale) const;

  // The caption read-out for the pointer at window (x, y): "(x,y)", followed by the selection's
  // two corners when there is one, all in image coordinates.
  std::string Caption(int32_t x, int32_t y, double scale) const;

  int32_t left = -1, top = -1, right = -1, bottom = -1;

 private:
  int32_t ClampX(int32_t x) const;
  int32_t ClampY(int32_t y) const;
  uint32_t bitmapWidth_ = 0;
  uint32_t bitmapDepth_ = 0;
};

}  // namespace pxm
