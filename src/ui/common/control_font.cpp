#include "common/control_font.h"

#include <QApplication>
#include <QWidget>

#include "core/strings.h"

namespace pxm::ui {

bool IsDefaultFace(const std::string& face) {
  return face.empty() || face == LoadMessage(kStrDefaultFont);
}

QFont ControlFont(const Settings& settings) {
  QFont font = QApplication::font();
  if (IsDefaultFace(settings.ControlFontName)) return font;
  font.setFamilies({QString::fromStdString(settings.ControlFontName)});
  font.setPixelSize(13);
  return font;
}

void ApplyControlFont(QWidget* widget, const Settings& settings) {
  // A font set on the parent reaches every child that has not set its own.
  widget->setFont(ControlFont(settings));
}

}  // namespace pxm::ui
