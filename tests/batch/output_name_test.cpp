#include "batch/output_name.h"

#include <gtest/gtest.h>

#include "config/settings.h"
#include "core/scripted_host.h"
#include "formats/format_table.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

const FormatEntry& Row(const char* ext) { return FormatAt(FindFormatByExtension(ext)); }

TEST(OutputName, DefaultsFollowTheSourceWithTheNewExtensionInLowerCase) {
  ScopedSettings settings;
  ScriptedHost host;
  std::string out;
  EXPECT_EQ(BuildOutputName(host, out, "/pics/photo.PCX", "", Row("GIF")), kNameGoOn);
  EXPECT_EQ(out, "/pics/photo.gif");
  // Only the name changes case: directories on this system are case-sensitive.
  EXPECT_EQ(BuildOutputName(host, out, "/Pics/Holiday/BEACH.bmp", "", Row("PNG")), kNameGoOn);
  EXPECT_EQ(out, "/Pics/Holiday/beach.png");
  EXPECT_EQ(BuildOutputName(host, out, "noext", "", Row("BMP")), kNameGoOn);
  EXPECT_EQ(out, "noext.bmp");
  EXPECT_TRUE(host.questions.empty());
}

TEST(OutputName, DestinationDirectoryCutsNamesToSixCharactersWithUnderbars) {
  ScopedSettings settings;
  ScriptedHost host;
  std::string out;
  EXPECT_EQ(BuildOutputName(host, out, "/a/landscape.pcx", "/out", Row("GIF")), kNameGoOn);
  EXPECT_EQ(out, "/out/landsc.gif");
  EXPECT_EQ(BuildOutputName(host, out, "/a/Landscape.pcx", "/out/", Row("GIF")), kNameGoOn);
  EXPECT_EQ(out, "/out/landsc.gif");
  settings->FilenameUnderbars = 0;
  EXPECT_EQ(BuildOutputName(host, out, "/a/Landscape.pcx", "/Out", Row("GIF")), kNameGoOn);
  EXPECT_EQ(out, "/Out/landscape.gif");
}

TEST(OutputName, ClipboardRowIsNamedClipboard) {
  ScopedSettings settings;
  settings->PromptforDestName = 1;  // no dialog is shown for the clipboard
  ScriptedHost host;
  std::string out;
  EXPECT_EQ(BuildOutputName(host, out, "/a/x.bmp", "/out", Row("CBD")), kNameGoOn);
  EXPECT_EQ(out, "Clipboard");
}

TEST(OutputName, SaveDialogChoosesTheNameAndMayCancel) {
  ScopedSettings settings;
  settings->PromptforDestName = 1;
  ScriptedHost host;
  std::string out;
  host.saveAnswer = "/chosen/Picked.png";
  EXPECT_EQ(BuildOutputName(host, out, "/a/x.bmp", "/ignored", Row("GIF")), kNameGoOn);
  EXPECT_EQ(out, "/chosen/picked.gif");
  host.saveAnswer.reset();
  EXPECT_EQ(BuildOutputName(host, out, "/a/x.bmp", "", Row("GIF")), kNameCancelled);
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
