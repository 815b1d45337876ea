#pragma once

class QWidget;

namespace pxm::ui {

// The About box: the program's picture, name, version and what it is for.
void ShowAbout(QWidget* owner);

}  // namespace pxm::ui
