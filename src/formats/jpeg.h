#pragma once

#include <string>

#include "core/image_info.h"

// JPEG files through libjpeg; the JPG and JPE rows share these handlers. Every fatal libjpeg
// condition, a damaged or truncated file included, answers 6 ("Memory error").
namespace pxm {

// Header only: size, 8 bits (24 with ReadJpegRgb for a colour file), the colour space's name.
int JpegInfo(ImageInfo& info, const std::string& path, int purpose);
// 24-bit RGB rows with ReadJpegRgb, otherwise 8-bit rows through libjpeg's one-pass quantizer
// (256 colours, dithered when DitherOnJpegRead is set); grey files give grey rows.
int JpegRead(ImageInfo& info, const std::string& path);
// Baseline JFIF at JpegCompressionFactor; palette pictures through their palette.
int JpegWrite(ImageInfo& info, const std::string& path);

}  // namespace pxm
