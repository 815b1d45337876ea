#include "formats/jpeg.h"

#include <algorithm>
#include <array>
#include <new>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/host.h"
#include "core/names.h"
#include "core/pixels.h"
#include "core/row_format.h"
#include "formats/jpeg_fence.h"
#include "formats/info_start.h"

namespace pxm {
namespace {

constexpr size_t kIoBufferSize = 64 * 1024;

// The description for each colour space libjpeg reports. There is no YIQ in the library any
// more; CMYK and YCCK files both read as "CYMK", spelled as users have always seen it.
std::string_view ColourSpaceName(J_COLOR_SPACE space) {
  switch (space) {
    case JCS_UNKNOWN: return "Unknown colour space";
    case JCS_GRAYSCALE: return "Monochrome colour space";
    case JCS_RGB: return "RGB colour space";
    case JCS_YCbCr: return "YUV colour space";
    case JCS_CMYK:
    case JCS_YCCK: return "CYMK colour space";
    default: return {};
  }
}

// A decompressor and everything it reads through. The libjpeg object is destroyed on every way
// out, after a jump too, since this object lives outside the fence.
struct Decompressor {
  JpegErrorJump errors;
  jpeg_decompress_struct cinfo;
  JpegFileSource source;
  jpeg_progress_mgr progress;
  std::vector<uint8_t> buffer;
  bool created = false;

  Decompressor() { cinfo.err = InitJpegErrors(errors); }
  ~Decompressor() {
    if (created) jpeg_destroy_decompress(&cinfo);
  }
  Decompressor(const Decompressor&) = delete;
  Decompressor& operator=(const Decompressor&) = delete;

  void Attach(InputFile& file) {
    buffer.resize(kIoBufferSize);
    source.file = &file;
    source.buffer = buffer.data();
    source.size = buffer.size();
  }
};

// Bodies run under the fence: trivially destructible locals only (see jpeg_fence.h).
struct HeaderJob {
  Decompressor* d;
};

int CreateAndReadHeader(void* p) {
  Decompressor& d = *static_cast<HeaderJob*>(p)->d;
  jpeg_create_decompress(&d.cinfo);
  d.created = true;
  AttachJpegSource(&d.cinfo, d.source);
  LimitJpegScans(&d.cinfo, d.progress);
  jpeg_read_header(&d.cinfo, TRUE);
  return kOk;
}

struct ReadJob {
  Decompressor* d;
  ImageInfo* info;
  bool grey;
  bool quantize;
  bool dither;
};

int DecodeRows(void* p) {
  ReadJob& job = *static_cast<ReadJob*>(p);
  j_decompress_ptr cinfo = &job.d->cinfo;
  ImageInfo& info = *job.info;
  // The quantizer works on the output colours, so colour files ask for RGB both ways; a CMYK
  // file has no conversion to RGB in the library and stops here with its fatal error.
  if (!job.grey) cinfo->out_color_space = JCS_RGB;
  if (job.quantize) {
    cinfo->quantize_colors = TRUE;
    cinfo->desired_number_of_colors = 256;
    cinfo->two_pass_quantize = FALSE;
    cinfo->dither_mode = job.dither ? JDITHER_FS : JDITHER_NONE;
  }
  jpeg_calc_output_dimensions(cinfo);
  // The store was made for what info saw; a file that no longer matches it is not decoded.
  const uint32_t bits = cinfo->out_color_components == 3 && !job.quantize ? 24 : 8;
  if (cinfo->output_width != info.width ||
      cinfo->output_height != static_cast<uint32_t>(info.depth) || bits != info.bits)
    return kCorruptedFile;

  // The row buffer comes from libjpeg's own pool, so a jump frees it with the rest.
  const auto rowSize = static_cast<JDIMENSION>(WorkingRowSize(info.width, bits));
  JSAMPARRAY rows = cinfo->mem->alloc_sarray(reinterpret_cast<j_common_ptr>(cinfo), JPOOL_IMAGE,
                                             rowSize, 1);
  jpeg_start_decompress(cinfo);
  if (job.quantize) {
    // A grey file's map has one component: its levels are grey.
    const int green = job.grey ? 0 : 1, blue = job.grey ? 0 : 2;
    for (int i = 0; i < cinfo->actual_number_of_colors && i < 256; ++i)
      info.palette[static_cast<size_t>(i)] =
          Rgb{cinfo->colormap[0][i], cinfo->colormap[green][i], cinfo->colormap[blue][i]};
  } else if (job.grey) {
    for (size_t i = 0; i < 256; ++i) {
      auto v = static_cast<uint8_t>(i);
      info.palette[i] = Rgb{v, v, v};
    }
  }
  const std::span<uint8_t> row(rows[0], rowSize);
  while (cinfo->output_scanline < cinfo->output_height) {
    const auto y = static_cast<int32_t>(cinfo->output_scanline);
    if (jpeg_read_scanlines(cinfo, rows, 1) != 1) return kMemoryError;
    if (info.putLine(row, y) != 0) return kCancelled;
  }
  jpeg_finish_decompress(cinfo);
  return kOk;
}

// A compressor writing into an OutputFile; destroyed on every way out, as above.
struct Compressor {
  JpegErrorJump errors;
  jpeg_compress_struct cinfo;
  JpegFileDestination destination;
  std::vector<uint8_t> buffer;
  bool created = false;

  Compressor() { cinfo.err = InitJpegErrors(errors); }
  ~Compressor() {
    if (created) jpeg_destroy_compress(&cinfo);
  }
  Compressor(const Compressor&) = delete;
  Compressor& operator=(const Compressor&) = delete;
};

using RgbMap = std::array<std::array<uint8_t, 3>, 256>;

// Rows in the store's packing to R, G, B triples; chosen once per picture.
using RowToRgb = void (*)(const uint8_t* in, uint8_t* out, uint32_t width, const RgbMap& map);

void OneBitToRgb(const uint8_t* in, uint8_t* out, uint32_t width, const RgbMap& map) {
  for (uint32_t x = 0; x < width; ++x, out += 3) {
    const auto& c = map[(in[x >> 3] >> (7 - (x & 7))) & 1];
    out[0] = c[0], out[1] = c[1], out[2] = c[2];
  }
}

void NibbleToRgb(const uint8_t* in, uint8_t* out, uint32_t width, const RgbMap& map) {
  for (uint32_t x = 0; x < width; ++x, out += 3) {
    const auto& c = map[(x & 1) ? (in[x >> 1] & 0x0F) : (in[x >> 1] >> 4)];
    out[0] = c[0], out[1] = c[1], out[2] = c[2];
  }
}

void ByteToRgb(const uint8_t* in, uint8_t* out, uint32_t width, const RgbMap& map) {
  for (uint32_t x = 0; x < width; ++x, out += 3) {
    const auto& c = map[in[x]];
    out[0] = c[0], out[1] = c[1], out[2] = c[2];
  }
}

struct WriteJob {
  Compressor* c;
  ImageInfo* info;
  uint8_t* in;        // a row as the source gives it
  size_t inSize;
  uint8_t* rgb;       // the same row as R, G, B (the source row itself for 24-bit pictures)
  RowToRgb convert;   // null for 24-bit pictures
  const RgbMap* map;
  int quality;
};

int EncodeRows(void* p) {
  WriteJob& job = *static_cast<WriteJob*>(p);
  j_compress_ptr cinfo = &job.c->cinfo;
  ImageInfo& info = *job.info;
  jpeg_create_compress(cinfo);
  job.c->created = true;
  AttachJpegDestination(cinfo, job.c->destination);
  cinfo->image_width = info.width;
  cinfo->image_height = static_cast<JDIMENSION>(info.depth);
  cinfo->input_components = 3;
  cinfo->in_color_space = JCS_RGB;
  jpeg_set_defaults(cinfo);
  jpeg_set_quality(cinfo, job.quality, FALSE);
  jpeg_start_compress(cinfo, TRUE);
  const std::span<uint8_t> in(job.in, job.inSize);
  JSAMPROW rgb = job.rgb;
  for (int32_t y = 0; y < info.depth; ++y) {
    // A failed source is the user's cancel; the caller's file object removes what was written.
    if (info.getLine(in, y) != 0) return kCancelled;
    if (job.convert) job.convert(job.in, job.rgb, info.width, *job.map);
    jpeg_write_scanlines(cinfo, &rgb, 1);
  }
  jpeg_finish_compress(cinfo);
  return kOk;
}

// A thumbnail is at most 96 pixels across; the decoder can hand over the picture at 1/2, 1/4
// or 1/8 of its size for a fraction of the work. The largest reduction that keeps the longer
// side at 192 pixels or more leaves the thumbnail's own scaling plenty to choose from.
unsigned ThumbnailReduction(uint32_t width, uint32_t depth) {
  const uint32_t longer = std::max(width, depth);
  unsigned denominator = 1;
  while (denominator < 8 && longer / (denominator * 2) >= 192) denominator *= 2;
  return denominator;
}

int DoInfo(ImageInfo& info, const std::string& path, int purpose) {
  InputFile file;
  if (int code = OpenForInfo(info, path, file)) return code;
  Decompressor d;
  d.errors.file = path.c_str();
  d.Attach(file);
  HeaderJob job{&d};
  if (int code = RunGuarded(d.errors, CreateAndReadHeader, &job)) return code;

  const jpeg_decompress_struct& c = d.cinfo;
  // Huffman coding spends at least a bit on every 8 x 8 block of every component, and the blocks
  // of all components together are at least one for every 128 pixels (half of them where two
  // components take the full width and the full height between them): a byte covers at most
  // 1024 pixels. Arithmetic coding has no such floor and is not judged.
  if (!c.arith_code &&
      !FileCouldHold(file.Size(), 0, PackedPictureBytes(c.image_width, c.image_height, 8), 1024))
    return kCorruptedFile;
  info.width = c.image_width;
  info.depth = static_cast<int32_t>(c.image_height);
  info.privateWords[0] = 1;
  info.fullWidth = 0;
  info.fullDepth = 0;
  if (purpose == 1) {
    const unsigned reduction = ThumbnailReduction(c.image_width, c.image_height);
    if (reduction > 1) {
      // The decoder's scaled size, rounded up as it rounds.
      info.fullWidth = info.width;
      info.fullDepth = info.depth;
      info.width = (c.image_width + reduction - 1) / reduction;
      info.depth = static_cast<int32_t>((c.image_height + reduction - 1) / reduction);
      info.privateWords[0] = reduction;
    }
  }
  const bool grey = c.jpeg_color_space == JCS_GRAYSCALE;
  info.bits = CurrentSettings().ReadJpegRgb != 0 && !grey ? 24
                                                          : static_cast<uint32_t>(c.data_precision);
  // Placeholder grey levels until the reader knows the real colours; a 24-bit picture keeps
  // the plain ramp.
  const uint32_t shift = info.bits < 8 ? 8 - info.bits : 0;
  const size_t entries = info.bits < 8 ? (size_t{1} << info.bits) : 256;
  for (size_t i = 0; i < entries; ++i) {
    auto v = static_cast<uint8_t>(i << shift);
    info.palette[i] = Rgb{v, v, v};
  }
  info.unpackedSize = UnpackedSize(info.width, info.bits, info.depth);
  if (std::string_view name = ColourSpaceName(c.jpeg_color_space); !name.empty())
    SetText(info.description, name, kMaxDescriptionLength);
  return kOk;
}

int DoRead(ImageInfo& info, const std::string& path) {
  InputFile file;
  if (!file.Open(path)) return kOpenError;
  info.fileSize = static_cast<int32_t>(file.Size());
  Decompressor d;
  d.errors.file = path.c_str();
  d.Attach(file);
  HeaderJob header{&d};
  if (int code = RunGuarded(d.errors, CreateAndReadHeader, &header)) return code;
  const Settings& s = CurrentSettings();
  // Info may have asked for the picture reduced (for a thumbnail): the record says by how much.
  const uint32_t reduction = info.privateWords[0];
  if (reduction == 2 || reduction == 4 || reduction == 8) {
    d.cinfo.scale_num = 1;
    d.cinfo.scale_denom = reduction;
  }
  ReadJob job{&d, &info, d.cinfo.jpeg_color_space == JCS_GRAYSCALE, s.ReadJpegRgb == 0,
              s.DitherOnJpegRead != 0};
  // A photograph quietly kept to 256 colours surprises people converting it: say so, once.
  if (job.quantize && !job.grey) HostOf(info).Notify(Notice::kJpegReadAs256Colours);
  return RunGuarded(d.errors, DecodeRows, &job);
}

int DoWrite(ImageInfo& info, const std::string& path) {
  OutputFile file;
  if (!file.Create(path)) return kCreateError;
  Compressor c;
  c.errors.file = path.c_str();
  c.buffer.resize(kIoBufferSize);
  c.destination.file = &file;
  c.destination.buffer = c.buffer.data();
  c.destination.size = c.buffer.size();

  const uint32_t storage = StorageBits(info.bits);
  std::vector<uint8_t> in(WorkingRowSize(info.width, info.bits));
  RgbMap map{};
  for (size_t i = 0; i < 256; ++i)
    map[i] = {info.palette[i].red, info.palette[i].green, info.palette[i].blue};
  RowToRgb convert = storage == 1 ? OneBitToRgb
                     : storage == 4 ? NibbleToRgb
                     : storage == 8 ? ByteToRgb
                                    : nullptr;
  std::vector<uint8_t> rgb(convert ? 3 * static_cast<size_t>(info.width) : 0);
  WriteJob job{&c,      &info, in.data(), in.size(), convert ? rgb.data() : in.data(),
               convert, &map,  std::clamp(CurrentSettings().JpegCompressionFactor, 0, 100)};
  if (int code = RunGuarded(c.errors, EncodeRows, &job)) return code;
  return file.Commit() ? kOk : kWriteError;
}

}  // namespace

int JpegInfo(ImageInfo& info, const std::string& path, int purpose) {
  try {
    return DoInfo(info, path, purpose);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

int JpegRead(ImageInfo& info, const std::string& path) {
  try {
    return DoRead(info, path);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

int JpegWrite(ImageInfo& info, const std::string& path) {
  try {
    return DoWrite(info, path);
  } catch (const std::bad_alloc&) {
    return kMemoryError;
  }
}

}  // namespace pxm
