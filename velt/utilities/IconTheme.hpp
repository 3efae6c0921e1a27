#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

namespace velt {

// Icons by name from the desktop's icon theme, as the freedesktop.org icon
// theme rules look them up: the theme the desktop's settings name (else
// Adwaita), then the themes it inherits from, then hicolor; in each theme the
// directory that matches the size, else the one nearest to it; then the
// unthemed pixmaps folders. A name that no theme has is tried again without
// its last "-part" ("text-x-csrc" before "text-x" and "text"), as desktops do.
//
// Each theme's index and folder listings are read once, on its first lookup,
// and every answer is kept, so a repeated lookup reads nothing. Only PNG and
// SVG files count (the library reads no XPM). Theme files are hostile input:
// index files up to 1 MB, at most kMaxDirectories folders per theme and
// kMaxThemes themes in a chain, inheritance cycles ignored.
class IconTheme {
 public:
  static constexpr size_t kMaxThemes = 16;
  static constexpr size_t kMaxDirectories = 4096;

  struct Locations {
    std::vector<std::string> baseDirs;    // folders holding themes, most important first
    std::vector<std::string> pixmapDirs;  // unthemed icons
    std::string themeName;                // "" for the one the desktop's settings name

    // $HOME/.icons, <data home>/icons and <dir>/icons for each XDG data folder;
    // <dir>/pixmaps for each data folder.
    static Locations FromEnvironment();
  };

  explicit IconTheme(Locations locations);

  // The file of the icon nearest `size` pixels; "" when there is none.
  // Without `shortened` only the name itself is looked up.
  std::string Lookup(const std::string& name, int32_t size, bool shortened = true);

  // The chain of theme names searched, in order.
  std::vector<std::string> Chain();

  // The theme the desktop's settings name under configHome/home (GTK 3 and 4
  // settings.ini, ~/.gtkrc-2.0, KDE's kdeglobals), or "" when none does.
  static std::string DesktopThemeName(const std::string& home, const std::string& configHome);

  // The lookup the whole process uses; Use(nullptr) goes back to the
  // desktop's.
  static std::shared_ptr<IconTheme> Current();
  static void Use(std::shared_ptr<IconTheme> theme);

 private:
  enum class SizeType { Fixed, Scalable, Threshold };
  struct Directory {
    std::string name;
    int32_t size = 0;
    int32_t minSize = 0;
    int32_t maxSize = 0;
    int32_t threshold = 2;
    SizeType type = SizeType::Threshold;
  };
  struct Hit {
    size_t directory;
    std::string path;
  };
  struct Theme {
    std::string name;
    std::vector<Directory> directories;
    std::vector<std::string> parents;
    std::unordered_map<std::string, std::vector<Hit>> icons;  // by name, in directory order
  };

  void loadChain();
  bool loadTheme(const std::string& name, Theme& theme) const;
  void indexTheme(Theme& theme) const;
  std::string lookupOnce(const std::string& name, int32_t size) const;
  static bool matches(const Directory& directory, int32_t size);
  static int32_t distance(const Directory& directory, int32_t size);

  Locations locations_;
  std::mutex mutex_;
  bool loaded_ = false;
  std::vector<Theme> chain_;
  std::map<std::tuple<std::string, int32_t, bool>, std::string> answers_;
};

}  // namespace velt
