#include "velt/utilities/Search.hpp"

#include <gtest/gtest.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <memory>
#include <string>
#include <vector>

#include "SearchResults.hpp"
#include "TempTree.hpp"
#include "velt/platform/Error.hpp"

namespace velt {
namespace {

using testing::AsSet;
using testing::Filenames;
using Names = std::vector<std::string>;
using NameSet = std::set<std::string>;

class SearchTest : public ::testing::Test {
 protected:
  std::shared_ptr<sf_Information> files(const std::string& folders, const std::string& patterns,
                                        FileAttributeSet mask = faNormal) {
    std::shared_ptr<sf_Information> found;
    search.Search_File(folders, patterns, mask, found);
    EXPECT_NE(found, nullptr);
    return found;
  }
  std::shared_ptr<sf_Information> folders(const std::string& folders, const std::string& patterns) {
    std::shared_ptr<sf_Information> found;
    search.Search_Directory(folders, patterns, found);
    EXPECT_NE(found, nullptr);
    return found;
  }

  testing::TempTree tree;
  Search search;
};

TEST_F(SearchTest, PatternsComeInListOrderEachWithAllItsFiles) {
  for (const char* name : {"b.txt", "c.log", "a.txt", "d.dat", "e.log", "f.TXT"})
    tree.File(name);
  tree.Folder("folder.txt");
  const auto found = files(tree.Root(), "*.txt;*.log");
  const Names names = Filenames(found);
  ASSERT_EQ(names.size(), 5u);
  EXPECT_EQ(AsSet(Names(names.begin(), names.begin() + 3)), (NameSet{"a.txt", "b.txt", "f.TXT"}));
  EXPECT_EQ(AsSet(Names(names.begin() + 3, names.end())), (NameSet{"c.log", "e.log"}));
  for (const auto& value : *found) {
    EXPECT_EQ(value->Path(), tree.Root() + "/");
    EXPECT_EQ(value->Attri(), faArchive);
    EXPECT_EQ(value->Size(), "0");
  }
  // A folder given with its "/" is not given another.
  EXPECT_EQ(found->Item(1)->Path(), files(tree.Root() + "/", "*.txt")->Item(1)->Path());
}

TEST_F(SearchTest, TheMaskAdmitsAndRequiresAttributes) {
  tree.File("plain", 1);
  tree.File(".hidden", 2);
  tree.File("readonly", 3, 0444);
  tree.File(".hidden-readonly", 4, 0444);
  tree.Fifo("pipe");
  tree.Folder("sub");
  tree.Folder(".hidden-sub");
  EXPECT_EQ(AsSet(Filenames(files(tree.Root(), "*", faNormal))), (NameSet{"plain", "readonly"}));
  EXPECT_EQ(AsSet(Filenames(files(tree.Root(), "*", faHidden))),
            (NameSet{".hidden", ".hidden-readonly"}));
  EXPECT_EQ(AsSet(Filenames(files(tree.Root(), "*", faReadOnly))), NameSet{"readonly"});
  EXPECT_EQ(AsSet(Filenames(files(tree.Root(), "*", faHidden | faReadOnly))),
            NameSet{".hidden-readonly"});
  EXPECT_EQ(AsSet(Filenames(files(tree.Root(), "*", faSystem))), NameSet{"pipe"});
  EXPECT_EQ(Filenames(files(tree.Root(), "*", faDirectory)), Names{});
  EXPECT_EQ(Filenames(files(tree.Root(), "*", faHidden | faDirectory)), Names{});

  const auto readonly = files(tree.Root(), "readonly", faNormal);
  ASSERT_EQ(readonly->Count(), 1);
  EXPECT_EQ(readonly->Item(1)->Attri(), faArchive | faReadOnly);
  EXPECT_EQ(readonly->Item(1)->Size(), "3");
}

TEST_F(SearchTest, SearchDirectoryListsFoldersWithoutDotAndDotDot) {
  tree.Folder("sub");
  tree.Folder(".hidden");
  tree.Folder("locked", 0555);
  tree.File("file");
  tree.Link("link", "sub");
  tree.Link("file-link", "file");
  const auto found = folders(tree.Root(), "*.*");
  EXPECT_EQ(AsSet(Filenames(found)), (NameSet{"sub", ".hidden", "locked", "link"}));
  for (const auto& value : *found) {
    EXPECT_EQ(value->Size(), "0");
    EXPECT_EQ(value->Path(), tree.Root() + "/");
    EXPECT_NE(value->Attri() & faDirectory, 0) << value->Filename();
    EXPECT_EQ(value->Attri() & faHidden, value->Filename() == ".hidden" ? faHidden : 0);
    EXPECT_EQ(value->Attri() & faReadOnly, value->Filename() == "locked" ? faReadOnly : 0);
  }
  EXPECT_EQ(AsSet(Filenames(folders(tree.Root(), "S*;l*"))), (NameSet{"sub", "locked", "link"}));
  EXPECT_EQ(Filenames(folders(tree.Root(), ".")), Names{});
}

TEST_F(SearchTest, ANameFoundTwiceCountsOnceWithItsFirstFind) {
  tree.Folder("one");
  tree.Folder("two");
  tree.File("one/same.txt", 1);
  tree.File("two/SAME.TXT", 2);
  tree.File("two/other.txt", 3);
  const auto found = files(tree.Path("one") + ";" + tree.Path("two"), "*.txt");
  ASSERT_EQ(Filenames(found), (Names{"same.txt", "other.txt"}));
  EXPECT_EQ(found->Item(1)->Path(), tree.Path("one/"));
  EXPECT_EQ(found->Item(1)->Size(), "1");
  EXPECT_EQ(found->Item(2)->Path(), tree.Path("two/"));

  // A name two patterns match.
  EXPECT_EQ(Filenames(files(tree.Path("two"), "other.*;*.txt")).size(), 2u);

  // Results are keyed by name: adding the name again is refused.
  EXPECT_THROW(found->Add("/", "Same.Txt", "", faNormal, "0", "Same.Txt"), Error);
}

TEST_F(SearchTest, NamesThatAreNotUtf8AreKeptAndKeptApart) {
  const std::string latin1 = "caf\xE9.txt";
  const std::string other = "caf\xC9.txt";  // upper case in Latin-1, a different byte here
  tree.File(latin1);
  tree.File(other);
  EXPECT_EQ(AsSet(Filenames(files(tree.Root(), "*.txt"))), (NameSet{latin1, other}));
}

TEST_F(SearchTest, ListsAreSplitAtTheSeparatorAndTrimmed) {
  EXPECT_EQ(search.SplitList(" one ; two;three "), (Names{"one", "two", "three"}));
  EXPECT_EQ(search.SplitList("alone"), Names{"alone"});
  EXPECT_EQ(search.SplitList(""), Names{""});
  EXPECT_EQ(search.SplitList(";"), (Names{"", ""}));
  EXPECT_EQ(search.SplitList("a;;b"), (Names{"a", "", "b"}));
  EXPECT_EQ(search.SplitList("\tx\t"), Names{"\tx\t"});  // blanks are spaces only

  search.Separator(44);
  EXPECT_EQ(search.Separator(), 44);
  EXPECT_EQ(search.SplitList("a;b, c"), (Names{"a;b", "c"}));
  search.Separator(228);  // ä
  EXPECT_EQ(search.SplitList("x\xC3\xA4y"), (Names{"x", "y"}));
  EXPECT_EQ(search.SplitList("x\xC3\xA5y"), Names{"x\xC3\xA5y"});

  tree.Folder("one");
  tree.Folder("two");
  tree.File("one/a.txt");
  tree.File("two/b.log");
  search.Separator(44);
  EXPECT_EQ(
      AsSet(Filenames(files(" " + tree.Path("one") + " , " + tree.Path("two"), "*.txt , *.log"))),
      (NameSet{"a.txt", "b.log"}));
}

TEST_F(SearchTest, MissingFoldersFindNothingAndStopNothing) {
  tree.File("a.txt");
  const auto none = files(tree.Path("missing"), "*");
  EXPECT_EQ(none->Count(), 0);
  EXPECT_EQ(folders(tree.Path("a.txt"), "*")->Count(), 0);
  EXPECT_EQ(Filenames(files(tree.Path("missing") + ";" + tree.Root(), "*.txt")), Names{"a.txt"});
}

TEST_F(SearchTest, EnsureSlashAcceptsEitherSlash) {
  EXPECT_EQ(Search::EnsureSlash("/data"), "/data/");
  EXPECT_EQ(Search::EnsureSlash("/data/"), "/data/");
  EXPECT_EQ(Search::EnsureSlash("C:\\data\\"), "C:\\data\\");
  EXPECT_EQ(Search::EnsureSlash(""), "/");
}

TEST_F(SearchTest, APatternWithAFolderLooksItsNamesUpInTheSearchedFolder) {
  tree.Folder("sub");
  tree.File("x.txt", 1);
  tree.File("sub/x.txt", 22);
  tree.File("sub/y.txt", 333);
  const auto found = files(tree.Root(), "sub/*.txt");
  ASSERT_EQ(Filenames(found), Names{"x.txt"});
  EXPECT_EQ(found->Item(1)->Path(), tree.Root() + "/");
  EXPECT_EQ(found->Item(1)->Size(), "1");
  EXPECT_EQ(AsSet(Filenames(files(tree.Root(), "/*.txt"))), NameSet{"x.txt"});
}

TEST_F(SearchTest, TheDefaultInstanceKeepsItsSeparator) {
  Search& shared = Search::Default();
  EXPECT_EQ(&shared, &Search::Default());
  const uint8_t before = shared.Separator();
  shared.Separator(',');
  EXPECT_EQ(Search::Default().Separator(), ',');
  shared.Separator(before);
  EXPECT_EQ(Search().Separator(), ';');
}

// The user's locale and time zone, pinned for one test.
class PinnedDateFormat {
 public:
  PinnedDateFormat(const char* locale, const char* zone)
      : locale_(icu::Locale::getDefault()), zone_(icu::TimeZone::createDefault()) {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(icu::Locale(locale), status);
    icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone(zone));
  }
  ~PinnedDateFormat() {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(locale_, status);
    icu::TimeZone::adoptDefault(zone_);
  }

 private:
  icu::Locale locale_;
  icu::TimeZone* zone_;
};

TEST_F(SearchTest, DateTimeIsTheModificationTimeInTheUsersLocale) {
  tree.File("dated.txt");
  tree.Folder("dated");
  // 2021-06-15 12:34:56 UTC modified, accessed a year earlier.
  tree.Times("dated.txt", 1592224496, 1623760496);
  tree.Times("dated", 1592224496, 1623760496);
  {
    const PinnedDateFormat pinned("de_DE", "UTC");
    EXPECT_EQ(files(tree.Root(), "dated.txt")->Item(1)->DateTime(), "15.06.21, 12:34:56");
    EXPECT_EQ(folders(tree.Root(), "dated")->Item(1)->DateTime(), "15.06.21, 12:34:56");
  }
  {
    const PinnedDateFormat pinned("de_DE", "Asia/Tokyo");
    EXPECT_EQ(files(tree.Root(), "dated.txt")->Item(1)->DateTime(), "15.06.21, 21:34:56");
  }
}

}  // namespace
}  // namespace velt
