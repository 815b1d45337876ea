#include "formats/tiff_decode.h"

#include <algorithm>
#include <bit>
#include <new>
#include <vector>

#include "core/error_codes.h"
#include "core/row_format.h"
#include "formats/tiff_library.h"
#include "formats/tiff_rows.h"

namespace pxm {
namespace {

// libtiff hands wide samples over in the machine's byte order.
constexpr bool kNativeBigEndian = std::endian::native == std::endian::big;

bool SamePicture(TIFF* t, const TiffPicture& p) {
  uint32_t width = 0, length = 0;
  uint16_t bps = 0, spp = 0, planar = 0;
  TIFFGetField(t, TIFFTAG_IMAGEWIDTH, &width);
  TIFFGetField(t, TIFFTAG_IMAGELENGTH, &length);
  TIFFGetFieldDefaulted(t, TIFFTAG_BITSPERSAMPLE, &bps);
  TIFFGetFieldDefaulted(t, TIFFTAG_SAMPLESPERPIXEL, &spp);
  TIFFGetFieldDefaulted(t, TIFFTAG_PLANARCONFIG, &planar);
  return width == p.width && length == p.length && bps == p.bitsPerSample &&
         spp == p.samplesPerPixel && planar == p.planar;
}

size_t Checked(uint64_t n) {
  if (n > static_cast<uint64_t>(kTiffMaxAllocation)) throw std::bad_alloc();
  return static_cast<size_t>(n);
}

// Scanlines in the file's samples (or RGB from the JPEG codec), one at a time.
int ReadScanlines(ImageInfo& info, TIFF* t, const TiffPicture& p) {
  TiffSamples s = p.Samples(kNativeBigEndian);
  if (p.route == TiffRoute::kJpegAsRgb) {
    if (!TIFFSetField(t, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB)) return kUnsupportedFormat;
    s.bitsPerSample = 8;
    s.samplesPerPixel = 3;
    s.colour = true;
  }
  const TiffRowConverter convert(s);
  const uint64_t scanline = TIFFScanlineSize64(t);
  if (scanline == 0 || scanline < convert.FileRowBytes()) return kCorruptedFile;
  std::vector<uint8_t> line(Checked(scanline));
  std::vector<uint8_t> out(Checked(WorkingRowSize(info.width, info.bits)));
  for (uint32_t y = 0; y < p.length; ++y) {
    if (TIFFReadScanline(t, line.data(), y, 0) < 0) return kReadError;
    convert.Convert(line.data(), out.data());
    if (info.putLine(out, static_cast<int32_t>(y)) != 0) return kCancelled;
  }
  return kOk;
}

// Separate planes, a strip of each plane at a time (a scanline reader cannot go back and forth
// between planes inside compressed strips), woven into pixels. Only the planes the picture
// shows are read: the colour's three, or the grey one.
int ReadPlanes(ImageInfo& info, TIFF* t, const TiffPicture& p) {
  TiffSamples s = p.Samples(kNativeBigEndian);
  const uint32_t planes = s.colour ? 3 : 1;
  s.samplesPerPixel = planes;
  const TiffRowConverter convert(s);
  const uint64_t planeRow = (uint64_t{p.width} * p.bitsPerSample + 7) / 8;
  uint32_t rowsPerStrip = p.length;
  TIFFGetFieldDefaulted(t, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
  rowsPerStrip = std::clamp(rowsPerStrip, 1u, p.length);
  const uint64_t stripBytes = planeRow * rowsPerStrip;
  std::vector<std::vector<uint8_t>> strips(planes);
  for (auto& strip : strips) strip.resize(Checked(stripBytes));
  std::vector<uint8_t> chunky(Checked(convert.FileRowBytes()));
  std::vector<uint8_t> out(Checked(WorkingRowSize(info.width, info.bits)));
  for (uint32_t top = 0; top < p.length; top += rowsPerStrip) {
    const uint32_t rows = std::min(rowsPerStrip, p.length - top);
    for (uint32_t k = 0; k < planes; ++k) {
      const uint32_t strip = TIFFComputeStrip(t, top, static_cast<uint16_t>(k));
      const tmsize_t got = TIFFReadEncodedStrip(t, strip, strips[k].data(),
                                                static_cast<tmsize_t>(stripBytes));
      if (got < 0 || static_cast<uint64_t>(got) < planeRow * rows) return kReadError;
    }
    for (uint32_t i = 0; i < rows; ++i) {
      for (uint32_t k = 0; k < planes; ++k)
        WeaveSamples(strips[k].data() + planeRow * i, chunky.data(), p.width, p.bitsPerSample,
                     planes, k);
      convert.Convert(chunky.data(), out.data());
      if (info.putLine(out, static_cast<int32_t>(top + i)) != 0) return kCancelled;
    }
  }
  return kOk;
}

// libtiff's own conversion to RGBA, a strip at a time; its strips come bottom row first.
int ReadRgbaStrips(ImageInfo& info, TIFF* t, const TiffPicture& p) {
  char message[1024];
  if (!TIFFRGBAImageOK(t, message)) return kUnsupportedFormat;
  uint32_t rowsPerStrip = p.length;
  TIFFGetFieldDefaulted(t, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
  rowsPerStrip = std::clamp(rowsPerStrip, 1u, p.length);
  std::vector<uint32_t> raster(Checked(uint64_t{p.width} * rowsPerStrip * 4) / 4);
  std::vector<uint8_t> out(Checked(WorkingRowSize(info.width, 24)));
  for (uint32_t top = 0; top < p.length; top += rowsPerStrip) {
    if (!TIFFReadRGBAStrip(t, top, raster.data())) return kReadError;
    const uint32_t rows = std::min(rowsPerStrip, p.length - top);
    for (uint32_t i = 0; i < rows; ++i) {
      const uint32_t* src = raster.data() + size_t{rows - 1 - i} * p.width;
      for (uint32_t x = 0; x < p.width; ++x) {
        out[3 * x] = static_cast<uint8_t>(TIFFGetR(src[x]));
        out[3 * x + 1] = static_cast<uint8_t>(TIFFGetG(src[x]));
        out[3 * x + 2] = static_cast<uint8_t>(TIFFGetB(src[x]));
      }
      if (info.putLine(out, static_cast<int32_t>(top + i)) != 0) return kCancelled;
    }
  }
  return kOk;
}

}  // namespace

int ReadTiffThroughLibrary(ImageInfo& info, InputFile& file, const std::string& path,
                           const TiffPicture& picture) {
  if (picture.route == TiffRoute::kScanlines &&
      !TIFFIsCODECConfigured(static_cast<uint16_t>(picture.compression)))
    return kUnsupportedFormat;
  if (!file.Seek(0)) return kReadError;
  TiffHandle t = OpenTiffReader(file, path);
  if (!t) return kCorruptedFile;
  if (!SamePicture(t.get(), picture)) return kCorruptedFile;
  if (picture.route == TiffRoute::kRgbaStrips) return ReadRgbaStrips(info, t.get(), picture);
  if (picture.planar == 2 && picture.samplesPerPixel > 1) return ReadPlanes(info, t.get(), picture);
  return ReadScanlines(info, t.get(), picture);
}

}  // namespace pxm
