#include "apps/velt/SearchCommand.hpp"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <iostream>
#include <memory>
#include <optional>
#include <vector>

#include "velt/platform/Error.hpp"
#include "velt/utilities/Search.hpp"
#include "velt/utilities/sf_Information.hpp"

namespace velt::tool {

namespace {

constexpr FileAttributeSet kAllAttributes =
    faReadOnly | faHidden | faSystem | faVolume | faDirectory | faArchive;

struct SearchOptions {
  bool Help = false;
  bool Dirs = false;
  bool Recursive = false;
  std::optional<FileAttributeSet> Attributes;
  std::optional<uint8_t> Separator;
  std::vector<std::string> Positional;
};

Error badUsage(const std::string& message) {
  return Error(errInvalidProcedureCall, message);
}

FileAttributeSet parseAttributes(const std::string& text) {
  int value = -1;
  const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (problem != std::errc() || end != text.data() + text.size() || value < 0 ||
      value > kAllAttributes)
    throw badUsage("--attr wants a number from 0 to " + std::to_string(kAllAttributes) +
                   " (1 read-only, 2 hidden, 4 system, 16 directory, 32 archive), not \"" + text +
                   "\"");
  return value;
}

// One character with a code up to 255: ASCII, or a Latin-1 letter written
// in UTF-8 ("ä" is 228).
uint8_t parseSeparator(const std::string& text) {
  if (text.size() == 1) return static_cast<uint8_t>(text[0]);
  const auto lead = static_cast<unsigned char>(text.size() == 2 ? text[0] : 0);
  const auto tail = static_cast<unsigned char>(text.size() == 2 ? text[1] : 0);
  if ((lead == 0xC2 || lead == 0xC3) && (tail & 0xC0) == 0x80)
    return static_cast<uint8_t>(((lead & 0x1F) << 6) | (tail & 0x3F));
  throw badUsage("--separator wants one character with a code up to 255, not \"" + text + "\"");
}

// The value of an option: after "=" in the same argument, else the next one.
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

SearchOptions parse(std::span<const std::string> arguments) {
  SearchOptions options;
  bool onlyPositional = false;
  for (size_t at = 0; at < arguments.size(); ++at) {
    const std::string& argument = arguments[at];
    if (onlyPositional || argument.empty() || argument[0] != '-' || argument == "-") {
      options.Positional.push_back(argument);
    } else if (argument == "--") {
      onlyPositional = true;
    } else if (argument == "--help" || argument == "-h") {
      options.Help = true;
    } else if (argument == "--dirs") {
      options.Dirs = true;
    } else if (argument == "--recursive") {
      options.Recursive = true;
    } else if (isOption(argument, "--attr")) {
      options.Attributes = parseAttributes(optionValue(arguments, at, "--attr"));
    } else if (isOption(argument, "--separator")) {
      options.Separator = parseSeparator(optionValue(arguments, at, "--separator"));
    } else {
      throw badUsage("unknown option \"" + argument + "\"");
    }
  }
  return options;
}

void check(const SearchOptions& options) {
  const bool everyFolder = options.Recursive && options.Dirs;
  const size_t wanted = everyFolder ? 1 : 2;
  if (options.Positional.size() < wanted)
    throw badUsage(everyFolder ? "give the folder to scan" : "give a folder and a pattern");
  if (options.Positional.size() > wanted)
    throw badUsage(everyFolder ? "--recursive --dirs lists every folder and takes no pattern"
                               : "too many arguments: \"" + options.Positional[2] + "\"");
  if (options.Attributes && (options.Dirs || options.Recursive))
    throw badUsage("--attr applies to a file search without --dirs or --recursive");
}

std::shared_ptr<sf_Information> runSearch(const SearchOptions& options) {
  Search search;
  if (options.Separator) search.Separator(*options.Separator);
  const std::string& folder = options.Positional[0];
  std::shared_ptr<sf_Information> found;
  if (options.Recursive && options.Dirs)
    search.ScanPathforPaths(folder, found);
  else if (options.Recursive)
    search.ScanPathforFiles(folder, options.Positional[1], found);
  else if (options.Dirs)
    search.Search_Directory(folder, options.Positional[1], found);
  else
    search.Search_File(folder, options.Positional[1], options.Attributes.value_or(faNormal), found);
  return found;
}

// Why a start folder gives nothing, or "" when it can be read. The search
// itself stays silent about it (an empty result is its answer); the user is
// told here.
std::string startFolderProblem(const std::string& folder) {
  const std::string path = folder.empty() ? "/" : folder;
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) return "no such folder";
    return std::strerror(errno);
  }
  if (!S_ISDIR(status.st_mode)) return "not a folder";
  DIR* listing = ::opendir(path.c_str());
  if (!listing) return std::string("cannot be read: ") + std::strerror(errno);
  ::closedir(listing);
  return {};
}

// Tab, line feed, carriage return and backslash in a name are written as \t,
// \n, \r and \\, so each result stays one line of tab-separated fields.
std::string escaped(const std::string& name) {
  if (name.find_first_of("\t\n\r\\") == std::string::npos) return name;
  std::string text;
  for (const char c : name) {
    switch (c) {
      case '\t':
        text += "\\t";
        break;
      case '\n':
        text += "\\n";
        break;
      case '\r':
        text += "\\r";
        break;
      case '\\':
        text += "\\\\";
        break;
      default:
        text += c;
    }
  }
  return text;
}

void reportStartFolders(const SearchOptions& options, std::ostream& err) {
  Search search;
  if (options.Separator) search.Separator(*options.Separator);
  for (const std::string& folder : search.SplitList(options.Positional[0]))
    if (const std::string problem = startFolderProblem(folder); !problem.empty())
      err << "velt search: " << escaped(folder.empty() ? "/" : folder) << ": " << problem << "\n";
}

}  // namespace

SearchCommand::SearchCommand(std::ostream& out, std::ostream& err) : out_(out), err_(err) {}

const char* SearchCommand::Usage() {
  return R"(usage: velt search DIR PATTERN [--attr N]            files in DIR
       velt search DIR PATTERN --dirs                folders in DIR
       velt search DIR PATTERN --recursive           files in DIR and below
       velt search DIR --recursive --dirs            every folder below DIR
       [--separator C]  with any of them

DIR and PATTERN are lists divided by ";" (or by C); blanks around the items
do not count. Patterns use * and ?, "*.*" matches every name, letter case
does not matter.

  --attr N         attributes a file must have, also admitting hidden (2) and
                   system (4) files; N adds up 1 read-only, 2 hidden,
                   4 system, 32 archive (default 0: every file that is
                   neither hidden nor system)
  --dirs           folders instead of files (hidden ones too)
  --recursive      scan DIR and everything below it, depth first; hidden
                   files are left out, hidden folders scanned
  --separator C    the list separator: one character, code 255 at most

Prints a line per result: Path, Filename, DateTime, attributes, Size,
separated by tabs. In Path and Filename a tab is written as \t, a line feed
as \n, a carriage return as \r and a backslash as \\; every other byte is
printed as it is. A start folder that does not exist, is no folder or cannot
be read is named on standard error; the search still ends with status 0.
)";
}

int SearchCommand::Run(std::span<const std::string> arguments) {
  SearchOptions options;
  try {
    options = parse(arguments);
    if (options.Help) {
      out_ << Usage();
      return kOk;
    }
    check(options);
  } catch (const Error& error) {
    err_ << "velt search: " << error.Description() << "\n" << Usage();
    return kBadInput;
  }
  reportStartFolders(options, err_);
  const auto found = runSearch(options);
  for (const auto& result : *found)
    out_ << escaped(result->Path()) << '\t' << escaped(result->Filename()) << '\t'
         << result->DateTime() << '\t' << result->Attri() << '\t' << result->Size() << '\n';
  out_.flush();
  return kOk;
}

int RunSearchCommand(int argc, char** argv) {
  const std::vector<std::string> arguments(argv, argv + std::max(argc, 0));
  SearchCommand command(std::cout, std::cerr);
  return command.Run(arguments);
}

}  // namespace velt::tool
