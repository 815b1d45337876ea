#include "batch/file_walk.h"

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <mutex>
#include <thread>

#include "config/settings.h"
#include "core/scripted_host.h"

namespace pxm {
namespace {

using Names = std::vector<std::string>;

Names Sources(const std::vector<FileResult>& results) {
  Names names;
  for (const FileResult& r : results) names.push_back(r.source);
  return names;
}

TEST(FileWalk, TaggedFilesInListOrderWithTheirCodesOutputsAndStops) {
  std::vector<ListItem> items = {{"[..]", true},  {"a.bmp", true}, {"b.bmp", false},
                                 {"[-c-]", true}, {"c.gif", true}, {"[sub]", true}};
  const Names files = TaggedFiles(items);
  EXPECT_EQ(files, (Names{"a.bmp", "c.gif"}));

  ScriptedHost host;
  Names handed;
  auto results = WalkFiles(
      host, files,
      [](Host& fileHost, size_t, const std::string& name) {
        if (name == "a.bmp") return 2;  // a failure is recorded and the walk goes on
        fileHost.FileWritten("c.png");
        fileHost.FileWritten("C.THN");  // the file's output is the first it wrote
        return 0;
      },
      {}, [&](const FileResult& r) { handed.push_back(r.source); });
  ASSERT_EQ(results.size(), 2u);
  EXPECT_EQ(results[0].code, 2);
  EXPECT_EQ(results[0].output, "");
  EXPECT_EQ(results[1].output, "c.png");
  EXPECT_EQ(results[1].index, 1u);
  EXPECT_EQ(handed, files);
  EXPECT_EQ(host.writtenFiles, (Names{"c.png", "C.THN"}));

  // A stop rule ends the walk after the file it is shown; a stop the user asked for ends it
  // before the next file, whichever the number of jobs.
  WalkOptions options;
  options.stopAfter = [](const FileResult& r) { return r.code == 4; };
  results = WalkFiles(host, files, [](Host&, size_t, const std::string&) { return 4; }, options);
  EXPECT_EQ(Sources(results), Names{"a.bmp"});
  for (unsigned jobs : {1u, 3u}) {
    struct : ScriptedHost {
      std::atomic<bool> stop = false;
      bool AbortRequested() const override { return stop; }
    } stopping;
    options = {};
    options.jobs = jobs;
    std::atomic<unsigned> others = 0;
    results = WalkFiles(
        stopping, Names{"1", "2", "3", "4", "5", "6"},
        [&](Host&, size_t i, const std::string&) {
          // The first file asks to stop once every job has a file in hand; those finish, and
          // no further file starts.
          if (i != 0) ++others;
          while (i == 0 && others < jobs - 1) std::this_thread::yield();
          if (i == 0) stopping.stop = true;
          while (!stopping.stop) std::this_thread::yield();
          return 4;
        },
        options);
    EXPECT_EQ(results.size(), jobs);
    EXPECT_EQ(results[0].source, "1");
  }
}

TEST(FileWalk, EachFileRunsOnACopyOfTheSettingsTakenWhenItStarts) {
  ScopedSettings settings;
  ScriptedHost host;
  std::vector<int32_t> seen;
  WalkFiles(host, Names{"a", "b", "c"}, [&](Host&, size_t, const std::string&) {
    seen.push_back(CurrentSettings().JpegCompressionFactor);
    // A change made while a file is in hand (a dialog, say) reaches the next file only.
    ProcessSettings().JpegCompressionFactor += 1;
    CurrentSettings().PngCompression = 1;
    return 0;
  });
  EXPECT_EQ(seen, (std::vector<int32_t>{75, 76, 77}));
  EXPECT_EQ(ProcessSettings().PngCompression, 6);
}

TEST(FileWalk, SideBySideResultsKeepTheirOrderAndDependentFilesWaitTheirTurn) {
  ScriptedHost host;
  const Names files = {"a.bmp", "b.pcx", "a.tga", "c.gif", "d.png", "A.jpg", "e.bmp", "f.bmp"};
  std::mutex mutex;
  std::map<std::string, int> running;  // per key: files in hand
  Names startedA;
  std::atomic<int> inHand = 0, most = 0;
  WalkOptions options;
  options.jobs = 4;
  options.orderKey = OutputNameKey;
  Names handed;
  auto results = WalkFiles(
      host, files,
      [&](Host& fileHost, size_t, const std::string& name) {
        const std::string key = OutputNameKey(name);
        {
          std::lock_guard lock(mutex);
          EXPECT_EQ(running[key]++, 0) << name << " ran beside a file writing the same name";
          if (key == "a") startedA.push_back(name);
        }
        most = std::max(most.load(), ++inHand);
        std::this_thread::sleep_for(std::chrono::milliseconds(name == "a.bmp" ? 30 : 5));
        fileHost.FileWritten(name + ".out");
        --inHand;
        std::lock_guard lock(mutex);
        --running[key];
        return name == "c.gif" ? 3 : 0;
      },
      options, [&](const FileResult& r) { handed.push_back(r.source); });
  EXPECT_EQ(Sources(results), files);
  EXPECT_EQ(handed, files);
  EXPECT_EQ(startedA, (Names{"a.bmp", "a.tga", "A.jpg"}));
  EXPECT_GT(most.load(), 1);  // files did run side by side
  EXPECT_EQ(results[3].code, 3);
  EXPECT_EQ(results[4].output, "d.png.out");
}

}  // namespace
}  // namespace pxm
