#include "apps/velt/ScriptParser.hpp"

#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "apps/velt/PropertyArgument.hpp"
#include "apps/velt/ScriptError.hpp"
#include "velt/platform/CalendarDate.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/JsonText.hpp"

namespace velt::tool {

namespace {

struct VerbInfo {
  const char* word;
  ScriptVerb verb;
  const char* usage;
};

constexpr std::array<VerbInfo, 20> kVerbs = {{
    {"move", ScriptVerb::Move, "move X Y"},
    {"down", ScriptVerb::Down, "down B X Y"},
    {"up", ScriptVerb::Up, "up B X Y"},
    {"click", ScriptVerb::Click, "click X Y"},
    {"dblclick", ScriptVerb::DblClick, "dblclick X Y"},
    {"keydown", ScriptVerb::KeyDown, "keydown CODE [SHIFT]"},
    {"keyup", ScriptVerb::KeyUp, "keyup CODE [SHIFT]"},
    {"key", ScriptVerb::Key, "key CODE"},
    {"char", ScriptVerb::Char, "char CODE"},
    {"text", ScriptVerb::Text, "text STRING"},
    {"wait", ScriptVerb::Wait, "wait MS"},
    {"focus", ScriptVerb::Focus, "focus"},
    {"blur", ScriptVerb::Blur, "blur"},
    {"prop", ScriptVerb::Prop, "prop Name=Value"},
    {"shot", ScriptVerb::Shot, "shot FILE.png"},
    {"menu", ScriptVerb::Menu, "menu X Y"},
    {"wheel", ScriptVerb::Wheel, "wheel X Y N"},
    {"get", ScriptVerb::Get, "get NAME"},
    {"today", ScriptVerb::Today, "today YYYY-MM-DD"},
    {"clip", ScriptVerb::Clip, "clip TEXT"},
}};

constexpr int64_t kMaxKeyCode = 255;
constexpr int64_t kMaxShift = 7;
constexpr int64_t kMaxCharCode = 0xFFFF;
constexpr int64_t kMaxNotches = 32767;

[[noreturn]] void problem(const std::string& text) {
  throw Error(errInvalidProcedureCall, text);
}

bool isBlank(char c) {
  return c == ' ' || c == '\t';
}

char asciiLower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

bool wordIs(std::string_view word, const char* name) {
  std::string_view expected(name);
  if (word.size() != expected.size()) return false;
  for (size_t i = 0; i < word.size(); ++i)
    if (asciiLower(word[i]) != expected[i]) return false;
  return true;
}

// The words of one line, left to right; "#" outside a quoted argument ends it.
class LineReader {
 public:
  explicit LineReader(std::string_view line) : line_(line) {}

  bool AtEnd() {
    skipBlanks();
    return pos_ >= line_.size() || line_[pos_] == '#';
  }

  // The next run of characters up to a blank or "#"; empty at the end.
  std::string_view Word() {
    if (AtEnd()) return {};
    const size_t start = pos_;
    while (pos_ < line_.size() && !isBlank(line_[pos_]) && line_[pos_] != '#')
      ++pos_;
    return line_.substr(start, pos_ - start);
  }

  // Everything left, or one JSON string; nothing when the line has ended.
  std::optional<std::string> Rest() {
    if (AtEnd()) return std::nullopt;
    if (line_[pos_] == '"') return quoted();
    const size_t start = pos_;
    const size_t comment = line_.find('#', pos_);
    pos_ = comment == std::string_view::npos ? line_.size() : comment;
    std::string_view rest = line_.substr(start, pos_ - start);
    while (!rest.empty() && isBlank(rest.back()))
      rest.remove_suffix(1);
    return std::string(rest);
  }

 private:
  void skipBlanks() {
    while (pos_ < line_.size() && isBlank(line_[pos_]))
      ++pos_;
  }

  std::string quoted() {
    const size_t start = pos_++;
    while (pos_ < line_.size() && line_[pos_] != '"')
      pos_ += line_[pos_] == '\\' ? 2 : 1;
    if (pos_ >= line_.size()) problem("the quoted argument has no closing quote");
    ++pos_;
    const nlohmann::json value =
        nlohmann::json::parse(std::string(line_.substr(start, pos_ - start)), nullptr, false);
    if (!value.is_string()) problem("the quoted argument is not a valid JSON string");
    return value.get<std::string>();
  }

  std::string_view line_;
  size_t pos_ = 0;
};

// The code points of UTF-8 text; anything malformed is a problem.
std::vector<char32_t> codePoints(std::string_view text) {
  std::vector<char32_t> result;
  for (size_t i = 0; i < text.size();) {
    const auto lead = static_cast<unsigned char>(text[i]);
    const int length = lead < 0x80         ? 1
                       : (lead >> 5) == 6  ? 2
                       : (lead >> 4) == 14 ? 3
                       : (lead >> 3) == 30 ? 4
                                           : 0;
    if (length == 0 || i + length > text.size()) problem("the text is not valid UTF-8");
    char32_t code = length == 1 ? lead : lead & (0x7F >> length);
    for (int k = 1; k < length; ++k) {
      const auto next = static_cast<unsigned char>(text[i + k]);
      if ((next & 0xC0) != 0x80) problem("the text is not valid UTF-8");
      code = (code << 6) | (next & 0x3F);
    }
    constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
    if (code < kSmallest[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
      problem("the text is not valid UTF-8");
    result.push_back(code);
    i += length;
  }
  return result;
}

int16_t asCharCode(int64_t code) {
  return static_cast<int16_t>(static_cast<uint16_t>(code));
}

class CommandReader {
 public:
  CommandReader(LineReader& reader, const VerbInfo& verb) : reader_(reader), verb_(verb) {}

  int64_t Number(const char* what, int64_t low, int64_t high) {
    const std::string_view word = reader_.Word();
    if (word.empty()) problem(std::string(verb_.word) + " needs " + verb_.usage);
    return checked(what, word, low, high);
  }

  int64_t OptionalNumber(const char* what, int64_t low, int64_t high, int64_t absent) {
    if (reader_.AtEnd()) return absent;
    return checked(what, reader_.Word(), low, high);
  }

  std::string_view Word(const char* what) {
    const std::string_view word = reader_.Word();
    if (word.empty()) problem(std::string(verb_.word) + " needs " + what);
    return word;
  }

  std::string Rest(const char* what) {
    std::optional<std::string> rest = reader_.Rest();
    if (!rest) problem(std::string(verb_.word) + " needs " + what);
    return *rest;
  }

  void End() {
    if (!reader_.AtEnd())
      problem("unexpected " + QuotedPrefix(reader_.Word()) + " after " + verb_.usage);
  }

  void Point(ScriptCommand& command) {
    command.X = static_cast<int32_t>(
        Number("X", -ScriptParser::kMaxCoordinate, ScriptParser::kMaxCoordinate));
    command.Y = static_cast<int32_t>(
        Number("Y", -ScriptParser::kMaxCoordinate, ScriptParser::kMaxCoordinate));
  }

  void Button(ScriptCommand& command) {
    const std::string_view word = reader_.Word();
    if (word.empty()) problem(std::string(verb_.word) + " needs " + verb_.usage);
    const std::optional<int64_t> button = PropertyArgument::ParseInteger(word);
    if (!button || (*button != 1 && *button != 2 && *button != 4))
      problem("button " + QuotedPrefix(word) + " is not 1 (left), 2 (right) or 4 (middle)");
    command.Button = static_cast<int16_t>(*button);
  }

 private:
  int64_t checked(const char* what, std::string_view word, int64_t low, int64_t high) {
    const std::optional<int64_t> value = PropertyArgument::ParseInteger(word);
    if (!value) problem(std::string(what) + " " + QuotedPrefix(word) + " is not a number");
    if (*value < low || *value > high)
      problem(std::string(what) + " " + std::to_string(*value) + " is outside " +
              std::to_string(low) + ".." + std::to_string(high));
    return *value;
  }

  LineReader& reader_;
  const VerbInfo& verb_;
};

const VerbInfo& verbNamed(std::string_view word) {
  for (const VerbInfo& verb : kVerbs)
    if (wordIs(word, verb.word)) return verb;
  problem("unknown command " + QuotedPrefix(word));
}

void readArguments(CommandReader& in, ScriptCommand& command) {
  switch (command.Verb) {
    case ScriptVerb::Down:
    case ScriptVerb::Up:
      in.Button(command);
      [[fallthrough]];
    case ScriptVerb::Move:
    case ScriptVerb::Click:
    case ScriptVerb::DblClick:
    case ScriptVerb::Menu:
      in.Point(command);
      break;
    case ScriptVerb::KeyDown:
    case ScriptVerb::KeyUp:
      command.Code = static_cast<int16_t>(in.Number("CODE", 0, kMaxKeyCode));
      command.Shift = static_cast<int16_t>(
          in.OptionalNumber("SHIFT", 0, kMaxShift, ScriptCommand::kShiftAsHeld));
      break;
    case ScriptVerb::Key:
      command.Code = static_cast<int16_t>(in.Number("CODE", 0, kMaxKeyCode));
      break;
    case ScriptVerb::Char:
      command.Code = asCharCode(in.Number("CODE", 0, kMaxCharCode));
      break;
    case ScriptVerb::Text:
      // A character beyond U+FFFF is two KeyPress codes, as the keyboard gives it.
      for (char32_t code : codePoints(in.Rest("a STRING"))) {
        if (code > kMaxCharCode) {
          command.Characters.push_back(asCharCode(0xD800 + ((code - 0x10000) >> 10)));
          code = 0xDC00 + ((code - 0x10000) & 0x3FF);
        }
        command.Characters.push_back(asCharCode(code));
      }
      break;
    case ScriptVerb::Clip:
      command.Argument = in.Rest("TEXT");
      for (const char32_t code : codePoints(command.Argument))
        if (code == 0) problem("the clipboard takes no NUL character");
      break;
    case ScriptVerb::Wait:
      command.Milliseconds = in.Number("MS", 0, ScriptParser::kMaxWait);
      break;
    case ScriptVerb::Focus:
    case ScriptVerb::Blur:
      break;
    case ScriptVerb::Prop:
      command.Argument = in.Rest("Name=Value");
      PropertyArgument::Parse(command.Argument);
      break;
    case ScriptVerb::Shot:
      command.Argument = in.Rest("a FILE.png");
      if (command.Argument.empty()) problem("shot needs a FILE.png");
      break;
    case ScriptVerb::Wheel:
      in.Point(command);
      command.Code = static_cast<int16_t>(in.Number("N", -kMaxNotches, kMaxNotches));
      break;
    case ScriptVerb::Get:
      command.Argument = std::string(in.Word("a property NAME"));
      break;
    case ScriptVerb::Today:
      command.Argument = std::string(in.Word("a date YYYY-MM-DD"));
      CalendarDate::Parse(command.Argument);
      break;
  }
  in.End();
}

}  // namespace

std::vector<ScriptCommand> ScriptParser::Parse(std::string_view text, const std::string& source) {
  std::vector<ScriptCommand> commands;
  int32_t number = 0;
  while (!text.empty()) {
    const size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    ++number;
    if (std::optional<ScriptCommand> command = ParseLine(line, number, source))
      commands.push_back(std::move(*command));
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
  return commands;
}

std::optional<ScriptCommand> ScriptParser::ParseLine(std::string_view line, int32_t number,
                                                     const std::string& source) {
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  LineReader reader(line);
  if (reader.AtEnd()) return std::nullopt;
  try {
    const VerbInfo& verb = verbNamed(reader.Word());
    ScriptCommand command;
    command.Verb = verb.verb;
    command.Line = number;
    command.Source = std::string(line);
    CommandReader arguments(reader, verb);
    readArguments(arguments, command);
    return command;
  } catch (const Error& error) {
    throw ScriptError(error.Number(), error.Description(), source, number, std::string(line));
  }
}

}  // namespace velt::tool
