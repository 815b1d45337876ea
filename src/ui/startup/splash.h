#pragma once

#include <QPixmap>
#include <memory>
#include <string>

class QSplashScreen;

// The start-up logo: the picture LogoBitmapPath names, read through the engine in any readable
// format, or the program's own picture with its name and version.
namespace pxm::ui {

// The logo at the device pixel ratio `ratio`: the named picture when it can be read (shrunk to
// fit `maxSize`), else the painted one.
QPixmap StartupPicture(const std::string& logoPath, qreal ratio, QSize maxSize = {640, 480});

// Shows the logo at once; it goes when the main window shows (QSplashScreen::finish).
std::unique_ptr<QSplashScreen> ShowStartupLogo(const std::string& logoPath);

}  // namespace pxm::ui
