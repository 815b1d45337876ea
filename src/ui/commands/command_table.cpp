#include "commands/command_table.h"

#include "commands/command_ids.h"

namespace pxm::ui {
namespace {

using K = QKeySequence;
constexpr auto F = MenuId::kFile;
constexpr auto E = MenuId::kEdit;
constexpr auto I = MenuId::kImage;
constexpr auto T = MenuId::kThumbnail;
constexpr auto H = MenuId::kHelp;

// clang-format off
const CommandInfo kCommands[] = {
    // id                    menu  menu text             button      tags   help topic
    {kCmdTagAll,             F, "&Tag all",             "Tag all",   false, "tag-all", K::SelectAll},
    {kCmdClearAll,           F, "C&lear All",           "Clear all", false, "clear-all", K::Deselect},
    {kCmdRename,             F, "&Rename",              "Rename",    true,  "rename"},
    {kCmdDelete,             F, "&Delete",              "Delete",    true,  "delete", K::Delete},
    {kCmdChangeDirectory,    F, "&Change Directory",    "",          false, "change-directory", K::Open, true},
    {kCmdFormats,            F, "&Formats",             "",          false, "formats"},
    {kCmdSetup,              F, "&Setup",               "Setup",     false, "setup", K::Preferences},
    {kCmdExit,               F, "E&xit",                "Quit",      false, "exit", K::Quit, true},
    {kCmdCopy,               E, "&Copy",                "",          true,  "copy", K::Copy},
    {kCmdPaste,              E, "&Paste",               "",          false, "paste", K::Paste},
    {kCmdView,               I, "&View",                "View",      true,  "view"},
    {kCmdConvert,            I, "&Convert",             "Convert",   true,  "convert", K::UnknownKey, true},
    {kCmdDither,             I, "&Dither",              "Dither",    true,  "dither"},
    {kCmdEffects,            I, "&Effects",             "Effects",   true,  "effects"},
    {kCmdScale,              I, "&Scale",               "Scale",     true,  "scale"},
    {kCmdTransform,          I, "&Transform",           "Trnsfrm",   true,  "transform"},
    {kCmdReverse,            I, "&Reverse",             "Reverse",   true,  "reverse"},
    {kCmdCrop,               I, "Cr&op",                "Crop",      true,  "crop"},
    {kCmdGetInfo,            I, "&Get Info",            "Get info",  true,  "get-info", K::UnknownKey, true},
    {kCmdPrint,              I, "&Print",               "Print",     true,  "print", K::Print},
    {kCmdCatalog,            I, "C&atalog",             "",          true,  "catalog"},
    {kCmdMoveCopy,           I, "&Move and copy",       "",          true,  "move-and-copy"},
    {kCmdAddThumbnails,      T, "&Add thumbnails",      "",          true,  "thumbnails"},
    {kCmdRemoveThumbnails,   T, "&Remove thumbnails",   "",          true,  "thumbnails"},
    {kCmdThumbDetails,       T, "&Details",             "",          false, "thumbnails"},
    {kCmdThumbSearch,        T, "&Search",              "",          false, "thumbnails"},
    {kCmdUseThumbnails,      T, "Use &Thumbnails",      "",          false, "thumbnails", K::UnknownKey, true},
    {kCmdHelpIndex,          H, "&Index",               "Help",      false, "index", K::HelpContents},
    {kCmdUsingHelp,          H, "Using &help",          "",          false, "using-help"},
    {kCmdAbout,              H, "&About",               "About",     false, "about", K::UnknownKey, true},
};
// clang-format on

constexpr MenuInfo kMenus[] = {
    {F, "&File"}, {E, "&Edit"}, {I, "&Image"}, {T, "&Thumbnail"}, {H, "&Help"}};

}  // namespace

const std::array<std::array<int, 9>, 2> kTextButtonRows = {{
    {kCmdConvert, kCmdCrop, kCmdDither, kCmdEffects, kCmdGetInfo, kCmdHelpIndex, kCmdPrint,
     kCmdReverse, kCmdScale},
    {kCmdTransform, kCmdView, kCmdClearAll, kCmdTagAll, kCmdRename, kCmdDelete, kCmdSetup,
     kCmdAbout, kCmdExit},
}};

const std::array<int, 22> kGraphicButtons = {761, 772, 763, 766, 768, 770, 773, 775, 777, 778, 779,
                                             762, 765, 769, 767, 771, 776, 764, 774, 780, 781, 782};

std::span<const CommandInfo> CommandTable() {
  return kCommands;
}

const CommandInfo* FindCommand(int id) {
  for (const CommandInfo& command : kCommands)
    if (command.id == id) return &command;
  return nullptr;
}

std::span<const MenuInfo> MenuBarTable() {
  return kMenus;
}

}  // namespace pxm::ui
