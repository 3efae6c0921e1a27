#include <gtest/gtest.h>

#include <memory>
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

constexpr const char* kFolders =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

// String types are read up to the first NUL; other types, missing values and
// keys, and unknown roots give the default. Every key that opened is closed.
TEST(ReadRegistryString, StringTypesUpToTheFirstNulAndEverythingElseTheDefault) {
  auto registry = std::make_shared<MemoryRegistry>();
  RegistryView::Use(registry);
  const struct {
    const char* name;
    uint32_t type;
    std::string bytes;
    const char* expected;
  } values[] = {{"Plain", RV::REG_SZ, std::string("/home/a b\0", 10), "/home/a b"},
                {"Expand", RV::REG_EXPAND_SZ, std::string("%HOME%/x\0", 9), "%HOME%/x"},
                {"Multi", RV::REG_MULTI_SZ, std::string("first\0second\0\0", 14), "first"},
                {"NoNul", RV::REG_SZ, "abc def", "abc def"},
                {"Empty", RV::REG_SZ, "", ""},  // read, not defaulted
                {"Number", RV::REG_DWORD, std::string("ABC\0", 4), "default"}};
  for (const auto& v : values)
    registry->SetValue(HKEY_CURRENT_USER, kFolders, v.name, v.type,
                       std::vector<uint8_t>(v.bytes.begin(), v.bytes.end()));
  for (const auto& v : values)
    EXPECT_EQ(ReadRegistryString(HKEY_CURRENT_USER, kFolders, v.name, "default"), v.expected);
  EXPECT_EQ(ReadRegistryString(HKEY_CURRENT_USER, kFolders, "Missing", "default"), "default");
  EXPECT_EQ(ReadRegistryString(HKEY_CURRENT_USER, "No\\Such\\Key", "Desktop", "none"), "none");
  EXPECT_EQ(ReadRegistryString(0x1234, kFolders, "Desktop", "bad root"), "bad root");
  EXPECT_EQ(registry->OpenCount(), 7);
  EXPECT_EQ(registry->OpenHandleCount(), 0);
  RegistryView::Use(nullptr);
}

// A view whose answers a test scripts: a 6-byte string value whose second
// query writes "a" and reports `answer` bytes with `status`.
class ScriptedView : public RegistryView {
 public:
  uint32_t answer = 6;
  int32_t status = ERROR_SUCCESS;
  bool throwOnQuery = false;
  bool throwOnOpen = false;
  int closed = 0;

  int32_t OpenKey(HKEY, const std::string&, HKEY& result) override {
    if (throwOnOpen) throw Error(errInvalidProcedureCall, "scripted failure");
    result = 7;
    return ERROR_SUCCESS;
  }
  int32_t QueryValue(HKEY, const std::string&, uint32_t& type, std::vector<uint8_t>* data,
                     uint32_t& size) override {
    if (throwOnQuery) throw Error(errOverflow, "scripted failure");
    type = REG_SZ;
    size = data ? answer : 6;
    if (!data) return ERROR_SUCCESS;
    (*data)[0] = 'a';
    return status;
  }
  int32_t CloseKey(HKEY) override { return ++closed, ERROR_SUCCESS; }
};

// The buffer offered has the size the first query reported and comes filled
// with blanks; a shorter answer is not padded, a failed one keeps the default,
// and so does any exception of the view, the key still being closed.
TEST(ReadRegistryString, TheSecondQueryDecidesAndFailuresOfTheViewReadAsMissing) {
  auto view = std::make_shared<ScriptedView>();
  RegistryView::Use(view);
  const auto read = [] { return ReadRegistryString(HKEY_CURRENT_USER, "K", "V", "default"); };
  EXPECT_EQ(read(), "a     ");
  view->answer = 2;
  EXPECT_EQ(read(), "a ");
  view->status = RV::ERROR_MORE_DATA;
  EXPECT_EQ(read(), "default");
  view->throwOnQuery = true;
  EXPECT_EQ(read(), "default");
  EXPECT_EQ(view->closed, 4);
  view->throwOnOpen = true;
  EXPECT_EQ(read(), "default");
  EXPECT_EQ(view->closed, 4);
  RegistryView::Use(nullptr);
}

// The shell's answer is a success from 33 on, as the classic call's.
TEST(ShellOpen, IsTrueFromThirtyThreeOn) {
  int32_t answer = 33;
  Shell::Launcher([&](const std::vector<std::string>&, const std::string&) { return answer; });
  EXPECT_TRUE(ShellOpen("https://example.org/", "Open", "", "", 1));
  answer = 32;
  EXPECT_FALSE(ShellOpen("https://example.org/", "Open", "", "", 1));
  Shell::Launcher(nullptr);
}

TEST(SystemFolders, FoldersAreTrimmedAndEndInExactlyOneSlash) {
  SystemFolders::Override("  /opt/win  ", "/opt/win/sys/");
  EXPECT_EQ(WindowsDirectory() + " " + SystemDirectory(), "/opt/win/ /opt/win/sys/");
  SystemFolders::Override("/opt/win/ ", "   ");
  EXPECT_EQ(WindowsDirectory() + " " + SystemDirectory(), "/opt/win/ /");
  SystemFolders::Override(std::nullopt, std::nullopt);
  EXPECT_EQ(WindowsDirectory() + " " + SystemDirectory(), "/usr/share/ /usr/share/icons/");
}

}  // namespace
}  // namespace velt
