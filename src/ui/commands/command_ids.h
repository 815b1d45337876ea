#pragma once

// The command identifiers every menu item and button sends.
namespace pxm::ui {

enum CommandId : int {
  kCmdConvert = 101,
  kCmdTagAll = 102,
  kCmdDither = 103,
  kCmdHelpIndex = 104,
  kCmdClearAll = 105,
  kCmdEffects = 106,
  kCmdRename = 107,
  kCmdGetInfo = 108,
  kCmdDelete = 109,
  kCmdPrint = 110,
  kCmdSetup = 111,
  kCmdCrop = 112,
  kCmdReverse = 113,
  kCmdExit = 114,
  kCmdScale = 115,
  kCmdAbout = 116,
  kCmdTransform = 117,
  kCmdView = 118,
  kCmdCatalog = 119,
  kCmdThumbToggle = 120,
  kCmdChangeDirectory = 121,
  kCmdMoveCopy = 122,
  kCmdFormats = 125,
  kCmdFileList = 201,
  kCmdCopy = 202,
  kCmdPaste = 203,
  kCmdAddThumbnails = 501,
  kCmdRemoveThumbnails = 502,
  kCmdThumbDetails = 503,
  kCmdThumbSearch = 504,
  kCmdUseThumbnails = 506,
  kCmdUsingHelp = 601,
  kCmdRecentFirst = 1000,  // recent directories: 1000 + their place in the File menu
};

// The graphic buttons' identifiers: 761 ... 782; each acts as the command 660 below it.
constexpr int kGraphicFirst = 761;
constexpr int kGraphicLast = 782;
constexpr int kGraphicOffset = 660;

// Button identifiers of the dialogs: the picture set and its plain twins.
enum DialogButtonId : int {
  kBtnOk = 1,
  kBtnCancel = 2,
  kBtnYes = 6,
  kBtnNo = 7,
  kBtnHelp = 9,
  kBtnPlainOk = 851,
  kBtnPlainCancel = 852,
  kBtnPlainYes = 856,
  kBtnPlainNo = 857,
  kBtnPlainHelp = 899,
};

}  // namespace pxm::ui
