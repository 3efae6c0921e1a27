// veltLabel on a headless form: its text and icon layouts against the same
// drawing done by hand, AutoSize, the hover colour of a hyperlink, the click
// sequence with the shell (its launcher replaced by a recorder), persistence.

#include "velt/controls/text/veltLabel.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "support/ExpectError.hpp"
#include "support/HeadlessForm.hpp"
#include "support/Pixels.hpp"
#include "velt/controls/text/LabelLayout.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/foundation/Colors.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Shell.hpp"

namespace velt {
namespace {

using Lines = std::vector<std::string>;

constexpr OLE_COLOR kWhite = 0xFFFFFF;
constexpr OLE_COLOR kDarkBlue = 0xC00000;
constexpr OLE_COLOR kOrange = 33023;
constexpr OLE_COLOR kIconColor = 0x0000FF;  // pure red: no palette colour comes near it

// Quotes, blanks and shell syntax that must reach the opener untouched.
const std::string kLink = "https://example.org/a b?q='x y'&r=\"1\";$(touch /tmp/no)`id`";

const ColorScheme kPalette = SchemeNormal(kWhite, kDarkBlue, kOrange);
const OLE_COLOR kBackground = BlendColor(kWhite, kDarkBlue, 240);

std::shared_ptr<ImageList> solidIcons(int32_t size) {
  auto list = std::make_shared<ImageList>();
  std::vector<uint32_t> pixels(size * size, 0xFF000000u | OleToPixel(kIconColor));
  list->ListImages().Add(std::make_shared<Picture>(size, size, std::move(pixels)));
  return list;
}

class veltLabelTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Shell::Launcher([this](const std::vector<std::string>& argv, const std::string&) {
      launches.push_back(argv);
      sequence.push_back("shell");
      return shellAnswer;
    });
  }
  void TearDown() override { Shell::Launcher({}); }

  void add(int32_t width, int32_t height) {
    label = hf.form.Add<veltLabel>("veltLabel1", 10, 10, width, height);
    site = hf.form.FindSite("veltLabel1");
    log = std::make_unique<test::EventLog>(*site);
    sequenceConnection = site->EventLog.connect(
        [this](const std::string& name, std::span<const Variant>) { sequence.push_back(name); });
  }
  const Canvas& surface() { return site->Surface(); }
  int32_t letter() { return surface().TextHeight("I"); }

  // The label's background with the lines printed one under the other.
  Canvas drawn(const Lines& lines, float left, float top, OLE_COLOR color,
               OLE_COLOR background = kBackground) {
    Canvas expected(surface().ScaleWidth(), surface().ScaleHeight());
    expected.Font(surface().Font());
    expected.BackColor(background);
    expected.ForeColor(color);
    expected.CurrentY(top);
    for (const std::string& line : lines) {
      expected.CurrentX(left);
      expected.Print(line);
    }
    return expected;
  }
  ::testing::AssertionResult shows(const Canvas& expected) {
    const test::InkBox wrong = test::DifferenceBox(surface(), expected);
    if (wrong.Empty()) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "pixels differ in (" << wrong.left << "," << wrong.top
                                         << ")-(" << wrong.right << "," << wrong.bottom << ")";
  }
  void click(int32_t x = 20, int32_t y = 15) {
    hf.system->PostMouseMove(x, y);
    hf.system->PostMouseDown(1, x, y);
    hf.system->PostMouseUp(1, x, y);
    hf.Run();
  }
  RectL bounds() { return site->Bounds(); }

  test::HeadlessForm hf;
  std::shared_ptr<veltLabel> label;
  Site* site = nullptr;
  std::unique_ptr<test::EventLog> log;
  Connection sequenceConnection;
  std::vector<std::string> sequence;
  std::vector<std::vector<std::string>> launches;
  int32_t shellAnswer = Shell::kSucceeded;
};

// ---- Text and icon ----------------------------------------------------------

// The name, two pixels down on the mixed background; an overlong caption
// trimmed and ended in dots strictly inside the width; a line break wraps with
// TextWrap and runs the lines together without.
TEST_F(veltLabelTest, CaptionPrintsTwoPixelsDownOnTheMixedBackground) {
  add(120, 40);
  EXPECT_EQ(label->State(), veltLabel::lsCreated);
  EXPECT_TRUE(shows(drawn({"veltLabel1"}, 0, 2, kPalette.Text)));
  label->Caption("Hello\r\nWorld");
  EXPECT_TRUE(shows(drawn({"HelloWorld"}, 0, 2, kPalette.Text)));
  label->TextWrap(true);
  EXPECT_TRUE(shows(drawn({"Hello", "World"}, 0, 2, kPalette.Text)));
  label->TextWrap(false);
  site->MovePixels(10, 10, 70, 20);
  label->Caption("  A caption far wider than the label  ");
  const std::string fitted = FitText(surface(), "A caption far wider than the label", 68);
  ASSERT_EQ(fitted.substr(fitted.size() - 3), "...");
  EXPECT_LT(surface().TextWidth(fitted), 70 - 2);
  EXPECT_TRUE(shows(drawn({fitted}, 0, 2, kPalette.Text)));
}

// A second line's centre, 2 + 1.5 lines, must lie within SH - 8 + 2.
TEST_F(veltLabelTest, WrappedLabelTooLowForASecondLineShowsOnlyTheFirst) {
  add(120, 60);
  label->Caption("First\rSecond");
  label->TextWrap(true);
  const int32_t highEnough = (3 * letter() + 1) / 2 + 8;  // ceil(1.5 lines) + 8
  site->MovePixels(10, 10, 120, highEnough);
  EXPECT_TRUE(shows(drawn({"First", "Second"}, 0, 2, kPalette.Text)));
  site->MovePixels(10, 10, 120, highEnough - 1);
  EXPECT_TRUE(shows(drawn({"First"}, 0, 2, kPalette.Text)));
}

// The icon sits at (2, 2) and the caption beside it, centred on an icon taller
// than a letter; one that cannot be had is left out.
TEST_F(veltLabelTest, IconLayoutsAndTheDisabledLook) {
  add(120, 30);
  label->Caption("Go");
  auto icons = solidIcons(20);
  label->ImageList(icons);
  label->ImageIndex(1);
  ASSERT_GT(20, letter());
  Canvas tall = drawn({"Go"}, 22, 2 + 20 / 2.0f - letter() / 2.0f, kPalette.Text);
  tall.DrawPicture(*icons->ListImages().Item(1)->ExtractIcon(), 2, 2);
  EXPECT_TRUE(shows(tall));

  auto small = solidIcons(8);
  label->ImageList(small);
  label->Enabled(false);
  Canvas disabled = drawn({"Go"}, 10, 2, kPalette.EdgeDark);
  disabled.DrawPicture(*small->ListImages().Item(1)->ExtractIcon(), 2, 2, PictureLook::Disabled);
  EXPECT_TRUE(shows(disabled));

  label->ImageIndex(5);
  EXPECT_TRUE(shows(drawn({"Go"}, 10, 2, kPalette.EdgeDark)));
}

// ---- AutoSize and TextWrap --------------------------------------------------

TEST_F(veltLabelTest, AutoSizeAndTextWrapClearEachOther) {
  add(200, 50);
  label->Caption("Auto");
  label->TextWrap(true);
  site->ClearChangedProperties();
  label->AutoSize(true);
  EXPECT_FALSE(label->TextWrap());
  EXPECT_EQ(bounds(), (RectL{10, 10, 10 + surface().TextWidth("Auto") + 4, 10 + letter() + 4}));
  for (bool wrap : {false, true}) {
    label->AutoSize(true);
    label->TextWrap(wrap);
    EXPECT_FALSE(label->AutoSize());
    EXPECT_EQ(label->TextWrap(), wrap);
  }
  EXPECT_EQ(site->ChangedProperties(),
            (std::vector<std::string>{"AutoSize", "TextWrap", "AutoSize", "TextWrap", "TextWrap",
                                      "AutoSize", "AutoSize", "TextWrap", "TextWrap", "AutoSize"}));
}

TEST_F(veltLabelTest, AutoSizeFollowsFontImageListAndResizeButNotTheCaption) {
  add(200, 50);
  label->Caption("Short");
  label->AutoSize(true);
  const RectL before = bounds();
  label->Caption("A much longer caption");
  EXPECT_EQ(bounds(), before);
  label->Font(std::make_shared<Font>(test::kPinnedFamily, 14.0f));
  const int32_t text = surface().TextWidth("A much longer caption");
  EXPECT_EQ(bounds().Width(), text + 4);
  EXPECT_EQ(bounds().Height(), letter() + 4);

  label->ImageList(solidIcons(32));  // ImageIndex 0: the list alone counts
  ASSERT_GT(32, letter());
  EXPECT_EQ(bounds().Width(), text + 32 + 8);
  EXPECT_EQ(bounds().Height(), 32 + 4);
  label->ImageList(solidIcons(6));
  EXPECT_EQ(bounds().Height(), letter() + 4);

  site->MovePixels(30, 40, 300, 90);
  EXPECT_EQ(bounds(), (RectL{30, 40, 30 + text + 6 + 8, 40 + letter() + 4}));
}

// ---- Hover, clicks and the shell --------------------------------------------

TEST_F(veltLabelTest, HyperlinkTakesTheAccentColourOnlyWhileThePointerRestsOnIt) {
  add(120, 30);
  label->Caption("Link");
  label->Hyperlink(kLink);
  hf.system->PostMouseMove(20, 15);
  hf.Run();
  hf.Tick();
  EXPECT_EQ(label->State(), veltLabel::lsHover);
  EXPECT_TRUE(shows(drawn({"Link"}, 0, 2, kPalette.Accent3)));

  hf.system->PostMouseDown(1, 20, 15);
  hf.Run();
  hf.Tick();
  EXPECT_EQ(label->State(), veltLabel::lsPressed);
  EXPECT_TRUE(shows(drawn({"Link"}, 0, 2, kPalette.Text)));

  hf.system->PostMouseUp(1, 21, 15);
  hf.Run();
  hf.system->SetCursor(23, 15);
  hf.Tick();
  EXPECT_EQ(label->State(), veltLabel::lsLeft);
  EXPECT_FALSE(label->HoverTimerRunning());
  EXPECT_TRUE(shows(drawn({"Link"}, 0, 2, kPalette.Text)));
}

// HyperlinkClick comes after Click, then the shell opens the link as one
// argument, then MouseUp. Cancel keeps the shell closed; a link the handler
// changed is opened and kept; a shell that cannot open it is ignored.
TEST_F(veltLabelTest, HyperlinkClickComesBetweenClickAndTheShellThenMouseUp) {
  add(120, 30);
  label->Hyperlink(kLink);
  bool cancel = false;
  bool cancelSeen = true;
  std::string changed = kLink;
  auto handler = label->HyperlinkClick.connect([&](std::string& link, bool& Cancel) {
    cancelSeen = Cancel;
    Cancel = cancel;
    link = changed;
  });
  click();
  EXPECT_EQ(sequence, (std::vector<std::string>{"MouseMove", "MouseDown", "Click", "HyperlinkClick",
                                                "shell", "MouseUp"}));
  EXPECT_FALSE(cancelSeen);
  EXPECT_EQ(launches, (std::vector<std::vector<std::string>>{{Shell::Program(), kLink}}));
  EXPECT_EQ(log->Lines().back(), "MouseUp(i1, i0, f10, f5)");
  cancel = true;
  click();
  EXPECT_EQ(launches.size(), 1u);
  cancel = false;
  changed = "https://example.org/new page";
  shellAnswer = Shell::kNoAssociation;
  click();
  EXPECT_EQ(launches.at(1).at(1), changed);
  EXPECT_EQ(label->Hyperlink(), changed);
  EXPECT_EQ(log->Names().back(), "MouseUp");
}

TEST_F(veltLabelTest, WithoutHyperlinkAClickIsJustAClickAndOtherButtonsNothing) {
  add(120, 30);
  click();
  hf.Tick();
  EXPECT_FALSE(label->HoverTimerRunning());
  EXPECT_EQ(label->State(), veltLabel::lsCreated);
  for (int16_t button : {int16_t{2}, int16_t{4}}) {
    hf.system->PostMouseDown(button, 20, 15);
    hf.system->PostMouseUp(button, 20, 15);
  }
  hf.Run();
  EXPECT_EQ(log->Names(), (std::vector<std::string>{"MouseMove", "MouseDown", "Click", "MouseUp"}));
  EXPECT_TRUE(launches.empty());
}

TEST_F(veltLabelTest, ClickHandlerThatRemovesTheLabelEndsTheSequence) {
  add(120, 30);
  label->Hyperlink(kLink);
  auto handler = label->Click.connect([&] { hf.form.RemoveControl("veltLabel1"); });
  click();
  EXPECT_EQ(sequence, (std::vector<std::string>{"MouseMove", "MouseDown", "Click"}));
  EXPECT_TRUE(launches.empty());
}

// ---- Persistence ------------------------------------------------------------

TEST_F(veltLabelTest, PropertiesSurviveAJsonRoundTripInTableOrder) {
  add(120, 30);
  PropertyBag defaults;
  label->WriteProperties(defaults);
  EXPECT_EQ(defaults.Count(), 0u) << "defaults are not stored";

  auto icons = solidIcons(8);
  auto pointer = std::make_shared<Picture>(4, 4);
  label->BackColor(0x010203);
  label->ForeColor(0x040506);
  label->Enabled(false);
  label->ImageList(icons);
  label->ImageIndex(1);
  label->Caption("Saved");
  label->Hyperlink("https://example.org");
  label->SelectionColor(0x070809);
  label->AutoSize(true);
  label->Font(std::make_shared<Font>(test::kPinnedFamily, 10.0f));
  label->MousePointer(99);
  label->MouseIcon(pointer);
  const auto namer = [&](const Object& object) {
    return &object == icons.get() ? std::string("Icons") : std::string("Pointer");
  };
  PropertyBag bag;
  bag.Namer(namer);
  label->WriteProperties(bag);
  EXPECT_EQ(bag.Keys(),
            (std::vector<std::string>{"BackColor", "ForeColor", "Enabled", "ImageList",
                                      "ImageIndex", "Caption", "Hyperlink", "SelectionColor",
                                      "AutoSize", "Font", "MousePointer", "MouseIcon"}));

  PropertyBag loaded = PropertyBag::FromJson(bag.ToJson());
  loaded.Resolver([&](const std::string& name) -> std::shared_ptr<Object> {
    if (name == "Icons") return icons;
    return name == "Pointer" ? pointer : nullptr;
  });
  auto copy = std::make_shared<veltLabel>();
  Site& copySite = hf.form.AddControl(copy, "Copy", 0, 100, 100, 30, &loaded);
  PropertyBag again;
  again.Namer(namer);
  copy->WriteProperties(again);
  EXPECT_EQ(again.ToJson(), bag.ToJson()) << "everything read back";
  EXPECT_EQ(copy->MouseIcon(), pointer);
  EXPECT_EQ(copy->Palette().Accent3, BlendColor(0x010203, 0x070809, 130));
  EXPECT_EQ(test::PixelAt(copySite.Surface(), 0, 0), BlendColor(0x010203, 0x040506, 240));
}

TEST_F(veltLabelTest, StoredTextWrapIsReadBackAndABagWithBothTrueGivesAutoSize) {
  PropertyBag bag;
  bag.WriteProperty("TextWrap", Variant(true));
  auto wrapped = std::make_shared<veltLabel>();
  hf.form.AddControl(wrapped, "Wrapped", 0, 0, 100, 30, &bag);
  EXPECT_TRUE(wrapped->TextWrap());
  bag.WriteProperty("AutoSize", Variant(true));
  auto both = std::make_shared<veltLabel>();
  hf.form.AddControl(both, "Both", 0, 40, 100, 30, &bag);
  EXPECT_TRUE(both->AutoSize());
  EXPECT_FALSE(both->TextWrap());
}

TEST_F(veltLabelTest, BadValuesAreErrorsNamingWhatWasWrong) {
  const std::tuple<std::string, Variant, int32_t> stored[] = {
      {"ImageList", Variant(std::static_pointer_cast<Object>(std::make_shared<Picture>(1, 1))),
       errTypeMismatch},
      {"MouseIcon", Variant(std::static_pointer_cast<Object>(std::make_shared<ImageList>())),
       errTypeMismatch},
      {"MousePointer", Variant(int16_t{42}), errInvalidPropertyValue}};
  for (const auto& [key, value, number] : stored) {
    PropertyBag bag;
    bag.WriteProperty(key, value);
    const std::string message = test::errorOf(number, [&] {
      hf.form.AddControl(std::make_shared<veltLabel>(), "Bad" + key, 0, 100, 100, 30, &bag);
    });
    EXPECT_NE(message.find(key), std::string::npos) << message;
  }
  add(120, 30);
  test::errorOf(errInvalidPropertyValue, [&] { label->MousePointer(16); });
  test::errorOf(errObjectNotSet, [&] { label->Font(nullptr); });
}

}  // namespace
}  // namespace velt
