#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velt/platform/Picture.hpp"
#include "velt/platform/Types.hpp"
#include "velt/utilities/IconSize.hpp"

namespace velt {

// Icons from files, from the icon theme and by file type, as 16 x 16 or
// 32 x 32 pictures drawn over MaskColor.
//
// A location is, in this order: an existing regular file (an .ico or .cur,
// a PE executable or library, a PNG or SVG picture; "\" in it read as "/"
// when only that names a file); the system icon library (a file name of
// "shell32.dll", see StockIcons); a name without any separator, looked up in
// the icon theme (IconTheme::Current()). Anything else holds no icon.
//
// Every picture returned is the caller's own: later extractions never change
// it. Decoded icons are kept per file (by device, inode, size and change
// time), index and size, so extracting an icon again costs a lookup.
class IconExtractor {
 public:
  OLE_COLOR MaskColor() const { return maskColor_; }
  void MaskColor(OLE_COLOR value) { maskColor_ = value; }

  // Icons in the location: 1 for an icon file, a picture or a theme name the
  // theme has, the number of icon groups of a PE file, StockIcons::kCount for
  // the system icon library; 0 when it holds none or cannot be read.
  int32_t GetIconCount(const std::string& sIconPath) const;

  // The icon at iIconIndex (from 0; for PE files a negative value is a
  // resource identifier). With no such icon the picture is MaskColor alone.
  std::shared_ptr<Picture> ExtractIcon(const std::string& sIconPath, int16_t iIconIndex,
                                       IconSize iIconSize = LargeIcon) const;

  // The icon the registry names for a file type (HKEY_CLASSES_ROOT\<type>,
  // "Unknown" when it names no class, then <class>\DefaultIcon): "%1" or no
  // value means the generic file icon (index 0 of the system icon library),
  // "%SystemRoot%\" stands for WindowsDirectory(). Error 13 when the icon
  // location has no comma or the text after it is not a number, 6 when the
  // number does not fit an Integer.
  std::shared_ptr<Picture> ExtractIconOfFileType(const std::string& sFileType,
                                                 IconSize iIconSize = LargeIcon) const;

  // Forgets every decoded icon and count (the icon theme keeps its own).
  static void ClearCache();

 private:
  OLE_COLOR maskColor_ = 0;
};

}  // namespace velt
