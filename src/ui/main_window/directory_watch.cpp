#include "main_window/directory_watch.h"

namespace pxm::ui {

DirectoryWatch::DirectoryWatch(QObject* parent) : QObject(parent) {
  merge_.setSingleShot(true);
  merge_.setInterval(kMergeMs);
  connect(&merge_, &QTimer::timeout, this, &DirectoryWatch::changed);
  connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, &DirectoryWatch::Poke);
}

void DirectoryWatch::Watch(const QString& directory) {
  if (!watcher_.directories().isEmpty()) watcher_.removePaths(watcher_.directories());
  merge_.stop();
  watcher_.addPath(directory);
}

void DirectoryWatch::Poke() {
  // The first change of a burst starts the wait; the rest join it.
  if (!merge_.isActive()) merge_.start();
}

}  // namespace pxm::ui
