#pragma once

#include <string>
#include <vector>

#include "core/image_info.h"

// GIF87a and GIF89a files: one image, or a chosen one of several, read and written, with comment
// extensions and the block report of Get info.
namespace pxm {

int GifInfo(ImageInfo& info, const std::string& path, int purpose);
int GifRead(ImageInfo& info, const std::string& path);
int GifWrite(ImageInfo& info, const std::string& path);
// The block report: screen descriptor, images and extensions, one line each.
int GifList(ImageInfo& info, const std::string& path, std::vector<std::string>& lines);

// The comment reader the info handler installs: the texts of plain-text and comment extensions,
// separated by carriage returns, each cut to 8192 bytes. Answers 1 when the file cannot be
// opened, 0 otherwise (also for a file that is not a GIF).
int GifReadComments(ImageInfo& info, const std::string& path, std::string& text);

// The number of image descriptors in the file (0 when it cannot be read).
uint32_t GifCountImages(const std::string& path);

}  // namespace pxm
