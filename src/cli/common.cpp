#include <iostream>

#include "cli/context.h"
#include "core/strings.h"
#include "formats/format_table.h"

namespace pxm::cli {

void ReportFailure(Context& ctx, const std::string& name, int code) {
  if (ctx.host) ctx.host->ClearLine();
  std::cerr << FileErrorLine(name, code) << '\n';
}

int RunOverFiles(Context& ctx, const std::vector<std::string>& files,
                 const std::function<int(const std::string& path)>& driver) {
  int status = 0;
  for (const std::string& path : files) {
    int code = driver(path);
    ctx.host->ClearLine();
    if (code == 0) {
      if (!ctx.options.quiet) std::cout << path << " -> " << ctx.host->LastWritten() << '\n';
    } else {
      ReportFailure(ctx, path, code);
      if (status == 0) status = code;
    }
    if (ctx.host->Interrupted()) break;
  }
  return status;
}

int DestinationRow(const Context& ctx) {
  if (ctx.options.to.empty()) {
    std::cerr << "pxm: --to EXT is required for this command\n";
    return -1;
  }
  int row = FindFormatByExtension(ctx.options.to);
  if (row < 0) std::cerr << "pxm: --to " << ctx.options.to << ": no format has this extension\n";
  return row;
}

}  // namespace pxm::cli
