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

// The fields a command's verb uses; verbs are matched in any letter case and
// numbers may be written &H or 0x hexadecimal.
TEST(ScriptParserTest, EachCommandFillsItsFields) {
  struct Case {
    const char* line;
    ScriptVerb verb;
    std::vector<int64_t> numbers;  // X Y Button Code Shift Milliseconds
    std::string argument = "";
  };
  constexpr int64_t held = ScriptCommand::kShiftAsHeld;
  const std::vector<Case> cases = {
      {"move 12 -3", ScriptVerb::Move, {12, -3, 0, 0, held, 0}},
      {"down 2 &H10 0x20", ScriptVerb::Down, {16, 32, 2, 0, held, 0}},
      {"CLICK 5 6", ScriptVerb::Click, {5, 6, 0, 0, held, 0}},
      {"dblclick 5 6", ScriptVerb::DblClick, {5, 6, 0, 0, held, 0}},
      {"Menu 10 &H14", ScriptVerb::Menu, {10, 20, 0, 0, held, 0}},
      {"keydown 65 3", ScriptVerb::KeyDown, {0, 0, 0, 65, 3, 0}},
      {"key 13", ScriptVerb::Key, {0, 0, 0, 13, held, 0}},
      {"char 65535", ScriptVerb::Char, {0, 0, 0, -1, held, 0}},  // the 16-bit pattern
      {"wait 250", ScriptVerb::Wait, {0, 0, 0, 0, held, 250}},
      {"Blur", ScriptVerb::Blur, {0, 0, 0, 0, held, 0}},
      {"wheel 5 6 -2", ScriptVerb::Wheel, {5, 6, 0, -2, held, 0}},
      {"get SelectedItem", ScriptVerb::Get, {0, 0, 0, 0, held, 0}, "SelectedItem"},
      {"today -44-03-15", ScriptVerb::Today, {0, 0, 0, 0, held, 0}, "-44-03-15"},
      {"prop Caption=Hello there  # greeting",
       ScriptVerb::Prop,
       {0, 0, 0, 0, held, 0},
       "Caption=Hello there"},
      {R"(prop "Caption=#1")", ScriptVerb::Prop, {0, 0, 0, 0, held, 0}, "Caption=#1"},
      {"shot out dir/after click.png",
       ScriptVerb::Shot,
       {0, 0, 0, 0, held, 0},
       "out dir/after click.png"},
  };
  for (const Case& c : cases) {
    const ScriptCommand command = only(c.line);
    EXPECT_EQ(command.Verb, c.verb) << c.line;
    EXPECT_EQ((std::vector<int64_t>{command.X, command.Y, command.Button, command.Code,
                                    command.Shift, command.Milliseconds}),
              c.numbers)
        << c.line;
    EXPECT_EQ(command.Argument, c.argument) << c.line;
  }
}

TEST(ScriptParserTest, TextIsOneCharacterCodePerCharacter) {
  EXPECT_EQ(only("text hé €").Characters, (std::vector<int16_t>{104, 233, 32, 0x20AC}));
  EXPECT_EQ(only(R"(text " a#b\t" # quoted)").Characters,
            (std::vector<int16_t>{32, 97, 35, 98, 9}));
  EXPECT_TRUE(only(R"(text "")").Characters.empty());
  // Beyond U+FFFF: the two surrogate codes, high first.
  EXPECT_EQ(only("text \xf0\x9f\x98\x80").Characters,
            (std::vector<int16_t>{static_cast<int16_t>(0xD83D), static_cast<int16_t>(0xDE00)}));
  EXPECT_EQ(only(R"(clip "a#b")").Argument, "a#b");
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
  // A huge line is quoted by a short prefix.
  try {
    ScriptParser::Parse(std::string(1 << 20, 'x'), "big.txt");
    FAIL() << "no error";
  } catch (const ScriptError& error) {
    EXPECT_LT(std::string(error.what()).size(), 300u);
    EXPECT_NE(std::string(error.what()).find("(1048576 bytes)"), std::string::npos) << error.what();
  }
}

TEST(ScriptParserTest, WrongArgumentsAreProblems) {
  EXPECT_EQ(problemOf("move 1"), "move needs move X Y");
  EXPECT_EQ(problemOf("move 1 2 3"), "unexpected \"3\" after move X Y");
  EXPECT_EQ(problemOf("move a 2"), "X \"a\" is not a number");
  EXPECT_EQ(problemOf("move 1 2000000"), "Y 2000000 is outside -1000000..1000000");
  EXPECT_NE(problemOf("down 3 1 1").find("button \"3\""), std::string::npos);
  for (const char* line : {"up",       "keydown 256",  "keyup 65 8",   "char 65536",
                           "char -1",  "text \"open",  "text \"a\" b", "text \xc3" /* cut UTF-8 */,
                           "wait -1",  "wait 3600001", "focus now",    "prop Caption",
                           "prop =1",  "shot \"\"",    "wheel 1 2",    "wheel 1 2 40000",
                           "get",      "get a b",      "clip",         R"(clip "a\u0000b")",
                           "clip \xc3"})
    EXPECT_NE(problemOf(line), "") << line;
  for (const char* line : {"today", "today 2023-02-29", "today 2024-02-01 x"})
    EXPECT_NE(problemOf(line), "") << line;
}

}  // namespace
}  // namespace velt::tool
