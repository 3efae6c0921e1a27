#include "apps/velt/EventLine.hpp"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "apps/velt/EventPrinter.hpp"
#include "support/HeadlessForm.hpp"
#include "velt/controls/buttons/veltButton.hpp"
#include "velt/platform/ImageList.hpp"

namespace velt::tool {
namespace {

TEST(EventLineTest, NameThenEachKindOfValueSeparatedBySingleSpaces) {
  const std::array<Variant, 4> mouse = {Variant(int16_t{1}), Variant(int16_t{0}), Variant(10.0f),
                                        Variant(10.5f)};
  EXPECT_EQ(EventLine::Format("MouseDown", mouse), "MouseDown 1 0 10 10.5");
  EXPECT_EQ(EventLine::Format("Click", {}), "Click");
  // Numbers without trailing zeros (0.1f is not 0.100000001), strings in JSON quotes.
  const std::vector<std::pair<Variant, std::string>> cases = {
      {Variant(0.25f), "0.25"},
      {Variant(-3.0f), "-3"},
      {Variant(0.1f), "0.1"},
      {Variant::Color(0x8000000F), "2147483663"},
      {Variant(false), "False"},
      {Variant(), "Empty"},
      {Variant(nullptr), "Nothing"},
      {Variant(std::shared_ptr<Object>(std::make_shared<ImageList>())), "Object"},
      {Variant("say \"hi\"\\now"), R"("say \"hi\"\\now")"},
      {Variant("tab\there\nline\x01"), R"("tab\there\nline\u0001")"},
      {Variant("Grüße"), "\"Grüße\""}};
  for (const auto& [value, text] : cases)
    EXPECT_EQ(EventLine::FormatValue(value), text);
  EXPECT_EQ(EventLine::Quote("bad \xff byte"), "\"bad \xef\xbf\xbd byte\"");
}

TEST(EventPrinterTest, PrintsEachEventAsRaisedWithThePrefix) {
  test::HeadlessForm hf;
  auto button = hf.form.Add<veltButton>("veltButton1", 0, 0, 100, 30);
  std::ostringstream out;
  std::string seenByHandler;
  auto handler = button->KeyPress.connect([&](int16_t& keyAscii) {
    seenByHandler = out.str();  // already printed when the handler runs
    keyAscii = 0;
  });
  {
    EventPrinter printer(*hf.form.FindSite("veltButton1"), out, "veltButton1.");
    hf.form.FindSite("veltButton1")->SetFocus();
    hf.system->PostKeyPress(97);
    hf.system->PostMouseDown(1, 20, 10);
    hf.Run();
  }
  hf.system->PostMouseUp(1, 20, 10);  // after the printer is gone: not printed
  hf.Run();
  EXPECT_EQ(seenByHandler, "veltButton1.KeyPress 97\n");
  EXPECT_EQ(out.str(), "veltButton1.KeyPress 97\nveltButton1.MouseDown 1 0 20 10\n");
}

}  // namespace
}  // namespace velt::tool
