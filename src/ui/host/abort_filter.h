#pragma once

#include <QObject>

// While an operation runs nothing the user does may start another command: this filter, set on
// the whole application, swallows every input event and turns a left or right mouse press (or
// Escape) into the request to stop. Paint, timer and window-system events go through, so the
// progress bar keeps moving.
namespace pxm::ui {

class AbortFilter : public QObject {
  Q_OBJECT
 public:
  using QObject::QObject;

  void SetActive(bool active) { active_ = active; }
  bool Active() const { return active_; }
  // Answers whether a click came since the last call, and forgets it.
  bool TakeClick() {
    bool click = click_;
    click_ = false;
    return click;
  }

  // Whether the filter swallows `event` (and, for a left or right press, records the click).
  bool Swallow(QEvent* event);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool active_ = false;
  bool click_ = false;
};

}  // namespace pxm::ui
