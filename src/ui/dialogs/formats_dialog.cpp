#include "dialogs/formats_dialog.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include "commands/command_ids.h"
#include "common/control_font.h"
#include "common/qt_text.h"
#include "dialogs/dialog_buttons.h"
#include "formats/format_table.h"

namespace pxm::ui {
namespace {

// The mark of a switched-on format: character 215 of the Latin-1 set.
constexpr char kMark[] = "\xC3\x97";

// Draws a line's two tab-separated parts in two columns: the mark, then the description.
class MarkColumnDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    QStyleOptionViewItem item(option);
    initStyleOption(&item, index);
    const QStringList parts = item.text.split(u'\t');
    item.text.clear();
    const QWidget* widget = item.widget;
    QStyle* style = widget ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &item, painter, widget);
    QRect text = style->subElementRect(QStyle::SE_ItemViewItemText, &item, widget);
    const int markWidth = item.fontMetrics.horizontalAdvance(QStringLiteral("MM"));
    painter->save();
    painter->setPen(item.palette.color(
        item.state & QStyle::State_Selected ? QPalette::HighlightedText : QPalette::Text));
    painter->drawText(text.adjusted(4, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, parts.value(0));
    painter->drawText(text.adjusted(4 + markWidth, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                      parts.value(1));
    painter->restore();
  }
};

}  // namespace

std::string FormatsLine(int row, const Settings& settings) {
  bool on = (settings.formatEnabled[static_cast<size_t>(row)] & 0xFFFF) == 1;
  return std::string(on ? kMark : " ") + "\t" + std::string(FormatAt(row).description);
}

FormatsDialog::FormatsDialog(QWidget* owner, Settings& settings, std::function<void()> onHelp)
    : QDialog(owner), settings_(settings) {
  setObjectName(QStringLiteral("FORMATSBOX"));
  setWindowTitle(QStringLiteral("Supported Formats"));
  auto* layout = new QVBoxLayout(this);
  list_ = new QListWidget(this);
  list_->setObjectName(QStringLiteral("list101"));
  list_->setAccessibleName(QStringLiteral("Supported Formats"));
  for (int row = 0; row < kFormatCount; ++row) {
    const FormatEntry& entry = FormatAt(row);
    // Rows filled at run time are not the user's to switch; the spare row has no format.
    if ((entry.caps & kCapsExternal) || entry.description.empty()) continue;
    list_->addItem(ToQt(FormatsLine(row, settings)));
    rows_.push_back(row);
  }
  list_->setItemDelegate(new MarkColumnDelegate(list_));
  list_->setMinimumSize(300, 360);
  list_->installEventFilter(this);
  connect(list_, &QListWidget::itemClicked, this,
          [this](QListWidgetItem* item) { Flip(list_->row(item)); });
  layout->addWidget(list_);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  QPushButton* ok = MakeDialogButton(this, kBtnOk, QStringLiteral("Ok"), settings);
  ok->setDefault(true);
  buttons->addWidget(ok);
  buttons->addWidget(MakeDialogButton(this, kBtnHelp, QStringLiteral("Help"), settings));
  layout->addLayout(buttons);
  ApplyControlFont(this, settings);
  EndDialogOnButtons(this, onHelp);
}

void FormatsDialog::Flip(int line) {
  if (line < 0 || line >= static_cast<int>(rows_.size())) return;
  int row = rows_[static_cast<size_t>(line)];
  uint32_t& word = settings_.formatEnabled[static_cast<size_t>(row)];
  word = (word & 0xFFFF) == 1 ? 0 : 1;
  list_->item(line)->setText(ToQt(FormatsLine(row, settings_)));
  changed_ = true;
}

bool FormatsDialog::eventFilter(QObject* watched, QEvent* event) {
  // Space chooses the current line from the keyboard, as a click does.
  if (watched == list_ && event->type() == QEvent::KeyPress &&
      static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space) {
    Flip(list_->currentRow());
    return true;
  }
  return QDialog::eventFilter(watched, event);
}

bool RunFormatsDialog(QWidget* owner, Settings& settings, const std::function<void()>& onHelp) {
  FormatsDialog dialog(owner, settings, onHelp);
  dialog.exec();
  return dialog.Changed();
}

}  // namespace pxm::ui
