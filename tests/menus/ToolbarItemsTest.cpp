#include "velt/controls/menus/ToolbarItems.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "velt/platform/Error.hpp"

namespace velt {
namespace {

// Counts the two events of a ToolbarItems.
class ToolbarItemsEvents : public ::testing::Test {
 protected:
  ToolbarItemsEvents() {
    added = items.ItemAdded.connect([this] { ++addedCount; });
    changed = items.ItemChanged.connect([this] { ++changedCount; });
  }

  void expectEvents(int expectedAdded, int expectedChanged) {
    EXPECT_EQ(addedCount, expectedAdded);
    EXPECT_EQ(changedCount, expectedChanged);
  }

  template <typename Body>
  void expectFailureWithoutEvent(int32_t number, Body body) {
    const int addedBefore = addedCount;
    const int changedBefore = changedCount;
    const int32_t countBefore = items.Count();
    try {
      body();
      ADD_FAILURE() << "expected error " << number;
    } catch (const Error& e) {
      EXPECT_EQ(e.Number(), number) << e.what();
    }
    EXPECT_EQ(items.Count(), countBefore);
    expectEvents(addedBefore, changedBefore);
  }

  std::vector<std::string> captions() const {
    std::vector<std::string> result;
    for (const auto& item : items)
      result.push_back(item->Caption());
    return result;
  }

  ToolbarItems items;
  int addedCount = 0;
  int changedCount = 0;
  Connection added;
  Connection changed;
};

TEST_F(ToolbarItemsEvents, AddStoresItsArgumentsAndRaisesItemAdded) {
  auto item = items.Add("bold", "Bold", 4, mitCheckButton, true, false);
  EXPECT_EQ(item->sKey(), "bold");
  EXPECT_EQ(item->Caption(), "Bold");
  EXPECT_EQ(item->IconIndex(), 4);
  EXPECT_EQ(item->Style(), mitCheckButton);
  EXPECT_TRUE(item->Checked());
  EXPECT_FALSE(item->Enabled());
  expectEvents(1, 0);

  auto plain = items.Add("");  // no key: appended all the same
  EXPECT_EQ(plain->Style(), mitNormalButton);
  EXPECT_TRUE(plain->Enabled());
  EXPECT_FALSE(plain->Checked());
  EXPECT_EQ(items.Item(2), plain);
  expectEvents(2, 0);
}

TEST_F(ToolbarItemsEvents, EveryItemHasItsOwnEmptyMenu) {
  auto first = items.Add("a", "", 0, mitMenu);
  auto second = items.Add("b", "", 0, mitMenu);
  ASSERT_NE(first->ToolbarMenuItems, nullptr);
  ASSERT_NE(second->ToolbarMenuItems, nullptr);
  EXPECT_EQ(first->ToolbarMenuItems->Count(), 0);
  first->ToolbarMenuItems->Add("x", "X");
  EXPECT_EQ(second->ToolbarMenuItems->Count(), 0);
}

TEST_F(ToolbarItemsEvents, ChangingAnItemRaisesNothingUntilRefresh) {
  auto item = items.Add("a", "Old");
  item->Caption("New");
  item->Enabled(false);
  expectEvents(1, 0);
  items.Refresh();
  expectEvents(1, 1);
  EXPECT_EQ(items.Item("a")->Caption(), "New");
}

TEST_F(ToolbarItemsEvents, RemoveAndClearRaiseItemChangedOnce) {
  items.Clear();  // even when there is nothing to clear
  expectEvents(0, 1);
  items.Add("a", "A");
  items.Add("b", "B");
  items.Add("c", "C");
  items.Remove("b");
  expectEvents(3, 2);
  EXPECT_EQ(captions(), (std::vector<std::string>{"A", "C"}));
  items.Remove(1);
  expectEvents(3, 3);
  items.Add("d", "D");
  items.Clear();
  expectEvents(4, 4);
  EXPECT_EQ(items.Count(), 0);
}

TEST_F(ToolbarItemsEvents, FailedCallsRaiseNothingAndChangeNothing) {
  items.Add("a", "A");
  items.Add("", "B");
  expectFailureWithoutEvent(errKeyAlreadyExists, [&] { items.Add("a", "again"); });
  expectFailureWithoutEvent(errInvalidProcedureCall, [&] { items.Remove("A"); });  // exact keys
  expectFailureWithoutEvent(errInvalidProcedureCall, [&] { items.Remove(""); });
  expectFailureWithoutEvent(errSubscriptOutOfRange, [&] { items.Remove(3); });
  expectFailureWithoutEvent(errSubscriptOutOfRange, [&] { items.Item(0); });
  EXPECT_EQ(captions(), (std::vector<std::string>{"A", "B"}));
}

TEST_F(ToolbarItemsEvents, TheOwnerSeesTheNewItemInPlaceWhenItReacts) {
  std::vector<std::vector<std::string>> seen;
  Connection layout = items.ItemAdded.connect([&] { seen.push_back(captions()); });
  items.Add("a", "A");
  items.Add("b", "B");
  EXPECT_EQ(seen, (std::vector<std::vector<std::string>>{{"A"}, {"A", "B"}}));
}

TEST_F(ToolbarItemsEvents, AnOwnerMayChangeTheCollectionWhileEnumeratingIt) {
  items.Add("a", "A");
  items.Add("b", "B");
  items.Add("c", "C");
  std::vector<std::string> visited;
  // Removing from inside the loop raises ItemChanged into the owner, which
  // enumerates the collection again.
  Connection relayout = items.ItemChanged.connect([&] { (void)captions(); });
  for (const auto& item : items) {
    visited.push_back(item->Caption());
    if (item->Caption() == "A") items.Remove("c");
  }
  EXPECT_EQ(visited, (std::vector<std::string>{"A", "B"}));
  expectEvents(3, 1);
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
