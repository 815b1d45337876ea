#include "host/abort_filter.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>

namespace pxm::ui {

bool AbortFilter::Swallow(QEvent* event) {
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: {
      auto* mouse = static_cast<QMouseEvent*>(event);
      if (mouse->button() == Qt::LeftButton || mouse->button() == Qt::RightButton) click_ = true;
      return true;
    }
    // Escape asks to stop as a click does, for those who work from the keyboard.
    case QEvent::KeyPress:
      if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) click_ = true;
      return true;
    // Everything else the user can do to a window: keys, the wheel, pointer moves, hovering,
    // tooltips, menus, drags and the window manager's close.
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::ContextMenu:
    case QEvent::HoverEnter:
    case QEvent::HoverLeave:
    case QEvent::HoverMove:
    case QEvent::Enter:
    case QEvent::Leave:
    case QEvent::ToolTip:
    case QEvent::WhatsThis:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::InputMethod:
    case QEvent::Close:
      return true;
    default:
      return false;
  }
}

bool AbortFilter::eventFilter(QObject* watched, QEvent* event) {
  if (!active_) return QObject::eventFilter(watched, event);
  return Swallow(event);
}

}  // namespace pxm::ui
