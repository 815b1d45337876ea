#pragma once

#include <QLocalServer>
#include <QObject>
#include <QString>

// One program per user: the first start listens on a local socket of the user's own; a later
// start that finds it asks it to come to the top and ends.
namespace pxm::ui {

class SingleInstance : public QObject {
  Q_OBJECT
 public:
  // `socketPath` empty: the user's own socket (SocketPath()).
  explicit SingleInstance(QString socketPath = {}, QObject* parent = nullptr);

  // The socket of this user: in $XDG_RUNTIME_DIR when it is set, else in the temporary
  // directory under the user's number.
  static QString SocketPath();

  // Whether another copy is running; when it is, it has been asked to come to the top.
  bool AskRunningCopy();
  // Starts listening for later starts, taking over a socket that no program answers on.
  // Answers whether this copy now listens.
  bool Listen();

 Q_SIGNALS:
  // A later start asked this copy to come to the top.
  void raiseRequested();

 private:
  QString path_;
  QLocalServer server_;
};

}  // namespace pxm::ui
