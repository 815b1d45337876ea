// The GIF block report of Get info: the screen descriptor, then every image and extension in
// file order, in the lines of the select-image list. (Formats whose flags printf ignores, such as
// the 0 of "%0.8s", are written without them: the lines come out the same.)

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/strings.h"
#include "formats/gif.h"
#include "formats/gif_blocks.h"
#include "formats/report_lines.h"

namespace pxm {
namespace {

const char* YesNo(bool yes) {
  return yes ? "YES" : "NO";
}

void Heading(ReportLines& out, const char* title) {
  out.Add("");
  out.Add(title);
  out.Add(LoadMessage(kStrSeparator));
}

// Answers false when the file ended inside the image.
bool ReportImage(GifBlockWalker& walker, const GifBlock& block, uint32_t screenBits,
                 ReportLines& out) {
  Heading(out, "IMAGE BLOCK");
  if (block.cut == GifBlock::Cut::kInDescriptor) return false;
  const uint8_t* d = block.descriptor;
  const uint8_t flags = d[kGifImageFlags];
  const bool local = (flags & 0x80) != 0;
  out.Add(FormatText("Image dimensions:\t %u by %u", LoadLe16(d + kGifWidth),
                     LoadLe16(d + kGifHeight)));
  out.Add(FormatText("Image bits:\t\t %u", local ? (flags & 7u) + 1 : screenBits));
  out.Add(FormatText("Local palette:\t\t %s", YesNo(local)));
  out.Add(FormatText("Interlaced:\t\t %s", YesNo((flags & 0x40) != 0)));
  return block.cut == GifBlock::Cut::kNone && walker.SkipData();
}

void ReportPlainText(const uint8_t* b, ReportLines& out) {
  Heading(out, "PLAIN TEXT BLOCK");
  out.Add(FormatText("This block requires %u bytes", unsigned{b[0]}));
  out.Add(FormatText("Text location at (%u,%u)", LoadLe16(b + 1), LoadLe16(b + 3)));
  out.Add(FormatText("Grid dimensions are %u by %u", LoadLe16(b + 5), LoadLe16(b + 7)));
  out.Add(FormatText("Cell dimensions are %u by %u", unsigned{b[9]}, unsigned{b[10]}));
  out.Add(FormatText("Foregound colour is %u", unsigned{b[11]}));
  out.Add(FormatText("Background colour is %u", unsigned{b[12]}));
}

void ReportControl(const uint8_t* b, ReportLines& out) {
  Heading(out, "CONTROL BLOCK");
  out.Add(FormatText("This block requires %u bytes", unsigned{b[0]}));
  static const char* const kDisposal[] = {"No disposal specified", "Do not dispose",
                                          "Dispose to background colour",
                                          "Dispose to previous graphic"};
  const unsigned disposal = (b[1] >> 2) & 7u;
  out.Add(disposal < 4 ? kDisposal[disposal] : "Unknown disposal procedure");
  if (b[1] & 2)
    out.Add(FormatText("User input required - delay for %u seconds", LoadLe16(b + 2) / 100u));
  else
    out.Add("No user input required");
  if (b[1] & 1)
    out.Add(FormatText("Transparent colour: %u", unsigned{b[4]}));
  else
    out.Add("No transparent colour");
}

void ReportComment(GifBlockWalker& walker, ReportLines& out) {
  Heading(out, "COMMENT BLOCK");
  std::string text;
  walker.GatherData(text, SIZE_MAX);
  out.AddText(text);
}

void ReportApplication(GifBlockWalker& walker, const uint8_t* b, ReportLines& out) {
  Heading(out, "GIF APPLICATION BLOCK");
  char id[9] = {};
  std::memcpy(id, b + 1, 8);
  out.Add(FormatText("GIF APPLICATION identification string: %.8s", id));
  std::string text;
  walker.GatherData(text, SIZE_MAX);
  out.AddText(text);
}

}  // namespace

int GifList(ImageInfo& /*info*/, const std::string& path, std::vector<std::string>& lines) {
  GifFile g;
  if (int code = g.Open(path)) return code;
  InputFile& in = g.in;
  ReportLines out(lines);
  out.Add("SCREEN DESCRIPTOR");
  out.Add(LoadMessage(kStrSeparator));
  if (g.macBinary) {
    // The MacBinary header: the name's length at byte 1, the name from byte 2.
    uint8_t mac[65] = {};
    const uint64_t resume = in.Tell();
    if (in.Seek(0) && in.ReadExact(mac, sizeof mac)) {
      const size_t length = std::min<size_t>(mac[1], 63);
      out.Add(FormatText("Macintosh name:\t\t %s",
                         std::string(reinterpret_cast<const char*>(mac + 2), length).c_str()));
    }
    in.Seek(resume);
  }
  out.Add(FormatText("Screen dimensions:\t %u by %u", LoadLe16(g.header + kGifScreenWidth),
                     LoadLe16(g.header + kGifScreenHeight)));
  out.Add(FormatText("Screen bits: \t\t %u", g.ScreenBits()));
  out.Add(FormatText("Background colour:\t %u", unsigned{g.header[kGifBackground]}));
  out.Add(FormatText("Global palette:\t\t %s", YesNo(g.HasGlobalTable())));
  GifBlockWalker walker(g);
  uint8_t table[kGifMaxTableBytes];
  size_t tableBytes = 0;
  walker.ReadGlobalTable(table, tableBytes);

  GifBlock block;
  while (walker.Next(block)) {
    if (block.kind == GifBlock::Kind::kImage) {
      if (!ReportImage(walker, block, g.ScreenBits(), out)) {
        out.Add(LoadMessage(kStrSeparator));
        out.Add("Unexpected end of image");
        break;
      }
      continue;
    }
    switch (block.label) {
      case kGifPlainText:
        ReportPlainText(block.fixed, out);
        break;
      case kGifControl:
        ReportControl(block.fixed, out);
        break;
      case kGifComment:
        ReportComment(walker, out);
        break;
      case kGifApplication:
        ReportApplication(walker, block.fixed, out);
        break;
      default:
        out.Add("");
        out.Add(
            FormatText("Skipping unknown extension type %.2X", static_cast<unsigned>(block.label)));
        break;
    }
  }
  return kOk;
}

}  // namespace pxm
