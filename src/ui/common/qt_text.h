#pragma once

#include <QFile>
#include <QString>
#include <string>
#include <string_view>

// The engine speaks UTF-8 texts and byte-string paths; Qt speaks QString.
namespace pxm::ui {

inline QString ToQt(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
inline std::string FromQt(const QString& text) {
  return text.toStdString();
}

// Paths go through the file system's own encoding both ways.
inline QString PathToQt(std::string_view path) {
  return QFile::decodeName(QByteArray(path.data(), static_cast<qsizetype>(path.size())));
}
inline std::string PathFromQt(const QString& path) {
  return QFile::encodeName(path).toStdString();
}

// A menu or button text without its mnemonic marker ("&Convert" -> "Convert").
QString WithoutMnemonic(std::string_view text);

}  // namespace pxm::ui
