#pragma once

#include <QLabel>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <functional>
#include <memory>

class QAbstractButton;

// The graphic buttons' tooltips: a tip window of the program's own per button, shown when the
// pointer has rested on the button for TipWait milliseconds and hidden by anything else the
// user does.
namespace pxm::ui {

// The one-shot timer a tip waits on; tests drive a fake one.
class TipTimer {
 public:
  virtual ~TipTimer() = default;
  virtual void Start(int milliseconds, std::function<void()> fire) = 0;
  virtual void Stop() = 0;
  virtual bool Pending() const = 0;
};
std::unique_ptr<TipTimer> MakeQtTipTimer();

// The tip window ("PXMtipClass"): the text in the plain sans-serif face at TipFontSize points
// on the tooltip colours, sized to the text.
class TipWindow : public QLabel {
  Q_OBJECT
 public:
  TipWindow(const QString& text, int fontSize);
};

class TipFilter : public QObject {
  Q_OBJECT
 public:
  // Watches `button`; its tip window shows `text`.
  TipFilter(QAbstractButton* button, const QString& text, int waitMs, int fontSize,
            std::unique_ptr<TipTimer> timer);
  ~TipFilter() override;

  bool TipShown() const;
  bool TimerPending() const { return timer_->Pending(); }
  TipWindow* Tip() const { return tip_.get(); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Dismiss();
  void Fire();

  QAbstractButton* button_;
  std::unique_ptr<TipWindow> tip_;
  std::unique_ptr<TipTimer> timer_;
  int waitMs_;
  QPoint lastPos_{-1, -1};
  bool inside_ = false;
};

}  // namespace pxm::ui
