#include "main_window/placement.h"

#include <algorithm>

namespace pxm::ui {
namespace {

// std::clamp with a range that may be empty on a tiny screen: the lower bound wins.
int ClampTo(int value, int low, int high) {
  return std::max(low, std::min(value, high));
}

}  // namespace

Placement InitialPlacement(const Settings& settings) {
  Placement placement;
  if (settings.MainWindowX != kNotRemembered && settings.MainWindowY != kNotRemembered) {
    placement.rect.x = settings.MainWindowX;
    placement.rect.y = settings.MainWindowY;
  }
  if (settings.MainWindowW != kNotRemembered && settings.MainWindowD != kNotRemembered) {
    placement.rect.width = settings.MainWindowW;
    placement.rect.height = settings.MainWindowD;
  } else {
    placement.rect.width = kDefaultWidth;
    placement.rect.height = kDefaultHeight;
  }
  placement.maximized = settings.MaximizeOnStartup != 0;
  return placement;
}

void RememberPlacement(Settings& settings, const WindowRect& rect, int screenWidth,
                       int screenHeight) {
  settings.MainWindowX = ClampTo(rect.x, 0, screenWidth - 16);
  settings.MainWindowY = ClampTo(rect.y, 0, screenHeight - 16);
  settings.MainWindowW = ClampTo(rect.width, 96, screenWidth);
  settings.MainWindowD = ClampTo(rect.height, 48, screenHeight);
}

}  // namespace pxm::ui
