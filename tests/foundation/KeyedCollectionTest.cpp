#include "velt/foundation/KeyedCollection.hpp"

#include <gtest/gtest.h>

#include <algorithm>
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
      {errInvalidProcedureCall, "\"nope\"", [&] { things.Remove("nope"); }},
      {errInvalidProcedureCall, "\"\"", [&] { things.Item(""); }},
      {errSubscriptOutOfRange, "position 0", [&] { things.Item(0); }},
      {errSubscriptOutOfRange, "position 5", [&] { things.Remove(5); }},
      {errSubscriptOutOfRange, "position 6", [&] { things.Insert(6, thing("x"), "new"); }},
      {errObjectNotSet, "Things", [&] { things.Add(nullptr, "new"); }},
  };
  for (const auto& failure : failures)
    EXPECT_NE(test::errorOf(failure.number, failure.call).find(failure.mention), std::string::npos)
        << failure.mention;
  EXPECT_EQ(names(things), (Names{"a", "b", "c", "d"}));
  EXPECT_EQ(things.PositionOf("kd"), 4);
  EXPECT_FALSE(things.Contains("new"));
  Things empty(KeyComparison::Exact, "Things");
  EXPECT_NE(test::errorOf(errSubscriptOutOfRange, [&] { empty.Item(1); }).find("empty"),
            std::string::npos);
}

TEST(KeyedCollection, KeysCompareExactlyOrFoldedBeyondAsciiAndMalformedStayApart) {
  Things exact(KeyComparison::Exact, "Things");
  exact.Add(thing("upper"), "KEY");
  EXPECT_EQ(exact.Find("Key"), nullptr);

  Things folded(KeyComparison::IgnoreCase, "Things");
  folded.Add(thing("apples"), "\xC3\x84pfel");      // Äpfel
  folded.Add(thing("street"), "Stra\xC3\x9F\x65");  // Straße
  folded.Add(thing("one"), "\xFF\x41\xC3\x84");     // a malformed byte, "A", "Ä"
  folded.Add(thing("two"), "\xFE\x41\xC3\x84");
  EXPECT_EQ(folded.Item("\xC3\xA4PFEL")->name, "apples");  // äPFEL
  EXPECT_EQ(folded.Item("\xFE\x61\xC3\xA4")->name, "two");
  EXPECT_EQ(folded.Find("Apfel"), nullptr);  // the accent still counts
  test::errorOf(errKeyAlreadyExists, [&] { folded.Add(thing("x"), "\xFF\x61\xC3\xA4"); });
  folded.Remove("strasse");
  EXPECT_EQ(names(folded), (Names{"apples", "one", "two"}));
  EXPECT_EQ(folded.PositionOf("\xFF\x61\xC3\xA4"), 2);
}

// Positions are 1-based and renumbered lazily; compare them with a plain
// vector through a long random mix of inserts and removals.
TEST(KeyedCollection, PositionsOfKeysFollowEveryInsertAndRemoval) {
  Things things(KeyComparison::Exact, "Things");
  std::vector<std::string> model;  // key per position; "" for none
  std::mt19937 random(7);
  for (int step = 0; step < 3000; ++step) {
    const auto count = static_cast<int32_t>(model.size());
    const auto position = static_cast<int32_t>(random() % (count + 1)) + 1;
    if (random() % 2 == 0 || count == 0) {
      const std::string key = random() % 4 == 0 ? "" : "k" + std::to_string(step);
      things.Insert(position, thing(key), key);
      model.insert(model.begin() + position - 1, key);
    } else {
      const int32_t at = std::min(position, count);
      if (model[at - 1].empty() || random() % 2 == 0)
        things.Remove(at);
      else
        things.Remove(model[at - 1]);
      model.erase(model.begin() + at - 1);
    }
    const size_t probe = random() % (model.size() + 1);  // one key, every 100 steps all
    for (size_t i = 0; i < model.size(); ++i) {
      if (model[i].empty() || (step % 100 != 0 && i != probe)) continue;
      ASSERT_EQ(things.PositionOf(model[i]), static_cast<int32_t>(i + 1)) << "step " << step;
    }
  }
  EXPECT_EQ(names(things), model);
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
