#pragma once

#include <QString>
#include <cstdint>

class QLabel;
class QProgressBar;
class QStatusBar;

// The status bar's cells: the tag count, the message of the running operation and its progress.
namespace pxm::ui {

class StatusCells {
 public:
  explicit StatusCells(QStatusBar* bar);

  void SetTagCount(const QString& text);
  void SetMessage(const QString& text);
  // Done of total; a total of 0 empties the bar. Totals above what an int holds are fine.
  void SetProgress(uint64_t total, uint64_t done);

  QString TagCount() const;
  QString Message() const;
  QProgressBar* progressBar() const { return progress_; }

 private:
  QLabel* tagCount_;
  QLabel* message_;
  QProgressBar* progress_;
};

}  // namespace pxm::ui
