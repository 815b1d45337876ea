// `pxm` as users and scripts run it: output formats, exit statuses and options.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "support/decoded.h"
#include "support/picture_files.h"
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

  // Runs pxm in the test folder with a private configuration folder and stdin not a terminal;
  // `environment` is put before the command ("NAME=value ...").
  Result Pxm(const std::string& args, const std::string& environment = "") {
    Result r;
    std::string command = "cd " + ShellQuote(dir.path()) + " && " + environment +
                          " XDG_CONFIG_HOME=" + ShellQuote(dir / "config") + " " +
                          ShellQuote(PXM_EXE) + " " + args + " 2>" +
                          ShellQuote(dir / "stderr.txt") + " </dev/null";
    r.status = test::RunCapture(command, r.out);
    r.err = test::ReadFileBytes(dir / "stderr.txt");
    std::filesystem::remove(dir / "stderr.txt");
    return r;
  }

  void Picture(const std::string& name, uint32_t bits, uint32_t width = 9, int32_t depth = 5) {
    ASSERT_EQ(test::WritePicture(test::Pattern(width, depth, bits), dir / name), 0);
  }
  // The width and depth of a picture pxm wrote (0 x 0 when it cannot be read).
  std::pair<uint32_t, int32_t> Size(const std::string& name) {
    test::Picture p;
    if (test::ReadPicture(dir / name, p) != 0) return {0, 0};
    return {p.width, p.depth};
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

TEST_F(PxmTest, LibraryMessagesGoToTheDebugLogOnlyWhenAskedFor) {
  // A start-of-frame segment whose length does not match its one component.
  test::WriteFileBytes(
      dir / "bad.jpg",
      std::string("\xFF\xD8\xFF\xC0\x00\x01\x08\x00\x10\x00\x10\x01", 12) + std::string(16, '\0'));
  Result quiet = Pxm("info bad.jpg");
  EXPECT_EQ(quiet.status, 6);
  EXPECT_EQ(quiet.err, "bad.jpg - Memory error\n");
  Result logged = Pxm("info bad.jpg", "PXM_LOG=1");
  EXPECT_EQ(logged.status, 6);
  EXPECT_NE(logged.err.find("pxm: libjpeg: "), std::string::npos) << logged.err;
  EXPECT_NE(logged.err.find("bad.jpg: Bogus marker length\n"), std::string::npos) << logged.err;
}

TEST_F(PxmTest, InfoReportFollowsTheRecordAndShowsTheCommentDialogsAnswer) {
  Picture("p.bmp", 8);
  ASSERT_EQ(Pxm("--set PromptForGifComments=1 --comment 'Hello there' convert --to gif p.bmp").status, 0);
  Result r = Pxm("info --report p.gif");
  ASSERT_EQ(r.status, 0) << r.err;
  const std::vector<std::string> lines = r.Lines();
  ASSERT_GT(lines.size(), 13u);
  EXPECT_EQ(lines[12], "SCREEN DESCRIPTOR");  // after the twelve lines of the record
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

  // A colour JPEG read as 256 colours by default is said once a run, and never with --quiet.
  ASSERT_EQ(Pxm("convert two.bmp --to jpg").status, 0);
  std::filesystem::copy_file(dir / "two.jpg", dir / "three.jpg");
  r = Pxm("convert two.jpg three.jpg --to gif");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.err, "pxm: note: JPEG pictures are read as 256 colours (ReadJpegRgb is 0); "
                   "--set ReadJpegRgb=1 reads them in full colour\n");
  EXPECT_EQ(Pxm("--quiet convert two.jpg --to bmp").err, "");
  EXPECT_EQ(Pxm("--set ReadJpegRgb=1 convert two.jpg --to bmp").err, "");
}

TEST_F(PxmTest, ConvertFailuresAndUsageErrors) {
  Picture("deep.bmp", 24);
  Picture("flat.bmp", 8);
  Result r = Pxm("convert --to uue flat.bmp");
  EXPECT_EQ(r.status, 5);  // the UUE row only decodes
  EXPECT_EQ(r.err, "flat.bmp - Unsupported function\n");
  r = Pxm("convert --to cut flat.bmp deep.bmp");
  EXPECT_EQ(r.status, 12);  // Dr. Halo pictures hold at most 256 colours
  EXPECT_EQ(r.err, "deep.bmp - Too many colours\n");
  EXPECT_EQ(Pxm("convert --to xyz flat.bmp").status, 64);
  EXPECT_EQ(Pxm("convert flat.bmp").status, 64);
  EXPECT_EQ(Pxm("").status, 64);
  EXPECT_EQ(Pxm("convert --to bmp --output x.bmp flat.bmp deep.bmp").status, 64);
  EXPECT_EQ(Pxm("--yes --no convert --to bmp flat.bmp").status, 64);
}

TEST_F(PxmTest, JobsWriteAndSayExactlyWhatOneJobDoes) {
  // Every file of the public suites and the samples. Into one folder with names cut to six
  // characters, many write the same name: the file named last must win however many jobs run.
  std::string files;
  for (const std::string& root : {std::string(PXM_TESTDATA_DIR), std::string(PXM_SOURCE_DIR) + "/samples"})
    for (const std::string& path : test::FilesUnder(root)) files += " " + ShellQuote(path);
  for (const char* command : {"convert --to bmp --dest-dir out", "info --report", "--json info"}) {
    std::vector<Result> results;
    std::vector<std::vector<std::pair<std::string, std::string>>> written;
    for (const char* jobs : {"--jobs 1", "--jobs 4"}) {
      std::filesystem::remove_all(dir / "out");
      std::filesystem::create_directory(dir / "out");
      results.push_back(Pxm(std::string(jobs) + " " + command + files));
      written.emplace_back();
      for (const std::string& name : test::ListDirectory(dir / "out"))
        written.back().emplace_back(name, test::ReadFileBytes(dir / ("out/" + name)));
    }
    EXPECT_EQ(results[0].status, results[1].status) << command;
    EXPECT_NE(results[0].status, 0) << command;  // the suites hold broken files on purpose
    EXPECT_TRUE(results[0].out == results[1].out) << command;
    EXPECT_TRUE(results[0].err == results[1].err) << command;
    EXPECT_TRUE(written[0] == written[1]) << command;
  }
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

TEST_F(PxmTest, PictureCommandsNameTheirOutputs) {
  Picture("a.bmp", 8, 40, 20);
  Result r = Pxm("scale --percent 50 --to dib a.bmp");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.Lines(), std::vector<std::string>{"a.bmp -> a.dib"});
  EXPECT_EQ(Size("a.dib"), std::pair(20u, 10));
  ASSERT_EQ(Pxm("scale --percent 200,50 --to dib a.bmp").status, 0);
  EXPECT_EQ(Size("a.dib"), std::pair(80u, 10));
  ASSERT_EQ(Pxm("scale --size 2x100 --to dib a.bmp").status, 0);  // 2 is held at 16
  EXPECT_EQ(Size("a.dib"), std::pair(16u, 100));

  // The mode comes from TransformMode unless --mode names one.
  ASSERT_EQ(Pxm("transform --to dib a.bmp").status, 0);
  EXPECT_EQ(Size("a.dib"), std::pair(20u, 40));
  ASSERT_EQ(Pxm("--set TransformMode=105 transform --to dib a.bmp --output up.dib").status, 0);
  EXPECT_EQ(Size("up.dib"), std::pair(40u, 20));
  EXPECT_EQ(Pxm("transform --mode rotate270 --to dib a.bmp").status, 0);
  r = Pxm("transform --mode 101 --to dib a.bmp --set UseVirtualMemoryAlways=1");
  EXPECT_EQ(r.status, 16);
  EXPECT_EQ(r.err, "a.bmp - Not available for VMS\n");

  EXPECT_EQ(Pxm("reverse --to bmp --output neg.bmp a.bmp").Lines(),
            std::vector<std::string>{"a.bmp -> neg.bmp"});
  EXPECT_EQ(Pxm("crop --rect 5,5,10,4 --to dib a.bmp").status, 0);
  EXPECT_EQ(Size("a.dib"), std::pair(10u, 4));

  for (const char* bad : {"scale --to dib a.bmp", "scale --percent 50 --size 9x9 --to dib a.bmp",
                          "scale --percent 5,6,7 --to dib a.bmp", "scale --size 640 --to dib a.bmp",
                          "transform --mode sideways --to dib a.bmp", "reverse a.bmp",
                          "crop --rect 1,2,3 --to dib a.bmp", "crop --rect 1,2,0,4 --to dib a.bmp"})
    EXPECT_EQ(Pxm(bad).status, 64) << bad;
}

TEST_F(PxmTest, FileCommandsCopyMoveRenameAndDelete) {
  test::WriteFileBytes(dir / "one.txt", "1");
  test::WriteFileBytes(dir / "two.txt", "2");
  std::filesystem::create_directory(dir / "out");
  Result r = Pxm("copy --to-dir out one.txt two.txt");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.Lines(), (std::vector<std::string>{"one.txt -> out/one.txt", "two.txt -> out/two.txt"}));
  r = Pxm("copy --to-dir . one.txt");
  EXPECT_EQ(r.status, 4);
  EXPECT_EQ(r.err, "Files cannot be moved or copied to themselves.\n");

  EXPECT_EQ(Pxm("move --to-dir out/ one.txt").status, 4);  // the question gets No
  EXPECT_TRUE(std::filesystem::exists(dir / "one.txt"));
  EXPECT_EQ(Pxm("--yes move --no-verify --to-dir out/ one.txt").Lines(),
            std::vector<std::string>{"one.txt -> out/one.txt"});
  EXPECT_FALSE(std::filesystem::exists(dir / "one.txt"));

  EXPECT_EQ(Pxm("rename two.txt three.txt").Lines(),
            std::vector<std::string>{"two.txt -> three.txt"});
  r = Pxm("rename three.txt out/two.txt");
  EXPECT_EQ(r.status, 9);
  EXPECT_EQ(r.err, "three.txt - Error renaming file\n");

  EXPECT_EQ(Pxm("delete three.txt out/one.txt").status, 4);
  r = Pxm("--yes delete three.txt out/one.txt missing.txt");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(test::ListDirectory(dir / "out"), std::vector<std::string>{"two.txt"});
  EXPECT_FALSE(std::filesystem::exists(dir / "three.txt"));
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

TEST_F(PxmTest, DitherRewritesEachFileInItsOwnFormatUnlessToIsGiven) {
  Picture("pic.bmp", 24);
  Picture("wide.bmp", 8);
  Picture("mono.bmp", 1);
  Result r = Pxm("dither --method threshold --level 100 pic.bmp");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.Lines(), std::vector<std::string>{"pic.bmp -> pic.bmp"});
  r = Pxm("--to dib dither wide.bmp --method stucki --size 2 --bidirectional --contrast 40");
  ASSERT_EQ(r.status, 0) << r.err;
  test::Picture a, b;
  ASSERT_EQ(test::ReadPicture(dir / "pic.bmp", a), 0);
  ASSERT_EQ(test::ReadPicture(dir / "wide.dib", b), 0);
  EXPECT_EQ(a.bits, 1u);
  EXPECT_EQ(b.bits, 1u);
  EXPECT_EQ(b.width, 18u);  // the size factor enlarged it
  EXPECT_EQ(b.depth, 10);

  r = Pxm("dither mono.bmp");
  EXPECT_EQ(r.status, 13);
  EXPECT_EQ(r.err, "mono.bmp - Unsuitable image\n");
  EXPECT_EQ(Pxm("dither --method floyd --level 3 wide.bmp").status, 64);
  EXPECT_EQ(Pxm("dither --method bayer --size 2 wide.bmp").status, 64);
  EXPECT_EQ(Pxm("dither --method dots wide.bmp").status, 64);
  EXPECT_EQ(Pxm("dither --contrast 255 wide.bmp").status, 64);
}

TEST_F(PxmTest, EffectTakesAnEffectWithItsOptionsOrTheRawWord) {
  Picture("a.bmp", 24);
  Result r = Pxm("effect --effect reduce --palette 6 --method stucki --to dib a.bmp");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.Lines(), std::vector<std::string>{"a.bmp -> a.dib"});
  test::Picture p;
  ASSERT_EQ(test::ReadPicture(dir / "a.dib", p), 0);
  EXPECT_EQ(p.bits, 4u);
  // 0x7002: grey scale with the "8 colour" choice's 3 bits.
  ASSERT_EQ(Pxm("effect --word 0x7002 --to bmp --output g.bmp a.bmp").status, 0);
  ASSERT_EQ(test::ReadPicture(dir / "g.bmp", p), 0);
  EXPECT_EQ(p.palette[7], (Rgb{224, 224, 224}));
  EXPECT_EQ(Pxm("effect --word 64 --to bmp --output w.bmp a.bmp").status, 0);

  EXPECT_EQ(Pxm("effect --word 65535 --to bmp a.bmp").status, 4);  // the dialog's Cancel
  EXPECT_EQ(Pxm("effect --effect sharpen --palette 3 --to bmp a.bmp").status, 64);
  EXPECT_EQ(Pxm("effect --effect posterize --block 3 --to bmp a.bmp").status, 64);
  EXPECT_EQ(Pxm("effect --effect grey --word 2 --to bmp a.bmp").status, 64);
  EXPECT_EQ(Pxm("effect --word 0x --to bmp a.bmp").status, 64);
  EXPECT_EQ(Pxm("effect --effect grey a.bmp").status, 64);  // no --to
}

TEST_F(PxmTest, UuePartsAnswerTheNextFileDialogInOrderThenOk) {
  // A picture encoded by hand into three parts: the first has the begin line, none has END.
  Picture("p.tga", 8, 6, 2);
  const std::string bytes = test::ReadFileBytes(dir / "p.tga");
  std::vector<std::string> lines = test::UuencodeLines(bytes);
  for (std::string& line : lines) line += "\n";
  ASSERT_GE(lines.size(), 3u);
  std::string first = "begin 644 p.tga\n", second, third;
  for (size_t i = 0; i < lines.size(); ++i) (i == 0 ? first : i == 1 ? second : third) += lines[i];
  test::WriteFileBytes(dir / "p.uue", first);
  test::WriteFileBytes(dir / "p2.txt", second);
  test::WriteFileBytes(dir / "p3.txt", third);

  Result r = Pxm("convert --to bmp p.uue --uue-part p2.txt --uue-part p3.txt");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, "p.uue -> p.bmp\n");
  test::Picture in, out;
  ASSERT_EQ(test::ReadPicture(dir / "p.tga", in), 0);
  ASSERT_EQ(test::ReadPicture(dir / "p.bmp", out), 0);
  EXPECT_EQ(in.rows, out.rows);
  // With one part given, the dialog then answers Ok and the picture is cut short.
  EXPECT_NE(Pxm("info p.uue --uue-part p2.txt").status, 0);
  Result info = Pxm("info p.uue --uue-part p2.txt --uue-part p3.txt");
  EXPECT_NE(info.out.find("description: Original name P.TGA\n"), std::string::npos);
}

TEST_F(PxmTest, ThumbnailNamesEachThumbnailFile) {
  Picture("cat.bmp", 8);
  test::WriteFileBytes(dir / "clip.mov", "no frames of its own");
  Result r = Pxm("thumbnail cat.bmp clip.mov");
  EXPECT_EQ(r.status, 5);
  EXPECT_EQ(r.Lines(), std::vector<std::string>{"cat.bmp -> CAT.THN"});
  EXPECT_EQ(r.err, "clip.mov - Unsupported function\n");
  EXPECT_EQ(test::ReadFileBytes(dir / "CAT.THN").substr(0, 8), "PXMTHN01");
  std::filesystem::remove(dir / "CAT.THN");
  r = Pxm("--set AutoCreateThumbnail=1 convert --to dib cat.bmp");  // a thumbnail is not output
  EXPECT_EQ(r.Lines(), std::vector<std::string>{"cat.bmp -> cat.dib"});
  EXPECT_TRUE(std::filesystem::exists(dir / "CAT.THN"));
}

}  // namespace
}  // namespace pxm
