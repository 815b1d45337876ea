#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace pxm {

// Number of rows of the format table; each has an on/off switch kept with the settings.
constexpr int kFormatRows = 42;

// The text-file writer's brightness characters, lightest first: byte 0xFF, then ".:-+|=%o#&XOB@".
inline const std::string kDefaultTextCharacterLevels = "\xFF.:-+|=%o#&XOB@";

// Limit of a text setting's value (the terminator made 145 bytes).
constexpr size_t kMaxSettingText = 144;

// Every lasting setting of the program, one member per configuration key, named as the key and
// holding its compiled-in default. Number settings are signed 32-bit.
struct Settings {
  int32_t UntagAfterView = 0;
  int32_t PauseAfterFunction = 0;
  int32_t CreateGif89 = 1;
  int32_t CreateMacbinaryHeader = 1;
  int32_t WarnViewRGB = 0;
  int32_t CreateIffPBM = 0;
  int32_t CreateIffCompressed = 1;
  int32_t CreateExeCompressed = 1;
  int32_t CreateTifColour = 1;
  int32_t CreateTifGreyExpand = 1;
  int32_t DitherView = 0;
  int32_t DitherExtraColours = 1;
  int32_t DitherPrintedHalftones = 0;
  int32_t ExpandPrintedHalftones = 0;
  int32_t CreateTarga16 = 0;
  int32_t StartThumbMode = 1;
  int32_t AutoCreateThumbnail = 0;
  int32_t MaximizeOnStartup = 0;
  int32_t PromptForGifComments = 0;
  int32_t PromptBeforeQuit = 1;
  int32_t DitherOnJpegRead = 1;
  int32_t ReadJpegRgb = 0;
  int32_t QuitAfterAssoc = 0;
  int32_t AllowDirectoryExtensions = 1;
  int32_t WriteOS2Bitmaps = 0;
  int32_t PromptForDestination = 0;
  int32_t CheckForPhotoCD = 1;
  int32_t PrintFileNames = 1;
  int32_t PromptforDestName = 0;
  int32_t FilenameUnderbars = 1;
  int32_t PromptBeforeOverwrite = 0;
  int32_t ViewInZoomMode = 0;
  int32_t ViewFileComments = 0;
  int32_t PhotoCDResolution = 10;
  int32_t TiffOptions = 2;
  int32_t ViewModeBorders = 1;
  int32_t JpegCompressionFactor = 75;
  std::string StartupDirectory = "";
  std::string DefaultPrinterName = "";
  std::string GifCommentPath = "";
  std::string ThumbnailPath = "";
  int32_t PrintContrast = 30;
  int32_t PrintBrightness = 30;
  int32_t TiffContrast = 25;
  int32_t TiffBrightness = 0;
  int32_t DitherContrast = 20;
  int32_t DitherBrightness = 0;
  int32_t MainWindowX = 65535;
  int32_t MainWindowY = 65535;
  int32_t MainWindowW = 65535;
  int32_t MainWindowD = 65535;
  int32_t TiffGamma = 100;
  int32_t ViewGamma = 100;
  int32_t VirtualMemoryDrive = 99;
  int32_t TiffAlternateDetails = 0;
  int32_t TiffResolution = 300;
  int32_t CreateWindowsExe = 0;
  int32_t FastVideo = 1;
  int32_t DitherThumbnails = 2;
  int32_t VectorOptions = 6;
  int32_t TextFileLimit = 0;
  int32_t ShowAnimationPreview = 1;
  int32_t IconTransparentColour = 7;
  int32_t UseVirtualMemoryAlways = 0;
  int32_t CatalogOptions = 3153;
  int32_t CatalogPortraitWide = 96;
  int32_t CatalogPortraitDeep = 128;
  int32_t CatalogLandscapeWide = 128;
  int32_t CatalogLandscapeDeep = 96;
  int32_t DitherMode = 82;
  int32_t TransformMode = 101;
  std::string TextCharacterLevels = kDefaultTextCharacterLevels;
  int32_t TextDoubleCharacters = 1;
  int32_t TextWriteInfo = 0;
  int32_t TextContrast = 20;
  int32_t TextBrightness = 0;
  int32_t RasterizeMetafilesToClip = 0;
  int32_t AVIQualityFactor = 6500;
  std::string ExternalFilterPath = "";
  int32_t PromptForFilterPrefs = 0;
  int32_t ShowStartupWindow = 1;
  int32_t InvertTextFiles = 0;
  int32_t ThumbnailCache = 10;
  int32_t CacheCDROM = 1;
  std::string NoThumbnailImage = "";
  int32_t CentreViewImages = 1;
  int32_t RememberLastDirectory = 1;
  int32_t ViewCorruptedFiles = 1;
  int32_t ViewModeBackground = 0;
  int32_t RelaxedUUE = 1;
  std::string ControlFontName = "Arial";
  int32_t PrintOptions = 200;
  int32_t WriteGIFInterlaced = 0;
  int32_t ReadCDRBitmaps = 1;
  int32_t DisplayInfoPalette = 1;
  int32_t MultipleImageGIF = 0;
  std::string LogoBitmapPath = "";
  int32_t CDRSize = 2;
  int32_t ColourButtons = 0;
  int32_t AllowMultipleInstances = 0;
  int32_t WriteTypeOneJpeg = 1;
  int32_t ShowHiddenDirectories = 1;
  int32_t WriteFileComments = 1;
  int32_t ButtonBar = 1;
  int32_t TipWait = 250;
  int32_t PngCompression = 6;
  int32_t PngDetailCrc = 0;
  int32_t PngAddCompFac = 1;
  int32_t LongFileNames = 1;
  int32_t CopyOptions = 5;
  int32_t TipFontSize = 8;
  int32_t CentrePrintedImages = 1;

  // The on/off word of each format-table row, stored under the row's extension. Only the low 16
  // bits of a stored value are kept. The spare last row starts switched off.
  std::array<uint32_t, kFormatRows> formatEnabled = [] {
    std::array<uint32_t, kFormatRows> on{};
    on.fill(1);
    on[kFormatRows - 1] = 0;
    return on;
  }();
};

// The settings in force on this thread: the running operation's own copy while one runs here,
// otherwise the process-wide settings. The one place engine code reaches them.
Settings& CurrentSettings();

// The process-wide settings: what PXM.INI, `--set` and the dialogs change. An operation never
// reads them while it runs; it runs on the copy it took when it started.
Settings& ProcessSettings();

// One operation's own copy of the settings, in force on this thread for the object's lifetime.
// A dialog that changes a setting while the operation runs changes the next file, never the one
// in hand; operations on several threads share nothing mutable. Scopes nest: the inner copy is
// taken from whatever is in force when it starts.
class OperationSettings {
 public:
  OperationSettings() : OperationSettings(CurrentSettings()) {}
  explicit OperationSettings(const Settings& from);
  ~OperationSettings();
  OperationSettings(const OperationSettings&) = delete;
  OperationSettings& operator=(const OperationSettings&) = delete;
  Settings& operator*() { return copy_; }
  Settings* operator->() { return &copy_; }

 private:
  Settings copy_;
  Settings* previous_;
};

// For tests: puts the compiled-in defaults in force as the process-wide settings for the
// object's lifetime and restores what was there before when it ends.
class ScopedSettings {
 public:
  ScopedSettings();
  ~ScopedSettings();
  ScopedSettings(const ScopedSettings&) = delete;
  ScopedSettings& operator=(const ScopedSettings&) = delete;
  Settings& operator*() { return ProcessSettings(); }
  Settings* operator->() { return &ProcessSettings(); }

 private:
  Settings saved_;
};

}  // namespace pxm
