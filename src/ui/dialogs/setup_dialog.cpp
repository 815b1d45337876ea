#include "dialogs/setup_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>
#include <vector>

#include "commands/command_ids.h"
#include "common/control_font.h"
#include "common/qt_text.h"
#include "config/key_table.h"
#include "core/strings.h"
#include "dialogs/dialog_buttons.h"

namespace pxm::ui {
namespace {

constexpr int kCheckRows = 13;  // 38 check boxes in three columns

const KeyRow* RowOfControl(uint32_t control) {
  for (const KeyRow& row : KeyTable())
    if (row.control == control) return &row;
  return nullptr;
}

// A label and its control at `place` of the two-column grid under the check boxes.
template <typename Control>
Control* AddControl(QDialog* dialog, QGridLayout* grid, int place, uint32_t control,
                    const char* prefix) {
  auto* widget = new Control(dialog);
  widget->setObjectName(QString::fromLatin1(prefix) + QString::number(control));
  QString text = ToQt(SetupLabel(control));
  widget->setAccessibleName(text);
  auto* label = new QLabel(text, dialog);
  label->setBuddy(widget);
  grid->addWidget(label, place / 2, (place % 2) * 2);
  grid->addWidget(widget, place / 2, (place % 2) * 2 + 1);
  return widget;
}

void FillList(QComboBox* combo, std::span<const std::string_view> entries, int32_t selected) {
  for (std::string_view entry : entries) combo->addItem(ToQt(entry));
  combo->setCurrentIndex(selected >= 0 && selected < combo->count() ? selected : -1);
}

// "[ Default ]" and the installed faces, sorted; a stored face that is not installed is listed
// too, so that pressing Ok never changes it behind the user's back.
void FillFonts(QComboBox* combo, const std::string& stored) {
  QStringList faces = QFontDatabase::families();
  QString storedFace = ToQt(stored);
  if (!IsDefaultFace(stored) && !faces.contains(storedFace)) faces << storedFace;
  faces.sort(Qt::CaseInsensitive);
  combo->addItem(ToQt(LoadMessage(kStrDefaultFont)));
  combo->addItems(faces);
  combo->setCurrentIndex(IsDefaultFace(stored) ? 0 : combo->findText(storedFace));
}

}  // namespace

SetupDialog::SetupDialog(QWidget* owner, Settings& settings, std::function<void()> onHelp)
    : QDialog(owner), settings_(settings), state_(settings) {
  setObjectName(QStringLiteral("SETUPBOX"));
  setWindowTitle(QStringLiteral("Setup"));
  auto* layout = new QVBoxLayout(this);
  BuildChecks();
  BuildLists();
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  QPushButton* ok = MakeDialogButton(this, kBtnOk, QStringLiteral("Ok"), settings);
  ok->setDefault(true);
  buttons->addWidget(ok);
  buttons->addWidget(MakeDialogButton(this, kBtnHelp, QStringLiteral("Help"), settings));
  layout->addLayout(buttons);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  ApplyControlFont(this, settings);
  EndDialogOnButtons(this, onHelp);
}

void SetupDialog::BuildChecks() {
  std::vector<const KeyRow*> flags;
  for (const KeyRow& row : KeyTable())
    if (row.control != 0 && (row.kind & kKindFlag)) flags.push_back(&row);
  // The boxes stand in the order of their identifiers, which is also the tab order.
  std::sort(flags.begin(), flags.end(),
            [](const KeyRow* a, const KeyRow* b) { return a->control < b->control; });
  auto* grid = new QGridLayout;
  grid->setHorizontalSpacing(16);
  grid->setVerticalSpacing(2);
  for (size_t i = 0; i < flags.size(); ++i) {
    uint32_t control = flags[i]->control;
    QString label = ToQt(SetupLabel(control));
    auto* box = new QCheckBox(label, this);
    box->setObjectName(QStringLiteral("check%1").arg(control));
    box->setAccessibleName(label);
    box->setChecked(settings_.*(flags[i]->number) != 0);
    // The setting changes with the click itself; closing the dialog cannot undo it.
    connect(box, &QCheckBox::clicked, this,
            [this, box, control] { box->setChecked(state_.ClickFlag(control)); });
    grid->addWidget(box, static_cast<int>(i) % kCheckRows, static_cast<int>(i) / kCheckRows);
  }
  static_cast<QVBoxLayout*>(layout())->addLayout(grid);
}

void SetupDialog::BuildLists() {
  auto* grid = new QGridLayout;
  grid->setHorizontalSpacing(8);
  grid->setColumnStretch(1, 1);
  grid->setColumnStretch(3, 1);
  photoCd_ = AddControl<QComboBox>(this, grid, 0, 205, "combo");
  FillList(photoCd_, PhotoCdReadOptions(), settings_.PhotoCDResolution);
  tiff_ = AddControl<QComboBox>(this, grid, 1, 207, "combo");
  FillList(tiff_, TiffWriteOptions(), settings_.TiffOptions);
  vector_ = AddControl<QComboBox>(this, grid, 2, 208, "combo");
  FillList(vector_, VectorReadOptions(), settings_.VectorOptions);
  thumbnails_ = AddControl<QComboBox>(this, grid, 3, 210, "combo");
  FillList(thumbnails_, ThumbnailWriteModes(), settings_.DitherThumbnails);
  drive_ = AddControl<QComboBox>(this, grid, 4, 206, "combo");
  // There are no drives here: a letter only says that a spill file may be made.
  int32_t letter = settings_.VirtualMemoryDrive;
  drive_->addItem(QStringLiteral("None"));
  drive_->addItem(ToQt(DriveEntry(letter > 0 && letter <= 0x7F ? letter : 'c')));
  drive_->setCurrentIndex(letter > 0 && letter <= 0x7F ? 1 : 0);
  font_ = AddControl<QComboBox>(this, grid, 5, 209, "combo");
  FillFonts(font_, settings_.ControlFontName);
  connect(font_, &QComboBox::activated, this, [this] {
    state_.ChooseFont(FromQt(font_->currentText()));
    ApplyControlFont(this, settings_);
  });
  for (uint32_t control : {204u, 211u}) {
    const KeyRow* row = RowOfControl(control);
    SpinText range = ParseSpinText(SpinTextOf(control));
    auto* spin = AddControl<QSpinBox>(this, grid, control == 204 ? 6 : 7, control, "spin");
    spin->setRange(range.minimum, range.maximum);
    spin->setValue(row ? settings_.*(row->number) : range.initial);
    (control == 204 ? jpegQuality_ : pngCompression_) = spin;
  }
  static_cast<QVBoxLayout*>(layout())->addLayout(grid);
}

void SetupDialog::done(int result) {
  // Without a Cancel button, Escape and the window's close keep what the check boxes did and
  // leave the lists and spins as they were; only Ok takes them.
  if (result == kBtnOk) {
    SetupValues values;
    values.photoCd = photoCd_->currentIndex();
    values.drive = drive_->currentIndex() < 0 ? std::string() : FromQt(drive_->currentText());
    values.tiff = tiff_->currentIndex();
    values.vector = vector_->currentIndex();
    // "[ Default ]" over an empty stored name is no change of face.
    values.font = font_->currentIndex() == 0 && IsDefaultFace(settings_.ControlFontName)
                      ? settings_.ControlFontName
                      : FromQt(font_->currentText());
    values.thumbnailMode = thumbnails_->currentIndex();
    values.jpegQuality = jpegQuality_->value();
    values.pngCompression = pngCompression_->value();
    state_.Ok(values);
  }
  QDialog::done(result);
}

int RunSetupDialog(QWidget* owner, Settings& settings, const std::function<void()>& onHelp) {
  SetupDialog dialog(owner, settings, onHelp);
  dialog.exec();
  return dialog.Result();
}

}  // namespace pxm::ui
