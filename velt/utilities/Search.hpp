#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "velt/platform/FileAttributes.hpp"
#include "velt/utilities/sf_Information.hpp"

namespace velt {

// Finds files and folders without any user interface. Default() is the
// instance an application uses without making one; more can be made.
//
// Folder and pattern arguments are lists whose items the Separator divides
// (";" at first), each item trimmed of blanks. Patterns use "*" and "?" as
// WildcardPattern describes: "*.*" matches every name, letter case never
// matters. Paths are written with "/"; every result's Path ends in "/", and
// an empty folder item is the root folder "/". The scans take SearchPath as
// such a list too, but a folder they find is used as it is named, separator
// or blanks in its name included.
//
// The searches never fail: a folder that does not exist or cannot be read,
// an entry that vanishes or a result that cannot be added leaves that step
// out, and a collection (perhaps empty) is always returned. A name found
// twice within one call of Search_File or Search_Directory, or in one folder
// of a scan, counts once regardless of case: the first find wins.
class Search {
 public:
  Search() = default;

  // The shared instance.
  static Search& Default();

  // The character code dividing list items; codes 128 to 255 are the Latin-1
  // characters (228 is "ä").
  uint8_t Separator() const { return separator_; }
  void Separator(uint8_t value) { separator_ = value; }

  // Files (never folders) matching any of the patterns in any of the
  // folders, having every attribute in FileAttributes, which is also the
  // enumeration mask (so hidden or system files come only when asked for).
  // Pattern by pattern, and for each pattern folder by folder. Each result
  // is keyed by its name.
  void Search_File(const std::string& sDirectory, const std::string& sFileToSearch,
                   FileAttributeSet FileAttributes, std::shared_ptr<sf_Information>& cFoundFiles);
  // Folders (also hidden ones and links to folders) matching any of the
  // patterns, without "." and ".."; Size is "0". Keyed by name.
  void Search_Directory(const std::string& sDirectory, const std::string& sDirToSearch,
                        std::shared_ptr<sf_Information>& cFoundDirs);
  // Every file below SearchPath matching sFilter (hidden and system files
  // left out): the files of a folder, then each subfolder with everything
  // below it, depth first. Hidden folders are scanned too.
  void ScanPathforFiles(const std::string& SearchPath, const std::string& sFilter,
                        std::shared_ptr<sf_Information>& cFoundFiles);
  // Every folder below SearchPath (not SearchPath itself): the subfolders of
  // a folder, then those of each subfolder, depth first.
  void ScanPathforPaths(const std::string& SearchPath,
                        std::shared_ptr<sf_Information>& cFoundFiles);

  // The items of a list, trimmed of surrounding blanks; an empty text is one
  // empty item.
  std::vector<std::string> SplitList(std::string_view text) const;
  // The folder ending in "/" (or "\", which is kept).
  static std::string EnsureSlash(const std::string& folder);

  // Lets the host's pending events run; the scans call it before each
  // subfolder so that a long scan keeps the user interface alive. The host
  // installs it (a form's DoEvents); none is installed at first, and an
  // empty function removes it. Each call keeps its results to itself, so
  // host code run meanwhile may start other searches, even on this object.
  // A velt::Error the handler throws is ignored; any other exception stops
  // the scan: the collection found so far is assigned, then the exception
  // goes on to the caller.
  static void DoEventsHandler(std::function<void()> handler);

 private:
  // Calls the installed handler, if any.
  static void runPendingEvents();

  uint8_t separator_ = ';';
};

}  // namespace velt
