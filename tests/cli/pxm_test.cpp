// `pxm` as users and scripts run it: output formats, exit statuses and options.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "support/picture.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::ShellQuote;
using test::TempDir;

struct Result {
  int status = -1;
  std::string out;
  std::string err;
  std::vector<std::string> Lines() const {
    std::vector<std::string> lines;
    std::istringstream in(out);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
  }
};

class PxmTest : public ::testing::Test {
 protected:
  TempDir dir;

  // Runs pxm in the test folder with a private configuration folder and stdin not a terminal.
  Result Pxm(const std::string& args) {
    Result r;
    std::string command = "cd " + ShellQuote(dir.path()) + " && XDG_CONFIG_HOME=" +
                          ShellQuote(dir / "config") + " " + ShellQuote(PXM_EXE) + " " + args +
                          " 2>" + ShellQuote(dir / "stderr.txt") + " </dev/null";
    r.status = test::RunCapture(command, r.out);
    r.err = test::ReadFileBytes(dir / "stderr.txt");
    std::filesystem::remove(dir / "stderr.txt");
    return r;
  }

  void Picture(const std::string& name, uint32_t bits, uint32_t width = 9, int32_t depth = 5) {
    ASSERT_EQ(test::WritePicture(test::Pattern(width, depth, bits), dir / name), 0);
  }
};

TEST_F(PxmTest, FormatsListsEveryRowAndWhatThisBuildCanDo) {
  Result r = Pxm("formats");
  ASSERT_EQ(r.status, 0);
  auto lines = r.Lines();
  ASSERT_EQ(lines.size(), 42u);
  EXPECT_EQ(lines[9], "9\tBMP\t(BMP) Windows\t24\t1\t1\tread:yes\twrite:yes");
  EXPECT_EQ(lines[23], "23\tCBD\t(CDB) Clipboard\t24\t35\t1\tread:no\twrite:yes");
  EXPECT_EQ(lines[41], "41\t\t\t0\t0\t0\tread:no\twrite:no");
  // --set lines behave as lines of the file: 65537 keeps its low 16 bits.
  auto startsWith = [](const std::string& line, const std::string& prefix) {
    return line.rfind(prefix, 0) == 0;
  };
  EXPECT_PRED2(startsWith, Pxm("--set GIF=0 formats").Lines()[3], "3\tGIF\t(GIF) CompuServe\t8\t261\t0\t");
  EXPECT_PRED2(startsWith, Pxm("formats --set 'GIF = 65537'").Lines()[3],
               "3\tGIF\t(GIF) CompuServe\t8\t261\t1\t");
  Result json = Pxm("formats --json");
  EXPECT_NE(json.out.find("{\"row\": 9, \"extension\": \"BMP\", \"description\": \"(BMP) Windows\", "
                          "\"maxBits\": 24, \"caps\": 1, \"enabled\": 1, \"read\": true, "
                          "\"write\": true}"),
            std::string::npos);
}

TEST_F(PxmTest, InfoPrintsTheRecordAndFailuresTheirText) {
  Picture("mono.bmp", 1);
  test::WriteFileBytes(dir / "bad.bmp", "BM not really");
  Result r = Pxm("info mono.bmp bad.bmp missing.bmp");
  EXPECT_EQ(r.status, 2);  // the first failure's code
  EXPECT_EQ(r.Lines(), (std::vector<std::string>{
                           "fileName: mono.bmp", "description: Windows bitmap", "width: 9",
                           "depth: 5", "bits: 1", "imageCount: 0", "imageIndex: 0",
                           "fileSize: 82", "unpackedSize: 10", "background: 0", "flags: 0",
                           "format: (BMP) Windows"}));
  EXPECT_EQ(r.err, "bad.bmp - Corrupted file\nmissing.bmp - Error opening file\n");

  Result json = Pxm("--json info mono.bmp");
  ASSERT_EQ(json.status, 0);
  EXPECT_NE(json.out.find("\"bits\": 1, "), std::string::npos);
  EXPECT_NE(json.out.find("\"palette\": [[0, 0, 0], [255, 255, 255]], \"report\": []"),
            std::string::npos);
  EXPECT_EQ(Pxm("info nothing.xyz").status, 8);
}

TEST_F(PxmTest, CommentDialogAnswerShowsInTheBlockReport) {
  Picture("p.bmp", 8);
  ASSERT_EQ(Pxm("--set PromptForGifComments=1 --comment 'Hello there' convert --to gif p.bmp").status, 0);
  Result r = Pxm("info --report p.gif");
  ASSERT_EQ(r.status, 0) << r.err;
  const std::vector<std::string> lines = r.Lines();
  auto at = std::find(lines.begin(), lines.end(), "COMMENT BLOCK");
  ASSERT_LT(at + 2, lines.end());
  EXPECT_EQ(*(at + 2), "Hello there");
}

TEST_F(PxmTest, ConvertNamesEachOutputAndOptionsMayFollowTheCommand) {
  Picture("One.bmp", 8);
  Picture("two.bmp", 24);
  Result r = Pxm("convert One.bmp two.bmp --to DIB");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.Lines(), (std::vector<std::string>{"One.bmp -> one.dib", "two.bmp -> two.dib"}));
  EXPECT_TRUE(std::filesystem::exists(dir / "one.dib"));

  std::filesystem::create_directory(dir / "out");
  r = Pxm("--to bmp --dest-dir out --quiet convert two.bmp");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "");
  EXPECT_TRUE(std::filesystem::exists(dir / "out/two.bmp"));
  r = Pxm("convert two.bmp --to bmp --output Picked.png");
  EXPECT_EQ(r.Lines(), std::vector<std::string>{"two.bmp -> picked.bmp"});
}

TEST_F(PxmTest, ConvertFailuresAndUsageErrors) {
  Picture("deep.bmp", 24);
  Picture("flat.bmp", 8);
  Result r = Pxm("convert --to cut flat.bmp deep.bmp");
  EXPECT_EQ(r.status, 5);  // Dr. Halo files are not written by this build; 24 bits would be 12
  EXPECT_EQ(r.err, "flat.bmp - Unsupported function\ndeep.bmp - Too many colours\n");
  EXPECT_EQ(Pxm("convert --to xyz flat.bmp").status, 64);
  EXPECT_EQ(Pxm("convert flat.bmp").status, 64);
  EXPECT_EQ(Pxm("").status, 64);
  EXPECT_EQ(Pxm("convert --to bmp --output x.bmp flat.bmp deep.bmp").status, 64);
  EXPECT_EQ(Pxm("--yes --no convert --to bmp flat.bmp").status, 64);
}

TEST_F(PxmTest, OverwriteQuestionIsAnsweredByOptionsOrNo) {
  Picture("a.bmp", 8);
  test::WriteFileBytes(dir / "a.dib", "old");
  std::string ask = "--set PromptBeforeOverwrite=1 convert --to dib a.bmp";
  EXPECT_EQ(Pxm(ask).status, 4);  // no terminal to ask on: No
  EXPECT_EQ(Pxm("--no " + ask).status, 4);
  EXPECT_EQ(test::ReadFileBytes(dir / "a.dib"), "old");
  EXPECT_EQ(Pxm("--yes " + ask).status, 0);
  EXPECT_NE(test::ReadFileBytes(dir / "a.dib"), "old");
}

TEST_F(PxmTest, ConfigShowsAndWritesTheSettingsFile) {
  Result path = Pxm("config path");
  EXPECT_EQ(path.out, dir / "config/pixmill/PXM.INI\n");
  Result shown = Pxm("config show --set PrintContrast=-20");
  auto lines = shown.Lines();
  ASSERT_EQ(lines.size(), 112u + 42u);
  EXPECT_EQ(lines[0], "UntagAfterView = 0");
  EXPECT_NE(std::find(lines.begin(), lines.end(), "PrintContrast = 4294967276"), lines.end());
  EXPECT_EQ(lines.back(), " = 0");
  EXPECT_FALSE(std::filesystem::exists(dir / "config"));  // pxm writes only when told to

  ASSERT_EQ(Pxm("--quiet --set CreateGif89=0 config write").status, 0);
  std::string written = test::ReadFileBytes(dir / "config/pixmill/PXM.INI");
  EXPECT_EQ(written.rfind(";Pixmill configuration file\n;PXM/Windows 0.00\n;Last updated ", 0), 0u);
  EXPECT_NE(written.find("\nCreateGif89 = 0\n"), std::string::npos);
  // Written settings are read back on the next start.
  EXPECT_NE(Pxm("config show").out.find("CreateGif89 = 0\n"), std::string::npos);
  // --ini names another file.
  test::WriteFileBytes(dir / "other.ini", "[Pixmill]\nTipWait = 99\n");
  EXPECT_NE(Pxm("--ini other.ini config show").out.find("TipWait = 99\n"), std::string::npos);
}

}  // namespace
}  // namespace pxm
