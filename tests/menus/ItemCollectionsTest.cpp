// The menu's and the toolbar's item collections: what Add stores where, keys
// and positions, failures that name what was wrong and change nothing, and
// the toolbar's change events with owners that react to them.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "support/ExpectError.hpp"
#include "velt/controls/menus/MenuItemListings.hpp"
#include "velt/controls/menus/MenuItems.hpp"
#include "velt/controls/menus/ToolbarItems.hpp"

namespace velt {
namespace {

using test::errorOf;
using Captions = std::vector<std::string>;

template <typename Items>
Captions captions(const Items& items) {
  Captions result;
  for (const auto& item : items)
    result.push_back(item->Caption());
  return result;
}

// Every field of an item, in Add's argument order.
std::string fields(const MenuItem& item) {
  return item.Key() + "|" + item.Caption() + "|" + std::to_string(item.Icon()) + "|" +
         std::to_string(item.Enabled()) + "|" + item.Child() + "|" + item.Group() + "|" +
         std::to_string(item.ItemType()) + "|" + std::to_string(item.Checked()) + "|" +
         std::to_string(item.Bold());
}

TEST(MenuItems, AddStoresEachArgumentInItsOwnFieldWithEnabledNormalDefaults) {
  MenuItems items;
  auto item = items.Add("open", "Open...", 7, false, "recent", "file", itCheck, true, true);
  EXPECT_EQ(fields(*item), "open|Open...|7|0|recent|file|" + std::to_string(itCheck) + "|1|1");
  EXPECT_EQ(items.Item("open"), item);
  EXPECT_EQ(fields(*items.Add("k")), "k||0|1|||" + std::to_string(itNormal) + "|0|0");
}

// Keys are exact; an empty key is no item: looked up it gives nothing.
TEST(MenuItems, KeysAreExactRemovalsByPositionOrKeyAndFailuresChangeNothing) {
  MenuItems items;
  items.Add("", "one");
  items.Add("Save", "lower");
  items.Add("SAVE", "upper");
  items.Add("c", "C");
  EXPECT_EQ(items.Item("SAVE")->Caption(), "upper");
  EXPECT_EQ(items.Item(""), nullptr);
  items.Remove("Save");
  items.Remove(1);
  EXPECT_EQ(captions(items), (Captions{"upper", "C"}));
  errorOf(errKeyAlreadyExists, [&] { items.Add("c", "again"); });
  EXPECT_NE(errorOf(errInvalidProcedureCall, [&] { items.Item("save"); }).find("\"save\""),
            std::string::npos);
  errorOf(errSubscriptOutOfRange, [&] { items.Item(3); });
  EXPECT_EQ(captions(items), (Captions{"upper", "C"}));
}

// Unlike MenuItems, an empty key is looked up, and is never found.
TEST(MenuItemListings, AnEmptyKeyIsLookedUpAndNeverFound) {
  MenuItemListings rows;
  rows.Add("", 3, 20, 18, true);
  EXPECT_NE(errorOf(errInvalidProcedureCall, [&] { rows.Item(""); }).find("MenuItemListings"),
            std::string::npos);
}

// Counts the two events of a ToolbarItems.
class ToolbarItemsEvents : public ::testing::Test {
 protected:
  ToolbarItemsEvents() {
    added = items.ItemAdded.connect([this] { ++counts[0]; });
    changed = items.ItemChanged.connect([this] { ++counts[1]; });
  }

  ToolbarItems items;
  std::vector<int> counts{0, 0};  // ItemAdded, ItemChanged
  Connection added;
  Connection changed;
};

// Every item has its own empty menu.
TEST_F(ToolbarItemsEvents, AddStoresItsArgumentsAndRaisesItemAdded) {
  auto item = items.Add("bold", "Bold", 4, mitCheckButton, true, false);
  EXPECT_EQ(item->sKey() + "|" + item->Caption() + "|" + std::to_string(item->IconIndex()) + "|" +
                std::to_string(item->Style()) + "|" + std::to_string(item->Checked()) + "|" +
                std::to_string(item->Enabled()),
            "bold|Bold|4|" + std::to_string(mitCheckButton) + "|1|0");
  auto plain = items.Add("");  // no key: appended all the same
  EXPECT_TRUE(plain->Style() == mitNormalButton && plain->Enabled() && !plain->Checked());
  EXPECT_EQ(items.Item(2), plain);
  EXPECT_EQ(counts, (std::vector{2, 0}));
  item->ToolbarMenuItems->Add("x", "X");
  EXPECT_EQ(plain->ToolbarMenuItems->Count(), 0);
}

// Clear raises even when there is nothing to clear; an item's own changes do
// not raise until Refresh; failed calls raise nothing.
TEST_F(ToolbarItemsEvents, ChangesRaiseItemChangedOnceAndFailuresNothing) {
  items.Clear();
  EXPECT_EQ(counts, (std::vector{0, 1}));
  auto item = items.Add("a", "Old");
  items.Add("b", "B");
  items.Add("c", "C");
  item->Caption("A");
  EXPECT_EQ(counts, (std::vector{3, 1}));
  items.Refresh();
  EXPECT_EQ(counts, (std::vector{3, 2}));
  items.Remove("b");
  items.Remove(2);
  EXPECT_EQ(counts, (std::vector{3, 4}));
  errorOf(errKeyAlreadyExists, [&] { items.Add("a", "again"); });
  errorOf(errInvalidProcedureCall, [&] { items.Remove("A"); });  // exact keys
  errorOf(errSubscriptOutOfRange, [&] { items.Remove(2); });
  EXPECT_EQ(captions(items), (Captions{"A"}));
  EXPECT_EQ(counts, (std::vector{3, 4}));
}

// The owner sees the new item in place when it reacts, and may change the
// collection while enumerating it: removing raises ItemChanged into the owner,
// which enumerates again.
TEST_F(ToolbarItemsEvents, OwnersReactingToTheEventsSeeTheCollectionAsItIs) {
  std::vector<Captions> seen;
  Connection layout = items.ItemAdded.connect([&] { seen.push_back(captions(items)); });
  items.Add("a", "A");
  items.Add("b", "B");
  items.Add("c", "C");
  EXPECT_EQ(seen, (std::vector<Captions>{{"A"}, {"A", "B"}, {"A", "B", "C"}}));
  Captions visited;
  Connection relayout = items.ItemChanged.connect([&] { (void)captions(items); });
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
