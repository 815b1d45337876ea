#include <iostream>
#include <sstream>

#include "batch/get_info.h"
#include "cli/context.h"
#include "cli/json.h"
#include "core/strings.h"

namespace pxm::cli {
namespace {

struct Field {
  const char* name;
  std::string text;   // as printed in the text form
  bool isNumber;
};

std::vector<Field> Fields(const InfoResult& r) {
  const ImageInfo& i = r.info;
  auto num = [](auto v) { return std::to_string(v); };
  return {
      {"fileName", i.fileName, false},
      {"description", i.description, false},
      {"width", num(i.width), true},
      {"depth", num(i.depth), true},
      {"bits", num(i.bits), true},
      {"imageCount", num(i.imageCount), true},
      {"imageIndex", num(i.imageIndex), true},
      {"fileSize", num(i.fileSize), true},
      {"unpackedSize", num(i.unpackedSize), true},
      {"background", num(i.background), true},
      {"flags", num(i.flags), true},
      {"format", std::string(FormatAt(r.row).description), false},
  };
}

std::string JsonObject(const InfoResult& r) {
  std::ostringstream out;
  out << "{";
  bool first = true;
  for (const Field& f : Fields(r)) {
    out << (first ? "" : ", ") << JsonString(f.name) << ": "
        << (f.isNumber ? f.text : JsonString(f.text));
    first = false;
  }
  size_t entries = r.info.bits <= 8 ? (size_t{1} << r.info.bits) : 256;
  out << ", \"palette\": [";
  for (size_t k = 0; k < entries; ++k) {
    const Rgb& c = r.info.palette[k];
    out << (k ? ", " : "") << "[" << int{c.red} << ", " << int{c.green} << ", " << int{c.blue}
        << "]";
  }
  out << "], \"report\": [";
  for (size_t k = 0; k < r.report.size(); ++k)
    out << (k ? ", " : "") << JsonString(r.report[k]);
  out << "]}";
  return out.str();
}

int RunInfo(Context& ctx, const std::vector<std::string>& files, bool report) {
  int status = 0;
  bool firstPrinted = true;
  std::vector<InfoResult> infos(files.size());
  if (ctx.options.json) std::cout << "[";
  WalkFiles(
      *ctx.host, files,
      [&](Host& host, size_t index, const std::string& path) {
        return GetInfo(host, path, report, infos[index]);
      },
      WalkOptionsOf(ctx), [&](const FileResult& file) {
        ctx.host->ClearLine();
        if (file.code != 0) {
          ReportFailure(ctx, file.source, file.code);
          if (status == 0) status = file.code;
          return;
        }
        const InfoResult& result = infos[file.index];
        if (ctx.options.json) {
          std::cout << (firstPrinted ? "\n " : ",\n ") << JsonObject(result);
        } else {
          if (!firstPrinted) std::cout << '\n';
          for (const Field& f : Fields(result)) std::cout << f.name << ": " << f.text << '\n';
          for (const std::string& line : result.report) std::cout << line << '\n';
        }
        firstPrinted = false;
      });
  if (ctx.options.json) std::cout << (firstPrinted ? "]\n" : "\n]\n");
  return status;
}

}  // namespace

Command SetupInfo(CLI::App& parent, Context& ctx) {
  struct Options {
    bool report = false;
    std::vector<std::string> files;
  };
  auto o = std::make_shared<Options>();
  Command c;
  c.app = parent.add_subcommand("info", "Get info: describe each file as the info box does");
  c.app->add_flag("--report", o->report, "Add the format's block, chunk, card or tag report");
  c.app->add_option("files", o->files, "Picture files")->required()->type_name("FILE");
  c.run = [&ctx, o]() { return RunInfo(ctx, o->files, o->report); };
  return c;
}

}  // namespace pxm::cli
