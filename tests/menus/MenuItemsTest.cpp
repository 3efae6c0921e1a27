#include "velt/controls/menus/MenuItems.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "velt/controls/menus/MenuItemListings.hpp"
#include "velt/platform/Error.hpp"

namespace velt {
namespace {

template <typename Body>
void expectError(int32_t number, const std::string& mention, Body body) {
  try {
    body();
    ADD_FAILURE() << "expected error " << number;
  } catch (const Error& e) {
    EXPECT_EQ(e.Number(), number) << e.what();
    EXPECT_NE(e.Description().find(mention), std::string::npos) << e.what();
  }
}

std::vector<std::string> captions(const MenuItems& items) {
  std::vector<std::string> result;
  for (const auto& item : items)
    result.push_back(item->Caption());
  return result;
}

TEST(MenuItems, AddStoresEveryArgumentInItsOwnField) {
  MenuItems items;
  auto item = items.Add("open", "Open...", 7, false, "recent", "file", itCheck, true, true);
  EXPECT_EQ(item->Key(), "open");
  EXPECT_EQ(item->Caption(), "Open...");
  EXPECT_EQ(item->Icon(), 7);
  EXPECT_FALSE(item->Enabled());
  EXPECT_EQ(item->Child(), "recent");
  EXPECT_EQ(item->Group(), "file");
  EXPECT_EQ(item->ItemType(), itCheck);
  EXPECT_TRUE(item->Checked());
  EXPECT_TRUE(item->Bold());
  EXPECT_EQ(items.Item("open"), item);
}

TEST(MenuItems, OmittedArgumentsGiveAnEnabledNormalItem) {
  MenuItems items;
  auto item = items.Add("k");
  EXPECT_TRUE(item->Enabled());
  EXPECT_EQ(item->ItemType(), itNormal);
  EXPECT_EQ(item->Icon(), 0);
  EXPECT_EQ(item->Caption(), "");
  EXPECT_EQ(item->Group(), "");
  EXPECT_FALSE(item->Checked());
  EXPECT_FALSE(item->Bold());
}

TEST(MenuItems, ItemsWithoutKeyAreReachedByPositionOnly) {
  MenuItems items;
  items.Add("", "one");
  items.Add("", "two");
  items.Add("three", "three");
  EXPECT_EQ(items.Count(), 3);
  EXPECT_EQ(items.Item(static_cast<int16_t>(2))->Caption(), "two");
  EXPECT_EQ(items.Item(3)->Caption(), "three");
  // An empty key is "no item", not an error.
  EXPECT_EQ(items.Item(""), nullptr);
  EXPECT_EQ(items.Item(std::string()), nullptr);
}

TEST(MenuItems, KeysAreMatchedExactly) {
  MenuItems items;
  items.Add("Save", "lower");
  items.Add("SAVE", "upper");
  EXPECT_EQ(items.Item("SAVE")->Caption(), "upper");
  expectError(errInvalidProcedureCall, "\"save\"", [&] { items.Item("save"); });
}

TEST(MenuItems, FailuresChangeNothing) {
  MenuItems items;
  items.Add("a", "A");
  items.Add("b", "B");
  expectError(errKeyAlreadyExists, "\"a\"", [&] { items.Add("a", "again"); });
  expectError(errSubscriptOutOfRange, "3", [&] { items.Item(3); });
  expectError(errSubscriptOutOfRange, "0", [&] { items.Remove(0); });
  expectError(errInvalidProcedureCall, "\"c\"", [&] { items.Remove("c"); });
  expectError(errInvalidProcedureCall, "\"\"", [&] { items.Remove(""); });
  EXPECT_EQ(captions(items), (std::vector<std::string>{"A", "B"}));
  EXPECT_EQ(items.Item("a")->Caption(), "A");
}

TEST(MenuItems, RemoveByPositionOrKey) {
  MenuItems items;
  items.Add("a", "A");
  items.Add("b", "B");
  items.Add("c", "C");
  items.Remove("b");
  EXPECT_EQ(captions(items), (std::vector<std::string>{"A", "C"}));
  items.Remove(1);
  EXPECT_EQ(captions(items), (std::vector<std::string>{"C"}));
  EXPECT_EQ(items.Item("c"), items.Item(1));
}

TEST(MenuItemListings, AddStoresTheRowAndAnEmptyKeyIsNoKey) {
  MenuItemListings rows;
  auto first = rows.Add("", 3, 20, 18, true);
  auto second = rows.Add("", 4, 38, 3, false);
  EXPECT_EQ(first->Index(), 3);
  EXPECT_EQ(first->Top(), 20);
  EXPECT_EQ(first->Height(), 18);
  EXPECT_TRUE(first->Selectable());
  EXPECT_EQ(rows.Count(), 2);
  EXPECT_EQ(rows.Item(2), second);
  // Unlike MenuItems, an empty key is looked up, and is never found.
  expectError(errInvalidProcedureCall, "MenuItemListings", [&] { rows.Item(""); });
}

TEST(MenuItemListings, ClearEmptiesAndAnEmptyClearIsHarmless) {
  MenuItemListings rows;
  rows.Clear();
  EXPECT_EQ(rows.Count(), 0);
  rows.Add("title", 1, 0, 36, false);
  rows.Add("", 2, 36, 18, true);
  std::weak_ptr<MenuItemListing> kept = rows.Item("title");
  rows.Clear();
  EXPECT_EQ(rows.Count(), 0);
  EXPECT_TRUE(kept.expired());
  rows.Add("title", 1, 0, 36, false);  // the key is free again
  EXPECT_EQ(rows.Item("title")->Height(), 36);
}

TEST(MenuItemListings, RowsEnumerateInOrderAndRemoveByKey) {
  MenuItemListings rows;
  rows.Add("a", 1, 0, 10, true);
  rows.Add("b", 2, 10, 10, true);
  rows.Add("c", 3, 20, 10, true);
  rows.Remove("a");
  std::vector<int32_t> tops;
  for (const auto& row : rows.NewEnum())
    tops.push_back(row->Top());
  EXPECT_EQ(tops, (std::vector<int32_t>{10, 20}));
  expectError(errKeyAlreadyExists, "\"b\"", [&] { rows.Add("b", 9, 9, 9, false); });
  EXPECT_EQ(rows.Count(), 2);
}

}  // namespace
}  // namespace velt
