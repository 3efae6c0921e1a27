// Caption order: the collator (case ignored, in the user's or a named locale)
// and where ComboDatas' sorted adds put an entry.

#include <gtest/gtest.h>
#include <unicode/locid.h>

#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/ExpectError.hpp"
#include "velt/controls/lists/ComboDatas.hpp"
#include "velt/platform/Collator.hpp"

namespace velt {
namespace {

// Sets ICU's default locale (the user's locale of the collation) for one test
// and puts the previous one back afterwards.
class PinnedLocale : public ::testing::Test {
 protected:
  void SetUp() override { Pin("en_US"); }
  void TearDown() override {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(saved_, status);
  }
  static void Pin(const char* name) {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(icu::Locale(name), status);
    ASSERT_TRUE(U_SUCCESS(status)) << u_errorName(status);
  }

 private:
  icu::Locale saved_ = icu::Locale::getDefault();
};

using CollatorTest = PinnedLocale;

// Case is ignored, accents are not; malformed text compares without error. A
// named locale or, by default, the user's (see the sorted adds below); POSIX
// gets the root order; a locale ICU cannot open is error 5 naming it.
TEST_F(CollatorTest, IgnoresCaseButNotAccentsInTheNamedOrTheUsersLocale) {
  const Collator collator("en");
  EXPECT_EQ(collator.Compare("Resume", "rESUME"), 0);
  EXPECT_EQ(collator.Compare("resume", "r\xC3\xA9sum\xC3\xA9"), -1);  // résumé
  EXPECT_EQ(collator.Compare("R\xC3\x89SUM\xC3\x89", "resume"), 1);
  const int32_t forward = collator.Compare("\xFF", "a");
  EXPECT_NE(forward, 0);
  EXPECT_EQ(collator.Compare("a", "\xFF"), -forward);
  EXPECT_EQ(Collator("de").Compare("\xC3\xA4pfel", "zebra"), -1);  // äpfel
  EXPECT_EQ(Collator("sv").Compare("\xC3\xA4pfel", "zebra"), 1);
  Pin("en_US_POSIX");
  EXPECT_EQ(Collator().LocaleName(), "root");
  const std::string name = "de_DE@collation=" + std::string(300, 'x');
  const std::string message = test::errorOf(errInvalidProcedureCall, [&] { Collator c(name); });
  EXPECT_NE(message.find("de_DE@collation=xxx"), std::string::npos) << message;
}

using Captions = std::vector<std::string>;

class ComboDatasTest : public PinnedLocale {
 protected:
  Captions captions() const {
    Captions result;
    for (const auto& entry : list)
      result.push_back(entry->Caption());
    return result;
  }
  Captions sortedAdds(eSortDirection direction, const Captions& all) {
    list.Clear();
    list.Sorted(true);
    list.Sorting(direction);
    for (const auto& caption : all)
      list.Add("", caption);
    return captions();
  }
  // The error names its culprit; nothing is stored and no event raised.
  void expectFailure(int32_t number, const std::string& mention, const std::function<void()>& f) {
    const Captions before = captions();
    const int eventsBefore = events;
    const std::string message = test::errorOf(number, f);
    EXPECT_NE(message.find(mention), std::string::npos) << message;
    EXPECT_EQ(captions(), before);
    EXPECT_EQ(events, eventsBefore);
  }

  ComboDatas list;
  int events = 0;
  Connection added = list.ItemAdded.connect([this] { ++events; });
  Connection changed = list.ItemChanged.connect([this] { events += 100; });
};

// Keys ignore case and empty keys coexist; Remove and Clear raise ItemChanged
// once each and free their keys.
TEST_F(ComboDatasTest, KeysIgnoreCaseAndFailuresStoreNothingAndRaiseNothing) {
  sortedAdds(sd_Ascending, {"d", "e"});
  list.Add("Key", "b");
  expectFailure(errKeyAlreadyExists, "\"kEY\"", [&] { list.Add("kEY", "c"); });
  expectFailure(errInvalidProcedureCall, "\"\"", [&] { list.Item(""); });
  expectFailure(errSubscriptOutOfRange, "4", [&] { list.Remove(4); });
  expectFailure(errInvalidProcedureCall, "\"nope\"", [&] { list.Remove("nope"); });
  events = 0;
  list.Add("c", "c");
  list.Remove("kEy");
  list.Remove(1);
  EXPECT_EQ(captions(), (Captions{"d", "e"}));
  list.Clear();
  EXPECT_EQ(events, 301);
  list.Add("KEY", "again");
  list.Add("c", "again");
}

// Counted even when nothing is compared; unsorted adds have no limit.
TEST_F(ComboDatasTest, ASortedAddAmongMoreThan32767EntriesOverflows) {
  for (int32_t i = 0; i <= ComboDatas::kMaxSortedCount; ++i)
    list.Add("", "z");
  list.Add("extra", "unsorted");
  list.Remove("extra");
  list.Sorted(true);
  list.Sorting(sd_Descending);
  expectFailure(errOverflow, "32767", [&] { list.Add("", "a"); });
  list.Sorting(static_cast<eSortDirection>(5));
  expectFailure(errOverflow, "32767", [&] { list.Add("", "a"); });
  list.Remove(1);
  EXPECT_NO_THROW(list.Add("", "a")) << "32767 and one more is the limit";
}

// Swedish sorts "ä" after "z"; POSIX's own order puts every capital before "a".
// The owner, told of an entry, sees it in its sorted place.
TEST_F(ComboDatasTest, CaptionsSortInTheUsersLocaleAndPosixStillIgnoresCase) {
  Pin("sv");
  std::vector<Captions> seen;
  Connection repaint = list.ItemAdded.connect([&] { seen.push_back(captions()); });
  sortedAdds(sd_Ascending, {"Banana", "\xC3\xA4pfel", "apple"});
  EXPECT_EQ(seen,
            (std::vector<Captions>{
                {"Banana"}, {"Banana", "\xC3\xA4pfel"}, {"apple", "Banana", "\xC3\xA4pfel"}}));
  Pin("en_US_POSIX");
  EXPECT_EQ(sortedAdds(sd_Ascending, {"b", "B", "a", "A"}), (Captions{"a", "A", "b", "B"}));
}

// The literal rule, one comparison per step, on plain strings.
int32_t walkedPlace(const Captions& model, const Collator& collator, bool sorted, int32_t sorting,
                    const std::string& caption) {
  const auto n = static_cast<int32_t>(model.size());
  if (!sorted || n == 0) return n + 1;
  for (int32_t i = 1; i <= n; ++i) {
    if (sorting == sd_Ascending && collator.Compare(model[n - i], caption) <= 0) return n - i + 2;
    if (sorting == sd_Descending && collator.Compare(model[i - 1], caption) <= 0) return i;
  }
  return sorting == sd_Ascending ? 1 : n + 1;
}

// Whatever shortcuts Add takes, a long random mix of sorted and unsorted adds,
// both directions, caption edits and removals must give what the literal rule
// gives.
TEST_F(ComboDatasTest, PlacementMatchesTheLiteralWalkThroughRandomChanges) {
  const Collator collator;
  const Captions alphabet = {"a", "A", "b", "B", "\xC3\xA4", "c", "ab", "Ab", "ba", ""};
  std::mt19937 random(2024);
  Captions model;
  for (int step = 0; step < 4000; ++step) {
    const unsigned action = random() % 100;
    if (action < 70) {
      if (random() % 8 == 0) list.Sorted(random() % 4 != 0);
      if (random() % 8 == 0)
        list.Sorting(static_cast<eSortDirection>(random() % 5 == 0 ? 3 : random() % 2));
      std::string caption = alphabet[random() % alphabet.size()];
      if (random() % 2) caption += alphabet[random() % alphabet.size()];
      const int32_t place = walkedPlace(model, collator, list.Sorted(), list.Sorting(), caption);
      model.insert(model.begin() + place - 1, caption);
      list.Add("", caption);
    } else if (action < 78 && !model.empty()) {
      const auto index = random() % model.size();
      model[index] = alphabet[random() % alphabet.size()];
      list.Item(static_cast<int16_t>(index + 1))->Caption(model[index]);
    } else if (action < 97 && !model.empty()) {
      const auto index = random() % model.size();
      model.erase(model.begin() + static_cast<std::ptrdiff_t>(index));
      list.Remove(static_cast<int16_t>(index + 1));
    }
    ASSERT_EQ(captions(), model) << "step " << step;
  }
}

// An entry assigned whole, copied or moved, has a new caption as surely as
// one given through Caption: the next sorted Add walks, it does not halve a
// list that is out of order.
TEST_F(ComboDatasTest, AnEntryAssignedWholeCountsAsACaptionEdit) {
  const Collator collator;
  for (const bool moved : {false, true}) {
    Captions model = sortedAdds(sd_Ascending, {"a", "b", "c", "d", "e", "f", "g", "h", "i"});
    ComboDatas others;
    ComboData& other = *others.Add("", "z");
    if (moved)
      *list.Item(5) = std::move(other);
    else
      *list.Item(5) = other;
    model[4] = "z";
    model.insert(model.begin() + walkedPlace(model, collator, true, sd_Ascending, "f2") - 1, "f2");
    list.Add("", "f2");
    EXPECT_EQ(captions(), model) << (moved ? "moved" : "copied");
  }
}

}  // namespace
}  // namespace velt
