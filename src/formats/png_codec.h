#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "core/file_io.h"
#include "core/image_info.h"

// The PNG codec library: deflate coding and the CRC of PNG chunks (also used to verify copies),
// and the decoding of whole PNG files.
namespace pxm {

// Folds bytes into a CRC-32 (the PNG and zlib polynomial). Start with 0; the value after the
// last bytes is the CRC.
uint32_t PngUpdateCrc(uint32_t crc, std::span<const uint8_t> bytes);

// The state of one image's compression, from PngBeginDeflate to PngEndDeflate.
class PngDeflate {
 public:
  PngDeflate();
  ~PngDeflate();
  PngDeflate(const PngDeflate&) = delete;
  PngDeflate& operator=(const PngDeflate&) = delete;

  // Compressed bytes written so far.
  uint64_t Written() const;

  struct State;

 private:
  friend bool PngBeginDeflate(PngDeflate&, OutputFile&, int, size_t, int);
  friend bool PngDeflateData(PngDeflate&, std::span<const uint8_t>);
  friend bool PngEndDeflate(PngDeflate&);
  std::unique_ptr<State> state_;
};

// Starts the zlib stream of an IDAT chunk whose type the caller has just written: `level` 1 to 9,
// `bytesPerRow` raw bytes a row. With `bytesPerPixel` 1 or 3 each row's filter is chosen for the
// smallest sum of absolute differences; with 0 every row is stored unfiltered. The answers of
// these three are nonzero (true) on success.
bool PngBeginDeflate(PngDeflate& deflate, OutputFile& file, int level, size_t bytesPerRow,
                     int bytesPerPixel);
// Filters and compresses one row of `bytesPerRow` bytes.
bool PngDeflateData(PngDeflate& deflate, std::span<const uint8_t> row);
// Ends the stream and writes the chunk's CRC over "IDAT" and the compressed bytes.
bool PngEndDeflate(PngDeflate& deflate);

// Results of PngUnpackImage.
enum PngResult : int {
  kPngOk = 0,
  kPngNotPng = 1,     // no PNG signature
  kPngBadHeader = 2,  // IHDR missing or wrong
  kPngNoMemory = 3,
  kPngCannotRead = 4,  // the file cannot be opened
  kPngWriteFailed = 5,
  kPngBadChunk = 6,  // a chunk before the image data is damaged
  kPngBadData = 7,   // the image data cannot be decompressed or unfiltered
  kPngUnsupported = 8,
  kPngNoImage = 9,  // no IDAT chunk before IEND
  kPngBadPalette = 10,
  kPngTooLarge = 11,
  kPngTruncated = 12,  // the file ends inside the data
  kPngCancelled = 13,  // the sink asked to stop
};

// Decodes the whole file and delivers every row to info.putLine in the program's row formats:
// 1-, 4- and 8-bit rows as they are, 2-bit rows as 4-bit, grey with alpha as 8-bit grey, colour
// (with or without alpha) as 24-bit RGB, 16-bit grey as 24-bit RGB; 16-bit samples keep their
// high byte, alpha is dropped. Adam 7 files are decoded whole before their rows are delivered.
int PngUnpackImage(ImageInfo& info, const std::string& path);
// The same for a PNG file that starts at `start` of an open file (an icon's image, say).
int PngUnpackAt(ImageInfo& info, InputFile& in, uint64_t start);

}  // namespace pxm
