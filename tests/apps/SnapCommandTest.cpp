#include "apps/velt/SnapCommand.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "apps/velt/SnapOptions.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/Png.hpp"
#include "velt/platform/Types.hpp"

namespace velt::tool {
namespace {

namespace fs = std::filesystem;

SnapOptions parse(std::vector<std::string> arguments) {
  return SnapOptions::Parse(arguments);
}

std::string usageProblemOf(std::vector<std::string> arguments) {
  try {
    parse(std::move(arguments));
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 5);
    return error.Description();
  }
  return "";
}

// Every field of an item, in --item's order.
std::string fields(const MenuItemArgument& item) {
  return item.Key + "|" + item.Caption + "|" + std::to_string(item.Icon) + "|" +
         std::to_string(item.Enabled) + "|" + item.Child + "|" + item.Group + "|" +
         std::to_string(item.ItemType) + "|" + std::to_string(item.Checked) + "|" +
         std::to_string(item.Bold);
}

TEST(SnapOptionsTest, ReadsEveryOptionInEitherSpelling) {
  const SnapOptions options =
      parse({"--size", "80x24", "veltButton", "--prop", "Caption=a b", "--prop=Enabled=False",
             "--input=-", "--out", "x.png", "--screen", "--events"});
  EXPECT_EQ(options.Control, "veltButton");
  EXPECT_EQ(options.Size, (SizeL{80, 24}));
  EXPECT_EQ(options.Properties, (std::vector<std::string>{"Caption=a b", "Enabled=False"}));
  EXPECT_EQ(options.Input, "-");
  EXPECT_TRUE(options.Screen);
  EXPECT_FALSE(parse({"veltButton"}).Size.has_value());
}

TEST(SnapOptionsTest, MistakesAreUsageErrorsNamingTheArgument) {
  EXPECT_NE(usageProblemOf({}).find("no control"), std::string::npos);
  EXPECT_NE(usageProblemOf({"a", "b"}).find("\"b\""), std::string::npos);
  EXPECT_NE(usageProblemOf({"veltButton", "--out"}).find("--out needs a value"), std::string::npos);
  EXPECT_NE(usageProblemOf({"veltButton", "--out=a", "--out=b"}).find("twice"), std::string::npos);
  EXPECT_NE(usageProblemOf({"veltButton", "--events=yes"}).find("no value"), std::string::npos);
  for (const char* size : {"80x", "0x24", "80x4097", "8.5x24", "0x10x20"})
    EXPECT_NE(usageProblemOf({"veltButton", "--size", size}).find(size), std::string::npos) << size;
  EXPECT_EQ(SnapOptions::ParseSize("4096X1"), (SizeL{4096, 1}));
}

TEST(SnapOptionsTest, MenuItemsTakeAddsFieldsWithItsDefaults) {
  const SnapOptions options =
      parse({"veltPUMenu", "--item", "a", "--item=b|Bee|&H3|false|sub|grp|2|TRUE|True"});
  ASSERT_EQ(options.Items.size(), 2u);
  EXPECT_EQ(fields(options.Items[0]), "a||0|1|||1|0|0");
  EXPECT_EQ(fields(options.Items[1]), "b|Bee|3|0|sub|grp|2|1|1");
  EXPECT_EQ(fields(MenuItemArgument::Parse("k|||")), "k||0|1|||1|0|0") << "empty fields";
}

// Each --item after a --tool goes into that tool's menu.
TEST(SnapOptionsTest, ToolsTakeAddsFieldsWithItsDefaultsAndTheItemsAfterThem) {
  const SnapOptions options = parse({"veltToolbar", "--item", "m", "--tool", "a", "--item", "x",
                                     "--tool=b|Bee|&H2|4|TRUE|false", "--item", "y", "--item=z"});
  ASSERT_EQ(options.Items.size(), 1u);
  ASSERT_EQ(options.Tools.size(), 2u);
  const auto fieldsOf = [](const ToolArgument& tool) {
    std::string text = tool.Key + "|" + tool.Caption + "|" + std::to_string(tool.IconIndex) + "|" +
                       std::to_string(tool.Style) + "|" + std::to_string(tool.Checked) + "|" +
                       std::to_string(tool.Enabled) + ":";
    for (const MenuItemArgument& item : tool.Menu)
      text += item.Key;
    return text;
  };
  EXPECT_EQ(fieldsOf(options.Tools[0]), "a||0|1|0|1:x");
  EXPECT_EQ(fieldsOf(options.Tools[1]), "b|Bee|2|4|1|0:yz");
}

TEST(SnapOptionsTest, BadMenuItemFieldsNameTheOptionAndTheField) {
  const std::vector<std::pair<const char*, const char*>> cases = {
      {"k|c|x", "Icon \"x\""},
      {"k|c|1|yes", "Enabled \"yes\""},
      {"k|c|1|True|||0", "ItemType"},
      {"k||||||1|1", "Checked \"1\""},
      {"k|||||||||x", "more than 9 fields"},
  };
  for (const auto& [item, field] : cases) {
    const std::string problem = usageProblemOf({"veltPUMenu", "--item", item});
    EXPECT_NE(problem.find(std::string("--item \"") + item + "\""), std::string::npos) << problem;
    EXPECT_NE(problem.find(field), std::string::npos) << problem;
  }
}

TEST(SnapOptionsTest, EntriesSortingAndImageStrips) {
  const SnapOptions options = parse({"veltListbox", "--entry", "a", "--entry=b|\tBee|v|&H2|note",
                                     "--sorted", "TRUE", "--imagelist", "C:dir/icons.png:20"});
  ASSERT_EQ(options.Entries.size(), 2u);
  const EntryArgument& b = options.Entries[1];
  EXPECT_EQ(std::tuple(b.Key, b.Caption, b.Value, b.Icon, b.Comment),
            std::tuple("b", "\tBee", "v", 2, "note"));
  EXPECT_EQ(options.Entries[0].Icon, 0);
  EXPECT_EQ(options.Sorted, true);
  EXPECT_EQ(options.Images->File, "C:dir/icons.png");
  EXPECT_EQ(options.Images->Width, 20);
  EXPECT_FALSE(ImageStrip::Parse("icons.png").Width.has_value());
  for (const auto& [option, value, named] :
       std::vector<std::tuple<const char*, const char*, const char*>>{
           {"--entry", "k|c|v|x", "Icon \"x\""},
           {"--entry", "k|c|v|1|n|extra", "more than 5 fields"},
           {"--tool", "k|c|x", "--tool \"k|c|x\": IconIndex \"x\""},
           {"--tool", "k|c|1|8", "Style \"8\""},
           {"--tool", "k|c|1|1|y", "Checked \"y\""},
           {"--tool", "a|b|1|1|true|true|x", "more than 6 fields"},
           {"--sorted", "2", "--sorted \"2\""},
           {"--imagelist", "a.png:0", "width 0"},
           {"--imagelist", "a.png:2000", "width 2000"}})
    EXPECT_NE(usageProblemOf({"veltListbox", option, value}).find(named), std::string::npos)
        << value;
}

class SnapCommandTest : public ::testing::Test {
 protected:
  SnapCommandTest() { fs::create_directories(dir); }
  ~SnapCommandTest() override { fs::remove_all(dir); }

  int run(std::vector<std::string> arguments, const std::string& script = "") {
    in.clear();
    in.str(script);
    SnapCommand command(out, err, in);
    return command.Run(arguments);
  }
  std::string path(const char* name) const { return (dir / name).string(); }

  fs::path dir = fs::temp_directory_path() / ("velt-snap-test-" + std::to_string(getpid()));
  std::ostringstream out;
  std::ostringstream err;
  std::istringstream in;
};

TEST_F(SnapCommandTest, BadInputIsStatusTwoAndWritesNothing) {
  const std::string outFile = path("out.png");
  const std::string script = "shot " + path("early.png") + "\nclick 1 1\nprop ImageIndex=x\n";
  EXPECT_EQ(run({"veltButton", "--input", "-", "--out", outFile}, script), 2);
  EXPECT_NE(err.str().find("velt snap: standard input line 3 \"prop ImageIndex=x\""),
            std::string::npos)
      << err.str();
  EXPECT_EQ(run({"veltButton", "--input", path("missing.txt"), "--out", outFile}), 2);
  EXPECT_EQ(run({"veltButton", "--events", "--out", outFile, "--prop", "Enabled=sometimes"}), 2);
  EXPECT_TRUE(fs::is_empty(dir));
  EXPECT_EQ(out.str(), "");
}

TEST_F(SnapCommandTest, MenuItemsAndMenuNeedAPopupMenu) {
  const std::string outFile = path("out.png");
  EXPECT_EQ(run({"veltButton", "--item", "k|Caption", "--out", outFile}), 2);
  EXPECT_NE(err.str().find("--item: veltButton has no menu items"), std::string::npos) << err.str();
  EXPECT_EQ(run({"veltButton", "--input", "-", "--out", outFile}, "wait 0\nmenu 1 1\n"), 2);
  EXPECT_NE(err.str().find("line 2 \"menu 1 1\": menu: veltButton is not a veltPUMenu"),
            std::string::npos)
      << err.str();
  EXPECT_EQ(run({"veltPUMenu", "--item", "k", "--item", "k", "--out", outFile}), 2);
  EXPECT_TRUE(fs::is_empty(dir));
}

// A press on a menu button clicks it and opens its menu; choosing an entry
// names both items.
TEST_F(SnapCommandTest, ToolbarItemsAndTheirMenus) {
  ASSERT_EQ(run({"veltToolbar", "--size", "300x30", "--tool", "new|New", "--tool", "file|File||3",
                 "--item", "open|Open", "--events", "--input", "-"},
                "click 50 12\nclick 55 36\n"),
            0)
      << err.str();
  EXPECT_EQ(out.str(), "ItemClicked 2 \"file\"\nMenuItemClicked 2 \"file\" 1 \"open\"\n");
  EXPECT_EQ(run({"veltButton", "--tool", "k"}), 2);
  EXPECT_NE(err.str().find("--tool: veltButton has no toolbar items"), std::string::npos);
}

// A strip of two 4-pixel icons (red, blue) cut into the list's image list;
// sorted entries; the wheel scrolls and get reads back what the list holds.
TEST_F(SnapCommandTest, ListEntriesImageStripWheelAndGet) {
  std::vector<uint32_t> pixels(8 * 4);
  for (size_t i = 0; i < pixels.size(); ++i)
    pixels[i] = (i % 8) < 4 ? 0xFFFF0000 : 0xFF0000FF;
  Png::Write(path("strip.png"), Picture(8, 4, pixels));
  std::vector<std::string> arguments = {"veltListbox",     "--size",  "120x60",
                                        "--sorted",        "1",       "--imagelist",
                                        path("strip.png"), "--input", "-"};
  for (const char* entry : {"c|Cherry||2", "a|Apple||1", "b|Banana"}) {
    arguments.push_back("--entry");
    arguments.push_back(entry);
  }
  for (int i = 1; i <= 9; ++i) {
    arguments.push_back("--entry");
    arguments.push_back("z" + std::to_string(i) + "|Zoo " + std::to_string(i));
  }
  const std::string script = "click 20 5\nget SelectedItem\nwheel 20 20 -1\nget Enabled\n";
  ASSERT_EQ(run(arguments, script), 0) << err.str();
  EXPECT_EQ(out.str(), "SelectedItem=1\nEnabled=True\n");
  EXPECT_EQ(run({"veltListbox", "--imagelist", path("strip.png") + ":3"}), 2);
  EXPECT_NE(err.str().find("not a strip of square icons 3 pixels wide"), std::string::npos);
  EXPECT_EQ(run({"veltButton", "--entry", "k"}), 2);
  EXPECT_NE(err.str().find("veltButton has no list entries"), std::string::npos);
  EXPECT_EQ(run({"veltTab", "--imagelist", path("strip.png")}), 2);
  EXPECT_NE(err.str().find("veltTab has no ImageList"), std::string::npos);
  EXPECT_EQ(run({"veltListbox", "--input", "-"}, "get Nothing\n"), 2);
  EXPECT_NE(err.str().find("\"Nothing\""), std::string::npos);
}

// Typing and Ctrl+V go through the number filter (the pasted "a" becomes a
// space); a right press opens the menu, whose Copy takes the selection.
TEST_F(SnapCommandTest, TextBoxFiltersTypedAndPastedTextAndItsMenuCopies) {
  const std::string script =
      "clip 12a\nfocus\ntext 4a\nkeydown 17\nkey 86\nkeyup 17\nget Text\n"
      "prop SelStart=0\nprop SelLength=2\ndown 2 10 10\nup 2 10 10\n"
      "key 40\nkey 40\nkey 13\nwait 5\nget SelLength\n";
  ASSERT_EQ(run({"veltTextBox", "--prop", "DataFormat=2", "--events", "--input", "-"}, script), 0)
      << err.str();
  EXPECT_EQ(out.str(),
            "KeyPress 52\nKeyPress 0\nKeyDown 17 2\nKeyDown 86 2\nKeyPress 0\nKeyUp 86 2\n"
            "KeyUp 17 0\nText=\"412 Text1\"\nSelLength=2\nclipboard \"41\"\n");
}

TEST_F(SnapCommandTest, AFailureWhileRunningKeepsEarlierShotsOnly) {
  const std::string script = "shot " + path("early.png") + "\nprop Enabled=False\nfocus\n";
  EXPECT_EQ(run({"veltButton", "--input", "-", "--out", path("out.png")}, script), 2);
  EXPECT_NE(err.str().find("line 3 \"focus\""), std::string::npos) << err.str();
  EXPECT_TRUE(fs::exists(path("early.png")));
  EXPECT_FALSE(fs::exists(path("out.png")));
}

// A control that sizes itself takes the form along: none of the desktop shows
// in the picture, the slider's tick labels and the whole caption included.
TEST_F(SnapCommandTest, TheFormFollowsAControlThatSizesItself) {
  const std::vector<std::vector<std::string>> cases = {
      {"veltSlider", "--prop", "TickStyle=3"},
      {"veltLabel", "--prop", "Caption=a much longer caption", "--prop", "AutoSize=True"}};
  for (std::vector<std::string> arguments : cases) {
    arguments.insert(arguments.end(), {"--out", path("out.png")});
    ASSERT_EQ(run(arguments), 0) << err.str();
    const std::shared_ptr<Picture> picture = Png::Read(path("out.png"));
    const uint32_t desktop = 0xFF000000u | OleToPixel(HeadlessWindowSystem::kDesktopColor);
    const uint32_t* pixels = picture->Pixels();
    const auto count = static_cast<size_t>(picture->Width()) * picture->Height();
    EXPECT_EQ(std::count(pixels, pixels + count, desktop), 0) << arguments[0];
  }
}

// The control's own error names the property; the tool does not say it again.
// A link the control would open is printed, not opened.
TEST_F(SnapCommandTest, ErrorsNameThePropertyOnceAndLinksArePrintedNotOpened) {
  EXPECT_EQ(run({"veltScrollBar", "--prop", "Min=-2147483648"}), 2);
  EXPECT_NE(err.str().find("velt snap: veltScrollBar.Min: the range"), std::string::npos)
      << err.str();
  EXPECT_EQ(
      run({"veltLabel", "--prop", "Hyperlink=https://example.org/", "--events", "--input", "-"},
          "click 20 10\n"),
      0);
  EXPECT_NE(out.str().find("HyperlinkClick \"https://example.org/\" False\n"
                           "shell.Open \"https://example.org/\"\nMouseUp"),
            std::string::npos)
      << out.str();
}

}  // namespace
}  // namespace velt::tool
