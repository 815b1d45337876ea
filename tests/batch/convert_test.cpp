#include "batch/convert.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <filesystem>

#include "batch/get_info.h"
#include "config/settings.h"
#include "core/error_codes.h"
#include "core/scripted_host.h"
#include "formats/format_table.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::Picture;
using test::TempDir;

int Row(const char* ext) {
  return FindFormatByExtension(ext);
}

class ConvertTest : public ::testing::Test {
 protected:
  ScopedSettings settings;
  TempDir dir;
  ScriptedHost host;

  std::string Make(const std::string& name, uint32_t bits, uint32_t width = 13, int32_t depth = 7) {
    std::string path = dir / name;
    EXPECT_EQ(test::WritePicture(test::Pattern(width, depth, bits), path), 0);
    return path;
  }
};

TEST_F(ConvertTest, WritesTheSamePictureInTheNewFormatAndAnnouncesIt) {
  std::string source = Make("Photo.BMP", 8);
  ASSERT_EQ(Convert(host, source, Row("DIB")), 0);
  std::string output = dir / "photo.dib";
  Picture in, out;
  ASSERT_EQ(test::ReadPicture(source, in), 0);
  ASSERT_EQ(test::ReadPicture(output, out), 0);
  EXPECT_EQ(in.rows, out.rows);
  EXPECT_EQ(in.palette, out.palette);
  EXPECT_EQ(host.writtenFiles, std::vector<std::string>{output});
  ASSERT_GE(host.statuses.size(), 2u);
  EXPECT_EQ(host.statuses.front(), "Reading " + source);
  EXPECT_EQ(host.statuses.back(), "Writing " + output);
  EXPECT_EQ(test::ListDirectory(dir.path()), (std::vector<std::string>{"Photo.BMP", "photo.dib"}));
}

TEST_F(ConvertTest, RefusalsAndTheirCodes) {
  std::string deep = Make("deep.bmp", 24);
  std::string eight = Make("eight.bmp", 8);
  test::WriteFileBytes(dir / "notes.xyz", "hello");
  EXPECT_EQ(Convert(host, dir / "notes.xyz", Row("BMP")), kUnsupportedFormat);
  EXPECT_EQ(Convert(host, dir / "noextension", Row("BMP")), kUnsupportedFormat);
  EXPECT_EQ(Convert(host, eight, -1), kUnsupportedFormat);
  EXPECT_EQ(Convert(host, eight, kFormatCount), kUnsupportedFormat);
  // Convert never reduces colours: a 24-bit picture does not go into an 8-bit format.
  EXPECT_EQ(Convert(host, deep, Row("GIF")), kTooManyColours);
  // A row whose writer is not built answers 5 after reading, and leaves nothing.
  EXPECT_EQ(Convert(host, eight, Row("MSP")), kTooManyColours);
  EXPECT_EQ(Convert(host, eight, Row("WMF")), kUnsupportedFunction);
  // A source row whose handlers only refuse.
  test::WriteFileBytes(dir / "pic.avi", std::string(700, '\0'));
  EXPECT_EQ(Convert(host, dir / "pic.avi", Row("BMP")), kUnsupportedFunction);
  EXPECT_EQ(test::ListDirectory(dir.path()),
            (std::vector<std::string>{"deep.bmp", "eight.bmp", "notes.xyz", "pic.avi"}));
}

TEST_F(ConvertTest, ReaderErrorsPassThroughAndLeaveNoOutput) {
  std::string source = Make("cut.bmp", 24, 40, 30);
  std::string bytes = test::ReadFileBytes(source);
  test::WriteFileBytes(source, bytes.substr(0, bytes.size() - 500));
  EXPECT_EQ(Convert(host, source, Row("DIB")), kCorruptedFile);  // rows missing from the file
  test::WriteFileBytes(dir / "empty.bmp", "");
  EXPECT_EQ(Convert(host, dir / "empty.bmp", Row("DIB")), kCorruptedFile);
  EXPECT_EQ(Convert(host, dir / "absent.bmp", Row("DIB")), kOpenError);
  EXPECT_FALSE(std::filesystem::exists(dir / "cut.dib"));
}

TEST_F(ConvertTest, ClickWhileWritingCancelsAndKeepsTheOldOutput) {
  std::string source = Make("a.bmp", 24, 20, 50);
  test::WriteFileBytes(dir / "a.dib", "the old file");
  // 50 polls while reading (one per row), then the click comes while writing.
  host.abortOnPoll = 60;
  EXPECT_EQ(Convert(host, source, Row("DIB")), kCancelled);
  EXPECT_EQ(host.beeps, 1u);
  EXPECT_EQ(test::ReadFileBytes(dir / "a.dib"), "the old file");
  EXPECT_EQ(test::ListDirectory(dir.path()), (std::vector<std::string>{"a.bmp", "a.dib"}));
}

TEST_F(ConvertTest, SaveDialogCancelGivesFourAndNoFile) {
  std::string source = Make("a.bmp", 8);
  settings->PromptforDestName = 1;
  EXPECT_EQ(Convert(host, source, Row("DIB")), kCancelled);
  host.saveAnswer = dir / "Chosen.whatever";
  EXPECT_EQ(Convert(host, source, Row("DIB")), 0);
  EXPECT_TRUE(std::filesystem::exists(dir / "chosen.dib"));
}

TEST_F(ConvertTest, ChoosesAnImageOfABitmapArray) {
  std::string source = std::string(PXM_SOURCE_DIR) + "/samples/wheels.bga";
  ConvertOptions options;
  options.destinationDirectory = dir.path();
  host.imageAnswer = 1;
  ASSERT_EQ(Convert(host, source, Row("BMP"), options), 0);
  ASSERT_EQ(host.selectLists.size(), 1u);
  EXPECT_EQ(host.selectLists[0], "Image 1\nImage 2\n");
  ImageInfo info;
  Picture picture;
  ASSERT_EQ(test::ReadPicture(dir / "wheels.bmp", picture, nullptr, &info), 0);
  EXPECT_EQ(info.bits, 8u);  // the second image is the 8-bit one
  host.imageAnswer.reset();
  EXPECT_EQ(Convert(host, source, Row("BMP"), options), kCancelled);
}

TEST_F(ConvertTest, SpillStoreGivesTheSameFile) {
  std::string source = Make("s.bmp", 24, 31, 9);
  ASSERT_EQ(Convert(host, source, Row("DIB")), 0);
  std::string inMemory = test::ReadFileBytes(dir / "s.dib");
  setenv("PXM_MEMORY_LIMIT", "0", 1);
  ScriptedHost spillHost;
  int code = Convert(spillHost, source, Row("DIB"));
  unsetenv("PXM_MEMORY_LIMIT");
  ASSERT_EQ(code, 0);
  EXPECT_EQ(std::count(spillHost.statuses.begin(), spillHost.statuses.end(), "Creating spill file"),
            1);
  EXPECT_EQ(test::ReadFileBytes(dir / "s.dib"), inMemory);
}

// A table whose two motion rows have handlers, to follow frames from reader to writer.
struct MotionLog {
  uint32_t imageIndexSeen = 0;
  int framesWritten = 0;
  bool finished = false;
  std::string writtenTo;
};
MotionLog gMotion;

int FakeFrameRead(ImageInfo& info, const std::string&) {
  gMotion.imageIndexSeen = info.imageIndex;
  std::vector<uint8_t> frame(16, 0);
  for (int i = 0; i < 3; ++i)
    if (info.putLine(frame, i)) return kCancelled;
  return 0;
}

int FakeFrameWrite(ImageInfo& info, const std::string& path) {
  gMotion.writtenTo = path;
  info.putLine = [](std::span<uint8_t>, int32_t) {
    ++gMotion.framesWritten;
    return 0;
  };
  info.finishWrite = [] {
    gMotion.finished = true;
    return 0;
  };
  return 0;
}

TEST_F(ConvertTest, MotionFilesGoFrameByFrameFromReaderToWriter) {
  std::array<FormatEntry, kFormatCount> table;
  std::copy(FormatTable().begin(), FormatTable().end(), table.begin());
  table[static_cast<size_t>(Row("FLC"))].read = FakeFrameRead;
  table[static_cast<size_t>(Row("FLI"))].write = FakeFrameWrite;
  gMotion = MotionLog{};
  test::WriteFileBytes(dir / "Clip.flc", "frames");
  ASSERT_EQ(Convert(host, dir / "Clip.flc", Row("FLI"), {}, table), 0);
  EXPECT_EQ(gMotion.imageIndexSeen, kAllFrames);
  EXPECT_EQ(gMotion.framesWritten, 3);
  EXPECT_TRUE(gMotion.finished);
  // The frames went into a temporary file beside the output, renamed over it at the end.
  EXPECT_NE(gMotion.writtenTo, dir / "clip.fli");
  EXPECT_EQ(test::ListDirectory(dir.path()), (std::vector<std::string>{"Clip.flc", "clip.fli"}));

  // A still picture is not a motion source; a motion destination without a writer is 8.
  std::string still = Make("still.bmp", 8);
  EXPECT_EQ(Convert(host, still, Row("FLI"), {}, table), kUnsupportedFunction);
  table[static_cast<size_t>(Row("FLI"))].write = nullptr;
  EXPECT_EQ(Convert(host, dir / "Clip.flc", Row("FLI"), {}, table), kUnsupportedFormat);
}

TEST_F(ConvertTest, GetInfoRulesForMotionAndMultiImageRows) {
  InfoResult result;
  test::WriteFileBytes(dir / "movie.mpg", "x");
  EXPECT_EQ(GetInfo(host, dir / "movie.mpg", false, result), kUnsupportedFunction);
  EXPECT_EQ(GetInfo(host, dir / "x.none", false, result), kUnsupportedFormat);
  host.imageAnswer = 1;
  ASSERT_EQ(GetInfo(host, std::string(PXM_SOURCE_DIR) + "/samples/wheels.bga", false, result), 0);
  EXPECT_EQ(result.info.imageCount, 2u);
  EXPECT_EQ(result.info.imageIndex, 1u);
  EXPECT_EQ(result.info.bits, 8u);
  host.imageAnswer.reset();
  EXPECT_EQ(GetInfo(host, std::string(PXM_SOURCE_DIR) + "/samples/wheels.bga", false, result),
            kCancelled);
}

}  // namespace
}  // namespace pxm
