#include <iostream>
#include <optional>

#include "batch/catalog.h"
#include "cli/context.h"
#include "cli/json.h"
#include "config/settings.h"
#include "core/strings.h"

namespace pxm::cli {
namespace {

struct CatalogArgs {
  std::vector<std::string> files;
  std::optional<uint32_t> columns;
  std::optional<uint32_t> rows;
  std::optional<std::string> captions;  // "name,size", "name", "size" or "none"
  std::string page;                     // "WxH"
};

// The layout of the settings' CatalogOptions with the options' changes. False (after a
// message) when an option cannot be understood.
bool Settle(const CatalogArgs& a, CatalogLayout& layout) {
  layout = DecodeCatalogOptions(static_cast<uint32_t>(CurrentSettings().CatalogOptions));
  if (a.columns) layout.columns = *a.columns;
  if (a.rows) layout.rows = *a.rows;
  if (a.captions) {
    layout.names = layout.sizes = false;
    if (*a.captions != "none") {
      std::vector<std::string> parts;
      for (size_t start = 0;;) {
        const size_t comma = a.captions->find(',', start);
        parts.push_back(a.captions->substr(start, comma - start));
        if (comma == std::string::npos) break;
        start = comma + 1;
      }
      for (const std::string& part : parts) {
        if (part == "name")
          layout.names = true;
        else if (part == "size")
          layout.sizes = true;
        else {
          std::cerr << "pxm: --captions takes name, size, name,size or none\n";
          return false;
        }
      }
    }
  }
  if (!a.page.empty()) {
    std::vector<uint32_t> n;
    if (!ParseNumbers(a.page, 'x', 2, n) || n[0] == 0 || n[1] == 0 || n[0] > kCatalogMaxPageSide ||
        n[1] > kCatalogMaxPageSide) {
      std::cerr << "pxm: --page takes WIDTHxDEPTH in pixels, 1 to " << kCatalogMaxPageSide
                << " each\n";
      return false;
    }
    layout.pageWidth = n[0];
    layout.pageDepth = n[1];
  }
  PageGrid grid;
  if (!LayoutCatalog(layout, grid)) {
    std::cerr << "pxm: a " << layout.pageWidth << "x" << layout.pageDepth << " page cannot hold "
              << layout.columns << " x " << layout.rows
              << " thumbnails of 96 x 96 with their captions\n";
    return false;
  }
  return true;
}

}  // namespace

Command SetupCatalog(CLI::App& parent, Context& ctx) {
  auto a = std::make_shared<CatalogArgs>();
  Command c;
  c.app = parent.add_subcommand(
      "catalog",
      "Make catalog pages of the files' thumbnails (made when missing), written in the --to "
      "format as CAT00001.EXT, CAT00002.EXT, ... in the current directory or --dest-dir (prints "
      "SOURCE -> PAGE for each file). The layout starts from CatalogOptions; a 1-bit format gets "
      "the pages dithered in the DitherMode");
  c.app->add_option("files", a->files, "Picture files, in the order they go on the pages")
      ->required()
      ->type_name("FILE");
  c.app->add_option("--columns", a->columns, "Thumbnails across a page")
      ->check(CLI::Range(1u, kCatalogMaxColumns));
  c.app->add_option("--rows", a->rows, "Thumbnails down a page")
      ->check(CLI::Range(1u, kCatalogMaxRows));
  c.app
      ->add_option("--captions", a->captions,
                   "Lines under each thumbnail: name (the file name), size (width x depth x "
                   "bits), name,size or none")
      ->type_name("LIST");
  c.app
      ->add_option("--page", a->page,
                   "Page size in pixels; without it the page is just big enough for the grid")
      ->type_name("WxH");
  c.run = [&ctx, a]() {
    CatalogRequest request;
    if ((request.destRow = DestinationRow(ctx)) < 0) return kUsageError;
    if (!Settle(*a, request.layout)) return kUsageError;
    request.directory = ctx.options.destDir;
    CatalogResult result;
    const int code = MakeCatalog(*ctx.host, a->files, request, &result);
    ctx.host->ClearLine();
    if (ctx.options.json) {
      std::cout << "[";
      bool first = true;
      for (const FileResult& r : result.files) {
        std::cout << (first ? "\n " : ",\n ") << "{\"source\": " << JsonString(r.source)
                  << ", \"output\": " << (r.output.empty() ? "null" : JsonString(r.output))
                  << ", \"code\": " << r.code << ", \"text\": " << JsonString(ErrorText(r.code))
                  << "}";
        first = false;
      }
      std::cout << (first ? "]\n" : "\n]\n");
    } else if (!ctx.options.quiet) {
      for (const FileResult& r : result.files)
        if (r.code == 0 && !r.output.empty()) std::cout << r.source << " -> " << r.output << '\n';
    }
    return code;
  };
  return c;
}

}  // namespace pxm::cli
