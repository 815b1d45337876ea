#include <iostream>
#include <string>
#include <string_view>

#include "cli/context.h"
#include "cli/json.h"
#include "formats/format_table.h"

namespace pxm::cli {

namespace {

// What a row does where "read" and "write" alone would mislead.
std::string_view RowNote(std::string_view extension) {
  if (extension == "EXE")
    return "reads the PCX, GIF or BMP picture stored after a DOS or Windows program (where the "
           "MZ image or the last PE section ends), through that format's reader; no picture "
           "after the program: code 20; never written";
  if (extension == "CPT")
    return "reads PHOTO-PAINT 6 files (TIFF inside) through the TIFF reader; versions 7 to 9: "
           "size and depth from the header, pixels not read (code 5); never written";
  return {};
}

int RunFormats(Context& ctx) {
  auto yesNo = [](bool v) { return v ? "yes" : "no"; };
  if (ctx.options.json) std::cout << "[";
  for (int row = 0; row < kFormatCount; ++row) {
    const FormatEntry& e = FormatAt(row);
    const bool read = CanRead(e);
    const bool write = CanWrite(e);
    const uint32_t enabled = FormatSwitch(row);
    if (ctx.options.json) {
      std::cout << (row ? ",\n " : "\n ") << "{\"row\": " << row
                << ", \"extension\": " << JsonString(e.extension)
                << ", \"description\": " << JsonString(e.description)
                << ", \"maxBits\": " << e.maxBits << ", \"caps\": " << e.caps
                << ", \"enabled\": " << enabled << ", \"read\": " << (read ? "true" : "false")
                << ", \"write\": " << (write ? "true" : "false");
      if (const std::string_view note = RowNote(e.extension); !note.empty())
        std::cout << ", \"note\": " << JsonString(note);
      std::cout << "}";
    } else {
      std::cout << row << '\t' << e.extension << '\t' << e.description << '\t' << e.maxBits << '\t'
                << e.caps << '\t' << enabled << "\tread:" << yesNo(read)
                << "\twrite:" << yesNo(write);
      if (const std::string_view note = RowNote(e.extension); !note.empty())
        std::cout << "\tnote: " << note;
      std::cout << '\n';
    }
  }
  if (ctx.options.json) std::cout << "\n]\n";
  return 0;
}

}  // namespace

Command SetupFormats(CLI::App& parent, Context& ctx) {
  Command c;
  c.app = parent.add_subcommand(
      "formats",
      "List the format table: row, extension, description, "
      "maxBits, caps, enabled, read, write, and a note where a row needs one");
  c.run = [&ctx]() { return RunFormats(ctx); };
  return c;
}

}  // namespace pxm::cli
