#pragma once

#include <optional>
#include <string>

namespace velt {

// The desktop's counterparts of the two system folders the library asks for.
// The library uses them only to find stock resources:
// - the Windows folder is the root that "%SystemRoot%" stands for in icon
//   locations of file types; here that is the shared system data folder
//   "/usr/share", which holds the icon themes, the MIME database and the fonts;
// - the system folder is where the shell's stock icon library ("shell32.dll")
//   lives; here that is the icon-theme folder "/usr/share/icons", inside the
//   Windows folder as the classic system folder is. A caller that wants a stock
//   icon from "<system folder>shell32.dll" gets a path below the icon themes.
// Both answers are raw: callers trim them and add the separator.
class SystemFolders {
 public:
  static std::string WindowsDirectory();
  static std::string SystemDirectory();

  // Replaces the answers (tests, or an application with its own resources);
  // std::nullopt puts the default answer back.
  static void Override(std::optional<std::string> windowsDirectory,
                       std::optional<std::string> systemDirectory);
};

}  // namespace velt
