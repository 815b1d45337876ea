#include "cli/context.h"
#include "core/error_codes.h"
#include "thumbs/make_thumbnail.h"

namespace pxm::cli {

Command SetupThumbnail(CLI::App& parent, Context& ctx) {
  auto files = std::make_shared<std::vector<std::string>>();
  Command c;
  c.app = parent.add_subcommand(
      "thumbnail",
      "Make the thumbnail (.THN) of each file in the DitherThumbnails mode, beside it or in "
      "ThumbnailPath (prints SOURCE -> THUMBNAIL)");
  c.app->add_option("files", *files, "Picture files")->required()->type_name("FILE");
  c.run = [&ctx, files]() {
    return RunOverFiles(ctx, *files, [&](Host& host, const std::string& path) {
      std::string written;
      int code = MakeThumbnail(host, path, &written);
      // The desktop program passes over files of formats that get no thumbnail; asked by name
      // for one, the tool says it cannot make it.
      if (code == kOk && written.empty()) return static_cast<int>(kUnsupportedFunction);
      if (code == kOk) host.FileWritten(written);
      return code;
    });
  };
  return c;
}

}  // namespace pxm::cli
