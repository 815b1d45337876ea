#include "dialogs/setup_state.h"

#include "config/key_table.h"

namespace pxm::ui {
namespace {

constexpr uint32_t kGraphicButtonBar = 105;
constexpr uint32_t kLongFileNames = 122;
constexpr uint32_t kShowHiddenDirectories = 140;
constexpr size_t kMaxFaceLength = 32;

struct Label {
  uint32_t control;
  std::string_view text;
};

// The labels of the controls bound to keys, by control identifier.
constexpr Label kLabels[] = {
    {101, "Prompt for filter options"},
    {102, "Pause after function"},
    {103, "Create GIF 89a files"},
    {104, "Mac files w/ Macbinary hdr"},
    {105, "Graphic button bar"},
    {106, "LBM files w/ PBM packing"},
    {107, "Compress IFF/LBM files"},
    {108, "Compress EXE pictures"},
    {109, "View mode borders"},
    {110, "Create colour TIFF files"},
    {111, "Expand grey TIFF files"},
    {112, "Centre view images"},
    {113, "Relaxed UUE decoding"},
    {114, "Write file comments"},
    {115, "Invert text files"},
    {116, "Create Targa 16 files"},
    {117, "Start in thumbnail mode"},
    {118, "Auto create thumbnails"},
    {120, "Prompt for GIF comments"},
    {121, "Prompt before quitting"},
    {122, "Long file names"},
    {123, "Read JPG files as RGB"},
    {124, "Quit after association"},
    {125, "Show startup logo"},
    {126, "Write OS/2 BMP files"},
    {127, "Prompt for destination"},
    {128, "Check for Photo-CD"},
    {130, "Windows EXE pictures"},
    {131, "Prompt for file name"},
    {132, "Filename underbars"},
    {133, "Prompt before overwrite"},
    {134, "Zoom when viewing"},
    {135, "View file comments"},
    {136, "Write GIF Interlaced"},
    {137, "Read CDR bitmaps"},
    {138, "Multiple Image GIF files"},
    {139, "Colour buttons"},
    {140, "Show hidden directories"},
    {204, "JPG quality:"},
    {205, "Photo-CD read options"},
    {206, "Virtual memory drive"},
    {207, "TIFF write options"},
    {208, "Vector read options"},
    {209, "Font"},
    {210, "Thumbnail write mode"},
    {211, "PNG compression:"},
};

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

std::string_view SetupLabel(uint32_t control) {
  for (const Label& label : kLabels)
    if (label.control == control) return label.text;
  return {};
}

SpinText ParseSpinText(std::string_view text) {
  int values[3] = {0, 0, 0};
  size_t field = 0;
  for (size_t i = 0; i < text.size() && field < 3; ++i) {
    if (text[i] == ',') {
      ++field;
    } else if (text[i] >= '0' && text[i] <= '9') {
      values[field] = values[field] * 10 + (text[i] - '0');
    }
  }
  return {values[0], values[1], values[2]};
}

std::string_view SpinTextOf(uint32_t control) {
  if (control == 204) return "1,100,75";
  if (control == 211) return "1,9,6";
  return {};
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
