#include "startup/splash.h"

#include <QApplication>
#include <QPainter>
#include <QScreen>
#include <QSplashScreen>

#include "common/qt_text.h"
#include "core/strings.h"
#include "main_window/button_pictures.h"
#include "startup/logo_picture.h"

namespace pxm::ui {
namespace {

constexpr int kWidth = 360;
constexpr int kHeight = 150;

QPixmap PaintedLogo(qreal ratio) {
  QPixmap pixmap(QSize(kWidth, kHeight) * ratio);
  pixmap.setDevicePixelRatio(ratio);
  pixmap.fill(QColor(250, 250, 252));
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(120, 120, 130), 1));
  painter.drawRect(QRectF(0.5, 0.5, kWidth - 1, kHeight - 1));
  PaintButtonPicture(painter, kProgramPicture, QRectF(24, 35, 80, 80));
  QFont name = QApplication::font();
  name.setPointSizeF(name.pointSizeF() * 2.4);
  name.setBold(true);
  painter.setFont(name);
  painter.setPen(QColor(30, 30, 40));
  painter.drawText(QRectF(124, 30, kWidth - 140, 50), Qt::AlignLeft | Qt::AlignVCenter,
                   ToQt(LoadMessage(kStrProgramName)));
  QFont small = QApplication::font();
  painter.setFont(small);
  painter.setPen(QColor(80, 80, 90));
  painter.drawText(QRectF(126, 80, kWidth - 140, 24), Qt::AlignLeft | Qt::AlignVCenter,
                   ToQt(MessageWithName(kStrVersion, PXM_VERSION)));
  return pixmap;
}

}  // namespace

QPixmap StartupPicture(const std::string& logoPath, qreal ratio, QSize maxSize) {
  if (!logoPath.empty()) {
    QImage image = ReadPictureFile(logoPath);
    if (!image.isNull()) {
      if (image.width() > maxSize.width() || image.height() > maxSize.height())
        image = image.scaled(maxSize, Qt::KeepAspectRatio, Qt::SmoothTransformation);
      return QPixmap::fromImage(image);
    }
  }
  return PaintedLogo(ratio);
}

std::unique_ptr<QSplashScreen> ShowStartupLogo(const std::string& logoPath) {
  QScreen* screen = QGuiApplication::primaryScreen();
  qreal ratio = screen ? screen->devicePixelRatio() : 1.0;
  auto splash = std::make_unique<QSplashScreen>(screen, StartupPicture(logoPath, ratio));
  splash->setObjectName(QStringLiteral("StartupLogo"));
  splash->setAccessibleName(ToQt(LoadMessage(kStrProgramName)));
  splash->show();
  QApplication::processEvents();
  return splash;
}

}  // namespace pxm::ui
