#include "batch/rename_delete.h"
#include "cli/context.h"
#include "core/error_codes.h"

namespace pxm::cli {

Command SetupDelete(CLI::App& parent, Context& ctx) {
  auto files = std::make_shared<std::vector<std::string>>();
  Command c;
  c.app = parent.add_subcommand(
      "delete", "Delete the files after one question (answered by --yes or --no; No without a "
                "terminal); prints nothing but failures");
  c.app->add_option("files", *files, "Files")->required()->type_name("FILE");
  c.run = [&ctx, files]() {
    if (!ConfirmDelete(*ctx.host, files->size())) return static_cast<int>(kCancelled);
    int status = 0;
    for (const std::string& path : *files) {
      int code = DeleteTaggedFile(path);
      if (code == 0) continue;
      ReportFailure(ctx, path, code);
      if (status == 0) status = code;
    }
    return status;
  };
  return c;
}

}  // namespace pxm::cli
