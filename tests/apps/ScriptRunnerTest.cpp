#include "apps/velt/ScriptRunner.hpp"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "apps/velt/EventPrinter.hpp"
#include "apps/velt/ScriptError.hpp"
#include "apps/velt/ScriptParser.hpp"
#include "apps/velt/SnapSession.hpp"
#include "velt/controls/ControlRegistry.hpp"
#include "velt/controls/buttons/veltButton.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/Png.hpp"

namespace velt::tool {
namespace {

class ScriptRunnerTest : public ::testing::Test {
 protected:
  explicit ScriptRunnerTest(bool wholeScreen = false)
      : session(ControlRegistry::Standard().ClassNamed("veltButton"), SizeL{100, 30}, wholeScreen),
        runner(session.System(), session, "test"),
        printer(session.ControlSite(), out) {}

  veltButton& button() { return dynamic_cast<veltButton&>(session.Control()); }
  // Runs the script and returns the events printed meanwhile.
  std::string play(const std::string& script) {
    out.str("");
    runner.Run(ScriptParser::Parse(script, "test"));
    return out.str();
  }

  SnapSession session;
  ScriptRunner runner;
  std::ostringstream out;
  EventPrinter printer;
};

// The pointer starts off the control, on the screen's bottom-right pixel.
TEST_F(ScriptRunnerTest, PressesMoveThePointerFirstOnlyWhenItIsElsewhere) {
  EXPECT_EQ(play("down 1 0 0\nup 1 0 0\n"),
            "MouseMove 0 0 0 0\nMouseDown 1 0 0 0\nClick\nMouseUp 1 0 0 0\n");
  EXPECT_EQ(play("click 10 10\nclick 10 10\ndown 1 20 12\nup 1 20 12\n"),
            "MouseMove 0 0 10 10\nMouseDown 1 0 10 10\nClick\nMouseUp 1 0 10 10\n"
            "MouseDown 1 0 10 10\nClick\nMouseUp 1 0 10 10\n"
            "MouseMove 0 0 20 12\nMouseDown 1 0 20 12\nClick\nMouseUp 1 0 20 12\n");
}

TEST_F(ScriptRunnerTest, KeysTypeTheirCharacterAndModifiersStayHeld) {
  EXPECT_EQ(play("focus\nkey 65\nkeydown 16\nkey 65\nkey 112\nkeyup 16\nkeydown 70 4\n"),
            "KeyDown 65 0\nKeyPress 97\nKeyUp 65 0\n"
            "KeyDown 16 1\nKeyDown 65 1\nKeyPress 65\nKeyUp 65 1\n"
            "KeyDown 112 1\nKeyUp 112 1\nKeyUp 16 0\nKeyDown 70 4\n");
  EXPECT_EQ(play("keydown 17\nclick 5 5\nkeyup 17\nchar 228\ntext a\"\n"),
            "KeyDown 17 2\nMouseMove 0 2 5 5\nMouseDown 1 2 5 5\nClick\nMouseUp 1 2 5 5\n"
            "KeyUp 17 0\nKeyPress 228\nKeyPress 97\nKeyPress 34\n");
}

// Shift 1, Ctrl 2, Alt 4: Ctrl+C is 3, 100 the numeric keypad's 4; Shift (16),
// the left arrow (37), F1 (112) and keys with Alt or Ctrl+Space type nothing.
TEST(ScriptRunnerKeysTest, CharactersOfAUsKeyboard) {
  struct Case {
    int16_t key, shift;
    std::optional<int16_t> character;
  };
  const auto none = std::nullopt;
  // clang-format off
  const std::vector<Case> cases = {{'A', 0, 'a'},  {'Z', 1, 'Z'},   {'C', 2, 3},     {'A', 4, none},
                                   {'1', 0, '1'},  {'1', 1, '!'},   {13, 0, 13},     {100, 0, '4'},
                                   {186, 0, ';'},  {222, 1, '"'},   {16, 0, none},   {37, 0, none},
                                   {112, 0, none}, {32, 2, none}};
  // clang-format on
  for (const Case& c : cases)
    EXPECT_EQ(ScriptRunner::CharacterOfKey(c.key, c.shift), c.character) << c.key << "/" << c.shift;
}

TEST_F(ScriptRunnerTest, WaitMovesTheClockAndFiresTimersOnTheWay) {
  HeadlessWindowSystem& system = session.System();
  const int64_t start = system.NowMs();
  play("move 50 15\nwait 0\n");
  EXPECT_EQ(system.NowMs(), start);
  EXPECT_EQ(button().State(), bsNormal);  // the hover timer has not ticked yet
  play("wait 1\n");
  EXPECT_EQ(button().State(), bsHover);
  play("move 300 300\nwait 250\n");
  EXPECT_EQ(system.NowMs(), start + 251);
  EXPECT_EQ(button().State(), bsNormal);
}

// The hover timer lets input run on each tick; still nothing after a wait
// arrives before the clock has moved on by all of it.
TEST_F(ScriptRunnerTest, NoCommandArrivesBeforeTheWaitBeforeItHasPassed) {
  HeadlessWindowSystem& system = session.System();
  const int64_t start = system.NowMs();
  int64_t releasedAt = -1;
  auto connection = button().MouseUp.connect(
      [&](int16_t, int16_t, float, float) { releasedAt = system.NowMs(); });
  play("move 50 15\nwait 5\ndown 1 50 15\nwait 300\nup 1 50 15\n");
  EXPECT_EQ(releasedAt, start + 305);
}

// The script is queued ahead of the control: a handler that waits inside DoEvents for
// the button to come up sees the script's later lines arrive.
TEST_F(ScriptRunnerTest, ARoutineWaitingInsideDoEventsSeesLaterCommands) {
  Site& site = session.ControlSite();
  int rounds = 0;
  auto connection = button().MouseDown.connect([&](int16_t, int16_t, float, float) {
    while (site.AsyncKeyState(1) != 0 && rounds < 100) {
      site.DoEvents();
      ++rounds;
    }
    out << "released\n";
  });
  EXPECT_EQ(play("down 1 5 5\nwait 10\nmove 60 5\nup 1 60 5\nprop Caption=later\n"),
            "MouseMove 0 0 5 5\nMouseDown 1 0 5 5\nMouseMove 1 0 60 5\nClick\nMouseUp 1 0 60 5\n"
            "released\n");
  EXPECT_LT(rounds, 100);
  EXPECT_EQ(button().Caption(), "later");
}

TEST_F(ScriptRunnerTest, FocusBlurAndProperties) {
  play("focus\n");
  EXPECT_EQ(button().HasFocus(), 1);
  EXPECT_EQ(play("blur\nkey 32\n"), "");
  EXPECT_EQ(button().HasFocus(), 0);
  play("prop Caption=\"quoted\"\n");
  EXPECT_EQ(button().Caption(), "\"quoted\"");
}

TEST_F(ScriptRunnerTest, AnErrorWhileRunningNamesItsLineAndStopsThere) {
  try {
    play("move 1 1\nprop Enabled=False\nfocus\nmove 2 2\n");
    FAIL() << "no error";
  } catch (const ScriptError& error) {
    EXPECT_EQ(error.Line(), 3);
    EXPECT_EQ(error.LineText(), "focus");
    EXPECT_EQ(error.Number(), 5);
  }
  EXPECT_EQ(session.System().PendingInput(), 1u);  // "move 2 2" never ran
}

TEST_F(ScriptRunnerTest, CheckFindsBadPropertiesBeforeAnythingRuns) {
  const auto script = ScriptParser::Parse("click 5 5\nprop ImageIndex=2\nprop Shape=1\n", "s.txt");
  try {
    runner.Check(script);
    FAIL() << "no error";
  } catch (const ScriptError& error) {
    EXPECT_EQ(error.Line(), 3);
    EXPECT_NE(std::string(error.what()).find("Shape"), std::string::npos);
  }
  EXPECT_EQ(session.System().PendingInput(), 0u);
  EXPECT_EQ(button().ImageIndex(), 0);
}

TEST_F(ScriptRunnerTest, ShotsAreTheControlsRectangleOfTheScreen) {
  const std::filesystem::path file =
      std::filesystem::temp_directory_path() / ("velt-shot-" + std::to_string(getpid()) + ".png");
  play("shot \"" + file.string() + "\"\n");
  const auto picture = Png::Read(file.string());
  std::filesystem::remove(file);
  ASSERT_EQ(picture->Width(), 100);
  ASSERT_EQ(picture->Height(), 30);
  const Canvas& surface = session.ControlSite().Surface();
  for (int32_t y : {0, 15, 29})
    for (int32_t x : {0, 50, 99})
      EXPECT_EQ(picture->Pixel(x, y) & 0xFFFFFF, surface.PixelRGB(x, y)) << x << "," << y;
}

class WholeScreenTest : public ScriptRunnerTest {
 protected:
  WholeScreenTest() : ScriptRunnerTest(true) {}
};

TEST_F(WholeScreenTest, ShowsTheDesktopAroundTheForm) {
  const Canvas screen = session.Snapshot();
  EXPECT_EQ(screen.ScaleWidth(), 1024);
  EXPECT_EQ(screen.ScaleHeight(), 768);
  EXPECT_EQ(PixelToOle(screen.PixelRGB(500, 500)), HeadlessWindowSystem::kDesktopColor);
  EXPECT_EQ(screen.PixelRGB(50, 29), session.ControlSite().Surface().PixelRGB(50, 29));
}

}  // namespace
}  // namespace velt::tool
