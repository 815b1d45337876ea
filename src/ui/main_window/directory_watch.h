#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

// Notices files appearing in or vanishing from the listed directory. A burst of changes (a batch
// writing many files, a copy into the directory) comes out as one signal.
namespace pxm::ui {

class DirectoryWatch : public QObject {
  Q_OBJECT
 public:
  // How long after the first change of a burst the list is built again.
  static constexpr int kMergeMs = 250;

  explicit DirectoryWatch(QObject* parent = nullptr);
  void Watch(const QString& directory);
  // Also schedules the signal, as a change seen by the watcher would (a file the program wrote).
  void Poke();

 signals:
  void changed();

 private:
  QFileSystemWatcher watcher_;
  QTimer merge_;
};

}  // namespace pxm::ui
