// The file list: what a directory lists under each setting, tags and their count, the title,
// moving between directories, the list following the disk, and the window's placement.
#include "main_window/file_list.h"

#include <unistd.h>

#include <QListView>
#include <filesystem>
#include <fstream>

#include "config/ini.h"
#include "main_window/file_list_builder.h"
#include "main_window/main_window.h"
#include "main_window/placement.h"
#include "main_window/status_cells.h"
#include "support/temp_dir.h"
#include "support/ui_test_env.h"

using namespace pxm;
using namespace pxm::ui;

namespace {

void Touch(const std::string& path) {
  std::ofstream(path) << "x";
}

// A directory with a file of several kinds and directories of several kinds.
void MakeFixture(const std::string& dir) {
  for (const char* name : {"A.BMP", "b.gif", "c.pcx", "readme.doc", "x.cbd", ".hidden.bmp"})
    Touch(dir + "/" + name);
  for (const char* name : {"sub", ".dot", "photos.old"})
    std::filesystem::create_directory(dir + "/" + name);
}

QStringList Entries(const std::vector<std::string>& entries) {
  QStringList list;
  for (const std::string& entry : entries) list << QString::fromStdString(entry);
  return list;
}

void ClickEntry(MainWindow& window, const std::string& entry, bool twice = false) {
  QListView* list = window.List();
  QModelIndex index = window.Model()->index(window.Model()->RowOf(entry));
  QPoint at = list->visualRect(index).center();
  // A double-click is a click and then the double-click event itself, as a window system sends.
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
  if (twice) QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
}

}  // namespace

class FileListTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void listsDirectory_data() {
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("expected");
    const QStringList all = {"[..]", "[.dot]", "[photos.old]", "[sub]", "A.BMP", "b.gif", "c.pcx"};
    auto without = [&all](const QString& entry) {
      QStringList list = all;
      list.removeAll(entry);
      return list;
    };
    QTest::newRow("defaults") << "" << all;
    QTest::newRow("GIF switched off") << "GIF = 0" << without("b.gif");
    QTest::newRow("GIF = 65537 keeps 1") << "GIF = 65537" << all;
    QTest::newRow("hidden directories off") << "ShowHiddenDirectories = 0" << without("[.dot]");
    QTest::newRow("no directory extensions")
        << "AllowDirectoryExtensions = 0" << without("[photos.old]");
  }

  void listsDirectory() {
    QFETCH(QString, line);
    QFETCH(QStringList, expected);
    test::TempDir dir;
    MakeFixture(dir.path());
    Settings settings;
    if (!line.isEmpty()) ApplyConfigurationLine(line.toStdString(), settings);
    QCOMPARE(Entries(BuildFileList(dir.path(), settings)), expected);
  }

  void rootHasNoParentEntry() {
    QVERIFY(!Entries(BuildFileList("/", Settings())).contains("[..]"));
  }

  void tagsCountsAndTitle() {
    test::TempDir dir;
    MakeFixture(dir.path());
    QVERIFY(::chdir(dir.path().c_str()) == 0);
    ScopedSettings settings;
    AppState app;
    MainWindow window(app);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.windowTitle(), QString::fromStdString("Pixmill - [" + dir.path() + "]"));
    QCOMPARE(window.Status().TagCount(), QStringLiteral("No files tagged"));
    ClickEntry(window, "A.BMP");
    QCOMPARE(window.Status().TagCount(), QStringLiteral("One file tagged"));
    ClickEntry(window, "c.pcx");
    QCOMPARE(window.Status().TagCount(), QStringLiteral("2 files tagged"));
    QCOMPARE(window.TaggedFiles(), (std::vector<std::string>{"A.BMP", "c.pcx"}));
    ClickEntry(window, "A.BMP");
    ClickEntry(window, "c.pcx");
    QCOMPARE(window.Status().TagCount(), QStringLiteral("No files tagged"));
    // Tag all takes every entry; the commands still see only the files.
    window.Dispatch(102, false);
    QCOMPARE(window.Status().TagCount(), QStringLiteral("7 files tagged"));
    QCOMPARE(window.TaggedFiles().size(), size_t{3});
    window.Dispatch(105, false);
    QCOMPARE(window.TaggedCount(), size_t{0});
  }

  void movesBetweenDirectoriesAndFollowsTheDisk() {
    test::TempDir dir;
    MakeFixture(dir.path());
    Touch(dir.path() + "/sub/inner.png");
    QVERIFY(::chdir(dir.path().c_str()) == 0);
    ScopedSettings settings;
    AppState app;
    MainWindow window(app);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    ClickEntry(window, "A.BMP");
    ClickEntry(window, "[sub]", true);
    QCOMPARE(window.Directory(), dir.path() + "/sub");
    QCOMPARE(Entries(window.Model()->Entries()), (QStringList{"[..]", "inner.png"}));
    QCOMPARE(window.TaggedCount(), size_t{0});
    QCOMPARE(app.recent.Items(), std::vector<std::string>{dir.path() + "/sub"});
    // Backspace goes to "[..]".
    window.List()->setFocus();
    QTest::keyClick(window.List(), Qt::Key_Backspace);
    QCOMPARE(window.Directory(), dir.path());
    QVERIFY(window.windowTitle().endsWith(QString::fromStdString("[" + dir.path() + "]")));
    // A file that appears is listed by itself, and the tags of files still there stay.
    ClickEntry(window, "b.gif");
    Touch(dir.path() + "/d.png");
    std::filesystem::remove(dir.path() + "/c.pcx");
    QTRY_VERIFY(window.Model()->RowOf("d.png") >= 0 && window.Model()->RowOf("c.pcx") < 0);
    QCOMPARE(window.TaggedFiles(), std::vector<std::string>{"b.gif"});
    // A directory that cannot be entered leaves the list where it was.
    QVERIFY(!window.ChangeDirectory(dir.path() + "/gone"));
    QCOMPARE(window.Directory(), dir.path());
  }

  void placement_data() {
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<int>("w");
    QTest::addColumn<int>("d");
    QTest::addColumn<QRect>("expected");
    QTest::newRow("nothing remembered")
        << 65535 << 65535 << 65535 << 65535 << QRect(0, 0, 583, 400);
    QTest::newRow("remembered") << 40 << 30 << 700 << 500 << QRect(40, 30, 700, 500);
    QTest::newRow("X 65535 whatever Y says") << 65535 << 120 << 700 << 500 << QRect(0, 0, 700, 500);
    QTest::newRow("D 65535 gives the default size")
        << 10 << 20 << 700 << 65535 << QRect(10, 20, 583, 400);
  }

  void placement() {
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(int, w);
    QFETCH(int, d);
    QFETCH(QRect, expected);
    Settings settings;
    settings.MainWindowX = x;
    settings.MainWindowY = y;
    settings.MainWindowW = w;
    settings.MainWindowD = d;
    WindowRect rect = InitialPlacement(settings).rect;
    QCOMPARE(QRect(rect.x, rect.y, rect.width, rect.height), expected);
    QVERIFY(!InitialPlacement(settings).maximized);
    settings.MaximizeOnStartup = 1;
    QVERIFY(InitialPlacement(settings).maximized);
  }

  void remembersPlacementClamped() {
    Settings settings;
    RememberPlacement(settings, {5000, -40, 50, 2000}, 1024, 768);
    QCOMPARE(settings.MainWindowX, 1024 - 16);
    QCOMPARE(settings.MainWindowY, 0);
    QCOMPARE(settings.MainWindowW, 96);
    QCOMPARE(settings.MainWindowD, 768);
    RememberPlacement(settings, {100, 900, 3000, 10}, 1024, 768);
    QCOMPARE(settings.MainWindowY, 768 - 16);
    QCOMPARE(settings.MainWindowW, 1024);
    QCOMPARE(settings.MainWindowD, 48);
  }
};

PXM_UI_TEST_MAIN(FileListTest)
#include "file_list_test.moc"
