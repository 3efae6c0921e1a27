#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "velt/utilities/IconTheme.hpp"

namespace velt::test {
namespace {

namespace fs = std::filesystem;

// Themes written into a temporary folder: "Test" (fixed 16 and 32, a
// threshold 48 and a scalable folder) inherits "Parent", which inherits
// "Test" back; hicolor and a pixmaps folder beside them.
class IconThemeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    root_ = fs::temp_directory_path() /
            ("velt-icon-theme-" + std::to_string(::getpid()) + "-" +
             ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(root_);
    theme("Test", "Parent",
          {{"16x16/apps", "Size=16\nType=Fixed"},
           {"32x32/apps", "Size=32\nType=Fixed"},
           {"48x48/apps", "Size=48\nType=Threshold\nThreshold=4"},
           {"scalable/apps", "Size=64\nType=Scalable\nMinSize=56\nMaxSize=512"},
           {"16x16@2/apps", "Size=16\nScale=2"}});
    for (const char* file : {"16x16/apps/one.png", "32x32/apps/one.png", "scalable/apps/one.svg",
                             "48x48/apps/wide.png", "16x16@2/apps/scaled.png"})
      touch("Test/" + std::string(file));
    theme("Parent", "Test", {{"22x22/apps", "Size=22"}});
    touch("Parent/22x22/apps/parentonly.png");
    touch("Parent/22x22/apps/one.png");
    theme("hicolor", "", {{"16x16/apps", "Size=16"}});
    touch("hicolor/16x16/apps/hicoloronly.png");
    touch("hicolor/16x16/apps/notpicture.xpm");
    fs::create_directories(root_ / "pixmaps");
    touch("../pixmaps/pix.png");
  }
  void TearDown() override { fs::remove_all(root_); }

  void theme(const std::string& name, const std::string& parent,
             const std::vector<std::pair<std::string, std::string>>& folders) {
    fs::create_directories(root_ / "icons" / name);
    std::ofstream index(root_ / "icons" / name / "index.theme");
    index << "[Icon Theme]\nName=" << name << "\nInherits=" << parent << "\nDirectories=";
    for (const auto& [folder, _] : folders)
      index << folder << ",";
    for (const auto& [folder, keys] : folders) {
      index << "\n\n[" << folder << "]\n" << keys << "\n";
      fs::create_directories(root_ / "icons" / name / folder);
    }
  }
  void touch(const std::string& file) { std::ofstream(root_ / "icons" / file) << "x"; }

  IconTheme make(const std::string& name = "Test") {
    return IconTheme({{(root_ / "icons").string()}, {(root_ / "pixmaps").string()}, name});
  }
  std::string relative(const std::string& path) {
    return path.empty() ? "" : fs::relative(path, root_).string();
  }

  fs::path root_;
};

TEST_F(IconThemeTest, FindsTheNearestSizeThroughTheChain) {
  IconTheme theme = make();
  const std::vector<std::tuple<std::string, int32_t, std::string>> cases = {
      {"one", 16, "icons/Test/16x16/apps/one.png"},
      {"one", 32, "icons/Test/32x32/apps/one.png"},
      {"one", 24, "icons/Test/16x16/apps/one.png"},  // as near as 32: the earlier folder
      {"one", 26, "icons/Test/32x32/apps/one.png"},
      {"one", 100, "icons/Test/scalable/apps/one.svg"},  // inside the scalable range
      {"one", 22, "icons/Test/16x16/apps/one.png"},      // the own theme before its parent
      {"wide", 51, "icons/Test/48x48/apps/wide.png"},
      {"parentonly", 16, "icons/Parent/22x22/apps/parentonly.png"},
      {"hicoloronly", 48, "icons/hicolor/16x16/apps/hicoloronly.png"},
      {"one-two-three", 32, "icons/Test/32x32/apps/one.png"},  // without its last parts
      {"pix", 16, "pixmaps/pix.png"},
      {"scaled", 16, ""},  // only in a folder for another scale
      {"notpicture", 16, ""},
      {"nothing", 16, ""},
      {"../Test/16x16/apps/one", 16, ""},
  };
  for (const auto& [name, size, expected] : cases)
    EXPECT_EQ(relative(theme.Lookup(name, size)), expected) << name << " at " << size;
  EXPECT_EQ(theme.Lookup("one-two-three", 32, false), "");
  EXPECT_EQ(theme.Chain(), (std::vector<std::string>{"Test", "Parent", "hicolor"}));
}

TEST_F(IconThemeTest, MissingThemeFallsBackToTheDefaultAndListingsAreReadOnce) {
  IconTheme theme = make("NoSuchTheme");
  EXPECT_EQ(theme.Chain(), (std::vector<std::string>{"hicolor"}));  // no Adwaita here either
  EXPECT_EQ(relative(theme.Lookup("hicoloronly", 16)), "icons/hicolor/16x16/apps/hicoloronly.png");
  touch("hicolor/16x16/apps/later.png");
  EXPECT_EQ(theme.Lookup("later", 16), "");
  EXPECT_EQ(relative(make("NoSuchTheme").Lookup("later", 16)),
            "icons/hicolor/16x16/apps/later.png");
}

TEST_F(IconThemeTest, ReadsTheThemeNameFromTheDesktopSettings) {
  const fs::path home = root_ / "home", config = home / ".config";
  fs::create_directories(config / "gtk-3.0");
  EXPECT_EQ(IconTheme::DesktopThemeName(home.string(), config.string()), "");
  std::ofstream(home / ".gtkrc-2.0") << "gtk-icon-theme-name=\"Old\"\n";
  EXPECT_EQ(IconTheme::DesktopThemeName(home.string(), config.string()), "Old");
  std::ofstream(config / "gtk-3.0" / "settings.ini") << "[Settings]\ngtk-icon-theme-name = Test\n";
  EXPECT_EQ(IconTheme::DesktopThemeName(home.string(), config.string()), "Test");
}

}  // namespace
}  // namespace velt::test
