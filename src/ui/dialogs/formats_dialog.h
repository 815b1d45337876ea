#pragma once

#include <QDialog>
#include <functional>
#include <string>

#include "config/settings.h"

class QListWidget;

// The "Supported Formats" dialog: a line per format row ("%c\t%s": a mark and the
// description); choosing a line switches the format on or off at once.
namespace pxm::ui {

// The line of row `row`: the mark × when its switch is 1, a blank otherwise, a tab and the
// description.
std::string FormatsLine(int row, const Settings& settings);

class FormatsDialog : public QDialog {
  Q_OBJECT
 public:
  FormatsDialog(QWidget* owner, Settings& settings, std::function<void()> onHelp);

  QListWidget* List() const { return list_; }
  // Whether any switch was flipped.
  bool Changed() const { return changed_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Flip(int line);

  Settings& settings_;
  QListWidget* list_;
  std::vector<int> rows_;  // the format row of each line
  bool changed_ = false;
};

// Runs the dialog; answers whether any switch changed.
bool RunFormatsDialog(QWidget* owner, Settings& settings, const std::function<void()>& onHelp);

}  // namespace pxm::ui
