#pragma once

#include <QObject>
#include <functional>
#include <map>
#include <string>
#include <vector>

class QAction;
class QMenu;
class QMenuBar;

// "MainMenu": the menus of the command table, the recent directories at the end of the File
// menu. Every item sends its identifier.
namespace pxm::ui {

class MainMenu : public QObject {
  Q_OBJECT
 public:
  MainMenu(QMenuBar* bar, std::function<void(int id)> send);

  QAction* Action(int id) const;
  QMenu* Menu(int menuId) const;
  // Shows `directories` (oldest first) as the items 1000, 1001, ... below a separator.
  void SetRecentDirectories(const std::vector<std::string>& directories);
  // The text of recent item `id`, or "" when there is none.
  std::string RecentDirectory(int id) const;

 private:
  std::function<void(int)> send_;
  std::map<int, QAction*> actions_;
  std::map<int, QMenu*> menus_;
  QAction* recentSeparator_ = nullptr;
  std::vector<QAction*> recent_;
  std::vector<std::string> recentTexts_;
};

}  // namespace pxm::ui
