#include "core/strings.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

namespace pxm {
namespace {

struct Entry {
  int id;
  std::string_view text;
};

// The numbered strings, sorted by identifier. Texts are the program's own and stand exactly as
// users have always seen them, including the spelling slips some of them carry.
constexpr Entry kEntries[] = {
    {0, "Ok"},
    {1, "Error opening file"},
    {2, "Corrupted file"},
    {3, "Error reading file"},
    {4, "Function cancelled"},
    {5, "Unsupported function"},
    {6, "Memory error"},
    {7, "Information error"},
    {8, "Unsupported format"},
    {9, "Error renaming file"},
    {10, "Error creating file"},
    {11, "Error writing file"},
    {12, "Too many colours"},
    {13, "Unsuitable image"},
    {14, "Resource error"},
    {15, "Printer error"},
    {16, "Not available for VMS"},
    {17, "Unable to install DIB.DRV"},
    {18, "No readable metafile"},
    {19, "Unsuitable VFW version"},
    {20, "No bitmap in this file."},
    {21, "MPEG error"},
    {22, "Disabled feature"},
    {23, "WIN32 not available."},
    {24, "Error verifying files."},
    {101, "Remove all the selected thumbnails?"},
    {102, "Do you want to exit Pixmill?"},
    {103, "Delete all %u selected files?"},
    {122, "Expanding %s"},
    {123, "Remapping %s"},
    {124, "Thresholding %s"},
    {125, "Dithering %s"},
    {126, "Creating spill file"},
    {127, "Quantizing %s"},
    {128, "Reducing %s"},
    {129, "Sharpening %s"},
    {130, "Softening %s"},
    {131, "Smudging %s"},
    {132, "Posterizing %s"},
    {135, "Reading %s"},
    {136, "Writing %s"},
    {137, "Printing %s"},
    {138, "Scaling %s"},
    {139, "Reversing %s"},
    {141, "No files are selected"},
    {150, "-------------------------------------------------"},
    {153, "Clipboard"},
    {155, "Do you wish to view a partial image?"},
    {156, "Pixmill"},
    {157, "[ Default ]"},
    {160, "That drive is off line. Please check to see that there's a disk in it."},
    {164, "Delete the selected file?"},
    {171, "One file tagged"},
    {172, "%u files tagged"},
    {173, "No files tagged"},
    {174, "No interlace"},
    {175, "Adam 7 interace"},
    {176,
     "No END marker was found in the UUE file being read. Double click on the next file in the "
     "sequence to continue. Click on Ok if the entire file has been read or on Cancel to abort."},
    // The creation notice stamped into GIF and PNG comments; lines end in carriage returns and
    // "*.**" is replaced by the version when the notice is used.
    {1000,
     "This image file was created by Pixmill for Windows version *.**\r"
     "Pixmill is written and looked after by the Pixmill developers.\r"
     "Pixmill only converts and stores pictures: the image in this file may have been made by "
     "someone other than the Pixmill developers, who answer for the program and not for it.\r"
     "Made with Pixmill."},
    // The IFF chunk report: a line per chunk, the form type, the bitmap header's fields, the
    // colour map and text chunks.
    {1100, "%s chunk, %u bytes"},
    {1101, "Form type %s"},
    {1102, "Width %u"},
    {1103, "Height %u"},
    {1104, "X origin %d"},
    {1105, "Y origin %d"},
    {1106, "Planes %u"},
    {1107, "Masking %u"},
    {1108, "Compression %u"},
    {1109, "Pad %u"},
    {1110, "Transparent colour %u"},
    {1111, "X aspect %u"},
    {1112, "Y aspect %u"},
    {1113, "Page width %u"},
    {1114, "Page height %u"},
    {1115, "Colour map of %u entries"},
    {1116, "Text: %s"},
    // The graphic buttons' tooltips: entry 940 + the button's identifier.
    {1701, "Converts between file formats."},
    {1702, "Tags all the files in this directory."},
    {1703, "Dithers to black and white."},
    {1704, "Provides help with Pixmill."},
    {1705, "Untags all the files in this directory."},
    {1706, "Does colour reduction and other effects."},
    {1707, "Renames files."},
    {1708, "Gets information about images."},
    {1709, "Deletes files."},
    {1710, "Prints images."},
    {1711, "Allows Pixmill's options to be set."},
    {1712, "Crops sections out of images."},
    {1713, "Reverses images to negatives."},
    {1714, "Exits Pixmill."},
    {1715, "Scales images to make them larger or smaller."},
    {1716, "Provides information about Pixmill."},
    {1717, "Rotates and flips images."},
    {1718, "Displays images."},
    {1719, "Creates thumbnail catalogs."},
    {1720, "Toggles between text and thumbnail mode."},
    {1721, "Changes drives and directories."},
    {1722, "Moves and copies files."},
    // TIFF tag names: entry 2000 + tag.
    {2254, "NewSubFile"},
    {2255, "SubfileType"},
    {2256, "ImageWidth"},
    {2257, "ImageLength"},
    {2258, "BitsPerSample"},
    {2259, "Compression"},
    {2262, "PhotometricInterp"},
    {2263, "Threshholding"},
    {2264, "CellWidth"},
    {2265, "CellLength"},
    {2266, "FillOrder"},
    {2269, "DocumentName"},
    {2270, "ImageDescription"},
    {2271, "Make"},
    {2272, "Model"},
    {2273, "StripOffsets"},
    {2274, "Orientation"},
    {2277, "SamplesPerPixel"},
    {2278, "RowsPerStrip"},
    {2279, "StripByteCounts"},
    {2280, "MinSampleValue"},
    {2281, "MaxSampleValue"},
    {2282, "XResolution"},
    {2283, "YResolution"},
    {2284, "PlanarConfig"},
    {2285, "PageName"},
    {2286, "XPosition"},
    {2287, "YPosition"},
    {2288, "FreeOffsets"},
    {2289, "FreeByteCounts"},
    {2290, "GrayRespnsUnit"},
    {2291, "GrayRespnsCurve"},
    {2292, "Group3Options"},
    {2293, "Group4Options"},
    {2296, "ResolutionUnit"},
    {2297, "PageNumber"},
    {2300, "ColorRepnsUnit"},
    {2301, "ColorRspnsCurves"},
    {2305, "Software"},
    {2306, "DateTime"},
    {2315, "Artist"},
    {2316, "HostComputer"},
    {2320, "ColourMap"},
    // The desktop program's own texts: its questions, the end-of-batch result and the window
    // texts that are not labels of a dialog's controls.
    {3001, "%s already exists. Do you want to write over it?"},
    {3002, "No files written"},
    {3003, "One file written"},
    {3004, "%u files written"},
    {3005, "%u of %u files could not be done:"},
    {3006, "Stopped: the files after %s were not done."},
    {3007, "Tag the failed files"},
    {3008, "Version %s"},
    {3009, "An image-file workshop: it converts, views and reworks the pictures of a directory."},
    {3010, "File list"},
    {3011, "Files tagged"},
    {3012, "Status"},
    {3013, "Progress"},
    {3014, "Choose the image to read from %s"},
    {3015, "Comment for %s"},
    {3016, "Choose a directory"},
    {3017, "Save %s as"},
    {3018, "Destination directory"},
};

constexpr bool Sorted() {
  for (size_t i = 1; i < std::size(kEntries); ++i)
    if (kEntries[i - 1].id >= kEntries[i].id) return false;
  return true;
}
static_assert(Sorted(), "string table entries must be sorted by identifier");

const Entry* Find(int id) {
  auto it = std::lower_bound(std::begin(kEntries), std::end(kEntries), id,
                             [](const Entry& e, int key) { return e.id < key; });
  if (it == std::end(kEntries) || it->id != id) return nullptr;
  return &*it;
}

}  // namespace

std::string_view LoadMessage(int id) {
  const Entry* e = Find(id);
  return e ? e->text : kStringTableError;
}

bool HasMessage(int id) { return Find(id) != nullptr; }

std::string FormatText(const char* format, ...) {
  va_list args;
  va_start(args, format);
  va_list copy;
  va_copy(copy, args);
  int n = std::vsnprintf(nullptr, 0, format, copy);
  va_end(copy);
  std::string out;
  if (n > 0) {
    out.resize(static_cast<size_t>(n) + 1);
    std::vsnprintf(out.data(), out.size(), format, args);
    out.resize(static_cast<size_t>(n));
  }
  va_end(args);
  return out;
}

std::string FillText(std::string_view text, std::string_view placeholder, std::string_view value) {
  std::string filled(text);
  if (auto pos = filled.find(placeholder); pos != std::string::npos)
    filled.replace(pos, placeholder.size(), value);
  return filled;
}

std::string MessageWithName(int id, std::string_view name) {
  return FillText(LoadMessage(id), "%s", name);
}

std::string ErrorText(int code) {
  if (code >= 0 && code <= 24) return std::string(LoadMessage(code));
  return "Unknown error";
}

std::string FileErrorLine(std::string_view name, int code) {
  std::string line(name);
  line += " - ";
  line += ErrorText(code);
  return line;
}

}  // namespace pxm
