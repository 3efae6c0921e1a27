#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/ExpectError.hpp"
#include "utilities/IconFixtures.hpp"
#include "velt/foundation/SystemRoutines.hpp"
#include "velt/platform/MemoryRegistry.hpp"
#include "velt/platform/SystemFolders.hpp"
#include "velt/utilities/IconExtractor.hpp"
#include "velt/utilities/IconTheme.hpp"
#include "velt/utilities/StockIcons.hpp"

namespace velt::test {
namespace {

namespace fs = std::filesystem;

constexpr uint32_t kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF, kGrey = 0xFF808080,
                   kYellow = 0xFFFFFF00;
constexpr OLE_COLOR kWhite = 0xFFFFFF, kMagenta = 0xFF00FF;  // OLE colours
constexpr uint32_t kMagentaPixel = 0xFFFF00FF;

// Fixture files, a registry and an icon theme, all made here in a temporary
// folder and installed for the process while a test runs.
class IconExtractorTest : public ::testing::Test {
 protected:
  void SetUp() override {
    root_ = fs::temp_directory_path() /
            ("velt-icon-extractor-" + std::to_string(::getpid()) + "-" +
             ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(root_);
    fs::create_directories(root_ / "icons/Test/16x16/mimetypes");
    fs::create_directories(root_ / "icons/Test/32x32/mimetypes");
    std::ofstream(root_ / "icons/Test/index.theme")
        << "[Icon Theme]\nDirectories=16x16/mimetypes,32x32/mimetypes\n\n[16x16/mimetypes]\n"
           "Size=16\nType=Fixed\n\n[32x32/mimetypes]\nSize=32\nType=Fixed\n";
    for (int side : {16, 32}) {
      const std::string folder =
          "icons/Test/" + std::to_string(side) + "x" + std::to_string(side) + "/mimetypes/";
      writeBytes(root_ / (folder + "text-x-generic.png"),
                 solidPng(side, kGrey, root_ / "scratch.png"));
      writeBytes(root_ / (folder + "text-x-script.png"),
                 solidPng(side, kYellow, root_ / "scratch.png"));
    }
    IconTheme::Use(std::make_shared<IconTheme>(
        IconTheme::Locations{{(root_ / "icons").string()}, {}, "Test"}));
    write("three.dll", peFile({{40, {solidBitmap(16, kBlue)}},
                               {2, {solidBitmap(16, kRed), solidBitmap(32, kRed)}},
                               {7, {solidBitmap(32, kGreen)}}}));
    write("sizes.ico", icoFile({solidBitmap(16, kRed), solidBitmap(32, kGreen),
                                solidPng(48, kBlue, root_ / "scratch.png")}));
    registry_ = std::make_shared<MemoryRegistry>();
    RegistryView::Use(registry_);
    SystemFolders::Override(root_.string(), std::nullopt);
    IconExtractor::ClearCache();
  }
  void TearDown() override {
    IconTheme::Use(nullptr);
    RegistryView::Use(nullptr);
    SystemFolders::Override(std::nullopt, std::nullopt);
    IconExtractor::ClearCache();
    fs::remove_all(root_);
  }

  std::string write(const std::string& name, const Bytes& bytes) {
    writeBytes(root_ / name, bytes);
    return path(name);
  }
  std::string path(const std::string& name) const { return (root_ / name).string(); }

  static uint32_t centre(const std::shared_ptr<Picture>& picture) {
    return picture->Pixel(picture->Width() / 2, picture->Height() / 2);
  }
  static bool onlyColour(const Picture& picture, uint32_t argb) {
    for (int32_t y = 0; y < picture.Height(); ++y)
      for (int32_t x = 0; x < picture.Width(); ++x)
        if (picture.Pixel(x, y) != argb) return false;
    return true;
  }

  fs::path root_;
  std::shared_ptr<MemoryRegistry> registry_;
  IconExtractor extractor_;
};

TEST_F(IconExtractorTest, CountsIconsOfEveryKindOfLocation) {
  std::ofstream(root_ / "plain.txt") << "just text";
  fs::create_directories(root_ / "folder");
  ::mkfifo(path("fifo").c_str(), 0600);
  const std::vector<std::pair<std::string, int32_t>> cases = {
      {path("three.dll"), 3},
      {path("sizes.ico"), 1},
      {write("cursor.cur", icoFile({solidBitmap(32, kRed)}, 2)), 1},
      {write("picture.png", solidPng(20, kRed, root_ / "scratch.png")), 1},
      {"text-x-generic", 1},
      {"no-such-icon", 0},
      {path("plain.txt"), 0},
      {path("missing.ico"), 0},
      {path("folder"), 0},
      {path("fifo"), 0},
      {path("system32\\shell32.dll"), StockIcons::kCount},
      {"", 0},
  };
  for (const auto& [location, count] : cases)
    EXPECT_EQ(extractor_.GetIconCount(location), count) << location;
}

TEST_F(IconExtractorTest, TakesTheImageThatFitsBestAndScalesIt) {
  const std::string small = write("small.ico", icoFile({solidBitmap(8, kRed)}));
  const std::string large =
      write("large.ico", icoFile({solidBitmap(8, kRed), solidBitmap(64, kBlue)}));
  const std::string deep =
      write("deep.ico",
            icoFile({bitmapImage(BitmapRecipe::Of(16, 16, 24, std::vector<uint32_t>(256, 0xFF00))),
                     solidBitmap(16, kBlue)}));
  struct Case {
    std::string file;
    IconSize size;
    int32_t side;
    uint32_t colour;
  };
  const std::vector<Case> cases = {
      {path("sizes.ico"), SmallIcon, 16, kRed},    // exact
      {path("sizes.ico"), LargeIcon, 32, kGreen},  // exact
      {path("sizes.ico"), IconSize(7), 32, kGreen},
      {large, SmallIcon, 16, kBlue},  // the larger one shrunk before the smaller one grown
      {small, LargeIcon, 32, kRed},   // only a smaller one: grown
      {deep, SmallIcon, 16, kBlue},   // same size: the deeper image
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    const auto picture = extractor_.ExtractIcon(c.file, 0, c.size);
    ASSERT_EQ(picture->Width(), c.side);
    ASSERT_EQ(picture->Height(), c.side);
    EXPECT_TRUE(onlyColour(*picture, c.colour)) << std::hex << centre(picture);
  }
  EXPECT_EQ(extractor_.ExtractIcon(path("sizes.ico"), 0)->Width(), 32);  // large by default
}

TEST_F(IconExtractorTest, DrawsOverMaskColorThroughAlphaAndTheMask) {
  BitmapRecipe recipe = BitmapRecipe::Of(16, 16, 32, std::vector<uint32_t>(256, 0x80FF0000));
  recipe.values[0] = 0;
  const std::string half = write("half.ico", icoFile({bitmapImage(recipe)}));
  recipe =
      BitmapRecipe::Of(16, 16, 8, std::vector<uint32_t>(256, 1), std::vector<bool>(256, false));
  recipe.palette = {0, 0x00FF00};
  recipe.transparent[17] = true;
  const std::string masked = write("masked.ico", icoFile({bitmapImage(recipe)}));
  extractor_.MaskColor(kWhite);
  auto picture = extractor_.ExtractIcon(half, 0, SmallIcon);
  EXPECT_EQ(picture->Pixel(0, 0), 0xFFFFFFFFu);
  EXPECT_EQ(picture->Pixel(5, 5), 0xFFFF7F7Fu);  // half red over white
  extractor_.MaskColor(kMagenta);
  picture = extractor_.ExtractIcon(masked, 0, SmallIcon);
  EXPECT_EQ(picture->Pixel(1, 1), kMagentaPixel);
  EXPECT_EQ(picture->Pixel(2, 1), kGreen);
  EXPECT_TRUE(onlyColour(*extractor_.ExtractIcon(path("missing.ico"), 0), kMagentaPixel));
  EXPECT_TRUE(onlyColour(*extractor_.ExtractIcon(path("sizes.ico"), 1), kMagentaPixel));
}

TEST_F(IconExtractorTest, PeIndexesArePositionsAndNegativeOnesIdentifiers) {
  const std::vector<std::pair<int16_t, uint32_t>> cases = {
      {0, kRed},    {1, kGreen},     {2, kBlue},      {-40, kBlue},
      {-7, kGreen}, {3, 0xFF000000}, {-3, 0xFF000000}};
  for (const auto& [index, colour] : cases)
    EXPECT_EQ(centre(extractor_.ExtractIcon(path("three.dll"), index, SmallIcon)), colour) << index;
  // Wide executables, and Windows separators that only name a file as "/".
  write("wide.exe", peFile({{1, {solidBitmap(32, kGreen)}}}, true));
  EXPECT_EQ(centre(extractor_.ExtractIcon(root_.string() + "\\wide.exe", 0)), kGreen);
}

TEST_F(IconExtractorTest, EachPictureIsTheCallersOwnAndRepeatsComeFromTheCache) {
  const auto first = extractor_.ExtractIcon(path("sizes.ico"), 0, SmallIcon);
  first->Pixel(0, 0, 0);
  const auto second = extractor_.ExtractIcon(path("sizes.ico"), 0, SmallIcon);
  EXPECT_NE(first->Handle(), second->Handle());
  EXPECT_EQ(second->Pixel(0, 0), kRed);
  // A changed file is decoded again.
  write("sizes.ico", icoFile({solidBitmap(16, kBlue)}));
  EXPECT_EQ(centre(extractor_.ExtractIcon(path("sizes.ico"), 0, SmallIcon)), kBlue);
}

TEST_F(IconExtractorTest, FileTypesFollowTheRegistryChain) {
  registry_->SetValue(HKEY_CLASSES_ROOT, ".sh", "", "text/x-shellscript");
  registry_->SetValue(HKEY_CLASSES_ROOT, "text/x-shellscript\\DefaultIcon", "", "text-x-script,0");
  registry_->SetValue(HKEY_CLASSES_ROOT, ".dll", "", "dllfile");
  registry_->SetValue(HKEY_CLASSES_ROOT, "dllfile\\DefaultIcon", "",
                      " %SystemRoot%\\three.dll , -40");
  registry_->SetValue(HKEY_CLASSES_ROOT, ".each", "", "eachfile");
  registry_->SetValue(HKEY_CLASSES_ROOT, "eachfile\\DefaultIcon", "", "%1");
  registry_->SetValue(HKEY_CLASSES_ROOT, ".bare", "", "barefile");
  registry_->SetValue(HKEY_CLASSES_ROOT, "Unknown\\DefaultIcon", "", path("sizes.ico") + ",0.4");
  const std::vector<std::tuple<std::string, IconSize, uint32_t>> cases = {
      {".sh", SmallIcon, kYellow},     {".sh", LargeIcon, kYellow},
      {".dll", SmallIcon, kBlue},     // %SystemRoot%, blanks, a negative identifier
      {".each", SmallIcon, kGrey},    // "%1": the generic file icon
      {".bare", SmallIcon, kGrey},    // a class without DefaultIcon: the same
      {".nothing", SmallIcon, kRed},  // no class: "Unknown"
      {".nothing", LargeIcon, kGreen},
  };
  for (const auto& [type, size, colour] : cases) {
    const auto picture = extractor_.ExtractIconOfFileType(type, size);
    EXPECT_EQ(picture->Width(), size == SmallIcon ? 16 : 32);
    EXPECT_TRUE(onlyColour(*picture, colour)) << type << " " << std::hex << centre(picture);
  }
}

TEST_F(IconExtractorTest, IconLocationsWithoutANumberAreErrors) {
  const std::vector<std::tuple<std::string, int32_t>> cases = {
      {"text-x-script", 13}, {"text-x-script,first", 13}, {"text-x-script,", 13}, {"x,40000", 6}};
  for (const auto& [text, number] : cases) {
    registry_->SetValue(HKEY_CLASSES_ROOT, "Unknown\\DefaultIcon", "", text);
    const std::string message = errorOf(number, [&] { extractor_.ExtractIconOfFileType(".zz"); });
    EXPECT_NE(message.find(text), std::string::npos) << message;
  }
}

TEST_F(IconExtractorTest, StockIconsComeFromTheThemeElseTheirDrawnFallback) {
  const std::string library = WindowsDirectory() + "shell32.dll";
  EXPECT_EQ(centre(extractor_.ExtractIcon(library, 0, SmallIcon)), kGrey);  // the theme's
  extractor_.MaskColor(kMagenta);
  for (int16_t index : {3, 6, 8, 9, 11, 15, 16, 18, 34, 60, 81, 82, 126, 167}) {
    const auto picture = extractor_.ExtractIcon(library, index, SmallIcon);
    EXPECT_FALSE(onlyColour(*picture, kMagentaPixel)) << index;
  }
  for (int16_t index : {1, 168, -3})
    EXPECT_TRUE(onlyColour(*extractor_.ExtractIcon(library, index, SmallIcon), kMagentaPixel))
        << index;
}

TEST_F(IconExtractorTest, ScalablePicturesAreRenderedAtTheSizeAsked) {
  std::ofstream(root_ / "square.svg")
      << "<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10'>"
         "<rect x='5' y='0' width='5' height='10' fill='#00ff00'/></svg>";
  std::ofstream(root_ / "broken.svg") << "<svg xmlns='http://www.w3.org/2000/svg'><rect";
  extractor_.MaskColor(kWhite);
  const auto picture = extractor_.ExtractIcon(path("square.svg"), 0);
  EXPECT_EQ(picture->Pixel(31, 0), kGreen);
  EXPECT_EQ(picture->Pixel(0, 31), 0xFFFFFFFFu);
  EXPECT_TRUE(onlyColour(*extractor_.ExtractIcon(path("broken.svg"), 0), 0xFFFFFFFF));
  EXPECT_EQ(extractor_.GetIconCount(path("square.svg")), 1);
  EXPECT_EQ(extractor_.GetIconCount(path("broken.svg")), 0);
}

TEST_F(IconExtractorTest, MalformedFilesHoldNoIcon) {
  Bytes ico = icoFile({solidBitmap(16, kRed)});
  Bytes pe = peFile({{1, {solidBitmap(16, kRed)}}});
  const std::vector<Bytes> files = {
      Bytes(ico.begin(), ico.begin() + 30), Bytes(pe.begin(), pe.begin() + 0x210), Bytes{'M', 'Z'},
      Bytes(1000, 0xFF), Bytes{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0}};
  for (size_t i = 0; i < files.size(); ++i) {
    const std::string file = write("bad" + std::to_string(i) + ".ico", files[i]);
    EXPECT_EQ(extractor_.GetIconCount(file), 0) << i;
    EXPECT_TRUE(onlyColour(*extractor_.ExtractIcon(file, 0), 0xFF000000)) << i;
  }
}

}  // namespace
}  // namespace velt::test
