#include "batch/print_bands.h"

#include <algorithm>
#include <vector>

#include "core/caption_font.h"
#include "core/error_codes.h"
#include "core/levels.h"
#include "core/pixels.h"
#include "core/sinks.h"
#include "core/sources.h"
#include "core/strings.h"
#include "process/dither.h"

namespace pxm {
namespace {

// A band holds at most this many rows, and not many more bytes than this: small enough that a
// printer driver takes it in one go, large enough that a page is a few dozen bands.
constexpr uint32_t kBandRows = 64;
constexpr size_t kBandBytes = size_t{4} << 20;

// The dots [from, to) of one axis of the page that a picture covers.
struct Span {
  int64_t from = 0;
  int64_t to = 0;
  uint64_t Length() const { return to > from ? static_cast<uint64_t>(to - from) : 0; }
};

Span Visible(int64_t start, uint64_t length, uint64_t pageLength) {
  return {std::max<int64_t>(start, 0), std::min<int64_t>(start + static_cast<int64_t>(length),
                                                         static_cast<int64_t>(pageLength))};
}

// Picture position of page dot `dot` along an axis where `count` pixels fill `length` dots from
// `start`: nearest neighbour, rounding down.
uint32_t SourceOf(int64_t dot, int64_t start, uint64_t length, uint32_t count) {
  const auto offset = static_cast<uint64_t>(dot - start);
  return static_cast<uint32_t>(std::min<uint64_t>(offset * count / length, count - 1u));
}

// The page dot where picture position `index` begins.
int64_t DotOf(uint64_t index, int64_t start, uint64_t length, uint32_t count) {
  return start + static_cast<int64_t>(index * length / count);
}

uint32_t RowsPerBand(size_t bytesPerLine) {
  return static_cast<uint32_t>(
      std::clamp<size_t>(kBandBytes / std::max<size_t>(bytesPerLine, 1), 1, kBandRows));
}

// Collects rows into bands and hands each full one to the sink.
class BandWriter {
 public:
  BandWriter(const BandSink& sink, PrintBand shape)
      : sink_(sink), shape_(shape), perBand_(RowsPerBand(shape.bytesPerLine)) {
    buffer_.assign(perBand_ * shape_.bytesPerLine, 0);
  }
  // The buffer of the next row, cleared.
  uint8_t* NextRow() {
    uint8_t* row = buffer_.data() + rows_ * shape_.bytesPerLine;
    std::fill(row, row + shape_.bytesPerLine, 0);
    return row;
  }
  // The row is done; it fills the page's dots from `top` to `bottom`.
  int RowDone(int64_t top, int64_t bottom) {
    if (rows_ == 0) top_ = top;
    bottom_ = bottom;
    ++rows_;
    return rows_ == perBand_ ? Flush() : kOk;
  }
  int Flush() {
    if (rows_ == 0) return kOk;
    PrintBand band = shape_;
    band.target.y = top_;
    band.target.depth = static_cast<uint64_t>(bottom_ - top_);
    band.rows = rows_;
    band.pixels = std::span<const uint8_t>(buffer_.data(), rows_ * shape_.bytesPerLine);
    rows_ = 0;
    return sink_(band);
  }

 private:
  const BandSink& sink_;
  PrintBand shape_;
  uint32_t perBand_;
  std::vector<uint8_t> buffer_;
  uint32_t rows_ = 0;
  int64_t top_ = 0;
  int64_t bottom_ = 0;
};

// One row's progress and the abort check: 4 when the user clicked.
int Poll(BandJob& job, uint64_t total) {
  job.store.ReportRowProgress(total);
  return job.store.AbortCheck() ? job.store.Explain(kCancelled) : kOk;
}

}  // namespace

// A 1-bit picture in `from`, stretched to fill `place` by nearest neighbour, sent at the
// printer's resolution: every dot of `place` that lies on the page, exactly once.
int SendBits(BandJob& job, ImageStore& from, const Palette& palette, const PageRect& place) {
  const Span across = Visible(place.x, place.width, job.page.width);
  const Span down = Visible(place.y, place.depth, job.page.depth);
  if (across.Length() == 0 || down.Length() == 0) return kOk;
  std::vector<uint32_t> columns(across.Length());
  for (size_t i = 0; i < columns.size(); ++i)
    columns[i] = SourceOf(across.from + static_cast<int64_t>(i), place.x, place.width, from.width);

  PrintBand shape;
  shape.target = {across.from, 0, across.Length(), 0};
  shape.width = static_cast<uint32_t>(across.Length());
  shape.bits = 1;
  shape.palette = &palette;
  shape.bytesPerLine = (across.Length() + 7) / 8;
  BandWriter writer(job.sink, shape);
  std::vector<uint8_t> source(from.bytesPerLine);
  int64_t loaded = -1;
  job.store.rowsDone = 0;
  for (int64_t y = down.from; y < down.to; ++y) {
    if (int code = Poll(job, down.Length())) return code;
    const int64_t r = SourceOf(y, place.y, place.depth, static_cast<uint32_t>(from.depth));
    if (r != loaded) {
      if (from.GetRowQuiet(source, static_cast<int32_t>(r))) return from.Explain(kCancelled);
      loaded = r;
    }
    uint8_t* out = writer.NextRow();
    for (size_t x = 0; x < columns.size(); ++x)
      if (PixelAt(source.data(), columns[x], 1))
        out[x >> 3] |= static_cast<uint8_t>(0x80u >> (x & 7));
    if (int code = writer.RowDone(y, y + 1)) return code;
  }
  return writer.Flush();
}

// Halftones made at the printer's resolution: the visible part of the picture is first
// stretched into a store of its own, dot for dot, and dithered there.
int SendDeviceHalftone(BandJob& job, ImageInfo& info, const PageRect& place, uint32_t mode,
                       std::string_view name) {
  const Span across = Visible(place.x, place.width, job.page.width);
  const Span down = Visible(place.y, place.depth, job.page.depth);
  if (across.Length() == 0 || down.Length() == 0) return kOk;
  if (across.Length() > UINT32_MAX || down.Length() > INT32_MAX) return kMemoryError;
  ImageStore& picture = job.store;
  ImageStore dots(job.host);
  const uint32_t packing = picture.storageBits;
  if (int code = dots.Create(static_cast<uint32_t>(across.Length()),
                             static_cast<int32_t>(down.Length()), packing, SpillPolicy()))
    return code;
  const size_t bytesPer = packing == 24 ? 3 : 1;
  std::vector<uint32_t> columns(across.Length());
  for (size_t i = 0; i < columns.size(); ++i)
    columns[i] =
        SourceOf(across.from + static_cast<int64_t>(i), place.x, place.width, picture.width);
  std::vector<uint8_t> source(picture.bytesPerLine);
  std::vector<uint8_t> row(dots.bytesPerLine);
  int64_t loaded = -1;
  picture.rowsDone = 0;
  for (int64_t y = down.from; y < down.to; ++y) {
    if (int code = Poll(job, down.Length())) return code;
    const int64_t r = SourceOf(y, place.y, place.depth, static_cast<uint32_t>(picture.depth));
    if (r != loaded) {
      if (picture.GetRowQuiet(source, static_cast<int32_t>(r))) return picture.Explain(kCancelled);
      loaded = r;
    }
    for (size_t x = 0; x < columns.size(); ++x)
      std::copy_n(source.data() + columns[x] * bytesPer, bytesPer, row.data() + x * bytesPer);
    if (dots.PutRowQuiet(row, static_cast<int32_t>(y - down.from))) return dots.Explain(kCancelled);
  }

  ImageInfo halftone;
  halftone.host = &job.host;
  halftone.width = dots.width;
  halftone.depth = dots.depth;
  halftone.bits = info.bits;
  halftone.palette = info.palette;
  halftone.getLine = PlainRowSource(dots);
  halftone.putLine = QuietRowSink(dots);
  if (int code = DitherImage(halftone, mode, name)) return dots.Explain(code);
  job.host.SetStatus(MessageWithName(kStrPrinting, name));
  const PageRect exact{across.from, down.from, across.Length(), down.Length()};
  return SendBits(job, dots, halftone.palette, exact);
}

// A palette or true-colour picture sent at its own resolution, after contrast and brightness:
// the rows and columns of it that show on the page, each band stretched by the printer.
int SendPicture(BandJob& job, const ImageInfo& info, const PageRect& place, int32_t contrast,
                int32_t brightness) {
  ImageStore& picture = job.store;
  const Span across = Visible(place.x, place.width, job.page.width);
  const Span down = Visible(place.y, place.depth, job.page.depth);
  if (across.Length() == 0 || down.Length() == 0) return kOk;
  const uint32_t w = picture.width;
  const auto d = static_cast<uint32_t>(picture.depth);
  const uint32_t x0 = SourceOf(across.from, place.x, place.width, w);
  const uint32_t x1 = SourceOf(across.to - 1, place.x, place.width, w) + 1;
  const uint32_t y0 = SourceOf(down.from, place.y, place.depth, d);
  const uint32_t y1 = SourceOf(down.to - 1, place.y, place.depth, d) + 1;

  const LevelTable levels = ContrastBrightnessTable(contrast, brightness, 0, 255);
  Palette palette = info.palette;
  for (Rgb& c : palette) c = {levels[c.red], levels[c.green], levels[c.blue]};
  const bool rgb = picture.storageBits == 24;
  const size_t bytesPer = rgb ? 3 : 1;

  PrintBand shape;
  shape.target.x = DotOf(x0, place.x, place.width, w);
  shape.target.width = static_cast<uint64_t>(DotOf(x1, place.x, place.width, w) - shape.target.x);
  shape.width = x1 - x0;
  shape.bits = rgb ? 24 : 8;
  shape.palette = rgb ? nullptr : &palette;
  shape.bytesPerLine = shape.width * bytesPer;
  BandWriter writer(job.sink, shape);
  std::vector<uint8_t> source(picture.bytesPerLine);
  picture.rowsDone = 0;
  for (uint32_t r = y0; r < y1; ++r) {
    if (int code = Poll(job, y1 - y0)) return code;
    if (picture.GetRowQuiet(source, static_cast<int32_t>(r))) return picture.Explain(kCancelled);
    uint8_t* out = writer.NextRow();
    std::copy_n(source.data() + x0 * bytesPer, shape.bytesPerLine, out);
    if (rgb)
      for (size_t i = 0; i < shape.bytesPerLine; ++i) out[i] = levels[out[i]];
    const int code =
        writer.RowDone(DotOf(r, place.y, place.depth, d), DotOf(r + 1, place.y, place.depth, d));
    if (code) return code;
  }
  return writer.Flush();
}

// The caption: black letters on white, at the printer's resolution.
int SendCaption(BandJob& job, const PrintPlacement& plan) {
  static const Palette kPaper = [] {
    Palette p{};
    p[1] = {255, 255, 255};
    return p;
  }();
  PrintBand shape;
  shape.target = {plan.caption.x, 0, plan.caption.width, 0};
  shape.width = static_cast<uint32_t>(plan.caption.width);
  shape.bits = 1;
  shape.palette = &kPaper;
  shape.bytesPerLine = (plan.caption.width + 7) / 8;
  BandWriter writer(job.sink, shape);
  std::vector<uint8_t> ink(plan.caption.width);
  for (uint64_t y = 0; y < plan.caption.depth; ++y) {
    std::fill(ink.begin(), ink.end(), 0);
    CaptionInk(plan.captionText, static_cast<uint32_t>(y), plan.captionScale, ink);
    uint8_t* out = writer.NextRow();
    for (size_t x = 0; x < ink.size(); ++x)
      if (!ink[x]) out[x >> 3] |= static_cast<uint8_t>(0x80u >> (x & 7));
    const int64_t top = plan.caption.y + static_cast<int64_t>(y);
    if (int code = writer.RowDone(top, top + 1)) return code;
  }
  return writer.Flush();
}

}  // namespace pxm
