#include "velt/utilities/FolderSearch.hpp"

namespace velt {

namespace {

std::string_view folderPart(std::string_view text) {
  const size_t slash = text.find_last_of('/');
  if (slash == std::string_view::npos) return {};
  std::string_view part = text.substr(0, slash + 1);
  // "/*.txt" joined to a folder is that folder itself.
  const size_t start = part.find_first_not_of('/');
  return start == std::string_view::npos ? std::string_view() : part.substr(start);
}

std::string_view namePart(std::string_view text) {
  const size_t slash = text.find_last_of('/');
  return slash == std::string_view::npos ? text : text.substr(slash + 1);
}

bool isDotOrDotDotOrEmpty(std::string_view name) {
  return name.empty() || name == "." || name == "..";
}

bool isFolder(const DirectoryEntry& entry) {
  return (entry.Attributes & faDirectory) != 0;
}

}  // namespace

PlacedPattern::PlacedPattern(std::string_view text)
    : folder(folderPart(text)), names(namePart(text)) {}

bool FolderSearch::start(const FolderHandle& folder, const PlacedPattern& pattern,
                         FileAttributeSet mask) {
  if (pattern.folder.empty()) {
    enumerator_.Start(folder, pattern.names, mask);
    return folder.IsOpen();
  }
  elsewhere_ = folder.OpenRelative(pattern.folder);
  enumerator_.Start(elsewhere_, pattern.names, mask);
  return elsewhere_.IsOpen();
}

bool FolderSearch::describe(const FolderHandle& folder, const PlacedPattern& pattern,
                            DirectoryEntry& entry) {
  return pattern.folder.empty() ? enumerator_.Describe(entry)
                                : enumerator_.DescribeIn(folder, entry);
}

void FolderSearch::FindFiles(const FolderHandle& folder, const PlacedPattern& pattern,
                             FileAttributeSet mask, FoundEntries& found) {
  if (!start(folder, pattern, mask)) return;
  const bool here = pattern.folder.empty();
  DirectoryEntry entry;
  while (enumerator_.Next(entry)) {
    // What the enumeration already knows can spare the status call.
    if (here && (isFolder(entry) || (mask & ~faReadOnly & ~entry.Attributes) != 0)) continue;
    if (!describe(folder, pattern, entry)) continue;
    if (isFolder(entry) || (entry.Attributes & mask) != mask) continue;
    found.Found(entry);
  }
  elsewhere_.Close();
}

void FolderSearch::FindFolders(const FolderHandle& folder, const PlacedPattern& pattern,
                               FoundEntries& found) {
  if (!start(folder, pattern, faHidden | faDirectory)) return;
  const bool here = pattern.folder.empty();
  DirectoryEntry entry;
  while (enumerator_.Next(entry)) {
    if (isDotOrDotDotOrEmpty(entry.Name)) continue;
    if (here && !isFolder(entry)) continue;
    if (!describe(folder, pattern, entry)) continue;
    if (!isFolder(entry)) continue;
    found.Found(entry);
  }
  elsewhere_.Close();
}

}  // namespace velt
