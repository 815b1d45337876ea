#pragma once

#include <cstdint>
#include <string>

#include "core/file_io.h"
#include "core/image_info.h"

// Self-displaying pictures: a program file (MZ, with or without a Windows PE image after its DOS
// stub) with a PCX, GIF or BMP picture stored after the program. The picture is looked for where
// the DOS image ends (from the MZ header's page counts) and, in PE files, where the last section
// ends; at each place also at the next 16- and 512-byte boundary. It is described and read by
// the handlers of its own format over that stretch of the file. A program without such a
// picture answers 20 ("No bitmap in this file."); nothing is ever written as a program.
namespace pxm {

enum class EmbeddedKind { kNone, kPcx, kGif, kBmp };

struct EmbeddedPicture {
  EmbeddedKind kind = EmbeddedKind::kNone;
  uint64_t offset = 0;
};

// Finds the picture in an open program file: 0 with the picture, 2 when the file is not a
// program (no MZ header), 20 when no picture follows the program.
int FindEmbeddedPicture(InputFile& in, EmbeddedPicture& out);

int ExeInfo(ImageInfo& info, const std::string& path, int purpose);
int ExeRead(ImageInfo& info, const std::string& path);

}  // namespace pxm
