#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "SearchResults.hpp"
#include "velt/platform/Error.hpp"

namespace velt {
namespace {

using testing::AsSet;
using testing::Filenames;
using testing::Names;
using testing::NameSet;
using ScanTest = testing::SearchFixture;

// A scan's results in the order the file system lists entries: a folder's
// files (or subfolders), then the same for each subfolder in turn.
void depthFirst(const std::string& folder, bool files, Names& expected) {
  Names subfolders;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::string path = folder + "/" + entry.path().filename().string();
    if (entry.is_directory()) subfolders.push_back(path);
    if (entry.is_directory() != files) expected.push_back(path);
  }
  for (const auto& subfolder : subfolders)
    depthFirst(subfolder, files, expected);
}

TEST_F(ScanTest, ResultsComeFolderByFolderDepthFirst) {
  tree.Make({"a/", "a/x/", "a/x/deep/", "a/y/", "b/", "c/", "c/z/", "1", "2", "a/3", "a/x/4",
             "a/x/deep/5", "a/x/deep/6", "a/y/7", "b/8", "c/z/9", "c/z/10"});
  tree.File("a/x/4", 7);
  for (const bool listFiles : {true, false}) {
    Names expected;
    depthFirst(tree.Root(), listFiles, expected);
    const auto found = listFiles ? scanFiles(tree.Root()) : scanPaths(tree.Root());
    EXPECT_EQ(Filenames(found, true), expected);
    for (const auto& value : *found) {
      EXPECT_EQ(value->Attri(), listFiles ? faArchive : faDirectory);
      EXPECT_EQ(value->Size(), value->Filename() == "4" ? "7" : "0");
    }
  }
  EXPECT_EQ(scanFiles(tree.Path("a/y/7"))->Count(), 0);
}

TEST_F(ScanTest, HiddenAndSpecialFilesAreLeftOutButHiddenFoldersAreScanned) {
  tree.Make({".hidden.txt", ".config/", ".config/settings.txt", "d\xFF/", "d\xFF/f\xFE\xE9.txt"});
  tree.Fifo("pipe");
  tree.Link("broken", "nowhere");
  tree.Link("file-link", ".config/settings.txt");
  EXPECT_EQ(AsSet(Filenames(scanFiles(tree.Root()), true)),
            (NameSet{tree.Path("file-link"), tree.Path(".config/settings.txt"),
                     tree.Path("d\xFF/f\xFE\xE9.txt")}));
  EXPECT_EQ(AsSet(Filenames(scanPaths(tree.Root()))), (NameSet{".config", "d\xFF"}));
}

TEST_F(ScanTest, FiltersApplyOneAfterTheOtherInEachFolder) {
  tree.Make({"sub/", "a.log", "b.txt", "sub/d.log", "sub/e.txt", "sub/F.TXT"});
  tree.File("c.dat", 5);
  tree.File("sub/c.dat", 9);
  // "sub/*.dat" takes the names in sub and looks them up in the folder scanned.
  const auto found = scanFiles(tree.Root(), "*.txt; *.log ;sub/*.dat");
  const Names names = Filenames(found);
  ASSERT_EQ(names.size(), 6u);
  EXPECT_EQ(Names(names.begin(), names.begin() + 3), (Names{"b.txt", "a.log", "c.dat"}));
  EXPECT_EQ(found->Item(3)->Size(), "5");
  EXPECT_EQ(AsSet({names.begin() + 3, names.begin() + 5}), (NameSet{"e.txt", "F.TXT"}));
  EXPECT_EQ(names[5], "d.log");
}

TEST_F(ScanTest, ANameCountsOncePerFolderRegardlessOfCase) {
  tree.Make({"big/", "big/F7.TXT", "big/Stra\u00DFe", "big/STRASSE", "many/"});
  for (int i = 0; i < 2500; ++i)
    tree.File("big/f" + std::to_string(i) + ".txt");
  for (int i = 0; i < 300; ++i) {
    const std::string folder = "many/d" + std::to_string(i);
    tree.Make({folder + "/", folder + "/x", folder + "/X"});
  }
  tree.File("many/D0");  // a file may have the name of a folder
  const Names found = Filenames(scanFiles(tree.Root(), "*.*;*"), true);
  const NameSet unique = AsSet(found);
  EXPECT_EQ(found.size(), unique.size());
  EXPECT_EQ(found.size(), 2500u + 1 + 300 + 1);  // "Straße" folds to "strasse"
  EXPECT_EQ(unique.count(tree.Path("big/f7.txt")) + unique.count(tree.Path("big/F7.TXT")), 1u);
  EXPECT_EQ(scanPaths(tree.Path("many"))->Count(), 300);
}

// A folder is listed once however many ways lead to it, the start folder
// included: a link back to it or to an ancestor is no new folder.
TEST_F(ScanTest, ALinkCycleIsListedAndEnteredOnce) {
  tree.Make({"a/", "a/file.txt"});
  tree.Link("a/back", "..");
  tree.Link("a/self", ".");
  tree.Link("twin", "a");
  const Names files = Filenames(scanFiles(tree.Root()), true);
  ASSERT_EQ(files.size(), 1u);
  EXPECT_TRUE(files[0] == tree.Path("a/file.txt") || files[0] == tree.Path("twin/file.txt"));
  const Names paths = Filenames(scanPaths(tree.Root()));
  ASSERT_EQ(paths.size(), 1u);
  EXPECT_TRUE(paths[0] == "a" || paths[0] == "twin") << paths[0];
}

TEST_F(ScanTest, StartFoldersAreAListButFoundFoldersAreTakenAsNamed) {
  tree.Make({"one/", "two/", "two/a;b/", "two/ spaced /", "one/a.txt", "two/b.txt", "two/a;b/c.txt",
             "two/ spaced /d.txt"});
  const Names found = Filenames(scanFiles(tree.Path("one") + " ; " + tree.Path("two")), true);
  ASSERT_EQ(found.size(), 4u);
  EXPECT_EQ(Names(found.begin(), found.begin() + 2),
            (Names{tree.Path("one/a.txt"), tree.Path("two/b.txt")}));
  EXPECT_EQ(AsSet({found.begin() + 2, found.end()}),
            (NameSet{tree.Path("two/a;b/c.txt"), tree.Path("two/ spaced /d.txt")}));
}

TEST_F(ScanTest, HostEventsRunBeforeEachSubfolderAndCannotStopTheScan) {
  tree.Make({"a/", "a/b/", "c/", "victim/", "a/1", "c/2", "victim/3"});
  tree.Link("c/loop", "..");
  int runs = 0;
  Search::DoEventsHandler([&] { ++runs; });
  scanFiles(tree.Root());
  EXPECT_EQ(runs, 5);  // a, a/b, c, c/loop (found, though not entered again), victim

  // The host may remove folders, fail, and run scans of its own meanwhile.
  testing::TempTree other;
  other.File("inner");
  std::shared_ptr<sf_Information> nested;
  Search::DoEventsHandler([&] {
    tree.Remove("victim");
    if (!nested) search.ScanPathforFiles(other.Root(), "*", nested);
    throw Error(errInvalidPropertyValue, "host trouble");
  });
  EXPECT_EQ(AsSet(Filenames(scanFiles(tree.Root()))), (NameSet{"1", "2"}));
  ASSERT_NE(nested, nullptr);
  EXPECT_EQ(Filenames(nested), Names{"inner"});

  // Anything else stops the scan; what it found is handed over first.
  tree.File("0");
  Search::DoEventsHandler([] { throw std::runtime_error("host gave up"); });
  std::shared_ptr<sf_Information> found;
  EXPECT_THROW(search.ScanPathforFiles(tree.Root(), "*", found), std::runtime_error);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(Filenames(found), Names{"0"});
}

TEST_F(ScanTest, TreesDeeperThanThePathLimitAreScannedWhole) {
  tree.Make({"top/", "top/last.txt"});
  tree.Chain("top", 2000, "dd", "bottom.txt");
  // Both deeper than the folders kept open: the second starts from a closed one.
  tree.Chain("top", 150, "l", "left.txt");
  std::string deepest = tree.Path("top/");
  for (int i = 0; i < 2000; ++i)
    deepest += "dd/";
  const Names found = Filenames(scanFiles(tree.Root()), true);
  EXPECT_EQ(AsSet(found).count(deepest + "bottom.txt"), 1u);
  EXPECT_EQ(found.size(), 3u);
  EXPECT_EQ(scanPaths(tree.Root())->Count(), 2151);
}

TEST_F(ScanTest, UnreadableFoldersAreSkippedAndTheRestIsFound) {
  tree.Make({"before/", "locked/", "after/", "locked/inner/", "before/a", "locked/b", "after/c"});
  ::chmod(tree.Path("locked").c_str(), 0);
  const auto check = [&] {
    return AsSet(Filenames(scanFiles(tree.Root(), "*"))) == NameSet{"a", "c"} &&
           AsSet(Filenames(scanPaths(tree.Root()))) == NameSet{"before", "locked", "after"};
  };
  if (::geteuid() != 0) {
    EXPECT_TRUE(check());
    return;
  }
  // Permissions do not stop root: the scan runs as another user.
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    if (::setgid(65534) != 0 || ::setuid(65534) != 0) ::_exit(77);
    ::_exit(check() ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  if (WIFEXITED(status) && WEXITSTATUS(status) == 77)
    GTEST_SKIP() << "root cannot become another user here: unreadable folders are NOT tested";
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "other results as another user";
}

}  // namespace
}  // namespace velt
