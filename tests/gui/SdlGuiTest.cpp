// Real windows on a real X display: CTest runs each case under xvfb-run, and
// xdotool moves the real pointer and presses real keys. Every wait is bounded.

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "apps/velt/Gallery.hpp"
#include "support/HeadlessForm.hpp"
#include "support/Pixels.hpp"
#include "velt/controls/buttons/veltButton.hpp"
#include "velt/controls/menus/MenuItemListing.hpp"
#include "velt/controls/menus/veltPUMenu.hpp"
#include "velt/controls/menus/veltToolbar.hpp"
#include "velt/controls/text/veltLabel.hpp"
#include "velt/controls/text/veltTextBox.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/MousePointer.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/Png.hpp"
#include "velt/platform/PopupWindow.hpp"
#include "velt/platform/sdl/SdlWindowSystem.hpp"

namespace velt {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using Names = std::vector<std::string>;

constexpr int32_t kFormLeft = 40;
constexpr int32_t kFormTop = 60;

bool run(const std::string& command) {
  return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

// The first line the command prints.
std::string firstLine(const std::string& command) {
  std::string text;
  if (FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r")) {
    char buffer[256];
    while (std::fgets(buffer, sizeof buffer, pipe))
      text += buffer;
    pclose(pipe);
  }
  return text.substr(0, text.find('\n'));
}

// Runs step until the condition holds, for ten seconds at most.
bool waitUntil(const std::function<bool()>& condition, const std::function<void()>& step = {},
               std::chrono::seconds patience = std::chrono::seconds(10)) {
  const auto deadline = Clock::now() + patience;
  while (Clock::now() < deadline) {
    if (step) step();
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return false;
}

::testing::AssertionResult samePixels(const Canvas& shown, const Canvas& expected) {
  if (shown.ScaleWidth() == expected.ScaleWidth() &&
      shown.ScaleHeight() == expected.ScaleHeight() && test::DifferenceBox(shown, expected).Empty())
    return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "the pictures differ";
}

// Each run of repeated names counted once: the pointer may report a move twice.
Names collapsed(const Names& names) {
  Names result;
  for (const std::string& name : names)
    if (result.empty() || result.back() != name) result.push_back(name);
  return result;
}

class GuiTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* display = std::getenv("DISPLAY");
    ASSERT_TRUE(display && *display) << "no X display: run under xvfb-run or with DISPLAY set";
    ASSERT_TRUE(run("xdotool version")) << "xdotool is missing (Debian package xdotool)";
  }
};

class SdlGuiTest : public GuiTest {
 protected:
  void SetUp() override {
    GuiTest::SetUp();
    if (HasFatalFailure()) return;
    system = std::make_shared<SdlWindowSystem>();
    form = std::make_unique<Form>(system, "velt gui test", 240, 120);
    form->Font(test::PinnedFont());
    form->MoveWindow(kFormLeft, kFormTop);
    form->Add<veltButton>("veltButton1", 20, 30, 100, 30);
    form->Add<veltButton>("veltButton2", 130, 30, 100, 30);
    log = std::make_unique<test::EventLog>(*form->FindSite("veltButton1"));
    pumpFor(50);
    ASSERT_EQ(form->WindowRect().Left, kFormLeft) << "the desktop moved the window";
  }
  void TearDown() override {
    log.reset();
    form.reset();
    system.reset();
  }

  bool pumpUntil(const std::function<bool()>& condition) {
    return waitUntil(condition, [this] { system->DoEvents(); });
  }
  void pumpFor(int milliseconds) {
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    pumpUntil([&] { return Clock::now() >= end; });
  }
  bool lastEventIs(const std::string& name) {
    return pumpUntil([&] { return !log->Lines().empty() && log->Names().back() == name; });
  }
  bool pointTo(int32_t x, int32_t y) {
    return run("xdotool mousemove " + std::to_string(x) + " " + std::to_string(y));
  }

  std::shared_ptr<SdlWindowSystem> system;
  std::unique_ptr<Form> form;
  std::unique_ptr<test::EventLog> log;
};

TEST_F(SdlGuiTest, ARealClickReachesTheButtonWhichThenHasTheKeyboardUntilTab) {
  form->FindSite("veltButton2")->SetFocus();
  ASSERT_TRUE(pointTo(kFormLeft + 30, kFormTop + 45));
  ASSERT_TRUE(lastEventIs("MouseMove")) << "no MouseMove arrived";
  ASSERT_TRUE(run("xdotool click 1"));
  ASSERT_TRUE(lastEventIs("MouseUp")) << "the click did not arrive";
  EXPECT_EQ(collapsed(log->Names()), (Names{"MouseMove", "MouseDown", "Click", "MouseUp"}));
  EXPECT_EQ(log->Lines().back(), "MouseUp(i1, i0, f10, f15)");

  log->Clear();
  ASSERT_TRUE(run("xdotool key a"));
  ASSERT_TRUE(lastEventIs("KeyUp")) << "the key did not reach the button clicked";
  EXPECT_EQ(log->Lines(), (Names{"KeyDown(i65, i0)", "KeyPress(i97)", "KeyUp(i65, i0)"}));
  ASSERT_TRUE(run("xdotool key Tab"));
  EXPECT_TRUE(pumpUntil([&] { return form->FocusedSite() == form->FindSite("veltButton2"); }))
      << "Tab did not move the focus on";
}

// The form shown, its first control has the keyboard before anything is clicked.
TEST_F(SdlGuiTest, AShownFormGivesItsFirstControlTheFocus) {
  EXPECT_TRUE(pumpUntil([&] { return form->FocusedSite() == form->FindSite("veltButton1"); }));
}

// The cursor SDL shows is the shape of the control under the pointer: the
// hand over a hyperlink while it is hovered, a picture for MousePointer 99,
// the arrow again on the bare form.
TEST_F(SdlGuiTest, TheCursorShownIsTheShapeOfTheControlUnderThePointer) {
  auto link = form->Add<veltLabel>("link", 20, 80, 100, 20);
  link->Hyperlink("https://example.org/");
  const auto shownIs = [&](int16_t shape) {
    return pumpUntil([&] { return system->ShownShape() == std::optional<int16_t>(shape); });
  };
  ASSERT_TRUE(pointTo(kFormLeft + 40, kFormTop + 90));
  EXPECT_TRUE(shownIs(mpHand)) << "no hand over the hyperlink";
  auto icon = std::make_shared<Picture>(16, 16);
  std::fill(icon->Pixels(), icon->Pixels() + 256, 0xFFFF0000u);
  link->MouseIcon(icon);
  link->MousePointer(mpCustom);
  EXPECT_TRUE(shownIs(mpCustom)) << "no picture for MousePointer 99";
  link->MousePointer(mpIBeam);
  EXPECT_TRUE(shownIs(mpIBeam));
  ASSERT_TRUE(pointTo(kFormLeft + 5, kFormTop + 5));
  EXPECT_TRUE(shownIs(mpDefault)) << "the bare form keeps the shape";
}

TEST_F(SdlGuiTest, APopupShowsAtItsScreenPlaceTakesClicksAndLosesTheFocusToTheForm) {
  form->FindSite("veltButton1")->SetFocus();
  std::shared_ptr<PopupWindow> popup = system->CreatePopup("Menu");
  Names events;
  auto down = popup->MouseDown.connect([&](int16_t button, int16_t, float x, float y) {
    events.push_back("MouseDown " + std::to_string(button) + " " + std::to_string(int(x)) + " " +
                     std::to_string(int(y)));
  });
  auto click = popup->Click.connect([&] { events.push_back("Click"); });
  auto lost = popup->LostFocus.connect([&] { events.push_back("LostFocus"); });
  popup->Move(400, 300, 80, 60);
  popup->Surface().BackColor(0x00C0FF);
  popup->Topmost(true);
  popup->Show(true);
  pumpFor(50);
  EXPECT_TRUE(samePixels(system->WindowImage(*popup), popup->Surface()));
  EXPECT_EQ(firstLine("xdotool getwindowfocus getwindowname"), "velt gui test")
      << "the pop-up took the keyboard";

  ASSERT_TRUE(pointTo(420, 317) && run("xdotool click 1"));
  ASSERT_TRUE(pumpUntil([&] { return !events.empty() && events.back() == "Click"; }))
      << "the click on the pop-up did not arrive";
  EXPECT_EQ(events, (Names{"MouseDown 1 20 17", "Click"}));
  ASSERT_TRUE(pointTo(kFormLeft + 5, kFormTop + 5) && run("xdotool click 1"));
  ASSERT_TRUE(pumpUntil([&] { return events.back() == "LostFocus"; }));
  popup->Show(false);
  pumpFor(50);
  log->Clear();
  ASSERT_TRUE(run("xdotool key b"));
  EXPECT_TRUE(pumpUntil([&] { return !log->Lines().empty(); }))
      << "the form lost the keyboard to the pop-up";
}

// The gallery's toolbar in a real window: the real pointer clicks its check
// button (which the gallery toggles), opens a menu, switches to the other menu
// by moving, and chooses an entry.
TEST_F(GuiTest, TheGallerysToolbarWorksWithTheRealPointer) {
  auto system = std::make_shared<SdlWindowSystem>();
  tool::Gallery gallery(system);
  Form& form = gallery.GalleryForm();
  form.MoveWindow(kFormLeft, kFormTop);
  Site& site = *form.FindSite(tool::Gallery::kToolbarName);
  auto bar = std::dynamic_pointer_cast<veltToolbar>(site.Control());
  test::EventLog log(site);
  const auto pump = [&](const std::function<bool()>& condition) {
    return waitUntil(condition, [&] { system->DoEvents(); });
  };
  const auto settled = Clock::now() + std::chrono::milliseconds(100);
  pump([&] { return Clock::now() >= settled; });
  const auto pointAt = [&](const std::string& key) {
    for (const ToolbarCell& cell : bar->Layout().Cells)
      if (bar->ToolbarItems.Item(cell.Index)->sKey() == key) {
        const RectL rect = site.WindowRect();
        return run("xdotool mousemove " +
                   std::to_string(rect.Left + cell.ButtonLeft() + cell.Width / 2) + " " +
                   std::to_string(rect.Top + kToolbarItemTop + bar->Layout().ItemHeight / 2));
      }
    return false;
  };
  const auto lastIs = [&](const std::string& line) {
    return pump([&] { return !log.Lines().empty() && log.Lines().back() == line; });
  };
  const std::shared_ptr<veltPUMenu> menu = bar->veltPUMenu1();

  ASSERT_TRUE(pointAt("wrap") && run("xdotool click 1"));
  ASSERT_TRUE(lastIs("ItemClicked(i3, String:wrap)")) << "the click did not arrive";
  EXPECT_FALSE(bar->ToolbarItems.Item("wrap")->Checked());
  ASSERT_TRUE(pointAt("file") && run("xdotool click 1"));
  ASSERT_TRUE(lastIs("ItemClicked(i7, String:file)"));
  ASSERT_TRUE(pump([&] { return menu->Window()->Visible(); })) << "the menu did not open";
  EXPECT_EQ(menu->MenuItem, bar->ToolbarItems.Item("file")->ToolbarMenuItems);
  ASSERT_TRUE(pointAt("view"));
  ASSERT_TRUE(pump([&] {
    return menu->MenuItem == bar->ToolbarItems.Item("view")->ToolbarMenuItems;
  })) << "moving onto the other menu button did not switch menus";
  const RectL rows = menu->Window()->WindowRect();
  const MenuItemListing& first = *menu->Listings()->Item(1);
  ASSERT_TRUE(run("xdotool mousemove " + std::to_string(rows.Left + 10) + " " +
                  std::to_string(rows.Top + first.Top() + first.Height() / 2)) &&
              run("xdotool click 1"));
  EXPECT_TRUE(lastIs("MenuItemClicked(i8, String:view, i1, String:zoom)"));
  EXPECT_TRUE(pump([&] { return !menu->Window()->Visible() && !bar->Pressed(); }));
}

std::string contents(const fs::path& path) {
  std::ifstream in(path);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A saved snapshot, opaque, as a canvas.
Canvas readPng(const fs::path& path) {
  const auto picture = Png::Read(path.string());
  Canvas canvas(picture->Width(), picture->Height());
  canvas.DrawPicture(*picture, 0, 0);
  return canvas;
}

// The example's window, clicked on its button, prints the button's events and
// shows what the same input gives headless.
TEST_F(GuiTest, VeltRunShowsAnExampleWhoseEventsItPrintsAndWhosePictureMatchesHeadless) {
  const fs::path folder = fs::temp_directory_path() / ("velt-run-gui-" + std::to_string(getpid()));
  fs::create_directories(folder);
  struct RemovedAtTheEnd {
    fs::path path;
    ~RemovedAtTheEnd() { fs::remove_all(path); }
  } removed{folder};
  const fs::path printed = folder / "printed.txt", shown = folder / "window.png";
  const std::string tool =
      std::string(VELT_TOOL_PATH) + " run " + VELT_EXAMPLES_DIR + "/button.json --out ";
  ASSERT_EQ(std::system(("(" + tool + shown.string() + " --events; echo \"ended: $?\") >" +
                         printed.string() + " 2>&1 &")
                            .c_str()),
            0);
  std::string window;
  // A program started cold on a busy machine (a sanitizer build, say) may
  // take a while to map its window.
  ASSERT_TRUE(waitUntil(
      [&] {
        window = firstLine("xdotool search --onlyvisible --name '^velt button example$'");
        return !window.empty();
      },
      {}, std::chrono::seconds(30)))
      << "the window did not appear; the tool printed: " << contents(printed);
  const std::string velt = firstLine("xdotool getwindowpid " + window);
  ASSERT_FALSE(velt.empty()) << "the window names no process";
  auto printedHas = [&](const std::string& text) {
    return waitUntil([&] { return contents(printed).find(text) != std::string::npos; });
  };

  // The button of the example is at (70, 35), 100 x 30.
  ASSERT_TRUE(run("xdotool mousemove --window " + window + " 100 50"));
  const bool clicked =
      printedHas("okButton.MouseMove") && run("xdotool click 1") && printedHas("okButton.MouseUp");
  std::this_thread::sleep_for(std::chrono::milliseconds(50));  // hover ticks with the pointer still
  kill(std::stoi(velt), SIGTERM);  // as a desktop asks a program to quit
  ASSERT_TRUE(clicked) << "the click did not arrive:\n" << contents(printed);
  ASSERT_TRUE(printedHas("ended: 0")) << "velt run did not close cleanly:\n" << contents(printed);
  EXPECT_NE(contents(printed).find("okButton.MouseDown 1 0 30 15"), std::string::npos);
  EXPECT_NE(contents(printed).find("okButton.Click"), std::string::npos);

  std::ofstream(folder / "click.txt") << "move 100 50\nclick 100 50\nwait 50\n";
  ASSERT_TRUE(run(tool + (folder / "headless.png").string() + " --headless --input " +
                  (folder / "click.txt").string()));
  EXPECT_TRUE(samePixels(readPng(shown), readPng(folder / "headless.png")));
}

// The gallery in a real window: real keys typed into its text boxes reach
// them through their filters, with Backspace, and Ctrl+Z takes a typed run back.
TEST_F(GuiTest, TheGallerysTextBoxesTakeRealTyping) {
  auto system = std::make_shared<SdlWindowSystem>();
  tool::Gallery gallery(system);
  Form& form = gallery.GalleryForm();
  form.MoveWindow(10, 10);
  const auto pumpUntil = [&](const std::function<bool()>& condition) {
    return waitUntil(condition, [&] { system->DoEvents(); });
  };
  const auto shown = Clock::now() + std::chrono::milliseconds(100);
  pumpUntil([&] { return Clock::now() >= shown; });
  ASSERT_EQ(form.WindowRect().Left, 10) << "the desktop moved the window";
  // A German layout has a key for "ä"; a key xdotool maps for the moment is
  // gone again before the program reads its text.
  ASSERT_TRUE(run("setxkbmap de")) << "setxkbmap is missing (Debian package x11-xkb-utils)";
  struct Case {
    const char* name;
    const char* keys;
    const char* expected;
  };
  for (const Case& c : {Case{"textPlain", "End space o k", "Plain text ok"},
                        Case{"textNumbers", "End 7 a 8 BackSpace 9", "1234579"},
                        Case{"textUpper", "End x adiaeresis", "UPPER CASEX\xC3\x84"},
                        Case{"textPlain", "ctrl+z", "Plain text"}}) {
    SCOPED_TRACE(std::string(c.name) + ": " + c.keys);
    Site& site = *form.FindSite(c.name);
    const auto box = std::dynamic_pointer_cast<veltTextBox>(site.Control());
    const RectL place = site.Bounds();
    ASSERT_TRUE(run("xdotool mousemove " + std::to_string(10 + place.Left + 40) + " " +
                    std::to_string(10 + place.Top + 8) + " click 1"));
    ASSERT_TRUE(pumpUntil([&] { return form.FocusedSite() == site.FindChild("Text1"); }))
        << "the click did not give the editor the focus";
    ASSERT_TRUE(run(std::string("xdotool key ") + c.keys));
    EXPECT_TRUE(pumpUntil([&] { return box->Text() == c.expected; })) << box->Text();
  }
}

}  // namespace
}  // namespace velt
