#pragma once

#include <string>
#include <string_view>

#include "velt/platform/DirectoryEnumerator.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/FileAttributes.hpp"
#include "velt/platform/FolderHandle.hpp"
#include "velt/platform/WildcardPattern.hpp"

namespace velt {

// Runs one step of a search; an error of the library makes the step do
// nothing and the search goes on.
template <typename Step>
void ignoringErrors(Step&& step) {
  try {
    step();
  } catch (const Error&) {
  }
}

// A search pattern joined to a folder: "*.txt" enumerates the folder itself,
// "sub/*.txt" its subfolder "sub". Names found elsewhere are still looked up
// in the folder the pattern was joined to, as the classic search does with
// folder + name.
struct PlacedPattern {
  explicit PlacedPattern(std::string_view text);

  // Empty for the folder itself, else a relative path ending in "/".
  std::string folder;
  WildcardPattern names;
};

// Receives the entries one folder step finds, one by one.
class FoundEntries {
 public:
  virtual void Found(const DirectoryEntry& entry) = 0;

 protected:
  ~FoundEntries() = default;
};

// The two one-folder steps of Search_File and Search_Directory (and of a
// scan's filters that name a subfolder), with the enumerator they reuse from
// folder to folder.
class FolderSearch {
 public:
  // Entries that are not folders and have every attribute of mask, found
  // with mask as the enumeration mask.
  void FindFiles(const FolderHandle& folder, const PlacedPattern& pattern, FileAttributeSet mask,
                 FoundEntries& found);
  // Folders (and links to folders), found with the enumeration mask hidden +
  // directory; ".", ".." and empty names are left out.
  void FindFolders(const FolderHandle& folder, const PlacedPattern& pattern, FoundEntries& found);

 private:
  bool start(const FolderHandle& folder, const PlacedPattern& pattern, FileAttributeSet mask);
  bool describe(const FolderHandle& folder, const PlacedPattern& pattern, DirectoryEntry& entry);

  DirectoryEnumerator enumerator_;
  // The subfolder a placed pattern enumerates, open while it is.
  FolderHandle elsewhere_;
};

}  // namespace velt
