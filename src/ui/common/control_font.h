#pragma once

#include <QFont>

#include "config/settings.h"

class QWidget;

// The control font every dialog (and the text button bar) is drawn in: the face ControlFontName
// names, or the system's own font for "[ Default ]" or an empty name.
namespace pxm::ui {

// Whether a face name means "the system font".
bool IsDefaultFace(const std::string& face);

// The control font for `settings`. Faces are sized as the cell height 16 that the dialogs were
// laid out for, which is a 13-pixel em.
QFont ControlFont(const Settings& settings);

// Gives `widget` and all its children the control font.
void ApplyControlFont(QWidget* widget, const Settings& settings);

}  // namespace pxm::ui
