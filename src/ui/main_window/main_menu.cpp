#include "main_window/main_menu.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

#include "commands/command_ids.h"
#include "commands/command_table.h"
#include "common/qt_text.h"

namespace pxm::ui {

MainMenu::MainMenu(QMenuBar* bar, std::function<void(int id)> send)
    : QObject(bar), send_(std::move(send)) {
  bar->setObjectName(QStringLiteral("MainMenu"));
  bar->setAccessibleName(QStringLiteral("Main menu"));
  for (const MenuInfo& menuInfo : MenuBarTable()) {
    QMenu* menu = bar->addMenu(ToQt(menuInfo.title));
    menu->setObjectName(QStringLiteral("menu%1").arg(static_cast<int>(menuInfo.id)));
    menu->menuAction()->setObjectName(menu->objectName() + QStringLiteral("Title"));
    menus_[static_cast<int>(menuInfo.id)] = menu;
    for (const CommandInfo& command : CommandTable()) {
      if (command.menu != menuInfo.id || command.menuText.empty()) continue;
      if (command.separatorBefore && !menu->isEmpty()) menu->addSeparator();
      QAction* action = menu->addAction(ToQt(command.menuText));
      action->setObjectName(QStringLiteral("menu%1").arg(command.id));
      if (command.key != QKeySequence::UnknownKey) {
        action->setShortcuts(command.key);
        action->setShortcutContext(Qt::WindowShortcut);
      }
      int id = command.id;
      connect(action, &QAction::triggered, this, [this, id] { send_(id); });
      actions_[id] = action;
    }
  }
  // The thumbnail commands wait for thumbnail mode; "Use Thumbnails" carries a check mark.
  for (int id : {kCmdAddThumbnails, kCmdRemoveThumbnails, kCmdThumbDetails, kCmdThumbSearch})
    actions_[id]->setEnabled(false);
  actions_[kCmdUseThumbnails]->setCheckable(true);
}

QAction* MainMenu::Action(int id) const {
  auto it = actions_.find(id);
  return it == actions_.end() ? nullptr : it->second;
}

QMenu* MainMenu::Menu(int menuId) const {
  auto it = menus_.find(menuId);
  return it == menus_.end() ? nullptr : it->second;
}

void MainMenu::SetRecentDirectories(const std::vector<std::string>& directories) {
  QMenu* file = Menu(static_cast<int>(MenuId::kFile));
  for (QAction* action : recent_) {
    file->removeAction(action);
    delete action;
  }
  recent_.clear();
  recentTexts_ = directories;
  if (directories.empty()) {
    if (recentSeparator_) recentSeparator_->setVisible(false);
    return;
  }
  if (!recentSeparator_) recentSeparator_ = file->addSeparator();
  recentSeparator_->setVisible(true);
  for (size_t i = 0; i < directories.size(); ++i) {
    QString text = PathToQt(directories[i]);
    // An ampersand in a path is shown, not taken for a mnemonic.
    text.replace(u'&', QStringLiteral("&&"));
    auto* action = new QAction(text, file);
    int id = kCmdRecentFirst + static_cast<int>(i);
    action->setObjectName(QStringLiteral("menu%1").arg(id));
    connect(action, &QAction::triggered, this, [this, id] { send_(id); });
    file->addAction(action);
    recent_.push_back(action);
  }
}

std::string MainMenu::RecentDirectory(int id) const {
  size_t index = static_cast<size_t>(id - kCmdRecentFirst);
  if (id < kCmdRecentFirst || index >= recentTexts_.size()) return {};
  return recentTexts_[index];
}

}  // namespace pxm::ui
