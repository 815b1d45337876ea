#pragma once

#include <QFrame>
#include <QWidget>
#include <functional>
#include <map>
#include <memory>

#include "config/settings.h"
#include "main_window/tip_filter.h"

class QAbstractButton;

// The two button bars across the top of the main window; ButtonBar chooses which one shows.
namespace pxm::ui {

// The text bar: on its background rectangle (126), two rows of nine push buttons of 64 × 20.
class TextButtonBar : public QFrame {
  Q_OBJECT
 public:
  explicit TextButtonBar(QWidget* parent);
  QAbstractButton* Button(int id) const;

 signals:
  void command(int id);

 private:
  std::map<int, QAbstractButton*> buttons_;
};

// The graphic bar: 22 picture buttons of 26 × 26 in one row, each with its tooltip window.
class GraphicButtonBar : public QWidget {
  Q_OBJECT
 public:
  // Makes the timer of the tip of button `id`.
  using TimerFactory = std::function<std::unique_ptr<TipTimer>(int id)>;

  explicit GraphicButtonBar(QWidget* parent);
  QAbstractButton* Button(int id) const;
  // Makes the tooltips again for TipWait and TipFontSize: none at all when TipWait is 0.
  void SetTips(const Settings& settings, const TimerFactory& timers = {});
  TipFilter* Tip(int id) const;

 signals:
  void command(int id);

 private:
  std::map<int, QAbstractButton*> buttons_;
  std::map<int, TipFilter*> tips_;
};

}  // namespace pxm::ui
