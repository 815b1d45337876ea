#include "config/ini.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <regex>
#include <sstream>

#include "config/format_extensions.h"
#include "config/key_table.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::TempDir;

// Names of the keys and format switches whose values differ between two settings.
std::vector<std::string> Differences(const Settings& a, const Settings& b) {
  std::vector<std::string> names;
  for (const KeyRow& row : KeyTable()) {
    bool same = row.number ? a.*row.number == b.*row.number : a.*row.text == b.*row.text;
    if (!same) names.emplace_back(row.name);
  }
  for (size_t i = 0; i < a.formatEnabled.size(); ++i)
    if (a.formatEnabled[i] != b.formatEnabled[i]) names.emplace_back(kFormatExtensions[i]);
  return names;
}

using Names = std::vector<std::string>;

Settings After(std::initializer_list<std::string_view> lines) {
  Settings s;
  for (std::string_view line : lines) ApplyConfigurationLine(line, s);
  return s;
}

class ScopedCurrentDirectory {
 public:
  explicit ScopedCurrentDirectory(const std::string& path) : old_(std::filesystem::current_path()) {
    std::filesystem::current_path(path);
  }
  ~ScopedCurrentDirectory() { std::filesystem::current_path(old_); }

 private:
  std::filesystem::path old_;
};

constexpr int kGif = 3, kPcx = 2;

TEST(KeyTable, NamesInFileOrderAndSpotChecks) {
  std::istringstream names(R"(UntagAfterView PauseAfterFunction CreateGif89
    CreateMacbinaryHeader WarnViewRGB CreateIffPBM CreateIffCompressed CreateExeCompressed
    CreateTifColour CreateTifGreyExpand DitherView DitherExtraColours DitherPrintedHalftones
    ExpandPrintedHalftones CreateTarga16 StartThumbMode AutoCreateThumbnail MaximizeOnStartup
    PromptForGifComments PromptBeforeQuit DitherOnJpegRead ReadJpegRgb QuitAfterAssoc
    AllowDirectoryExtensions WriteOS2Bitmaps PromptForDestination CheckForPhotoCD PrintFileNames
    PromptforDestName FilenameUnderbars PromptBeforeOverwrite ViewInZoomMode ViewFileComments
    PhotoCDResolution TiffOptions ViewModeBorders JpegCompressionFactor StartupDirectory
    DefaultPrinterName GifCommentPath ThumbnailPath PrintContrast PrintBrightness TiffContrast
    TiffBrightness DitherContrast DitherBrightness MainWindowX MainWindowY MainWindowW MainWindowD
    TiffGamma ViewGamma VirtualMemoryDrive TiffAlternateDetails TiffResolution CreateWindowsExe
    FastVideo DitherThumbnails VectorOptions TextFileLimit ShowAnimationPreview
    IconTransparentColour UseVirtualMemoryAlways CatalogOptions CatalogPortraitWide
    CatalogPortraitDeep CatalogLandscapeWide CatalogLandscapeDeep DitherMode TransformMode
    TextCharacterLevels TextDoubleCharacters TextWriteInfo TextContrast TextBrightness
    RasterizeMetafilesToClip AVIQualityFactor ExternalFilterPath PromptForFilterPrefs
    ShowStartupWindow InvertTextFiles ThumbnailCache CacheCDROM NoThumbnailImage CentreViewImages
    RememberLastDirectory ViewCorruptedFiles ViewModeBackground RelaxedUUE ControlFontName
    PrintOptions WriteGIFInterlaced ReadCDRBitmaps DisplayInfoPalette MultipleImageGIF
    LogoBitmapPath CDRSize ColourButtons AllowMultipleInstances WriteTypeOneJpeg
    ShowHiddenDirectories WriteFileComments ButtonBar TipWait PngCompression PngDetailCrc
    PngAddCompFac LongFileNames CopyOptions TipFontSize CentrePrintedImages)");
  Names expected{std::istream_iterator<std::string>(names), {}};
  ASSERT_EQ(expected.size(), 112u);
  Names actual;
  for (const KeyRow& row : KeyTable()) actual.emplace_back(row.name);
  EXPECT_EQ(actual, expected);

  const Settings defaults;
  struct Spot {
    const char* name;
    uint16_t kind;
    uint32_t control;
    int32_t value;
  } spots[] = {
      // clang-format off
      {"PromptforDestName", 0x0001, 131, 0},   {"JpegCompressionFactor", 0x0080, 204, 75},
      {"PhotoCDResolution", 0x1000, 205, 10},  {"TiffOptions", 0x4000, 207, 2},
      {"VirtualMemoryDrive", 0x2000, 206, 'c'}, {"DitherThumbnails", 0x0040, 210, 2},
      {"VectorOptions", 0x8000, 208, 6},       {"MainWindowD", 0x0004, 0, 65535},
      {"CopyOptions", 0x0001, 0, 5},           {"PngCompression", 0x0080, 211, 6},
      // clang-format on
  };
  for (const Spot& s : spots) {
    const KeyRow* row = FindKey(s.name);
    ASSERT_NE(row, nullptr) << s.name;
    EXPECT_TRUE(row->kind == s.kind && row->control == s.control && row->IsNumber() &&
                !row->IsText() && defaults.*row->number == s.value)
        << s.name;
  }
  EXPECT_EQ(FindKey("PromptForDestName"), nullptr);
  EXPECT_EQ(FindKey("StartupDirectory")->kind, 0x0302);
  const KeyRow* font = FindKey("ControlFontName");
  EXPECT_TRUE(font->kind == 0x0030 && font->control == 209 && font->IsText());
  EXPECT_EQ(defaults.ControlFontName, "Arial");
  EXPECT_EQ(defaults.TextCharacterLevels, std::string("\xFF") + ".:-+|=%o#&XOB@");
  // The lists the Setup dialog shows, at each default index.
  EXPECT_EQ(PhotoCdReadOptions().size(), 21u);
  EXPECT_EQ(PhotoCdReadOptions()[10], "256 Colours (512 x 768)");
  EXPECT_EQ(TiffWriteOptions()[2], "PBits - PBits - None");
  EXPECT_EQ(VectorReadOptions()[6], "(640 x 480) 16 colours");
  EXPECT_EQ(ThumbnailWriteModes()[2], "Error diffused");
}

TEST(IniReader, KeysMatchAsCaseSensitivePrefixes) {
  const Settings defaults;
  EXPECT_EQ(Differences(After({"Dither = 1"}), defaults), Names{"DitherView"});
  EXPECT_EQ(Differences(After({"untagafterview = 1"}), defaults), Names{});
  EXPECT_EQ(Differences(After({"Create = 0"}), defaults), Names{"CreateGif89"});
  // A key longer than a name never matches it.
  EXPECT_EQ(Differences(After({"DitherViewX = 1"}), defaults), Names{});
  // A key that begins with an extension is still a key.
  EXPECT_EQ(Differences(After({"CDRSize = 5"}), defaults), Names{"CDRSize"});
  for (std::string_view ignored : {";DitherView = 1", "FileMenuPath = /x", "[Pixmill]"})
    EXPECT_EQ(Differences(After({ignored}), defaults), Names{}) << ignored;

  // Format switches: the first extension with the key as its prefix, cut to 16 bits. The key
  // table is then searched with the value text, which finds nothing.
  Settings s = After({"GIF = 0"});
  EXPECT_EQ(Differences(s, defaults), Names{"GIF"});
  for (auto [line, value] :
       {std::pair{"GIF = 65537", 1u}, {"GIF=65536", 0u}, {"GIF = -1", 65535u}}) {
    ApplyConfigurationLine(line, s);
    EXPECT_EQ(s.formatEnabled[kGif], value) << line;
  }
  s = After({"P = 9"});
  EXPECT_EQ(Differences(s, defaults), Names{"PCX"});
  EXPECT_EQ(s.formatEnabled[kPcx], 9u);
}

TEST(IniReader, BlankLinesNumbersAndTexts) {
  // An empty key sets the first format switch (MAC) and the first key alike.
  Settings s = After({"UntagAfterView = 1", ""});
  EXPECT_TRUE(s.UntagAfterView == 0 && s.formatEnabled[0] == 0);
  s = After({"   = 7"});
  EXPECT_TRUE(s.UntagAfterView == 7 && s.formatEnabled[0] == 7);
  EXPECT_EQ(After({"=3"}).UntagAfterView, 3);

  struct NumberCase {
    const char* line;
    int32_t value;
  } numbers[] = {
      {"PrintContrast = 4294967276", -20}, {"PrintContrast = -20", -20},
      {"PrintContrast = 12abc", 12},       {"PrintContrast = abc", 0},
      {"PrintContrast = +5", 5},           {"PrintContrast = 4294967296", 0},
      {"PrintContrast ==  42", 42},        {"PrintContrast = 150\t; tab ends the line", 150},
      {"PrintContrast = \t7", 0},
  };
  for (const NumberCase& c : numbers) EXPECT_EQ(After({c.line}).PrintContrast, c.value) << c.line;

  std::string long200;
  for (int i = 0; i < 200; ++i) long200 += static_cast<char>('a' + i % 26);
  EXPECT_EQ(After({"ThumbnailPath = " + long200}).ThumbnailPath, long200.substr(0, 144));
  EXPECT_EQ(After({"ThumbnailPath = /my pics\tjunk"}).ThumbnailPath, "/my pics");
  EXPECT_EQ(After({"ControlFontName ="}).ControlFontName, "");
  EXPECT_EQ(After({"TextCharacterLevels = \xFF.:x"}).TextCharacterLevels, "\xFF.:x");
}

TEST(IniReader, FileLinesAreReadInPiecesOf127) {
  TempDir dir;
  const std::string a111(111, 'a'), b110(110, 'b');
  // "ThumbnailPath = " is 16 characters and "GifCommentPath = " 17: both lines below are 127
  // characters before what follows them.
  test::WriteFileBytes(dir / "PXM.INI",
                       ";comment\n"
                       "UntagAfterView = 1\n"
                       "ThumbnailPath = " +
                           a111 + "\n" + "GifCommentPath = " + b110 +
                           "GIF = 0\n"
                           "[Pixmill]\r\n"
                           "DitherView = 1\r\n"
                           "TipWait = 99");
  Settings s;
  ReadConfiguration(dir / "PXM.INI", s);
  EXPECT_EQ(s.ThumbnailPath, a111);
  EXPECT_EQ(s.GifCommentPath, b110);
  EXPECT_TRUE(s.DitherView == 1 && s.TipWait == 99 && s.formatEnabled[kGif] == 0);
  // The whole 127-character line made no blank continuation line: MAC and UntagAfterView hold.
  EXPECT_EQ(Differences(s, Settings{}), (Names{"UntagAfterView", "DitherView", "GifCommentPath",
                                               "ThumbnailPath", "TipWait", "GIF"}));

  Settings untouched;
  ReadConfiguration(dir / "missing.ini", untouched);
  EXPECT_EQ(Differences(untouched, Settings{}), Names{});
}

TEST(IniWriter, WritesHeaderKeysSwitchesAndRecentDirectories) {
  TempDir dir;
  std::string cwd = std::filesystem::canonical(dir.path()).string();
  ScopedCurrentDirectory here(cwd);
  Settings s;
  s.PrintContrast = -20;
  s.formatEnabled[kGif] = 0;
  s.StartupDirectory = "/old/";
  RecentDirectories recent;
  recent.Add("/pics/a");
  recent.Add("/pics/b");
  // The configuration directory is made on first write.
  const std::string path = dir / "config/pixmill/PXM.INI";
  ASSERT_TRUE(WriteConfiguration(path, s, recent));
  EXPECT_EQ(s.StartupDirectory, cwd + "/");

  std::string text = test::ReadFileBytes(path);
  ASSERT_TRUE(text.back() == '\n' && text.find('\r') == std::string::npos);
  Names lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  ASSERT_EQ(lines.size(), 5u + 112u + 42u + 2u);
  EXPECT_EQ(lines[0], ";Pixmill configuration file");
  EXPECT_EQ(lines[1], ";PXM/Windows 0.00");
  EXPECT_TRUE(
      std::regex_match(lines[2], std::regex(";Last updated [A-Z][a-z]{2} [A-Z][a-z]{2} [ 1-3][0-9] "
                                            "[0-2][0-9]:[0-5][0-9]:[0-6][0-9] [0-9]{4}")))
      << lines[2];
  EXPECT_EQ(lines[3], ";");
  EXPECT_EQ(lines[4], "[Pixmill]");

  for (size_t i = 0; i < 112; ++i)
    EXPECT_EQ(lines[5 + i].rfind(std::string(KeyTable()[i].name) + " = ", 0), 0u) << lines[5 + i];
  Names keys(lines.begin() + 5, lines.begin() + 5 + 112);
  auto has = [&](const std::string& line) {
    return std::find(keys.begin(), keys.end(), line) != keys.end();
  };
  for (const char* line :
       {"UntagAfterView = 0", "PromptforDestName = 0", "JpegCompressionFactor = 75",
        "PrintContrast = 4294967276", "MainWindowX = 65535", "VirtualMemoryDrive = 99",
        "DefaultPrinterName = ", "ControlFontName = Arial", "CatalogOptions = 3153",
        "TextCharacterLevels = \xFF.:-+|=%o#&XOB@", "CentrePrintedImages = 1"})
    EXPECT_TRUE(has(line)) << line;
  EXPECT_TRUE(has("StartupDirectory = " + cwd + "/"));

  EXPECT_EQ(lines[117], "MAC = 1");
  EXPECT_EQ(lines[117 + kGif], "GIF = 0");
  EXPECT_EQ(lines[157], "FTS = 1");
  EXPECT_EQ(lines[158], " = 0");
  EXPECT_EQ(lines[159], "FileMenuPath = /pics/a");
  EXPECT_EQ(lines[160], "FileMenuPath = /pics/b");
}

TEST(IniWriter, RoundTripKeepsEverythingButTheSpareLineQuirk) {
  TempDir dir;
  Settings s;
  s.RememberLastDirectory = 0;
  s.UntagAfterView = 1;
  s.PrintContrast = -20;
  s.DitherBrightness = -2147483647 - 1;
  s.TiffResolution = 2147483647;
  s.VirtualMemoryDrive = 0;
  s.JpegCompressionFactor = 33;
  s.StartupDirectory = "/pics/";
  s.DefaultPrinterName = "Office printer on lpt1";
  s.ControlFontName = "DejaVu Sans";
  s.TextCharacterLevels =
      "\xFF"
      "abc";
  s.formatEnabled[kGif] = 0;
  s.formatEnabled[kPcx] = 2;
  ASSERT_TRUE(WriteConfiguration(dir / "PXM.INI", s, RecentDirectories{}));
  EXPECT_EQ(s.StartupDirectory, "/pics/");  // RememberLastDirectory is off
  Settings back;
  ReadConfiguration(dir / "PXM.INI", back);
  // The writer's " = 0" line comes after every key and switch and reads back as a blank key.
  EXPECT_EQ(Differences(back, s), (Names{"UntagAfterView", "MAC"}));
  EXPECT_TRUE(back.UntagAfterView == 0 && back.formatEnabled[0] == 0);
}

TEST(IniWriter, ReplacesTheFileWholeOrNotAtAll) {
  TempDir dir;
  Settings s;
  s.RememberLastDirectory = 0;
  test::WriteFileBytes(dir / "PXM.INI", "old contents\n");
  ASSERT_TRUE(WriteConfiguration(dir / "PXM.INI", s, RecentDirectories{}));
  EXPECT_EQ(test::ReadFileBytes(dir / "PXM.INI").rfind(";Pixmill configuration file\n", 0), 0u);
  EXPECT_EQ(test::ListDirectory(dir.path()), Names{"PXM.INI"});

  // A directory in the way: nothing is written and no temporary file stays behind.
  TempDir blocked;
  std::filesystem::create_directory(blocked / "PXM.INI");
  test::WriteFileBytes(blocked / "PXM.INI/inside", "x");
  EXPECT_FALSE(WriteConfiguration(blocked / "PXM.INI", s, RecentDirectories{}));
  EXPECT_EQ(test::ListDirectory(blocked.path()), Names{"PXM.INI"});
  EXPECT_EQ(test::ListDirectory(blocked / "PXM.INI"), Names{"inside"});
}

}  // namespace
}  // namespace pxm
