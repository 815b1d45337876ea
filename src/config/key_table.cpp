#include "config/key_table.h"

#include <array>

namespace pxm {
namespace {

constexpr KeyRow Number(std::string_view name, int32_t Settings::*member, uint16_t kind,
                        uint32_t control) {
  return KeyRow{name, member, nullptr, kind, control};
}

constexpr KeyRow Text(std::string_view name, std::string Settings::*member, uint16_t kind,
                      uint32_t control) {
  return KeyRow{name, nullptr, member, kind, control};
}

// The order is the file's order and is part of its format.
const KeyRow kKeys[] = {
    Number("UntagAfterView", &Settings::UntagAfterView, kKindFlag, 0),
    Number("PauseAfterFunction", &Settings::PauseAfterFunction, kKindFlag, 102),
    Number("CreateGif89", &Settings::CreateGif89, kKindFlag, 103),
    Number("CreateMacbinaryHeader", &Settings::CreateMacbinaryHeader, kKindFlag, 104),
    Number("WarnViewRGB", &Settings::WarnViewRGB, kKindFlag, 0),
    Number("CreateIffPBM", &Settings::CreateIffPBM, kKindFlag, 106),
    Number("CreateIffCompressed", &Settings::CreateIffCompressed, kKindFlag, 107),
    Number("CreateExeCompressed", &Settings::CreateExeCompressed, kKindFlag, 108),
    Number("CreateTifColour", &Settings::CreateTifColour, kKindFlag, 110),
    Number("CreateTifGreyExpand", &Settings::CreateTifGreyExpand, kKindFlag, 111),
    Number("DitherView", &Settings::DitherView, kKindFlag, 0),
    Number("DitherExtraColours", &Settings::DitherExtraColours, kKindFlag, 0),
    Number("DitherPrintedHalftones", &Settings::DitherPrintedHalftones, kKindFlag, 0),
    Number("ExpandPrintedHalftones", &Settings::ExpandPrintedHalftones, kKindFlag, 0),
    Number("CreateTarga16", &Settings::CreateTarga16, kKindFlag, 116),
    Number("StartThumbMode", &Settings::StartThumbMode, kKindFlag, 117),
    Number("AutoCreateThumbnail", &Settings::AutoCreateThumbnail, kKindFlag, 118),
    Number("MaximizeOnStartup", &Settings::MaximizeOnStartup, kKindFlag, 0),
    Number("PromptForGifComments", &Settings::PromptForGifComments, kKindFlag, 120),
    Number("PromptBeforeQuit", &Settings::PromptBeforeQuit, kKindFlag, 121),
    Number("DitherOnJpegRead", &Settings::DitherOnJpegRead, kKindFlag, 0),
    Number("ReadJpegRgb", &Settings::ReadJpegRgb, kKindFlag, 123),
    Number("QuitAfterAssoc", &Settings::QuitAfterAssoc, kKindFlag, 124),
    Number("AllowDirectoryExtensions", &Settings::AllowDirectoryExtensions, kKindFlag, 0),
    Number("WriteOS2Bitmaps", &Settings::WriteOS2Bitmaps, kKindFlag, 126),
    Number("PromptForDestination", &Settings::PromptForDestination, kKindFlag, 127),
    Number("CheckForPhotoCD", &Settings::CheckForPhotoCD, kKindFlag, 128),
    Number("PrintFileNames", &Settings::PrintFileNames, kKindFlag, 0),
    Number("PromptforDestName", &Settings::PromptforDestName, kKindFlag, 131),
    Number("FilenameUnderbars", &Settings::FilenameUnderbars, kKindFlag, 132),
    Number("PromptBeforeOverwrite", &Settings::PromptBeforeOverwrite, kKindFlag, 133),
    Number("ViewInZoomMode", &Settings::ViewInZoomMode, kKindFlag, 134),
    Number("ViewFileComments", &Settings::ViewFileComments, kKindFlag, 135),
    Number("PhotoCDResolution", &Settings::PhotoCDResolution, kKindPhotoCdList, 205),
    Number("TiffOptions", &Settings::TiffOptions, kKindTiffList, 207),
    Number("ViewModeBorders", &Settings::ViewModeBorders, kKindFlag, 109),
    Number("JpegCompressionFactor", &Settings::JpegCompressionFactor, kKindSpin, 204),
    Text("StartupDirectory", &Settings::StartupDirectory, kKindDirectory, 0),
    Text("DefaultPrinterName", &Settings::DefaultPrinterName, kKindText, 0),
    Text("GifCommentPath", &Settings::GifCommentPath, kKindText, 0),
    Text("ThumbnailPath", &Settings::ThumbnailPath, kKindText, 0),
    Number("PrintContrast", &Settings::PrintContrast, kKindNumber, 0),
    Number("PrintBrightness", &Settings::PrintBrightness, kKindNumber, 0),
    Number("TiffContrast", &Settings::TiffContrast, kKindNumber, 0),
    Number("TiffBrightness", &Settings::TiffBrightness, kKindNumber, 0),
    Number("DitherContrast", &Settings::DitherContrast, kKindNumber, 0),
    Number("DitherBrightness", &Settings::DitherBrightness, kKindNumber, 0),
    Number("MainWindowX", &Settings::MainWindowX, kKindNumber, 0),
    Number("MainWindowY", &Settings::MainWindowY, kKindNumber, 0),
    Number("MainWindowW", &Settings::MainWindowW, kKindNumber, 0),
    Number("MainWindowD", &Settings::MainWindowD, kKindNumber, 0),
    Number("TiffGamma", &Settings::TiffGamma, kKindNumber, 0),
    Number("ViewGamma", &Settings::ViewGamma, kKindNumber, 0),
    Number("VirtualMemoryDrive", &Settings::VirtualMemoryDrive, kKindDrive, 206),
    Number("TiffAlternateDetails", &Settings::TiffAlternateDetails, kKindFlag, 0),
    Number("TiffResolution", &Settings::TiffResolution, kKindNumber, 0),
    Number("CreateWindowsExe", &Settings::CreateWindowsExe, kKindFlag, 130),
    Number("FastVideo", &Settings::FastVideo, kKindFlag, 0),
    Number("DitherThumbnails", &Settings::DitherThumbnails, kKindThumbnailList, 210),
    Number("VectorOptions", &Settings::VectorOptions, kKindVectorList, 208),
    Number("TextFileLimit", &Settings::TextFileLimit, kKindFlag, 0),
    Number("ShowAnimationPreview", &Settings::ShowAnimationPreview, kKindFlag, 0),
    Number("IconTransparentColour", &Settings::IconTransparentColour, kKindNumber, 0),
    Number("UseVirtualMemoryAlways", &Settings::UseVirtualMemoryAlways, kKindFlag, 0),
    Number("CatalogOptions", &Settings::CatalogOptions, kKindNumber, 0),
    Number("CatalogPortraitWide", &Settings::CatalogPortraitWide, kKindNumber, 0),
    Number("CatalogPortraitDeep", &Settings::CatalogPortraitDeep, kKindNumber, 0),
    Number("CatalogLandscapeWide", &Settings::CatalogLandscapeWide, kKindNumber, 0),
    Number("CatalogLandscapeDeep", &Settings::CatalogLandscapeDeep, kKindNumber, 0),
    Number("DitherMode", &Settings::DitherMode, kKindNumber, 0),
    Number("TransformMode", &Settings::TransformMode, kKindNumber, 0),
    Text("TextCharacterLevels", &Settings::TextCharacterLevels, kKindText, 0),
    Number("TextDoubleCharacters", &Settings::TextDoubleCharacters, kKindFlag, 0),
    Number("TextWriteInfo", &Settings::TextWriteInfo, kKindFlag, 0),
    Number("TextContrast", &Settings::TextContrast, kKindNumber, 0),
    Number("TextBrightness", &Settings::TextBrightness, kKindNumber, 0),
    Number("RasterizeMetafilesToClip", &Settings::RasterizeMetafilesToClip, kKindFlag, 0),
    Number("AVIQualityFactor", &Settings::AVIQualityFactor, kKindNumber, 0),
    Text("ExternalFilterPath", &Settings::ExternalFilterPath, kKindText, 0),
    Number("PromptForFilterPrefs", &Settings::PromptForFilterPrefs, kKindFlag, 101),
    Number("ShowStartupWindow", &Settings::ShowStartupWindow, kKindFlag, 125),
    Number("InvertTextFiles", &Settings::InvertTextFiles, kKindFlag, 115),
    Number("ThumbnailCache", &Settings::ThumbnailCache, kKindNumber, 0),
    Number("CacheCDROM", &Settings::CacheCDROM, kKindFlag, 0),
    Text("NoThumbnailImage", &Settings::NoThumbnailImage, kKindText, 0),
    Number("CentreViewImages", &Settings::CentreViewImages, kKindFlag, 112),
    Number("RememberLastDirectory", &Settings::RememberLastDirectory, kKindFlag, 0),
    Number("ViewCorruptedFiles", &Settings::ViewCorruptedFiles, kKindFlag, 0),
    Number("ViewModeBackground", &Settings::ViewModeBackground, kKindNumber, 0),
    Number("RelaxedUUE", &Settings::RelaxedUUE, kKindFlag, 113),
    Text("ControlFontName", &Settings::ControlFontName, kKindFont, 209),
    Number("PrintOptions", &Settings::PrintOptions, kKindNumber, 0),
    Number("WriteGIFInterlaced", &Settings::WriteGIFInterlaced, kKindFlag, 136),
    Number("ReadCDRBitmaps", &Settings::ReadCDRBitmaps, kKindFlag, 137),
    Number("DisplayInfoPalette", &Settings::DisplayInfoPalette, kKindFlag, 0),
    Number("MultipleImageGIF", &Settings::MultipleImageGIF, kKindFlag, 138),
    Text("LogoBitmapPath", &Settings::LogoBitmapPath, kKindText, 0),
    Number("CDRSize", &Settings::CDRSize, kKindNumber, 0),
    Number("ColourButtons", &Settings::ColourButtons, kKindFlag, 139),
    Number("AllowMultipleInstances", &Settings::AllowMultipleInstances, kKindFlag, 0),
    Number("WriteTypeOneJpeg", &Settings::WriteTypeOneJpeg, kKindFlag, 0),
    Number("ShowHiddenDirectories", &Settings::ShowHiddenDirectories, kKindFlag, 140),
    Number("WriteFileComments", &Settings::WriteFileComments, kKindFlag, 114),
    Number("ButtonBar", &Settings::ButtonBar, kKindFlag, 105),
    Number("TipWait", &Settings::TipWait, kKindNumber, 0),
    Number("PngCompression", &Settings::PngCompression, kKindSpin, 211),
    Number("PngDetailCrc", &Settings::PngDetailCrc, kKindFlag, 0),
    Number("PngAddCompFac", &Settings::PngAddCompFac, kKindFlag, 0),
    Number("LongFileNames", &Settings::LongFileNames, kKindFlag, 122),
    Number("CopyOptions", &Settings::CopyOptions, kKindFlag, 0),
    Number("TipFontSize", &Settings::TipFontSize, kKindFlag, 0),
    Number("CentrePrintedImages", &Settings::CentrePrintedImages, kKindFlag, 0),
};

constexpr std::string_view kPhotoCd[] = {
    "RGB (64 x 96)",           "RGB (128 x 192)",           "RGB (256 x 384)",
    "RGB (512 x 768)",         "RGB (1024 x 1536)",         "RGB (2048 x 3072)",
    "RGB (4096 x 6144)",       "256 Colours (64 x 96)",     "256 Colours (128 x 192)",
    "256 Colours (256 x 384)", "256 Colours (512 x 768)",   "256 Colours (1024 x 1536)",
    "256 Colours (2048 x 3072)", "256 Colours (4096 x 6144)", "256 Greys (64 x 96)",
    "256 Greys (128 x 192)",   "256 Greys (256 x 384)",     "256 Greys (512 x 768)",
    "256 Greys (1024 x 1536)", "256 Greys (2048 x 3072)",   "256 Greys (4096 x 6144)",
};

constexpr std::string_view kTiff[] = {
    "None - None - None", "PBits - None - None", "PBits - PBits - None",
    "LZW - LZW - None",   "LZW - LZW - LZW",     "Grp4 - LZW - LZW",
};

constexpr std::string_view kVector[] = {
    "(320 x 200) mono",        "(640 x 480) mono",         "(800 x 600) mono",
    "(1024 x 768) mono",       "(1280 x 1024) mono",       "(320 x 200) 16 colours",
    "(640 x 480) 16 colours",  "(800 x 600) 16 colours",   "(1024 x 768) 16 colours",
    "(1280 x 1024) 16 colours", "(320 x 200) 256 colours", "(640 x 480) 256 colours",
    "(800 x 600) 256 colours", "(1024 x 768) 256 colours", "(1280 x 1024) 256 colours",
};

constexpr std::string_view kThumbnailModes[] = {"Remapped", "Bayer dithered", "Error diffused"};

}  // namespace

std::span<const KeyRow> KeyTable() { return kKeys; }

const KeyRow* FindKey(std::string_view name) {
  for (const KeyRow& row : kKeys)
    if (row.name == name) return &row;
  return nullptr;
}

std::span<const std::string_view> PhotoCdReadOptions() { return kPhotoCd; }
std::span<const std::string_view> TiffWriteOptions() { return kTiff; }
std::span<const std::string_view> VectorReadOptions() { return kVector; }
std::span<const std::string_view> ThumbnailWriteModes() { return kThumbnailModes; }

}  // namespace pxm
