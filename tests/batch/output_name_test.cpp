#include "batch/output_name.h"

#include <gtest/gtest.h>

#include <optional>

#include "config/settings.h"
#include "core/scripted_host.h"
#include "formats/format_table.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

const FormatEntry& Row(const char* ext) { return FormatAt(FindFormatByExtension(ext)); }

TEST(OutputName, FromTheSourceTheDestinationDirectoryOrTheSaveDialog) {
  struct Case {
    const char *source, *directory, *ext;
    int underbars, prompt;
    std::optional<std::string> saveAnswer;
    int code;
    const char* out;
  };
  const Case cases[] = {
      // The source's name with the new extension; only the name changes case (directories here
      // are case-sensitive).
      {"/pics/photo.PCX", "", "GIF", 1, 0, {}, kNameGoOn, "/pics/photo.gif"},
      {"/Pics/Holiday/BEACH.bmp", "", "PNG", 1, 0, {}, kNameGoOn, "/Pics/Holiday/beach.png"},
      {"noext", "", "BMP", 1, 0, {}, kNameGoOn, "noext.bmp"},
      // A destination directory cuts names to six characters, unless FilenameUnderbars is off.
      {"/a/landscape.pcx", "/out", "GIF", 1, 0, {}, kNameGoOn, "/out/landsc.gif"},
      {"/a/Landscape.pcx", "/out/", "GIF", 1, 0, {}, kNameGoOn, "/out/landsc.gif"},
      {"/a/Landscape.pcx", "/Out", "GIF", 0, 0, {}, kNameGoOn, "/Out/landscape.gif"},
      // The clipboard is named so, and asks no dialog.
      {"/a/x.bmp", "/out", "CBD", 1, 1, {}, kNameGoOn, "Clipboard"},
      // The save dialog's name, in lower case with the row's extension; or its Cancel.
      {"/a/x.bmp", "/ignored", "GIF", 1, 1, "/chosen/Picked.png", kNameGoOn, "/chosen/picked.gif"},
      {"/a/x.bmp", "", "GIF", 1, 1, {}, kNameCancelled, nullptr},
  };
  for (const Case& c : cases) {
    ScopedSettings settings;
    settings->FilenameUnderbars = c.underbars;
    settings->PromptforDestName = c.prompt;
    ScriptedHost host;
    host.saveAnswer = c.saveAnswer;
    std::string out;
    EXPECT_EQ(BuildOutputName(host, out, c.source, c.directory, Row(c.ext)), c.code) << c.source;
    if (c.out) {
      EXPECT_EQ(out, c.out) << c.source;
    }
    EXPECT_TRUE(host.questions.empty());
  }
}

TEST(OutputName, OverwriteQuestionOnlyForExistingFiles) {
  ScopedSettings settings;
  settings->PromptBeforeOverwrite = 1;
  test::TempDir dir;
  test::WriteFileBytes(dir / "there.gif", "x");
  ScriptedHost host;
  std::string out;
  EXPECT_EQ(BuildOutputName(host, out, dir / "absent.bmp", "", Row("GIF")), kNameGoOn);
  EXPECT_TRUE(host.questions.empty());
  EXPECT_EQ(BuildOutputName(host, out, dir / "there.bmp", "", Row("GIF")), kNameCancelled);
  ASSERT_EQ(host.questions.size(), 1u);
  host.overwriteAnswer = true;
  EXPECT_EQ(BuildOutputName(host, out, dir / "there.bmp", "", Row("GIF")), kNameGoOn);
  settings->PromptBeforeOverwrite = 0;
  host.overwriteAnswer = false;
  EXPECT_EQ(BuildOutputName(host, out, dir / "there.bmp", "", Row("GIF")), kNameGoOn);
  EXPECT_EQ(host.questions.size(), 2u);
}

}  // namespace
}  // namespace pxm
