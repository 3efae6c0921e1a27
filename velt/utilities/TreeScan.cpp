#include "velt/utilities/TreeScan.hpp"

#include <algorithm>
#include <utility>

namespace velt {

namespace {

// Enough for any ordinary tree to stay open all the way down, and far below
// the descriptor limits of a process.
constexpr size_t kMaxOpenFrames = 48;

// One read of a folder sees every entry and sorts them out itself.
constexpr FileAttributeSet kEveryEntry = kEnumerationExcludingAttributes;

std::string withSlash(const std::string& folder) {
  return !folder.empty() && folder.back() == '/' ? folder : folder + "/";
}

bool isFolder(const DirectoryEntry& entry) {
  return (entry.Attributes & faDirectory) != 0;
}

bool isDotOrDotDot(std::string_view name) {
  return name == "." || name == "..";
}

}  // namespace

// A folder being listed; its path ends in "/" and is shared by its results.
struct TreeScan::Folder {
  FolderHandle handle;
  std::shared_ptr<const std::string> path;
};

// A subfolder still to scan: its name in folder number parent of its frame.
struct TreeScan::Subfolder {
  uint32_t parent = 0;
  std::string name;
};

// One level of the walk. The start frame holds every start folder, the
// frames below one folder each, reached as name in their parent frame's
// folder number parent.
struct TreeScan::Frame {
  std::vector<Folder> folders;
  std::vector<Subfolder> subfolders;
  size_t next = 0;
  uint32_t parent = 0;
  std::string name;
  FileIdentity identity;
};

// A file kept for the filters after the first: its entry (Described when a
// link was followed to it) in folder number folder of the frame, its name at
// nameOffset in candidateNames_.
struct TreeScan::Candidate {
  uint32_t folder = 0;
  size_t nameOffset = 0;
  DirectoryEntry entry;
};

// Lists the files a filter naming a subfolder finds, once per name
// regardless of case.
class TreeScan::FileCollector : public FoundEntries {
 public:
  FileCollector(TreeScan& scan, const Folder& folder) : scan_(scan), folder_(folder) {}

  void Found(const DirectoryEntry& entry) override { scan_.takeFile(folder_, entry); }

 private:
  TreeScan& scan_;
  const Folder& folder_;
};

TreeScan::TreeScan(Listing listing, const std::vector<std::string>& filters,
                   std::function<void()> pendingEvents)
    : listing_(listing), everyName_("*"), pendingEvents_(std::move(pendingEvents)) {
  filters_.reserve(filters.size());
  for (const auto& filter : filters)
    filters_.emplace_back(filter);
  firstFilterWhileReading_ = !filters_.empty() && filters_.front().folder.empty();
  keepCandidates_ =
      std::any_of(filters_.begin() + (firstFilterWhileReading_ ? 1 : 0), filters_.end(),
                  [](const PlacedPattern& filter) { return filter.folder.empty(); });
}

TreeScan::~TreeScan() = default;

std::shared_ptr<sf_Information> TreeScan::Run(const std::vector<std::string>& startFolders) {
  results_ = std::make_shared<sf_Information>();
  entered_.Clear();
  listed_.Clear();
  interruption_ = nullptr;
  frames_.clear();
  firstOpen_ = 1;

  Frame start;
  openStartFolders(startFolders, start);
  list(start);
  frames_.push_back(std::move(start));
  while (!frames_.empty()) {
    Frame& top = frames_.back();
    if (top.next == top.subfolders.size()) {
      pop();
      continue;
    }
    Subfolder subfolder = std::move(top.subfolders[top.next++]);
    if (!runPendingEvents()) break;
    enter(frames_.size() - 1, std::move(subfolder));
  }
  frames_.clear();
  return std::exchange(results_, nullptr);
}

// A velt::Error of the host's handler is left out like any other failing
// step; anything else ends the scan, to be rethrown once the results are
// handed over.
bool TreeScan::runPendingEvents() {
  if (!pendingEvents_) return true;
  try {
    ignoringErrors(pendingEvents_);
  } catch (...) {
    interruption_ = std::current_exception();
    return false;
  }
  return true;
}

void TreeScan::openStartFolders(const std::vector<std::string>& startFolders, Frame& frame) {
  for (const auto& folder : startFolders) {
    const std::string path = withSlash(folder);
    Folder start{FolderHandle::Open(path), std::make_shared<const std::string>(path)};
    if (!start.handle.IsOpen()) continue;
    const auto identity = start.handle.Identity();
    // The same folder twice in the list finds nothing new the second time.
    if (identity && !entered_.Insert(*identity)) continue;
    if (identity) listed_.Insert(*identity);
    frame.folders.push_back(std::move(start));
  }
}

// Gives what a search for the subfolders followed by one for the files would
// give, from one read of each folder of the frame.
void TreeScan::list(Frame& frame) {
  folderNames_.Clear();
  fileNames_.Clear();
  candidates_.clear();
  candidateNames_.clear();
  for (uint32_t i = 0; i < frame.folders.size(); ++i)
    ignoringErrors([&] { read(frame, i); });
  if (listing_ != Listing::Files) return;
  for (size_t i = firstFilterWhileReading_ ? 1 : 0; i < filters_.size(); ++i)
    applyFilter(frame, filters_[i]);
}

void TreeScan::read(Frame& frame, uint32_t folder) {
  reader_.Start(frame.folders[folder].handle, everyName_, kEveryEntry);
  DirectoryEntry entry;
  while (reader_.Next(entry)) {
    if (isFolder(entry))
      takeSubfolder(frame, folder, entry);
    else if (listing_ == Listing::Files && EnumerationIncludes(entry.Attributes, faNormal))
      offerFile(folder, frame.folders[folder], entry);
  }
}

void TreeScan::takeSubfolder(Frame& frame, uint32_t folder, DirectoryEntry& entry) {
  if (isDotOrDotDot(entry.Name)) return;
  // Only a listed folder needs more than its name.
  const bool listed = listing_ == Listing::Folders;
  if (listed && !(reader_.Describe(entry) && isFolder(entry))) return;
  if (!folderNames_.Insert(entry.Name)) return;
  // A folder met again (a link to a start folder, an ancestor or one listed
  // already) is neither listed nor entered a second time.
  if (listed && !listed_.Insert(entry.Identity)) return;
  frame.subfolders.push_back({folder, std::string(entry.Name)});
  if (listed) add(frame.folders[folder], entry);
}

// A file (an entry the attribute mask 0 admits) met while reading.
void TreeScan::offerFile(uint32_t folder, const Folder& in, DirectoryEntry& entry) {
  if (firstFilterWhileReading_ && filters_.front().names.Matches(entry.Name)) {
    if (reader_.Describe(entry)) takeFile(in, entry);
    return;
  }
  if (!keepCandidates_) return;
  candidates_.push_back({folder, candidateNames_.size(), entry});
  candidates_.back().entry.Name = {};
  candidateNames_.append(entry.Name);
  candidateNames_.push_back('\0');
}

void TreeScan::applyFilter(const Frame& frame, const PlacedPattern& filter) {
  if (!filter.folder.empty()) {
    for (const auto& folder : frame.folders) {
      FileCollector collector(*this, folder);
      ignoringErrors([&] { search_.FindFiles(folder.handle, filter, faNormal, collector); });
    }
    return;
  }
  for (const Candidate& candidate : candidates_) {
    const char* name = candidateNames_.data() + candidate.nameOffset;
    DirectoryEntry entry = candidate.entry;
    entry.Name = name;
    if (!filter.names.Matches(entry.Name)) continue;
    const Folder& folder = frame.folders[candidate.folder];
    if (entry.Described || DirectoryEnumerator::DescribeNamed(folder.handle, name, entry))
      takeFile(folder, entry);
  }
}

// A described file a filter matched: listed unless it has become a folder
// meanwhile or its name is listed already.
void TreeScan::takeFile(const Folder& folder, const DirectoryEntry& entry) {
  if (isFolder(entry) || !fileNames_.Insert(entry.Name)) return;
  add(folder, entry);
}

void TreeScan::enter(size_t parentFrame, Subfolder subfolder) {
  const FolderHandle* parent = handleOf(parentFrame, subfolder.parent);
  if (parent == nullptr) return;
  FolderHandle handle = parent->OpenRelative(subfolder.name);
  const auto identity = handle.Identity();
  if (!identity || !entered_.Insert(*identity)) return;

  Frame frame;
  const std::string& parentPath = *frames_[parentFrame].folders[subfolder.parent].path;
  frame.folders.push_back(
      {std::move(handle), std::make_shared<const std::string>(parentPath + subfolder.name + "/")});
  frame.parent = subfolder.parent;
  frame.name = std::move(subfolder.name);
  frame.identity = *identity;
  list(frame);
  push(std::move(frame));
}

void TreeScan::add(const Folder& folder, const DirectoryEntry& entry) {
  ignoringErrors([&] { maker_.Add(*results_, folder.path, entry); });
}

void TreeScan::push(Frame&& frame) {
  frames_.push_back(std::move(frame));
  while (frames_.size() - firstOpen_ > kMaxOpenFrames)
    frames_[firstOpen_++].folders.front().handle.Close();
}

void TreeScan::pop() {
  frames_.pop_back();
  firstOpen_ = std::max<size_t>(1, std::min(firstOpen_, frames_.size()));
}

const FolderHandle* TreeScan::handleOf(size_t frameIndex, uint32_t folder) {
  Frame& frame = frames_[frameIndex];
  if (frameIndex >= firstOpen_ || frameIndex == 0 || reopen(frameIndex))
    return &frame.folders[folder].handle;
  // The folder is no longer where it was: what is left of it cannot be
  // reached either.
  frame.next = frame.subfolders.size();
  return nullptr;
}

// Opens the frame's folder again by walking down from the start folders,
// keeping the deepest ones open; false when the way down has changed.
bool TreeScan::reopen(size_t frameIndex) {
  const size_t keepFrom = frameIndex >= kMaxOpenFrames ? frameIndex - kMaxOpenFrames + 1 : 1;
  FolderHandle walking;
  const FolderHandle* above = &frames_[0].folders[frames_[1].parent].handle;
  for (size_t i = 1; i <= frameIndex; ++i) {
    Frame& frame = frames_[i];
    FolderHandle handle = above->OpenRelative(frame.name);
    if (handle.Identity() != frame.identity) {
      for (size_t j = keepFrom; j < i; ++j)
        frames_[j].folders.front().handle.Close();
      return false;
    }
    if (i >= keepFrom) {
      frame.folders.front().handle = std::move(handle);
      above = &frame.folders.front().handle;
    } else {
      walking = std::move(handle);
      above = &walking;
    }
  }
  firstOpen_ = keepFrom;
  return true;
}

}  // namespace velt
