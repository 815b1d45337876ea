#include "main_window/main_window.h"

#include <unistd.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QFileDialog>
#include <QFrame>
#include <QItemSelection>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QScrollBar>
#include <QStatusBar>
#include <algorithm>
#include <filesystem>

#include "batch/operation.h"
#include "commands/command_ids.h"
#include "commands/convert_command.h"
#include "common/control_font.h"
#include "common/qt_text.h"
#include "config/ini.h"
#include "core/host.h"
#include "core/names.h"
#include "core/platform.h"
#include "core/strings.h"
#include "dialogs/about_dialog.h"
#include "dialogs/formats_dialog.h"
#include "dialogs/setup_dialog.h"
#include "help/help_window.h"
#include "host/gui_host.h"
#include "main_window/button_bars.h"
#include "main_window/button_pictures.h"
#include "main_window/directory_watch.h"
#include "main_window/file_list.h"
#include "main_window/file_list_builder.h"
#include "main_window/list_texts.h"
#include "main_window/main_menu.h"
#include "main_window/placement.h"
#include "main_window/status_cells.h"

namespace pxm::ui {
namespace {

// Where the main window's controls sit at its default size; the list frame grows with the
// window.
constexpr int kBarHeight = 40;
constexpr int kFrameLeft = 8, kFrameTop = 72, kFrameBottomGap = 12;
constexpr int kListLeft = 16, kListTop = 76, kListBottomGap = 26;
// Columns wider than this show long names shortened in the middle.
constexpr int kWidestColumn = 420;

// The cell every entry is drawn in: as wide as the widest of the longest names.
QSize CellSize(const std::vector<std::string>& entries, const QFontMetrics& metrics) {
  // Measuring 10,000 names costs more than listing them; the widest is among the longest.
  std::vector<const std::string*> longest;
  longest.reserve(entries.size());
  for (const std::string& entry : entries) longest.push_back(&entry);
  const size_t kMeasured = 48;
  if (longest.size() > kMeasured) {
    std::nth_element(
        longest.begin(), longest.begin() + kMeasured, longest.end(),
        [](const std::string* a, const std::string* b) { return a->size() > b->size(); });
    longest.resize(kMeasured);
  }
  int width = metrics.horizontalAdvance(QStringLiteral("[..]"));
  for (const std::string* entry : longest)
    width = std::max(width, metrics.horizontalAdvance(PathToQt(*entry)));
  return QSize(std::min(width + 16, kWidestColumn), metrics.height() + 2);
}

QItemSelection SelectionOfRows(const QAbstractItemModel* model, std::vector<int> rows) {
  std::sort(rows.begin(), rows.end());
  QItemSelection selection;
  for (size_t i = 0; i < rows.size();) {
    size_t j = i;
    while (j + 1 < rows.size() && rows[j + 1] == rows[j] + 1) ++j;
    selection.select(model->index(rows[i], 0), model->index(rows[j], 0));
    i = j + 1;
  }
  return selection;
}

}  // namespace

MainWindow::MainWindow(AppState& app, QWidget* parent)
    : QMainWindow(parent),
      app_(app),
      dispatcher_({[this] { return TaggedFiles().size(); },
                   [this](std::string_view text) { host_->ShowMessage(text); }}) {
  setObjectName(QStringLiteral("Pixmill"));
  setWindowTitle(ToQt(LoadMessage(kStrProgramName)));
  setWindowIcon(ButtonIcon(kProgramPicture));
  menu_ = new MainMenu(menuBar(), [this](int id) { Send(id); });
  BuildCentralArea();
  cells_ = std::make_unique<StatusCells>(statusBar());
  host_ = std::make_unique<GuiHost>(this, cells_.get());
  watch_ = new DirectoryWatch(this);
  connect(watch_, &DirectoryWatch::changed, this, &MainWindow::RefreshFromDisk);
  connect(host_.get(), &GuiHost::fileWritten, watch_, &DirectoryWatch::Poke);
  connect(QApplication::clipboard(), &QClipboard::dataChanged, this, &MainWindow::UpdatePaste);
  RegisterCommands();
  resize(kDefaultWidth, kDefaultHeight);
  ShowBars();
  UpdatePaste();
  ShowRecentDirectories();

  directory_ = platform::CurrentDirectory();
  RebuildList(false);
  watch_->Watch(PathToQt(directory_));
}

MainWindow::~MainWindow() {
  if (help_) delete help_;
}

void MainWindow::BuildCentralArea() {
  central_ = new QWidget(this);
  central_->setObjectName(QStringLiteral("mainArea"));
  setCentralWidget(central_);
  textBar_ = new TextButtonBar(central_);
  graphicBar_ = new GraphicButtonBar(central_);
  connect(textBar_, &TextButtonBar::command, this, &MainWindow::Send);
  connect(graphicBar_, &GraphicButtonBar::command, this, &MainWindow::Send);
  separator_ = new QFrame(central_);
  separator_->setObjectName(QStringLiteral("static123"));
  separator_->setFrameStyle(QFrame::HLine | QFrame::Sunken);
  listFrame_ = new QFrame(central_);
  listFrame_->setObjectName(QStringLiteral("static124"));
  listFrame_->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  thumbScroll_ = new QScrollBar(Qt::Vertical, central_);
  thumbScroll_->setObjectName(QStringLiteral("scroll501"));
  thumbScroll_->setAccessibleName(QStringLiteral("Thumbnail pages"));
  thumbScroll_->hide();

  model_ = new FileListModel(this);
  list_ = new FileListView(central_);
  list_->setModel(model_);
  connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &MainWindow::UpdateTagCount);
  connect(list_, &QListView::clicked, this,
          [this](const QModelIndex& index) { lastClicked_ = index.row(); });
  connect(list_, &QListView::doubleClicked, this, &MainWindow::Open);
  connect(list_, &FileListView::openRequested, this, &MainWindow::Open);
  connect(list_, &FileListView::parentRequested, this, [this] {
    int row = model_->RowOf("[..]");
    if (row >= 0) Open(model_->index(row));
  });
  // F5 builds the list anew, and a list built anew has nothing tagged.
  connect(list_, &FileListView::rebuildRequested, this, [this] { RebuildList(false); });
  connect(list_, &FileListView::commandRequested, this, &MainWindow::Send);
  central_->installEventFilter(this);
  list_->setFocus();
}

void MainWindow::LayOutCentralArea() {
  int w = central_->width(), h = central_->height();
  textBar_->move(0, 0);
  graphicBar_->move(0, 0);
  separator_->setGeometry(0, kBarHeight, w, 2);
  listFrame_->setGeometry(kFrameLeft, kFrameTop, std::max(w - 2 * kFrameLeft, 32),
                          std::max(h - kFrameTop - kFrameBottomGap, 24));
  list_->setGeometry(kListLeft, kListTop, std::max(w - 2 * kListLeft, 16),
                     std::max(h - kListTop - kListBottomGap, 16));
  thumbScroll_->setGeometry(w - 18, kBarHeight, 18, h - kBarHeight);
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == central_ && event->type() == QEvent::Resize) LayOutCentralArea();
  return QMainWindow::eventFilter(watched, event);
}

void MainWindow::RegisterCommands() {
  dispatcher_.On(kCmdTagAll, [this](const CommandRequest&) { list_->selectAll(); });
  dispatcher_.On(kCmdClearAll, [this](const CommandRequest&) { list_->clearSelection(); });
  dispatcher_.On(kCmdHelpIndex, [this](const CommandRequest&) { ShowHelp("index"); });
  dispatcher_.On(kCmdUsingHelp, [this](const CommandRequest&) { ShowHelp("using-help"); });
  dispatcher_.On(kCmdAbout, [this](const CommandRequest&) { ShowAbout(this); });
  dispatcher_.On(kCmdSetup, [this](const CommandRequest&) { SetupCommand(); });
  dispatcher_.On(kCmdFormats, [this](const CommandRequest&) { FormatsCommand(); });
  dispatcher_.On(kCmdChangeDirectory, [this](const CommandRequest&) { ChooseDirectoryCommand(); });
  dispatcher_.On(kCmdExit, [this](const CommandRequest& r) { ExitCommand(r); });
  dispatcher_.On(kCmdConvert, [this](const CommandRequest&) { RunConvertCommand(*this); });
  dispatcher_.On(kCmdUseThumbnails, [this](const CommandRequest&) {
    // Thumbnail mode itself comes with its own work; here the command keeps its check mark.
    thumbnailMode_ = !thumbnailMode_;
    menu_->Action(kCmdUseThumbnails)->setChecked(thumbnailMode_);
  });
  dispatcher_.On(kCmdFileList, [](const CommandRequest&) {});
  dispatcher_.OnRange(kCmdRecentFirst,
                      kCmdRecentFirst + static_cast<int>(RecentDirectories::kLimit) - 1,
                      [this](const CommandRequest& r) { RecentDirectoryCommand(r); });
}

int MainWindow::Dispatch(int id, bool shift) {
  // Nothing starts while a batch runs; its input is held back, but a posted command could come.
  if (host_->InBatch()) return id;
  return dispatcher_.Dispatch(id, shift);
}

void MainWindow::Send(int id) {
  Dispatch(id, (QGuiApplication::keyboardModifiers() & Qt::ShiftModifier) != 0);
}

void MainWindow::ShowBars() {
  const Settings& settings = CurrentSettings();
  bool graphic = settings.ButtonBar != 0;
  textBar_->setVisible(!graphic);
  graphicBar_->setVisible(graphic);
  graphicBar_->SetTips(settings);
  ApplyControlFont(textBar_, settings);
}

void MainWindow::ApplySetupResult(int bits) {
  if (bits & 1) ShowBars();
  if (bits & 2) RebuildList(false);
}

void MainWindow::RebuildList(bool keepTags) {
  WaitCursor cursor(*host_);
  std::vector<std::string> tagged;
  if (keepTags) tagged = TaggedEntries();
  std::vector<std::string> entries = BuildFileList(directory_, CurrentSettings());
  model_->SetCellSize(CellSize(entries, list_->fontMetrics()));
  model_->SetEntries(std::move(entries));
  if (!tagged.empty()) TagEntries(tagged);
  setWindowTitle(ToQt(WindowTitle(directory_)));
  UpdateTagCount();
}

bool MainWindow::ChangeDirectory(const std::string& directory) {
  if (::chdir(directory.c_str()) != 0) {
    RebuildList(false);
    return false;
  }
  directory_ = platform::CurrentDirectory();
  lastClicked_ = -1;
  RebuildList(false);
  watch_->Watch(PathToQt(directory_));
  app_.recent.Add(directory_);
  ShowRecentDirectories();
  return true;
}

void MainWindow::Open(const QModelIndex& index) {
  if (!index.isValid()) return;
  const std::string entry = model_->Entry(index.row());
  if (entry == "[..]") {
    ChangeDirectory(std::filesystem::path(directory_).parent_path().string());
  } else if (IsDirectoryEntry(entry)) {
    ChangeDirectory(JoinPath(directory_, DirectoryOfEntry(entry)));
  } else {
    Dispatch(kCmdView, false);
  }
}

size_t MainWindow::TaggedCount() const {
  return static_cast<size_t>(list_->selectionModel()->selectedRows().size());
}

std::vector<std::string> MainWindow::TaggedEntries() const {
  std::vector<int> rows;
  for (const QModelIndex& index : list_->selectionModel()->selectedRows())
    rows.push_back(index.row());
  std::sort(rows.begin(), rows.end());
  std::vector<std::string> entries;
  entries.reserve(rows.size());
  for (int row : rows) entries.push_back(model_->Entry(row));
  return entries;
}

std::vector<std::string> MainWindow::TaggedFiles() const {
  std::vector<std::string> files;
  for (std::string& entry : TaggedEntries())
    if (!IsDirectoryEntry(entry)) files.push_back(std::move(entry));
  return files;
}

void MainWindow::TagEntries(const std::vector<std::string>& entries) {
  std::vector<int> rows;
  for (const std::string& entry : entries)
    if (int row = model_->RowOf(entry); row >= 0) rows.push_back(row);
  list_->selectionModel()->select(SelectionOfRows(model_, rows),
                                  QItemSelectionModel::ClearAndSelect);
  UpdateTagCount();
}

void MainWindow::UpdateTagCount() {
  cells_->SetTagCount(ToQt(TagCountText(TaggedCount())));
}

void MainWindow::UpdatePaste() {
  const QMimeData* clip = QApplication::clipboard()->mimeData();
  menu_->Action(kCmdPaste)->setEnabled(clip && clip->hasImage());
}

void MainWindow::ShowHelp(std::string_view topic) {
  if (!help_) help_ = new HelpWindow(nullptr);
  help_->ShowTopic(topic);
}

void MainWindow::BatchFinished() {
  refreshPending_ = false;
  RebuildList(true);
}

void MainWindow::RefreshFromDisk() {
  if (host_->InBatch()) {
    refreshPending_ = true;
    return;
  }
  RebuildList(true);
}

void MainWindow::ShowRecentDirectories() {
  menu_->SetRecentDirectories(app_.recent.Items());
}

void MainWindow::RecentDirectoryCommand(const CommandRequest& request) {
  std::string directory = menu_->RecentDirectory(request.id);
  if (directory.empty()) return;
  if (request.shift) {
    // Shift takes the item out of the menu; the rest close up from 1000.
    std::vector<std::string> kept = app_.recent.Items();
    kept.erase(kept.begin() + (request.id - kCmdRecentFirst));
    app_.recent.Clear();
    for (const std::string& item : kept) app_.recent.Add(item);
    ShowRecentDirectories();
    return;
  }
  if (!platform::IsDirectory(directory)) {
    host_->ShowMessage(LoadMessage(kStrDriveOffLine));
    return;
  }
  ChangeDirectory(directory);
}

void MainWindow::ExitCommand(const CommandRequest& request) {
  if (request.shift) {
    WriteConfigurationNow();
    return;
  }
  if (CurrentSettings().PromptBeforeQuit &&
      host_->AskYesNo(LoadMessage(kStrExitQuestion)) != kIdYes)
    return;
  closing_ = true;
  close();
}

void MainWindow::ChooseDirectoryCommand() {
  QString chosen = QFileDialog::getExistingDirectory(
      this, ToQt(LoadMessage(kStrChooseDirectory)), PathToQt(directory_),
      QFileDialog::ShowDirsOnly | QFileDialog::DontUseNativeDialog);
  if (!chosen.isEmpty()) ChangeDirectory(PathFromQt(chosen));
}

void MainWindow::SetupCommand() {
  int bits = RunSetupDialog(this, CurrentSettings(), [this] { ShowHelp("setup"); });
  ApplySetupResult(bits);
}

void MainWindow::FormatsCommand() {
  if (RunFormatsDialog(this, CurrentSettings(), [this] { ShowHelp("formats"); }))
    RebuildList(false);
}

void MainWindow::WriteConfigurationNow() {
  if (app_.iniPath.empty()) return;
  WriteConfiguration(app_.iniPath, CurrentSettings(), app_.recent);
}

void MainWindow::BringToFront() {
  if (isMinimized()) setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
  activateWindow();
}

void MainWindow::ApplyPlacement() {
  Placement placement = InitialPlacement(CurrentSettings());
  resize(placement.rect.width, placement.rect.height);
  move(placement.rect.x, placement.rect.y);
  if (placement.maximized) setWindowState(windowState() | Qt::WindowMaximized);
}

void MainWindow::RememberPlace() {
  if (!isVisible() || isMaximized() || isMinimized() || !screen()) return;
  QRect screenRect = screen()->geometry();
  RememberPlacement(CurrentSettings(), {x(), y(), width(), height()}, screenRect.width(),
                    screenRect.height());
}

void MainWindow::moveEvent(QMoveEvent* event) {
  QMainWindow::moveEvent(event);
  RememberPlace();
}

void MainWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  RememberPlace();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (!closing_) {
    // The window's own Close obeys the same question as Exit.
    event->ignore();
    Send(kCmdExit);
    return;
  }
  WriteConfigurationNow();
  if (help_) help_->close();
  event->accept();
}

}  // namespace pxm::ui
