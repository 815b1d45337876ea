// Bad-input sweeps: every sample of every readable format, and files other programs wrote in
// those formats, cut short at many lengths and with seeded random bit flips, given to info and
// read. Each answer must be a picture or an error code: no crash, no hang, no leak and no
// allocation beyond the limit (the sanitizers and the watchdog below turn those into failures).
//
// Counts are scaled for the test command; PXM_SWEEP_FULL=1 (scripts/sweep-full.sh) cuts at every
// length up to 4 KiB and makes 500 flipped copies of each file.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <random>
#include <thread>

#include "formats/format_table.h"
#include "fuzz_support.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;
using test::FilesUnder;

struct SweepCounts {
  size_t cutsBelow;  // every length up to this
  size_t cutsBeyond; // evenly spread points past it
  size_t flips;      // flipped copies per file
};

SweepCounts Counts() {
  const char* full = std::getenv("PXM_SWEEP_FULL");
  if (full && std::string(full) == "1") return {4096, 32, 500};
  return {512, 32, 50};
}

// Aborts the process with the case's name when one case runs longer than the limit: a hang is a
// failure like any other.
class Watchdog {
 public:
  explicit Watchdog(std::chrono::seconds limit) : limit_(limit), thread_([this] { Run(); }) {}
  ~Watchdog() {
    {
      std::lock_guard<std::mutex> lock(mutex_);
      done_ = true;
    }
    wake_.notify_all();
    thread_.join();
  }
  void Start(std::string what) {
    std::lock_guard<std::mutex> lock(mutex_);
    what_ = std::move(what);
    started_ = std::chrono::steady_clock::now();
    running_ = true;
  }
  void Stop() {
    std::lock_guard<std::mutex> lock(mutex_);
    running_ = false;
  }

 private:
  void Run() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!done_) {
      wake_.wait_for(lock, std::chrono::milliseconds(200));
      if (running_ && std::chrono::steady_clock::now() - started_ > limit_) {
        std::fprintf(stderr, "sweep: case did not finish within %lld s: %s\n",
                     static_cast<long long>(limit_.count()), what_.c_str());
        std::abort();
      }
    }
  }
  std::chrono::seconds limit_;
  std::mutex mutex_;
  std::condition_variable wake_;
  bool done_ = false;
  bool running_ = false;
  std::string what_;
  std::chrono::steady_clock::time_point started_;
  std::thread thread_;
};

std::string ToLowerExt(std::string s) {
  std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return std::tolower(c); });
  return s;
}

// Files in each readable format written by other programs from the samples: ImageMagick's
// writer for the format where it has one, in a few depths and at odd widths.
std::vector<std::string> OtherProgramsFiles(const std::string& dir) {
  static const std::pair<const char*, const char*> kWriters[] = {
      {"BMP", "BMP3"}, {"DIB", "BMP2"}, {"PCX", "PCX"},  {"GIF", "GIF"},  {"PNG", "PNG"},
      {"TGA", "TGA"},  {"RAS", "SUN"},  {"FIT", "FITS"}, {"TIF", "TIFF"}, {"JPG", "JPEG"},
      {"ART", "ART"},  {"HRZ", "HRZ"},
      {"RLE", "BMP3"}, {"ICO", "ICO"},
  };
  static const char* kVariants[] = {"-type truecolor", "-type palette", "-type grayscale",
                                    "-type bilevel", "-resize 7x5! -type palette",
                                    "-resize 33x3! -type truecolor"};
  std::vector<std::string> files;
  const std::string sample = test::SourceDir() + "/samples/wheel-24bit.bmp";
  if (!test::HaveProgram("convert-im6.q16")) return files;
  for (const auto& [ext, coder] : kWriters) {
    int row = FindFormatByExtension(ext);
    if (row < 0 || !CanRead(FormatAt(row))) continue;
    int n = 0;
    for (const char* variant : kVariants) {
      std::string out = dir + "/im" + std::to_string(n++) + "." + ToLowerExt(ext);
      std::string cmd = "convert-im6.q16 " + test::ShellQuote(sample) + " " + variant + " " +
                        coder + ":" + test::ShellQuote(out) + " 2>/dev/null";
      if (test::Run(cmd) == 0 && fs::exists(out)) files.push_back(out);
    }
  }
  return files;
}

TEST(Sweep, DamagedFilesOfEveryReadableFormatGiveAPictureOrACode) {
  const SweepCounts counts = Counts();
  test::TempDir generated;
  std::vector<std::string> files;
  for (const char* folder : {"samples", "tests/data"})
    for (const std::string& f : FilesUnder(fs::path(test::SourceDir()) / folder)) files.push_back(f);
  for (const std::string& f : OtherProgramsFiles(generated.path())) files.push_back(f);

  Watchdog watchdog(std::chrono::seconds(20));
  std::mt19937 random(20261121);
  size_t cases = 0;
  size_t swept = 0;
  for (const std::string& file : files) {
    int row = FindFormat(file);
    if (row < 0 || !CanRead(FormatAt(row))) continue;
    const std::string ext = FormatAt(row).extension;
    std::string bytes = test::ReadFileBytes(file);
    const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
    ++swept;

    std::vector<size_t> cuts;
    for (size_t n = 0; n < std::min(bytes.size(), counts.cutsBelow); ++n) cuts.push_back(n);
    if (bytes.size() > counts.cutsBelow)
      for (size_t k = 1; k <= counts.cutsBeyond; ++k)
        cuts.push_back(counts.cutsBelow + (bytes.size() - counts.cutsBelow) * k / (counts.cutsBeyond + 1));
    for (size_t cut : cuts) {
      watchdog.Start(file + " cut at " + std::to_string(cut));
      fuzz::FuzzFormat(data, cut, ext.c_str());
      ++cases;
    }
    std::string flipped;
    for (size_t k = 0; k < counts.flips && !bytes.empty(); ++k) {
      flipped = bytes;
      // One to eight flipped bits, most of them in the header where they matter most.
      size_t flips = 1 + random() % 8;
      for (size_t f = 0; f < flips; ++f) {
        size_t span = (random() % 2) ? std::min<size_t>(bytes.size(), 256) : bytes.size();
        size_t at = random() % span;
        flipped[at] = static_cast<char>(flipped[at] ^ (1 << (random() % 8)));
      }
      watchdog.Start(file + " flip copy " + std::to_string(k));
      fuzz::FuzzFormat(reinterpret_cast<const uint8_t*>(flipped.data()), flipped.size(), ext.c_str());
      ++cases;
    }
    watchdog.Stop();
  }
  std::printf("sweep: %zu cases over %zu files\n", cases, swept);
  RecordProperty("cases", static_cast<int>(cases));
  EXPECT_GT(swept, 0u);
}

// Every file of the public test suites, whole, cut at a few points and with a few flipped bits:
// the suites hold the strange files real programs wrote (and some deliberately broken ones) for
// formats whose other tests build their inputs themselves.
TEST(Sweep, PublicSuiteFilesGiveAPictureOrACode) {
  const std::string root = test::TestDataDir();
  if (root.empty()) GTEST_SKIP() << "the public test suites are not on this machine";
  Watchdog watchdog(std::chrono::seconds(20));
  std::mt19937 random(7);
  size_t cases = 0;
  size_t swept = 0;
  for (const std::string& file : FilesUnder(root)) {
    if (file.find("/reference") != std::string::npos) continue;  // expected renderings
    int row = FindFormat(file);
    if (row < 0 || !CanRead(FormatAt(row))) continue;
    const std::string ext = FormatAt(row).extension;
    std::string bytes = test::ReadFileBytes(file);
    ++swept;
    std::vector<size_t> cuts = {bytes.size()};
    for (size_t k = 1; k <= 6; ++k) cuts.push_back(bytes.size() * k / 7);
    for (size_t cut : cuts) {
      watchdog.Start(file + " cut at " + std::to_string(cut));
      fuzz::FuzzFormat(reinterpret_cast<const uint8_t*>(bytes.data()), cut, ext.c_str());
      ++cases;
    }
    for (int k = 0; k < 4 && !bytes.empty(); ++k) {
      std::string flipped = bytes;
      size_t at = random() % std::min<size_t>(bytes.size(), 512);
      flipped[at] = static_cast<char>(flipped[at] ^ (1 << (random() % 8)));
      watchdog.Start(file + " flip copy " + std::to_string(k));
      fuzz::FuzzFormat(reinterpret_cast<const uint8_t*>(flipped.data()), flipped.size(), ext.c_str());
      ++cases;
    }
    watchdog.Stop();
  }
  std::printf("sweep: %zu cases over %zu public suite files\n", cases, swept);
  EXPECT_GT(swept, 0u);
}

}  // namespace
}  // namespace pxm
