#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "velt/platform/FolderHandle.hpp"
#include "velt/utilities/FoldedNameSet.hpp"
#include "velt/utilities/FolderSearch.hpp"
#include "velt/utilities/IdentitySet.hpp"
#include "velt/utilities/sf_Information.hpp"

namespace velt {

// The recursive scans behind Search::ScanPathforFiles and ScanPathforPaths.
//
// Depth first: a folder's own results first, then each of its subfolders in
// the order they were found, each with everything below it. Host events run
// before each subfolder. The walk keeps its own stack instead of recursing,
// so a tree of any depth is scanned without exhausting the call stack, and
// opens subfolders relative to their parents, so paths longer than the
// system's path limit work. Only the deepest few dozen folders of the
// current branch stay open; a shallower one is opened again from the start
// folders when it is needed (and must still be the same folder).
//
// A folder is entered at most once, known by its identity (device and
// inode), so a link back to an ancestor is listed but not followed again and
// a cycle of links ends. What cannot be read, or vanishes meanwhile, is
// left out and the scan goes on.
class TreeScan {
 public:
  enum class Listing {
    Files,    // the files matching the filters, found with attribute mask 0
    Folders,  // every folder below the start folders (not those themselves)
  };

  TreeScan(Listing listing, const std::vector<std::string>& filters,
           std::function<void()> pendingEvents);
  ~TreeScan();
  TreeScan(const TreeScan&) = delete;
  TreeScan& operator=(const TreeScan&) = delete;

  // Scans below the start folders (the items of the search path) and returns
  // what it found, never nothing.
  std::shared_ptr<sf_Information> Run(const std::vector<std::string>& startFolders);

 private:
  struct Folder;
  struct Subfolder;
  struct Frame;
  class SubfolderCollector;
  class FileCollector;

  void openStartFolders(const std::vector<std::string>& startFolders, Frame& frame);
  void list(Frame& frame);
  void enter(size_t parentFrame, Subfolder subfolder);
  void add(const Folder& folder, const DirectoryEntry& entry, std::string size);
  void push(Frame&& frame);
  void pop();
  const FolderHandle* handleOf(size_t frameIndex, uint32_t folder);
  bool reopen(size_t frameIndex);

  Listing listing_;
  std::vector<PlacedPattern> filters_;
  PlacedPattern everything_;
  std::function<void()> pendingEvents_;
  FolderSearch search_;
  std::shared_ptr<sf_Information> results_;
  IdentitySet entered_;
  std::vector<Frame> frames_;
  // Frames 1 .. firstOpen_-1 have their folder closed; the ones from here
  // up are open. The start frame stays open.
  size_t firstOpen_ = 1;
  // The names already found in the folder being listed.
  FoldedNameSet namesSeen_;
};

}  // namespace velt
