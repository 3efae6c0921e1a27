#include "apps/velt/ScriptRunner.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "apps/velt/EventLine.hpp"
#include "apps/velt/PropertyArgument.hpp"
#include "apps/velt/ScriptError.hpp"
#include "apps/velt/ScriptTarget.hpp"
#include "velt/platform/CalendarDate.hpp"
#include "velt/platform/Clipboard.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"

namespace velt::tool {

namespace {

constexpr int16_t kShiftBit = 1;
constexpr int16_t kCtrlBit = 2;
constexpr int16_t kAltBit = 4;
constexpr int16_t kLeftButton = 1;

// The modifier bit a key sets while held, or 0.
int16_t modifierOf(int16_t keyCode) {
  switch (keyCode) {
    case 16:
      return kShiftBit;
    case 17:
      return kCtrlBit;
    case 18:
      return kAltBit;
    default:
      return 0;
  }
}

struct PunctuationKey {
  int16_t keyCode;
  char plain;
  char shifted;
};

constexpr std::array<PunctuationKey, 11> kPunctuation = {{
    {186, ';', ':'},
    {187, '=', '+'},
    {188, ',', '<'},
    {189, '-', '_'},
    {190, '.', '>'},
    {191, '/', '?'},
    {192, '`', '~'},
    {219, '[', '{'},
    {220, '\\', '|'},
    {221, ']', '}'},
    {222, '\'', '"'},
}};

constexpr std::array<char, 10> kShiftedDigits = {')', '!', '@', '#', '$', '%', '^', '&', '*', '('};

std::optional<int16_t> characterOfUnmodifiedKey(int16_t keyCode, bool shifted) {
  switch (keyCode) {
    case 8:   // backspace
    case 9:   // tab
    case 13:  // enter
    case 27:  // escape
    case 32:  // space
      return keyCode;
    case 106:
      return '*';
    case 107:
      return '+';
    case 109:
      return '-';
    case 110:
      return '.';
    case 111:
      return '/';
    default:
      break;
  }
  if (keyCode >= '0' && keyCode <= '9') return shifted ? kShiftedDigits[keyCode - '0'] : keyCode;
  if (keyCode >= 96 && keyCode <= 105) return static_cast<int16_t>('0' + keyCode - 96);
  for (const PunctuationKey& key : kPunctuation)
    if (key.keyCode == keyCode) return shifted ? key.shifted : key.plain;
  return std::nullopt;
}

}  // namespace

ScriptRunner::ScriptRunner(HeadlessWindowSystem& system, ScriptTarget& target, std::string source)
    : system_(system), target_(target), source_(std::move(source)) {}

std::optional<int16_t> ScriptRunner::CharacterOfKey(int16_t keyCode, int16_t shift) {
  if (shift & kAltBit) return std::nullopt;
  const bool isLetter = keyCode >= 'A' && keyCode <= 'Z';
  if (shift & kCtrlBit) {
    // Ctrl with a letter types the control character (Ctrl+A is 1).
    if (isLetter) return static_cast<int16_t>(keyCode - 'A' + 1);
    return std::nullopt;
  }
  if (isLetter) return (shift & kShiftBit) ? keyCode : static_cast<int16_t>(keyCode + 32);
  return characterOfUnmodifiedKey(keyCode, (shift & kShiftBit) != 0);
}

void ScriptRunner::Check(const std::vector<ScriptCommand>& script) const {
  for (const ScriptCommand& command : script) {
    if (command.Verb != ScriptVerb::Prop && command.Verb != ScriptVerb::Menu &&
        command.Verb != ScriptVerb::Get)
      continue;
    try {
      if (command.Verb == ScriptVerb::Menu)
        target_.CheckMenu();
      else if (command.Verb == ScriptVerb::Get)
        target_.CheckGet(command.Argument);
      else
        target_.CheckProperty(PropertyArgument::Parse(command.Argument));
    } catch (const Error& error) {
      throw ScriptError(error.Number(), error.Description(), source_, command.Line, command.Source);
    }
  }
}

void ScriptRunner::Run(const std::vector<ScriptCommand>& script) {
  script_ = script;
  next_ = 0;
  itemCommand_.clear();
  pointer_ = system_.CursorPos();
  modifiers_ = system_.ShiftState();
  postUntilWait();
  try {
    system_.RunUntilIdle();
  } catch (const Error& error) {
    next_ = script_.size();
    if (script_.empty() || dynamic_cast<const ScriptError*>(&error)) throw;
    const ScriptCommand& failed = script_[failedCommand()];
    throw ScriptError(error.Number(), error.Description(), source_, failed.Line, failed.Source);
  }
}

void ScriptRunner::postUntilWait() {
  while (next_ < script_.size()) {
    const size_t index = next_++;
    post(script_[index], index);
    if (script_[index].Verb == ScriptVerb::Wait) return;
  }
}

void ScriptRunner::post(const ScriptCommand& command, size_t index) {
  switch (command.Verb) {
    case ScriptVerb::Move:
      pointer_ = onScreen(command);
      system_.PostMouseMove(pointer_.x, pointer_.y);
      track(index);
      break;
    case ScriptVerb::Down:
    case ScriptVerb::Up:
      postPress(command.Verb == ScriptVerb::Down, command.Button, onScreen(command), index);
      break;
    case ScriptVerb::Click:
    case ScriptVerb::DblClick:
      // The clock stands still between the posted presses, so two in a row
      // make the double click.
      for (int press = command.Verb == ScriptVerb::Click ? 1 : 2; press > 0; --press) {
        postPress(true, kLeftButton, onScreen(command), index);
        postPress(false, kLeftButton, onScreen(command), index);
      }
      break;
    case ScriptVerb::KeyDown:
    case ScriptVerb::KeyUp:
      postKey(command.Verb == ScriptVerb::KeyDown, command.Code, command.Shift, index);
      break;
    case ScriptVerb::Key: {
      postKey(true, command.Code, ScriptCommand::kShiftAsHeld, index);
      if (const std::optional<int16_t> character = CharacterOfKey(command.Code, modifiers_)) {
        system_.PostKeyPress(*character);
        track(index);
      }
      postKey(false, command.Code, ScriptCommand::kShiftAsHeld, index);
      break;
    }
    case ScriptVerb::Char:
      system_.PostKeyPress(command.Code);
      track(index);
      break;
    case ScriptVerb::Wheel: {
      const PointL point = onScreen(command);
      moveTo(point, index);
      system_.PostMouseWheel(point.x, point.y, command.Code, modifiers_);
      track(index);
      break;
    }
    case ScriptVerb::Text:
      for (int16_t character : command.Characters) {
        system_.PostKeyPress(character);
        track(index);
      }
      break;
    case ScriptVerb::Wait: {
      const int64_t milliseconds = command.Milliseconds;
      postStep(
          [this, milliseconds] {
            system_.AdvanceClock(milliseconds);
            postUntilWait();
          },
          index);
      break;
    }
    default:
      postAction(command, index);
      break;
  }
}

void ScriptRunner::moveTo(PointL point, size_t index) {
  if (point == pointer_) return;
  system_.PostMouseMove(point.x, point.y);
  track(index);
  pointer_ = point;
}

void ScriptRunner::postPress(bool down, int16_t button, PointL point, size_t index) {
  moveTo(point, index);
  if (down)
    system_.PostMouseDown(button, point.x, point.y, modifiers_);
  else
    system_.PostMouseUp(button, point.x, point.y, modifiers_);
  track(index);
}

// A modifier key counts as held from its own keydown on, so pressing Shift
// reports Shift 1, as a keyboard does.
void ScriptRunner::postKey(bool down, int16_t keyCode, int16_t shift, size_t index) {
  if (down)
    modifiers_ = static_cast<int16_t>(modifiers_ | modifierOf(keyCode));
  else
    modifiers_ = static_cast<int16_t>(modifiers_ & ~modifierOf(keyCode));
  const int16_t reported = shift == ScriptCommand::kShiftAsHeld ? modifiers_ : shift;
  if (down)
    system_.PostKeyDown(keyCode, reported);
  else
    system_.PostKeyUp(keyCode, reported);
  track(index);
}

void ScriptRunner::postAction(const ScriptCommand& command, size_t index) {
  const std::string argument = command.Argument;
  switch (command.Verb) {
    case ScriptVerb::Focus:
      postStep([this] { target_.Focus(); }, index);
      break;
    case ScriptVerb::Blur:
      postStep([this] { target_.Blur(); }, index);
      break;
    case ScriptVerb::Clip:
      postStep([this, argument] { system_.Clipboard().SetText(argument); }, index);
      break;
    case ScriptVerb::Prop:
      postStep([this, argument] { target_.SetProperty(PropertyArgument::Parse(argument)); }, index);
      break;
    case ScriptVerb::Shot:
      postStep([this, argument] { target_.Shot(argument); }, index);
      break;
    case ScriptVerb::Today: {
      const CalendarDate date = CalendarDate::Parse(argument);
      postStep([this, date] { system_.SetToday(date); }, index);
      break;
    }
    case ScriptVerb::Menu: {
      const PointL point{command.X, command.Y};
      postStep([this, point] { target_.OpenMenu(point); }, index);
      break;
    }
    case ScriptVerb::Get:
      postStep(
          [this, argument] {
            const std::string line =
                argument + "=" + EventLine::FormatValue(target_.GetProperty(argument));
            if (print_) print_(line);
          },
          index);
      break;
    default:
      break;
  }
}

void ScriptRunner::postStep(std::function<void()> step, size_t index) {
  std::weak_ptr<int> life = life_;
  system_.PostAction([life, step = std::move(step)] {
    if (!life.expired()) step();
  });
  track(index);
}

void ScriptRunner::track(size_t index) {
  itemCommand_.push_back(index);
}

PointL ScriptRunner::onScreen(const ScriptCommand& command) const {
  const PointL origin = target_.Origin();
  return PointL{origin.x + command.X, origin.y + command.Y};
}

// The items not yet taken are the last ones posted; the one taken last failed.
size_t ScriptRunner::failedCommand() const {
  if (itemCommand_.empty()) return 0;
  const size_t pending = std::min(system_.PendingInput(), itemCommand_.size());
  const size_t taken = itemCommand_.size() - pending;
  return itemCommand_[taken == 0 ? 0 : taken - 1];
}

}  // namespace velt::tool
