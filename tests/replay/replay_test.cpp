// Replays every fuzz target's saved cases (fuzz/corpus/<target>/), and every sample the target
// reads cut short at each length up to 512 bytes and at 32 points beyond, through the target.
// A case passes when it returns: the sanitizers turn any bad access into a failure.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "fuzz_support.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm::fuzz {
namespace {

namespace fs = std::filesystem;
using test::FilesUnder;

bool HasExtension(const std::string& path, const std::vector<std::string>& extensions) {
  std::string ext = fs::path(path).extension().string();
  if (!ext.empty()) ext.erase(0, 1);
  std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return std::tolower(c); });
  return std::find(extensions.begin(), extensions.end(), ext) != extensions.end();
}

// Lengths a sample is cut to: every length up to 512, then 32 points spread over the rest.
std::vector<size_t> CutPoints(size_t size) {
  std::vector<size_t> cuts;
  for (size_t n = 0; n < std::min<size_t>(size, 512); ++n) cuts.push_back(n);
  if (size > 512)
    for (size_t k = 1; k <= 32; ++k) cuts.push_back(512 + (size - 512) * k / 33);
  return cuts;
}

TEST(Replay, EveryTargetRunsItsCorpusAndTruncatedSamples) {
  ASSERT_FALSE(Targets().empty());
  const fs::path source = test::SourceDir();
  for (const Target& target : Targets()) {
    SCOPED_TRACE(target.name);
    size_t cases = 0;
    for (const std::string& file : FilesUnder(source / "fuzz" / "corpus" / target.name)) {
      SCOPED_TRACE(file);
      std::string bytes = test::ReadFileBytes(file);
      target.function(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
      ++cases;
    }
    std::vector<std::string> samples;
    for (const char* folder : {"samples", "tests/data"})
      for (const std::string& file : FilesUnder(source / folder))
        if (HasExtension(file, target.extensions)) samples.push_back(file);
    for (const std::string& file : samples) {
      SCOPED_TRACE(file);
      std::string bytes = test::ReadFileBytes(file);
      for (size_t cut : CutPoints(bytes.size())) {
        target.function(reinterpret_cast<const uint8_t*>(bytes.data()), cut);
        ++cases;
      }
      target.function(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
      ++cases;
    }
    // A target with nothing to replay proves nothing.
    EXPECT_GT(cases, 0u) << "no corpus and no samples for " << target.name;
  }
}

}  // namespace
}  // namespace pxm::fuzz
