#pragma once

#include <cstdint>
#include <string>

#include "core/file_io.h"
#include "core/image_info.h"

namespace pxm {

// What every info handler does before it looks at the file: the name part into fileName, an
// empty description, background 0.
void StartInfo(ImageInfo& info, const std::string& path);

// StartInfo, then opens the file and records its length. Answers 0, or 1 ("Error opening file").
int OpenForInfo(ImageInfo& info, const std::string& path, InputFile& in);

// Bytes of a picture of `width` × `depth` at `bits` per pixel packed tightly row by row (rows
// rounded up to whole bytes); UINT64_MAX for a size beyond 64 bits.
uint64_t PackedPictureBytes(uint32_t width, uint64_t depth, uint32_t bits);

// Bytes of `rows` rows of `rowBytes` each; UINT64_MAX for a size beyond 64 bits.
uint64_t RowsBytes(uint64_t rowBytes, uint64_t rows);

// Whether a file of `fileBytes` could hold `pictureBytes` of pixels stored after `headerBytes`,
// when one byte of the file decodes to at most `bestRatio` bytes of picture (1 for raw data; a
// run-length format's best case, such as 63 for a PCX run pair's 63 bytes from 2). A tiny file
// whose header declares a huge picture is corrupt: readers refuse it with 2 before a store is
// made for it, so it can never make the program allocate or spill gigabytes.
bool FileCouldHold(uint64_t fileBytes, uint64_t headerBytes, uint64_t pictureBytes,
                   uint64_t bestRatio);

}  // namespace pxm
