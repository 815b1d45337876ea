#pragma once

#include <QKeySequence>
#include <array>
#include <span>
#include <string_view>

// The command table: every command of the main menu with its menu, text, button label, whether
// it works on tagged files and where its help is. Menus, button bars and the dispatcher are all
// built from it.
namespace pxm::ui {

enum class MenuId { kNone, kFile, kEdit, kImage, kThumbnail, kHelp };

struct CommandInfo {
  int id;
  MenuId menu;
  std::string_view menuText;    // with its mnemonic ("&Convert"); empty: no menu item
  std::string_view buttonText;  // the text button's label; empty: no text button
  bool needsTags;               // reports "No files are selected" when nothing is tagged
  std::string_view helpTopic;   // the help page the command's help opens
  QKeySequence::StandardKey key = QKeySequence::UnknownKey;
  bool separatorBefore = false;  // a separator line above the item in its menu
};

// Every command, in the order its menu lists it.
std::span<const CommandInfo> CommandTable();
const CommandInfo* FindCommand(int id);

// The menus, left to right, with their titles.
struct MenuInfo {
  MenuId id;
  std::string_view title;
};
std::span<const MenuInfo> MenuBarTable();

// The text button bar: two rows of nine identifiers.
extern const std::array<std::array<int, 9>, 2> kTextButtonRows;
// The graphic button bar, left to right.
extern const std::array<int, 22> kGraphicButtons;

}  // namespace pxm::ui
