#include "main_window/button_bars.h"

#include <QPushButton>
#include <QToolButton>

#include "commands/command_table.h"
#include "common/qt_text.h"
#include "core/strings.h"
#include "main_window/button_pictures.h"

namespace pxm::ui {
namespace {

constexpr int kTextButtonWidth = 64;
constexpr int kTextButtonHeight = 20;
constexpr int kPictureButton = 26;

QString TooltipText(int id) {
  return ToQt(LoadMessage(kStrTooltipBase + id));
}

}  // namespace

TextButtonBar::TextButtonBar(QWidget* parent) : QFrame(parent) {
  setObjectName(QStringLiteral("static126"));
  setFrameStyle(QFrame::NoFrame);
  setAutoFillBackground(true);
  setBackgroundRole(QPalette::Window);
  for (size_t row = 0; row < kTextButtonRows.size(); ++row) {
    for (size_t column = 0; column < kTextButtonRows[row].size(); ++column) {
      int id = kTextButtonRows[row][column];
      const CommandInfo* info = FindCommand(id);
      QString label = info ? ToQt(info->buttonText) : QString();
      auto* button = new QPushButton(label, this);
      button->setObjectName(QStringLiteral("button%1").arg(id));
      button->setAccessibleName(label);
      button->setFocusPolicy(Qt::NoFocus);
      button->setGeometry(static_cast<int>(column) * kTextButtonWidth,
                          1 + static_cast<int>(row) * kTextButtonHeight, kTextButtonWidth,
                          kTextButtonHeight);
      connect(button, &QPushButton::clicked, this, [this, id] { emit command(id); });
      buttons_[id] = button;
    }
  }
  setFixedSize(576, 40);
}

QAbstractButton* TextButtonBar::Button(int id) const {
  auto it = buttons_.find(id);
  return it == buttons_.end() ? nullptr : it->second;
}

GraphicButtonBar::GraphicButtonBar(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("graphicBar"));
  int x = 0;
  for (int id : kGraphicButtons) {
    auto* button = new QToolButton(this);
    button->setObjectName(QStringLiteral("button%1").arg(id));
    button->setIcon(ButtonIcon(id));
    button->setIconSize(QSize(20, 20));
    button->setAccessibleName(TooltipText(id));
    button->setAccessibleDescription(TooltipText(id));
    button->setFocusPolicy(Qt::NoFocus);
    button->setGeometry(x, 1, kPictureButton, kPictureButton);
    x += kPictureButton;
    connect(button, &QToolButton::clicked, this, [this, id] { emit command(id); });
    buttons_[id] = button;
  }
  setFixedSize(x, 1 + kPictureButton);
}

QAbstractButton* GraphicButtonBar::Button(int id) const {
  auto it = buttons_.find(id);
  return it == buttons_.end() ? nullptr : it->second;
}

void GraphicButtonBar::SetTips(const Settings& settings, const TimerFactory& timers) {
  for (auto& [id, tip] : tips_) delete tip;
  tips_.clear();
  if (settings.TipWait == 0) return;
  for (auto& [id, button] : buttons_)
    tips_[id] = new TipFilter(button, TooltipText(id), settings.TipWait, settings.TipFontSize,
                              timers ? timers(id) : MakeQtTipTimer());
}

TipFilter* GraphicButtonBar::Tip(int id) const {
  auto it = tips_.find(id);
  return it == tips_.end() ? nullptr : it->second;
}

}  // namespace pxm::ui
