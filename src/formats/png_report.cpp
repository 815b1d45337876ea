// The PNG chunk report of Get info and the comment reader: both walk the chunks one by one.

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "config/settings.h"
#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/file_io.h"
#include "core/strings.h"
#include "formats/png.h"
#include "formats/png_chunks.h"
#include "formats/report_lines.h"

namespace pxm {
namespace {

// The most of a chunk the report looks at, and of a text the comment reader keeps.
constexpr size_t kReportData = 4096;
constexpr size_t kCommentData = 8192;

struct Title {
  const char* type;
  const char* title;
};
constexpr Title kTitles[] = {
    {"IHDR", "HEADER"},
    {"PLTE", "PALETTE"},
    {"IDAT", "IMAGE DATA"},
    {"IEND", "END OF FILE"},
    {"gAMA", "GAMMA"},
    {"sBIT", "SIGNIFICANT BITS"},
    {"cHRM", "PRIMARY CHROMATICS AND WHITE POINT"},
    {"tRNS", "TRANPARENCY"},
    {"bKGD", "BACKGROUND COLOUR"},
    {"hIST", "IMAGE HISTOGRAM"},
    {"tEXt", "TEXT"},
    {"zTXt", "COMPRESSED TEXT"},
    {"pHYs", "PHYSICAL PIXEL DIMENSIONS"},
    {"oFFs", "PHYSICAL IMAGE OFFSET"},
    {"tIME", "LAST IMAGE MODIFICATION TIME"},
    {"sCAL", "SCALE"},
};

const char* TitleOf(const uint8_t* type) {
  for (const Title& t : kTitles)
    if (std::memcmp(type, t.type, 4) == 0) return t.title;
  return "UNKNOWN OR PRIVATE CHUNK";
}

// Chunks whose data the report shows.
bool Detailed(const uint8_t* type) {
  for (const char* t : {"IHDR", "gAMA", "pHYs", "tIME", "tEXt", "zTXt"})
    if (std::memcmp(type, t, 4) == 0) return true;
  return false;
}

const char* YesNo(bool yes) {
  return yes ? "YES" : "NO";
}

// Inflates zlib data, keeping at most `limit` bytes; what was inflated before damage is kept.
std::string Inflate(std::span<const uint8_t> data, size_t limit) {
  std::string out;
  z_stream zs{};
  if (inflateInit(&zs) != Z_OK) return out;
  zs.next_in = const_cast<Bytef*>(data.data());
  zs.avail_in = static_cast<uInt>(data.size());
  uint8_t buffer[1024];
  while (out.size() < limit) {
    zs.next_out = buffer;
    zs.avail_out = sizeof buffer;
    const int r = inflate(&zs, Z_NO_FLUSH);
    out.append(reinterpret_cast<const char*>(buffer), sizeof buffer - zs.avail_out);
    if (r != Z_OK) break;
  }
  inflateEnd(&zs);
  out.resize(std::min(out.size(), limit));
  return out;
}

// "keyword: text" of a tEXt, zTXt or iTXt chunk; nothing for any other chunk.
std::optional<std::string> TextOf(const uint8_t* type, std::span<const uint8_t> data,
                                  size_t limit) {
  const auto* begin = reinterpret_cast<const char*>(data.data());
  const std::string_view all(begin, data.size());
  const size_t end = all.find('\0');
  if (end == std::string_view::npos) return std::nullopt;
  std::string text(all.substr(0, end));
  text += ": ";
  std::string_view rest = all.substr(end + 1);
  if (std::memcmp(type, "tEXt", 4) == 0) {
    text += rest.substr(0, limit);
  } else if (std::memcmp(type, "zTXt", 4) == 0) {
    if (rest.empty()) return text;
    text += Inflate(data.subspan(end + 2), limit);
  } else if (std::memcmp(type, "iTXt", 4) == 0) {
    // Compression flag, method, language tag and translated keyword come before the text.
    if (rest.size() < 2) return text;
    const bool compressed = rest[0] != 0;
    size_t at = 2;
    for (int field = 0; field < 2; ++field) {
      const size_t zero = rest.find('\0', at);
      if (zero == std::string_view::npos) return text;
      at = zero + 1;
    }
    if (compressed)
      text += Inflate(data.subspan(end + 1 + at), limit);
    else
      text += rest.substr(at, limit);
  } else {
    return std::nullopt;
  }
  return text;
}

const char* const kMonths[] = {"January",   "February", "March",    "April",
                               "May",       "June",     "July",     "August",
                               "September", "October",  "November", "December"};

// The picture's size, once IHDR has been seen.
struct Size {
  uint64_t width = 0;
  uint64_t height = 0;
};

// The chunk's fields, read through a cursor that stops at the end of what was read of it: a
// chunk too short for its fields shows none of them.
void Details(const uint8_t* type, std::span<const uint8_t> d, Size& size, ReportLines& out) {
  auto is = [&](const char* t) { return std::memcmp(type, t, 4) == 0; };
  ByteCursor c(d);
  if (is("IHDR")) {
    uint32_t width = 0, height = 0;
    uint8_t bitDepth = 0, colour = 0, interlace = 0;
    if (!c.Be32(width) || !c.Be32(height) || !c.U8(bitDepth) || !c.U8(colour) || !c.Skip(2) ||
        !c.U8(interlace))
      return;
    size = {width, height};
    out.Add(FormatText("Width: %lu", static_cast<unsigned long>(width)));
    out.Add(FormatText("Depth: %lu", static_cast<unsigned long>(height)));
    out.Add(FormatText("Bits per sample: %u", unsigned{bitDepth}));
    out.Add(FormatText("Palette: %s", YesNo(colour & 1)));
    out.Add(FormatText("True colour: %s", YesNo(colour & 2)));
    out.Add(FormatText("Alpha channels: %s", YesNo(colour & 4)));
    out.Add(interlace == 0 ? "Interlace type: NONE" : "Interlace type: ADAM 7");
  } else if (is("gAMA")) {
    uint32_t gamma = 0;
    if (!c.Be32(gamma)) return;
    const unsigned long g = gamma;
    out.Add(FormatText("Gamma: %lu.%lu", g / 100000, g % 100000));
  } else if (is("pHYs")) {
    uint32_t perX = 0, perY = 0;
    uint8_t unit = 0;
    if (!c.Be32(perX) || !c.Be32(perY) || !c.U8(unit)) return;
    const unsigned long x = perX, y = perY;
    out.Add(FormatText("%lu x %lu pixels", x, y));
    // Per metre: the picture's printed width and height, in tenths of an inch.
    if (unit == 1 && x > 0 && y > 0) {
      auto tenths = [](uint64_t pixels, uint64_t perMetre) {
        return static_cast<unsigned long>(pixels * 100000 / (perMetre * 254));
      };
      const unsigned long w = tenths(size.width, x), h = tenths(size.height, y);
      out.Add(FormatText("%lu.%lu x %lu.%lu inches", w / 10, w % 10, h / 10, h % 10));
    }
  } else if (is("tIME")) {
    uint16_t year = 0;
    uint8_t month = 0, day = 0, hour = 0, minute = 0, second = 0;
    if (!c.Be16(year) || !c.U8(month) || !c.U8(day) || !c.U8(hour) || !c.U8(minute) ||
        !c.U8(second))
      return;
    out.Add(FormatText("%u:%.2u:%.2u%s %s %u, %u", hour % 12 == 0 ? 12u : hour % 12u,
                       unsigned{minute}, unsigned{second}, hour < 12 ? "am" : "pm",
                       month >= 1 && month <= 12 ? kMonths[month - 1] : "", unsigned{day},
                       unsigned{year}));
  } else if (auto text = TextOf(type, d, kReportData)) {
    out.AddText(*text);
  }
}

}  // namespace

int PngList(ImageInfo& /*info*/, const std::string& path, std::vector<std::string>& lines) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  // The report shows whatever chunks the file has, in whatever order.
  PngChunkReader chunks(in);
  if (int code = chunks.Start()) return code;
  const bool checkCrc = CurrentSettings().PngDetailCrc != 0;
  ReportLines out(lines);
  Size size;
  bool first = true;
  while (chunks.Next()) {
    const uint8_t* type = chunks.Type().data();
    const uint32_t length = chunks.Length();
    if (!first) out.Add("");
    first = false;
    char name[5] = {};
    std::memcpy(name, type, 4);
    out.Add(FormatText("CHUNK %4.4s -- SIZE %lu BYTES", name, static_cast<unsigned long>(length)));
    out.Add(LoadMessage(kStrSeparator));
    out.Add(TitleOf(type));
    if (Detailed(type)) {
      std::vector<uint8_t> buffer;
      try {
        buffer.resize(std::min<size_t>(length, kReportData));
      } catch (const std::bad_alloc&) {
        out.Add("Error allocating memory for this data block.");
        buffer.clear();
      }
      if (!chunks.ReadExact(buffer)) {
        out.Add("Error reading data for this block.");
        break;
      }
      if (length > kReportData)
        out.Add("Too much data -- this data block has been truncated to fit.");
      Details(type, buffer, size, out);
    }
    if (checkCrc) {
      uint32_t computed = 0, stored = 0;
      if (!chunks.ReadCrc(computed, stored)) {
        out.Add("Error reading data for this block.");
        break;
      }
      out.Add(FormatText("Calculated CRC: %.8lXH -- Block CRC: %.8lXH",
                         static_cast<unsigned long>(computed), static_cast<unsigned long>(stored)));
    }
    if (chunks.Is("IEND")) break;
  }
  return kOk;
}

int PngReadComments(ImageInfo& /*info*/, const std::string& path, std::string& text) {
  InputFile in;
  if (!in.Open(path)) return kOpenError;
  PngChunkReader chunks(in);
  if (chunks.Start() != kOk) return kOk;
  while (chunks.Next() && !chunks.Is("IEND")) {
    if (chunks.Is("tEXt") || chunks.Is("zTXt") || chunks.Is("iTXt")) {
      // Compressed texts may hold much more than their chunk; the chunk itself is read only so far.
      std::vector<uint8_t> chunk(std::min<size_t>(chunks.Length(), 4 * kCommentData));
      chunk.resize(chunks.Read(chunk));
      if (auto one = TextOf(chunks.Type().data(), chunk, kCommentData)) {
        if (!text.empty()) text += '\r';
        text += *one;
      }
    }
  }
  return kOk;
}

}  // namespace pxm
