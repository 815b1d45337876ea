#pragma once

#include <string>
#include <vector>

#include "core/file_io.h"
#include "core/image_info.h"

// Portable Network Graphics: read in every colour type, depth and interlace, written without
// interlace with a palette or as 24-bit colour, with the comment chunks and the chunk report.
namespace pxm {

int PngInfo(ImageInfo& info, const std::string& path, int purpose);
// What PngInfo puts into the record (size, bits, palette, unpacked size, the interlace text),
// for a PNG file that starts at `start` of an open file (an icon's image, say).
int PngDescribe(ImageInfo& info, InputFile& in, uint64_t start);
int PngRead(ImageInfo& info, const std::string& path);
int PngWrite(ImageInfo& info, const std::string& path);
// The chunk report: one heading and its lines per chunk.
int PngList(ImageInfo& info, const std::string& path, std::vector<std::string>& lines);

// The comment reader the info handler installs: every tEXt, zTXt and iTXt chunk as
// "keyword: text", separated by carriage returns. Answers 1 when the file cannot be opened.
int PngReadComments(ImageInfo& info, const std::string& path, std::string& text);

// The error code the reader answers for a result of PngUnpackImage.
int PngResultCode(int result);

// The grey ramp of 2^min(bits, 8) entries: entry i is the luminance of s × i in all three
// components, s = 256 div entries, so it tops out below white (254 for 256 entries).
void PngGreyRamp(uint32_t bits, Palette& palette);

}  // namespace pxm
