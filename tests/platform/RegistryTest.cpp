#include <gtest/gtest.h>

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/ExpectError.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/LinuxRegistry.hpp"
#include "velt/platform/MemoryRegistry.hpp"

namespace velt {
namespace {

namespace fs = std::filesystem;
using RV = RegistryView;

// The whole open / size / read / close sequence; nullopt when a step fails.
std::optional<std::string> readValue(RegistryView& view, HKEY root, const std::string& subKey,
                                     const std::string& name, uint32_t* typeOut = nullptr) {
  HKEY key = 0;
  if (view.OpenKey(root, subKey, key) != RV::ERROR_SUCCESS) return std::nullopt;
  uint32_t type = 0;
  uint32_t size = 0;
  std::optional<std::string> text;
  std::vector<uint8_t> data;
  if (view.QueryValue(key, name, type, nullptr, size) == RV::ERROR_SUCCESS &&
      view.QueryValue(key, name, type, &data, size) == RV::ERROR_SUCCESS) {
    text = std::string(data.begin(), data.begin() + size);
    if (!text->empty() && text->back() == '\0') text->pop_back();
    if (typeOut != nullptr) *typeOut = type;
  }
  EXPECT_EQ(view.CloseKey(key), RV::ERROR_SUCCESS);
  return text;
}

TEST(MemoryRegistryTest, PathsAndNamesIgnoreCaseAndEmptyParts) {
  MemoryRegistry registry;
  registry.SetValue(HKEY_CURRENT_USER, "Software\\Velt\\Run", "Tool", "/usr/bin/tool");
  EXPECT_EQ(readValue(registry, HKEY_CURRENT_USER, "\\SOFTWARE\\\\velt\\RUN\\", "tOOL"),
            "/usr/bin/tool");
  EXPECT_EQ(readValue(registry, HKEY_LOCAL_MACHINE, "Software\\Velt\\Run", "Tool"), std::nullopt);
  // Parents exist, and keys open relative to an open key.
  HKEY parent = 0;
  ASSERT_EQ(registry.OpenKey(HKEY_CURRENT_USER, "Software", parent), RV::ERROR_SUCCESS);
  EXPECT_EQ(readValue(registry, parent, "Velt\\Run", "Tool"), "/usr/bin/tool");
}

TEST(MemoryRegistryTest, QueryReportsTypeAndSizeThenCopiesIntoLargeEnoughBuffers) {
  MemoryRegistry registry;
  registry.SetValue(HKEY_CURRENT_USER, "K", "Bin", RV::REG_BINARY, std::vector<uint8_t>{1, 2, 3});
  registry.SetValue(HKEY_CURRENT_USER, "K", "Text", "abc");
  HKEY key = 0;
  ASSERT_EQ(registry.OpenKey(HKEY_CURRENT_USER, "K", key), RV::ERROR_SUCCESS);
  uint32_t type = 0;
  uint32_t size = 0;
  ASSERT_EQ(registry.QueryValue(key, "Text", type, nullptr, size), RV::ERROR_SUCCESS);
  EXPECT_EQ(type, RV::REG_SZ);
  EXPECT_EQ(size, 4u);  // stored with its NUL
  std::vector<uint8_t> data;
  size = 2;
  EXPECT_EQ(registry.QueryValue(key, "Bin", type, &data, size), RV::ERROR_MORE_DATA);
  EXPECT_EQ(size, 3u);
  data.assign(2, 0xEE);
  size = 5;
  ASSERT_EQ(registry.QueryValue(key, "Bin", type, &data, size), RV::ERROR_SUCCESS);
  EXPECT_EQ(size, 3u);
  EXPECT_EQ(data, (std::vector<uint8_t>{1, 2, 3, 0, 0}));
  EXPECT_EQ(registry.CloseKey(key), RV::ERROR_SUCCESS);
}

TEST(MemoryRegistryTest, FailuresAndHandleAccounting) {
  MemoryRegistry registry;
  registry.SetValue(HKEY_CURRENT_USER, "K", "V", "x");
  HKEY key = 99;
  EXPECT_EQ(registry.OpenKey(HKEY_CURRENT_USER, "Missing", key), RV::ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(key, 0u);
  EXPECT_EQ(registry.OpenKey(12345, "K", key), RV::ERROR_INVALID_HANDLE);
  HKEY other = 0;
  ASSERT_EQ(registry.OpenKey(HKEY_CURRENT_USER, "K", key), RV::ERROR_SUCCESS);
  ASSERT_EQ(registry.OpenKey(HKEY_CURRENT_USER, "k", other), RV::ERROR_SUCCESS);
  EXPECT_NE(key, other);
  uint32_t type = 0;
  uint32_t size = 0;
  EXPECT_EQ(registry.QueryValue(key, "Other", type, nullptr, size), RV::ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(registry.CloseKey(HKEY_CURRENT_USER), RV::ERROR_SUCCESS);  // not counted
  EXPECT_EQ(registry.CloseKey(key), RV::ERROR_SUCCESS);
  EXPECT_EQ(registry.CloseKey(key), RV::ERROR_INVALID_HANDLE);
  EXPECT_EQ(registry.QueryValue(key, "V", type, nullptr, size), RV::ERROR_INVALID_HANDLE);
  EXPECT_EQ(registry.OpenHandleCount(), 1);
  test::errorOf(errInvalidProcedureCall, [&] { registry.SetValue(0x1234, "K", "V", "x"); });
}

TEST(RegistryViewTest, TheDefaultViewComesFromTheEnvironment) {
  std::vector<std::pair<std::string, std::optional<std::string>>> saved;
  auto set = [&](const char* name, const char* value) {
    const char* old = getenv(name);
    saved.emplace_back(name, old ? std::optional<std::string>(old) : std::nullopt);
    value ? setenv(name, value, 1) : unsetenv(name);
  };
  set("HOME", "/nowhere/someone/");
  set("XDG_CONFIG_HOME", "relative/config");
  set("XDG_DATA_HOME", "/nowhere/data");
  set("XDG_CACHE_HOME", nullptr);
  set("XDG_DATA_DIRS", "relative::/nowhere/share/:/nowhere/usr");

  auto memory = std::make_shared<MemoryRegistry>();
  RegistryView::Use(memory);
  EXPECT_EQ(RegistryView::Current(), memory);
  RegistryView::Use(nullptr);
  auto desktop = std::dynamic_pointer_cast<LinuxRegistry>(RegistryView::Current());
  ASSERT_NE(desktop, nullptr);
  EXPECT_EQ(RegistryView::Current(), desktop);  // made once, then kept
  RegistryView::Use(nullptr);
  EXPECT_EQ(desktop->Where().home, "/nowhere/someone");
  EXPECT_EQ(desktop->Where().configHome, "/nowhere/someone/.config");  // relative: ignored
  EXPECT_EQ(desktop->Where().dataHome, "/nowhere/data");
  EXPECT_EQ(desktop->Where().dataDirs,
            (std::vector<std::string>{"/nowhere/share", "/nowhere/usr"}));

  set("XDG_DATA_DIRS", nullptr);
  EXPECT_EQ(LinuxRegistry::Locations::FromEnvironment().dataDirs,
            (std::vector<std::string>{"/usr/local/share", "/usr/share"}));
  for (auto it = saved.rbegin(); it != saved.rend(); ++it) {
    it->second ? setenv(it->first.c_str(), it->second->c_str(), 1) : unsetenv(it->first.c_str());
  }
}

class LinuxRegistryTest : public ::testing::Test {
 protected:
  LinuxRegistryTest() {
    std::string pattern = (fs::temp_directory_path() / "velt-registry-XXXXXX").string();
    root_ = mkdtemp(pattern.data());
    where_.home = (root_ / "home").string();
    where_.dataDirs = {(root_ / "share1").string(), (root_ / "share2").string()};
  }
  ~LinuxRegistryTest() override {
    std::error_code ignored;
    fs::remove_all(root_, ignored);
  }
  void Write(const fs::path& relative, const std::string& text) {
    fs::create_directories((root_ / relative).parent_path());
    std::ofstream(root_ / relative) << text;
  }
  std::optional<std::string> Folder(LinuxRegistry& registry, const std::string& name) {
    return readValue(registry, HKEY_CURRENT_USER, LinuxRegistry::kShellFoldersKey, name);
  }

  fs::path root_;
  LinuxRegistry::Locations where_;
};

TEST_F(LinuxRegistryTest, ShellFoldersFollowTheUserDirsFile) {
  Write("home/.config/user-dirs.dirs",
        "# written by xdg-user-dirs-update\n"
        "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n"
        "  XDG_DOCUMENTS_DIR=\"/srv/docs/\"\r\n"
        "XDG_MUSIC_DIR=\"relative/music\"\n"
        "XDG_PICTURES_DIR=\"$HOME/My \\\"Pics\\\" \\$1\"\n"
        "XDG_VIDEOS_DIR=\"$HOME\"\n");
  LinuxRegistry registry(where_);
  const std::string home = where_.home;
  EXPECT_EQ(Folder(registry, "Desktop"), home + "/Schreibtisch");
  EXPECT_EQ(Folder(registry, "personal"), "/srv/docs");
  EXPECT_EQ(Folder(registry, "My Music"), home + "/Music");  // invalid entry: the usual folder
  EXPECT_EQ(Folder(registry, "My Pictures"), home + "/My \"Pics\" $1");
  EXPECT_EQ(Folder(registry, "My Video"), home);
  EXPECT_EQ(Folder(registry, "Templates"), home + "/Templates");  // no entry
  EXPECT_EQ(Folder(registry, "No Such Folder"), std::nullopt);
  uint32_t type = 0;
  EXPECT_EQ(
      readValue(registry, HKEY_CURRENT_USER, LinuxRegistry::kUserShellFoldersKey, "Desktop", &type),
      home + "/Schreibtisch");
  EXPECT_EQ(type, RV::REG_EXPAND_SZ);
  EXPECT_EQ(registry.OpenHandleCount(), 0);
}

TEST_F(LinuxRegistryTest, UserDirsComeFromTheConfigFolderGiven) {
  Write("elsewhere/user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/Other\"\n");
  Write("home/.config/user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/Wrong\"\n");
  where_.configHome = (root_ / "elsewhere").string();
  where_.home += "/";  // must not double the separator below
  LinuxRegistry registry(where_);
  EXPECT_EQ(Folder(registry, "Desktop"), (root_ / "home/Other").string());
  EXPECT_EQ(Folder(registry, "AppData"), where_.configHome);
}

TEST_F(LinuxRegistryTest, DisplayNamesOfComputerAndNetwork) {
  LinuxRegistry registry(where_);
  for (auto [resource, name] : {std::pair{"-9216", "Computer"}, std::pair{"-9217", "Network"}})
    EXPECT_EQ(readValue(registry, HKEY_CURRENT_USER, LinuxRegistry::kDisplayNamesKey,
                        std::string("@C:\\WINDOWS\\system32\\SHELL32.dll,") + resource),
              name);
}

TEST_F(LinuxRegistryTest, ExtensionsMapToMimeTypesByWeightCaseAndFolder) {
  Write("share1/mime/globs2",
        "50:text/x-c++src:*.C:cs\n50:text/x-csrc:*.c:cs\n"
        "40:application/x-low:*.dat\n60:application/x-high:*.dat\n"
        "50:application/x-compressed-tar:*.tar.gz\n50:text/x-log:*.log\n"
        "50:application/x-troff-man:*.[1-9]\n50:text/x-readme:README\n50:text/plain:*.txt\n");
  Write("home/.local/share/mime/globs2", "50:text/x-user-log:*.log\n");
  Write("share2/mime/globs", "application/x-odd:*.odd\ntext/x-other:*.txt\n");
  LinuxRegistry registry(where_);
  auto typeOf = [&](const std::string& key) {
    return readValue(registry, HKEY_CLASSES_ROOT, key, "");
  };
  EXPECT_EQ(typeOf(".c"), "text/x-csrc");
  EXPECT_EQ(typeOf(".dat"), "application/x-high");
  EXPECT_EQ(typeOf(".TAR.GZ"), "application/x-compressed-tar");
  EXPECT_EQ(typeOf(".log"), "text/x-user-log");
  EXPECT_EQ(typeOf(".odd"), "application/x-odd");
  EXPECT_EQ(typeOf(".txt"), "text/plain");
  EXPECT_EQ(readValue(registry, HKEY_CLASSES_ROOT, ".Txt", "Content Type"), "text/plain");
  EXPECT_EQ(typeOf(".[1-9]"), std::nullopt);
  EXPECT_EQ(typeOf("README"), std::nullopt);
}

TEST_F(LinuxRegistryTest, DefaultIconsNameTheTypesIcon) {
  Write("share1/mime/globs2", "50:text/plain:*.txt\n50:application/x-high:*.high\n");
  Write("share1/mime/types", "text/plain\nimage/x-listed\n");
  Write("share1/mime/generic-icons", "text/plain:text-x-generic\napplication/x-high:pkg\n");
  Write("share1/mime/icons", "application/x-high:high-icon\n");
  Write("share1/mime/aliases", "text/x-alias text/plain\n");
  Write("share2/mime/generic-icons", "text/plain:not-this-one\n");
  LinuxRegistry registry(where_);
  auto iconOf = [&](const std::string& type) {
    return readValue(registry, HKEY_CLASSES_ROOT, type + "\\DefaultIcon", "");
  };
  EXPECT_EQ(iconOf("text/plain"), "text-x-generic,0");
  EXPECT_EQ(iconOf("application/x-high"), "high-icon,0");
  EXPECT_EQ(iconOf("image/x-listed"), "image-x-generic,0");
  EXPECT_EQ(iconOf("TEXT/X-ALIAS"), "text-x-generic,0");
  EXPECT_EQ(iconOf("Unknown"), std::nullopt);
}

TEST_F(LinuxRegistryTest, RefusesAHomeThatIsNotAbsolute) {
  where_.home = "home/someone";
  EXPECT_THROW(LinuxRegistry registry(where_), Error);
}

}  // namespace
}  // namespace velt
