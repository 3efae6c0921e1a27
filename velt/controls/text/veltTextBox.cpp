#include "velt/controls/text/veltTextBox.hpp"

#include <algorithm>
#include <utility>

#include "velt/controls/menus/MenuItems.hpp"
#include "velt/controls/menus/veltPUMenu.hpp"
#include "velt/controls/text/SingleLineEdit.hpp"
#include "velt/foundation/EventRaising.hpp"
#include "velt/foundation/FrameProperties.hpp"
#include "velt/foundation/Gradients.hpp"
#include "velt/foundation/Utf8Text.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/Clipboard.hpp"
#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {

namespace {

constexpr int16_t kRightButton = 2;
constexpr OLE_COLOR kWhite = 0xFFFFFF;
constexpr OLE_COLOR kThirdColor = kWhite;
constexpr int32_t kHorizontal = 1;
constexpr int32_t kVertical = 2;

// The five captions in menu order, with their keys, properties and defaults.
struct CaptionRow {
  const char* key;
  const char* property;
  const char* defaultCaption;
};
constexpr std::array<CaptionRow, 5> kCaptionRows = {{
    {veltTextBox::kCutKey, "textCut", "Cut"},
    {veltTextBox::kCopyKey, "textCopy", "Copy"},
    {veltTextBox::kPasteKey, "textPaste", "Paste"},
    {veltTextBox::kDeleteKey, "textDelete", "Delete"},
    {veltTextBox::kSelectAllKey, "textSelectAll", "Select all"},
}};

// A clipboard step of a menu command: its failure is ignored.
template <typename Step>
void ignoringFailure(Step&& step) {
  try {
    step();
  } catch (const Error&) {
  }
}

}  // namespace

veltTextBox::~veltTextBox() = default;

// ---- Properties -------------------------------------------------------------

void veltTextBox::BackColor(OLE_COLOR color) {
  backColor_ = color;
  markChanged("BackColor");
  drawBorder();
  menuLook();
}

void veltTextBox::ForeColor(OLE_COLOR color) {
  foreColor_ = color;
  markChanged("ForeColor");
  drawBorder();
  menuLook();
}

bool veltTextBox::Enabled() const {
  return host().Enabled();
}

void veltTextBox::Enabled(bool enabled) {
  host().Enabled(enabled);
  markChanged("Enabled");
  applyEnabled();
}

std::shared_ptr<velt::Font> veltTextBox::Font() const {
  return host().Font();
}

void veltTextBox::Font(std::shared_ptr<velt::Font> font) {
  if (!font) throw Error(errObjectNotSet, "veltTextBox.Font: no font object given");
  host().Font(std::move(font));
  markChanged("Font");
  layout();
  menuLook();
}

int16_t veltTextBox::Alignment() const {
  return editor().Alignment();
}

void veltTextBox::Alignment(int16_t alignment) {
  editor().Alignment(alignment);
  markChanged("Alignment");
}

const std::string& veltTextBox::Text() const {
  return editor().Text();
}

void veltTextBox::Text(const std::string& text) {
  editor().Text(text);
  markChanged("Text");
}

void veltTextBox::AutoSelect(bool autoSelect) {
  autoSelect_ = autoSelect;
  markChanged("AutoSelect");
}

int32_t veltTextBox::SelLength() const {
  return editor().SelLength();
}

void veltTextBox::SelLength(int32_t length) {
  editor().SelLength(length);
  markChanged("SelLength");
}

int32_t veltTextBox::SelStart() const {
  return editor().SelStart();
}

void veltTextBox::SelStart(int32_t start) {
  editor().SelStart(start);
  markChanged("SelStart");
}

const std::string& veltTextBox::PasswordChar() const {
  return editor().PasswordChar();
}

void veltTextBox::PasswordChar(const std::string& mask) {
  editor().PasswordChar(mask);
  markChanged("PasswordChar");
}

bool veltTextBox::RightToLeft() const {
  return editor().RightToLeft();
}

void veltTextBox::RightToLeft(bool rightToLeft) {
  editor().RightToLeft(rightToLeft);
  markChanged("RightToLeft");
}

bool veltTextBox::Locked() const {
  return editor().Locked();
}

void veltTextBox::Locked(bool locked) {
  editor().Locked(locked);
  markChanged("Locked");
}

void veltTextBox::DataFormat(int32_t format) {
  dataFormat_ = format;
  markChanged("DataFormat");
}

void veltTextBox::SelectionColor(OLE_COLOR color) {
  selectionColor_ = color;
  markChanged("SelectionColor");
  menuLook();
}

void veltTextBox::textCut(const std::string& text) {
  caption(0, text, "textCut");
}
void veltTextBox::textCopy(const std::string& text) {
  caption(1, text, "textCopy");
}
void veltTextBox::textPaste(const std::string& text) {
  caption(2, text, "textPaste");
}
void veltTextBox::textDelete(const std::string& text) {
  caption(3, text, "textDelete");
}
void veltTextBox::textSelectAll(const std::string& text) {
  caption(4, text, "textSelectAll");
}

void veltTextBox::caption(int index, const std::string& text, const char* name) {
  captions_[static_cast<size_t>(index)] = text;
  markChanged(name);
  writeCaptions();
}

int32_t veltTextBox::MaxLength() const {
  return editor().MaxLength();
}

void veltTextBox::MaxLength(int32_t length) {
  editor().MaxLength(length);
  markChanged("MaxLength");
}

ControlHost& veltTextBox::host() const {
  if (!host_) throw Error(errObjectNotSet, "veltTextBox: the text box is not sited");
  return *host_;
}

SingleLineEdit& veltTextBox::editor() const {
  if (!editor_) throw Error(errObjectNotSet, "veltTextBox: the text box is not sited");
  return *editor_;
}

void veltTextBox::markChanged(const char* name) {
  if (host_) host_->PropertyChanged(name);
}

// ---- Parts ------------------------------------------------------------------

void veltTextBox::Initialize(ControlHost& host) {
  host_ = &host;
  menuReturn_ = false;
  createParts();
}

// Text1 fills the box inside the border; the menu lies beyond the form's
// top-left corner, out of sight.
void veltTextBox::createParts() {
  const Canvas& own = host_->Surface();
  editor_ = std::make_shared<SingleLineEdit>();
  editorHost_ = &host_->AddChild(editor_, kEditorName, kEditorInset, kEditorInset,
                                 std::max(own.ScaleWidth() - 2 * kEditorInset, 0),
                                 std::max(own.ScaleHeight() - 2 * kEditorInset, 0));
  menu_ = std::make_shared<veltPUMenu>();
  const int32_t size = veltPUMenu::kControlSize / host_->TwipsPerPixelX();
  ControlHost& menuHost = host_->AddChild(menu_, kMenuName, 0, 0, size, size);
  menuHost.Move(-menuHost.Width() - 10, -menuHost.Height() - 10, menuHost.Width(),
                menuHost.Height());
  if (!menu_->MenuItem) menu_->MenuItem = std::make_shared<MenuItems>();
  for (size_t row = 0; row < kCaptionRows.size(); ++row) {
    if (row == 4) menu_->MenuItem->Add(kSeparatorKey, "", 0, true, "", "", itPlaceholder);
    menu_->MenuItem->Add(kCaptionRows[row].key, "", 0, true, "", "", itNormal);
  }
  connectEditor();
}

void veltTextBox::connectEditor() {
  SingleLineEdit& edit = *editor_;
  connections_.push_back(edit.KeyDown.connect([this](int16_t& keyCode, int16_t& shift) {
    RaiseEvent(host(), "KeyDown", KeyDown, keyCode, shift);
  }));
  connections_.push_back(edit.KeyPress.connect([this](int16_t& keyAscii) {
    keyAscii = FilterKey(keyAscii, dataFormat_);
    RaiseEvent(host(), "KeyPress", KeyPress, keyAscii);
  }));
  connections_.push_back(edit.KeyUp.connect([this](int16_t& keyCode, int16_t& shift) {
    RaiseEvent(host(), "KeyUp", KeyUp, keyCode, shift);
  }));
  connections_.push_back(
      edit.PasteText.connect([this](std::string& text) { text = FilterPaste(text, dataFormat_); }));
  connections_.push_back(edit.MouseDown.connect([this](int16_t button, int16_t, float, float) {
    if (button == kRightButton) OpenContextMenu();
  }));
  connections_.push_back(edit.GotFocus.connect([this] { editorGotFocus(); }));
  connections_.push_back(
      menu_->ItemClick.connect([this](int16_t, const std::string& key) { MenuCommand(key); }));
  connections_.push_back(menu_->Closed.connect([this] { menuClosed(); }));
}

// ---- Life cycle and persistence ---------------------------------------------

void veltTextBox::InitProperties() {
  ControlHost& h = host();
  FrameProperties frame;
  frame.InitProperties(h);
  backColor_ = kDefaultBackColor;
  foreColor_ = kDefaultForeColor;
  selectionColor_ = kDefaultSelectionColor;
  autoSelect_ = false;
  dataFormat_ = df_AllChars;
  for (size_t row = 0; row < kCaptionRows.size(); ++row)
    captions_[row] = kCaptionRows[row].defaultCaption;
  editor().Text(kDefaultText);
  layout();
  writeCaptions();
  menuLook();
}

void veltTextBox::ReadProperties(PropertyBag& bag) {
  ControlHost& h = host();
  FrameProperties frame;
  backColor_ = bag.ReadProperty("BackColor", Variant::Color(kDefaultBackColor)).ToColor();
  foreColor_ = bag.ReadProperty("ForeColor", Variant::Color(kDefaultForeColor)).ToColor();
  frame.Read(FrameProperty::Enabled, bag, h);
  frame.Read(FrameProperty::Font, bag, h);
  applyEnabled();
  SingleLineEdit& edit = editor();
  edit.Alignment(bag.ReadProperty("Alignment", Variant(int16_t{0})).ToInteger());
  edit.Text(bag.ReadProperty("Text", Variant(kDefaultText)).ToString());
  autoSelect_ = bag.ReadProperty("AutoSelect", Variant(false)).ToBoolean();
  edit.SelLength(bag.ReadProperty("SelLength", Variant(int32_t{0})).ToLong());
  edit.SelStart(bag.ReadProperty("SelStart", Variant(int32_t{0})).ToLong());
  edit.PasswordChar(bag.ReadProperty("PasswordChar", Variant("")).ToString());
  edit.RightToLeft(bag.ReadProperty("RightToLeft", Variant(false)).ToBoolean());
  edit.Locked(bag.ReadProperty("Locked", Variant(false)).ToBoolean());
  dataFormat_ = bag.ReadProperty("DataFormat", Variant(int32_t{df_AllChars})).ToLong();
  selectionColor_ =
      bag.ReadProperty("SelectionColor", Variant::Color(kDefaultSelectionColor)).ToColor();
  for (size_t row = 0; row < kCaptionRows.size(); ++row)
    captions_[row] =
        bag.ReadProperty(kCaptionRows[row].property, Variant(kCaptionRows[row].defaultCaption))
            .ToString();
  edit.MaxLength(bag.ReadProperty("MaxLength", Variant(int32_t{0})).ToLong());
  layout();
  writeCaptions();
  menuLook();
}

void veltTextBox::WriteProperties(PropertyBag& bag) {
  const ControlHost& h = host();
  const SingleLineEdit& edit = editor();
  FrameProperties frame;
  bag.WriteProperty("BackColor", Variant::Color(backColor_), Variant::Color(kDefaultBackColor));
  bag.WriteProperty("ForeColor", Variant::Color(foreColor_), Variant::Color(kDefaultForeColor));
  frame.Write(FrameProperty::Enabled, bag, h);
  frame.Write(FrameProperty::Font, bag, h);
  bag.WriteProperty("Alignment", Variant(edit.Alignment()), Variant(int16_t{0}));
  bag.WriteProperty("Text", Variant(edit.Text()), Variant(kDefaultText));
  bag.WriteProperty("AutoSelect", Variant(autoSelect_), Variant(false));
  bag.WriteProperty("SelLength", Variant(edit.SelLength()), Variant(int32_t{0}));
  bag.WriteProperty("SelStart", Variant(edit.SelStart()), Variant(int32_t{0}));
  bag.WriteProperty("PasswordChar", Variant(edit.PasswordChar()), Variant(""));
  bag.WriteProperty("RightToLeft", Variant(edit.RightToLeft()), Variant(false));
  bag.WriteProperty("Locked", Variant(edit.Locked()), Variant(false));
  bag.WriteProperty("DataFormat", Variant(dataFormat_), Variant(int32_t{df_AllChars}));
  bag.WriteProperty("SelectionColor", Variant::Color(selectionColor_),
                    Variant::Color(kDefaultSelectionColor));
  for (size_t row = 0; row < kCaptionRows.size(); ++row)
    bag.WriteProperty(kCaptionRows[row].property, Variant(captions_[row]),
                      Variant(kCaptionRows[row].defaultCaption));
  bag.WriteProperty("MaxLength", Variant(edit.MaxLength()), Variant(int32_t{0}));
}

void veltTextBox::Resize() {
  layout();
}

void veltTextBox::Terminate() {
  connections_.clear();
  host_ = nullptr;
}

// ---- Layout and drawing -----------------------------------------------------

// Text1 at (2, 2), one text line high; the box then takes that height plus 4,
// whatever height it was given. The resize this causes comes back here and
// finds nothing left to change.
void veltTextBox::layout() {
  if (!host_ || laying_) return;
  laying_ = true;
  ControlHost& h = *host_;
  Canvas& own = h.Surface();
  if (own.Font() != h.Font() && h.Font()) own.Font(h.Font());
  editorHost_->Font(std::make_shared<velt::Font>(*h.Font()));
  const int32_t lineHeight = own.TextHeight("I");
  const int32_t tpx = h.TwipsPerPixelX();
  const int32_t tpy = h.TwipsPerPixelY();
  const int32_t width = std::max(own.ScaleWidth() - 2 * kEditorInset, 0);
  editorHost_->Move(kEditorInset * tpx, kEditorInset * tpy, width * tpx, lineHeight * tpy);
  const int32_t height = (lineHeight + 2 * kEditorInset) * tpy;
  if (h.Height() != height) h.Move(h.Left(), h.Top(), h.Width(), height);
  laying_ = false;
  editor_->Resize();
  drawBorder();
}

void veltTextBox::drawBorder() {
  if (!host_) return;
  colors_ = SchemeNormal(backColor_, foreColor_, kThirdColor);
  Canvas& s = host_->Surface();
  s.BackColor(colors_[2]);
  editor_->BackColor(colors_[2]);
  editor_->ForeColor(host_->Enabled() ? colors_[8] : colors_[7]);
  s.Clear();
  const int32_t w = s.ScaleWidth();
  const int32_t h = s.ScaleHeight();
  GradientLine(s, 1, 0, w - 2, kHorizontal, colors_[5], colors_[6]);
  GradientLine(s, 0, 1, h - 2, kVertical, colors_[5], colors_[7]);
  s.Line(1, h - 1, w - 1, h - 1, colors_[7]);
  GradientLine(s, w - 1, 1, h - 2, kVertical, colors_[6], colors_[7]);
}

// Text1 follows the box, so a disabled box shows no caret and takes no keys
// even where Text1 kept the focus.
void veltTextBox::applyEnabled() {
  editorHost_->Enabled(host().Enabled());
  drawBorder();
}

void veltTextBox::menuLook() {
  if (!host_ || !menu_) return;
  menu_->BackColor(backColor_);
  menu_->ForeColor(foreColor_);
  menu_->SelectionColor(selectionColor_);
  if (host_->Font()) menu_->Font(host_->Font());
}

void veltTextBox::writeCaptions() {
  if (!menu_ || !menu_->MenuItem) return;
  for (size_t row = 0; row < kCaptionRows.size(); ++row)
    if (auto item = menu_->MenuItem->Item(std::string(kCaptionRows[row].key)))
      item->Caption(captions_[row]);
}

// ---- Focus ------------------------------------------------------------------

void veltTextBox::OnEnterFocus() {
  if (!editorHost_ || editorHost_->HasFocus()) return;
  ignoringFailure([this] { editorHost_->SetFocus(); });
}

void veltTextBox::editorGotFocus() {
  if (autoSelect_ && !menuReturn_) editor().SelectAll();
  menuReturn_ = false;
}

// ---- Context menu -----------------------------------------------------------

// Text1 is disabled while the menu is up, so it takes no keys; the flag keeps
// the focus coming back from the menu from selecting everything.
void veltTextBox::OpenContextMenu() {
  auto self = shared_from_this();
  savedStart_ = editor().SelStart();
  savedLength_ = editor().SelLength();
  editorHost_->Enabled(false);
  editor_->ForeColor(editor_->ForeColor());  // repaint without the caret
  menuReturn_ = true;
  menu_->CreateMenu();
}

// Clipboard steps are skipped for a password (nothing leaks) and everything
// but Copy and Select all for a locked box.
void veltTextBox::MenuCommand(const std::string& key) {
  SingleLineEdit& edit = editor();
  const int32_t length = Len(edit.Text());
  const int32_t start = std::clamp(savedStart_, 0, length);
  const int32_t count = std::clamp(savedLength_, 0, length - start);
  const bool masked = !edit.PasswordChar().empty();
  const std::string selected = Mid(edit.Text(), start + 1, count);
  Clipboard& clipboard = host().Clipboard();
  const auto replaceSaved = [&](const std::string& text) {
    edit.SelStart(start);
    edit.SelLength(count);
    edit.SelText(text);
  };
  if (key == kCutKey) {
    if (masked || edit.Locked()) return;
    ignoringFailure([&] {
      clipboard.Clear();
      clipboard.SetText(selected);
    });
    replaceSaved("");
    savedLength_ = 0;
  } else if (key == kCopyKey) {
    if (masked) return;
    ignoringFailure([&] {
      clipboard.Clear();
      clipboard.SetText(selected);
    });
  } else if (key == kPasteKey) {
    if (edit.Locked()) return;
    std::string pasted;
    ignoringFailure([&] { pasted = FilterPaste(clipboard.GetText(), dataFormat_); });
    replaceSaved(pasted);
    savedStart_ = start + Len(pasted);
    savedLength_ = 0;
  } else if (key == kDeleteKey) {
    if (edit.Locked()) return;
    replaceSaved("");
    savedLength_ = 0;
  } else if (key == kSelectAllKey) {
    savedStart_ = 0;
    savedLength_ = length;
  }
}

void veltTextBox::menuClosed() {
  if (!host_) return;
  editorHost_->Enabled(host_->Enabled());
  ignoringFailure([this] { editorHost_->SetFocus(); });
  menuReturn_ = false;
  ignoringFailure([this] {
    editor().SelStart(std::max(savedStart_, 0));
    editor().SelLength(std::max(savedLength_, 0));
  });
  drawBorder();
}

}  // namespace velt
