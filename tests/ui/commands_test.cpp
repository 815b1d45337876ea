// Command dispatch and the windows it opens: folding, the shared rules, Exit and its question,
// recent directories, the Setup dialog's result bits, the tooltips, Formats, Help and Paste.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QMouseEvent>
#include <QProgressBar>
#include <QSignalSpy>
#include <QSpinBox>
#include <filesystem>
#include <map>

#include "commands/command_folding.h"
#include "commands/dispatcher.h"
#include "common/control_font.h"
#include "dialogs/destination_dialog.h"
#include "dialogs/formats_dialog.h"
#include "dialogs/setup_dialog.h"
#include "help/help_window.h"
#include "main_window/button_bars.h"
#include "main_window/main_menu.h"
#include "main_window/main_window.h"
#include "main_window/tip_filter.h"
#include "startup/command_line.h"
#include "startup/logo_picture.h"
#include "startup/single_instance.h"
#include "startup/splash.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"
#include "support/ui_test_env.h"

using namespace pxm;
using namespace pxm::ui;

namespace {

// A tooltip timer the test fires by hand.
struct FakeTimerState {
  bool pending = false;
  int waitMs = 0;
  int starts = 0;
  std::function<void()> fire;
};

class FakeTimer : public TipTimer {
 public:
  explicit FakeTimer(FakeTimerState& state) : state_(state) {}
  void Start(int milliseconds, std::function<void()> fire) override {
    state_ = {true, milliseconds, state_.starts + 1, std::move(fire)};
  }
  void Stop() override { state_.pending = false; }
  bool Pending() const override { return state_.pending; }

 private:
  FakeTimerState& state_;
};

void Move(QWidget* button, QPoint at, Qt::MouseButtons held = Qt::NoButton) {
  QMouseEvent event(QEvent::MouseMove, at, button->mapToGlobal(at), Qt::NoButton, held,
                    Qt::NoModifier);
  QApplication::sendEvent(button, &event);
}

void Fire(FakeTimerState& timer) {
  timer.pending = false;
  if (timer.fire) timer.fire();
}

// The controls of `root` that take input or show state and have no name a screen reader could
// read, by objectName.
QStringList Unnamed(QWidget* root) {
  QStringList unnamed;
  for (QWidget* widget : root->findChildren<QWidget*>()) {
    bool control = qobject_cast<QAbstractButton*>(widget) || qobject_cast<QComboBox*>(widget) ||
                   qobject_cast<QAbstractSpinBox*>(widget) || qobject_cast<QLineEdit*>(widget) ||
                   qobject_cast<QAbstractItemView*>(widget) ||
                   qobject_cast<QProgressBar*>(widget) || qobject_cast<QMenuBar*>(widget);
    if (!control || !widget->isVisibleTo(root) || widget->objectName().startsWith("qt_")) continue;
    // The parts of a composite control (a drop-down list's pop-up) speak through it.
    bool part = false;
    for (QWidget* up = widget->parentWidget(); up && up != root; up = up->parentWidget())
      part = part || qobject_cast<QComboBox*>(up) || qobject_cast<QAbstractSpinBox*>(up);
    if (part) continue;
    QAccessibleInterface* face = QAccessible::queryAccessibleInterface(widget);
    if (!face || face->text(QAccessible::Name).isEmpty()) unnamed << widget->objectName();
  }
  return unnamed;
}

std::vector<std::string> RecentItems(MainWindow& window) {
  std::vector<std::string> items;
  for (int id = 1000; !window.Menu().RecentDirectory(id).empty(); ++id)
    items.push_back(window.Menu().RecentDirectory(id));
  return items;
}

}  // namespace

class CommandsTest : public QObject {
  Q_OBJECT

 private:
  test::TempDir dir_;
  std::string ini_;

 private Q_SLOTS:
  void init() {
    QVERIFY(::chdir(dir_.path().c_str()) == 0);
    ini_ = dir_ / "PXM.INI";
    std::filesystem::remove(ini_);
  }

  void folding_data() {
    QTest::addColumn<int>("id");
    QTest::addColumn<int>("folded");
    QTest::newRow("graphic Convert") << 761 << 101;
    QTest::newRow("graphic Catalog") << 779 << 119;
    QTest::newRow("graphic Move and copy") << 782 << 122;
    QTest::newRow("thumbnail toggle") << 120 << 506;
    QTest::newRow("graphic thumbnail toggle") << 780 << 506;
    QTest::newRow("plain Ok") << 851 << 1;
    QTest::newRow("plain Help") << 899 << 9;
    QTest::newRow("10803") << 10803 << 803;
    QTest::newRow("860 stays") << 860 << 860;
    QTest::newRow("901 stays") << 901 << 901;
    QTest::newRow("menu command") << 114 << 114;
  }

  void folding() {
    QFETCH(int, id);
    QFETCH(int, folded);
    QCOMPARE(FoldCommand(id), folded);
  }

  void dispatcherRules() {
    size_t tagged = 0;
    QStringList messages;
    std::vector<int> ran;
    Dispatcher dispatcher(
        {[&] { return tagged; },
         [&](std::string_view text) { messages << QString::fromUtf8(text.data(), text.size()); }});
    for (int id : {119, 506, 104})
      dispatcher.On(id, [&](const CommandRequest& r) { ran.push_back(r.id); });
    tagged = 1;
    dispatcher.Dispatch(779);
    dispatcher.Dispatch(120);
    QCOMPARE(ran, (std::vector<int>{119, 506}));
    tagged = 0;
    dispatcher.Dispatch(779);  // Catalog works on tagged files
    dispatcher.Dispatch(764);  // Help does not
    dispatcher.Dispatch(113);  // no handler yet
    QCOMPARE(ran, (std::vector<int>{119, 506, 104}));
    QCOMPARE(messages, (QStringList{"No files are selected", "No files are selected"}));
    tagged = 2;
    dispatcher.Dispatch(113);
    QCOMPARE(messages.last(), QStringLiteral("Unsupported function"));
  }

  void closeAsksTheQuitQuestion() {
    ScopedSettings settings;
    AppState app;
    app.iniPath = ini_;
    MainWindow window(app);
    window.show();
    uitest::DialogScript script;
    script.Press("YesnoBox", "button857");
    window.close();
    QVERIFY(script.Done());
    QCOMPARE(script.Texts(), QStringList{"Do you want to exit Pixmill?"});
    QVERIFY(window.isVisible());
    QVERIFY(!std::filesystem::exists(ini_));
    script.Press("YesnoBox", "button856");
    window.Dispatch(114, false);
    QVERIFY(script.Done());
    QVERIFY(!window.isVisible());
    QVERIFY(std::filesystem::exists(ini_));
  }

  void shiftExitWritesAndStays() {
    ScopedSettings settings;
    AppState app;
    app.iniPath = ini_;
    MainWindow window(app);
    window.show();
    window.Dispatch(774, true);  // the graphic Exit button with Shift
    QVERIFY(window.isVisible());
    QVERIFY(std::filesystem::exists(ini_));
    QCOMPARE(QApplication::activeModalWidget(), nullptr);
  }

  void recentDirectories() {
    ScopedSettings settings;
    AppState app;
    std::vector<std::string> dirs;
    for (const char* name : {"one", "two", "three"}) {
      dirs.push_back(dir_ / name);
      std::filesystem::create_directory(dirs.back());
      app.recent.Add(dirs.back());
    }
    MainWindow window(app);
    QCOMPARE(RecentItems(window), dirs);
    // Shift takes the item off the menu and goes nowhere; the rest close up from 1000.
    window.Dispatch(1001, true);
    QCOMPARE(RecentItems(window), (std::vector<std::string>{dirs[0], dirs[2]}));
    QCOMPARE(window.Directory(), dir_.path());
    window.Dispatch(1001, false);
    QCOMPARE(window.Directory(), dirs[2]);
    // A directory that is gone is reported and the list stays.
    std::filesystem::remove(dirs[0]);
    uitest::DialogScript script;
    script.Press("MessageBox", "button851");
    window.Dispatch(1000, false);
    QVERIFY(script.Done());
    QVERIFY(script.Texts().first().startsWith("That drive is off line."));
    QCOMPARE(window.Directory(), dirs[2]);
  }

  void setupResultBits() {
    Settings settings;
    auto check = [](SetupDialog& dialog, int control) {
      dialog.findChild<QCheckBox*>(QStringLiteral("check%1").arg(control))->click();
    };
    auto choose = [](SetupDialog& dialog, int control, int index) {
      auto* combo = dialog.findChild<QComboBox*>(QStringLiteral("combo%1").arg(control));
      combo->setCurrentIndex(index);
      Q_EMIT combo->activated(index);
    };
    {
      SetupDialog dialog(nullptr, settings, {});
      QCOMPARE(dialog.findChildren<QCheckBox*>().size(), 38);
      QCOMPARE(dialog.findChild<QCheckBox*>("check133")->text(),
               QStringLiteral("Prompt before overwrite"));
      // Long file names twice: the setting is back, the bit stays.
      check(dialog, 122);
      check(dialog, 122);
      uitest::ClickButton(&dialog, "button851");
      QCOMPARE(dialog.Result(), 2);
      QCOMPARE(settings.LongFileNames, 1);
    }
    {
      SetupDialog dialog(nullptr, settings, {});
      choose(dialog, 209, 0);  // "[ Default ]"
      QCOMPARE(settings.ControlFontName, std::string("[ Default ]"));
      QCOMPARE(dialog.font(), QApplication::font());
      choose(dialog, 206, 0);  // "None"
      uitest::ClickButton(&dialog, "button851");
      QCOMPARE(settings.VirtualMemoryDrive, 0);
      QCOMPARE(dialog.Result(), 1);
    }
    {
      // A check box acts at once: closing without Ok keeps it.
      SetupDialog dialog(nullptr, settings, {});
      check(dialog, 140);
      QCOMPARE(settings.ShowHiddenDirectories, 0);
      QCOMPARE(dialog.Result(), 2);
      // A font replaces the result: 1 only, and the list is not built again.
      choose(dialog, 209, 1);
      QCOMPARE(dialog.Result(), 1);
      dialog.reject();
      QCOMPARE(settings.ShowHiddenDirectories, 0);
    }
    {
      // The spins take their ranges from their control texts; Ok stores them.
      settings.ColourButtons = 1;
      SetupDialog dialog(nullptr, settings, {});
      auto* quality = dialog.findChild<QSpinBox*>("spin204");
      QCOMPARE(quality->maximum(), 100);
      quality->setValue(90);
      QVERIFY(dialog.findChild<QAbstractButton*>("button1")->icon().isNull() == false);
      QVERIFY(!dialog.findChild<QAbstractButton*>("button851"));
      uitest::ClickButton(&dialog, "button1");
      QCOMPARE(settings.JpegCompressionFactor, 90);
    }
  }

  void tooltips() {
    Settings settings;
    std::map<int, FakeTimerState> timers;
    GraphicButtonBar bar(nullptr);
    bar.show();
    auto factory = [&](int id) { return std::make_unique<FakeTimer>(timers[id]); };
    settings.TipWait = 0;
    bar.SetTips(settings, factory);
    QCOMPARE(bar.Tip(761), nullptr);
    settings.TipWait = 250;
    settings.TipFontSize = 11;
    bar.SetTips(settings, factory);
    QAbstractButton* button = bar.Button(772);
    TipFilter* tip = bar.Tip(772);
    FakeTimerState& timer = timers[772];
    QCOMPARE(button->accessibleName(), QStringLiteral("Crops sections out of images."));
    QCOMPARE(tip->Tip()->text(), QStringLiteral("Crops sections out of images."));
    QCOMPARE(tip->Tip()->font().pointSize(), 11);
    // Resting inside starts the wait; the tip shows one pixel below the button.
    Move(button, {5, 5});
    QVERIFY(timer.pending);
    QCOMPARE(timer.waitMs, 250);
    Fire(timer);
    QVERIFY(tip->TipShown());
    QCOMPARE(tip->Tip()->pos(), button->mapToGlobal(QPoint(0, button->height() + 1)));
    // A click hides it; a move with the left button down starts nothing.
    QTest::mousePress(button, Qt::LeftButton, {}, {5, 5});
    QVERIFY(!tip->TipShown());
    QTest::mouseRelease(button, Qt::LeftButton, {}, {5, 5});
    int starts = timer.starts;
    Move(button, {6, 6}, Qt::LeftButton);
    QCOMPARE(timer.starts, starts);
    // Leaving before the wait is over: the timer stops, and a late tick shows nothing.
    Move(button, {6, 6});
    QVERIFY(timer.pending);
    Move(button, {60, 6});
    QVERIFY(!timer.pending);
    Fire(timer);
    QVERIFY(!tip->TipShown());
    // A key hides a shown tip.
    Move(button, {5, 5});
    Fire(timer);
    QVERIFY(tip->TipShown());
    QTest::keyClick(button, Qt::Key_A);
    QVERIFY(!tip->TipShown());
  }

  void formatsDialogSwitchesFormats() {
    Settings settings;
    FormatsDialog dialog(nullptr, settings, {});
    QListWidget* list = dialog.List();
    QListWidgetItem* gif = list->findItems("(GIF) CompuServe", Qt::MatchEndsWith).value(0);
    QVERIFY(gif);
    QCOMPARE(gif->text(), QString::fromUtf8("\u00D7\t(GIF) CompuServe"));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(gif).center());
    QCOMPARE(settings.formatEnabled[3], 0u);
    QCOMPARE(gif->text(), QStringLiteral(" \t(GIF) CompuServe"));
    QVERIFY(dialog.Changed());
    QCOMPARE(list->count(), 41);
  }

  void startArguments_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("directory");
    QTest::addColumn<QStringList>("tagged");
    const QString dir = QString::fromStdString(dir_.path());
    QTest::newRow("none") << QStringList{} << "" << QStringList{};
    QTest::newRow("a directory") << QStringList{dir + "/one/"} << dir + "/one" << QStringList{};
    QTest::newRow("files") << QStringList{dir + "/a.bmp", "b.bmp"} << dir
                           << QStringList{"a.bmp", "b.bmp"};
    QTest::newRow("files elsewhere and missing")
        << QStringList{"gone.bmp", "a.bmp", dir + "/one/c.bmp"} << dir << QStringList{"a.bmp"};
  }

  void startArguments() {
    QFETCH(QStringList, arguments);
    QFETCH(QString, directory);
    QFETCH(QStringList, tagged);
    std::filesystem::create_directories(dir_ / "one");
    for (const char* name : {"a.bmp", "b.bmp", "one/c.bmp"}) test::WriteFileBytes(dir_ / name, "x");
    std::vector<std::string> args;
    for (const QString& a : arguments) args.push_back(a.toStdString());
    StartRequest request = ParseStartArguments(args, dir_.path());
    QCOMPARE(QString::fromStdString(request.directory), directory);
    QStringList names;
    for (const std::string& name : request.tagged) names << QString::fromStdString(name);
    QCOMPARE(names, tagged);
  }

  void singleInstance() {
    const QString path = QString::fromStdString(dir_ / "instance.sock");
    // A socket left by a copy that died answers nobody: the next start takes it over.
    int stale = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s", path.toUtf8().constData());
    QCOMPARE(::bind(stale, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ::close(stale);
    SingleInstance first(path);
    QVERIFY(!first.AskRunningCopy());
    QVERIFY(first.Listen());
    QSignalSpy raised(&first, &SingleInstance::raiseRequested);
    SingleInstance second(path);
    QVERIFY(second.AskRunningCopy());
    QTRY_COMPARE(raised.count(), 1);
    QVERIFY(!second.Listen());
  }

  void startupPictures_data() {
    QTest::addColumn<int>("bits");
    for (int bits : {1, 4, 8, 24}) QTest::addRow("%d bits", bits) << bits;
  }

  void startupPictures() {
    QFETCH(int, bits);
    const std::string path = dir_ / "logo.bmp";
    test::Picture picture = test::Pattern(37, 21, static_cast<uint32_t>(bits));
    QCOMPARE(test::WritePicture(picture, path), 0);
    test::Picture read;
    QCOMPARE(test::ReadPicture(path, read), 0);
    QImage image = ReadPictureFile(path);
    QCOMPARE(image.size(), QSize(37, 21));
    for (int y = 0; y < 21; y += 5)
      for (int x = 0; x < 37; x += 3) {
        Rgb c = read.Colour(static_cast<uint32_t>(x), y);
        QCOMPARE(image.pixel(x, y), qRgb(c.red, c.green, c.blue));
      }
    QCOMPARE(StartupPicture(path, 2.0).size(), QSize(37, 21));
    // Without a readable picture the painted logo is drawn for the screen's pixel ratio.
    QPixmap painted = StartupPicture(dir_ / "none.bmp", 2.0);
    QCOMPARE(painted.devicePixelRatio(), 2.0);
    QCOMPARE(painted.deviceIndependentSize().toSize(), QSize(360, 150));
  }

  void everyControlHasAName() {
    ScopedSettings settings;
    AppState app;
    MainWindow window(app);
    QCOMPARE(Unnamed(&window), QStringList{});
    settings->ButtonBar = 0;
    window.ApplySetupResult(1);
    QCOMPARE(Unnamed(&window), QStringList{});
    QCOMPARE(window.TextBar()->Button(117)->accessibleName(), QStringLiteral("Trnsfrm"));
    SetupDialog setup(nullptr, *settings, {});
    QCOMPARE(Unnamed(&setup), QStringList{});
    FormatsDialog formats(nullptr, *settings, {});
    QCOMPARE(Unnamed(&formats), QStringList{});
    settings->PromptForDestination = 1;
    uitest::DialogScript script;
    QStringList unnamed;
    script.Then("DESTINATIONBOX", [&unnamed](QWidget* dialog) {
      unnamed = Unnamed(dialog);
      uitest::ClickButton(dialog, "button852");
    });
    QVERIFY(!AskDestination(nullptr, {}, *settings));
    QVERIFY(script.Done());
    QCOMPARE(unnamed, QStringList{});
  }

  void helpAndPaste() {
    ScopedSettings settings;
    AppState app;
    MainWindow window(app);
    window.Dispatch(764, false);
    QVERIFY(window.Help() && window.Help()->isVisible());
    QCOMPARE(window.Help()->Topic(), QStringLiteral("index"));
    window.Dispatch(601, false);
    QCOMPARE(window.Help()->Topic(), QStringLiteral("using-help"));
    window.Help()->close();
    QAction* paste = window.Menu().Action(203);
    QApplication::clipboard()->setImage(QImage(4, 4, QImage::Format_RGB32));
    QTRY_VERIFY(paste->isEnabled());
    QApplication::clipboard()->setText(QStringLiteral("words"));
    QTRY_VERIFY(!paste->isEnabled());
  }
};

PXM_UI_TEST_MAIN(CommandsTest)
#include "commands_test.moc"
