// veltLabel on a headless form: its text and icon layouts against the same
// drawing done by hand, AutoSize, the hover colour of a hyperlink, the click
// sequence with the shell (its launcher replaced by a recorder), persistence;
// and the layout itself on a bare canvas: the ellipsis and word wrap.

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
#include "velt/foundation/Utf8Text.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Shell.hpp"

namespace velt {
namespace {

using Lines = std::vector<std::string>;

constexpr OLE_COLOR kWhite = 0xFFFFFF;

// Quotes, blanks and shell syntax that must reach the opener untouched.
const std::string kLink = "https://example.org/a b?q='x y'&r=\"1\";$(touch /tmp/no)`id`";

// White on dark blue with an orange accent.
const ColorScheme kPalette = SchemeNormal(kWhite, 0xC00000, 33023);
const OLE_COLOR kBackground = BlendColor(kWhite, 0xC00000, 240);

// Pure red icons: no palette colour comes near them.
std::shared_ptr<ImageList> solidIcons(int32_t size) {
  auto list = std::make_shared<ImageList>();
  std::vector<uint32_t> pixels(size * size, 0xFF000000u | OleToPixel(0x0000FF));
  list->ListImages().Add(std::make_shared<Picture>(size, size, std::move(pixels)));
  return list;
}

// A canvas like `like` with the lines printed one under the other.
Canvas printed(const Canvas& like, const Lines& lines, float left, float top, OLE_COLOR color,
               OLE_COLOR background) {
  Canvas expected(like.ScaleWidth(), like.ScaleHeight());
  expected.Font(like.Font());
  expected.BackColor(background);
  expected.ForeColor(color);
  expected.CurrentY(top);
  for (const std::string& line : lines) {
    expected.CurrentX(left);
    expected.Print(line);
  }
  return expected;
}

::testing::AssertionResult same(const Canvas& shown, const Canvas& expected) {
  const test::InkBox w = test::DifferenceBox(shown, expected);
  if (w.Empty()) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure()
         << "differs in (" << w.left << "," << w.top << ")-(" << w.right << "," << w.bottom << ")";
}

class veltLabelTest : public ::testing::Test {
 protected:
  // A headless run records what it would open and starts nothing.
  void SetUp() override {
    Shell::Launcher([this](const std::vector<std::string>& argv, const std::string&) {
      started.push_back(argv);
      return Shell::kSucceeded;
    });
  }
  void TearDown() override { Shell::Launcher({}); }
  Lines opened() const {
    Lines files;
    for (const auto& request : hf.system->ShellRequests())
      files.push_back(request.Operation + " " + request.File);
    return files;
  }

  void add(int32_t width, int32_t height) {
    label = hf.form.Add<veltLabel>("veltLabel1", 10, 10, width, height);
    site = hf.form.FindSite("veltLabel1");
    sequenceConnection = site->EventLog.connect(
        [this](const std::string& name, std::span<const Variant>) { sequence.push_back(name); });
    shellConnection = hf.system->ShellOpened.connect(
        [this](const HeadlessWindowSystem::ShellRequest&) { sequence.push_back("shell"); });
  }
  const Canvas& surface() { return site->Surface(); }
  int32_t letter() { return surface().TextHeight("I"); }
  Canvas drawn(const Lines& lines, float left = 0, float top = 2, OLE_COLOR color = kPalette.Text) {
    return printed(surface(), lines, left, top, color, kBackground);
  }
  void click() {
    hf.system->PostMouseMove(20, 15);
    hf.system->PostMouseDown(1, 20, 15);
    hf.system->PostMouseUp(1, 20, 15);
    hf.Run();
  }

  test::HeadlessForm hf;
  std::shared_ptr<veltLabel> label;
  Site* site = nullptr;
  Connection sequenceConnection;
  Connection shellConnection;
  Lines sequence;
  std::vector<Lines> started;
};

// The name, two pixels down on the mixed background; a line break wraps with
// TextWrap and runs the lines together without. A second line shows while
// its centre, 2 + 1.5 lines, lies within SH - 8 + 2. An overlong caption is
// cut to end in dots inside the width less 2.
TEST_F(veltLabelTest, CaptionPrintsTwoPixelsDownOnTheMixedBackground) {
  add(120, 40);
  EXPECT_TRUE(same(surface(), drawn({"veltLabel1"})));
  label->Caption("Hello\r\nWorld");
  EXPECT_TRUE(same(surface(), drawn({"HelloWorld"})));
  label->TextWrap(true);
  const int32_t highEnough = (3 * letter() + 1) / 2 + 8;  // ceil(1.5 lines) + 8
  site->MovePixels(10, 10, 120, highEnough);
  EXPECT_TRUE(same(surface(), drawn({"Hello", "World"})));
  site->MovePixels(10, 10, 120, highEnough - 1);
  EXPECT_TRUE(same(surface(), drawn({"Hello"})));
  label->TextWrap(false);
  site->MovePixels(10, 10, 70, 20);
  label->Caption("  A caption far wider than the label  ");
  EXPECT_TRUE(
      same(surface(), drawn({FitText(surface(), "A caption far wider than the label", 68)})));
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
  EXPECT_TRUE(same(surface(), tall));

  auto small = solidIcons(8);
  label->ImageList(small);
  label->Enabled(false);
  Canvas disabled = drawn({"Go"}, 10, 2, kPalette.EdgeDark);
  disabled.DrawPicture(*small->ListImages().Item(1)->ExtractIcon(), 2, 2, PictureLook::Disabled);
  EXPECT_TRUE(same(surface(), disabled));

  label->ImageIndex(5);
  EXPECT_TRUE(same(surface(), drawn({"Go"}, 10, 2, kPalette.EdgeDark)));
}

// AutoSize and TextWrap clear each other, even when set to False, and both
// are reported. AutoSize follows the font, the image list and resizes but not
// the caption.
TEST_F(veltLabelTest, AutoSizeClearsTextWrapAndFollowsFontImageListAndResizeButNotTheCaption) {
  add(200, 50);
  label->Caption("Short");
  label->TextWrap(true);
  site->ClearChangedProperties();
  label->AutoSize(true);
  EXPECT_FALSE(label->TextWrap());
  EXPECT_EQ(site->ChangedProperties(), (Lines{"AutoSize", "TextWrap"}));
  const RectL before = site->Bounds();
  label->Caption("A much longer caption");
  EXPECT_EQ(site->Bounds(), before);
  label->Font(std::make_shared<Font>(test::kPinnedFamily, 14.0f));
  const int32_t text = surface().TextWidth("A much longer caption");
  EXPECT_EQ(site->Bounds(), (RectL{10, 10, 10 + text + 4, 10 + letter() + 4}));
  label->ImageList(solidIcons(32));  // ImageIndex 0: the list alone counts
  ASSERT_GT(32, letter());
  EXPECT_EQ(site->Bounds(), (RectL{10, 10, 10 + text + 32 + 8, 10 + 32 + 4}));
  label->ImageList(solidIcons(6));
  site->MovePixels(30, 40, 300, 90);
  EXPECT_EQ(site->Bounds(), (RectL{30, 40, 30 + text + 6 + 8, 40 + letter() + 4}));
  label->TextWrap(false);
  EXPECT_FALSE(label->AutoSize());
}

// The hand shows with the hover look (unless MousePointer asks for another
// shape) and goes when the pointer leaves.
TEST_F(veltLabelTest, HyperlinkTakesTheAccentColourAndTheHandOnlyWhileThePointerRestsOnIt) {
  add(120, 30);
  label->Hyperlink(kLink);
  hf.system->PostMouseMove(20, 15);
  hf.Run();
  EXPECT_EQ(hf.system->Pointer().Shape, mpDefault);
  hf.Tick();
  EXPECT_EQ(label->State(), veltLabel::lsHover);
  EXPECT_EQ(hf.system->Pointer().Shape, mpHand);
  EXPECT_TRUE(same(surface(), drawn({"veltLabel1"}, 0, 2, kPalette.Accent3)));
  const auto icon = std::make_shared<Picture>(8, 8);
  label->MouseIcon(icon);
  label->MousePointer(mpCustom);
  EXPECT_EQ(hf.system->Pointer(), (PointerLook{mpCustom, icon}));
  label->MousePointer(mpDefault);
  EXPECT_EQ(hf.system->Pointer().Shape, mpHand);
  hf.system->PostMouseDown(1, 20, 15);
  hf.Run();
  hf.Tick();
  EXPECT_EQ(label->State(), veltLabel::lsPressed);
  EXPECT_TRUE(same(surface(), drawn({"veltLabel1"})));
  hf.system->PostMouseUp(1, 21, 15);
  hf.Run();
  hf.system->SetCursor(23, 15);
  hf.Tick();
  EXPECT_EQ(label->State(), veltLabel::lsLeft);
  EXPECT_FALSE(label->HoverTimerRunning());
  EXPECT_EQ(hf.system->Pointer().Shape, mpDefault);
}

// HyperlinkClick comes after Click, then the shell opens the link, then
// MouseUp. Cancel keeps the shell closed; a link the handler changed is opened
// and kept; a handler that removes the label ends the sequence there.
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
  EXPECT_EQ(sequence,
            (Lines{"MouseMove", "MouseDown", "Click", "HyperlinkClick", "shell", "MouseUp"}));
  EXPECT_FALSE(cancelSeen);
  EXPECT_EQ(opened(), (Lines{std::string("Open ") + kLink}));
  cancel = true;
  click();
  EXPECT_EQ(opened().size(), 1u);
  cancel = false;
  changed = "https://example.org/new page";
  click();
  EXPECT_EQ(opened().back(), "Open " + changed);
  EXPECT_EQ(label->Hyperlink(), changed);
  EXPECT_EQ(sequence.back(), "MouseUp");

  auto remover = label->HyperlinkClick.connect(
      [&](std::string&, bool&) { hf.form.RemoveControl("veltLabel1"); });
  sequence.clear();
  click();
  EXPECT_EQ(sequence, (Lines{"MouseMove", "MouseDown", "Click", "HyperlinkClick"}));
  EXPECT_EQ(opened().size(), 2u) << "a removed label opens nothing";
  EXPECT_TRUE(started.empty()) << "a headless run started the desktop's opener";
}

// Without a hyperlink a click is just a click and other buttons nothing; a
// Click handler removing the label ends the sequence.
TEST_F(veltLabelTest, WithoutHyperlinkAClickIsJustAClickAndAHandlerMayRemoveTheLabel) {
  add(120, 30);
  click();
  hf.Tick();
  EXPECT_FALSE(label->HoverTimerRunning());
  hf.system->PostMouseDown(2, 20, 15);
  hf.system->PostMouseUp(2, 20, 15);
  hf.Run();
  EXPECT_EQ(sequence, (Lines{"MouseMove", "MouseDown", "Click", "MouseUp"}));
  label->Hyperlink(kLink);
  auto handler = label->Click.connect([&] { hf.form.RemoveControl("veltLabel1"); });
  sequence.clear();
  click();
  EXPECT_EQ(sequence, (Lines{"MouseMove", "MouseDown", "Click"}));
  EXPECT_TRUE(opened().empty());
}

// The caption, image list, link and TextWrap go through form files (see the
// host tests). A bag with TextWrap and AutoSize both True gives AutoSize.
TEST_F(veltLabelTest, PropertiesSurviveAJsonRoundTripInTableOrder) {
  add(120, 30);
  auto pointer = std::make_shared<Picture>(4, 4);
  PropertyBag bag;
  bag.Namer([](const Object&) { return std::string("Pointer"); });
  label->WriteProperties(bag);
  EXPECT_EQ(bag.Count(), 0u) << "defaults are not stored";
  label->BackColor(0x010203);
  label->ForeColor(0x040506);
  label->Enabled(false);
  label->SelectionColor(0x070809);
  label->AutoSize(true);
  label->Font(std::make_shared<Font>(test::kPinnedFamily, 10.0f));
  label->MousePointer(99);
  label->MouseIcon(pointer);
  label->WriteProperties(bag);
  EXPECT_EQ(bag.Keys(), (Lines{"BackColor", "ForeColor", "Enabled", "SelectionColor", "AutoSize",
                               "Font", "MousePointer", "MouseIcon"}));

  PropertyBag loaded = PropertyBag::FromJson(bag.ToJson());
  loaded.Resolver([&](const std::string&) -> std::shared_ptr<Object> { return pointer; });
  auto copy = std::make_shared<veltLabel>();
  Site& copySite = hf.form.AddControl(copy, "Copy", 0, 100, 100, 30, &loaded);
  PropertyBag again;
  again.Namer([](const Object&) { return std::string("Pointer"); });
  copy->WriteProperties(again);
  EXPECT_EQ(again.ToJson(), bag.ToJson()) << "everything read back";
  EXPECT_EQ(copy->MouseIcon(), pointer);
  EXPECT_EQ(copy->Palette().Accent3, BlendColor(0x010203, 0x070809, 130));
  EXPECT_EQ(test::PixelAt(copySite.Surface(), 0, 0), BlendColor(0x010203, 0x040506, 240));

  PropertyBag stored;
  stored.WriteProperty("TextWrap", Variant(true));
  stored.WriteProperty("AutoSize", Variant(true));
  auto both = std::make_shared<veltLabel>();
  hf.form.AddControl(both, "Both", 0, 0, 9, 9, &stored);
  EXPECT_TRUE(both->AutoSize() && !both->TextWrap());
}

TEST_F(veltLabelTest, BadValuesAreErrorsNamingWhatWasWrong) {
  const std::tuple<std::string, Variant, int32_t> stored[] = {
      {"ImageList", Variant(std::static_pointer_cast<Object>(std::make_shared<Picture>(1, 1))),
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
}

class LabelLayoutTest : public ::testing::Test {
 protected:
  LabelLayoutTest() : canvas(200, 120) { canvas.Font(test::PinnedFont()); }
  int32_t width(const std::string& text) const { return canvas.TextWidth(text); }
  ::testing::AssertionResult looksLike(const Lines& lines, float left, float top) const {
    return same(canvas, printed(canvas, lines, left, top, 0, kWhite));
  }

  Canvas canvas;
};

// Text is kept up to its exact width and text under four characters is never
// cut; otherwise the cut text is the longest head of the text (cut between
// characters) that, followed by "...", is strictly narrower than the width.
TEST_F(LabelLayoutTest, EllipsisKeepsTheLongestHeadThatStaysStrictlyInside) {
  EXPECT_EQ(FitText(canvas, "Printer", width("Printer")), "Printer");
  EXPECT_EQ(FitText(canvas, "WWW", 5), "WWW");
  EXPECT_EQ(FitText(canvas, "Wonderful", 3), "...") << "nothing but the dots fits";
  for (const std::string text : {"The quick brown fox jumps",
                                 "\xC3\xA4\xC3\xB6\xC3\xBC\xE2\x82\xAC Gr\xC3\xBC\xC3\x9F"
                                 "e aus K\xC3\xB6ln"}) {
    for (int32_t limit : {20, 60, width(text) - 1}) {
      const std::string fitted = FitText(canvas, text, limit);
      ASSERT_EQ(fitted.substr(fitted.size() - 3), "...") << limit;
      const int32_t kept = Len(fitted) - 3;
      EXPECT_EQ(Left(text, kept) + "...", fitted) << limit;
      EXPECT_LT(width(fitted), limit) << limit;
      if (kept + 1 <= Len(text) - 4) {  // the first pass already keeps n - 4
        EXPECT_GE(width(Left(text, kept + 1) + "..."), limit) << "one more would fit at " << limit;
      }
    }
  }
}

// The candidate, its trailing blank included, must be narrower than the width;
// the blank after the last word is used up; a word wider than the line stays
// whole; a marker ends the line and no letter is taken for one; a blank
// carrying a mark is no break; a line takes at most 1000 characters.
TEST_F(LabelLayoutTest, LineBreaksAfterTheLastBlankThatFits) {
  const std::string text = "alpha beta gamma delta";
  const struct {
    std::string text;
    int32_t width, consumed;
    std::string line;
  } cases[] = {{text, width("alpha beta ") + 1, 11, "alpha beta"},
               {text, width("alpha beta "), 6, "alpha"},
               {"Antidisestablishmentarianism is long", 20, 29, "Antidisestablishmentarianism"},
               {"one" + std::string(kLineBreakMarker) + "two three", 500, 4, "one"},
               {MarkLineBreaks("Citro\xC3\xABn Zo\xC3\xAB"), 500, 11, "Citro\xC3\xABn Zo\xC3\xAB"},
               {"alpha \xCC\x81"
                "beta gamma",
                width("alpha ") + 1, 12,
                "alpha \xCC\x81"
                "beta"},
               {std::string(1500, 'i'), 1 << 30, kMaxLineCharacters, std::string(1000, 'i')}};
  for (const auto& c : cases) {
    const WrappedLine next = NextLine(canvas, c.text, c.width);
    EXPECT_EQ(next.consumed, c.consumed) << c.text.substr(0, 40) << " in " << c.width;
    EXPECT_EQ(next.line, c.line);
  }
}

// Cuts fall between clusters: the kept head of accented letters ends on its
// last accent, of five-part family emoji on a whole family; the caption's own
// copies of the marker are dropped. (Wrapping at a blank that carries a mark
// is in the table above.)
TEST_F(LabelLayoutTest, EllipsisNeverSplitsAClusterAndTheMarkerIsTheCaptionsOwnBreak) {
  const std::string family =
      "\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7";
  std::string accents, families;
  for (int i = 0; i < 12; ++i)
    accents += "e\xCC\x81", families += family;
  for (int32_t limit = 6; limit < std::min(width(accents), width(families)); limit += 3) {
    const std::string head = FitText(canvas, accents, limit);
    if (head != "...") {
      EXPECT_EQ(Right(head, 4), "\xCC\x81...") << limit;
    }
    EXPECT_EQ((Len(FitText(canvas, families, limit)) - 3) % 5, 0) << limit;
  }
  EXPECT_EQ(MarkLineBreaks("a\xEE\x80\x80"
                           "b\r\nc"),
            "ab" + std::string(kLineBreakMarker) + "c");
}

// A line is printed while its centre, top + k * line + line / 2, is at most
// top + heightLimit; long words end in dots.
TEST_F(LabelLayoutTest, WrappedLinesStopAtTheLastWhoseCentreFits) {
  const double line = canvas.TextHeight("I");
  DrawWrapped(canvas, "one\rtwo\rAntidisestablishmentarianism", 0, 4, 60, 2 * line + line / 2);
  EXPECT_TRUE(looksLike({"one", "two", FitText(canvas, "Antidisestablishmentarianism", 60)}, 0, 4));
  canvas.Clear();
  DrawWrapped(canvas, "one\rtwo\rthree", 0, 4, 190, line + line / 2 - 0.5);
  EXPECT_TRUE(looksLike({"one"}, 0, 4));
}

}  // namespace
}  // namespace velt
