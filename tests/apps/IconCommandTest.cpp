#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "apps/velt/IconCommand.hpp"
#include "utilities/IconFixtures.hpp"
#include "velt/platform/MemoryRegistry.hpp"
#include "velt/platform/Png.hpp"
#include "velt/utilities/IconExtractor.hpp"

namespace velt::tool {
namespace {

namespace fs = std::filesystem;
using test::peFile;
using test::solidBitmap;

class IconCommandTest : public ::testing::Test {
 protected:
  void SetUp() override {
    root_ = fs::temp_directory_path() / ("velt-icon-command-" + std::to_string(::getpid()));
    fs::create_directories(root_);
    test::writeBytes(root_ / "two.dll", peFile({{1, {solidBitmap(16, 0xFFFF0000)}},
                                                {2, {solidBitmap(32, 0x800000FF)}}}));
    IconExtractor::ClearCache();
  }
  void TearDown() override {
    RegistryView::Use(nullptr);
    fs::remove_all(root_);
  }

  int run(std::vector<std::string> arguments) {
    out_.str("");
    err_.str("");
    return IconCommand(out_, err_).Run(arguments);
  }
  std::string path(const std::string& name) const { return (root_ / name).string(); }

  fs::path root_;
  std::ostringstream out_, err_;
};

TEST_F(IconCommandTest, CountsAndWritesTheIconAsked) {
  ASSERT_EQ(run({"--count", path("two.dll")}), IconCommand::kOk) << err_.str();
  EXPECT_EQ(out_.str(), "2\n");
  ASSERT_EQ(run({path("two.dll"), "--index", "-2", "--mask", "#FFFFFF", "--out", path("a.png")}),
            IconCommand::kOk)
      << err_.str();
  auto picture = Png::Read(path("a.png"));
  EXPECT_EQ(picture->Width(), 32);
  EXPECT_EQ(picture->Pixel(3, 3), 0xFF7F7FFFu);  // half blue over white
  ASSERT_EQ(run({path("two.dll"), "--small", "--out=" + path("b.png")}), IconCommand::kOk);
  picture = Png::Read(path("b.png"));
  EXPECT_EQ(picture->Width(), 16);
  EXPECT_EQ(picture->Pixel(3, 3), 0xFFFF0000u);
}

TEST_F(IconCommandTest, FileTypesComeThroughTheRegistry) {
  auto registry = std::make_shared<MemoryRegistry>();
  registry->SetValue(HKEY_CLASSES_ROOT, ".two", "", "twofile");
  registry->SetValue(HKEY_CLASSES_ROOT, "twofile\\DefaultIcon", "", path("two.dll") + ",1");
  RegistryView::Use(registry);
  ASSERT_EQ(run({"--type", ".two", "--small", "--out", path("t.png")}), IconCommand::kOk)
      << err_.str();
  EXPECT_EQ(Png::Read(path("t.png"))->Pixel(8, 8), 0xFF000080u);  // half blue over black
  registry->SetValue(HKEY_CLASSES_ROOT, "twofile\\DefaultIcon", "", path("two.dll"));
  EXPECT_EQ(run({"--type", ".two", "--out", path("t.png")}), IconCommand::kBadInput);
  EXPECT_NE(err_.str().find("no comma"), std::string::npos) << err_.str();
}

TEST_F(IconCommandTest, NoIconWritesTheBackgroundAndBadUsageIsRefused) {
  EXPECT_EQ(run({path("two.dll"), "--index", "5", "--mask", "&HFF00", "--out", path("n.png")}),
            IconCommand::kNoIcon);
  EXPECT_EQ(Png::Read(path("n.png"))->Pixel(0, 0), 0xFF00FF00u);
  const std::vector<std::vector<std::string>> bad = {
      {},
      {path("two.dll")},
      {path("two.dll"), "extra", "--out", "x.png"},
      {"--count"},
      {"--count", path("two.dll"), "--small"},
      {path("two.dll"), "--index", "40000", "--out", "x.png"},
      {path("two.dll"), "--mask", "green", "--out", "x.png"},
      {"--type", ".txt", "--index", "1", "--out", "x.png"},
      {path("two.dll"), "--bogus"},
  };
  for (const auto& arguments : bad) {
    EXPECT_EQ(run(arguments), IconCommand::kBadInput)
        << (arguments.empty() ? "" : arguments.back());
    EXPECT_EQ(err_.str().rfind("velt icon: ", 0), 0u) << err_.str();
  }
}

}  // namespace
}  // namespace velt::tool
