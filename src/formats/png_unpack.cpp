// PngUnpackImage: whole PNG files decoded by libpng into the program's row formats.
//
// libpng reports errors by longjmp. The jump lands in DecodeFenced, which holds nothing that needs
// a destructor; everything that does lives in the Job, owned by the caller's frame, and the
// libpng structures are freed there too.

#include <png.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

#include "core/bytes.h"
#include "core/debug_log.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/row_format.h"
#include "formats/png_chunks.h"
#include "formats/png_codec.h"

namespace pxm {
namespace {

struct Job {
  const char* path = "";
  InputFile* in = nullptr;
  const LineSink* sink = nullptr;
  png_structp png = nullptr;
  png_infop pngInfo = nullptr;
  bool shortRead = false;
  bool noMemory = false;
  bool inData = false;       // past the header: the rows are being decoded
  std::vector<uint8_t> raw;  // one row as libpng gives it, or the whole Adam 7 picture
  std::vector<uint8_t> out;  // one row in the program's packing

  ~Job() {
    if (png) png_destroy_read_struct(&png, pngInfo ? &pngInfo : nullptr, nullptr);
  }

  int Failure() const {
    if (noMemory) return kPngNoMemory;
    if (shortRead) return kPngTruncated;
    return inData ? kPngBadData : kPngBadChunk;
  }

  // Sizes the buffers; false when the memory is not there.
  bool Prepare(size_t rawBytes, size_t outBytes) {
    try {
      raw.assign(rawBytes, 0);
      out.assign(outBytes, 0);
      return true;
    } catch (const std::bad_alloc&) {
      return false;
    }
  }
};

void ReadData(png_structp png, png_bytep data, size_t length) {
  auto* job = static_cast<Job*>(png_get_io_ptr(png));
  if (job->in->Read(data, length) < length) {
    job->shortRead = true;
    png_error(png, "the file ends early");
  }
}

void OnError(png_structp png, png_const_charp message) {
  DebugLog("libpng", static_cast<Job*>(png_get_error_ptr(png))->path, message);
  png_longjmp(png, 1);
}
void OnWarning(png_structp, png_const_charp) {}

png_voidp Allocate(png_structp png, png_alloc_size_t size) {
  void* p = std::malloc(size);
  if (!p) static_cast<Job*>(png_get_mem_ptr(png))->noMemory = true;
  return p;
}
void Release(png_structp, png_voidp p) {
  std::free(p);
}

// Two-bit rows (grey or palette) become 4-bit rows, two pixels a byte, high nibble first.
void TwoToFour(const uint8_t* in, uint32_t width, uint8_t* out) {
  for (uint32_t x = 0; x < width; x += 2) {
    const uint32_t a = (in[x >> 2] >> (6 - 2 * (x & 3))) & 3u;
    const uint32_t b = x + 1 < width ? (in[(x + 1) >> 2] >> (6 - 2 * ((x + 1) & 3))) & 3u : 0;
    out[x >> 1] = static_cast<uint8_t>((a << 4) | b);
  }
}

// Delivers one decoded row of `rowBytes`; true when the sink asked to stop.
bool Deliver(Job* job, const uint8_t* row, size_t rowBytes, uint32_t width, bool twoBit,
             png_uint_32 y) {
  if (twoBit) {
    TwoToFour(row, width, job->out.data());
  } else if (row != job->out.data()) {
    std::memcpy(job->out.data(), row, rowBytes);
  }
  return (*job->sink)(job->out, static_cast<int32_t>(y)) != 0;
}

int DecodeFenced(Job* job) {
  png_structp png = job->png;
  png_infop info = job->pngInfo;
  if (setjmp(png_jmpbuf(png))) return job->Failure();
  png_set_sig_bytes(png, 8);
  png_read_info(png, info);
  const png_uint_32 width = png_get_image_width(png, info);
  const png_uint_32 height = png_get_image_height(png, info);
  const int colour = png_get_color_type(png, info);
  const int depth = png_get_bit_depth(png, info);
  const bool interlaced = png_get_interlace_type(png, info) != PNG_INTERLACE_NONE;

  // The program's rows: 16-bit samples keep their high byte, alpha is dropped, and 16-bit grey,
  // which the program counts as 16 bits a pixel, is delivered as colour.
  if (depth == 16) png_set_strip_16(png);
  if (colour & PNG_COLOR_MASK_ALPHA) png_set_strip_alpha(png);
  if (colour == PNG_COLOR_TYPE_GRAY && depth == 16) png_set_gray_to_rgb(png);
  const int passes = interlaced ? png_set_interlace_handling(png) : 1;
  png_read_update_info(png, info);
  job->inData = true;

  const bool twoBit = depth == 2;
  uint32_t bits = static_cast<uint32_t>(depth);
  if (colour == PNG_COLOR_TYPE_RGB || colour == PNG_COLOR_TYPE_RGB_ALPHA) bits = 24;
  if (colour == PNG_COLOR_TYPE_GRAY_ALPHA) bits = 8;
  const size_t rowBytes = png_get_rowbytes(png, info);
  // Rows that need no conversion are decoded straight into the delivered row.
  const uint64_t rawBytes = interlaced ? static_cast<uint64_t>(rowBytes) * height
                            : twoBit   ? rowBytes
                                       : 0;
  const uint64_t outBytes = std::max<uint64_t>(WorkingRowSize(width, bits), rowBytes);
  if (rawBytes > SIZE_MAX / 2 || outBytes > SIZE_MAX / 2 ||
      !job->Prepare(static_cast<size_t>(rawBytes), static_cast<size_t>(outBytes)))
    return kPngNoMemory;

  uint8_t* raw = job->raw.data();
  if (!interlaced) {
    uint8_t* target = twoBit ? raw : job->out.data();
    for (png_uint_32 y = 0; y < height; ++y) {
      png_read_row(png, target, nullptr);
      if (Deliver(job, target, rowBytes, width, twoBit, y)) return kPngCancelled;
    }
  } else {
    // Adam 7 fills every row in seven passes: the whole picture is needed before any row is done.
    for (int pass = 0; pass < passes; ++pass)
      for (png_uint_32 y = 0; y < height; ++y)
        png_read_row(png, raw + static_cast<size_t>(y) * rowBytes, nullptr);
    for (png_uint_32 y = 0; y < height; ++y)
      if (Deliver(job, raw + static_cast<size_t>(y) * rowBytes, rowBytes, width, twoBit, y))
        return kPngCancelled;
  }
  // The rest of the file is read too, so that a damaged checksum of the image data shows.
  png_read_end(png, nullptr);
  return kPngOk;
}

// Whether an IDAT chunk comes before IEND; files that cannot be walked are left to libpng.
bool HasImageData(PngChunkReader& chunks) {
  while (chunks.Next()) {
    if (chunks.Is("IDAT")) return true;
    if (chunks.Is("IEND")) return false;
  }
  return true;
}

int Unpack(ImageInfo& info, InputFile& in, uint64_t start, const char* path) {
  PngChunkReader chunks(in, start);
  if (int code = chunks.Start()) return code == kReadError ? kPngTruncated : kPngNotPng;
  if (!HasImageData(chunks)) return kPngNoImage;
  if (!in.Seek(start + sizeof kPngSignature)) return kPngCannotRead;

  Job job;
  job.path = path;
  job.in = &in;
  job.sink = &info.putLine;
  job.png = png_create_read_struct_2(PNG_LIBPNG_VER_STRING, &job, OnError, OnWarning, &job,
                                     Allocate, Release);
  if (!job.png) return kPngNoMemory;
  job.pngInfo = png_create_info_struct(job.png);
  if (!job.pngInfo) return kPngNoMemory;
  png_set_read_fn(job.png, &job, ReadData);
  return DecodeFenced(&job);
}

}  // namespace

int PngUnpackImage(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kPngCannotRead;
  return Unpack(info, in, 0, path.c_str());
}

int PngUnpackAt(ImageInfo& info, InputFile& in, uint64_t start) {
  return Unpack(info, in, start, "");
}

}  // namespace pxm
