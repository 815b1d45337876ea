#include "dialogs/setup_state.h"

#include "config/key_table.h"

namespace pxm::ui {
namespace {

constexpr uint32_t kGraphicButtonBar = 105;
constexpr uint32_t kLongFileNames = 122;
constexpr uint32_t kShowHiddenDirectories = 140;
constexpr size_t kMaxFaceLength = 32;

const KeyRow* RowOfControl(uint32_t control) {
  for (const KeyRow& row : KeyTable())
    if (row.control == control) return &row;
  return nullptr;
}

}  // namespace

bool SetupState::ClickFlag(uint32_t control) {
  const KeyRow* row = RowOfControl(control);
  if (!row || !row->number || !(row->kind & kKindFlag)) return false;
  int32_t& value = settings_.*row->number;
  value = value ? 0 : 1;
  if (control == kGraphicButtonBar) result_ |= kSetupBars;
  if (control == kShowHiddenDirectories || control == kLongFileNames) result_ |= kSetupList;
  return value != 0;
}

void SetupState::ChooseFont(const std::string& face) {
  settings_.ControlFontName = face.substr(0, kMaxFaceLength);
  result_ = kSetupBars;
}

void SetupState::Ok(const SetupValues& v) {
  auto index = [](int selected) { return selected < 0 ? 0 : selected; };
  for (const KeyRow& row : KeyTable()) {
    if (row.control == 0 || (row.kind & kKindFlag)) continue;
    if (row.kind & kKindSpin) {
      int value = row.control == 204 ? v.jpegQuality : v.pngCompression;
      settings_.*row.number = value & 0xFFFF;
    } else if (row.kind & kKindPhotoCdList) {
      settings_.*row.number = index(v.photoCd);
    } else if (row.kind & kKindDrive) {
      settings_.*row.number = DriveLetter(v.drive);
    } else if (row.kind & kKindTiffList) {
      settings_.*row.number = index(v.tiff);
    } else if (row.kind & kKindVectorList) {
      settings_.*row.number = index(v.vector);
    } else if (row.kind & kKindThumbnailList) {
      settings_.*row.number = index(v.thumbnailMode);
    } else if ((row.kind & 0x0010) && row.text) {
      std::string face = v.font.substr(0, kMaxFaceLength);
      if (face != settings_.*row.text) {
        settings_.*row.text = face;
        result_ |= kSetupBars;
      }
    }
  }
}

std::string DriveEntry(int32_t letter) {
  if (letter <= 0 || letter > 0x7F) return "None";
  return std::string("[-") + static_cast<char>(letter) + "-]";
}

int32_t DriveLetter(const std::string& entry) {
  if (entry.size() >= 3 && entry.compare(0, 2, "[-") == 0)
    return static_cast<unsigned char>(entry[2]);
  return 0;
}

}  // namespace pxm::ui
