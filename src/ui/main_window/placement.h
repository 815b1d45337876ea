#pragma once

#include "config/settings.h"

// Where the main window opens and what of its place is remembered, without any window.
namespace pxm::ui {

// The value of a placement key that means "nothing remembered".
constexpr int32_t kNotRemembered = 65535;
constexpr int kDefaultWidth = 583;
constexpr int kDefaultHeight = 400;

struct WindowRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  friend bool operator==(const WindowRect&, const WindowRect&) = default;
};

struct Placement {
  WindowRect rect;
  bool maximized = false;
};

// The window's place at start-up: the remembered corner unless either coordinate is 65535 (then
// 0, 0), the remembered size unless either side is 65535 (then 583 × 400), maximised when
// MaximizeOnStartup is on.
Placement InitialPlacement(const Settings& settings);

// Stores the window's place after a move or resize, clamped to the screen: the corner to
// 0 ... screen - 16, the width to 96 ... screen width, the height to 48 ... screen height.
void RememberPlacement(Settings& settings, const WindowRect& rect, int screenWidth,
                       int screenHeight);

}  // namespace pxm::ui
