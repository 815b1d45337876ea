#include <iostream>

#include "batch/convert.h"
#include "cli/context.h"
#include "config/settings.h"

namespace pxm::cli {

int RunConvert(Context& ctx, const std::vector<std::string>& files) {
  int destRow = DestinationRow(ctx);
  if (destRow < 0) return kUsageError;
  if (!ctx.options.output.empty()) {
    if (files.size() != 1) {
      std::cerr << "pxm: --output needs exactly one input file\n";
      return kUsageError;
    }
    // --output is the save dialog's answer, so the dialog is put in the way of the name.
    CurrentSettings().PromptforDestName = 1;
  }
  ConvertOptions options;
  options.destinationDirectory = ctx.options.destDir;
  int status = 0;
  for (const std::string& path : files) {
    int code = Convert(*ctx.host, path, destRow, options);
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

}  // namespace pxm::cli
