#include "startup/single_instance.h"

#include <unistd.h>

#include <QDir>
#include <QLocalSocket>

namespace pxm::ui {
namespace {

constexpr int kWaitMs = 1000;
const QByteArray kRaise = QByteArrayLiteral("raise\n");

}  // namespace

SingleInstance::SingleInstance(QString socketPath, QObject* parent)
    : QObject(parent), path_(socketPath.isEmpty() ? SocketPath() : std::move(socketPath)) {
  connect(&server_, &QLocalServer::newConnection, this, [this] {
    while (QLocalSocket* socket = server_.nextPendingConnection()) {
      connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
      connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
        if (socket->readAll().startsWith(kRaise.trimmed())) Q_EMIT raiseRequested();
      });
    }
  });
}

QString SingleInstance::SocketPath() {
  QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
  if (!runtime.isEmpty() && QDir(runtime).exists())
    return runtime + QStringLiteral("/pixmill.sock");
  return QDir::tempPath() + QStringLiteral("/pixmill-%1.sock").arg(::getuid());
}

bool SingleInstance::AskRunningCopy() {
  QLocalSocket socket;
  socket.connectToServer(path_);
  if (!socket.waitForConnected(kWaitMs)) return false;
  socket.write(kRaise);
  socket.waitForBytesWritten(kWaitMs);
  socket.disconnectFromServer();
  return true;
}

bool SingleInstance::Listen() {
  // A socket that answers belongs to a running copy (started with AllowMultipleInstances): it
  // stays theirs. One that answers nobody was left by a copy that ended without removing it.
  QLocalSocket probe;
  probe.connectToServer(path_);
  if (probe.waitForConnected(kWaitMs)) return false;
  server_.setSocketOptions(QLocalServer::UserAccessOption);
  if (server_.listen(path_)) return true;
  if (server_.serverError() != QAbstractSocket::AddressInUseError) return false;
  QLocalServer::removeServer(path_);
  return server_.listen(path_);
}

}  // namespace pxm::ui
