#pragma once

#include <cstdint>
#include <string>

#include "core/image_info.h"

// Text files as pictures of their text: every character an 8 x 16 cell of the program's own
// font, black on white (white on black with InvertTextFiles), one bit a pixel; as many cells
// across as the longest line and as many lines as the file has, up to TextFileLimit lines when
// that is above 0. Lines end at a line feed, a carriage return or the pair of them; tabs stop
// every 8 columns; a character of several UTF-8 bytes is one box, and so is any other byte
// outside the printable ASCII range. Nothing is ever written as text.
namespace pxm {

// A line is cut after this many cells, and with no line limit a file beyond this many bytes is
// refused (13): such a picture would be too large to look at.
constexpr uint32_t kTextMaxColumns = 2048;
constexpr uint64_t kTextMaxBytes = 8u << 20;

int TextInfo(ImageInfo& info, const std::string& path, int purpose);
int TextRead(ImageInfo& info, const std::string& path);

}  // namespace pxm
