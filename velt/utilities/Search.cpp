#include "velt/utilities/Search.hpp"

#include <exception>
#include <utility>

#include "velt/platform/FolderHandle.hpp"
#include "velt/utilities/FolderSearch.hpp"
#include "velt/utilities/ResultMaker.hpp"
#include "velt/utilities/TreeScan.hpp"

namespace velt {

namespace {

std::function<void()>& doEventsHandler() {
  static std::function<void()> handler;
  return handler;
}

// The separator as UTF-8 text: the character whose Latin-1 code it is.
std::string separatorText(uint8_t code) {
  if (code < 0x80) return std::string(1, static_cast<char>(code));
  return {static_cast<char>(0xC0 | (code >> 6)), static_cast<char>(0x80 | (code & 0x3F))};
}

std::string_view trimBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// A search folder as the one-folder steps use it: ending in "/".
std::string searchFolder(const std::string& folder) {
  return !folder.empty() && folder.back() == '/' ? folder : folder + "/";
}

// Adds what a one-folder step finds to the result of Search_File or
// Search_Directory, keyed by name; a name already there is refused by the
// collection, and that find is left out.
class KeyedResults : public FoundEntries {
 public:
  KeyedResults(sf_Information& results, ResultMaker& maker,
               std::shared_ptr<const std::string> folder)
      : results_(results), maker_(maker), folder_(std::move(folder)) {}

  void Found(const DirectoryEntry& entry) override {
    ignoringErrors([&] { maker_.Add(results_, folder_, entry, entry.Name); });
  }

 private:
  sf_Information& results_;
  ResultMaker& maker_;
  std::shared_ptr<const std::string> folder_;
};

enum class Finding { Files, Folders };

std::shared_ptr<sf_Information> findInFolders(const std::vector<std::string>& folders,
                                              const std::vector<std::string>& patterns,
                                              Finding finding, FileAttributeSet mask) {
  auto results = std::make_shared<sf_Information>();
  FolderSearch search;
  ResultMaker maker;
  for (const auto& patternText : patterns) {
    const PlacedPattern pattern(patternText);
    for (const auto& folderText : folders) {
      ignoringErrors([&] {
        auto folder = std::make_shared<const std::string>(searchFolder(folderText));
        const FolderHandle handle = FolderHandle::Open(*folder);
        KeyedResults found(*results, maker, std::move(folder));
        if (finding == Finding::Files)
          search.FindFiles(handle, pattern, mask, found);
        else
          search.FindFolders(handle, pattern, found);
      });
    }
  }
  return results;
}

}  // namespace

Search& Search::Default() {
  static Search instance;
  return instance;
}

void Search::DoEventsHandler(std::function<void()> handler) {
  doEventsHandler() = std::move(handler);
}

void Search::runPendingEvents() {
  // A copy: the handler may replace itself while it runs.
  const std::function<void()> handler = doEventsHandler();
  if (handler) handler();
}

std::vector<std::string> Search::SplitList(std::string_view text) const {
  const std::string separator = separatorText(separator_);
  std::vector<std::string> items;
  size_t start = 0;
  while (true) {
    const size_t found = text.find(separator, start);
    const size_t end = found == std::string_view::npos ? text.size() : found;
    items.emplace_back(trimBlanks(text.substr(start, end - start)));
    if (found == std::string_view::npos) return items;
    start = found + separator.size();
  }
}

std::string Search::EnsureSlash(const std::string& folder) {
  if (!folder.empty() && (folder.back() == '/' || folder.back() == '\\')) return folder;
  return folder + "/";
}

void Search::Search_File(const std::string& sDirectory, const std::string& sFileToSearch,
                         FileAttributeSet FileAttributes,
                         std::shared_ptr<sf_Information>& cFoundFiles) {
  cFoundFiles = findInFolders(SplitList(sDirectory), SplitList(sFileToSearch), Finding::Files,
                              FileAttributes);
}

void Search::Search_Directory(const std::string& sDirectory, const std::string& sDirToSearch,
                              std::shared_ptr<sf_Information>& cFoundDirs) {
  cFoundDirs = findInFolders(SplitList(sDirectory), SplitList(sDirToSearch), Finding::Folders,
                             faHidden | faDirectory);
}

void Search::ScanPathforFiles(const std::string& SearchPath, const std::string& sFilter,
                              std::shared_ptr<sf_Information>& cFoundFiles) {
  TreeScan scan(TreeScan::Listing::Files, SplitList(sFilter), &Search::runPendingEvents);
  cFoundFiles = scan.Run(SplitList(SearchPath));
  if (scan.Interruption()) std::rethrow_exception(scan.Interruption());
}

void Search::ScanPathforPaths(const std::string& SearchPath,
                              std::shared_ptr<sf_Information>& cFoundFiles) {
  TreeScan scan(TreeScan::Listing::Folders, {}, &Search::runPendingEvents);
  cFoundFiles = scan.Run(SplitList(SearchPath));
  if (scan.Interruption()) std::rethrow_exception(scan.Interruption());
}

}  // namespace velt
