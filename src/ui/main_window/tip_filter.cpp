#include "main_window/tip_filter.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFontDatabase>
#include <QMouseEvent>
#include <QTimer>

namespace pxm::ui {
namespace {

class QtTipTimer : public TipTimer {
 public:
  QtTipTimer() {
    timer_.setSingleShot(true);
    QObject::connect(&timer_, &QTimer::timeout, [this] {
      if (fire_) fire_();
    });
  }
  void Start(int milliseconds, std::function<void()> fire) override {
    fire_ = std::move(fire);
    timer_.start(milliseconds);
  }
  void Stop() override { timer_.stop(); }
  bool Pending() const override { return timer_.isActive(); }

 private:
  QTimer timer_;
  std::function<void()> fire_;
};

}  // namespace

std::unique_ptr<TipTimer> MakeQtTipTimer() {
  return std::make_unique<QtTipTimer>();
}

TipWindow::TipWindow(const QString& text, int fontSize)
    : QLabel(text, nullptr, Qt::ToolTip | Qt::FramelessWindowHint) {
  setObjectName(QStringLiteral("PXMtipClass"));
  QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
  font.setFamilies({QStringLiteral("sans-serif")});
  font.setStyleHint(QFont::SansSerif);
  font.setPointSize(fontSize > 0 ? fontSize : 8);
  setFont(font);
  setAttribute(Qt::WA_ShowWithoutActivating);
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setForegroundRole(QPalette::ToolTipText);
  setBackgroundRole(QPalette::ToolTipBase);
  setAutoFillBackground(true);
  setFrameStyle(QFrame::Box | QFrame::Plain);
  setMargin(2);
  adjustSize();
}

TipFilter::TipFilter(QAbstractButton* button, const QString& text, int waitMs, int fontSize,
                     std::unique_ptr<TipTimer> timer)
    : QObject(button),
      button_(button),
      tip_(std::make_unique<TipWindow>(text, fontSize)),
      timer_(std::move(timer)),
      waitMs_(waitMs) {
  button->setMouseTracking(true);
  button->installEventFilter(this);
  // Losing activation hides the tip, wherever the pointer is.
  connect(qApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState s) {
    if (s != Qt::ApplicationActive) Dismiss();
  });
}

TipFilter::~TipFilter() = default;

bool TipFilter::TipShown() const {
  return tip_->isVisible();
}

void TipFilter::Dismiss() {
  timer_->Stop();
  tip_->hide();
}

void TipFilter::Fire() {
  // Only a pointer still strictly inside the button shows the tip.
  if (!inside_ || !button_->rect().contains(lastPos_, true)) return;
  tip_->move(button_->mapToGlobal(QPoint(0, button_->height() + 1)));
  tip_->show();
  tip_->raise();
}

bool TipFilter::eventFilter(QObject* watched, QEvent* event) {
  if (watched != button_) return false;
  switch (event->type()) {
    case QEvent::MouseMove: {
      auto* mouse = static_cast<QMouseEvent*>(event);
      lastPos_ = mouse->position().toPoint();
      inside_ = button_->rect().contains(lastPos_);
      bool leftDown = mouse->buttons() & Qt::LeftButton;
      if (!inside_ || leftDown) {
        Dismiss();
      } else if (!tip_->isVisible()) {
        timer_->Start(waitMs_, [this] { Fire(); });
      }
      break;
    }
    case QEvent::Leave:
      inside_ = false;
      Dismiss();
      break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick: {
      auto* mouse = static_cast<QMouseEvent*>(event);
      if (mouse->button() == Qt::LeftButton || mouse->button() == Qt::RightButton) Dismiss();
      break;
    }
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::FocusIn:
    case QEvent::FocusOut:
    case QEvent::Hide:
    case QEvent::WindowDeactivate:
      Dismiss();
      break;
    default:
      break;
  }
  return false;
}

}  // namespace pxm::ui
