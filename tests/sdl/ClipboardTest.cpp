// The clipboard of both window systems: the headless one keeps its text in
// memory, the SDL one (on SDL's offscreen driver here) is the desktop's.

#include <SDL.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "support/ExpectError.hpp"
#include "velt/platform/Clipboard.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/sdl/SdlWindowSystem.hpp"

namespace velt {
namespace {

class ClipboardTest : public ::testing::TestWithParam<bool> {
 protected:
  std::shared_ptr<WindowSystem> system =
      GetParam() ? std::shared_ptr<WindowSystem>(std::make_shared<SdlWindowSystem>("offscreen"))
                 : std::make_shared<HeadlessWindowSystem>();
  Clipboard& clipboard = system->Clipboard();
};

TEST_P(ClipboardTest, TextRoundTripsAndClears) {
  const std::string text =
      "Gr\xC3\xBC\xC3\x9F"
      "e \xF0\x9F\x98\x80";
  clipboard.SetText(text);
  EXPECT_TRUE(clipboard.HasText());
  EXPECT_EQ(clipboard.GetText(), text);
  clipboard.Clear();
  EXPECT_FALSE(clipboard.HasText());
  EXPECT_EQ(clipboard.GetText(), "");
  if (!GetParam()) return;
  // The desktop's clipboard: what others copy is there, what we copy goes there.
  SDL_SetClipboardText("from elsewhere");
  EXPECT_EQ(clipboard.GetText(), "from elsewhere");
  clipboard.SetText(text);
  char* copied = SDL_GetClipboardText();
  EXPECT_EQ(copied, text);
  SDL_free(copied);
}

TEST_P(ClipboardTest, MalformedTextIsRefusedNamingTheByteAndTheOldTextStays) {
  clipboard.SetText("kept");
  // A stray byte, a sequence cut short, an overlong "/", a surrogate, past U+10FFFF, a NUL.
  const std::pair<std::string, std::string> cases[] = {
      {"ab\xFF", "3"},           {"\xC3", "1"},
      {"x\xC0\xAF", "2"},        {"\xED\xA0\x80", "1"},
      {"\xF4\x90\x80\x80", "1"}, {std::string("a\0b", 3), "2"},
  };
  for (const auto& [text, byte] : cases) {
    const std::string message =
        test::errorOf(errInvalidProcedureCall, [&] { clipboard.SetText(text); });
    EXPECT_NE(message.find("Clipboard.SetText"), std::string::npos) << message;
    EXPECT_NE(message.find("byte " + byte), std::string::npos) << message;
  }
  EXPECT_EQ(clipboard.GetText(), "kept");
}

INSTANTIATE_TEST_SUITE_P(BothWindowSystems, ClipboardTest, ::testing::Bool(),
                         [](const ::testing::TestParamInfo<bool>& info) {
                           return info.param ? "Sdl" : "Headless";
                         });

}  // namespace
}  // namespace velt
