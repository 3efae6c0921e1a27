#include "apps/velt/RunCommand.hpp"

#include <memory>
#include <vector>

#include "apps/velt/FormEvents.hpp"
#include "apps/velt/RunOptions.hpp"
#include "apps/velt/RunSession.hpp"
#include "apps/velt/ScriptCommand.hpp"
#include "apps/velt/ScriptRunner.hpp"
#include "apps/velt/WindowShot.hpp"
#include "velt/controls/ControlRegistry.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/FormFile.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/sdl/SdlWindowSystem.hpp"

namespace velt::tool {

RunCommand::RunCommand(std::ostream& out, std::ostream& err, std::istream& in)
    : ScriptedCommand("run", out, err, in) {}

const char* RunCommand::Usage() {
  return R"(usage: velt run FORM.json [--events] [--out FILE.png] [--save OUT.json]
       velt run FORM.json --headless [--input FILE|-] [--events] [--out FILE.png]
                [--save OUT.json]
       velt run --help

Loads a form file (docs/form-files.md: the form's caption and size, its
image lists and its controls with their places and stored properties) and
runs it in a window until the window is closed.

  --events          print each event as it is raised, after the control's
                    name and a dot: "okButton.Click" (as velt snap --events);
                    headless, a link a control would open prints as
                    shell.Open "URL" and nothing is started
  --out FILE.png    a picture of the form at the end: with a window, what the
                    window shows when it is closed; headless, the form's
                    rectangle after the script, pop-ups included
  --save OUT.json   at the end, write the form with the properties its
                    controls store now; the pictures of its image lists are
                    written beside OUT.json
  --headless        run without a window on a headless screen
  --input FILE|-    play the script in FILE, a regular file of 16 MB at most
                    (- reads standard input); the
                    script language is velt snap's (velt snap --help), with
                    X and Y in pixels of the form, and focus, blur, prop and
                    get acting on the control that has the focus (else the
                    one that had it last, else the first control)

The whole form file and the script are checked before anything runs: a bad
file names its JSON path ("/controls/2/properties/BackColor") and what was
expected there, and nothing is written. Files are written to a temporary
file beside the target and renamed, never left half written.

Exit status: 0 done, 2 bad usage, form file, script or an error while
running, 1 no display for a window, or an unexpected failure.
)";
}

int RunCommand::execute(std::span<const std::string> arguments) {
  return run(RunOptions::Parse(arguments));
}

int RunCommand::run(const RunOptions& options) {
  if (options.Help) {
    out() << Usage();
    return kOk;
  }
  const FormFile file = FormFile::Load(options.Form, ControlRegistry::Standard());
  return options.Headless ? runHeadless(options, file) : runWindow(options, file);
}

int RunCommand::runHeadless(const RunOptions& options, const FormFile& file) {
  std::string source;
  const std::vector<ScriptCommand> script =
      options.Input ? readScript(*options.Input, source) : std::vector<ScriptCommand>{};
  RunSession session(file, ControlRegistry::Standard());
  ScriptRunner runner(session.System(), session, source);
  runner.PrintTo([this](const std::string& line) { out() << line << '\n'; });
  runner.Check(script);

  std::unique_ptr<FormEvents> events;
  if (options.Events) {
    events = std::make_unique<FormEvents>(session.HostForm(), out());
    session.PrintShellRequests(out());
  }
  runner.Run(script);
  if (options.Events) session.PrintClipboard(out());
  if (options.Out) session.WritePng(*options.Out);
  if (options.Save) {
    session.DropHelpers();
    FormFile::Capture(session.HostForm(), ControlRegistry::Standard(), file.ImageLists)
        .Save(*options.Save);
  }
  return kOk;
}

int RunCommand::runWindow(const RunOptions& options, const FormFile& file) {
  std::shared_ptr<SdlWindowSystem> system;
  try {
    system = std::make_shared<SdlWindowSystem>();
  } catch (const Error& error) {
    // Not the user's mistake, so not kBadInput.
    return fail("no display for a window (" + error.Description() +
                    "); velt run --headless runs the form without one",
                kFailure);
  }
  std::unique_ptr<Form> form = file.CreateForm(system, ControlRegistry::Standard());
  CentreOnScreen(*form);
  std::unique_ptr<FormEvents> events;
  if (options.Events) events = std::make_unique<FormEvents>(*form, out());
  system->Run();
  if (options.Out) WriteWindowShot(*system, *options.Out);
  if (options.Save)
    FormFile::Capture(*form, ControlRegistry::Standard(), file.ImageLists).Save(*options.Save);
  return kOk;
}

}  // namespace velt::tool
