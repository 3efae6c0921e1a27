#include "velt/utilities/IconTheme.hpp"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdlib>
#include <mutex>
#include <set>
#include <sstream>

#include "velt/platform/Error.hpp"
#include "velt/platform/LinuxRegistry.hpp"
#include "velt/platform/RegularFile.hpp"

namespace velt {

namespace {

constexpr uint64_t kMaxIndexBytes = uint64_t{1} << 20;
constexpr size_t kMaxListing = 200000;
constexpr size_t kMaxAnswers = 4096;
constexpr const char* kFallbackTheme = "hicolor";
constexpr const char* kDefaultTheme = "Adwaita";
constexpr const char* kExtensions[] = {".png", ".svg"};

std::string trimmed(const std::string& text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

// An ini file as sections of key=value pairs; missing or odd files are empty.
using IniFile = std::map<std::string, std::map<std::string, std::string>>;

IniFile readIni(const std::string& path) {
  IniFile ini;
  std::istringstream lines;
  try {
    lines.str(RegularFile::ReadText(path, kMaxIndexBytes));
  } catch (const Error&) {
    return ini;
  }
  std::string section;
  for (std::string line; std::getline(lines, line);) {
    line = trimmed(line);
    if (line.empty() || line[0] == '#' || line[0] == ';') continue;
    if (line.front() == '[' && line.back() == ']') {
      section = line.substr(1, line.size() - 2);
      continue;
    }
    const auto equals = line.find('=');
    if (equals == std::string::npos) continue;
    ini[section].emplace(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
  }
  return ini;
}

std::string valueOf(const IniFile& ini, const std::string& section, const std::string& key) {
  const auto found = ini.find(section);
  if (found == ini.end()) return "";
  const auto value = found->second.find(key);
  return value == found->second.end() ? "" : value->second;
}

std::vector<std::string> commaList(const std::string& text) {
  std::vector<std::string> items;
  std::istringstream parts(text);
  for (std::string item; std::getline(parts, item, ',');)
    if (!trimmed(item).empty()) items.push_back(trimmed(item));
  return items;
}

int32_t number(const std::string& text, int32_t fallback) {
  int32_t value = 0;
  const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (problem != std::errc() || end != text.data() + text.size() || value < 0) return fallback;
  return value;
}

// A theme name is one folder name: nothing that climbs or nests.
bool usableName(const std::string& name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

std::vector<std::string> listing(const std::string& folder) {
  std::vector<std::string> names;
  DIR* dir = ::opendir(folder.c_str());
  if (!dir) return names;
  while (const dirent* entry = ::readdir(dir)) {
    if (names.size() >= kMaxListing) break;
    names.emplace_back(entry->d_name);
  }
  ::closedir(dir);
  return names;
}

std::mutex currentMutex;
std::shared_ptr<IconTheme> currentTheme;

}  // namespace

IconTheme::Locations IconTheme::Locations::FromEnvironment() {
  const auto where = LinuxRegistry::Locations::FromEnvironment();
  const std::string base = where.home == "/" ? "" : where.home;
  const std::string dataHome = where.dataHome.empty() ? base + "/.local/share" : where.dataHome;
  Locations locations;
  locations.baseDirs = {base + "/.icons", dataHome + "/icons"};
  for (const std::string& dir : where.dataDirs) {
    locations.baseDirs.push_back(dir + "/icons");
    locations.pixmapDirs.push_back(dir + "/pixmaps");
  }
  return locations;
}

IconTheme::IconTheme(Locations locations) : locations_(std::move(locations)) {}

std::string IconTheme::DesktopThemeName(const std::string& home, const std::string& configHome) {
  for (const char* gtk : {"/gtk-3.0/settings.ini", "/gtk-4.0/settings.ini"})
    if (auto name = valueOf(readIni(configHome + gtk), "Settings", "gtk-icon-theme-name");
        !name.empty())
      return name;
  // ~/.gtkrc-2.0 has no sections; its value may be quoted.
  std::string name = valueOf(readIni(home + "/.gtkrc-2.0"), "", "gtk-icon-theme-name");
  if (name.size() >= 2 && name.front() == '"' && name.back() == '"')
    name = name.substr(1, name.size() - 2);
  if (!name.empty()) return name;
  return valueOf(readIni(configHome + "/kdeglobals"), "Icons", "Theme");
}

bool IconTheme::loadTheme(const std::string& name, Theme& theme) const {
  if (!usableName(name)) return false;
  for (const std::string& base : locations_.baseDirs) {
    const IniFile index = readIni(base + "/" + name + "/index.theme");
    if (index.count("Icon Theme") == 0) continue;
    theme.name = name;
    theme.parents = commaList(valueOf(index, "Icon Theme", "Inherits"));
    for (const std::string& folder : commaList(valueOf(index, "Icon Theme", "Directories"))) {
      if (theme.directories.size() >= kMaxDirectories) break;
      const auto section = index.find(folder);
      if (section == index.end() || folder.find("..") != std::string::npos) continue;
      if (number(valueOf(index, folder, "Scale"), 1) != 1) continue;
      Directory directory;
      directory.name = folder;
      directory.size = number(valueOf(index, folder, "Size"), 0);
      if (directory.size == 0) continue;
      const std::string type = valueOf(index, folder, "Type");
      directory.type = type == "Fixed"      ? SizeType::Fixed
                       : type == "Scalable" ? SizeType::Scalable
                                            : SizeType::Threshold;
      directory.minSize = number(valueOf(index, folder, "MinSize"), directory.size);
      directory.maxSize = number(valueOf(index, folder, "MaxSize"), directory.size);
      directory.threshold = number(valueOf(index, folder, "Threshold"), 2);
      theme.directories.push_back(directory);
    }
    return true;
  }
  return false;
}

// Every folder of the theme in every base folder, listed once.
void IconTheme::indexTheme(Theme& theme) const {
  for (size_t d = 0; d < theme.directories.size(); ++d) {
    for (const std::string& base : locations_.baseDirs) {
      const std::string folder = base + "/" + theme.name + "/" + theme.directories[d].name;
      for (const std::string& file : listing(folder)) {
        for (const char* extension : kExtensions) {
          const size_t length = std::char_traits<char>::length(extension);
          if (file.size() <= length || file.compare(file.size() - length, length, extension) != 0)
            continue;
          auto& hits = theme.icons[file.substr(0, file.size() - length)];
          // One hit per folder: the first base folder wins, PNG before SVG.
          if (!hits.empty() && hits.back().directory == d) continue;
          hits.push_back({d, folder + "/" + file});
        }
      }
    }
  }
  for (auto& [name, hits] : theme.icons)
    std::stable_sort(hits.begin(), hits.end(),
                     [](const Hit& a, const Hit& b) { return a.directory < b.directory; });
}

void IconTheme::loadChain() {
  loaded_ = true;
  std::vector<std::string> pending;
  std::string first = locations_.themeName;
  if (first.empty()) {
    const auto where = LinuxRegistry::Locations::FromEnvironment();
    const std::string base = where.home == "/" ? "" : where.home;
    first = DesktopThemeName(where.home,
                             where.configHome.empty() ? base + "/.config" : where.configHome);
  }
  std::set<std::string> seen;
  // The desktop's theme, or the default one when it names none that exists;
  // depth first: a theme, then its parents in order, before the next one.
  for (const std::string& root : {first, std::string(kDefaultTheme)}) {
    if (!chain_.empty()) break;
    pending = {root};
    while (!pending.empty() && chain_.size() < kMaxThemes) {
      const std::string name = pending.front();
      pending.erase(pending.begin());
      if (name.empty() || name == kFallbackTheme || !seen.insert(name).second) continue;
      Theme theme;
      if (!loadTheme(name, theme)) continue;
      pending.insert(pending.begin(), theme.parents.begin(), theme.parents.end());
      chain_.push_back(std::move(theme));
    }
  }
  Theme fallback;
  if (loadTheme(kFallbackTheme, fallback)) chain_.push_back(std::move(fallback));
  for (Theme& theme : chain_)
    indexTheme(theme);
}

bool IconTheme::matches(const Directory& directory, int32_t size) {
  switch (directory.type) {
    case SizeType::Fixed:
      return directory.size == size;
    case SizeType::Scalable:
      return directory.minSize <= size && size <= directory.maxSize;
    case SizeType::Threshold:
      return directory.size - directory.threshold <= size &&
             size <= directory.size + directory.threshold;
  }
  return false;
}

int32_t IconTheme::distance(const Directory& directory, int32_t size) {
  switch (directory.type) {
    case SizeType::Fixed:
      return std::abs(directory.size - size);
    case SizeType::Scalable:
      if (size < directory.minSize) return directory.minSize - size;
      if (size > directory.maxSize) return size - directory.maxSize;
      return 0;
    case SizeType::Threshold:
      if (size < directory.size - directory.threshold)
        return directory.size - directory.threshold - size;
      if (size > directory.size + directory.threshold)
        return size - directory.size - directory.threshold;
      return 0;
  }
  return INT32_MAX;
}

std::string IconTheme::lookupOnce(const std::string& name, int32_t size) const {
  for (const Theme& theme : chain_) {
    const auto found = theme.icons.find(name);
    if (found == theme.icons.end()) continue;
    const Hit* closest = nullptr;
    int32_t best = INT32_MAX;
    for (const Hit& hit : found->second) {
      const Directory& directory = theme.directories[hit.directory];
      if (matches(directory, size)) return hit.path;
      const int32_t d = distance(directory, size);
      if (d < best) best = d, closest = &hit;
    }
    if (closest) return closest->path;
  }
  for (const std::string& folder : locations_.pixmapDirs)
    for (const char* extension : kExtensions)
      if (const std::string path = folder + "/" + name + extension;
          ::access(path.c_str(), R_OK) == 0)
        return path;
  return "";
}

std::string IconTheme::Lookup(const std::string& name, int32_t size, bool shortened) {
  if (!usableName(name)) return "";
  std::lock_guard lock(mutex_);
  if (!loaded_) loadChain();
  const auto key = std::make_tuple(name, size, shortened);
  if (const auto answer = answers_.find(key); answer != answers_.end()) return answer->second;
  std::string candidate = name, path;
  while (path.empty() && !candidate.empty()) {
    path = lookupOnce(candidate, size);
    const auto dash = candidate.rfind('-');
    candidate = dash == std::string::npos || !shortened ? "" : candidate.substr(0, dash);
  }
  if (answers_.size() >= kMaxAnswers) answers_.clear();
  answers_.emplace(key, path);
  return path;
}

std::vector<std::string> IconTheme::Chain() {
  std::lock_guard lock(mutex_);
  if (!loaded_) loadChain();
  std::vector<std::string> names;
  for (const Theme& theme : chain_)
    names.push_back(theme.name);
  return names;
}

std::shared_ptr<IconTheme> IconTheme::Current() {
  std::lock_guard lock(currentMutex);
  if (!currentTheme) currentTheme = std::make_shared<IconTheme>(Locations::FromEnvironment());
  return currentTheme;
}

void IconTheme::Use(std::shared_ptr<IconTheme> theme) {
  std::lock_guard lock(currentMutex);
  currentTheme = std::move(theme);
}

}  // namespace velt
