// Convert from the main window: the destination dialog, the walk over the tagged files with its
// status texts, the files written, the boxes of a failed file and the result that tags it again,
// and a click that stops a large Convert without leaving a file.
#include <unistd.h>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QProgressBar>
#include <filesystem>

#include "core/strings.h"
#include "dialogs/destination_dialog.h"
#include "formats/format_table.h"
#include "host/gui_host.h"
#include "main_window/file_list.h"
#include "main_window/main_window.h"
#include "main_window/status_cells.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"
#include "support/ui_test_env.h"

using namespace pxm;
using namespace pxm::ui;

namespace {

constexpr int kPcxButton = 101 + 2;  // the destination dialog's button of row 2

QStringList StatusTexts(GuiHost& host, QStringList& texts) {
  QObject::connect(&host, &GuiHost::statusChanged, &host, [&texts](const QString& text) {
    if (!text.isEmpty()) texts << text;
  });
  return texts;
}

std::vector<Rgb> ColoursOf(const std::string& path) {
  test::Picture picture;
  if (test::ReadPicture(path, picture) != 0) return {};
  return test::Colours(picture);
}

}  // namespace

class ConvertTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void destinationButtons() {
    Settings settings;
    // Rows by depth, switch and motion: MAC writes 1 bit only; AVI is a motion row.
    QVERIFY(DestinationButtonEnabled(FormatAt(0), 0, 1, false, settings));
    QVERIFY(!DestinationButtonEnabled(FormatAt(0), 0, 8, false, settings));
    QVERIFY(!DestinationButtonEnabled(FormatAt(22), 22, 1, false, settings));
    QVERIFY(DestinationButtonEnabled(FormatAt(22), 22, 1, true, settings));
    settings.formatEnabled[2] = 2;  // on, but not exactly 1
    QVERIFY(!DestinationButtonEnabled(FormatAt(2), 2, 1, false, settings));
  }

  void convertsTaggedFiles() {
    test::TempDir dir;
    for (const char* name : {"a.bmp", "b.bmp", "c.bmp", "d.bmp"})
      QCOMPARE(test::WritePicture(test::Pattern(37, 21, 8, name[0]), dir / name), 0);
    QVERIFY(::chdir(dir.path().c_str()) == 0);
    ScopedSettings settings;
    AppState app;
    MainWindow window(app);
    window.show();
    window.TagEntries({"a.bmp", "b.bmp", "c.bmp"});
    QStringList texts;
    StatusTexts(window.BatchHost(), texts);
    uitest::DialogScript script;
    script.Press("DESTINATIONBOX", QStringLiteral("button%1").arg(kPcxButton));
    window.Dispatch(761, false);
    QVERIFY(script.Done());
    QCOMPARE(texts, (QStringList{"Reading a.bmp", "Writing a.pcx", "Reading b.bmp", "Writing b.pcx",
                                 "Reading c.bmp", "Writing c.pcx", "3 files written"}));
    for (const char* name : {"a", "b", "c"}) {
      std::vector<Rgb> written = ColoursOf(dir / (std::string(name) + ".pcx"));
      QVERIFY(!written.empty());
      QVERIFY(written == ColoursOf(dir / (std::string(name) + ".bmp")));
    }
    QVERIFY(!std::filesystem::exists(dir / "d.pcx"));
    // The list shows the new files at once, and the tags stay on the files converted.
    QVERIFY(window.Model()->RowOf("b.pcx") >= 0);
    QCOMPARE(window.TaggedFiles(), (std::vector<std::string>{"a.bmp", "b.bmp", "c.bmp"}));
  }

  void failedFileIsReportedAndTaggedAgain() {
    test::TempDir dir;
    QCOMPARE(test::WritePicture(test::Pattern(9, 9, 24), dir / "good.bmp"), 0);
    test::WriteFileBytes(dir / "bad.bmp", std::string(60, 'B'));
    // A 24-bit picture is too deep for GIF.
    QVERIFY(::chdir(dir.path().c_str()) == 0);
    ScopedSettings settings;
    AppState app;
    MainWindow window(app);
    window.show();
    window.TagEntries({"bad.bmp", "good.bmp"});
    uitest::DialogScript script;
    script.Press("DESTINATIONBOX", QStringLiteral("button%1").arg(101 + 3))
        .Press("MessageBox", "button851")
        .Press("MessageBox", "button851")
        .Press("RESULTBOX", "buttonTagFailed");
    window.Dispatch(101, false);
    QVERIFY(script.Done());
    QCOMPARE(script.Texts()[1], QString::fromStdString(FileErrorLine("bad.bmp", 2)));
    QCOMPARE(script.Texts()[2], QStringLiteral("good.bmp - Too many colours"));
    QVERIFY(script.Texts()[3].startsWith("No files written\n\n2 of 2 files could not be done:"));
    QCOMPARE(window.TaggedFiles(), (std::vector<std::string>{"bad.bmp", "good.bmp"}));
    QCOMPARE(test::ListDirectory(dir.path()), (std::vector<std::string>{"bad.bmp", "good.bmp"}));
  }

  void clickStopsALargeConvert_data() {
    QTest::addColumn<bool>("escape");
    QTest::newRow("a click") << false;
    QTest::newRow("Escape") << true;
  }

  void clickStopsALargeConvert() {
    QFETCH(bool, escape);
    test::TempDir dir;
    QCOMPARE(test::WritePicture(test::Pattern(2400, 1600, 24), dir / "big.bmp"), 0);
    QCOMPARE(test::WritePicture(test::Pattern(8, 8, 24), dir / "small.bmp"), 0);
    QVERIFY(::chdir(dir.path().c_str()) == 0);
    ScopedSettings settings;
    AppState app;
    MainWindow window(app);
    window.show();
    window.TagEntries({"big.bmp", "small.bmp"});
    // The click (or Escape) comes while the output is being written.
    QObject::connect(&window.BatchHost(), &GuiHost::statusChanged, &window,
                     [&window, escape](const QString& text) {
                       if (!text.startsWith("Writing")) return;
                       QPoint at(100, 100);
                       QEvent* event = nullptr;
                       if (escape)
                         event = new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
                       else
                         event =
                             new QMouseEvent(QEvent::MouseButtonPress, at, window.mapToGlobal(at),
                                             Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
                       QCoreApplication::postEvent(&window, event);
                     });
    uitest::DialogScript script;
    script.Press("DESTINATIONBOX", QStringLiteral("button%1").arg(kPcxButton))
        .Press("RESULTBOX", "button851");
    window.Dispatch(101, false);
    QVERIFY(script.Done());
    QVERIFY(script.Texts()[1].contains("big.bmp - Function cancelled"));
    QVERIFY(script.Texts()[1].contains("Stopped: the files after big.bmp were not done."));
    QCOMPARE(test::ListDirectory(dir.path()), (std::vector<std::string>{"big.bmp", "small.bmp"}));
    QCOMPARE(window.Status().progressBar()->value(), 0);
  }
};

PXM_UI_TEST_MAIN(ConvertTest)
#include "convert_test.moc"
