#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "velt/platform/MemoryRegistry.hpp"
#include "velt/platform/RegistryView.hpp"

namespace velt {

// The registry keys the library reads, answered from the Linux desktop's own
// sources, read once when the view is made:
//
// - HKEY_CURRENT_USER\<kShellFoldersKey> (REG_SZ) and <kUserShellFoldersKey>
//   (REG_EXPAND_SZ): "Desktop", "Personal", "My Pictures", "My Music",
//   "My Video", "Templates" and the downloads folder's id from the XDG user
//   folders (user-dirs.dirs in the config folder, $HOME substituted, the usual
//   English folder names of the home folder where an entry is missing);
//   "AppData", "Local AppData", "Cache", "Fonts" and "Startup" from the XDG
//   base folders. Paths carry no trailing separator.
// - HKEY_CURRENT_USER\<kDisplayNamesKey>: the shell's display names of the
//   computer and the network ("Computer", "Network"); the same names are the
//   default values of their CLSID keys below HKEY_CLASSES_ROOT.
// - HKEY_CLASSES_ROOT\.ext: the MIME type of the extension from the shared
//   MIME database (default value and "Content Type").
// - HKEY_CLASSES_ROOT\<type>\DefaultIcon: "<icon name>,0", the icon the MIME
//   database names for the type (its "icons" entry, else its generic icon,
//   else "<media>-x-generic"), as an icon-theme name rather than a file.
//   Aliases answer with their type's icon.
//
// The database is looked up in <dataHome>/mime and then in <dir>/mime for each
// data folder, earlier folders overriding later ones as the XDG rules say.
class LinuxRegistry : public RegistryView {
 public:
  static constexpr const char* kShellFoldersKey =
      "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
  static constexpr const char* kUserShellFoldersKey =
      "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";
  static constexpr const char* kDisplayNamesKey =
      "Software\\Microsoft\\Windows\\ShellNoRoam\\MUICache";
  static constexpr const char* kComputerNameValue = "@C:\\WINDOWS\\system32\\SHELL32.dll,-9216";
  static constexpr const char* kNetworkNameValue = "@C:\\WINDOWS\\system32\\SHELL32.dll,-9217";
  static constexpr const char* kComputerClassKey = "CLSID\\{20D04FE0-3AEA-1069-A2D8-08002B30309D}";
  static constexpr const char* kNetworkClassKey = "CLSID\\{208D2C60-3AEA-1069-A2D7-08002B30309D}";

  // Where the view reads from. Empty configHome, dataHome and cacheHome mean
  // the XDG defaults below home; dataDirs is used as given.
  struct Locations {
    std::string home;
    std::string configHome;
    std::string dataHome;
    std::string cacheHome;
    std::vector<std::string> dataDirs;

    // $HOME (or the password database), $XDG_CONFIG_HOME, $XDG_DATA_HOME,
    // $XDG_CACHE_HOME and $XDG_DATA_DIRS (default /usr/local/share:/usr/share).
    static Locations FromEnvironment();
  };

  // Error 5 when home is not an absolute path. Missing or unreadable files are
  // not errors: their keys are simply absent or take the defaults.
  explicit LinuxRegistry(Locations locations);

  const Locations& Where() const { return locations_; }

  int32_t OpenKey(HKEY root, const std::string& subKey, HKEY& result) override;
  int32_t QueryValue(HKEY key, const std::string& valueName, uint32_t& type,
                     std::vector<uint8_t>* data, uint32_t& size) override;
  int32_t CloseKey(HKEY key) override;

  // Handle accounting of the underlying store (see MemoryRegistry).
  int32_t OpenHandleCount() const { return store_.OpenHandleCount(); }

 private:
  void addShellFolders();
  void addDisplayNames();
  void addFileTypes();

  Locations locations_;
  MemoryRegistry store_;
};

}  // namespace velt
