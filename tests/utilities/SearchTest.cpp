#include <gtest/gtest.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <algorithm>

#include "SearchResults.hpp"
#include "velt/platform/Error.hpp"

namespace velt {
namespace {

using testing::AsSet;
using testing::Filenames;
using testing::Names;
using testing::NameSet;
using SearchTest = testing::SearchFixture;

int32_t errorNumberOf(auto&& call) {
  try {
    call();
  } catch (const Error& error) {
    return error.Number();
  }
  return 0;
}

TEST_F(SearchTest, PatternByPatternFolderByFolderAndTheFirstFindOfANameWins) {
  tree.Make({"one/", "two/", "one/folder.txt/", "one/b.txt", "one/c.log", "one/a.TXT", "two/d.log",
             "two/e.txt"});
  tree.File("one/same.txt", 1);
  tree.File("two/SAME.TXT", 2);
  const auto found = files(tree.Path("one") + ";" + tree.Path("two"), "*.txt;*.log");
  const Names names = Filenames(found);
  ASSERT_EQ(names.size(), 6u);
  EXPECT_EQ(AsSet({names.begin(), names.begin() + 3}), (NameSet{"a.TXT", "b.txt", "same.txt"}));
  EXPECT_EQ(Names(names.begin() + 3, names.end()), (Names{"e.txt", "c.log", "d.log"}));
  const auto same = found->Item(
      static_cast<int16_t>(std::find(names.begin(), names.end(), "same.txt") - names.begin() + 1));
  EXPECT_EQ(same->Path() + same->Size(), tree.Path("one/") + "1");
  // A folder given with its "/" keeps just that one.
  EXPECT_EQ(Filenames(files(tree.Path("two/"), "e.*;*.txt"), true),
            (Names{tree.Path("two/e.txt"), tree.Path("two/SAME.TXT")}));
}

TEST_F(SearchTest, TheMaskAdmitsAndRequiresAttributes) {
  tree.Make({"plain", ".hidden", "sub/", ".hidden-sub/"});
  tree.File("readonly", 3, 0444);
  tree.File(".hidden-readonly", 4, 0444);
  tree.Fifo("pipe");
  const std::pair<FileAttributeSet, NameSet> cases[] = {
      {faNormal, {"plain", "readonly"}},
      {faHidden, {".hidden", ".hidden-readonly"}},
      {faHidden | faReadOnly, {".hidden-readonly"}},
      {faSystem, {"pipe"}},
      {faHidden | faDirectory, {}},
  };
  for (const auto& [mask, expected] : cases)
    EXPECT_EQ(AsSet(Filenames(files(tree.Root(), "*", mask))), expected) << "mask " << mask;
  EXPECT_EQ(files(tree.Root(), "readonly")->Item(1)->Attri(), faArchive | faReadOnly);
}

TEST_F(SearchTest, SearchDirectoryListsFoldersWithoutDotAndDotDot) {
  tree.Make({"sub/", ".hidden/", "file"});
  tree.Folder("locked", 0555);
  tree.Link("link", "sub");
  tree.Link("file-link", "file");
  const auto found = folders(tree.Root(), "*.*");
  EXPECT_EQ(AsSet(Filenames(found)), (NameSet{"sub", ".hidden", "locked", "link"}));
  for (const auto& value : *found) {
    const std::string& name = value->Filename();
    EXPECT_EQ(value->Attri(), faDirectory | (name == ".hidden" ? faHidden : 0) |
                                  (name == "locked" ? faReadOnly : 0));
  }
  EXPECT_EQ(AsSet(Filenames(folders(tree.Root(), "S*;l*"))), (NameSet{"sub", "locked", "link"}));
  EXPECT_EQ(folders(tree.Root(), ".")->Count(), 0);
  EXPECT_EQ(folders(tree.Path("file"), "*")->Count(), 0);
}

TEST_F(SearchTest, NamesKeepTheirBytesAndMissingFoldersAreSkipped) {
  tree.File("caf\xE9.txt", 1);
  tree.File("caf\xC9.txt", 2);  // upper case in Latin-1, but another byte here
  tree.Make({"sub/", "sub/only-here.txt"});
  EXPECT_EQ(AsSet(Filenames(files(tree.Root(), "*.txt"))), (NameSet{"caf\xE9.txt", "caf\xC9.txt"}));
  EXPECT_EQ(Filenames(files(tree.Path("missing") + ";" + tree.Path("sub"), "o*")),
            Names{"only-here.txt"});
}

TEST_F(SearchTest, ListsAreSplitAtTheSeparatorAndTrimmedOfSpaces) {
  const std::tuple<uint8_t, std::string, Names> cases[] = {
      {';', " one ; two;three ", {"one", "two", "three"}},
      {';', "a;;b", {"a", "", "b"}},
      {';', "\tx\t", {"\tx\t"}},
      {',', "a;b, c", {"a;b", "c"}},
      {228, "x\xC3\xA4y", {"x", "y"}},  // code 228 is "ä"
      {228, "x\xC3\xA5y", {"x\xC3\xA5y"}},
  };
  for (const auto& [separator, text, items] : cases) {
    search.Separator(separator);
    EXPECT_EQ(search.SplitList(text), items) << text;
  }
  tree.Make({"one/", "one/a.txt", "b.log"});
  search.Separator(',');
  EXPECT_EQ(AsSet(Filenames(files(" " + tree.Path("one") + " , " + tree.Root(), "*.txt , *.log"))),
            (NameSet{"a.txt", "b.log"}));
  EXPECT_EQ(Search::EnsureSlash("/data"), "/data/");
  EXPECT_EQ(Search::EnsureSlash("C:\\data\\"), "C:\\data\\");
  EXPECT_EQ(Search::EnsureSlash(""), "/");
}

// The user's locale and time zone, pinned for a while.
class PinnedDateFormat {
 public:
  PinnedDateFormat(const char* locale, const char* zone) {
    icu::Locale::setDefault(icu::Locale(locale), status_);
    icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone(zone));
  }
  ~PinnedDateFormat() {
    icu::Locale::setDefault(locale_, status_);
    icu::TimeZone::adoptDefault(zone_);
  }

 private:
  UErrorCode status_ = U_ZERO_ERROR;
  icu::Locale locale_ = icu::Locale::getDefault();
  icu::TimeZone* zone_ = icu::TimeZone::createDefault();
};

TEST_F(SearchTest, DateTimeIsWrittenInTheLocaleAndZoneOfTheSearch) {
  tree.Make({"dated.txt", "dated/"});
  // Modified 2021-06-15 12:34:56 UTC, accessed a year earlier.
  tree.Times("dated.txt", 1592224496, 1623760496);
  tree.Times("dated", 1592224496, 1623760496);
  std::vector<std::shared_ptr<sf_InformationValue>> values;
  {
    const PinnedDateFormat pinned("de_DE", "UTC");
    values = {files(tree.Root(), "dated.txt")->Item(1), folders(tree.Root(), "dated")->Item(1),
              scanFiles(tree.Root(), "dated.txt")->Item(1)};
  }
  // Read after the zone has changed and the collections have gone.
  const PinnedDateFormat pinned("de_DE", "Asia/Tokyo");
  for (const auto& value : values)
    EXPECT_EQ(value->DateTime(), "15.06.21, 12:34:56") << value->Filename();
  // A copy outlives what it was copied from.
  const sf_InformationValue copy = *scanFiles(tree.Root(), "dated.txt")->Item(1);
  EXPECT_EQ(copy.DateTime(), "15.06.21, 21:34:56");
}

TEST(sf_InformationTest, AddKeysPositionsAndRemove) {
  sf_Information results;
  const auto first = results.Add("/data/", "a", "01.02.03", faArchive | faReadOnly, "12", "A");
  EXPECT_EQ((Names{first->Path(), first->Filename(), first->DateTime(), first->Size()}),
            (Names{"/data/", "a", "01.02.03", "12"}));
  EXPECT_EQ(errorNumberOf([&] { results.Add("/", "b", "", faNormal, "2", "a"); }),
            errKeyAlreadyExists);
  for (const char* name : {"b", "c", "c"})  // without a key, names may repeat
    results.Add("/", name, "", faNormal, "0");
  for (const int16_t outside : {0, 5}) {
    EXPECT_EQ(errorNumberOf([&] { results.Item(outside); }), errSubscriptOutOfRange);
    EXPECT_EQ(errorNumberOf([&] { results.Remove(outside); }), errSubscriptOutOfRange);
  }
  results.Remove(1);
  results.Add("/", "A", "", faNormal, "0", "A");  // the removed entry's key is free again
  Names names;
  for (const auto& value : results.NewEnum())
    names.push_back(value->Filename());
  EXPECT_EQ(names, (Names{"b", "c", "c", "A"}));
}

}  // namespace
}  // namespace velt
