// The item collections under load: 30,000 Adds into a sorted ComboDatas, once
// with captions in random order and once with captions already in order, and
// 100,000 lookups by key. Each is timed against plain standard containers
// doing the same job in the same run:
// - sorted Adds against a std::multiset of the same strings ordered by the
//   same collator (the standard container for keeping text in order; it also
//   puts an equal caption after the ones already there), and against
//   push_back into a std::vector (the floor: no ordering at all);
// - lookups against std::unordered_map::find of the same keys, returning a
//   shared reference as Item does.
// Figures are ratios (velt time / reference time), so they do not depend on
// the machine; ns_per_add and ns_per_lookup give the absolute cost here.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "bench/SameRunTiming.hpp"
#include "velt/controls/lists/ComboDatas.hpp"
#include "velt/controls/menus/MenuItems.hpp"
#include "velt/platform/Collator.hpp"

namespace {

using velt::bench::Clock;
using velt::bench::secondsSince;

constexpr int32_t kAdds = 30000;
constexpr int32_t kLookups = 100000;

// Words of 4 to 12 letters, about a third of them capitalised, a few with an
// umlaut; the same list on every run.
std::vector<std::string> randomWords(int32_t count, uint32_t seed) {
  std::mt19937 random(seed);
  std::vector<std::string> words;
  words.reserve(static_cast<size_t>(count));
  for (int32_t i = 0; i < count; ++i) {
    std::string word;
    const auto length = 4 + random() % 9;
    for (unsigned letter = 0; letter < length; ++letter) {
      if (random() % 40 == 0) {
        word += "\xC3\xA4";  // ä
        continue;
      }
      const char base = letter == 0 && random() % 3 == 0 ? 'A' : 'a';
      word += static_cast<char>(base + random() % 26);
    }
    words.push_back(word);
  }
  return words;
}

const std::vector<std::string>& randomCaptions() {
  static const std::vector<std::string> captions = randomWords(kAdds, 1);
  return captions;
}

const std::vector<std::string>& orderedCaptions() {
  static const std::vector<std::string> captions = [] {
    std::vector<std::string> sorted = randomCaptions();
    const velt::Collator collator;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [&](const auto& a, const auto& b) { return collator.Compare(a, b) < 0; });
    return sorted;
  }();
  return captions;
}

void fillSorted(const std::vector<std::string>& captions) {
  velt::ComboDatas list;
  list.Sorted(true);
  for (const auto& caption : captions)
    list.Add("", caption);
  benchmark::DoNotOptimize(list.Count());
}

struct CollatorLess {
  bool operator()(const std::string& a, const std::string& b) const {
    return collator->Compare(a, b) < 0;
  }
  const velt::Collator* collator;
};

void insertSorted(const std::vector<std::string>& captions, const velt::Collator& collator) {
  std::multiset<std::string, CollatorLess> list(CollatorLess{&collator});
  for (const auto& caption : captions)
    list.insert(caption);
  benchmark::DoNotOptimize(list.size());
}

void pushBack(const std::vector<std::string>& captions) {
  std::vector<std::string> list;
  for (const auto& caption : captions)
    list.push_back(caption);
  benchmark::DoNotOptimize(list.data());
}

// Times the library's work and each reference once per iteration; the
// reported time is the library's.
template <typename Velt, typename Multiset, typename PushBack>
void compareAdds(benchmark::State& state, Velt velt, Multiset multiset,
                 PushBack pushBackReference) {
  double veltSeconds = 0;
  double sortedSeconds = 0;
  double pushSeconds = 0;
  for (auto _ : state) {
    auto start = Clock::now();
    velt();
    const double elapsed = secondsSince(start);
    veltSeconds += elapsed;
    state.SetIterationTime(elapsed);

    start = Clock::now();
    multiset();
    sortedSeconds += secondsSince(start);

    start = Clock::now();
    pushBackReference();
    pushSeconds += secondsSince(start);
  }
  const double adds = static_cast<double>(state.iterations()) * kAdds;
  state.counters["ns_per_add"] = 1e9 * veltSeconds / adds;
  state.counters["multiset_ns_per_add"] = 1e9 * sortedSeconds / adds;
  state.counters["push_back_ns_per_add"] = 1e9 * pushSeconds / adds;
  state.counters["ratio_vs_multiset"] = veltSeconds / sortedSeconds;
  state.counters["ratio_vs_push_back"] = veltSeconds / pushSeconds;
}

void BM_ComboDatasSortedAddRandom(benchmark::State& state) {
  const auto& captions = randomCaptions();
  const velt::Collator collator;
  compareAdds(
      state, [&] { fillSorted(captions); }, [&] { insertSorted(captions, collator); },
      [&] { pushBack(captions); });
}
BENCHMARK(BM_ComboDatasSortedAddRandom)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_ComboDatasSortedAddInOrder(benchmark::State& state) {
  const auto& captions = orderedCaptions();
  const velt::Collator collator;
  compareAdds(
      state, [&] { fillSorted(captions); }, [&] { insertSorted(captions, collator); },
      [&] { pushBack(captions); });
}
BENCHMARK(BM_ComboDatasSortedAddInOrder)->UseManualTime()->Unit(benchmark::kMillisecond);

// Keys of the entries and, in a fixed random order, the keys looked up.
struct LookupWork {
  LookupWork() : keys(randomWords(kAdds, 2)) {
    for (size_t i = 0; i < keys.size(); ++i)
      keys[i] += std::to_string(i);  // unique also without regard to case
    std::mt19937 random(3);
    queries.reserve(kLookups);
    for (int32_t i = 0; i < kLookups; ++i)
      queries.push_back(keys[random() % keys.size()]);
  }
  std::vector<std::string> keys;
  std::vector<std::string> queries;
};

template <typename Collection, typename Item>
void compareLookups(benchmark::State& state, const Collection& collection,
                    const std::unordered_map<std::string, std::shared_ptr<Item>>& reference,
                    const std::vector<std::string>& queries) {
  double veltSeconds = 0;
  double mapSeconds = 0;
  for (auto _ : state) {
    auto start = Clock::now();
    for (const auto& key : queries)
      benchmark::DoNotOptimize(collection.Item(key));
    const double elapsed = secondsSince(start);
    veltSeconds += elapsed;
    state.SetIterationTime(elapsed);

    start = Clock::now();
    for (const auto& key : queries) {
      std::shared_ptr<Item> found = reference.find(key)->second;
      benchmark::DoNotOptimize(found);
    }
    mapSeconds += secondsSince(start);
  }
  const double lookups = static_cast<double>(state.iterations()) * kLookups;
  state.counters["ns_per_lookup"] = 1e9 * veltSeconds / lookups;
  state.counters["unordered_map_ns_per_lookup"] = 1e9 * mapSeconds / lookups;
  state.counters["ratio_vs_unordered_map"] = veltSeconds / mapSeconds;
}

// ComboDatas keys ignore case: each lookup folds the key first.
void BM_ComboDatasKeyedLookup(benchmark::State& state) {
  const LookupWork work;
  velt::ComboDatas list;
  std::unordered_map<std::string, std::shared_ptr<velt::ComboData>> reference;
  for (const auto& key : work.keys)
    reference.emplace(key, list.Add(key, key));
  compareLookups(state, list, reference, work.queries);
}
BENCHMARK(BM_ComboDatasKeyedLookup)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_MenuItemsKeyedLookup(benchmark::State& state) {
  const LookupWork work;
  velt::MenuItems items;
  std::unordered_map<std::string, std::shared_ptr<velt::MenuItem>> reference;
  for (const auto& key : work.keys)
    reference.emplace(key, items.Add(key, key));
  compareLookups(state, items, reference, work.queries);
}
BENCHMARK(BM_MenuItemsKeyedLookup)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
