#include "velt/controls/lists/ComboDatas.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "PinnedLocale.hpp"
#include "velt/platform/Collator.hpp"
#include "velt/platform/Error.hpp"

namespace velt {
namespace {

using Captions = std::vector<std::string>;

class ComboDatasTest : public PinnedLocale {
 protected:
  void SetUp() override {
    PinnedLocale::SetUp();
    added = list.ItemAdded.connect([this] { ++addedCount; });
    changed = list.ItemChanged.connect([this] { ++changedCount; });
  }

  Captions captions() const {
    Captions result;
    for (const auto& entry : list)
      result.push_back(entry->Caption());
    return result;
  }

  void addAll(const Captions& all) {
    for (const auto& caption : all)
      list.Add("", caption);
  }

  void sortBy(eSortDirection direction) {
    list.Sorted(true);
    list.Sorting(direction);
  }

  template <typename Body>
  void expectFailureWithoutEvent(int32_t number, const std::string& mention, Body body) {
    const int addedBefore = addedCount;
    const int changedBefore = changedCount;
    const Captions before = captions();
    try {
      body();
      ADD_FAILURE() << "expected error " << number;
    } catch (const Error& e) {
      EXPECT_EQ(e.Number(), number) << e.what();
      EXPECT_NE(e.Description().find(mention), std::string::npos) << e.what();
    }
    EXPECT_EQ(captions(), before);
    EXPECT_EQ(addedCount, addedBefore);
    EXPECT_EQ(changedCount, changedBefore);
  }

  ComboDatas list;
  int addedCount = 0;
  int changedCount = 0;
  Connection added;
  Connection changed;
};

TEST_F(ComboDatasTest, AddStoresItsArgumentsAndAppendsWhileUnsorted) {
  auto entry = list.Add("lpt1", "Printer", "\\\\server\\printer", 3, "by the door");
  list.Add("", "Another");
  list.Add("", "A third");
  EXPECT_EQ(entry->Key(), "lpt1");
  EXPECT_EQ(entry->Caption(), "Printer");
  EXPECT_EQ(entry->Value(), "\\\\server\\printer");
  EXPECT_EQ(entry->Icon(), 3);
  EXPECT_EQ(entry->Comment(), "by the door");
  EXPECT_EQ(entry->Index(), 0);
  EXPECT_EQ(captions(), (Captions{"Printer", "Another", "A third"}));
  EXPECT_FALSE(list.Sorted());
  EXPECT_EQ(list.Sorting(), sd_Ascending);
  EXPECT_EQ(addedCount, 3);
  EXPECT_EQ(changedCount, 0);
}

TEST_F(ComboDatasTest, AscendingPutsEqualCaptionsInTheOrderAdded) {
  sortBy(sd_Ascending);
  addAll({"b", "A", "c", "a"});
  EXPECT_EQ(captions(), (Captions{"A", "a", "b", "c"}));
  list.Add("", "0");  // sorts before every caption: position 1
  EXPECT_EQ(list.Item(1)->Caption(), "0");
}

TEST_F(ComboDatasTest, DescendingPutsEqualCaptionsInReverseOrderAdded) {
  sortBy(sd_Descending);
  addAll({"b", "A", "c", "a"});
  EXPECT_EQ(captions(), (Captions{"c", "b", "a", "A"}));
  list.Add("", "0");  // sorts after every caption in this direction: at the end
  EXPECT_EQ(list.Item(5)->Caption(), "0");
}

TEST_F(ComboDatasTest, SortingLaterLeavesEntriesWhereTheyAre) {
  addAll({"c", "a", "d"});
  sortBy(sd_Ascending);
  EXPECT_EQ(captions(), (Captions{"c", "a", "d"}));
  // From the last entry back, "a" is the first that does not sort after "b".
  list.Add("", "b");
  EXPECT_EQ(captions(), (Captions{"c", "a", "b", "d"}));

  list.Sorting(sd_Descending);
  EXPECT_EQ(captions(), (Captions{"c", "a", "b", "d"}));
  // From the first entry on, "a" is the first that does not sort after "bb".
  list.Add("", "bb");
  EXPECT_EQ(captions(), (Captions{"c", "bb", "a", "b", "d"}));
  EXPECT_EQ(changedCount, 0);
}

TEST_F(ComboDatasTest, AnEditedCaptionStaysAndIsReadAfreshByTheNextAdd) {
  sortBy(sd_Ascending);
  addAll({"a", "b", "c"});
  list.Item(3)->Caption("aa");
  EXPECT_EQ(captions(), (Captions{"a", "b", "aa"}));
  list.Add("", "ab");  // the walk from the end stops at once at "aa"
  EXPECT_EQ(captions(), (Captions{"a", "b", "aa", "ab"}));
  list.Add("", "a");  // walks back over "ab", "aa" and "b" to the equal "a"
  EXPECT_EQ(captions(), (Captions{"a", "a", "b", "aa", "ab"}));
}

TEST_F(ComboDatasTest, AnUnknownSortingAppends) {
  list.Sorted(true);
  list.Sorting(static_cast<eSortDirection>(7));
  addAll({"b", "a", "c"});
  EXPECT_EQ(captions(), (Captions{"b", "a", "c"}));
  EXPECT_EQ(static_cast<int32_t>(list.Sorting()), 7);
}

TEST_F(ComboDatasTest, KeysIgnoreCaseAndEmptyKeysCoexist) {
  list.Add("Key", "first");
  list.Add("", "second");
  list.Add("", "third");
  EXPECT_EQ(list.Item("KEY")->Caption(), "first");
  EXPECT_EQ(list.Item("key")->Key(), "Key");
  expectFailureWithoutEvent(errKeyAlreadyExists, "\"kEY\"", [&] { list.Add("kEY", "x"); });
  expectFailureWithoutEvent(errInvalidProcedureCall, "\"\"", [&] { list.Item(""); });
  list.Remove("kEy");
  EXPECT_EQ(captions(), (Captions{"second", "third"}));
}

TEST_F(ComboDatasTest, AFailedSortedAddStoresNothing) {
  sortBy(sd_Ascending);
  list.Add("b", "b");
  list.Add("d", "d");
  expectFailureWithoutEvent(errKeyAlreadyExists, "\"B\"", [&] { list.Add("B", "c"); });
  list.Add("c", "c");
  EXPECT_EQ(captions(), (Captions{"b", "c", "d"}));
}

TEST_F(ComboDatasTest, RemoveAndClearRaiseItemChangedOnceEach) {
  list.Clear();
  EXPECT_EQ(changedCount, 1);
  list.Add("a", "A");
  list.Add("b", "B");
  list.Add("c", "C");
  list.Remove("b");
  list.Remove(1);
  EXPECT_EQ(captions(), (Captions{"C"}));
  EXPECT_EQ(changedCount, 3);
  list.Clear();
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(changedCount, 4);
  EXPECT_EQ(addedCount, 3);
  list.Add("a", "again");  // Clear freed the key
  EXPECT_EQ(list.Item("A")->Caption(), "again");
}

TEST_F(ComboDatasTest, BadPositionsAndKeysFailWithoutEvent) {
  addAll({"x", "y"});
  expectFailureWithoutEvent(errSubscriptOutOfRange, "3", [&] { list.Remove(3); });
  expectFailureWithoutEvent(errSubscriptOutOfRange, "0", [&] { list.Item(0); });
  expectFailureWithoutEvent(errSubscriptOutOfRange, "-2", [&] { list.Remove(-2); });
  expectFailureWithoutEvent(errInvalidProcedureCall, "\"nope\"", [&] { list.Remove("nope"); });
}

TEST_F(ComboDatasTest, TheOwnerSeesTheNewEntryInItsSortedPlace) {
  sortBy(sd_Ascending);
  std::vector<Captions> seen;
  Connection repaint = list.ItemAdded.connect([&] { seen.push_back(captions()); });
  addAll({"m", "c", "x"});
  EXPECT_EQ(seen, (std::vector<Captions>{{"m"}, {"c", "m"}, {"c", "m", "x"}}));
}

TEST_F(ComboDatasTest, ASortedAddAmongMoreThan32767EntriesOverflows) {
  for (int32_t i = 0; i < ComboDatas::kMaxSortedCount + 1; ++i)
    list.Add("", "z");
  list.Add("extra", "unsorted adds have no limit");
  list.Remove("extra");
  sortBy(sd_Descending);
  expectFailureWithoutEvent(errOverflow, "32767", [&] { list.Add("", "a"); });
  list.Sorting(static_cast<eSortDirection>(5));  // counted even when nothing is compared
  expectFailureWithoutEvent(errOverflow, "32767", [&] { list.Add("", "a"); });
  EXPECT_EQ(list.Count(), ComboDatas::kMaxSortedCount + 1);

  list.Remove(1);
  list.Sorting(sd_Ascending);
  list.Add("", "a");
  EXPECT_EQ(list.Item(1)->Caption(), "a");
  EXPECT_EQ(list.Count(), ComboDatas::kMaxSortedCount + 1);
}

TEST_F(ComboDatasTest, CaptionsSortInTheUsersLocale) {
  const Captions words = {"Banana", "\xC3\xA4pfel", "apple"};  // äpfel
  Pin("de");
  {
    ComboDatas german;
    german.Sorted(true);
    for (const auto& word : words)
      german.Add("", word);
    Captions order;
    for (const auto& entry : german)
      order.push_back(entry->Caption());
    EXPECT_EQ(order, (Captions{"\xC3\xA4pfel", "apple", "Banana"}));
  }
  Pin("sv");  // Swedish sorts "ä" after "z"
  sortBy(sd_Ascending);
  addAll(words);
  EXPECT_EQ(captions(), (Captions{"apple", "Banana", "\xC3\xA4pfel"}));
}

TEST_F(ComboDatasTest, ThePosixLocaleStillIgnoresCase) {
  Pin("en_US_POSIX");  // its own collation puts every capital before "a"
  sortBy(sd_Ascending);
  addAll({"b", "B", "a", "A"});
  EXPECT_EQ(captions(), (Captions{"a", "A", "b", "B"}));
}

// The literal rule, one comparison per step, on plain strings.
int32_t walkedPlace(const Captions& model, const Collator& collator, bool sorted, int32_t sorting,
                    const std::string& caption) {
  const auto n = static_cast<int32_t>(model.size());
  if (!sorted || n == 0) return n + 1;
  for (int32_t i = 1; i <= n; ++i) {
    if (sorting == sd_Ascending) {
      const int32_t p = n - i + 1;
      if (collator.Compare(model[p - 1], caption) <= 0) return p + 1;
    } else if (sorting == sd_Descending) {
      if (collator.Compare(model[i - 1], caption) <= 0) return i;
    }
  }
  return sorting == sd_Ascending ? 1 : n + 1;
}

// Whatever shortcuts Add takes, a long random mix of sorted and unsorted
// adds, both directions, caption edits and removals must give exactly what the
// literal rule gives.
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
    } else if (action == 99) {
      model.clear();
      list.Clear();
    }
    ASSERT_EQ(captions(), model) << "step " << step;
  }
}

}  // namespace
}  // namespace velt
