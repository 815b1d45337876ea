#include "formats/iff.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include "config/settings.h"
#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/names.h"
#include "core/palette_bytes.h"
#include "core/pixels.h"
#include "core/row_format.h"
#include "core/signature.h"
#include "core/strings.h"
#include "formats/bit_planes.h"
#include "formats/byte_run1.h"
#include "formats/info_start.h"
#include "formats/report_list.h"

namespace pxm {
namespace {

// The 20-byte BMHD chunk; all words big-endian.
enum BmhdOffset : size_t {
  kBmhdWidth = 0,
  kBmhdHeight = 2,
  kBmhdX = 4,
  kBmhdY = 6,
  kBmhdPlanes = 8,
  kBmhdMasking = 9,
  kBmhdCompression = 10,  // 0 none, anything else ByteRun1
  kBmhdPad = 11,
  kBmhdTransparent = 12,
  kBmhdXAspect = 14,
  kBmhdYAspect = 15,
  kBmhdPageWidth = 16,
  kBmhdPageHeight = 18,
};
constexpr size_t kBmhdBytes = 20;
constexpr uint64_t kPaletteBytes = 768;
// A walk that takes more chunks than this is going round in circles.
constexpr int kMaxChunks = 1 << 20;

// Report lines; their texts are in the string table.
enum ReportString : int {
  kStrChunk = 1100,
  kStrFormType = 1101,
  kStrBmhdFirst = 1102,  // width, height, ... page height: 1102..1114
  kStrColourMap = 1115,
  kStrText = 1116,
};

bool Is(const uint8_t* id, const char* name) {
  return std::memcmp(id, name, 4) == 0;
}

struct Chunk {
  uint8_t id[4] = {};
  uint64_t length = 0;     // rounded up to even, as the walk skips it
  uint64_t rawLength = 0;  // as the file says
  uint64_t dataStart = 0;
};

bool ReadChunk(InputFile& in, Chunk& c) {
  uint8_t h[8];
  if (!in.ReadExact(h, sizeof h)) return false;
  std::memcpy(c.id, h, 4);
  c.rawLength = LoadBe32(h + 4);
  c.length = c.rawLength + (c.rawLength & 1);
  c.dataStart = in.Tell();
  return true;
}

// The first identifier ("FORM", "LIST" or "CAT "), its length and the form type.
int ReadForm(InputFile& in, uint8_t formType[4]) {
  uint8_t id[4];
  if (!in.ReadExact(id, 4)) return kReadError;
  if (!Is(id, "FORM") && !Is(id, "LIST") && !Is(id, "CAT ")) return kCorruptedFile;
  if (!in.Skip(4) || !in.ReadExact(formType, 4)) return kReadError;
  return kOk;
}

struct Bitmap {
  uint32_t width = 0;
  int32_t depth = 0;
  uint32_t planes = 0;
  uint8_t compression = 0;
  bool pbm = false;  // chunky "PBM " rows instead of planes
  size_t PlaneBytes() const { return (size_t{width} + 7) / 8; }
  uint64_t LineLength() const { return pbm ? width : uint64_t{PlaneBytes()} * planes; }
};

Bitmap ParseBmhd(const uint8_t* b, bool pbm) {
  Bitmap out;
  out.width = LoadBe16(b + kBmhdWidth);
  out.depth = LoadBe16(b + kBmhdHeight);
  out.planes = b[kBmhdPlanes];
  out.compression = b[kBmhdCompression];
  out.pbm = pbm;
  return out;
}

// Pictures of more than eight planes are held as 24-bit ones.
uint32_t RecordBits(uint32_t planes) {
  return planes <= 8 ? planes : 24;
}

// The least the body can take: every byte of every line, or with ByteRun1 one two-byte code for
// each 128 bytes of a line.
uint64_t LeastBodyBytes(const Bitmap& bm) {
  const uint64_t line = bm.LineLength();
  const uint64_t perLine = bm.compression == 0 ? line : 2 * ((line + 127) / 128);
  return perLine * static_cast<uint64_t>(bm.depth);
}

using RowConvert = void (*)(const uint8_t* line, const Bitmap& bm, uint8_t* out);

void ConvertNibbles(const uint8_t* line, const Bitmap& bm, uint8_t* out) {
  PlanesToNibbles(line, bm.PlaneBytes(), bm.planes, bm.width, out);
}
void ConvertBytes(const uint8_t* line, const Bitmap& bm, uint8_t* out) {
  PlanesToBytes(line, bm.PlaneBytes(), bm.planes, bm.width, out);
}
void ConvertRgb(const uint8_t* line, const Bitmap& bm, uint8_t* out) {
  PlanesToRgb(line, bm.PlaneBytes(), bm.width, out);
}

int ReadBody(ImageInfo& info, InputFile& in, const Bitmap& bm) {
  const uint32_t bits = RecordBits(bm.planes);
  const uint64_t line = bm.LineLength();
  // The line buffer also takes what a code makes past the line, and the 24 planes the deep
  // conversion reads whatever the line holds; the row buffer takes whole groups of 8 pixels.
  const uint64_t lineSize =
      std::max({line, 24 * uint64_t{bm.PlaneBytes()}, uint64_t{bm.width}}) + kByteRun1Overrun;
  const uint64_t rowSize = std::max(WorkingRowSize(bm.width, bits), 24 * uint64_t{bm.PlaneBytes()});
  const auto fill = static_cast<uint8_t>(info.background);
  std::vector<uint8_t> raw(static_cast<size_t>(lineSize), fill);
  std::vector<uint8_t> row(static_cast<size_t>(rowSize), fill);

  // 1 bit and chunky 5-8-bit lines are the store's rows as they stand.
  RowConvert convert = nullptr;
  if (bits >= 2 && bits <= 4)
    convert = ConvertNibbles;
  else if (bits >= 5 && bits <= 8 && !bm.pbm)
    convert = ConvertBytes;
  else if (bits > 8)
    convert = ConvertRgb;
  std::span<uint8_t> out = convert ? std::span<uint8_t>(row) : std::span<uint8_t>(raw);

  for (int32_t y = 0; y < bm.depth; ++y) {
    std::fill(raw.begin() + static_cast<ptrdiff_t>(line), raw.end(), fill);
    const bool ok = bm.compression == 0 ? in.ReadExact(raw.data(), static_cast<size_t>(line))
                                        : DecodeByteRun1(in, raw.data(), static_cast<size_t>(line));
    if (!ok) return kReadError;
    if (convert) convert(raw.data(), bm, row.data());
    if (info.putLine(out, y) != 0) return kCancelled;
  }
  return kOk;
}

// Writes `n` bytes of a plane row, ByteRun1-coded or as they are.
bool WritePlaneRow(OutputFile& out, const uint8_t* data, size_t n, bool compressed,
                   std::vector<uint8_t>& coded) {
  if (!compressed) return out.Write(data, n);
  coded.clear();
  EncodeByteRun1(data, n, coded);
  return out.Write(coded.data(), coded.size());
}

std::string Printable(const uint8_t* bytes, size_t n) {
  std::string s;
  for (size_t i = 0; i < n && bytes[i] != 0; ++i)
    s += (bytes[i] >= 32 && bytes[i] < 127) ? static_cast<char>(bytes[i]) : '?';
  return s;
}

bool IsTextChunk(const uint8_t* id) {
  return Is(id, "ANNO") || Is(id, "NAME") || Is(id, "AUTH") || Is(id, "(c) ") || Is(id, "TEXT");
}

void ReportBmhd(const uint8_t* b, std::vector<std::string>& lines) {
  const unsigned values[] = {LoadBe16(b + kBmhdWidth),
                             LoadBe16(b + kBmhdHeight),
                             LoadBe16(b + kBmhdX),
                             LoadBe16(b + kBmhdY),
                             b[kBmhdPlanes],
                             b[kBmhdMasking],
                             b[kBmhdCompression],
                             b[kBmhdPad],
                             LoadBe16(b + kBmhdTransparent),
                             b[kBmhdXAspect],
                             b[kBmhdYAspect],
                             LoadBe16(b + kBmhdPageWidth),
                             LoadBe16(b + kBmhdPageHeight)};
  for (size_t i = 0; i < std::size(values); ++i) {
    unsigned v = values[i];
    // The origin words are signed.
    const int id = kStrBmhdFirst + static_cast<int>(i);
    std::string text = (i == 2 || i == 3)
                           ? FormatText(LoadMessage(id).data(), int{static_cast<int16_t>(v)})
                           : FormatText(LoadMessage(id).data(), v);
    AddListLine(lines, "  " + text);
  }
}

}  // namespace

int IffInfo(ImageInfo& info, const std::string& path, int /*purpose*/) {
  InputFile in;
  if (int code = OpenForInfo(info, path, in)) return code;
  uint8_t formType[4];
  if (int code = ReadForm(in, formType)) return code;
  const bool pbm = Is(formType, "PBM ");

  Bitmap bm;
  bm.pbm = pbm;
  uint64_t bodyStart = 0;
  bool body = false;
  std::vector<uint64_t> cmapSeeks;
  for (int steps = 0; !body; ++steps) {
    Chunk c;
    if (steps == kMaxChunks) return kCorruptedFile;
    if (!ReadChunk(in, c)) return kReadError;
    if (Is(c.id, "BMHD")) {
      uint8_t b[kBmhdBytes];
      if (!in.ReadExact(b, sizeof b)) return kCorruptedFile;
      bm = ParseBmhd(b, pbm);
      if (!in.Seek(c.dataStart + c.length)) return kReadError;
    } else if (Is(c.id, "CMAP")) {
      uint8_t map[kPaletteBytes] = {};
      const uint64_t n = std::min(c.length, kPaletteBytes);
      if (!in.ReadExact(map, static_cast<size_t>(n))) return kReadError;
      PaletteFromBytes({map, static_cast<size_t>(n)}, kRgbEntries, info.palette);
      if (n % 3) {
        // A part entry keeps the colours it has.
        Rgb& e = info.palette[n / 3];
        e.red = map[n - n % 3];
        if (n % 3 == 2) e.green = map[n - 1];
      }
      // An oversized colour map sends the walk to the absolute offset length - 768 (difference
      // D36 of the differences table); a file that sends it round in a circle is damaged.
      if (c.length > kPaletteBytes) {
        if (std::find(cmapSeeks.begin(), cmapSeeks.end(), c.dataStart) != cmapSeeks.end())
          return kCorruptedFile;
        cmapSeeks.push_back(c.dataStart);
        if (!in.Seek(c.length - kPaletteBytes)) return kReadError;
      }
    } else {
      if (Is(c.id, "BODY")) {
        body = true;
        bodyStart = c.dataStart;
      }
      if (!in.Seek(c.dataStart + c.length)) return kReadError;
    }
  }

  info.width = bm.width;
  info.depth = bm.depth;
  info.bits = RecordBits(bm.planes);
  info.unpackedSize = static_cast<uint32_t>(bm.LineLength() * static_cast<uint64_t>(bm.depth));
  // No planes, or a body the file cannot hold, mean damage; refusing here keeps an absurd size
  // from ever reaching the image store.
  if (bm.planes == 0 || !FileCouldHold(in.Size(), bodyStart, LeastBodyBytes(bm), 1))
    return kCorruptedFile;
  if (info.bits == 1) {
    info.palette[0] = Rgb{0, 0, 0};
    info.palette[1] = Rgb{255, 255, 255};
  }
  return kOk;
}

int IffRead(ImageInfo& info, const std::string& path) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  uint8_t formType[4];
  if (int code = ReadForm(in, formType)) return code;
  const bool pbm = Is(formType, "PBM ");
  Bitmap bm;
  bool haveBmhd = false;
  for (int steps = 0; steps < kMaxChunks; ++steps) {
    Chunk c;
    if (!ReadChunk(in, c)) return kReadError;
    if (Is(c.id, "BMHD")) {
      uint8_t b[kBmhdBytes];
      if (!in.ReadExact(b, sizeof b)) return kCorruptedFile;
      bm = ParseBmhd(b, pbm);
      haveBmhd = true;
    } else if (Is(c.id, "BODY")) {
      // The record describes the picture the store was made for; a file changed since info
      // was taken must not write outside it.
      if (!haveBmhd || RecordBits(bm.planes) != info.bits) return kCorruptedFile;
      bm.width = std::min(bm.width, info.width);
      bm.depth = std::min(bm.depth, info.depth);
      if (!in.Seek(c.dataStart)) return kReadError;
      try {
        return ReadBody(info, in, bm);
      } catch (const std::bad_alloc&) {
        return kMemoryError;
      }
    }
    if (!in.Seek(c.dataStart + c.length)) return kReadError;
  }
  return kCorruptedFile;
}

int IffWrite(ImageInfo& info, const std::string& path) {
  const Settings& settings = CurrentSettings();
  const uint32_t width = info.width;
  const int32_t depth = info.depth;
  const uint32_t bits = info.bits;
  const bool pbm = bits == 8 && settings.CreateIffPBM != 0;
  const bool compressed = settings.CreateIffCompressed != 0;
  const uint32_t planes = bits <= 8 ? bits : 24;
  // The header holds 16-bit sizes: a larger picture cannot be described in it.
  if (width > 0xFFFF || depth < 0 || depth > 0xFFFF) return kUnsuitableImage;

  OutputFile out;
  if (!out.Create(path)) return kCreateError;
  const size_t planeBytes = (size_t{width} + 7) / 8;
  std::vector<uint8_t> row, values, line, coded;
  try {
    row.assign(static_cast<size_t>(WorkingRowSize(width, bits)), 0);
    values.assign(planeBytes * 8, 0);
    line.assign(planeBytes * planes, 0);
    coded.reserve(2 * std::max<size_t>(planeBytes, width) + 16);
  } catch (const std::bad_alloc&) {
    return kMemoryError;  // `out` deletes the file
  }

  std::string head = "FORM" + std::string(4, '\0') + (pbm ? "PBM " : "ILBM");
  uint8_t bmhd[8 + kBmhdBytes] = {'B', 'M', 'H', 'D'};
  StoreBe32(bmhd + 4, kBmhdBytes);
  uint8_t* b = bmhd + 8;
  StoreBe16(b + kBmhdWidth, width);
  StoreBe16(b + kBmhdHeight, static_cast<uint32_t>(depth));
  b[kBmhdPlanes] = static_cast<uint8_t>(planes);
  b[kBmhdCompression] = compressed ? 1 : 0;
  StoreBe16(b + kBmhdPageWidth, width);
  StoreBe16(b + kBmhdPageHeight, static_cast<uint32_t>(depth));
  head.append(reinterpret_cast<const char*>(bmhd), sizeof bmhd);
  if (bits <= 8) {
    const uint32_t entries = 1u << bits;
    uint8_t size[4];
    StoreBe32(size, 3 * entries);
    head += "CMAP" + std::string(reinterpret_cast<const char*>(size), 4);
    uint8_t map[kPaletteBytes];
    PaletteToBytes(info.palette, kRgbEntries, {map, 3 * size_t{entries}});
    head.append(reinterpret_cast<const char*>(map), 3 * size_t{entries});
  }
  // The annotation is the signature, its terminator and the byte that follows it in the
  // signature's storage, 128, which pads the text to an even length; files from this program
  // have always carried that byte.
  head += "ANNO" + std::string("\0\0\0\x12", 4) + std::string(kFileSignature) + '\0' + '\x80';
  head += "BODY";
  const uint64_t bodyLengthAt = head.size();
  head += std::string(4, '\0');
  if (!out.Write(head.data(), head.size())) return kWriteError;

  for (int32_t y = 0; y < depth; ++y) {
    if (info.getLine(row, y) != 0) return kCancelled;
    bool ok = true;
    if (bits == 1) {
      ok = WritePlaneRow(out, row.data(), planeBytes, compressed, coded);
    } else if (pbm) {
      ok = WritePlaneRow(out, row.data(), width, compressed, coded);
    } else {
      if (bits <= 4) {
        for (uint32_t x = 0; x < width; ++x)
          values[x] = static_cast<uint8_t>(PixelAt(row.data(), x, 4));
        BytesToPlanes(values.data(), width, planes, planeBytes, line.data());
      } else if (bits <= 8) {
        BytesToPlanes(row.data(), width, planes, planeBytes, line.data());
      } else {
        RgbToPlanes(row.data(), width, planeBytes, line.data());
      }
      for (uint32_t p = 0; p < planes && ok; ++p)
        ok = WritePlaneRow(out, line.data() + p * planeBytes, planeBytes, compressed, coded);
    }
    if (!ok) return kWriteError;
  }

  if ((out.Tell() - 8) % 2 != 0 && !out.WriteByte(0)) return kWriteError;
  const uint64_t end = out.Tell();
  // The body length counts the pad byte too; readers that skip chunks land in the same place.
  uint8_t word[4];
  StoreBe32(word, static_cast<uint32_t>(end - bodyLengthAt - 4));
  if (!out.Seek(bodyLengthAt) || !out.Write(word, 4)) return kWriteError;
  StoreBe32(word, static_cast<uint32_t>(end - 8));
  if (!out.Seek(4) || !out.Write(word, 4)) return kWriteError;
  return out.Commit() ? kOk : kWriteError;
}

int IffList(ImageInfo& /*info*/, const std::string& path, std::vector<std::string>& lines) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  uint8_t h[12];
  if (!in.ReadExact(h, sizeof h)) return kReadError;
  if (!Is(h, "FORM") && !Is(h, "LIST") && !Is(h, "CAT ")) return kCorruptedFile;
  AddListLine(lines, FormatText(LoadMessage(kStrChunk).data(), Printable(h, 4).c_str(),
                                static_cast<unsigned>(LoadBe32(h + 4))));
  AddListLine(lines,
              "  " + FormatText(LoadMessage(kStrFormType).data(), Printable(h + 8, 4).c_str()));
  Chunk c;
  while (lines.size() < kMaxListLines && ReadChunk(in, c)) {
    AddListLine(lines, FormatText(LoadMessage(kStrChunk).data(), Printable(c.id, 4).c_str(),
                                  static_cast<unsigned>(c.rawLength)));
    uint8_t data[64];
    if (Is(c.id, "BMHD") && in.ReadExact(data, kBmhdBytes)) {
      ReportBmhd(data, lines);
    } else if (Is(c.id, "CMAP")) {
      AddListLine(lines, "  " + FormatText(LoadMessage(kStrColourMap).data(),
                                           static_cast<unsigned>(c.rawLength / 3)));
    } else if (IsTextChunk(c.id)) {
      const size_t n =
          in.Read(data, static_cast<size_t>(std::min<uint64_t>(c.rawLength, sizeof data)));
      AddListLine(lines,
                  "  " + FormatText(LoadMessage(kStrText).data(), Printable(data, n).c_str()));
    }
    if (!in.Seek(c.dataStart + c.length)) break;
  }
  return kOk;
}

}  // namespace pxm
