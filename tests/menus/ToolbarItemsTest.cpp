// The toolbar's item collection: what Add stores, when ItemAdded and
// ItemChanged are raised (and not raised), and owners that react to them.

#include "velt/controls/menus/ToolbarItems.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "support/ExpectError.hpp"

namespace velt {
namespace {

using Captions = std::vector<std::string>;

// Counts the two events of a ToolbarItems.
class ToolbarItemsEvents : public ::testing::Test {
 protected:
  ToolbarItemsEvents() {
    added = items.ItemAdded.connect([this] { ++counts[0]; });
    changed = items.ItemChanged.connect([this] { ++counts[1]; });
  }
  Captions captions() const {
    Captions result;
    for (const auto& item : items)
      result.push_back(item->Caption());
    return result;
  }

  ToolbarItems items;
  std::vector<int> counts{0, 0};  // ItemAdded, ItemChanged
  Connection added;
  Connection changed;
};

TEST_F(ToolbarItemsEvents, AddStoresItsArgumentsAndRaisesItemAdded) {
  auto item = items.Add("bold", "Bold", 4, mitCheckButton, true, false);
  EXPECT_EQ(item->sKey() + "|" + item->Caption(), "bold|Bold");
  EXPECT_EQ(item->IconIndex(), 4);
  EXPECT_EQ(item->Style(), mitCheckButton);
  EXPECT_TRUE(item->Checked());
  EXPECT_FALSE(item->Enabled());
  auto plain = items.Add("");  // no key: appended all the same
  EXPECT_EQ(plain->Style(), mitNormalButton);
  EXPECT_TRUE(plain->Enabled() && !plain->Checked());
  EXPECT_EQ(items.Item(2), plain);
  EXPECT_EQ(counts, (std::vector{2, 0}));

  // Every item has its own empty menu.
  ASSERT_NE(item->ToolbarMenuItems, nullptr);
  item->ToolbarMenuItems->Add("x", "X");
  EXPECT_EQ(plain->ToolbarMenuItems->Count(), 0);
}

TEST_F(ToolbarItemsEvents, ChangesRaiseItemChangedOnceAndAnItemsOwnChangesNothing) {
  items.Clear();  // even when there is nothing to clear
  EXPECT_EQ(counts, (std::vector{0, 1}));
  auto item = items.Add("a", "Old");
  items.Add("b", "B");
  items.Add("c", "C");
  item->Caption("A");
  item->Enabled(false);
  EXPECT_EQ(counts, (std::vector{3, 1})) << "until Refresh";
  items.Refresh();
  EXPECT_EQ(counts, (std::vector{3, 2}));
  items.Remove("b");
  EXPECT_EQ(captions(), (Captions{"A", "C"}));
  items.Remove(1);
  items.Clear();
  EXPECT_EQ(counts, (std::vector{3, 5}));
  EXPECT_EQ(items.Count(), 0);
}

TEST_F(ToolbarItemsEvents, FailedCallsRaiseNothingAndChangeNothing) {
  items.Add("a", "A");
  items.Add("", "B");
  test::errorOf(errKeyAlreadyExists, [&] { items.Add("a", "again"); });
  test::errorOf(errInvalidProcedureCall, [&] { items.Remove("A"); });  // exact keys
  test::errorOf(errInvalidProcedureCall, [&] { items.Remove(""); });
  test::errorOf(errSubscriptOutOfRange, [&] { items.Remove(3); });
  test::errorOf(errSubscriptOutOfRange, [&] { items.Item(0); });
  EXPECT_EQ(captions(), (Captions{"A", "B"}));
  EXPECT_EQ(counts, (std::vector{2, 0}));
}

// The owner sees the new item in place when it reacts, and may change the
// collection while enumerating it: removing raises ItemChanged into the owner,
// which enumerates again.
TEST_F(ToolbarItemsEvents, OwnersReactingToTheEventsSeeTheCollectionAsItIs) {
  std::vector<Captions> seen;
  Connection layout = items.ItemAdded.connect([&] { seen.push_back(captions()); });
  items.Add("a", "A");
  items.Add("b", "B");
  items.Add("c", "C");
  EXPECT_EQ(seen, (std::vector<Captions>{{"A"}, {"A", "B"}, {"A", "B", "C"}}));

  Captions visited;
  Connection relayout = items.ItemChanged.connect([&] { (void)captions(); });
  for (const auto& item : items) {
    visited.push_back(item->Caption());
    if (item->Caption() == "A") items.Remove("c");
  }
  EXPECT_EQ(visited, (Captions{"A", "B"}));
  EXPECT_EQ(counts, (std::vector{3, 1}));
}

TEST(ToolbarItems, AHandlerMayDestroyTheCollectionDuringItsEvent) {
  auto items = std::make_unique<ToolbarItems>();
  Connection drop = items->ItemAdded.connect([&] { items.reset(); });
  auto item = items->Add("a", "A");
  EXPECT_EQ(items, nullptr);
  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->Caption(), "A");
}

}  // namespace
}  // namespace velt
