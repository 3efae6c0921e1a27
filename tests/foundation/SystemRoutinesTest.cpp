#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "velt/foundation/SystemRoutines.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/MemoryRegistry.hpp"
#include "velt/platform/RegistryView.hpp"
#include "velt/platform/Shell.hpp"
#include "velt/platform/SystemFolders.hpp"

namespace velt {
namespace {

using RV = RegistryView;
using Bytes = std::vector<uint8_t>;

constexpr const char* kFolders =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

Bytes bytesOf(const std::string& text) {
  return Bytes(text.begin(), text.end());
}

class ReadRegistryStringTest : public ::testing::Test {
 protected:
  void SetUp() override { RegistryView::Use(registry_); }
  void TearDown() override {
    EXPECT_EQ(registry_->OpenHandleCount(), 0) << "a key was left open";
    RegistryView::Use(nullptr);
  }
  void Set(const std::string& name, uint32_t type, const Bytes& bytes) {
    registry_->SetValue(HKEY_CURRENT_USER, kFolders, name, type, bytes);
  }
  std::string Read(const std::string& name, std::optional<std::string> fallback = std::nullopt) {
    return ReadRegistryString(HKEY_CURRENT_USER, kFolders, name, fallback);
  }

  std::shared_ptr<MemoryRegistry> registry_ = std::make_shared<MemoryRegistry>();
};

TEST_F(ReadRegistryStringTest, StringTypesAreReadUpToTheFirstNul) {
  Set("Plain", RV::REG_SZ, bytesOf(std::string("/home/a b\0", 10)));
  Set("Expand", RV::REG_EXPAND_SZ, bytesOf(std::string("%HOME%/x\0", 9)));
  Set("Multi", RV::REG_MULTI_SZ, bytesOf(std::string("first\0second\0\0", 14)));
  Set("Inner", RV::REG_SZ, bytesOf(std::string("abc\0def\0", 8)));
  Set("NoNul", RV::REG_SZ, bytesOf("abc def"));
  Set("Empty", RV::REG_SZ, Bytes{});
  EXPECT_EQ(Read("Plain", "default"), "/home/a b");
  EXPECT_EQ(Read("Expand", "default"), "%HOME%/x");
  EXPECT_EQ(Read("Multi", "default"), "first");
  EXPECT_EQ(Read("Inner"), "abc");
  EXPECT_EQ(Read("NoNul"), "abc def");
  EXPECT_EQ(Read("Empty", "default"), "");  // read, not defaulted
  registry_->SetValue(HKEY_CLASSES_ROOT, ".txt", "", "text/plain");
  EXPECT_EQ(ReadRegistryString(HKEY_CLASSES_ROOT, ".TXT", ""), "text/plain");
  EXPECT_EQ(ReadRegistryString(HKEY_CURRENT_USER, ".txt", "", "other root"), "other root");
  EXPECT_EQ(registry_->OpenCount(), 7);
  EXPECT_EQ(registry_->CloseCount(), 7);
}

TEST_F(ReadRegistryStringTest, OtherTypesAndMissingValuesGiveTheDefault) {
  Set("Number", RV::REG_DWORD, Bytes{0x41, 0x42, 0x43, 0});
  Set("Binary", RV::REG_BINARY, bytesOf("text"));
  EXPECT_EQ(Read("Number", "default"), "default");
  EXPECT_EQ(Read("Binary", "default"), "default");
  EXPECT_EQ(Read("Missing", "default"), "default");
  EXPECT_EQ(Read("Missing"), "");
  EXPECT_EQ(ReadRegistryString(HKEY_CURRENT_USER, "No\\Such\\Key", "Desktop", "fallback"),
            "fallback");
  EXPECT_EQ(ReadRegistryString(0x1234, kFolders, "Desktop", "bad root"), "bad root");
  // Every key that opened was closed again, the missing ones never opened.
  EXPECT_EQ(registry_->OpenCount(), 4);
  EXPECT_EQ(registry_->CloseCount(), 4);
}

// A view whose answers a test scripts, counting opens and closes.
class ScriptedView : public RegistryView {
 public:
  std::function<int32_t(uint32_t&, std::vector<uint8_t>*, uint32_t&)> query;
  bool throwOnOpen = false;
  int opened = 0;
  int closed = 0;
  std::vector<uint32_t> sizesOffered;

  int32_t OpenKey(HKEY, const std::string&, HKEY& result) override {
    if (throwOnOpen) throw Error(errInvalidProcedureCall, "scripted failure");
    ++opened;
    result = 7;
    return ERROR_SUCCESS;
  }
  int32_t QueryValue(HKEY, const std::string&, uint32_t& type, std::vector<uint8_t>* data,
                     uint32_t& size) override {
    if (data != nullptr) sizesOffered.push_back(size);
    return query(type, data, size);
  }
  int32_t CloseKey(HKEY key) override {
    EXPECT_EQ(key, 7u);
    ++closed;
    return ERROR_SUCCESS;
  }
};

class ScriptedViewTest : public ::testing::Test {
 protected:
  void SetUp() override { RegistryView::Use(view_); }
  void TearDown() override { RegistryView::Use(nullptr); }
  std::string Read() { return ReadRegistryString(HKEY_CURRENT_USER, "K", "V", "default"); }

  std::shared_ptr<ScriptedView> view_ = std::make_shared<ScriptedView>();
};

TEST_F(ScriptedViewTest, TheSecondQueryDecides) {
  // The buffer offered has the size the first query reported and comes filled
  // with blanks; a shorter answer is not padded, a failed one keeps the default.
  uint32_t answer = 6;
  int32_t status = RV::ERROR_SUCCESS;
  view_->query = [&](uint32_t& type, std::vector<uint8_t>* data, uint32_t& size) {
    type = RV::REG_SZ;
    if (data == nullptr) {
      size = 6;
      return RV::ERROR_SUCCESS;
    }
    if (!data->empty()) (*data)[0] = 'a';
    size = answer;
    return status;
  };
  EXPECT_EQ(Read(), "a     ");
  EXPECT_EQ(view_->sizesOffered, (std::vector<uint32_t>{6}));
  answer = 2;
  EXPECT_EQ(Read(), "a ");
  status = RV::ERROR_MORE_DATA;
  EXPECT_EQ(Read(), "default");
  EXPECT_EQ(view_->closed, 3);
}

TEST_F(ScriptedViewTest, FailuresOfTheViewReadAsMissingAndTheKeyIsStillClosed) {
  view_->query = [](uint32_t&, std::vector<uint8_t>*, uint32_t&) -> int32_t {
    throw Error(errOverflow, "scripted failure");
  };
  EXPECT_EQ(Read(), "default");
  EXPECT_EQ(view_->opened, 1);
  EXPECT_EQ(view_->closed, 1);

  view_->query = [](uint32_t& type, std::vector<uint8_t>*, uint32_t&) -> int32_t {
    type = RV::REG_SZ;
    throw std::length_error("too long");
  };
  EXPECT_EQ(Read(), "default");
  EXPECT_EQ(view_->closed, 2);

  view_->throwOnOpen = true;
  EXPECT_EQ(Read(), "default");
  EXPECT_EQ(view_->closed, 2);
}

// ---- ShellOpen and the system folders --------------------------------------

TEST(ShellOpenTest, PassesItsArgumentsOnAndIsTrueFromThirtyThreeOn) {
  int32_t answer = 33;
  std::vector<std::string> argv;
  std::string cwd = "not called";
  Shell::Launcher([&](const std::vector<std::string>& args, const std::string& folder) {
    argv = args;
    cwd = folder;
    return answer;
  });
  EXPECT_TRUE(ShellOpen("https://example.org/", "Open", "--new-window", "/", 1));
  EXPECT_EQ(argv, (std::vector<std::string>{"xdg-open", "https://example.org/", "--new-window"}));
  EXPECT_EQ(cwd, "/");
  answer = 32;
  EXPECT_FALSE(ShellOpen("https://example.org/", "Open", "", "", 1));
  cwd = "not called";
  answer = 42;
  EXPECT_FALSE(ShellOpen("https://example.org/", "print", "", "", 1));
  EXPECT_EQ(cwd, "not called");
  Shell::Launcher(nullptr);
}

TEST(SystemFoldersTest, FoldersAreTrimmedAndEndInExactlyOneSlash) {
  SystemFolders::Override("  /opt/win  ", "/opt/win/sys/");
  EXPECT_EQ(WindowsDirectory(), "/opt/win/");
  EXPECT_EQ(SystemDirectory(), "/opt/win/sys/");
  SystemFolders::Override("/opt/win/ ", "   ");
  EXPECT_EQ(WindowsDirectory(), "/opt/win/");
  EXPECT_EQ(SystemDirectory(), "/");
  SystemFolders::Override(std::nullopt, std::nullopt);
  EXPECT_EQ(WindowsDirectory(), "/usr/share/");
  EXPECT_EQ(SystemDirectory(), "/usr/share/icons/");
}

}  // namespace
}  // namespace velt
