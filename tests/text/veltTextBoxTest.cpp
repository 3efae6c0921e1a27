// veltTextBox and its editor part on a headless form: the filters on typed and
// pasted characters, the context menu's commands on their saved selection,
// clipboard keys, undo, scrolling, the caret, composition and the layout.

#include "velt/controls/text/veltTextBox.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/ExpectError.hpp"
#include "support/HeadlessForm.hpp"
#include "velt/controls/menus/veltPUMenu.hpp"
#include "velt/controls/text/SingleLineEdit.hpp"
#include "velt/foundation/Utf8Text.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/Clipboard.hpp"
#include "velt/platform/PopupWindow.hpp"

namespace velt {
namespace {

constexpr int16_t kCtrl = 2;
constexpr int16_t kShift = 1;

class veltTextBoxTest : public ::testing::Test {
 protected:
  void add(int32_t width = 120, const std::string& text = "") {
    box = hf.form.Add<veltTextBox>("veltTextBox1", 10, 10, width, 40);
    site = hf.form.FindSite("veltTextBox1");
    editSite = site->FindChild(veltTextBox::kEditorName);
    box->Text(text);
    log = std::make_unique<test::EventLog>(*site);
  }
  SingleLineEdit& edit() { return *box->Text1(); }
  Clipboard& clipboard() { return hf.system->Clipboard(); }
  void focus() {
    editSite->SetFocus();
    hf.Run();
  }
  void type(const std::u16string& units) {
    for (const char16_t unit : units)
      hf.system->PostKeyPress(static_cast<int16_t>(unit));
    hf.Run();
  }
  void key(int16_t code, int16_t shift = 0) {
    hf.system->PostKeyDown(code, shift);
    hf.system->PostKeyUp(code, shift);
    hf.Run();
  }
  void closeMenu() {
    box->veltPUMenu1()->KillMenu();
    hf.Tick(2);
  }
  // The reported KeyPress codes, in order.
  std::vector<int> keyPresses() const {
    std::vector<int> codes;
    for (const std::string& line : log->Lines())
      if (line.rfind("KeyPress(i", 0) == 0) codes.push_back(std::stoi(line.substr(10)));
    return codes;
  }

  test::HeadlessForm hf;
  std::shared_ptr<veltTextBox> box;
  Site* site = nullptr;
  Site* editSite = nullptr;
  std::unique_ptr<test::EventLog> log;
};

// Letters, digits, the six signs, the German letters, a Latin-1 other, a
// Cyrillic letter and Backspace, through every filter: what FilterPaste makes
// of them (a refused character is a space). Typed, the same characters give
// KeyPress the filtered code or 0, and the text the admitted ones with the
// last taken back by the Backspace.
const std::u16string kProbe = u"Az5.,-/*+äÄßéЖ\b";
const std::vector<std::u16string> kFiltered = {
    u"Az5.,-/*+äÄßéЖ\b",  // df_AllChars
    u"Az       äÄß  \b",  // df_AlphaOnly
    u"  5           \b",  // df_NumOnly
    u"  5.,-/*+äÄß  \b",  // df_NumAndChars
    u"Az5      äÄß  \b",  // df_NumAndAlpha
    u"Az5.,-/*+äÄß  \b",  // df_NumAndAlphaChars
    u"AZ5.,-/*+ÄÄßÉЖ\b",  // df_UCase
    u"AZ       ÄÄß  \b",  // df_UCaseAlphaOnly
    u"AZ5      ÄÄß  \b",  // df_UCaseNumAndAlpha
    u"AZ5.,-/*+ÄÄß  \b",  // df_UCaseNumAndAlphaChars
    u"az5.,-/*+ääßéж\b",  // df_LCase
    u"az       ääß  \b",  // df_LCaseAlphaOnly
    u"az5      ääß  \b",  // df_LCaseNumAndAlpha
    u"az5.,-/*+ääß  \b",  // df_LCaseNumAndAlphaChars
    u"Az .,-/*+äÄß  \b",  // df_AlphaAndChars
    u"AZ .,-/*+ÄÄß  \b",  // df_UCaseAlphaAndChars
    u"az .,-/*+ääß  \b",  // df_LCaseAlphaAndChars
    u"               ",   // outside the table: nothing
};

std::string utf8(const std::u16string& units) {
  std::string out;
  for (const char16_t unit : units)
    out += Utf8Of(std::u32string(1, unit));
  return out;
}

TEST_F(veltTextBoxTest, EveryFilterOnTypedAndPastedCharacters) {
  add();
  focus();
  for (size_t format = 0; format < kFiltered.size(); ++format) {
    SCOPED_TRACE("DataFormat " + std::to_string(format));
    const std::u16string& expected = kFiltered[format];
    EXPECT_EQ(FilterPaste(utf8(kProbe), static_cast<int32_t>(format)), utf8(expected));
    box->DataFormat(static_cast<int32_t>(format));
    box->Text("");
    log->Clear();
    type(kProbe);
    std::vector<int> codes;
    std::u16string kept;
    for (const char16_t c : expected) {
      codes.push_back(c == u' ' ? 0 : static_cast<int>(c));
      if (c != u' ' && c != u'\b') kept += c;
    }
    if (expected.back() == u'\b') kept.pop_back();
    EXPECT_EQ(keyPresses(), codes);
    EXPECT_EQ(box->Text(), utf8(kept));
  }
}

// A character beyond U+FFFF comes as two KeyPress codes; only the filters
// that admit every key let the pair through.
TEST_F(veltTextBoxTest, SurrogatePairsTypeOneCharacterWhereEveryKeyIsAdmitted) {
  add();
  focus();
  type(u"a😀b");
  EXPECT_EQ(box->Text(), "a😀b");
  EXPECT_EQ(box->SelStart(), 3);
  box->DataFormat(df_AlphaOnly);
  type(u"😀c");
  EXPECT_EQ(box->Text(), "a😀bc");
}

TEST_F(veltTextBoxTest, PasteReplacesRefusedCharactersByEveryPathAndOnlyTheKeysStopAtMaxLength) {
  add(120, "");
  box->DataFormat(df_NumOnly);
  box->MaxLength(2);
  focus();
  clipboard().SetText("12a");
  key('V', kCtrl);
  EXPECT_EQ(box->Text(), "12");  // the editor's own paste stops at the limit
  box->Text("");
  box->OpenContextMenu();
  box->MenuCommand(veltTextBox::kPasteKey);
  EXPECT_EQ(box->Text(), "12 ");  // the menu's paste is inserted whole
  EXPECT_EQ(box->SavedSelStart(), 3);
  closeMenu();
  box->MaxLength(0);
  box->Text("");
  key(45 /*Insert*/, kShift);
  EXPECT_EQ(box->Text(), "12 ");
}

// Each command on the selection saved when the menu opened; the selection is
// applied when the menu closes.
TEST_F(veltTextBoxTest, MenuCommandsActOnTheSavedSelectionAndClosingRestoresIt) {
  struct Case {
    const char* key;
    const char* text;
    int32_t start, length;
    const char* expectText;
    const char* expectClipboard;
    int32_t expectStart, expectLength;
  };
  add();
  for (const Case c : {
           Case{veltTextBox::kCutKey, "Hello", 2, 0, "Hello", "", 2, 0},
           Case{veltTextBox::kCutKey, "Grüße", 2, 2, "Gre", "üß", 2, 0},
           Case{veltTextBox::kCopyKey, "Hello", 0, 5, "Hello", "Hello", 0, 5},
           Case{veltTextBox::kPasteKey, "Grüße", 1, 3, "GXYe", "XY", 3, 0},
           Case{veltTextBox::kDeleteKey, "Hello", 0, 5, "", "XY", 0, 0},
           Case{veltTextBox::kSelectAllKey, "Grüße", 2, 0, "Grüße", "XY", 0, 5},
       }) {
    SCOPED_TRACE(std::string(c.key) + " on " + c.text);
    clipboard().SetText("XY");
    box->Text(c.text);
    box->SelStart(c.start);
    box->SelLength(c.length);
    // A right press in Text1 opens the menu with Text1 disabled.
    const int32_t x = 10 + 2 + 5;
    hf.system->PostMouseDown(2, x, 15);
    hf.system->PostMouseUp(2, x, 15);
    hf.Run();
    ASSERT_TRUE(box->veltPUMenu1()->MenuVisible);
    EXPECT_FALSE(editSite->Enabled());
    EXPECT_EQ(box->SavedSelStart(), c.start);
    box->MenuCommand(c.key);
    closeMenu();
    EXPECT_TRUE(editSite->Enabled());
    EXPECT_TRUE(editSite->HasFocus());
    EXPECT_EQ(box->Text(), c.expectText);
    EXPECT_EQ(clipboard().GetText(), c.expectClipboard);
    EXPECT_EQ(box->SelStart(), c.expectStart);
    EXPECT_EQ(box->SelLength(), c.expectLength);
  }
}

TEST_F(veltTextBoxTest, PasswordTextNeverReachesTheClipboardAndLockedOnlyCopies) {
  add(120, "secret");
  box->PasswordChar("*x");
  focus();
  clipboard().SetText("before");
  box->SelStart(0);
  box->SelLength(6);
  key('C', kCtrl);
  key('X', kCtrl);
  key(46 /*Delete*/, kShift);
  key(45 /*Insert*/, kCtrl);
  box->OpenContextMenu();
  box->MenuCommand(veltTextBox::kCopyKey);
  box->MenuCommand(veltTextBox::kCutKey);
  closeMenu();
  EXPECT_EQ(clipboard().GetText(), "before");
  EXPECT_EQ(box->Text(), "secret");
  EXPECT_EQ(edit().PasswordChar(), "*");

  box->PasswordChar("");
  box->Locked(true);
  box->SelStart(0);
  box->SelLength(3);
  type(u"zz\b");
  key('X', kCtrl);
  key('V', kCtrl);
  key(46 /*Delete*/);
  EXPECT_EQ(box->Text(), "secret");
  key('C', kCtrl);
  EXPECT_EQ(clipboard().GetText(), "sec");
}

TEST_F(veltTextBoxTest, KeysMoveSelectDeleteAndUndoByCharactersAndWords) {
  add(200, "");
  focus();
  type(u"one two");
  key(37 /*Left*/, kCtrl);
  EXPECT_EQ(box->SelStart(), 4);
  key(39 /*Right*/, kShift);
  key(39, kShift);
  EXPECT_EQ(edit().SelText(), "tw");
  key(36 /*Home*/, kShift);
  EXPECT_EQ(box->SelStart(), 0);
  EXPECT_EQ(box->SelLength(), 4);  // the anchor stayed before "two"
  type(u"X");
  EXPECT_EQ(box->Text(), "Xtwo");
  key('Z', kCtrl);
  EXPECT_EQ(box->Text(), "one two");
  key('Z', kCtrl);
  EXPECT_EQ(box->Text(), "");  // the typed run was one step
  key('Y', kCtrl);
  key('Y', kCtrl);
  EXPECT_EQ(box->Text(), "Xtwo");
  key('A', kCtrl);
  EXPECT_EQ(box->SelLength(), 4);
  // A handler that clears KeyCode keeps the key from acting.
  Connection swallow = box->KeyDown.connect([](int16_t& code, int16_t&) { code = 0; });
  key(46 /*Delete*/);
  EXPECT_EQ(box->Text(), "Xtwo");
}

// A long text scrolls so the caret stays inside; a drag past the right edge
// keeps selecting and scrolling on the timer.
TEST_F(veltTextBoxTest, ScrollingKeepsTheCaretInViewWhileTypingMovingAndDragging) {
  add(60, "");
  focus();
  const int32_t width = editSite->Image().ScaleWidth();
  type(u"abcdefghijklmnopqrstuvwxyz");
  EXPECT_GT(edit().ScrollX(), 0);
  EXPECT_GE(edit().CaretX(), 0);
  EXPECT_LT(edit().CaretX(), width);
  key(36 /*Home*/);
  EXPECT_EQ(edit().ScrollX(), 0);
  EXPECT_EQ(edit().CaretX(), SingleLineEdit::kPadding);
  hf.system->PostMouseDown(1, 14, 15);
  const int32_t pastEdge = 10 + 2 + width + 2;
  hf.system->PostMouseMove(pastEdge, 15);
  hf.Run();
  const int32_t selected = box->SelLength();
  hf.Tick(10 * SingleLineEdit::kDragScrollMs);
  EXPECT_GT(box->SelLength(), selected);
  EXPECT_GT(edit().ScrollX(), 0);
  EXPECT_LT(edit().CaretX(), width);
  hf.system->PostMouseUp(1, pastEdge, 15);
  hf.Run();
  const int32_t after = box->SelLength();
  hf.Tick(10 * SingleLineEdit::kDragScrollMs);
  EXPECT_EQ(box->SelLength(), after);
  // Right to left: a line that fits stands at the right end, read from there.
  box->RightToLeft(true);
  box->Text("\xD7\x90\xD7\x91\xD7\x92");
  const int32_t right = width - SingleLineEdit::kPadding - 1;
  EXPECT_EQ(edit().CaretX(), right);
  key(35 /*End*/);
  EXPECT_EQ(edit().CaretX(), right - editSite->Image().TextWidth("\xD7\x90\xD7\x91\xD7\x92"));
}

TEST_F(veltTextBoxTest,
       CaretBlinksOnlyWithFocusAndEnabledAClickPlacesItAndADoubleClickTakesTheWord) {
  add(200, "Hello");
  box->SelStart(5);  // after the text, where no letter is drawn
  EXPECT_FALSE(edit().CaretShown());
  focus();
  EXPECT_TRUE(edit().CaretShown());
  const int32_t x = edit().CaretX();
  EXPECT_EQ(editSite->Image().PixelRGB(x, 3), OleToPixel(box->Colors()[8]));
  hf.Tick(SingleLineEdit::kCaretBlinkMs);
  EXPECT_FALSE(edit().CaretShown());
  EXPECT_NE(editSite->Image().PixelRGB(x, 3), OleToPixel(box->Colors()[8]));
  hf.Tick(SingleLineEdit::kCaretBlinkMs);
  EXPECT_TRUE(edit().CaretShown());
  // Clicking just right of the third letter puts the caret after it.
  const std::vector<CaretStop> stops = editSite->Image().CaretStops("Hello");
  hf.system->PostMouseDown(1, 10 + 2 + SingleLineEdit::kPadding + stops[3].x - 1, 15);
  hf.system->PostMouseUp(1, 10 + 2 + SingleLineEdit::kPadding + stops[3].x - 1, 15);
  hf.Run();
  EXPECT_EQ(box->SelStart(), 3);
  // A double click there selects the word; the release does not change it.
  hf.system->PostMouseDown(1, 10 + 2 + SingleLineEdit::kPadding + stops[3].x - 1, 15);
  hf.system->PostMouseUp(1, 10 + 2 + SingleLineEdit::kPadding + stops[3].x - 1, 15);
  hf.Run();
  EXPECT_EQ(edit().SelText(), "Hello");
  box->Enabled(false);
  EXPECT_FALSE(edit().CaretShown());
  EXPECT_EQ(edit().ForeColor(), box->Colors()[7]);  // the disabled text colour
}

TEST_F(veltTextBoxTest, CompositionShowsAtTheCaretAndIsThenInsertedAsTyped) {
  add(200, "ab");
  box->SelStart(2);
  focus();
  key(37 /*Left*/);
  hf.system->PostComposition("にほ");
  hf.Run();
  EXPECT_EQ(edit().Composition(), "にほ");
  EXPECT_EQ(box->Text(), "ab");
  hf.system->PostComposition("");
  type(u"日本");
  EXPECT_EQ(box->Text(), "a日本b");
  EXPECT_EQ(box->SelStart(), 3);
}

TEST_F(veltTextBoxTest, AutoSelectSelectsOnFocusButNotWhenComingBackFromTheMenu) {
  add(120, "Hello");
  box->AutoSelect(true);
  focus();
  EXPECT_EQ(box->SelLength(), 5);
  box->SelStart(1);
  box->SelLength(0);
  box->OpenContextMenu();
  closeMenu();
  EXPECT_EQ(box->SelStart(), 1);
  EXPECT_EQ(box->SelLength(), 0);
  EXPECT_FALSE(box->MenuReturn());
}

TEST_F(veltTextBoxTest, LayoutBorderMenuRowsAndPersistence) {
  add(120, "x");
  const int32_t line = site->Image().TextHeight("I");
  EXPECT_EQ(site->Bounds().Height(), line + 4);
  site->Move(site->Left(), site->Top(), 150 * 15, 90 * 15);
  EXPECT_EQ(site->Bounds().Height(), line + 4);
  EXPECT_EQ(editSite->Bounds(), (RectL{2, 2, 148, 2 + line}));  // 150 wide, 2 free either side
  EXPECT_EQ(box->ID(), 13);
  const ColorScheme& c = box->Colors();
  const Canvas& image = site->Image();
  const int32_t h = image.ScaleHeight();
  EXPECT_EQ(image.PixelRGB(5, h - 1), OleToPixel(c[7]));  // bottom edge
  EXPECT_EQ(image.PixelRGB(1, 0), OleToPixel(c[5]));      // top edge starts at entry 5
  EXPECT_EQ(image.PixelRGB(0, 1), OleToPixel(c[5]));      // left edge
  EXPECT_EQ(c[2], SchemeNormal(0xFFFFFF, 0xC00000, 0xFFFFFF)[2]);

  box->textCopy("Kopieren");
  std::vector<std::string> captions;
  for (const auto& item : *box->veltPUMenu1()->MenuItem)
    captions.push_back(item->Key() + ":" + item->Caption());
  EXPECT_EQ(captions, (std::vector<std::string>{"a:Cut", "b:Kopieren", "c:Paste", "d:Delete",
                                                "e:", "f:Select all"}));

  box->DataFormat(df_UCase);
  box->MaxLength(9);
  box->PasswordChar("#");
  PropertyBag bag = site->Save();
  auto copy = std::make_shared<veltTextBox>();
  hf.form.AddControl(copy, "Copy", 0, 100, 120, 30, &bag);
  EXPECT_EQ(copy->Text(), "x");
  EXPECT_EQ(copy->DataFormat(), df_UCase);
  EXPECT_EQ(copy->MaxLength(), 9);
  EXPECT_EQ(copy->PasswordChar(), "#");
  EXPECT_EQ(copy->textCopy(), "Kopieren");
}

TEST_F(veltTextBoxTest, BadValuesAreErrorsNamingWhatWasWrong) {
  add(120, "keep");
  EXPECT_NE(test::errorOf(380, [&] { box->Text("bad\xFF"); }).find("Text"), std::string::npos);
  EXPECT_NE(test::errorOf(380, [&] { box->Alignment(3); }).find("Alignment"), std::string::npos);
  EXPECT_NE(test::errorOf(380, [&] { box->SelStart(-1); }).find("SelStart"), std::string::npos);
  EXPECT_NE(test::errorOf(380, [&] { box->MaxLength(-1); }).find("MaxLength"), std::string::npos);
  EXPECT_EQ(box->Text(), "keep");
  test::errorOf(91, [] { veltTextBox().Text(); });
}

}  // namespace
}  // namespace velt
