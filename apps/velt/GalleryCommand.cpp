#include "apps/velt/GalleryCommand.hpp"

#include <algorithm>
#include <memory>

#include "apps/velt/ArgumentReader.hpp"
#include "apps/velt/FormEvents.hpp"
#include "apps/velt/Gallery.hpp"
#include "apps/velt/WindowShot.hpp"
#include "velt/host/Form.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/sdl/SdlWindowSystem.hpp"

namespace velt::tool {

namespace {

constexpr int kOk = 0;
constexpr int kFailure = 1;
constexpr int kBadInput = 2;
constexpr int32_t kMinScreenWidth = 1024;
constexpr int32_t kMinScreenHeight = 768;

}  // namespace

GalleryCommand::GalleryCommand(std::ostream& out, std::ostream& err) : out_(out), err_(err) {}

const char* GalleryCommand::Usage() {
  return R"(usage: velt gallery [--headless] [--out FILE.png] [--events]
       velt gallery --help

Opens a window with every control of the library in its main looks: normal,
disabled, with an icon, focused, vertical, each tick style of the slider, the
label's wrapping, ellipsis, icon and hyperlink, the colour picker, a button
that opens a popup menu. Everything is live: hover, press, drag, type (Tab
moves the focus), open the menu; the searching progress bar moves on its own.

Without a display the gallery is rendered headless to gallery.png instead, and
the command says so and succeeds.

  --headless      render headless even when there is a display
  --out FILE.png  where the headless rendering goes (default gallery.png); with
                  a window, the window's own pixels when it is closed
  --events        print each event as it is raised, after the control's name
                  and a dot: "buttonNormal.Click" (as velt snap --events)

Exit status: 0 done, 2 bad usage or a file that cannot be written,
1 unexpected failure.
)";
}

GalleryCommand::Options GalleryCommand::Parse(std::span<const std::string> arguments) {
  Options options;
  ArgumentReader reader(arguments, "gallery");
  while (reader.Next()) {
    const std::string& word = reader.Word();
    if (word == "--headless")
      reader.Flag(options.Headless);
    else if (word == "--events")
      reader.Flag(options.Events);
    else if (word == "--out")
      reader.ValueOnce(options.Out);
    else if (word == "--help" || word == "-h")
      reader.Flag(options.Help);
    else if (reader.IsOption())
      reader.Problem("unknown option " + word);
    else
      reader.Problem("unexpected argument \"" + word + "\"");
  }
  return options;
}

int GalleryCommand::Run(std::span<const std::string> arguments) {
  try {
    return run(Parse(arguments));
  } catch (const Error& error) {
    return fail(error.Description(), kBadInput);
  } catch (const std::exception& error) {
    return fail(std::string("unexpected failure: ") + error.what(), kFailure);
  }
}

int GalleryCommand::run(const Options& options) {
  if (options.Help) {
    out_ << Usage();
    return kOk;
  }
  if (options.Headless) return runHeadless(options, "");
  std::shared_ptr<SdlWindowSystem> system;
  try {
    system = std::make_shared<SdlWindowSystem>();
  } catch (const Error& error) {
    return runHeadless(options, error.Description());
  }
  Gallery gallery(system);
  Form& form = gallery.GalleryForm();
  CentreOnScreen(form);
  std::unique_ptr<FormEvents> events;
  if (options.Events) events = std::make_unique<FormEvents>(form, out_);
  system->Run();
  if (options.Out) WriteWindowShot(*system, *options.Out);
  return kOk;
}

int GalleryCommand::runHeadless(const Options& options, const std::string& reason) {
  const std::string path = options.Out.value_or(kDefaultOut);
  auto system =
      std::make_shared<HeadlessWindowSystem>(std::max(kMinScreenWidth, Gallery::kWidth + 1),
                                             std::max(kMinScreenHeight, Gallery::kHeight + 1));
  Gallery gallery(system);
  std::unique_ptr<FormEvents> events;
  if (options.Events) events = std::make_unique<FormEvents>(gallery.GalleryForm(), out_);
  system->RunUntilIdle();
  gallery.GalleryForm().SavePng(path);
  if (!reason.empty()) out_ << "no display (" << reason << "): ";
  out_ << "rendered the gallery headless to " << path << " (" << Gallery::kWidth << "x"
       << Gallery::kHeight << ")" << std::endl;
  return kOk;
}

int GalleryCommand::fail(const std::string& message, int status) {
  err_ << "velt gallery: " << message << std::endl;
  return status;
}

}  // namespace velt::tool
