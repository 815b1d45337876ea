#include "core/names.h"

#include <gtest/gtest.h>

namespace pxm {
namespace {

TEST(Names, PartsExtensionsAndCase) {
  struct Case {
    const char *path, *name, *directory, *extension, *replaced;  // extension replaced by "gif"
  } cases[] = {
      {"/pics/Photo.BMP", "Photo.BMP", "/pics/", "BMP", "/pics/Photo.gif"},
      {"/my.pics/README", "README", "/my.pics/", "", "/my.pics/README.gif"},  // dot in a directory
      {"/a/b.tar.gz", "b.tar.gz", "/a/", "gz", "/a/b.tar.gif"},
      {"plain.pcx", "plain.pcx", "", "pcx", "plain.gif"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(NamePart(c.path), c.name) << c.path;
    EXPECT_EQ(DirectoryPart(c.path), c.directory) << c.path;
    EXPECT_EQ(ExtensionOf(c.path), c.extension) << c.path;
    EXPECT_EQ(ReplaceExtension(c.path, "gif"), c.replaced) << c.path;
  }
  EXPECT_EQ(JoinPath("/a", "b.gif"), "/a/b.gif");
  EXPECT_EQ(JoinPath("/a/", "b.gif"), "/a/b.gif");

  // Only the name part changes case: POSIX directories are case-sensitive.
  EXPECT_EQ(LowerCaseName("/Home/My.Pics/PHOTO.BMP"), "/Home/My.Pics/photo.bmp");
  EXPECT_EQ(UpperCaseName("/home/my.pics/photo.thn"), "/home/my.pics/PHOTO.THN");
  EXPECT_EQ(LowerCaseName("/X/\xC3\x89T\xC3\x89.PCX"), "/X/\xC3\x89t\xC3\x89.pcx");
  EXPECT_TRUE(EqualsIgnoreCase("/Pics/A.bmp", "/pics/a.BMP"));
}

}  // namespace
}  // namespace pxm
