// The clipboard interface and its in-memory implementation, which the
// headless window system hands out.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "velt/platform/Error.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/MemoryClipboard.hpp"

namespace velt {
namespace {

void expectRefused(Clipboard& clipboard, const std::string& text, const std::string& byte) {
  try {
    clipboard.SetText(text);
    FAIL() << "took malformed text";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), errInvalidProcedureCall);
    EXPECT_NE(error.Description().find("Clipboard.SetText"), std::string::npos) << error.what();
    EXPECT_NE(error.Description().find("byte " + byte), std::string::npos) << error.what();
  }
}

TEST(ClipboardTest, TextRoundTripsAndClears) {
  MemoryClipboard clipboard;
  EXPECT_FALSE(clipboard.HasText());
  EXPECT_EQ(clipboard.GetText(), "");
  clipboard.SetText(
      "Gr\xC3\xBC\xC3\x9F"
      "e \xF0\x9F\x98\x80");
  EXPECT_TRUE(clipboard.HasText());
  EXPECT_EQ(clipboard.GetText(),
            "Gr\xC3\xBC\xC3\x9F"
            "e \xF0\x9F\x98\x80");
  clipboard.Clear();
  EXPECT_FALSE(clipboard.HasText());
  EXPECT_EQ(clipboard.GetText(), "");
}

TEST(ClipboardTest, MalformedTextIsRefusedAndTheOldTextStays) {
  MemoryClipboard clipboard;
  clipboard.SetText("kept");
  expectRefused(clipboard, "ab\xFF", "3");            // not a UTF-8 byte at all
  expectRefused(clipboard, "\xC3", "1");              // cut short
  expectRefused(clipboard, "x\xC0\xAF", "2");         // overlong "/"
  expectRefused(clipboard, "\xED\xA0\x80", "1");      // a surrogate
  expectRefused(clipboard, "\xF4\x90\x80\x80", "1");  // past U+10FFFF
  expectRefused(clipboard, std::string("a\0b", 3), "2");
  EXPECT_EQ(clipboard.GetText(), "kept");
}

TEST(ClipboardTest, TheHeadlessWindowSystemKeepsOneClipboard) {
  auto system = std::make_shared<HeadlessWindowSystem>();
  system->Clipboard().SetText("copied");
  EXPECT_EQ(system->Clipboard().GetText(), "copied");
  EXPECT_EQ(&system->Clipboard(), &system->Clipboard());
  auto other = std::make_shared<HeadlessWindowSystem>();
  EXPECT_FALSE(other->Clipboard().HasText()) << "each window system has its own";
}

}  // namespace
}  // namespace velt
