#include "dialogs/message_box.h"

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

namespace pxm::ui {
namespace {

int RunBox(QWidget* owner, const char* name, std::string_view text,
           std::initializer_list<std::pair<int, const char*>> buttons, int escapeAnswer) {
  const Settings& settings = CurrentSettings();
  QDialog box(owner);
  box.setObjectName(QString::fromLatin1(name));
  box.setWindowTitle(ToQt(LoadMessage(kStrProgramName)));
  ApplyControlFont(&box, settings);
  auto* layout = new QVBoxLayout(&box);
  auto* label = new QLabel(ToQt(text), &box);
  label->setObjectName(QStringLiteral("static101"));
  label->setWordWrap(true);
  label->setMinimumWidth(260);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  label->setAccessibleName(ToQt(text));
  layout->addWidget(label);
  auto* row = new QHBoxLayout;
  row->addStretch();
  bool first = true;
  for (auto [id, caption] : buttons) {
    QPushButton* button = MakeDialogButton(&box, id, QString::fromLatin1(caption), settings);
    if (first) button->setDefault(true);
    first = false;
    row->addWidget(button);
  }
  row->addStretch();
  layout->addLayout(row);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  EndDialogOnButtons(&box);
  int answer = box.exec();
  // Escape and the window's close button end a box as its last button would.
  if (answer == QDialog::Rejected) answer = escapeAnswer;
  if (owner) owner->update();
  return answer;
}

}  // namespace

int ShowMessageBox(QWidget* owner, std::string_view text) {
  return RunBox(owner, "MessageBox", text, {{kBtnOk, "Ok"}}, kBtnOk);
}

int AskYesNoBox(QWidget* owner, std::string_view text) {
  return RunBox(owner, "YesnoBox", text, {{kBtnYes, "Yes"}, {kBtnNo, "No"}}, kBtnNo);
}

}  // namespace pxm::ui
