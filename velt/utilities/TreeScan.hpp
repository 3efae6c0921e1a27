#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "velt/platform/DirectoryEnumerator.hpp"
#include "velt/platform/FolderHandle.hpp"
#include "velt/platform/WildcardPattern.hpp"
#include "velt/utilities/FoldedNameSet.hpp"
#include "velt/utilities/FolderSearch.hpp"
#include "velt/utilities/IdentitySet.hpp"
#include "velt/utilities/ResultMaker.hpp"
#include "velt/utilities/sf_Information.hpp"

namespace velt {

// The recursive scans behind Search::ScanPathforFiles and ScanPathforPaths.
//
// Depth first: a folder's own results first, then each of its subfolders in
// the order they were found, each with everything below it. Host events run
// before each subfolder. Each folder is read once, for its subfolders and
// its files together, with the results of a search for the subfolders
// followed by one for the files, filter by filter; only a filter that names
// a subfolder ("sub/*.txt") reads that subfolder on its own.
//
// The walk keeps its own stack instead of recursing, so a tree of any depth
// is scanned without exhausting the call stack, and opens subfolders
// relative to their parents, so paths longer than the system's path limit
// work. Only the deepest few dozen folders of the current branch stay open;
// a shallower one is opened again from the start folders when it is needed
// (and must still be the same folder).
//
// A folder is entered at most once, known by its identity (device and
// inode), so a cycle of links ends; a folder listing lists each folder once
// too, so a link back to a start folder, to an ancestor or to a folder listed
// already is left out. What cannot be read, or vanishes meanwhile, is left
// out and the scan goes on.
//
// The host's pending-events handler runs before each subfolder; a
// velt::Error it throws is left out like a failing step, anything else stops
// the scan: Run returns what was found so far and Interruption() holds the
// exception for the caller to rethrow.
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
  // What stopped the last Run early, or nothing.
  std::exception_ptr Interruption() const { return interruption_; }

 private:
  struct Folder;
  struct Subfolder;
  struct Frame;
  struct Candidate;
  class FileCollector;

  bool runPendingEvents();
  void openStartFolders(const std::vector<std::string>& startFolders, Frame& frame);
  void list(Frame& frame);
  void read(Frame& frame, uint32_t folder);
  void takeSubfolder(Frame& frame, uint32_t folder, DirectoryEntry& entry);
  void offerFile(uint32_t folder, const Folder& in, DirectoryEntry& entry);
  void applyFilter(const Frame& frame, const PlacedPattern& filter);
  void takeFile(const Folder& folder, const DirectoryEntry& entry);
  void add(const Folder& folder, const DirectoryEntry& entry);
  void enter(size_t parentFrame, Subfolder subfolder);
  void push(Frame&& frame);
  void pop();
  const FolderHandle* handleOf(size_t frameIndex, uint32_t folder);
  bool reopen(size_t frameIndex);

  Listing listing_;
  std::vector<PlacedPattern> filters_;
  // The first filter is applied while a folder is read (it names no
  // subfolder of its own).
  bool firstFilterWhileReading_ = false;
  // Some filter after that one needs the files the reading left.
  bool keepCandidates_ = false;
  WildcardPattern everyName_;
  std::function<void()> pendingEvents_;
  DirectoryEnumerator reader_;
  // For filters that name a subfolder.
  FolderSearch search_;
  ResultMaker maker_;
  std::shared_ptr<sf_Information> results_;
  IdentitySet entered_;
  IdentitySet listed_;  // for a folder listing: the start folders and every folder listed
  std::exception_ptr interruption_;
  std::vector<Frame> frames_;
  // Frames 1 .. firstOpen_-1 have their folder closed; the ones from here
  // up are open. The start frame stays open.
  size_t firstOpen_ = 1;
  // The names already found in the folder being listed, for folders and
  // for files apart.
  FoldedNameSet folderNames_;
  FoldedNameSet fileNames_;
  // The files of the folder being listed that the first filter did not
  // take, for the other filters; their names back to back, each ending in
  // a NUL.
  std::vector<Candidate> candidates_;
  std::string candidateNames_;
};

}  // namespace velt
