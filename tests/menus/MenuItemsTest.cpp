// The menu's item collections: what Add stores where, keys and positions,
// and failures that name what was wrong and change nothing.

#include "velt/controls/menus/MenuItems.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/ExpectError.hpp"
#include "velt/controls/menus/MenuItemListings.hpp"

namespace velt {
namespace {

using test::errorOf;
using Captions = std::vector<std::string>;

Captions captions(const MenuItems& items) {
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

TEST(MenuItems, KeysAreExactAndAnEmptyKeyIsNoItem) {
  MenuItems items;
  items.Add("", "one");
  items.Add("Save", "lower");
  items.Add("SAVE", "upper");
  EXPECT_EQ(items.Item(static_cast<int16_t>(1))->Caption(), "one");
  EXPECT_EQ(items.Item("SAVE")->Caption(), "upper");
  EXPECT_EQ(items.Item(""), nullptr);
  EXPECT_NE(errorOf(errInvalidProcedureCall, [&] { items.Item("save"); }).find("\"save\""),
            std::string::npos);
}

TEST(MenuItems, RemoveByPositionOrKeyAndFailuresChangeNothing) {
  MenuItems items;
  items.Add("a", "A");
  items.Add("b", "B");
  items.Add("c", "C");
  items.Remove("b");
  EXPECT_EQ(captions(items), (Captions{"A", "C"}));
  items.Remove(1);
  EXPECT_EQ(items.Item("c"), items.Item(1));

  struct Case {
    int32_t number;
    std::string mention;
    std::function<void()> call;
  };
  for (const Case& c : std::vector<Case>{
           {errKeyAlreadyExists, "\"c\"", [&] { items.Add("c", "again"); }},
           {errSubscriptOutOfRange, "2", [&] { items.Item(2); }},
           {errSubscriptOutOfRange, "0", [&] { items.Remove(0); }},
           {errInvalidProcedureCall, "\"x\"", [&] { items.Remove("x"); }},
           {errInvalidProcedureCall, "\"\"", [&] { items.Remove(""); }},
       }) {
    SCOPED_TRACE(c.mention);
    EXPECT_NE(errorOf(c.number, c.call).find(c.mention), std::string::npos);
  }
  EXPECT_EQ(captions(items), (Captions{"C"}));
}

TEST(MenuItemListings, RowsKeepTheirPlacesAndAnEmptyKeyIsLookedUp) {
  MenuItemListings rows;
  rows.Clear();  // harmless when empty
  auto first = rows.Add("", 3, 20, 18, true);
  rows.Add("b", 4, 38, 3, false);
  rows.Add("c", 5, 41, 18, true);
  EXPECT_EQ((std::vector<int32_t>{first->Index(), first->Top(), first->Height()}),
            (std::vector<int32_t>{3, 20, 18}));
  EXPECT_TRUE(first->Selectable());
  // Unlike MenuItems, an empty key is looked up, and is never found.
  EXPECT_NE(errorOf(errInvalidProcedureCall, [&] { rows.Item(""); }).find("MenuItemListings"),
            std::string::npos);
  errorOf(errKeyAlreadyExists, [&] { rows.Add("b", 9, 9, 9, false); });
  rows.Remove("b");
  std::vector<int32_t> tops;
  for (const auto& row : rows.NewEnum())
    tops.push_back(row->Top());
  EXPECT_EQ(tops, (std::vector<int32_t>{20, 41}));

  std::weak_ptr<MenuItemListing> kept = rows.Item("c");
  rows.Clear();
  EXPECT_EQ(rows.Count(), 0);
  EXPECT_TRUE(kept.expired());
  rows.Add("c", 1, 0, 36, false);  // the key is free again
  EXPECT_EQ(rows.Item("c")->Height(), 36);
}

}  // namespace
}  // namespace velt
