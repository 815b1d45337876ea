#pragma once

#include <string>

#include "core/host.h"
#include "core/image_info.h"
#include "support/picture.h"

// Pictures to and from files through the format table: the test helpers that need the codecs.
namespace pxm::test {

// Reads a file through the format table, info and reader into a memory store, as Convert does.
// Answers the error code; `info` receives the record after info.
int ReadPicture(const std::string& path, Picture& out, Host* host = nullptr,
                ImageInfo* info = nullptr, uint32_t imageIndex = 0);

// Writes a picture with the writer of the row for `path`'s extension (or `row` when given).
int WritePicture(const Picture& picture, const std::string& path, int row = -1,
                 Host* host = nullptr);

}  // namespace pxm::test
