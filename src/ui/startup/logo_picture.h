#pragma once

#include <QImage>
#include <string>

#include "batch/kept_picture.h"

// Pictures of any readable format as QImages: the store's rows with the picture's palette as
// the colour table.
namespace pxm::ui {

// The kept picture as an image: 1-bit pictures as Format_Mono, 4- and 8-bit ones as
// Format_Indexed8 with the palette, 24-bit ones as Format_RGB888. Null when a row cannot be
// fetched.
QImage PictureImage(KeptPicture& picture);

// Reads a picture file through the engine, asking nobody anything (the first image of a
// multi-image file). Null when it cannot be read.
QImage ReadPictureFile(const std::string& path);

}  // namespace pxm::ui
