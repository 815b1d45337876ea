#pragma once

#include <QString>
#include <functional>

#include "config/settings.h"

class QPushButton;
class QWidget;
class QDialog;
class QObject;

// The push buttons of every dialog come in two sets at the same places: the picture set (1 Ok,
// 2 Cancel, 6 Yes, 7 No, 9 Help) drawn with pictures, and the plain set (851, 852, 856, 857,
// 899) drawn as text. ColourButtons chooses which set a dialog shows; clicks of either are
// folded to the picture identifier.
namespace pxm::ui {

// A button of the set ColourButtons chooses, for the picture identifier `pictureId`: its
// objectName is "button" and the identifier of that set, its "commandId" property the folded
// identifier.
QPushButton* MakeDialogButton(QWidget* parent, int pictureId, const QString& text,
                              const Settings& settings);

// The folded command identifier of a button made above (0 for any other object).
int ButtonCommand(const QObject* button);

// Makes every dialog button of `dialog` end the dialog with its folded identifier, except Help
// (9), which calls `onHelp` instead.
void EndDialogOnButtons(QDialog* dialog, const std::function<void()>& onHelp = {});

}  // namespace pxm::ui
