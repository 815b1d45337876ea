#include "main_window/status_cells.h"

#include <QLabel>
#include <QProgressBar>
#include <QStatusBar>

#include "common/qt_text.h"
#include "core/strings.h"

namespace pxm::ui {
namespace {

// The bar counts in thousandths, whatever the picture's height.
constexpr int kProgressSteps = 1000;

}  // namespace

StatusCells::StatusCells(QStatusBar* bar) {
  bar->setSizeGripEnabled(true);
  tagCount_ = new QLabel(bar);
  tagCount_->setObjectName(QStringLiteral("statusTagCount"));
  tagCount_->setAccessibleName(ToQt(LoadMessage(kStrTagCountCell)));
  tagCount_->setMinimumWidth(
      tagCount_->fontMetrics().horizontalAdvance(QStringLiteral("0000 files tagged")));
  message_ = new QLabel(bar);
  message_->setObjectName(QStringLiteral("statusMessage"));
  message_->setAccessibleName(ToQt(LoadMessage(kStrStatusCell)));
  message_->setTextFormat(Qt::PlainText);
  progress_ = new QProgressBar(bar);
  progress_->setObjectName(QStringLiteral("statusProgress"));
  progress_->setAccessibleName(ToQt(LoadMessage(kStrProgressCell)));
  progress_->setRange(0, kProgressSteps);
  progress_->setValue(0);
  progress_->setTextVisible(false);
  progress_->setFixedWidth(120);
  progress_->setMaximumHeight(tagCount_->sizeHint().height());
  bar->addWidget(tagCount_);
  bar->addWidget(message_, 1);
  bar->addPermanentWidget(progress_);
}

void StatusCells::SetTagCount(const QString& text) {
  tagCount_->setText(text);
}

void StatusCells::SetMessage(const QString& text) {
  message_->setText(text);
}

void StatusCells::SetProgress(uint64_t total, uint64_t done) {
  int value = 0;
  if (total > 0) value = static_cast<int>(std::min(done, total) * kProgressSteps / total);
  if (progress_->value() != value) progress_->setValue(value);
}

QString StatusCells::TagCount() const {
  return tagCount_->text();
}
QString StatusCells::Message() const {
  return message_->text();
}

}  // namespace pxm::ui
