#include "apps/velt/SnapCommand.hpp"

#include "velt/platform/ImageList.hpp"

#include <optional>
#include <vector>

#include "apps/velt/EventPrinter.hpp"
#include "apps/velt/PropertyArgument.hpp"
#include "apps/velt/ScriptCommand.hpp"
#include "apps/velt/ScriptRunner.hpp"
#include "apps/velt/SnapOptions.hpp"
#include "apps/velt/SnapSession.hpp"
#include "velt/controls/ControlClass.hpp"
#include "velt/controls/ControlRegistry.hpp"
#include "velt/platform/Error.hpp"

namespace velt::tool {

SnapCommand::SnapCommand(std::ostream& out, std::ostream& err, std::istream& in)
    : ScriptedCommand("snap", out, err, in) {}

const char* SnapCommand::Usage() {
  return R"(usage: velt snap CONTROL [--size WxH] [--prop Name=Value]... [--item ITEM]...
                      [--tool TOOL [--item ITEM]...]...
                      [--entry ENTRY]... [--sorted N] [--imagelist FILE.png[:W]]
                      [--input FILE|-] [--out FILE.png] [--screen] [--events]
       velt snap --list
       velt snap --help

Puts CONTROL alone on a headless form at the screen's origin, sets the
properties in order, plays the input script, then writes the PNG. Nothing is
written without --out or a shot command.

  --size WxH         the control's size in pixels, sides 1..4096 (default: the
                     size that suits the control, 100x30 for veltButton)
  --prop Name=Value  set a property once the control exists (repeatable).
                     Value: an integer (decimal, &H or 0x hexadecimal), True
                     or False, otherwise text. A font is given as
                     Font=Name,Size[,bold][,italic][,underline][,strikethrough]
                     (e.g. Font=DejaVu Sans,8.25,bold). Object properties
                     (ImageList) cannot be given on the command line.
  --item ITEM        add an entry to a veltPUMenu's MenuItem (repeatable):
                     Key|Caption|Icon|Enabled|Child|Group|ItemType|Checked|Bold,
                     the fields after Key optional (Icon 0, Enabled True,
                     ItemType 1 normal, 2 check, 3 separator, 4 title,
                     Checked and Bold False); other controls have no items.
                     After a --tool it goes into that tool's menu instead
  --tool TOOL        add an item to a veltToolbar's ToolbarItems (repeatable):
                     Key|Caption|IconIndex|Style|Checked|Enabled, the fields
                     after Key optional (IconIndex 0, Style 1 push button,
                     2 check button, 3 menu, 4 menu with arrow, 5 placeholder,
                     6 separator, 7 caption, Checked False, Enabled True)
  --entry ENTRY      add an entry to a veltListbox's ListboxItems (repeatable):
                     Key|Caption|Value|Icon|Comment, the fields after Key
                     optional (Icon 0: none); a tab in Caption indents it
  --sorted N         1: ListboxItems.Sorted is True before the entries are
                     added (they are placed by caption), 0: False
  --imagelist FILE.png[:W]
                     give the control (any with an ImageList) an image list
                     cut from a PNG strip of square icons W pixels wide
                     (default: the strip's height), numbered 1, 2, ... from
                     the left
  --input FILE|-     play the script in FILE (- reads standard input)
  --out FILE.png     write the control's rectangle of the screen at the end
                     (a veltPUMenu draws its menu in a pop-up window of its
                     own, outside that rectangle: use --screen to see it)
  --screen           --out and shot write the whole screen, pop-ups included
  --events           print each event the control raises, as it is raised:
                     its name, then its arguments separated by spaces
                     (integers in decimal, Singles without trailing zeros,
                     True/False, strings in JSON quotes); a link the control
                     would open prints as shell.Open "URL" (nothing is
                     opened: snap never starts the desktop's opener)
  --list             print the controls snap can create, one a line

Script: one command a line, # starts a comment. X and Y are pixels of the
form, which are also screen pixels. B: 1 left, 2 right, 4 middle. SHIFT:
1 Shift, 2 Ctrl, 4 Alt (default: the keys 16, 17, 18 the script holds down).
  move X Y              move the pointer there
  down B X Y            press button B there (the pointer moves there first)
  up B X Y              release button B there (the pointer moves there first)
  click X Y             down 1 X Y, then up 1 X Y
  dblclick X Y          two clicks there at one instant: a double click
  keydown CODE [SHIFT]  a key goes down (CODE: virtual key code 0..255)
  keyup CODE [SHIFT]    a key comes up
  key CODE              keydown, the KeyPress of the character the key types
                        on a US keyboard (when it types one), keyup
  char CODE             a KeyPress of the character code (0..65535)
  text STRING           a KeyPress per character
  wait MS               move the clock on, firing the timers due on the way;
                        the commands after it arrive once it has passed
  focus                 give the control the focus
  blur                  take the focus away from it
  prop Name=Value       set a property, as --prop does
  shot FILE.png         write a PNG now, as --out does
  wheel X Y N           turn the mouse wheel N notches with the pointer at X Y
                        (positive away from the user; the pointer moves
                        there first); it reaches the control under the
                        pointer, or its parent when that one does not scroll
  get NAME              print NAME=VALUE, the property's value now, in the
                        format of --events
  today YYYY-MM-DD      the date calendars mark as today (default 2005-02-16)
  menu X Y              a veltPUMenu opens its menu (CreateMenu, the root
                        group) with its corner at X Y; menu 0 0 opens it at
                        the pointer. The next commands arrive while it waits
                        for the buttons to be released
  clip TEXT             put TEXT on the clipboard (--events prints the
                        clipboard's text at the end as clipboard "TEXT")
Numbers are decimal, &H or 0x hexadecimal. The argument of text, prop and shot
runs to the end of the line; written in JSON double quotes it may hold # and
escapes. Between two commands the form runs its pending work ("wait 0" runs
only that). The pointer starts off the control, at the bottom-right pixel of
the screen (at least 1024x768).

Everything is read and checked before anything runs: a bad argument, property
or script line is reported (a line by its number and text) and nothing is
written. An error while the script runs names the line; the PNGs of the shot
lines before it have been written, --out has not.

Exit status: 0 done, 2 bad usage, property, script or an error while running,
1 unexpected failure.
)";
}

int SnapCommand::execute(std::span<const std::string> arguments) {
  return run(SnapOptions::Parse(arguments));
}

int SnapCommand::run(const SnapOptions& options) {
  if (options.Help) {
    out() << Usage();
    return kOk;
  }
  if (options.List) {
    listControls();
    return kOk;
  }
  const ControlClass& controlClass = creatableClass(options.Control);
  std::vector<PropertyArgument> properties;
  for (const std::string& text : options.Properties) {
    properties.push_back(PropertyArgument::Parse(text));
    properties.back().ValueFor(controlClass);
  }
  std::string source;
  const std::vector<ScriptCommand> script =
      options.Input ? readScript(*options.Input, source) : std::vector<ScriptCommand>{};
  const std::shared_ptr<ImageList> images = options.Images ? options.Images->Load() : nullptr;

  SnapSession session(controlClass, options.Size.value_or(controlClass.DefaultSize()),
                      options.Screen);
  ScriptRunner runner(session.System(), session, source);
  runner.PrintTo([this](const std::string& line) { out() << line << '\n'; });
  runner.Check(script);

  std::optional<EventPrinter> printer;
  if (options.Events) {
    printer.emplace(session.ControlSite(), out());
    session.PrintShellRequests(out());
  }
  if (images) session.SetImageList(images);
  for (const PropertyArgument& property : properties)
    session.SetProperty(property);
  session.AddMenuItems(options.Items);
  session.AddTools(options.Tools);
  session.AddEntries(options.Entries, options.Sorted);
  runner.Run(script);
  if (options.Events) session.PrintClipboard(out());
  if (options.Out) session.WritePng(*options.Out);
  return kOk;
}

void SnapCommand::listControls() {
  for (const std::string& name : ControlRegistry::Standard().CreatableNames())
    out() << name << '\n';
}

const ControlClass& SnapCommand::creatableClass(const std::string& name) const {
  const ControlClass* controlClass = ControlRegistry::Standard().Find(name);
  if (!controlClass)
    throw Error(errInvalidProcedureCall,
                "unknown control \"" + name + "\" (velt snap --list shows the controls)");
  if (!controlClass->Creatable())
    throw Error(errInvalidProcedureCall,
                controlClass->Name() + " is a part of other controls, not created on its own");
  return *controlClass;
}

}  // namespace velt::tool
