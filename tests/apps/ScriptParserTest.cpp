// Reading input scripts: every command, comments, quoting, limits, and bad
// lines reported by number and text.

#include "apps/velt/ScriptParser.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "apps/velt/ScriptError.hpp"

namespace velt::tool {
namespace {

ScriptCommand only(const std::string& line) {
  const std::vector<ScriptCommand> commands = ScriptParser::Parse(line, "test");
  EXPECT_EQ(commands.size(), 1u) << line;
  return commands.empty() ? ScriptCommand{} : commands[0];
}

// The problem reported for a one-line script, or "" when it parsed.
std::string problemOf(const std::string& line) {
  try {
    ScriptParser::Parse(line, "test");
  } catch (const ScriptError& error) {
    return error.Description();
  }
  return "";
}

TEST(ScriptParserTest, PointerCommands) {
  ScriptCommand move = only("move 12 -3");
  EXPECT_EQ(move.Verb, ScriptVerb::Move);
  EXPECT_EQ(move.X, 12);
  EXPECT_EQ(move.Y, -3);
  ScriptCommand down = only("down 2 &H10 0x20");
  EXPECT_EQ(down.Verb, ScriptVerb::Down);
  EXPECT_EQ(down.Button, 2);
  EXPECT_EQ(down.X, 16);
  EXPECT_EQ(down.Y, 32);
  ScriptCommand up = only("up 4 1 2");
  EXPECT_EQ(up.Verb, ScriptVerb::Up);
  EXPECT_EQ(up.Button, 4);
  ScriptCommand click = only("CLICK 5 6");
  EXPECT_EQ(click.Verb, ScriptVerb::Click);
  EXPECT_EQ(click.X, 5);
  EXPECT_EQ(click.Y, 6);
}

TEST(ScriptParserTest, MenuTakesAPointAndNothingMore) {
  ScriptCommand menu = only("Menu 10 &H14");
  EXPECT_EQ(menu.Verb, ScriptVerb::Menu);
  EXPECT_EQ(menu.X, 10);
  EXPECT_EQ(menu.Y, 20);
  EXPECT_NE(problemOf("menu 10").find("menu needs menu X Y"), std::string::npos)
      << problemOf("menu 10");
  EXPECT_NE(problemOf("menu 1 2 3").find("\"3\""), std::string::npos) << problemOf("menu 1 2 3");
  EXPECT_NE(problemOf("menu a 2").find("X \"a\""), std::string::npos) << problemOf("menu a 2");
}

TEST(ScriptParserTest, KeyCommands) {
  ScriptCommand keyDown = only("keydown 65 3");
  EXPECT_EQ(keyDown.Verb, ScriptVerb::KeyDown);
  EXPECT_EQ(keyDown.Code, 65);
  EXPECT_EQ(keyDown.Shift, 3);
  ScriptCommand keyUp = only("keyup 16");
  EXPECT_EQ(keyUp.Verb, ScriptVerb::KeyUp);
  EXPECT_EQ(keyUp.Shift, ScriptCommand::kShiftAsHeld);
  EXPECT_EQ(only("key 13").Verb, ScriptVerb::Key);
  EXPECT_EQ(only("key 13").Code, 13);
  ScriptCommand character = only("char 228");
  EXPECT_EQ(character.Verb, ScriptVerb::Char);
  EXPECT_EQ(character.Code, 228);
  EXPECT_EQ(only("char 65535").Code, -1);  // the 16-bit pattern
}

TEST(ScriptParserTest, TextIsOneCharacterCodePerCharacter) {
  EXPECT_EQ(only("text hé €").Characters, (std::vector<int16_t>{104, 233, 32, 0x20AC}));
  EXPECT_EQ(only("text  spaced out   ").Characters.size(), 10u);  // ends trimmed
  EXPECT_EQ(only(R"(text " a#b\t" # quoted)").Characters,
            (std::vector<int16_t>{32, 97, 35, 98, 9}));
  EXPECT_TRUE(only(R"(text "")").Characters.empty());
}

TEST(ScriptParserTest, ClockFocusPropertiesAndShots) {
  EXPECT_EQ(only("wait 250").Milliseconds, 250);
  EXPECT_EQ(only("wait 0").Verb, ScriptVerb::Wait);
  EXPECT_EQ(only("focus").Verb, ScriptVerb::Focus);
  EXPECT_EQ(only("Blur").Verb, ScriptVerb::Blur);
  ScriptCommand prop = only("prop Caption=Hello there  # greeting");
  EXPECT_EQ(prop.Verb, ScriptVerb::Prop);
  EXPECT_EQ(prop.Argument, "Caption=Hello there");
  EXPECT_EQ(only(R"(prop "Caption=#1")").Argument, "Caption=#1");
  ScriptCommand shot = only("shot out dir/after click.png");
  EXPECT_EQ(shot.Verb, ScriptVerb::Shot);
  EXPECT_EQ(shot.Argument, "out dir/after click.png");
}

TEST(ScriptParserTest, CommentsBlankLinesAndLineEndings) {
  const std::vector<ScriptCommand> commands = ScriptParser::Parse(
      "# a script\r\n\r\n   \nmove 1 2 # there\r\n\t# indented comment\nclick 3 4", "test");
  ASSERT_EQ(commands.size(), 2u);
  EXPECT_EQ(commands[0].Line, 4);
  EXPECT_EQ(commands[0].Source, "move 1 2 # there");
  EXPECT_EQ(commands[1].Line, 6);
  EXPECT_EQ(commands[1].Verb, ScriptVerb::Click);
  EXPECT_TRUE(ScriptParser::Parse("", "test").empty());
  EXPECT_EQ(only("move 1 2#no space needed").Y, 2);
}

TEST(ScriptParserTest, BadLinesAreReportedWithNumberAndText) {
  try {
    ScriptParser::Parse("move 1 1\n# fine\njump 3 4\nmove 2 2\n", "moves.txt");
    FAIL() << "no error";
  } catch (const ScriptError& error) {
    EXPECT_EQ(error.Line(), 3);
    EXPECT_EQ(error.LineText(), "jump 3 4");
    EXPECT_EQ(std::string(error.what()), R"(moves.txt line 3 "jump 3 4": unknown command "jump")");
  }
}

TEST(ScriptParserTest, WrongArgumentsAreProblems) {
  EXPECT_EQ(problemOf("move 1"), "move needs move X Y");
  EXPECT_EQ(problemOf("move 1 2 3"), "unexpected \"3\" after move X Y");
  EXPECT_EQ(problemOf("move a 2"), "X \"a\" is not a number");
  EXPECT_EQ(problemOf("move 1 2000000"), "Y 2000000 is outside -1000000..1000000");
  EXPECT_NE(problemOf("down 3 1 1").find("button \"3\""), std::string::npos);
  EXPECT_NE(problemOf("up"), "");
  EXPECT_NE(problemOf("click 1"), "");
  EXPECT_NE(problemOf("keydown 256"), "");
  EXPECT_NE(problemOf("keyup 65 8"), "");
  EXPECT_NE(problemOf("key"), "");
  EXPECT_NE(problemOf("key 65 1"), "");
  EXPECT_NE(problemOf("char 65536"), "");
  EXPECT_NE(problemOf("char -1"), "");
  EXPECT_NE(problemOf("text"), "");
  EXPECT_NE(problemOf("text \"open"), "");
  EXPECT_NE(problemOf("text \"a\" b"), "");
  EXPECT_NE(problemOf("text \xf0\x9f\x98\x80").find("U+1F600"), std::string::npos);
  EXPECT_NE(problemOf("text \xc3"), "");  // cut UTF-8
  EXPECT_NE(problemOf("wait -1"), "");
  EXPECT_NE(problemOf("wait 3600001"), "");
  EXPECT_NE(problemOf("focus now"), "");
  EXPECT_NE(problemOf("prop Caption"), "");
  EXPECT_NE(problemOf("prop =1"), "");
  EXPECT_NE(problemOf("prop"), "");
  EXPECT_NE(problemOf("shot"), "");
  EXPECT_NE(problemOf("shot \"\""), "");
}

}  // namespace
}  // namespace velt::tool
