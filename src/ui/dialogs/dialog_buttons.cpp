#include "dialogs/dialog_buttons.h"

#include <QApplication>
#include <QDialog>
#include <QPushButton>
#include <QStyle>

#include "commands/command_folding.h"
#include "commands/command_ids.h"

namespace pxm::ui {
namespace {

QStyle::StandardPixmap PictureOf(int id) {
  switch (id) {
    case kBtnOk:
      return QStyle::SP_DialogOkButton;
    case kBtnCancel:
      return QStyle::SP_DialogCancelButton;
    case kBtnYes:
      return QStyle::SP_DialogYesButton;
    case kBtnNo:
      return QStyle::SP_DialogNoButton;
    case kBtnHelp:
      return QStyle::SP_DialogHelpButton;
    default:
      return QStyle::SP_CustomBase;
  }
}

}  // namespace

QPushButton* MakeDialogButton(QWidget* parent, int pictureId, const QString& text,
                              const Settings& settings) {
  auto* button = new QPushButton(text, parent);
  bool pictures = settings.ColourButtons != 0;
  int id = pictures ? pictureId : PlainTwin(pictureId);
  button->setObjectName(QStringLiteral("button%1").arg(id));
  button->setProperty("commandId", FoldTwinButton(id));
  button->setAccessibleName(text);
  button->setAutoDefault(false);
  if (pictures && PictureOf(pictureId) != QStyle::SP_CustomBase)
    button->setIcon(QApplication::style()->standardIcon(PictureOf(pictureId)));
  return button;
}

int ButtonCommand(const QObject* button) {
  QVariant id = button ? button->property("commandId") : QVariant();
  return id.isValid() ? id.toInt() : 0;
}

void EndDialogOnButtons(QDialog* dialog, const std::function<void()>& onHelp) {
  for (QPushButton* button : dialog->findChildren<QPushButton*>()) {
    int id = ButtonCommand(button);
    if (id == 0) continue;
    QObject::connect(button, &QPushButton::clicked, dialog, [dialog, id, onHelp] {
      if (id == kBtnHelp) {
        if (onHelp) onHelp();
        return;
      }
      dialog->done(id);
    });
  }
}

}  // namespace pxm::ui
