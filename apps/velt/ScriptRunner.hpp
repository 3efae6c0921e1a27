#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/velt/ScriptCommand.hpp"
#include "velt/platform/Geometry.hpp"

namespace velt {

class HeadlessWindowSystem;

namespace tool {

class ScriptTarget;

// Plays a parsed script on a headless window system. The script goes into
// the system's input queue, which DoEvents reads one item at a time, up to
// and including its next wait; the wait, when its turn comes, moves the clock
// and then queues the commands up to the following wait. So a control that
// waits inside DoEvents (a menu waiting for the buttons to be released) sees
// the later commands arrive, and no command arrives before the clock has
// reached its time, even though timers let input run while the clock moves
// (the hover tick does). Between two items the system runs its posted work
// and due timers.
//
// A press or release where the pointer is not yet posts a move there first,
// as a real pointer moves before it presses; `click` is `down 1` and `up 1`.
// Keys 16, 17 and 18 held by the script (keydown without keyup) make the
// Shift, Ctrl and Alt state of later mouse and key events, unless a keydown
// or keyup gives its own SHIFT.
class ScriptRunner {
 public:
  ScriptRunner(HeadlessWindowSystem& system, ScriptTarget& target, std::string source);

  // Where get prints its NAME=VALUE lines; without one they are dropped.
  void PrintTo(std::function<void(const std::string&)> print) { print_ = std::move(print); }

  // Checks the prop, get and menu commands against the target without running anything;
  // a ScriptError names the first bad line.
  void Check(const std::vector<ScriptCommand>& script) const;
  // Queues the script and runs until the queue and the posted work are empty.
  // A velt::Error raised meanwhile leaves as a ScriptError naming the line
  // whose input (or whose following work) was running; the commands not
  // queued yet are dropped, the items already queued stay in the queue.
  void Run(const std::vector<ScriptCommand>& script);

  // The character a US keyboard types for the key with the Shift, Ctrl and
  // Alt state given, as KeyPress reports it; nothing for keys that type none.
  static std::optional<int16_t> CharacterOfKey(int16_t keyCode, int16_t shift = 0);

 private:
  void postUntilWait();
  void post(const ScriptCommand& command, size_t index);
  void postPress(bool down, int16_t button, PointL point, size_t index);
  void moveTo(PointL point, size_t index);
  void postKey(bool down, int16_t keyCode, int16_t shift, size_t index);
  void postAction(const ScriptCommand& command, size_t index);
  void postStep(std::function<void()> step, size_t index);
  void track(size_t index);
  PointL onScreen(const ScriptCommand& command) const;
  size_t failedCommand() const;

  HeadlessWindowSystem& system_;
  ScriptTarget& target_;
  std::string source_;
  PointL pointer_;
  int16_t modifiers_ = 0;
  std::vector<ScriptCommand> script_;
  size_t next_ = 0;                  // the first command not queued yet
  std::vector<size_t> itemCommand_;  // the command of each item queued
  std::function<void(const std::string&)> print_;
  // Queued steps of the runner's own do nothing once it is gone.
  std::shared_ptr<int> life_ = std::make_shared<int>(0);
};

}  // namespace tool
}  // namespace velt
