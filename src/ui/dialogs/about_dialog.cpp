#include "dialogs/about_dialog.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "commands/command_ids.h"
#include "common/control_font.h"
#include "common/qt_text.h"
#include "core/strings.h"
#include "dialogs/dialog_buttons.h"
#include "main_window/button_pictures.h"

namespace pxm::ui {

void ShowAbout(QWidget* owner) {
  const Settings& settings = CurrentSettings();
  QDialog dialog(owner);
  dialog.setObjectName(QStringLiteral("ABOUTBOX"));
  QString name = ToQt(LoadMessage(kStrProgramName));
  dialog.setWindowTitle(QStringLiteral("About %1").arg(name));
  auto* layout = new QVBoxLayout(&dialog);
  auto* top = new QHBoxLayout;
  auto* picture = new QLabel(&dialog);
  picture->setObjectName(QStringLiteral("static100"));
  picture->setPixmap(ButtonIcon(kProgramPicture).pixmap(QSize(64, 64), dialog.devicePixelRatioF()));
  picture->setAccessibleName(name);
  top->addWidget(picture, 0, Qt::AlignTop);
  auto* texts = new QVBoxLayout;
  auto* title = new QLabel(name, &dialog);
  title->setObjectName(QStringLiteral("static101"));
  QFont big = title->font();
  big.setPointSizeF(big.pointSizeF() * 1.6);
  big.setBold(true);
  title->setFont(big);
  QString version = ToQt(MessageWithName(kStrVersion, PXM_VERSION));
  auto* versionLabel = new QLabel(version, &dialog);
  versionLabel->setObjectName(QStringLiteral("static102"));
  auto* about = new QLabel(ToQt(LoadMessage(kStrAboutText)), &dialog);
  about->setObjectName(QStringLiteral("static103"));
  about->setWordWrap(true);
  about->setMinimumWidth(280);
  texts->addWidget(title);
  texts->addWidget(versionLabel);
  texts->addWidget(about);
  top->addLayout(texts);
  layout->addLayout(top);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  QPushButton* ok = MakeDialogButton(&dialog, kBtnOk, QStringLiteral("Ok"), settings);
  ok->setDefault(true);
  buttons->addWidget(ok);
  layout->addLayout(buttons);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  ApplyControlFont(&dialog, settings);
  title->setFont(big);
  EndDialogOnButtons(&dialog);
  dialog.exec();
}

}  // namespace pxm::ui
