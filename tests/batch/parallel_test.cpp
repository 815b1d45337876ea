// Files of one command run side by side on several threads write exactly what one thread writes.
// Built again under ThreadSanitizer (the tsan preset), where any state two operations share
// without a lock shows up as a report.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "batch/convert.h"
#include "batch/dither.h"
#include "batch/effects.h"
#include "batch/file_walk.h"
#include "config/settings.h"
#include "core/names.h"
#include "process/effects_word.h"
#include "core/scripted_host.h"
#include "formats/format_table.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;

// A few pictures of every format the public suites hold, and the samples: small enough for a
// sanitizer build, varied enough to go through every reader and writer.
std::vector<std::string> Sources(const test::TempDir& dir) {
  std::vector<std::string> picked;
  std::map<std::string, int> perFolder;
  std::vector<std::string> all = test::FilesUnder(PXM_TESTDATA_DIR);
  for (const std::string& sample : test::FilesUnder(std::string(PXM_SOURCE_DIR) + "/samples"))
    all.push_back(sample);
  for (const std::string& path : all) {
    const int row = FindFormat(path);
    if (row < 0 || !CanRead(FormatAt(row)) || fs::file_size(path) > 200000) continue;
    if (++perFolder[DirectoryPart(path)] > 3) continue;
    // Copied under a name of its own: the suites repeat names.
    const std::string copy = dir / (std::to_string(picked.size()) + "-" + NamePart(path));
    fs::copy_file(path, copy);
    picked.push_back(copy);
  }
  return picked;
}

// Every file of `dir`, name and bytes.
std::map<std::string, std::string> Contents(const std::string& dir) {
  std::map<std::string, std::string> files;
  for (const std::string& name : test::ListDirectory(dir))
    if (fs::is_regular_file(dir + "/" + name)) files[name] = test::ReadFileBytes(dir + "/" + name);
  return files;
}

TEST(Parallel, EightThreadsWriteWhatOneWrites) {
  ScopedSettings settings;
  settings->FilenameUnderbars = 0;
  test::TempDir in, one, eight;
  const std::vector<std::string> files = Sources(in);
  ASSERT_GT(files.size(), 30u);
  const std::vector<int> destinations = {FindFormatByExtension("BMP"), FindFormatByExtension("PNG"),
                                         FindFormatByExtension("GIF"), FindFormatByExtension("JPG"),
                                         FindFormatByExtension("TIF"), FindFormatByExtension("PCX")};

  auto run = [&](unsigned jobs, const std::string& out) {
    ScriptedHost host;
    WalkOptions options;
    options.jobs = jobs;
    return WalkFiles(
        host, files,
        [&](Host& fileHost, size_t, const std::string& source) {
          ConvertOptions convert{out};
          for (int row : destinations) Convert(fileHost, source, row, convert);
          // Colour reduction and dithering keep tables of their own per picture.
          Effects(fileHost, source, FindFormatByExtension("BMP"),
                  EffectsWord(kEffectReduce, kPaletteQuantized16, kMapFloyd), {out + "/fx"});
          DitherOptions dither;
          dither.destRow = FindFormatByExtension("PCX");
          dither.destinationDirectory = out + "/dither";
          return Dither(fileHost, source, dither);
        },
        options);
  };
  fs::create_directories(one / "fx");
  fs::create_directories(one / "dither");
  fs::create_directories(eight / "fx");
  fs::create_directories(eight / "dither");
  auto single = run(1, one.path());
  auto parallel = run(8, eight.path());

  ASSERT_EQ(single.size(), parallel.size());
  for (size_t i = 0; i < single.size(); ++i) EXPECT_EQ(single[i].code, parallel[i].code);
  for (const char* sub : {"", "/fx", "/dither"}) {
    auto expected = Contents(one.path() + sub);
    EXPECT_GT(expected.size(), files.size() / 2) << sub;
    auto got = Contents(eight.path() + sub);
    EXPECT_EQ(expected.size(), got.size()) << sub;
    for (const auto& [name, bytes] : expected)
      EXPECT_TRUE(got.count(name) && got[name] == bytes) << sub << "/" << name;
  }
}

}  // namespace
}  // namespace pxm
