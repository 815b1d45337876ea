#include "startup/startup.h"

#include <unistd.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QSplashScreen>

#include "commands/command_ids.h"
#include "common/qt_text.h"
#include "config/ini.h"
#include "core/platform.h"
#include "main_window/button_pictures.h"
#include "main_window/main_window.h"
#include "startup/command_line.h"
#include "startup/single_instance.h"
#include "startup/splash.h"

namespace pxm::ui {

int RunPixmill(QApplication& app) {
  QApplication::setApplicationName(QStringLiteral("pixmill"));
  QApplication::setApplicationVersion(QStringLiteral(PXM_VERSION));
  QGuiApplication::setDesktopFileName(QStringLiteral("pixmill"));
  QApplication::setWindowIcon(ButtonIcon(kProgramPicture));

  QCommandLineParser parser;
  parser.setApplicationDescription(QStringLiteral(
      "Pixmill lists the pictures of a directory; tag files and run a command over them."));
  parser.addHelpOption();
  parser.addVersionOption();
  parser.addPositionalArgument(QStringLiteral("path"),
                               QStringLiteral("A directory to open, or files to tag in theirs."),
                               QStringLiteral("[DIR | FILE...]"));
  parser.process(app);

  const std::string iniPath = platform::ConfigFilePath().value_or(std::string());

  // The three settings needed before anything shows come from an early read of the file.
  Settings early;
  if (!iniPath.empty()) ReadConfiguration(iniPath, early);
  SingleInstance instance;
  if (!early.AllowMultipleInstances && instance.AskRunningCopy()) return 0;
  instance.Listen();
  std::unique_ptr<QSplashScreen> logo;
  if (early.ShowStartupWindow) logo = ShowStartupLogo(early.LogoBitmapPath);

  Settings& settings = ProcessSettings();
  if (!iniPath.empty()) ReadConfiguration(iniPath, settings);

  std::vector<std::string> arguments;
  for (const QString& argument : parser.positionalArguments())
    arguments.push_back(PathFromQt(argument));
  StartRequest request = ParseStartArguments(arguments, platform::CurrentDirectory());
  std::string start = request.directory.empty() ? settings.StartupDirectory : request.directory;
  // A start directory that is gone leaves the program where it was started.
  if (!start.empty() && ::chdir(start.c_str()) != 0) request.tagged.clear();

  AppState state;
  state.iniPath = iniPath;
  if (!iniPath.empty()) ReadRecentDirectories(iniPath, state.recent);
  MainWindow window(state);
  QObject::connect(&instance, &SingleInstance::raiseRequested, &window, &MainWindow::BringToFront);
  window.ApplyPlacement();
  window.show();
  if (logo) logo->finish(&window);
  if (!request.tagged.empty()) window.TagEntries(request.tagged);
  // Posted, so that thumbnail mode begins once the window runs.
  if (settings.StartThumbMode)
    QMetaObject::invokeMethod(
        &window, [&window] { window.Dispatch(kCmdUseThumbnails, false); }, Qt::QueuedConnection);
  return QApplication::exec();
}

}  // namespace pxm::ui
