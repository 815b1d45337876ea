#include "config/recent_dirs.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "config/ini.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using Names = std::vector<std::string>;

TEST(RecentDirectories, KeepsNineNewestWithoutDuplicates) {
  RecentDirectories recent;
  for (int i = 1; i <= 10; ++i) recent.Add("/d" + std::to_string(i));
  EXPECT_EQ(recent.Items(),
            (Names{"/d2", "/d3", "/d4", "/d5", "/d6", "/d7", "/d8", "/d9", "/d10"}));

  recent.Add("/d5");
  EXPECT_EQ(recent.Items(),
            (Names{"/d2", "/d3", "/d4", "/d6", "/d7", "/d8", "/d9", "/d10", "/d5"}));
  // Revisiting the newest changes nothing; a full list loses its oldest only for a new entry.
  recent.Add("/d5");
  EXPECT_EQ(recent.Items().size(), 9u);
  EXPECT_EQ(recent.Items().front(), "/d2");

  // Only absolute paths stand for a directory; relative ones are ignored.
  RecentDirectories few;
  for (const char* ignored : {"pics", "./pics", "c:\\pics", "0"}) few.Add(ignored);
  EXPECT_TRUE(few.Items().empty());
  few.Add();
  EXPECT_EQ(few.Items(), Names{std::filesystem::current_path().string()});
  few.Add("/" + std::string(300, 'x'));
  EXPECT_EQ(few.Items().back().size(), 260u);
}

TEST(RecentDirectories, ReadFromTheFileMenuPathLines) {
  test::TempDir dir;
  test::WriteFileBytes(dir / "PXM.INI",
                       ";Pixmill configuration file\n"
                       "[Pixmill]\n"
                       "FileMenuPath = /one\n"
                       "File = /two\n"            // a prefix of the key matches
                       "filemenupath = /three\n"  // the case must agree
                       ";FileMenuPath = /four\n"
                       "FileMenuPathX = /five\n"  // longer than the key
                       "FileMenuPath = relative\n"
                       "\n"  // an empty path, not the current one
                       " = 0\n"
                       "FileMenuPath = /one\n"
                       "FileMenuPath=/six\tjunk\n");
  RecentDirectories recent;
  ReadRecentDirectories(dir / "PXM.INI", recent);
  EXPECT_EQ(recent.Items(), (Names{"/two", "/one", "/six"}));

  RecentDirectories none;
  ReadRecentDirectories(dir / "missing.ini", none);
  EXPECT_TRUE(none.Items().empty());
}

}  // namespace
}  // namespace pxm
