#include "core/strings.h"

#include <gtest/gtest.h>

namespace pxm {
namespace {

TEST(Strings, ErrorCodeTexts) {
  // clang-format off
  const char* expected[] = {
      "Ok", "Error opening file", "Corrupted file", "Error reading file", "Function cancelled",
      "Unsupported function", "Memory error", "Information error", "Unsupported format",
      "Error renaming file", "Error creating file", "Error writing file", "Too many colours",
      "Unsuitable image", "Resource error", "Printer error", "Not available for VMS",
      "Unable to install DIB.DRV", "No readable metafile", "Unsuitable VFW version",
      "No bitmap in this file.", "MPEG error", "Disabled feature", "WIN32 not available.",
      "Error verifying files."};
  // clang-format on
  for (int code = 0; code <= 24; ++code) {
    EXPECT_EQ(LoadMessage(code), expected[code]) << code;
    EXPECT_EQ(ErrorText(code), expected[code]) << code;
  }
  EXPECT_EQ(ErrorText(25), "Unknown error");
  EXPECT_EQ(ErrorText(-1), "Unknown error");
  EXPECT_EQ(FileErrorLine("photo.bmp", 2), "photo.bmp - Corrupted file");
  EXPECT_EQ(FileErrorLine("photo.bmp", 99), "photo.bmp - Unknown error");
}

TEST(Strings, MissingEntriesAndNumberedTexts) {
  for (int id : {25, 100, 999, -5, 2001, 99999}) {
    EXPECT_EQ(LoadMessage(id), "String table error - this application may be damaged") << id;
    EXPECT_FALSE(HasMessage(id)) << id;
  }
  EXPECT_EQ(LoadMessage(126), "Creating spill file");
  EXPECT_EQ(LoadMessage(136), "Writing %s");
  EXPECT_EQ(LoadMessage(175), "Adam 7 interace");  // the slip is part of the text users know
  EXPECT_EQ(MessageWithName(135, "photo.bmp"), "Reading photo.bmp");
  EXPECT_EQ(MessageWithName(139, "a%sb.gif"), "Reversing a%sb.gif");
  EXPECT_EQ(LoadMessage(172), "%u files tagged");
  EXPECT_EQ(FormatText("%u files tagged", 3u), "3 files tagged");
}

}  // namespace
}  // namespace pxm
