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
  EXPECT_EQ(entry->Key() + "|" + entry->Value() + "|" + entry->Comment(),
            "lpt1|\\\\server\\printer|by the door");
  EXPECT_EQ(entry->Icon(), 3);
  EXPECT_EQ(captions(), (Captions{"Printer", "Another", "A third"}));
  EXPECT_FALSE(list.Sorted());
  EXPECT_EQ(addedCount, 3);
  EXPECT_EQ(changedCount, 0);
}

// Equal captions keep the order added ascending and the reverse descending; a
// caption sorting before (after) every other goes first (last).
TEST_F(ComboDatasTest, EqualCaptionsKeepTheOrderAddedAscendingAndTheReverseDescending) {
  sortBy(sd_Ascending);
  addAll({"b", "A", "c", "a", "0"});
  EXPECT_EQ(captions(), (Captions{"0", "A", "a", "b", "c"}));
  list.Clear();
  sortBy(sd_Descending);
  addAll({"b", "A", "c", "a", "0"});
  EXPECT_EQ(captions(), (Captions{"c", "b", "a", "A", "0"}));
}

// Keys ignore case and empty keys coexist. A failure names its culprit, stores
// nothing and raises nothing; Remove and Clear raise ItemChanged once each and
// free their keys.
TEST_F(ComboDatasTest, KeysIgnoreCaseAndFailuresStoreNothingAndRaiseNothing) {
  sortBy(sd_Ascending);
  list.Add("Key", "b");
  list.Add("", "d");
  list.Add("", "e");
  EXPECT_EQ(list.Item("KEY")->Key(), "Key");
  expectFailureWithoutEvent(errKeyAlreadyExists, "\"kEY\"", [&] { list.Add("kEY", "c"); });
  expectFailureWithoutEvent(errInvalidProcedureCall, "\"\"", [&] { list.Item(""); });
  expectFailureWithoutEvent(errSubscriptOutOfRange, "4", [&] { list.Remove(4); });
  expectFailureWithoutEvent(errSubscriptOutOfRange, "0", [&] { list.Item(0); });
  expectFailureWithoutEvent(errSubscriptOutOfRange, "-2", [&] { list.Remove(-2); });
  expectFailureWithoutEvent(errInvalidProcedureCall, "\"nope\"", [&] { list.Remove("nope"); });
  list.Add("c", "c");
  EXPECT_EQ(captions(), (Captions{"b", "c", "d", "e"}));
  list.Remove("kEy");
  list.Remove(1);
  EXPECT_EQ(captions(), (Captions{"d", "e"}));
  EXPECT_EQ(changedCount, 2);
  list.Clear();
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(changedCount, 3);
  list.Add("KEY", "again");
  list.Add("c", "again");
  EXPECT_EQ(addedCount, 6);
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
  Pin("sv");                                                   // Swedish sorts "ä" after "z"
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
