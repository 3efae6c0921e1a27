#include "velt/foundation/KeyedCollection.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "velt/platform/Error.hpp"

namespace velt {
namespace {

struct Thing {
  explicit Thing(std::string name) : name(std::move(name)) {}
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

std::vector<std::string> names(const Things& things) {
  std::vector<std::string> result;
  for (const auto& item : things)
    result.push_back(item->name);
  return result;
}

// Runs body, which must fail with error `number` and a message containing
// `mention`.
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

// Three keyed entries and one without a key: "a", "b" (no key), "c", "d".
void fill(Things& things) {
  things.Add(thing("a"), "ka");
  things.Add(thing("b"), "");
  things.Add(thing("c"), "kc");
  things.Add(thing("d"), "kd");
}

class KeyedCollectionFilled : public ::testing::Test {
 protected:
  KeyedCollectionFilled() { fill(things); }
  Things things{KeyComparison::Exact, "Things"};
};

void expectUnchanged(const Things& things) {
  EXPECT_EQ(names(things), (std::vector<std::string>{"a", "b", "c", "d"}));
  EXPECT_EQ(things.Item("ka")->name, "a");
  EXPECT_EQ(things.Item("kc")->name, "c");
  EXPECT_EQ(things.PositionOf("kd"), 4);
}

TEST(KeyedCollection, PositionsAreOneBasedAndInsertShiftsTheRest) {
  Things things(KeyComparison::Exact, "Things");
  things.Insert(1, thing("b"), "kb");
  things.Insert(1, thing("a"), "ka");  // in front
  things.Insert(3, thing("d"), "");    // after the last
  things.Insert(3, thing("c"), "kc");  // between
  EXPECT_EQ(things.Count(), 4);
  EXPECT_EQ(names(things), (std::vector<std::string>{"a", "b", "c", "d"}));
  EXPECT_EQ(things.Item(1)->name, "a");
  EXPECT_EQ(things.Item(4)->name, "d");
  EXPECT_EQ(things.PositionOf("kb"), 2);
  EXPECT_EQ(things.PositionOf("kc"), 3);
  EXPECT_EQ(&things.Get(3), things.Item("kc").get());
}

TEST(KeyedCollection, EntriesWithoutKeyCoexistAndAreReachedByPositionOnly) {
  Things things(KeyComparison::Exact, "Things");
  things.Add(thing("first"), "");
  things.Add(thing("second"), "");
  EXPECT_EQ(things.Count(), 2);
  EXPECT_EQ(things.Item(2)->name, "second");
  EXPECT_EQ(things.Find(""), nullptr);
  EXPECT_FALSE(things.Contains(""));
  expectError(errInvalidProcedureCall, "\"\"", [&] { things.Item(""); });
  expectError(errInvalidProcedureCall, "\"\"", [&] { things.Remove(""); });
  EXPECT_EQ(things.Count(), 2);
}

TEST_F(KeyedCollectionFilled, FailedCallsNameTheCulpritAndChangeNothing) {
  expectError(errKeyAlreadyExists, "\"kc\"", [&] { things.Add(thing("x"), "kc"); });
  expectError(errKeyAlreadyExists, "\"ka\"", [&] { things.Insert(1, thing("x"), "ka"); });
  expectError(errInvalidProcedureCall, "\"nope\"", [&] { things.Item("nope"); });
  expectError(errInvalidProcedureCall, "\"nope\"", [&] { things.Remove("nope"); });
  expectError(errInvalidProcedureCall, "\"nope\"", [&] { things.PositionOf("nope"); });
  expectError(errSubscriptOutOfRange, "position 0", [&] { things.Item(0); });
  expectError(errSubscriptOutOfRange, "position 5", [&] { things.Item(5); });
  expectError(errSubscriptOutOfRange, "position -1", [&] { things.Remove(-1); });
  expectError(errSubscriptOutOfRange, "position 5", [&] { things.Remove(5); });
  expectError(errSubscriptOutOfRange, "position 6", [&] { things.Insert(6, thing("x"), "new"); });
  expectError(errSubscriptOutOfRange, "position 0", [&] { things.Insert(0, thing("x"), "new"); });
  expectError(errObjectNotSet, "Things", [&] { things.Add(nullptr, "new"); });
  expectUnchanged(things);
  EXPECT_FALSE(things.Contains("new"));  // a failed insert does not leave its key behind
  things.Add(thing("e"), "new");
  EXPECT_EQ(things.PositionOf("new"), 5);
}

TEST(KeyedCollection, AnEmptyCollectionSaysSo) {
  Things things(KeyComparison::Exact, "Things");
  expectError(errSubscriptOutOfRange, "empty", [&] { things.Item(1); });
  expectError(errSubscriptOutOfRange, "Things", [&] { things.Remove(1); });
}

TEST_F(KeyedCollectionFilled, RemovedKeysCanBeUsedAgain) {
  things.Remove("kc");
  things.Remove(1);  // "a", under "ka"
  EXPECT_EQ(names(things), (std::vector<std::string>{"b", "d"}));
  EXPECT_FALSE(things.Contains("ka"));
  EXPECT_FALSE(things.Contains("kc"));
  EXPECT_EQ(things.PositionOf("kd"), 2);
  things.Add(thing("a2"), "ka");
  things.Add(thing("c2"), "kc");
  EXPECT_EQ(things.PositionOf("kc"), 4);
  things.Clear();
  EXPECT_EQ(things.Count(), 0);
  EXPECT_FALSE(things.Contains("kd"));
  things.Add(thing("d2"), "kd");
  EXPECT_EQ(things.Item("kd")->name, "d2");
}

TEST(KeyedCollection, ExactKeysTellCaseApart) {
  Things things(KeyComparison::Exact, "Things");
  things.Add(thing("lower"), "key");
  things.Add(thing("upper"), "KEY");
  EXPECT_EQ(things.Item("KEY")->name, "upper");
  EXPECT_EQ(things.Find("Key"), nullptr);
}

TEST(KeyedCollection, KeysThatIgnoreCaseFoldLettersBeyondAscii) {
  Things things(KeyComparison::IgnoreCase, "Things");
  things.Add(thing("apples"), "\xC3\x84pfel");  // Äpfel
  things.Add(thing("street"),
             "Stra\xC3\x9F"
             "e");  // Straße
  things.Add(thing("plain"), "Plain");
  EXPECT_EQ(things.Item("\xC3\xA4PFEL")->name, "apples");  // äPFEL
  EXPECT_EQ(things.Item("STRASSE")->name, "street");
  EXPECT_EQ(things.Item("pLAIN")->name, "plain");
  EXPECT_EQ(things.Find("Apfel"), nullptr);  // the accent still counts
  expectError(errKeyAlreadyExists, "\"PLAIN\"", [&] { things.Add(thing("x"), "PLAIN"); });
  things.Remove("strasse");
  EXPECT_EQ(names(things), (std::vector<std::string>{"apples", "plain"}));
  EXPECT_EQ(things.PositionOf("PLAIN"), 2);
}

TEST(KeyedCollection, MalformedKeysAreKeptApartNotMerged) {
  Things things(KeyComparison::IgnoreCase, "Things");
  things.Add(thing("one"),
             "\xFF"
             "A\xC3\x84");
  things.Add(thing("two"),
             "\xFE"
             "A\xC3\x84");
  EXPECT_EQ(things
                .Item("\xFF"
                      "a\xC3\xA4")
                ->name,
            "one");
  EXPECT_EQ(things
                .Item("\xFE"
                      "a\xC3\xA4")
                ->name,
            "two");
}

// Positions of keys are renumbered lazily; compare them with a plain vector
// through a long random mix of inserts and removals.
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
    if (step % 100 == 0) {
      for (size_t i = 0; i < model.size(); ++i) {
        if (model[i].empty()) continue;
        ASSERT_EQ(things.PositionOf(model[i]), static_cast<int32_t>(i + 1)) << "step " << step;
      }
    }
  }
  ASSERT_EQ(things.Count(), static_cast<int32_t>(model.size()));
  for (size_t i = 0; i < model.size(); ++i)
    EXPECT_EQ(things.Item(static_cast<int32_t>(i + 1))->name, model[i]);
}

TEST_F(KeyedCollectionFilled, AnItemIsReleasedOnlyOnceTheCollectionIsWholeAgain) {
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

  things.Item(1)->onDestroy = [&] { countSeen = things.Count(); };
  things.Clear();
  EXPECT_EQ(countSeen, 0);
}

TEST_F(KeyedCollectionFilled, EnumerationSurvivesRemovalWhileItRuns) {
  std::vector<std::string> seen;
  for (const auto& item : things) {
    seen.push_back(item->name);
    if (item->name == "b") things.Remove(1);  // the entries after it move up one
  }
  // "c" moved onto the position already visited; nothing is visited twice and
  // nothing past the end is read.
  EXPECT_EQ(seen, (std::vector<std::string>{"a", "b", "d"}));

  seen.clear();
  for (const auto& item : things) {
    seen.push_back(item->name);
    things.Clear();
  }
  EXPECT_EQ(seen, (std::vector<std::string>{"b"}));
}

TEST(KeyedCollection, AnEnumerationHeldKeepsItsEntriesAfterTheCollectionIsGone) {
  auto things = std::make_unique<Things>(KeyComparison::Exact, "Things");
  fill(*things);
  Things::Enumeration enumeration = things->NewEnum();
  std::weak_ptr<Thing> first = things->Item(1);
  things.reset();
  EXPECT_FALSE(first.expired());
  std::vector<std::string> seen;
  for (const auto& item : enumeration)
    seen.push_back(item->name);
  EXPECT_EQ(seen, (std::vector<std::string>{"a", "b", "c", "d"}));
}

}  // namespace
}  // namespace velt
