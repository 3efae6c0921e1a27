#include "velt/foundation/KeyedCollection.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/ExpectError.hpp"

namespace velt {
namespace {

using Names = std::vector<std::string>;

struct Thing {
  explicit Thing(std::string n) : name(std::move(n)) {}
  ~Thing() {
    if (onDestroy) onDestroy();
  }
  std::string name;
  std::function<void()> onDestroy;
};

using Things = KeyedCollection<Thing>;

std::shared_ptr<Thing> thing(const std::string& name) {
  return std::make_shared<Thing>(name);
}

template <typename Range>
Names names(const Range& range) {
  Names result;
  for (const auto& item : range)
    result.push_back(item->name);
  return result;
}

// "a", "b" (no key), "c", "d" under "ka", "kc", "kd".
class KeyedCollectionTest : public ::testing::Test {
 protected:
  KeyedCollectionTest() {
    things.Add(thing("a"), "ka");
    things.Add(thing("b"), "");
    things.Add(thing("c"), "kc");
    things.Add(thing("d"), "kd");
  }
  Things things{KeyComparison::Exact, "Things"};
};

// Every failure names its culprit, and none leaves a trace (a failed insert
// does not keep its key). Entries without a key are reached by position only.
TEST_F(KeyedCollectionTest, FailedCallsNameTheCulpritAndChangeNothing) {
  const struct {
    int32_t number;
    const char* mention;
    std::function<void()> call;
  } failures[] = {
      {errKeyAlreadyExists, "\"kc\"", [&] { things.Add(thing("x"), "kc"); }},
      {errKeyAlreadyExists, "\"ka\"", [&] { things.Insert(1, thing("x"), "ka"); }},
      {errInvalidProcedureCall, "\"nope\"", [&] { things.Item("nope"); }},
      {errInvalidProcedureCall, "\"nope\"", [&] { things.Remove("nope"); }},
      {errInvalidProcedureCall, "\"nope\"", [&] { things.PositionOf("nope"); }},
      {errInvalidProcedureCall, "\"\"", [&] { things.Item(""); }},
      {errInvalidProcedureCall, "\"\"", [&] { things.Remove(""); }},
      {errSubscriptOutOfRange, "position 0", [&] { things.Item(0); }},
      {errSubscriptOutOfRange, "position 5", [&] { things.Item(5); }},
      {errSubscriptOutOfRange, "position -1", [&] { things.Remove(-1); }},
      {errSubscriptOutOfRange, "position 5", [&] { things.Remove(5); }},
      {errSubscriptOutOfRange, "position 6", [&] { things.Insert(6, thing("x"), "new"); }},
      {errSubscriptOutOfRange, "position 0", [&] { things.Insert(0, thing("x"), "new"); }},
      {errObjectNotSet, "Things", [&] { things.Add(nullptr, "new"); }},
  };
  for (const auto& failure : failures)
    EXPECT_NE(test::errorOf(failure.number, failure.call).find(failure.mention), std::string::npos)
        << failure.mention;
  EXPECT_EQ(names(things), (Names{"a", "b", "c", "d"}));
  EXPECT_EQ(things.Item("ka")->name, "a");
  EXPECT_EQ(things.PositionOf("kd"), 4);
  EXPECT_EQ(things.Find(""), nullptr);
  EXPECT_FALSE(things.Contains("new"));
  things.Add(thing("e"), "new");
  EXPECT_EQ(things.PositionOf("new"), 5);

  Things empty(KeyComparison::Exact, "Things");
  EXPECT_NE(test::errorOf(errSubscriptOutOfRange, [&] { empty.Item(1); }).find("empty"),
            std::string::npos);
  EXPECT_NE(test::errorOf(errSubscriptOutOfRange, [&] { empty.Remove(1); }).find("Things"),
            std::string::npos);
}

TEST(KeyedCollection, KeysCompareExactlyOrFoldedBeyondAsciiAndMalformedStayApart) {
  Things exact(KeyComparison::Exact, "Things");
  exact.Add(thing("lower"), "key");
  exact.Add(thing("upper"), "KEY");
  EXPECT_EQ(exact.Item("KEY")->name, "upper");
  EXPECT_EQ(exact.Find("Key"), nullptr);

  Things folded(KeyComparison::IgnoreCase, "Things");
  folded.Add(thing("apples"), "\xC3\x84pfel");      // Äpfel
  folded.Add(thing("street"), "Stra\xC3\x9F\x65");  // Straße
  folded.Add(thing("plain"), "Plain");
  folded.Add(thing("one"), "\xFF\x41\xC3\x84");  // a malformed byte, "A", "Ä"
  folded.Add(thing("two"), "\xFE\x41\xC3\x84");
  EXPECT_EQ(folded.Item("\xC3\xA4PFEL")->name, "apples");  // äPFEL
  EXPECT_EQ(folded.Item("STRASSE")->name, "street");
  EXPECT_EQ(folded.Item("pLAIN")->name, "plain");
  EXPECT_EQ(folded.Item("\xFF\x61\xC3\xA4")->name, "one");
  EXPECT_EQ(folded.Item("\xFE\x61\xC3\xA4")->name, "two");
  EXPECT_EQ(folded.Find("Apfel"), nullptr);  // the accent still counts
  test::errorOf(errKeyAlreadyExists, [&] { folded.Add(thing("x"), "PLAIN"); });
  folded.Remove("strasse");
  EXPECT_EQ(names(folded), (Names{"apples", "plain", "one", "two"}));
  EXPECT_EQ(folded.PositionOf("PLAIN"), 2);
}

// Positions are 1-based and renumbered lazily; compare them with a plain
// vector through a long random mix of inserts and removals.
TEST(KeyedCollection, PositionsOfKeysFollowEveryInsertAndRemoval) {
  Things things(KeyComparison::Exact, "Things");
  std::vector<std::string> model;  // key per position; "" for none
  std::mt19937 random(7);
  int next = 0;
  for (int step = 0; step < 3000; ++step) {
    const auto count = static_cast<int32_t>(model.size());
    const unsigned action = random() % 10;
    if (action < 5 || count == 0) {
      const int32_t position = static_cast<int32_t>(random() % (count + 1)) + 1;
      const std::string key = random() % 4 == 0 ? "" : "k" + std::to_string(next++);
      things.Insert(position, thing(key), key);
      model.insert(model.begin() + position - 1, key);
    } else if (action < 7) {
      const int32_t position = static_cast<int32_t>(random() % count) + 1;
      things.Remove(position);
      model.erase(model.begin() + position - 1);
    } else {
      const auto index = random() % model.size();
      if (model[index].empty()) continue;
      const std::string key = model[index];
      if (action == 7) {
        things.Remove(key);
        model.erase(model.begin() + static_cast<std::ptrdiff_t>(index));
      } else {
        ASSERT_EQ(things.PositionOf(key), static_cast<int32_t>(index + 1)) << "step " << step;
      }
    }
    for (size_t i = 0; step % 100 == 0 && i < model.size(); ++i) {
      if (model[i].empty()) continue;
      ASSERT_EQ(things.PositionOf(model[i]), static_cast<int32_t>(i + 1)) << "step " << step;
    }
  }
  EXPECT_EQ(names(things), model);
  EXPECT_EQ(&things.Get(3), things.Item(3).get());
}

// An item is released only once the collection is whole again; its key is
// free then, as are all keys after Clear.
TEST_F(KeyedCollectionTest, AnItemIsReleasedOnlyOnceTheCollectionIsWholeAgain) {
  std::weak_ptr<Thing> watched = things.Item("kc");
  int32_t countSeen = -1;
  bool keySeen = true;
  things.Item("kc")->onDestroy = [&] {
    countSeen = things.Count();
    keySeen = things.Contains("kc");
  };
  things.Remove("kc");
  EXPECT_TRUE(watched.expired());
  EXPECT_EQ(countSeen, 3);
  EXPECT_FALSE(keySeen);
  things.Add(thing("c2"), "kc");
  EXPECT_EQ(things.PositionOf("kc"), 4);
  things.Item(1)->onDestroy = [&] { countSeen = things.Count(); };
  things.Clear();
  EXPECT_EQ(countSeen, 0);
  things.Add(thing("d2"), "kd");
  EXPECT_EQ(things.Item("kd")->name, "d2");
}

// An enumeration yields whatever is at its next position: "c" moves onto a
// position already visited, so nothing is visited twice or read past the end.
// Held on its own, it keeps its entries after the collection is gone.
TEST_F(KeyedCollectionTest, EnumerationSurvivesRemovalAndTheCollectionItself) {
  Names seen;
  for (const auto& item : things) {
    seen.push_back(item->name);
    if (item->name == "b") things.Remove(1);
  }
  EXPECT_EQ(seen, (Names{"a", "b", "d"}));
  seen.clear();
  for (const auto& item : things) {
    seen.push_back(item->name);
    things.Clear();
  }
  EXPECT_EQ(seen, (Names{"b"}));

  auto owned = std::make_unique<Things>(KeyComparison::Exact, "Things");
  owned->Add(thing("x"), "kx");
  owned->Add(thing("y"), "");
  const Things::Enumeration enumeration = owned->NewEnum();
  owned.reset();
  EXPECT_EQ(names(enumeration), (Names{"x", "y"}));
}

}  // namespace
}  // namespace velt
