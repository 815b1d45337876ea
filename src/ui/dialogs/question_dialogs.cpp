#include "dialogs/question_dialogs.h"

#include <QDialog>
#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "commands/command_ids.h"
#include "common/control_font.h"
#include "common/qt_text.h"
#include "core/names.h"
#include "core/strings.h"
#include "dialogs/dialog_buttons.h"

namespace pxm::ui {
namespace {

// A dialog with a text, one central control and Ok and Cancel under it.
struct Frame {
  QDialog dialog;
  QVBoxLayout* layout;

  Frame(QWidget* owner, const char* name, const QString& title, const QString& text)
      : dialog(owner) {
    dialog.setObjectName(QString::fromLatin1(name));
    dialog.setWindowTitle(title);
    ApplyControlFont(&dialog, CurrentSettings());
    layout = new QVBoxLayout(&dialog);
    auto* label = new QLabel(text, &dialog);
    label->setObjectName(QStringLiteral("static101"));
    label->setWordWrap(true);
    layout->addWidget(label);
  }

  void Add(QWidget* control, const QString& accessibleName) {
    control->setAccessibleName(accessibleName);
    layout->addWidget(control);
  }

  int Run() {
    auto* row = new QHBoxLayout;
    row->addStretch();
    QPushButton* ok = MakeDialogButton(&dialog, kBtnOk, QStringLiteral("Ok"), CurrentSettings());
    ok->setDefault(true);
    row->addWidget(ok);
    row->addWidget(
        MakeDialogButton(&dialog, kBtnCancel, QStringLiteral("Cancel"), CurrentSettings()));
    layout->addLayout(row);
    EndDialogOnButtons(&dialog);
    return dialog.exec();
  }
};

}  // namespace

std::optional<uint32_t> SelectImageDialog(QWidget* owner, std::string_view fileName,
                                          std::span<const std::string> names) {
  QString text = ToQt(MessageWithName(kStrSelectImage, fileName));
  Frame frame(owner, "SELECTIMAGEBOX", QStringLiteral("Select image"), text);
  auto* list = new QListWidget(&frame.dialog);
  list->setObjectName(QStringLiteral("list101"));
  for (const std::string& name : names) list->addItem(ToQt(name));
  list->setCurrentRow(0);
  QObject::connect(list, &QListWidget::itemDoubleClicked, &frame.dialog,
                   [&frame] { frame.dialog.done(kBtnOk); });
  frame.Add(list, text);
  if (frame.Run() != kBtnOk || list->currentRow() < 0) return std::nullopt;
  return static_cast<uint32_t>(list->currentRow());
}

std::optional<std::string> CommentDialog(QWidget* owner, std::string_view fileName,
                                         std::string_view prefilled) {
  QString text = ToQt(MessageWithName(kStrCommentFor, fileName));
  Frame frame(owner, "GETCOMMENTBOX", QStringLiteral("Comment"), text);
  auto* edit = new QPlainTextEdit(ToQt(prefilled), &frame.dialog);
  edit->setObjectName(QStringLiteral("edit101"));
  edit->setMinimumSize(360, 140);
  frame.Add(edit, text);
  if (frame.Run() != kBtnOk) return std::nullopt;
  return FromQt(edit->toPlainText());
}

NextFileAnswer NextFileDialog(QWidget* owner, std::string_view message,
                              std::string_view directory) {
  Frame frame(owner, "NEXTFILEBOX", QStringLiteral("Next file"), ToQt(message));
  auto* list = new QListWidget(&frame.dialog);
  list->setObjectName(QStringLiteral("list101"));
  QDir dir(PathToQt(directory));
  list->addItems(dir.entryList(QDir::Files, QDir::Name | QDir::IgnoreCase));
  NextFileAnswer answer;
  QObject::connect(
      list, &QListWidget::itemDoubleClicked, &frame.dialog, [&](QListWidgetItem* item) {
        answer = {NextFileAnswer::Kind::kFile, JoinPath(directory, PathFromQt(item->text()))};
        frame.dialog.done(kBtnOk);
      });
  frame.Add(list, ToQt(message));
  int result = frame.Run();
  if (answer.kind == NextFileAnswer::Kind::kFile) return answer;
  if (result != kBtnOk) return {NextFileAnswer::Kind::kCancel, {}};
  return {NextFileAnswer::Kind::kOk, {}};
}

}  // namespace pxm::ui
