#include "velt/utilities/IconExtractor.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <tuple>
#include <utility>

#include "velt/foundation/SystemRoutines.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/RegistryView.hpp"
#include "velt/platform/Variant.hpp"
#include "velt/utilities/IconFile.hpp"
#include "velt/utilities/IconPicture.hpp"
#include "velt/utilities/IconTheme.hpp"
#include "velt/utilities/StockIcons.hpp"

namespace velt {

namespace {

constexpr const char* kSystemRootPrefix = "%SystemRoot%\\";
constexpr const char* kGenericIconLocation = "%SystemRoot%\\system32\\shell32.dll,0";
constexpr size_t kMaxCached = 2048;
// Stands for the count among the cached entries of a file.
constexpr int32_t kCountEntry = INT32_MIN;

int32_t sideOf(IconSize size) {
  return size == SmallIcon ? 16 : 32;
}

// A file as it is now: a changed file is a new key.
struct FileKey {
  dev_t device;
  ino_t inode;
  off_t size;
  int64_t changed;
  int32_t index;
  int32_t side;
  auto Tie() const { return std::tie(device, inode, size, changed, index, side); }
  bool operator<(const FileKey& other) const { return Tie() < other.Tie(); }
};

struct Decoded {
  std::shared_ptr<const Picture> picture;
  int32_t count = 0;
};

class DecodedIcons {
 public:
  // Decodes through `make` unless the same file, index and side was decoded before.
  template <typename Make>
  Decoded Get(const std::string& path, int32_t index, int32_t side, Make make) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
    const FileKey key{
        status.st_dev,  status.st_ino,
        status.st_size, int64_t{status.st_ctim.tv_sec} * 1000000000 + status.st_ctim.tv_nsec,
        index,          side};
    {
      std::lock_guard lock(mutex_);
      if (const auto found = entries_.find(key); found != entries_.end()) return found->second;
    }
    Decoded decoded = make();
    std::lock_guard lock(mutex_);
    if (entries_.size() >= kMaxCached) entries_.clear();
    entries_.emplace(key, decoded);
    return decoded;
  }
  // Icon-theme files by path alone: the theme's folders are read once per
  // process, so their files are taken as they were then, without a stat.
  template <typename Make>
  std::shared_ptr<const Picture> GetThemed(const std::string& path, int32_t side, Make make) {
    const auto key = std::make_pair(path, side);
    {
      std::lock_guard lock(mutex_);
      if (const auto found = themed_.find(key); found != themed_.end()) return found->second;
    }
    auto picture = make();
    std::lock_guard lock(mutex_);
    if (themed_.size() >= kMaxCached) themed_.clear();
    themed_.emplace(key, picture);
    return picture;
  }
  void Clear() {
    std::lock_guard lock(mutex_);
    entries_.clear();
    themed_.clear();
  }

 private:
  std::mutex mutex_;
  std::map<FileKey, Decoded> entries_;
  std::map<std::pair<std::string, int32_t>, std::shared_ptr<const Picture>> themed_;
};

DecodedIcons& decodedIcons() {
  static DecodedIcons icons;
  return icons;
}

bool isRegularFile(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

struct Location {
  enum class Kind { Missing, File, Stock, ThemeName } kind = Kind::Missing;
  std::string path;
};

Location locate(const std::string& text) {
  if (text.empty()) return {};
  if (isRegularFile(text)) return {Location::Kind::File, text};
  if (text.find('\\') != std::string::npos) {
    std::string slashed = text;
    std::replace(slashed.begin(), slashed.end(), '\\', '/');
    if (isRegularFile(slashed)) return {Location::Kind::File, slashed};
  }
  if (StockIcons::Names(text)) return {Location::Kind::Stock, text};
  if (text.find_first_of("/\\") == std::string::npos) return {Location::Kind::ThemeName, text};
  return {};
}

std::shared_ptr<const Picture> fromFile(const std::string& path, int32_t index, int32_t side) {
  return decodedIcons()
      .Get(path, index, side, [&] { return Decoded{IconFile::Open(path).Render(index, side)}; })
      .picture;
}

std::shared_ptr<const Picture> fromTheme(const std::string& name, int32_t side,
                                         bool shortened = true) {
  const std::string path = IconTheme::Current()->Lookup(name, side, shortened);
  if (path.empty()) return nullptr;
  return decodedIcons().GetThemed(path, side, [&] { return fromFile(path, 0, side); });
}

std::shared_ptr<const Picture> fromStock(int32_t index, int32_t side) {
  for (const std::string& name : StockIcons::ThemeNames(index))
    if (auto picture = fromTheme(name, side, false)) return picture;
  return StockIcons::Drawn(index, side);
}

std::shared_ptr<const Picture> iconAt(const std::string& text, int32_t index, int32_t side) {
  const Location location = locate(text);
  switch (location.kind) {
    case Location::Kind::File:
      return fromFile(location.path, index, side);
    case Location::Kind::Stock:
      return fromStock(index, side);
    case Location::Kind::ThemeName:
      return index == 0 ? fromTheme(location.path, side) : nullptr;
    case Location::Kind::Missing:
      break;
  }
  return nullptr;
}

std::string replacedAll(std::string text, const std::string& what, const std::string& with) {
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
    text.replace(at, what.size(), with);
  return text;
}

std::string trimmedBlanks(const std::string& text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

int32_t IconExtractor::GetIconCount(const std::string& sIconPath) const {
  const Location location = locate(sIconPath);
  switch (location.kind) {
    case Location::Kind::File:
      return decodedIcons()
          .Get(location.path, kCountEntry, 0,
               [&] {
                 return Decoded{nullptr, IconFile::Open(location.path).Count()};
               })
          .count;
    case Location::Kind::Stock:
      return StockIcons::kCount;
    case Location::Kind::ThemeName:
      return IconTheme::Current()->Lookup(location.path, 32).empty() ? 0 : 1;
    case Location::Kind::Missing:
      break;
  }
  return 0;
}

std::shared_ptr<Picture> IconExtractor::ExtractIcon(const std::string& sIconPath,
                                                    int16_t iIconIndex, IconSize iIconSize) const {
  const int32_t side = sideOf(iIconSize);
  const auto icon = iconAt(sIconPath, iIconIndex, side);
  return IconPicture::OverColor(icon.get(), side, maskColor_);
}

std::shared_ptr<Picture> IconExtractor::ExtractIconOfFileType(const std::string& sFileType,
                                                              IconSize iIconSize) const {
  std::string type = ReadRegistryString(HKEY_CLASSES_ROOT, sFileType, "");
  if (type.empty()) type = "Unknown";
  std::string iconText = ReadRegistryString(HKEY_CLASSES_ROOT, type + "\\DefaultIcon", "");
  if (iconText.empty() || iconText.find("%1") != std::string::npos) iconText = kGenericIconLocation;
  const auto comma = iconText.find(',');
  if (comma == std::string::npos)
    throw Error(errTypeMismatch, "ExtractIconOfFileType: the icon location \"" + iconText +
                                     "\" of \"" + sFileType + "\" has no comma before its number");
  int16_t index = 0;
  try {
    index = Variant(iconText.substr(comma + 1)).ToInteger();
  } catch (const Error& error) {
    throw Error(error.Number(), "ExtractIconOfFileType: the icon number of \"" + iconText + "\" (" +
                                    sFileType + "): " + error.Description());
  }
  const std::string file =
      trimmedBlanks(replacedAll(iconText.substr(0, comma), kSystemRootPrefix, WindowsDirectory()));
  return ExtractIcon(file, index, iIconSize);
}

void IconExtractor::ClearCache() {
  decodedIcons().Clear();
}

}  // namespace velt
