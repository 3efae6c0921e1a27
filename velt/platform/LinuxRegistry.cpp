#include "velt/platform/LinuxRegistry.hpp"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <set>
#include <sstream>
#include <utility>

#include "velt/platform/Error.hpp"
#include "velt/platform/RegularFile.hpp"

namespace velt {

namespace {

// The desktop's files: a missing or odd one (a FIFO, a device, a huge file)
// reads as empty, as a missing one always did.
std::vector<std::string> readLines(const std::string& path) {
  constexpr uint64_t kMaxBytes = uint64_t{16} << 20;
  std::vector<std::string> lines;
  std::istringstream file;
  try {
    file.str(RegularFile::ReadText(path, kMaxBytes));
  } catch (const Error&) {
    return lines;
  }
  std::string line;
  while (std::getline(file, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? std::string(value) : std::string();
}

std::string lowerAscii(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

std::string trimmed(const std::string& text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string::npos) return "";
  const auto last = text.find_last_not_of(" \t");
  return text.substr(first, last - first + 1);
}

std::string withoutTrailingSlashes(std::string path) {
  while (path.size() > 1 && path.back() == '/')
    path.pop_back();
  return path;
}

std::vector<std::string> splitAt(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  while (true) {
    const auto end = text.find(separator, start);
    parts.push_back(text.substr(start, end - start));
    if (end == std::string::npos) return parts;
    start = end + 1;
  }
}

bool isCommentOrBlank(const std::string& line) {
  const std::string text = trimmed(line);
  return text.empty() || text.front() == '#';
}

std::string homeFromPasswordDatabase() {
  long bufferSize = sysconf(_SC_GETPW_R_SIZE_MAX);
  std::vector<char> buffer(bufferSize > 0 ? static_cast<std::size_t>(bufferSize) : 16384);
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr &&
      found->pw_dir != nullptr) {
    return found->pw_dir;
  }
  return "";
}

// ---- XDG user folders ----------------------------------------------------

// The quoted right-hand side of a user-dirs.dirs line: shell double quotes
// whose backslash escapes the next character. Unquoted text is taken as is.
std::string unquoteShellValue(const std::string& text) {
  if (text.empty() || text.front() != '"') return text;
  std::string value;
  for (std::size_t i = 1; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') break;
    if (c == '\\' && i + 1 < text.size()) {
      value += text[++i];
    } else {
      value += c;
    }
  }
  return value;
}

// The folder a user-dirs.dirs value names: "$HOME/..." or an absolute path.
// Anything else is not a valid entry and yields "".
std::string resolveUserDir(const std::string& value, const std::string& home) {
  if (value == "$HOME") return home;
  if (value.rfind("$HOME/", 0) == 0) return withoutTrailingSlashes(home + value.substr(5));
  if (!value.empty() && value.front() == '/') return withoutTrailingSlashes(value);
  return "";
}

// XDG_DESKTOP_DIR and friends, by their middle part ("DESKTOP").
std::map<std::string, std::string> readUserDirs(const std::string& path, const std::string& home) {
  std::map<std::string, std::string> dirs;
  for (const std::string& line : readLines(path)) {
    if (isCommentOrBlank(line)) continue;
    const auto equals = line.find('=');
    if (equals == std::string::npos) continue;
    const std::string name = trimmed(line.substr(0, equals));
    if (name.size() <= 8 || name.rfind("XDG_", 0) != 0 ||
        name.compare(name.size() - 4, 4, "_DIR") != 0) {
      continue;
    }
    const std::string folder =
        resolveUserDir(unquoteShellValue(trimmed(line.substr(equals + 1))), home);
    if (!folder.empty()) dirs[name.substr(4, name.size() - 8)] = folder;
  }
  return dirs;
}

struct UserFolder {
  const char* valueName;
  const char* xdgName;
  const char* defaultName;  // below home
};

constexpr UserFolder kUserFolders[] = {
    {"Desktop", "DESKTOP", "Desktop"},
    {"Personal", "DOCUMENTS", "Documents"},
    {"My Pictures", "PICTURES", "Pictures"},
    {"My Music", "MUSIC", "Music"},
    {"My Video", "VIDEOS", "Videos"},
    {"Templates", "TEMPLATES", "Templates"},
    {"{374DE290-123F-4565-9164-39C4925E467B}", "DOWNLOAD", "Downloads"},
};

// ---- shared MIME database ------------------------------------------------

struct GlobChoice {
  int weight = 0;
  bool lowerCaseGlob = false;
  std::string type;
};

// True when the glob is "*.<extension>" with no further wildcard: the only
// globs a lookup by extension can mean.
bool extensionOfGlob(const std::string& glob, std::string& extension) {
  if (glob.size() < 3 || glob[0] != '*' || glob[1] != '.') return false;
  if (glob.find_first_of("*?[\\", 1) != std::string::npos) return false;
  extension = glob.substr(1);
  return true;
}

void considerGlob(std::map<std::string, GlobChoice>& best, int weight, const std::string& type,
                  const std::string& glob) {
  std::string extension;
  if (type.empty() || !extensionOfGlob(glob, extension)) return;
  const std::string key = lowerAscii(extension);
  const bool lowerCaseGlob = key == extension;
  auto found = best.find(key);
  // Highest weight first; between equals a lower-case glob ("*.c" over "*.C")
  // because keys ignore case; then the order of the file.
  if (found != best.end()) {
    const GlobChoice& held = found->second;
    if (held.weight > weight) return;
    if (held.weight == weight && (held.lowerCaseGlob || !lowerCaseGlob)) return;
  }
  best[key] = GlobChoice{weight, lowerCaseGlob, type};
}

std::map<std::string, GlobChoice> readGlobs(const std::string& mimeDir) {
  std::map<std::string, GlobChoice> best;
  std::vector<std::string> lines = readLines(mimeDir + "/globs2");
  if (!lines.empty()) {
    for (const std::string& line : lines) {
      if (isCommentOrBlank(line)) continue;
      const std::vector<std::string> fields = splitAt(line, ':');
      if (fields.size() < 3) continue;
      char* end = nullptr;
      const long weight = std::strtol(fields[0].c_str(), &end, 10);
      if (end == fields[0].c_str() || weight < 0 || weight > 100) continue;
      considerGlob(best, static_cast<int>(weight), fields[1], fields[2]);
    }
    return best;
  }
  // The older format without weights; its globs all weigh the default 50.
  for (const std::string& line : readLines(mimeDir + "/globs")) {
    if (isCommentOrBlank(line)) continue;
    const auto colon = line.find(':');
    if (colon == std::string::npos) continue;
    considerGlob(best, 50, line.substr(0, colon), line.substr(colon + 1));
  }
  return best;
}

// "type:value" lines (icons, generic-icons) or "alias type" lines (aliases).
std::map<std::string, std::string> readPairs(const std::string& path, char separator) {
  std::map<std::string, std::string> pairs;
  for (const std::string& line : readLines(path)) {
    if (isCommentOrBlank(line)) continue;
    const auto at = line.find(separator);
    if (at == std::string::npos) continue;
    const std::string key = trimmed(line.substr(0, at));
    const std::string value = trimmed(line.substr(at + 1));
    if (!key.empty() && !value.empty()) pairs.emplace(key, value);
  }
  return pairs;
}

struct MimeDatabase {
  std::map<std::string, std::string> typeOfExtension;  // ".txt" -> "text/plain"
  std::set<std::string> types;
  std::map<std::string, std::string> ownIcon;      // from "icons"
  std::map<std::string, std::string> genericIcon;  // from "generic-icons"
  std::map<std::string, std::string> aliases;      // alias -> type

  // Adds what a less important folder knows and the folders before it do not.
  void merge(const std::string& mimeDir) {
    for (const auto& [extension, choice] : readGlobs(mimeDir)) {
      typeOfExtension.emplace(extension, choice.type);
      types.insert(choice.type);
    }
    for (const std::string& line : readLines(mimeDir + "/types")) {
      if (!isCommentOrBlank(line)) types.insert(trimmed(line));
    }
    ownIcon.merge(readPairs(mimeDir + "/icons", ':'));
    genericIcon.merge(readPairs(mimeDir + "/generic-icons", ':'));
    aliases.merge(readPairs(mimeDir + "/aliases", ' '));
  }

  std::string iconOf(const std::string& type) const {
    if (auto own = ownIcon.find(type); own != ownIcon.end()) return own->second;
    if (auto generic = genericIcon.find(type); generic != genericIcon.end()) {
      return generic->second;
    }
    return type.substr(0, type.find('/')) + "-x-generic";
  }
};

}  // namespace

LinuxRegistry::Locations LinuxRegistry::Locations::FromEnvironment() {
  Locations where;
  where.home = environment("HOME");
  if (where.home.empty()) where.home = homeFromPasswordDatabase();
  if (where.home.empty()) where.home = "/";
  where.configHome = environment("XDG_CONFIG_HOME");
  where.dataHome = environment("XDG_DATA_HOME");
  where.cacheHome = environment("XDG_CACHE_HOME");
  std::string dataDirs = environment("XDG_DATA_DIRS");
  if (dataDirs.empty()) dataDirs = "/usr/local/share:/usr/share";
  for (const std::string& dir : splitAt(dataDirs, ':')) {
    // Relative entries are invalid by the XDG rules and are ignored.
    if (!dir.empty() && dir.front() == '/') where.dataDirs.push_back(withoutTrailingSlashes(dir));
  }
  // The XDG rules also say relative base folders are to be ignored.
  for (std::string* dir : {&where.configHome, &where.dataHome, &where.cacheHome}) {
    if (!dir->empty() && dir->front() != '/') dir->clear();
  }
  return where;
}

LinuxRegistry::LinuxRegistry(Locations locations) : locations_(std::move(locations)) {
  if (locations_.home.empty() || locations_.home.front() != '/') {
    throw Error(errInvalidProcedureCall, "LinuxRegistry: the home folder \"" + locations_.home +
                                             "\" is not an absolute path");
  }
  locations_.home = withoutTrailingSlashes(locations_.home);
  const std::string base = locations_.home == "/" ? "" : locations_.home;
  if (locations_.configHome.empty()) locations_.configHome = base + "/.config";
  if (locations_.dataHome.empty()) locations_.dataHome = base + "/.local/share";
  if (locations_.cacheHome.empty()) locations_.cacheHome = base + "/.cache";
  addShellFolders();
  addDisplayNames();
  addFileTypes();
}

void LinuxRegistry::addShellFolders() {
  const auto userDirs = readUserDirs(locations_.configHome + "/user-dirs.dirs", locations_.home);
  const std::string base = locations_.home == "/" ? "" : locations_.home;
  std::vector<std::pair<std::string, std::string>> folders;
  for (const UserFolder& folder : kUserFolders) {
    auto found = userDirs.find(folder.xdgName);
    folders.emplace_back(folder.valueName,
                         found != userDirs.end() ? found->second : base + "/" + folder.defaultName);
  }
  folders.emplace_back("AppData", locations_.configHome);
  folders.emplace_back("Local AppData", locations_.dataHome);
  folders.emplace_back("Cache", locations_.cacheHome);
  folders.emplace_back("Fonts", locations_.dataHome + "/fonts");
  folders.emplace_back("Startup", locations_.configHome + "/autostart");
  for (const auto& [name, path] : folders) {
    store_.SetValue(HKEY_CURRENT_USER, kShellFoldersKey, name, REG_SZ, path);
    store_.SetValue(HKEY_CURRENT_USER, kUserShellFoldersKey, name, REG_EXPAND_SZ, path);
  }
}

void LinuxRegistry::addDisplayNames() {
  store_.SetValue(HKEY_CURRENT_USER, kDisplayNamesKey, kComputerNameValue, "Computer");
  store_.SetValue(HKEY_CURRENT_USER, kDisplayNamesKey, kNetworkNameValue, "Network");
  store_.SetValue(HKEY_CLASSES_ROOT, kComputerClassKey, "", "Computer");
  store_.SetValue(HKEY_CLASSES_ROOT, kNetworkClassKey, "", "Network");
}

void LinuxRegistry::addFileTypes() {
  MimeDatabase database;
  database.merge(locations_.dataHome + "/mime");
  for (const std::string& dir : locations_.dataDirs)
    database.merge(dir + "/mime");

  for (const auto& [extension, type] : database.typeOfExtension) {
    store_.SetValue(HKEY_CLASSES_ROOT, extension, "", type);
    store_.SetValue(HKEY_CLASSES_ROOT, extension, "Content Type", type);
  }
  for (const std::string& type : database.types) {
    store_.SetValue(HKEY_CLASSES_ROOT, type + "\\DefaultIcon", "", database.iconOf(type) + ",0");
  }
  for (const auto& [alias, type] : database.aliases) {
    if (database.types.count(alias) != 0) continue;
    store_.SetValue(HKEY_CLASSES_ROOT, alias + "\\DefaultIcon", "", database.iconOf(type) + ",0");
  }
}

int32_t LinuxRegistry::OpenKey(HKEY root, const std::string& subKey, HKEY& result) {
  return store_.OpenKey(root, subKey, result);
}

int32_t LinuxRegistry::QueryValue(HKEY key, const std::string& valueName, uint32_t& type,
                                  std::vector<uint8_t>* data, uint32_t& size) {
  return store_.QueryValue(key, valueName, type, data, size);
}

int32_t LinuxRegistry::CloseKey(HKEY key) {
  return store_.CloseKey(key);
}

}  // namespace velt
