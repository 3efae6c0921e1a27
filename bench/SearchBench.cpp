// The recursive file scan against GNU find on the same tree in the same run:
// ScanPathforFiles (each folder read once, each file described and a result
// object made for it) against
//   find ROOT -printf '%p %s %T@ %m\n' > /dev/null
// which stats every entry and formats a line for it. Both run on a hot
// cache: each tree is walked once by both before timing. Figures are
// ratios (velt time / find time); files_per_second gives the absolute rate.
//
// A result writes its DateTime in the user's locale only when it is first
// read. The ...ReadingDates variant reads every result's DateTime and Size
// as well, to show what writing the dates costs on top.
//
// Trees: one of 100,000 files (1,000 leaf folders of 100 files, 1,111
// folders) made under $TMPDIR (else /tmp) the first time it is needed and
// removed at exit; and /usr as it is, timed a fixed five times so that the
// run stays short whatever /usr holds.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "bench/SameRunTiming.hpp"
#include "velt/utilities/Search.hpp"

extern char** environ;

namespace {

using velt::bench::Clock;
using velt::bench::secondsSince;

constexpr int kFanOut = 10;         // folders per folder, three levels deep
constexpr int kFilesPerLeaf = 100;  // 10 * 10 * 10 * 100 = 100,000 files

int openFolder(int parent, const std::string& name) {
  ::mkdirat(parent, name.c_str(), 0755);
  return ::openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

void makeLeaf(int folder) {
  for (int i = 0; i < kFilesPerLeaf; ++i) {
    const std::string name = "file-" + std::to_string(i) + (i % 3 == 0 ? ".txt" : ".dat");
    const int file = ::openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    if (file < 0) continue;
    // Sparse: a size to report without writing anything.
    if (::ftruncate(file, (i * 37) % 5000) != 0) std::perror("ftruncate");
    ::close(file);
  }
}

void makeLevel(int folder, int depth) {
  if (depth == 3) {
    makeLeaf(folder);
    return;
  }
  for (int i = 0; i < kFanOut; ++i) {
    const int child = openFolder(folder, "folder-" + std::to_string(i));
    if (child < 0) continue;
    makeLevel(child, depth + 1);
    ::close(child);
  }
}

// The generated tree, made once and removed when the program ends.
class GeneratedTree {
 public:
  GeneratedTree() {
    const char* base = std::getenv("TMPDIR");
    std::string pattern =
        std::string(base != nullptr && *base ? base : "/tmp") + "/velt-search-bench-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) return;
    root_ = pattern;
    const int folder = ::open(root_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    makeLevel(folder, 0);
    ::close(folder);
  }
  ~GeneratedTree() {
    std::error_code ignored;
    if (!root_.empty()) std::filesystem::remove_all(root_, ignored);
  }
  const std::string& Root() const { return root_; }

 private:
  std::string root_;
};

const GeneratedTree& generatedTree() {
  static const GeneratedTree tree;
  return tree;
}

// Runs find over root with its output thrown away; its wall time.
double timeFind(const std::string& root) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  std::string program = "find";
  std::string format = "%p %s %T@ %m\\n";
  std::string rootArgument = root;
  std::string printf = "-printf";
  char* argv[] = {program.data(), rootArgument.data(), printf.data(), format.data(), nullptr};
  const auto start = Clock::now();
  pid_t child = 0;
  const int failed = posix_spawnp(&child, "find", &actions, nullptr, argv, environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  if (failed != 0 || ::waitpid(child, &status, 0) != child) return 0;
  return secondsSince(start);
}

// The scan, the release of what it found included; with readDates, every
// result's DateTime and Size read in between.
double timeScan(const std::string& root, bool readDates, int64_t& found) {
  const auto start = Clock::now();
  {
    std::shared_ptr<velt::sf_Information> files;
    velt::Search::Default().ScanPathforFiles(root, "*.*", files);
    found = files->Count();
    size_t textBytes = 0;
    if (readDates) {
      for (const auto& file : *files)
        textBytes += file->DateTime().size() + file->Size().size();
    }
    benchmark::DoNotOptimize(textBytes);
  }
  return secondsSince(start);
}

void compareWithFind(benchmark::State& state, const std::string& root, bool readDates = false) {
  if (root.empty() || timeFind(root) == 0) {
    state.SkipWithError("find cannot run, or the tree could not be made");
    return;
  }
  int64_t found = 0;
  timeScan(root, readDates, found);  // both walked once: the cache is hot for both
  double scanSeconds = 0;
  double findSeconds = 0;
  for (auto _ : state) {
    const double scan = timeScan(root, readDates, found);
    state.SetIterationTime(scan);
    scanSeconds += scan;
    findSeconds += timeFind(root);
  }
  state.counters["files"] = static_cast<double>(found);
  state.counters["files_per_second"] =
      static_cast<double>(found) * static_cast<double>(state.iterations()) / scanSeconds;
  state.counters["find_seconds"] = findSeconds / static_cast<double>(state.iterations());
  state.counters["ratio_vs_find"] = scanSeconds / findSeconds;
}

void BM_ScanPathforFilesGeneratedTree(benchmark::State& state) {
  compareWithFind(state, generatedTree().Root());
}
BENCHMARK(BM_ScanPathforFilesGeneratedTree)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_ScanPathforFilesUsr(benchmark::State& state) {
  compareWithFind(state, "/usr");
}
BENCHMARK(BM_ScanPathforFilesUsr)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);

void BM_ScanPathforFilesUsrReadingDates(benchmark::State& state) {
  compareWithFind(state, "/usr", true);
}
BENCHMARK(BM_ScanPathforFilesUsrReadingDates)
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

}  // namespace
