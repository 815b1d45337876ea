#include <charconv>
#include <iostream>

#include "batch/file_walk.h"
#include "cli/context.h"
#include "cli/json.h"
#include "config/settings.h"
#include "core/strings.h"
#include "formats/format_table.h"

namespace pxm::cli {

void ReportFailure(Context& ctx, const std::string& name, int code) {
  if (ctx.host) ctx.host->ClearLine();
  std::cerr << FileErrorLine(name, code) << '\n';
}

WalkOptions WalkOptionsOf(const Context& ctx) {
  WalkOptions options;
  options.jobs = ctx.options.jobs;
  // Two files that would write the same name run in the order they were named, so the later
  // one wins as it would with one job.
  options.orderKey = OutputNameKey;
  return options;
}

int RunOverFiles(Context& ctx, const std::vector<std::string>& files,
                 const std::function<int(Host& host, const std::string& path)>& driver) {
  int status = 0;
  bool first = true;
  if (ctx.options.json) std::cout << "[";
  WalkFiles(
      *ctx.host, files,
      [&](Host& host, size_t, const std::string& path) { return driver(host, path); },
      WalkOptionsOf(ctx), [&](const FileResult& result) {
        ctx.host->ClearLine();
        if (ctx.options.json) {
          std::cout << (first ? "\n " : ",\n ") << "{\"source\": " << JsonString(result.source)
                    << ", \"output\": "
                    << (result.output.empty() ? "null" : JsonString(result.output))
                    << ", \"code\": " << result.code
                    << ", \"text\": " << JsonString(ErrorText(result.code)) << "}";
          first = false;
        } else if (result.code == 0 && !ctx.options.quiet) {
          std::cout << result.source << " -> " << result.output << '\n';
        }
        if (result.code != 0) {
          ReportFailure(ctx, result.source, result.code);
          if (status == 0) status = result.code;
        }
      });
  if (ctx.options.json) std::cout << (first ? "]\n" : "\n]\n");
  return status;
}

bool ApplyOutputOption(const Context& ctx, size_t fileCount) {
  if (ctx.options.output.empty()) return true;
  if (fileCount != 1) {
    std::cerr << "pxm: --output needs exactly one input file\n";
    return false;
  }
  CurrentSettings().PromptforDestName = 1;
  return true;
}

bool ParseNumbers(const std::string& text, char separator, size_t count,
                  std::vector<uint32_t>& numbers) {
  numbers.clear();
  const char* p = text.data();
  const char* end = p + text.size();
  while (true) {
    uint32_t value = 0;
    auto [next, error] = std::from_chars(p, end, value);
    if (error != std::errc() || next == p) return false;
    numbers.push_back(value);
    p = next;
    if (p == end) break;
    if (*p != separator) return false;
    ++p;
  }
  return numbers.size() == count;
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
