#include "dialogs/destination_dialog.h"

#include <QDialog>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "commands/command_ids.h"
#include "common/control_font.h"
#include "common/qt_text.h"
#include "core/strings.h"
#include "dialogs/dialog_buttons.h"

namespace pxm::ui {
namespace {

constexpr int kFirstFormatButton = 101;
constexpr int kRowsPerColumn = 14;

}  // namespace

bool DestinationButtonEnabled(const FormatEntry& entry, int row, uint32_t leastBits,
                              bool allowMotion, const Settings& settings) {
  if (row < 0 || row >= kFormatCount) return false;
  if (entry.maxBits < leastBits) return false;
  if ((settings.formatEnabled[static_cast<size_t>(row)] & 0xFFFF) != 1) return false;
  return allowMotion || !(entry.caps & kCapsMotion);
}

std::optional<DestinationChoice> AskDestination(QWidget* owner, const DestinationRequest& request,
                                                const Settings& settings) {
  QDialog dialog(owner);
  dialog.setObjectName(QStringLiteral("DESTINATIONBOX"));
  dialog.setWindowTitle(QStringLiteral("Destination format"));
  ApplyControlFont(&dialog, settings);
  auto* layout = new QVBoxLayout(&dialog);
  auto* grid = new QGridLayout;
  grid->setHorizontalSpacing(6);
  grid->setVerticalSpacing(2);
  int chosen = -1;
  for (int row = 0; row < kFormatCount; ++row) {
    const FormatEntry& entry = FormatAt(row);
    QString text = ToQt(entry.description);
    auto* button = new QPushButton(text, &dialog);
    button->setObjectName(QStringLiteral("button%1").arg(kFirstFormatButton + row));
    button->setAccessibleName(text);
    button->setAutoDefault(false);
    button->setEnabled(
        DestinationButtonEnabled(entry, row, request.leastBits, request.allowMotion, settings));
    // The spare row has no format: its button is there but never shown.
    if (entry.description.empty()) button->hide();
    button->setStyleSheet(QStringLiteral("text-align: left; padding: 2px 8px;"));
    QObject::connect(button, &QPushButton::clicked, &dialog, [&dialog, &chosen, row] {
      chosen = row;
      dialog.accept();
    });
    grid->addWidget(button, row % kRowsPerColumn, row / kRowsPerColumn);
  }
  layout->addLayout(grid);

  QLineEdit* directory = nullptr;
  if (settings.PromptForDestination) {
    auto* row = new QHBoxLayout;
    QString label = ToQt(LoadMessage(kStrDestinationDirectory));
    auto* caption = new QLabel(label + QStringLiteral(":"), &dialog);
    directory = new QLineEdit(PathToQt(request.startDirectory), &dialog);
    directory->setObjectName(QStringLiteral("edit150"));
    directory->setAccessibleName(label);
    caption->setBuddy(directory);
    auto* browse = new QPushButton(QStringLiteral("Browse..."), &dialog);
    browse->setObjectName(QStringLiteral("button151"));
    browse->setAccessibleName(QStringLiteral("Browse"));
    browse->setAutoDefault(false);
    QObject::connect(browse, &QPushButton::clicked, &dialog, [&dialog, directory] {
      QString dir = QFileDialog::getExistingDirectory(
          &dialog, ToQt(LoadMessage(kStrChooseDirectory)), directory->text(),
          QFileDialog::ShowDirsOnly | QFileDialog::DontUseNativeDialog);
      if (!dir.isEmpty()) directory->setText(dir);
    });
    row->addWidget(caption);
    row->addWidget(directory, 1);
    row->addWidget(browse);
    layout->addLayout(row);
  }

  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(MakeDialogButton(&dialog, kBtnCancel, QStringLiteral("Cancel"), settings));
  buttons->addWidget(MakeDialogButton(&dialog, kBtnHelp, QStringLiteral("Help"), settings));
  layout->addLayout(buttons);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  EndDialogOnButtons(&dialog, request.onHelp);

  if (dialog.exec() != QDialog::Accepted || chosen < 0) return std::nullopt;
  DestinationChoice choice;
  choice.row = chosen;
  if (directory) choice.directory = PathFromQt(directory->text().trimmed());
  return choice;
}

}  // namespace pxm::ui
