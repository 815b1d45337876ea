#include "batch/rename_delete.h"
#include "cli/context.h"

namespace pxm::cli {

Command SetupRename(CLI::App& parent, Context& ctx) {
  auto file = std::make_shared<std::string>();
  auto newName = std::make_shared<std::string>();
  Command c;
  c.app = parent.add_subcommand(
      "rename", "Rename one file; a bare NEWNAME stays in its directory (prints FILE -> NEW)");
  c.app->add_option("file", *file, "The file")->required()->type_name("FILE");
  c.app->add_option("newname", *newName, "Its new name")->required()->type_name("NEWNAME");
  c.run = [&ctx, file, newName]() {
    return RunOverFiles(ctx, {*file}, [&](Host& host, const std::string& path) {
      return RenameTaggedFile(host, path, *newName);
    });
  };
  return c;
}

}  // namespace pxm::cli
