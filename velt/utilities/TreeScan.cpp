#include "velt/utilities/TreeScan.hpp"

#include <algorithm>
#include <utility>

namespace velt {

namespace {

// Enough for any ordinary tree to stay open all the way down, and far below
// the descriptor limits of a process.
constexpr size_t kMaxOpenFrames = 48;

std::string withSlash(const std::string& folder) {
  return !folder.empty() && folder.back() == '/' ? folder : folder + "/";
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

// Collects the subfolders of a frame, once per name regardless of case, and
// lists them when the scan lists folders.
class TreeScan::SubfolderCollector : public FoundEntries {
 public:
  SubfolderCollector(TreeScan& scan, Frame& frame, uint32_t folder)
      : scan_(scan), frame_(frame), folder_(folder) {}

  void Found(const DirectoryEntry& entry) override {
    if (!scan_.namesSeen_.Insert(entry.Name)) return;
    frame_.subfolders.push_back({folder_, std::string(entry.Name)});
    if (scan_.listing_ == Listing::Folders) scan_.add(frame_.folders[folder_], entry, "0");
  }

 private:
  TreeScan& scan_;
  Frame& frame_;
  uint32_t folder_;
};

// Lists the files of a frame, once per name regardless of case.
class TreeScan::FileCollector : public FoundEntries {
 public:
  FileCollector(TreeScan& scan, const Folder& folder) : scan_(scan), folder_(folder) {}

  void Found(const DirectoryEntry& entry) override {
    if (!scan_.namesSeen_.Insert(entry.Name)) return;
    scan_.add(folder_, entry, std::to_string(entry.Size));
  }

 private:
  TreeScan& scan_;
  const Folder& folder_;
};

TreeScan::TreeScan(Listing listing, const std::vector<std::string>& filters,
                   std::function<void()> pendingEvents)
    : listing_(listing), everything_("*.*"), pendingEvents_(std::move(pendingEvents)) {
  filters_.reserve(filters.size());
  for (const auto& filter : filters)
    filters_.emplace_back(filter);
}

TreeScan::~TreeScan() = default;

std::shared_ptr<sf_Information> TreeScan::Run(const std::vector<std::string>& startFolders) {
  results_ = std::make_shared<sf_Information>();
  entered_.Clear();
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
    if (pendingEvents_) ignoringErrors(pendingEvents_);
    enter(frames_.size() - 1, std::move(subfolder));
  }
  return std::exchange(results_, nullptr);
}

void TreeScan::openStartFolders(const std::vector<std::string>& startFolders, Frame& frame) {
  for (const auto& folder : startFolders) {
    const std::string path = withSlash(folder);
    Folder start{FolderHandle::Open(path), std::make_shared<const std::string>(path)};
    if (!start.handle.IsOpen()) continue;
    const auto identity = start.handle.Identity();
    // The same folder twice in the list finds nothing new the second time.
    if (identity && !entered_.Insert(*identity)) continue;
    frame.folders.push_back(std::move(start));
  }
}

// What the classic scan gets from one folder search for the subfolders and
// one for the files, in that order.
void TreeScan::list(Frame& frame) {
  const auto detail =
      listing_ == Listing::Folders ? FolderSearch::Detail::Full : FolderSearch::Detail::NameOnly;
  namesSeen_.Clear();
  for (uint32_t i = 0; i < frame.folders.size(); ++i) {
    SubfolderCollector collector(*this, frame, i);
    ignoringErrors(
        [&] { search_.FindFolders(frame.folders[i].handle, everything_, detail, collector); });
  }
  if (listing_ != Listing::Files) return;
  namesSeen_.Clear();
  for (const auto& filter : filters_) {
    for (const auto& folder : frame.folders) {
      FileCollector collector(*this, folder);
      ignoringErrors([&] { search_.FindFiles(folder.handle, filter, faNormal, collector); });
    }
  }
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

// A result made directly, sharing the folder's path and the date's text.
void TreeScan::add(const Folder& folder, const DirectoryEntry& entry, std::string size) {
  ignoringErrors([&] {
    auto value = std::make_shared<sf_InformationValue>();
    value->path_ = folder.path;
    value->filename_.assign(entry.Name);
    value->dateTime_ = search_.SharedDateText(entry);
    value->attributes_ = entry.Attributes;
    value->size_ = std::move(size);
    results_->append(std::move(value));
  });
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
