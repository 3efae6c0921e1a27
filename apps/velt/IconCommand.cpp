#include "apps/velt/IconCommand.hpp"

#include <algorithm>
#include <optional>
#include <vector>

#include "apps/velt/PropertyArgument.hpp"
#include "velt/foundation/Colors.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Png.hpp"
#include "velt/utilities/IconExtractor.hpp"

namespace velt::tool {

namespace {

struct IconOptions {
  bool Help = false;
  bool Count = false;
  bool Small = false;
  std::optional<std::string> Type;
  std::optional<int16_t> Index;
  OLE_COLOR Mask = 0;
  std::string Out;
  std::vector<std::string> Positional;
};

Error badUsage(const std::string& message) {
  return Error(errInvalidProcedureCall, message);
}

std::string optionValue(std::span<const std::string> arguments, size_t& at,
                        const std::string& name) {
  const std::string& argument = arguments[at];
  if (argument.size() > name.size()) return argument.substr(name.size() + 1);
  if (at + 1 >= arguments.size()) throw badUsage(name + " needs a value");
  return arguments[++at];
}

bool isOption(const std::string& argument, const std::string& name) {
  return argument == name || argument.rfind(name + "=", 0) == 0;
}

int16_t parseIndex(const std::string& text) {
  const auto value = PropertyArgument::ParseInteger(text);
  if (!value || *value < INT16_MIN || *value > INT16_MAX)
    throw badUsage("--index wants a number from -32768 to 32767, not \"" + text + "\"");
  return static_cast<int16_t>(*value);
}

// An OLE colour (&HBBGGRR, 0x..., decimal) or #RRGGBB as on the web.
OLE_COLOR parseColour(const std::string& text) {
  if (text.size() == 7 && text[0] == '#') {
    const auto rgb = PropertyArgument::ParseInteger("0x" + text.substr(1));
    if (rgb) return PixelToOle(static_cast<uint32_t>(*rgb));
  } else if (const auto value = PropertyArgument::ParseInteger(text);
             value && *value >= 0 && *value <= 0xFFFFFFFF) {
    return static_cast<OLE_COLOR>(*value);
  }
  throw badUsage("--mask wants a colour as &HBBGGRR, 0xBBGGRR, a number or #RRGGBB, not \"" + text +
                 "\"");
}

IconOptions parse(std::span<const std::string> arguments) {
  IconOptions options;
  for (size_t at = 0; at < arguments.size(); ++at) {
    const std::string& argument = arguments[at];
    if (argument.empty() || argument[0] != '-') {
      options.Positional.push_back(argument);
    } else if (argument == "--help" || argument == "-h") {
      options.Help = true;
    } else if (argument == "--count") {
      options.Count = true;
    } else if (argument == "--small") {
      options.Small = true;
    } else if (isOption(argument, "--type")) {
      options.Type = optionValue(arguments, at, "--type");
    } else if (isOption(argument, "--index")) {
      options.Index = parseIndex(optionValue(arguments, at, "--index"));
    } else if (isOption(argument, "--mask")) {
      options.Mask = parseColour(optionValue(arguments, at, "--mask"));
    } else if (isOption(argument, "--out")) {
      options.Out = optionValue(arguments, at, "--out");
    } else {
      throw badUsage("unknown option \"" + argument + "\"");
    }
  }
  return options;
}

void check(const IconOptions& options) {
  const size_t wanted = options.Type ? 0 : 1;
  if (options.Positional.size() < wanted) throw badUsage("give a file or an icon name");
  if (options.Positional.size() > wanted)
    throw badUsage("too many arguments: \"" + options.Positional[wanted] + "\"");
  if (options.Count && (options.Type || options.Index || options.Small || !options.Out.empty()))
    throw badUsage("--count takes a file or name and nothing else");
  if (options.Type && options.Index) throw badUsage("--type takes no --index");
  if (!options.Count && options.Out.empty())
    throw badUsage("give the picture to write: --out X.png");
}

}  // namespace

IconCommand::IconCommand(std::ostream& out, std::ostream& err) : out_(out), err_(err) {}

const char* IconCommand::Usage() {
  return R"(usage: velt icon FILE|NAME [--index N] [--small] [--mask COLOR] --out X.png
       velt icon --type .EXT [--small] [--mask COLOR] --out X.png
       velt icon --count FILE|NAME

FILE is an .ico or .cur file, a Windows executable or library, a PNG or SVG
picture, or "shell32.dll" (the library's own stock icons); NAME is an icon
name of the desktop's icon theme (folder, text-x-generic...).

  --index N      the icon: a position from 0, or for executables a negative
                 resource identifier (default 0)
  --type .EXT    the icon of a file type, as the registry view names it
  --small        16 x 16 instead of 32 x 32
  --mask COLOR   the background, &HBBGGRR or #RRGGBB (default black)
  --out X.png    where the picture goes
  --count        print the number of icons in FILE or NAME

Exit status 1 when there is no such icon: the picture, the background alone,
is written all the same.
)";
}

int IconCommand::Run(std::span<const std::string> arguments) {
  IconOptions options;
  try {
    options = parse(arguments);
    if (options.Help) {
      out_ << Usage();
      return kOk;
    }
    check(options);
  } catch (const Error& error) {
    err_ << "velt icon: " << error.Description() << "\n" << Usage();
    return kBadInput;
  }
  IconExtractor extractor;
  extractor.MaskColor(options.Mask);
  if (options.Count) {
    out_ << extractor.GetIconCount(options.Positional[0]) << "\n";
    return kOk;
  }
  const IconSize size = options.Small ? SmallIcon : LargeIcon;
  try {
    const auto picture = options.Type ? extractor.ExtractIconOfFileType(*options.Type, size)
                                      : extractor.ExtractIcon(options.Positional[0],
                                                              options.Index.value_or(0), size);
    Png::Write(options.Out, *picture);
    // The background alone: nothing was drawn over it.
    const uint32_t background = 0xFF000000 | OleToPixel(TranslateSysColor(options.Mask));
    const bool drawn =
        std::any_of(picture->Pixels(), picture->Pixels() + picture->Width() * picture->Height(),
                    [&](uint32_t pixel) { return pixel != background; });
    if (!drawn) {
      err_ << "velt icon: no such icon; wrote the background alone to " << options.Out << "\n";
      return kNoIcon;
    }
  } catch (const Error& error) {
    err_ << "velt icon: " << error.Description() << "\n";
    return kBadInput;
  }
  return kOk;
}

}  // namespace velt::tool
