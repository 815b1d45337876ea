// Timings of the desktop program that a stopwatch outside the process cannot take: start-up to
// the first painted main window, building the file list of a large directory (and again after a
// change), and the longest wait between two paints of the progress bar while a batch runs.
// Prints "name value" lines in milliseconds for bench/ui.sh.
//   ui_timings startup DIR       the program's own start-up, ended at its first paint
//   ui_timings list DIR RUNS     the list of DIR built RUNS times, then rebuilt after a change
//   ui_timings batch FILE        FILE converted to PCX through the desktop batch
#include <unistd.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QProgressBar>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "batch/convert.h"
#include "commands/batch_runner.h"
#include "config/settings.h"
#include "core/names.h"
#include "formats/format_table.h"
#include "main_window/file_list.h"
#include "main_window/main_window.h"
#include "main_window/status_cells.h"
#include "startup/startup.h"

namespace {

QElapsedTimer clockSinceMain;

// Notes the time of every paint of the widgets it watches.
class PaintWatch : public QObject {
 public:
  explicit PaintWatch(std::function<bool(QObject*)> watched) : watched_(std::move(watched)) {}
  std::vector<double> times;

 protected:
  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() == QEvent::Paint && watched_(object))
      times.push_back(static_cast<double>(clockSinceMain.nsecsElapsed()) / 1e6);
    return false;
  }

 private:
  std::function<bool(QObject*)> watched_;
};

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values.empty() ? 0 : values[values.size() / 2];
}

int Startup(QApplication& app) {
  PaintWatch watch([](QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    return widget && widget->window()->objectName() == QStringLiteral("Pixmill");
  });
  app.installEventFilter(&watch);
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, [&] {
    if (!watch.times.empty())
      QCoreApplication::exit(0);  // quit() would close the window, which asks first
  });
  poll.start(1);
  pxm::ui::RunPixmill(app);
  std::printf("startup_first_paint %.2f\n", watch.times.empty() ? -1.0 : watch.times.front());
  return watch.times.empty() ? 1 : 0;
}

int List(const std::string& directory, int runs) {
  if (::chdir(directory.c_str()) != 0) return 2;
  pxm::ui::AppState state;
  pxm::ui::MainWindow window(state);
  std::vector<double> build, rebuild;
  for (int i = 0; i < runs; ++i) {
    QElapsedTimer timer;
    timer.start();
    window.RebuildList(false);
    build.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
  }
  std::printf("list_entries %d\n", window.Model()->rowCount());
  // A change: one file more, with a tenth of the files tagged, whose tags must survive.
  window.Dispatch(102, false);
  std::vector<std::string> tagged = window.TaggedFiles();
  tagged.resize(tagged.size() / 10);
  window.TagEntries(tagged);
  for (int i = 0; i < runs; ++i) {
    std::string added = "added" + std::to_string(i) + ".bmp";
    std::ofstream(added) << "";
    QElapsedTimer timer;
    timer.start();
    window.RebuildList(true);
    rebuild.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    ::unlink(added.c_str());
  }
  std::printf("list_build %.2f\n", Median(build));
  std::printf("list_rebuild %.2f\n", Median(rebuild));
  return window.TaggedCount() == tagged.size() ? 0 : 1;
}

int Batch(const std::string& file) {
  std::string directory = pxm::DirectoryPart(file);
  if (!directory.empty() && ::chdir(directory.c_str()) != 0) return 2;
  std::string name = pxm::NamePart(file);
  pxm::ui::AppState state;
  pxm::ui::MainWindow window(state);
  window.show();
  QProgressBar* bar = window.Status().progressBar();
  PaintWatch watch([bar](QObject* object) { return object == bar; });
  bar->installEventFilter(&watch);
  const int destination = pxm::FindFormatByExtension("pcx");
  double start = 0, end = 0;
  QTimer::singleShot(200, [&] {
    start = static_cast<double>(clockSinceMain.nsecsElapsed()) / 1e6;
    pxm::ui::RunBatch(window, {name}, [&](pxm::Host& host, size_t, const std::string& source) {
      int code = pxm::Convert(host, source, destination);
      ::unlink(pxm::ReplaceExtension(source, "pcx").c_str());
      return code;
    });
    end = static_cast<double>(clockSinceMain.nsecsElapsed()) / 1e6;
    QCoreApplication::exit(0);  // quit() would close the window, which asks first
  });
  QApplication::exec();
  double gap = 0, last = start;
  int paints = 0;
  for (double t : watch.times) {
    if (t < start || t > end) continue;
    gap = std::max(gap, t - last);
    last = t;
    ++paints;
  }
  gap = std::max(gap, end - last);
  std::printf("batch_total %.2f\n", end - start);
  std::printf("batch_paints %d\n", paints);
  std::printf("batch_longest_gap %.2f\n", gap);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  clockSinceMain.start();
  if (argc < 3) {
    std::fprintf(stderr, "usage: ui_timings startup DIR | list DIR RUNS | batch FILE\n");
    return 2;
  }
  const std::string mode = argv[1];
  if (mode == "startup") {
    // The program sees DIR as its own argument.
    int programArgc = argc - 1;
    QApplication app(programArgc, argv + 1);
    return Startup(app);
  }
  int qtArgc = 1;
  QApplication app(qtArgc, argv);
  if (mode == "list") return List(argv[2], argc > 3 ? std::atoi(argv[3]) : 5);
  if (mode == "batch") return Batch(argv[2]);
  return 2;
}
