#include <iostream>

#include "cli/context.h"
#include "cli/json.h"
#include "formats/format_table.h"

namespace pxm::cli {

namespace {

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
                << ", \"write\": " << (write ? "true" : "false") << "}";
    } else {
      std::cout << row << '\t' << e.extension << '\t' << e.description << '\t' << e.maxBits
                << '\t' << e.caps << '\t' << enabled << "\tread:" << yesNo(read)
                << "\twrite:" << yesNo(write) << '\n';
    }
  }
  if (ctx.options.json) std::cout << "\n]\n";
  return 0;
}

}  // namespace

Command SetupFormats(CLI::App& parent, Context& ctx) {
  Command c;
  c.app = parent.add_subcommand("formats", "List the format table: row, extension, description, "
                                           "maxBits, caps, enabled, read, write");
  c.run = [&ctx]() { return RunFormats(ctx); };
  return c;
}

}  // namespace pxm::cli
