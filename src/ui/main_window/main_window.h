#pragma once

#include <QMainWindow>
#include <QPointer>
#include <memory>
#include <string>
#include <vector>

#include "commands/batch_window.h"
#include "commands/dispatcher.h"
#include "help/help_window.h"
#include "main_window/app_state.h"

class QFrame;
class QScrollBar;

namespace pxm::ui {

class DirectoryWatch;
class FileListModel;
class FileListView;
class GraphicButtonBar;
class GuiHost;

class MainMenu;
class StatusCells;
class TextButtonBar;

// The program's home: the button bars, the file list of the current directory and the status
// bar. Every command arrives at Dispatch.
class MainWindow : public QMainWindow, public BatchWindow {
  Q_OBJECT
 public:
  explicit MainWindow(AppState& app, QWidget* parent = nullptr);
  ~MainWindow() override;

  // The one way in for every command; `shift` tells whether the Shift key was held.
  int Dispatch(int id, bool shift);
  // As Dispatch, with the Shift key as it is now.
  void Send(int id);

  // Makes `directory` the current one and lists it (nothing changes when it cannot be
  // entered, but the list is built again). Answers whether the directory changed.
  bool ChangeDirectory(const std::string& directory);
  // Builds the list of the current directory again; with `keepTags`, entries still there keep
  // their tags.
  void RebuildList(bool keepTags);
  // Places the window by the settings: remembered place or defaults, maximised on request.
  void ApplyPlacement();
  // Brings the window to the top (a later start asked for it).
  void BringToFront();
  // Writes PXM.INI now (with the current directory and the recent directories).
  void WriteConfigurationNow();
  // What the Setup dialog's result bits ask for: 1 rebuilds the button bar and the fonts, 2 the
  // list.
  void ApplySetupResult(int bits);

  // The state of the window, for the status bar, the commands and tests.
  size_t TaggedCount() const;
  std::vector<std::string> TaggedEntries() const;
  bool ThumbnailMode() const { return thumbnailMode_; }
  FileListView* List() const { return list_; }
  FileListModel* Model() const { return model_; }
  StatusCells& Status() const { return *cells_; }
  MainMenu& Menu() const { return *menu_; }
  TextButtonBar* TextBar() const { return textBar_; }
  GraphicButtonBar* GraphicBar() const { return graphicBar_; }
  HelpWindow* Help() const { return help_; }
  AppState& App() const { return app_; }

  // BatchWindow
  QWidget* Owner() override { return this; }
  GuiHost& BatchHost() override { return *host_; }
  std::vector<std::string> TaggedFiles() const override;
  void TagEntries(const std::vector<std::string>& entries) override;
  std::string Directory() const override { return directory_; }
  void ShowHelp(std::string_view topic) override;
  void BatchFinished() override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildCentralArea();
  void LayOutCentralArea();
  void RegisterCommands();
  void ShowBars();
  void UpdateTagCount();
  void UpdatePaste();
  void RememberPlace();
  void Open(const QModelIndex& index);
  void RefreshFromDisk();
  void RecentDirectoryCommand(const CommandRequest& request);
  void ExitCommand(const CommandRequest& request);
  void ChooseDirectoryCommand();
  void SetupCommand();
  void FormatsCommand();
  void ShowRecentDirectories();

  AppState& app_;
  std::string directory_;
  QWidget* central_ = nullptr;
  TextButtonBar* textBar_ = nullptr;
  GraphicButtonBar* graphicBar_ = nullptr;
  QFrame* separator_ = nullptr;
  QFrame* listFrame_ = nullptr;
  QScrollBar* thumbScroll_ = nullptr;
  FileListView* list_ = nullptr;
  FileListModel* model_ = nullptr;
  std::unique_ptr<StatusCells> cells_;
  std::unique_ptr<GuiHost> host_;
  MainMenu* menu_ = nullptr;
  DirectoryWatch* watch_ = nullptr;
  QPointer<HelpWindow> help_;
  Dispatcher dispatcher_;
  bool thumbnailMode_ = false;
  bool closing_ = false;
  bool refreshPending_ = false;
  int lastClicked_ = -1;
};

}  // namespace pxm::ui
