#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "config/settings.h"

// The Setup dialog's rules without its window: check boxes act at once, the font list replaces
// the result, Ok takes the lists and spins.
namespace pxm::ui {

// The result bits: what the main window refreshes after Setup.
enum SetupResult : int {
  kSetupBars = 1,  // the button bar and the fonts
  kSetupList = 2,  // the file list
};

// What the lists, spins and the font list hold when Ok is pressed, by control identifier.
struct SetupValues {
  int photoCd = -1;        // 205: selected index, -1 for none
  std::string drive;       // 206: the selected text ("None", "[-c-]"), empty for none
  int tiff = -1;           // 207
  int vector = -1;         // 208
  std::string font;        // 209: the selected face
  int thumbnailMode = -1;  // 210
  int jpegQuality = 75;    // 204
  int pngCompression = 6;  // 211
};

class SetupState {
 public:
  explicit SetupState(Settings& settings) : settings_(settings) {}

  // A check box was clicked: its setting flips between 0 and 1 at once, which closing the
  // dialog cannot undo. "Graphic button bar" asks for bit 1, "Show hidden directories" and
  // "Long file names" for bit 2. Answers the new value.
  bool ClickFlag(uint32_t control);

  // A face was chosen in the font list: it is stored at once (at most 32 characters) and the
  // result becomes exactly 1, deliberately dropping a bit 2 set before.
  void ChooseFont(const std::string& face);

  // Ok: takes every list and spin into its setting. A face that differs from the stored one is
  // stored too and adds bit 1.
  void Ok(const SetupValues& values);

  int Result() const { return result_; }
  Settings& settings() { return settings_; }

 private:
  Settings& settings_;
  int result_ = 0;
};

// The label of a Setup control (a check box, list or spin), "" for an unknown identifier.
std::string_view SetupLabel(uint32_t control);

// A spin's range and default, from its control text "minimum,maximum,default".
struct SpinText {
  int minimum = 0;
  int maximum = 0;
  int initial = 0;
};
SpinText ParseSpinText(std::string_view text);
// The control text of spin `control` ("1,100,75" for the JPEG quality), "" for none.
std::string_view SpinTextOf(uint32_t control);

// The text the drive list shows for a stored drive letter: "[-c-]", or "None" for 0.
std::string DriveEntry(int32_t letter);
// The letter a drive list entry stores: the character after "[-", 0 for "None" or nothing.
int32_t DriveLetter(const std::string& entry);

}  // namespace pxm::ui
