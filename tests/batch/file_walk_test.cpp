#include "batch/file_walk.h"

#include <gtest/gtest.h>

namespace pxm {
namespace {

TEST(FileWalk, VisitsTaggedFilesInOrderNeverDirectoryEntriesAndStopsWhenAsked) {
  std::vector<ListItem> items = {{"[..]", true},  {"a.bmp", true}, {"b.bmp", false},
                                 {"[-c-]", true}, {"c.gif", true}, {"[sub]", true}};
  std::vector<std::string> visited;
  auto results = WalkTaggedFiles(items, [&](const std::string& name) {
    visited.push_back(name);
    return name == "a.bmp" ? 2 : 0;
  });
  EXPECT_EQ(visited, (std::vector<std::string>{"a.bmp", "c.gif"}));
  ASSERT_EQ(results.size(), 2u);
  EXPECT_EQ(results[0].code, 2);  // a failure is recorded and the walk goes on
  EXPECT_EQ(results[1].code, 0);

  // A stop rule ends the walk after the item whose code it takes.
  visited.clear();
  results = WalkTaggedFiles(
      items, [&](const std::string& name) { return visited.push_back(name), 4; },
      [](int code) { return code == 4; });
  EXPECT_EQ(visited, std::vector<std::string>{"a.bmp"});
  EXPECT_EQ(results.size(), 1u);
}

}  // namespace
}  // namespace pxm
