#include "dialogs/batch_result_dialog.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "commands/command_ids.h"
#include "common/control_font.h"
#include "common/qt_text.h"
#include "core/strings.h"
#include "dialogs/dialog_buttons.h"

namespace pxm::ui {
namespace {

constexpr int kTagFailed = 3;

}  // namespace

bool ShowBatchResult(QWidget* owner, const BatchSummary& summary) {
  const Settings& settings = CurrentSettings();
  QDialog dialog(owner);
  dialog.setObjectName(QStringLiteral("RESULTBOX"));
  dialog.setWindowTitle(ToQt(LoadMessage(kStrProgramName)));
  ApplyControlFont(&dialog, settings);
  auto* layout = new QVBoxLayout(&dialog);
  QString text = ToQt(SummaryText(summary));
  auto* label = new QLabel(text, &dialog);
  label->setObjectName(QStringLiteral("static101"));
  label->setTextFormat(Qt::PlainText);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  label->setAccessibleName(text);
  label->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  // A long list of failures scrolls rather than growing past the screen.
  auto* scroll = new QScrollArea(&dialog);
  scroll->setWidget(label);
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setMinimumWidth(std::min(640, label->sizeHint().width() + 24));
  scroll->setMinimumHeight(std::min(360, label->sizeHint().height() + 8));
  layout->addWidget(scroll);

  auto* row = new QHBoxLayout;
  row->addStretch();
  QPushButton* tag = nullptr;
  if (!summary.ToRetry().empty()) {
    QString caption = ToQt(LoadMessage(kStrTagFailedFiles));
    tag = new QPushButton(caption, &dialog);
    tag->setObjectName(QStringLiteral("buttonTagFailed"));
    tag->setAccessibleName(caption);
    tag->setAutoDefault(false);
    QObject::connect(tag, &QPushButton::clicked, &dialog, [&dialog] { dialog.done(kTagFailed); });
    row->addWidget(tag);
  }
  QPushButton* ok = MakeDialogButton(&dialog, kBtnOk, QStringLiteral("Ok"), settings);
  ok->setDefault(true);
  row->addWidget(ok);
  layout->addLayout(row);
  EndDialogOnButtons(&dialog);
  return dialog.exec() == kTagFailed;
}

}  // namespace pxm::ui
