#include "velt/controls/ControlRegistry.hpp"

#include <utility>

#include "velt/controls/buttons/veltButton.hpp"
#include "velt/controls/buttons/veltXButton.hpp"
#include "velt/controls/lists/veltColorPicker.hpp"
#include "velt/controls/lists/veltListbox.hpp"
#include "velt/controls/lists/veltMonthview.hpp"
#include "velt/controls/menus/MenuItems.hpp"
#include "velt/controls/menus/veltPUMenu.hpp"
#include "velt/controls/menus/veltToolbar.hpp"
#include "velt/controls/range/veltProgressBar.hpp"
#include "velt/controls/range/veltScrollBar.hpp"
#include "velt/controls/range/veltSlider.hpp"
#include "velt/controls/text/veltLabel.hpp"
#include "velt/controls/text/veltTextBox.hpp"
#include "velt/controls/veltTab.hpp"
#include "velt/foundation/ControlFrame.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

namespace {

using Property = ControlClass::Property;

[[noreturn]] void notOfClass(const UserControl& control, const char* property) {
  throw Error(errTypeMismatch,
              std::string(property) + " does not belong to a " + control.ClassName());
}

template <class C>
C& controlAs(UserControl& control, const char* property) {
  if (auto* typed = dynamic_cast<C*>(&control)) return *typed;
  notOfClass(control, property);
}

template <class C>
const C& controlAs(const UserControl& control, const char* property) {
  if (auto* typed = dynamic_cast<const C*>(&control)) return *typed;
  notOfClass(control, property);
}

// A property of class C read and written through its own getter and setter;
// the value reaches the setter already converted to the property's type.
template <class C, class Getter, class Setter>
Property property(const char* name, VariantType type, Getter get, Setter set) {
  return Property{
      name,
      type,
      [name, get](const UserControl& control) { return get(controlAs<C>(control, name)); },
      [name, set](UserControl& control, const Variant& value) {
        set(controlAs<C>(control, name), value);
      },
      {}};
}

// One helper per value type, taking the class's getter and setter.
template <class C>
Property color(const char* name, OLE_COLOR (C::*get)() const, void (C::*set)(OLE_COLOR)) {
  return property<C>(
      name, VariantType::Color, [get](const C& c) { return Variant::Color((c.*get)()); },
      [set](C& c, const Variant& v) { (c.*set)(v.ToColor()); });
}

template <class C>
Property boolean(const char* name, bool (C::*get)() const, void (C::*set)(bool)) {
  return property<C>(
      name, VariantType::Boolean, [get](const C& c) { return Variant((c.*get)()); },
      [set](C& c, const Variant& v) { (c.*set)(v.ToBoolean()); });
}

template <class C>
Property integer(const char* name, int16_t (C::*get)() const, void (C::*set)(int16_t)) {
  return property<C>(
      name, VariantType::Integer, [get](const C& c) { return Variant((c.*get)()); },
      [set](C& c, const Variant& v) { (c.*set)(v.ToInteger()); });
}

template <class C>
Property longValue(const char* name, int32_t (C::*get)() const, void (C::*set)(int32_t)) {
  return property<C>(
      name, VariantType::Long, [get](const C& c) { return Variant((c.*get)()); },
      [set](C& c, const Variant& v) { (c.*set)(v.ToLong()); });
}

// An enumeration stored as a Long; values outside it are passed on as they
// are, the controls say how they draw one.
template <class C, class E>
Property enumeration(const char* name, E (C::*get)() const, void (C::*set)(E)) {
  return property<C>(
      name, VariantType::Long,
      [get](const C& c) { return Variant(static_cast<int32_t>((c.*get)())); },
      [set](C& c, const Variant& v) { (c.*set)(static_cast<E>(v.ToLong())); });
}

template <class C>
Property text(const char* name, const std::string& (C::*get)() const,
              void (C::*set)(const std::string&)) {
  return property<C>(
      name, VariantType::String, [get](const C& c) { return Variant((c.*get)()); },
      [set](C& c, const Variant& v) { (c.*set)(v.ToString()); });
}

template <class C>
Property font(const char* name, std::shared_ptr<Font> (C::*get)() const,
              void (C::*set)(std::shared_ptr<Font>)) {
  return property<C>(
      name, VariantType::Font, [get](const C& c) { return Variant((c.*get)()); },
      [set](C& c, const Variant& v) { (c.*set)(v.ToFont()); });
}

std::shared_ptr<ImageList> imageListOf(const Variant& value) {
  const std::shared_ptr<Object> object = value.ToObject();
  auto imageList = std::dynamic_pointer_cast<ImageList>(object);
  if (object && !imageList) throw Error(errTypeMismatch, "the object is not an ImageList");
  return imageList;
}

template <class C>
Property imageList(const char* name, std::shared_ptr<ImageList> (C::*get)() const,
                   void (C::*set)(std::shared_ptr<ImageList>)) {
  return property<C>(
      name, VariantType::Object,
      [get](const C& c) { return Variant(std::shared_ptr<Object>((c.*get)())); },
      [set](C& c, const Variant& v) { (c.*set)(imageListOf(v)); });
}

// BackColor, ForeColor, Enabled, Font and Caption, in the order the frame
// stores them.
std::vector<Property> frameProperties() {
  using F = ControlFrame;
  return {color<F>("BackColor", &F::BackColor, &F::BackColor),
          color<F>("ForeColor", &F::ForeColor, &F::ForeColor),
          boolean<F>("Enabled", &F::Enabled, &F::Enabled), font<F>("Font", &F::Font, &F::Font),
          text<F>("Caption", &F::Caption, &F::Caption)};
}

ControlClass buttonClass() {
  using B = veltButton;
  std::vector<Property> properties = frameProperties();
  properties.push_back(color<B>("TabSelectColor", &B::TabSelectColor, &B::TabSelectColor));
  properties.push_back(imageList<B>("ImageList", &B::ImageList, &B::ImageList));
  properties.push_back(integer<B>("ImageIndex", &B::ImageIndex, &B::ImageIndex));
  return ControlClass(
      "veltButton", SizeL{100, 30}, [] { return std::make_shared<veltButton>(); },
      std::move(properties));
}

// The glyph button is only ever made by the control it belongs to.
ControlClass glyphButtonClass() {
  return ControlClass("veltXButton", SizeL{17, 17}, nullptr, frameProperties());
}

ControlClass progressBarClass() {
  using P = veltProgressBar;
  return ControlClass(
      "veltProgressBar", SizeL{200, 20}, [] { return std::make_shared<P>(); },
      {color<P>("BackColor", &P::BackColor, &P::BackColor),
       boolean<P>("Enabled", &P::Enabled, &P::Enabled), font<P>("Font", &P::Font, &P::Font),
       enumeration<P>("Orientation", &P::Orientation, &P::Orientation),
       enumeration<P>("Style", &P::Style, &P::Style), integer<P>("Value", &P::Value, &P::Value),
       text<P>("Caption", &P::Caption, &P::Caption),
       color<P>("ForeColor", &P::ForeColor, &P::ForeColor)});
}

ControlClass scrollBarClass() {
  using S = veltScrollBar;
  return ControlClass(
      "veltScrollBar", SizeL{17, 120}, [] { return std::make_shared<S>(); },
      {boolean<S>("Enabled", &S::Enabled, &S::Enabled), longValue<S>("Min", &S::Min, &S::Min),
       longValue<S>("Max", &S::Max, &S::Max), longValue<S>("Value", &S::Value, &S::Value),
       enumeration<S>("Orientation", &S::Orientation, &S::Orientation),
       color<S>("BackColor", &S::BackColor, &S::BackColor),
       color<S>("ForeColor", &S::ForeColor, &S::ForeColor)});
}

// ---- Collections --------------------------------------------------------------

using ItemField = FormFile::ControlTypes::ItemField;

ItemField field(const char* name, VariantType type, int32_t low = 0, int32_t high = 0) {
  ItemField made;
  made.Name = name;
  made.Type = type;
  made.Low = low;
  made.High = high;
  return made;
}

ItemField textField(const char* name) {
  return field(name, VariantType::String);
}

ItemField booleanField(const char* name) {
  return field(name, VariantType::Boolean);
}

ItemField iconField() {
  return field("icon", VariantType::Integer, INT16_MIN, INT16_MAX);
}

std::string textOf(const PropertyBag& record, const char* name) {
  return record.ReadProperty(name, Variant(std::string())).ToString();
}

bool booleanOf(const PropertyBag& record, const char* name, bool absent = false) {
  return record.ReadProperty(name, Variant(absent)).ToBoolean();
}

int16_t iconOf(const PropertyBag& record) {
  return record.ReadProperty("icon", Variant(int16_t{0})).ToInteger();
}

void writeText(PropertyBag& record, const char* name, const std::string& value) {
  record.WriteProperty(name, Variant(value), Variant(std::string()));
}

void writeBoolean(PropertyBag& record, const char* name, bool value, bool absent = false) {
  record.WriteProperty(name, Variant(value), Variant(absent));
}

void writeIcon(PropertyBag& record, int16_t icon) {
  record.WriteProperty("icon", Variant(icon), Variant(int16_t{0}));
}

// A menu entry, in the order and with the defaults of MenuItems::Add: the
// menu's MenuItem and a toolbar item's ToolbarMenuItems.
std::vector<ItemField> menuItemFields() {
  return {textField("key"),
          textField("caption"),
          iconField(),
          booleanField("enabled"),
          textField("child"),
          textField("group"),
          field("itemType", VariantType::Long, itNormal, itTitle),
          booleanField("checked"),
          booleanField("bold")};
}

void addMenuItem(MenuItems& items, const PropertyBag& item) {
  items.Add(
      textOf(item, "key"), textOf(item, "caption"), iconOf(item), booleanOf(item, "enabled", true),
      textOf(item, "child"), textOf(item, "group"),
      static_cast<eItemType>(item.ReadProperty("itemType", Variant(int32_t{itNormal})).ToLong()),
      booleanOf(item, "checked"), booleanOf(item, "bold"));
}

std::vector<PropertyBag> menuItemRecords(const MenuItems* items) {
  std::vector<PropertyBag> records;
  if (!items) return records;
  for (const std::shared_ptr<MenuItem> item : *items) {
    PropertyBag& record = records.emplace_back();
    writeText(record, "key", item->Key());
    writeText(record, "caption", item->Caption());
    writeIcon(record, item->Icon());
    writeBoolean(record, "enabled", item->Enabled(), true);
    writeText(record, "child", item->Child());
    writeText(record, "group", item->Group());
    record.WriteProperty("itemType", Variant(static_cast<int32_t>(item->ItemType())),
                         Variant(int32_t{itNormal}));
    writeBoolean(record, "checked", item->Checked());
    writeBoolean(record, "bold", item->Bold());
  }
  return records;
}

ControlClass::Collection menuItems() {
  using M = veltPUMenu;
  ControlClass::Collection items;
  items.Info.Fields = menuItemFields();
  items.ApplySettings = [](UserControl&, const PropertyBag&) {};
  items.Add = [](UserControl& control, const PropertyBag& item) {
    M& menu = controlAs<M>(control, "items");
    if (!menu.MenuItem) menu.MenuItem = std::make_shared<MenuItems>();
    addMenuItem(*menu.MenuItem, item);
  };
  items.Settings = [](const UserControl&) { return PropertyBag(); };
  items.Items = [](const UserControl& control) {
    return menuItemRecords(controlAs<M>(control, "items").MenuItem.get());
  };
  return items;
}

// The list's ListboxItems, in the order of ComboDatas::Add; Sorted is set
// before the entries are added, so they are placed by caption as they come.
ControlClass::Collection listboxItems() {
  using L = veltListbox;
  ControlClass::Collection items;
  items.Info.Fields = {textField("key"), textField("caption"), textField("value"), iconField(),
                       textField("comment")};
  items.Info.Settings = {booleanField("sorted"), booleanField("valueFont")};
  items.ApplySettings = [](UserControl& control, const PropertyBag& settings) {
    L& list = controlAs<L>(control, "items");
    list.ListboxItems.Sorted(booleanOf(settings, "sorted"));
    list.ValueFont = booleanOf(settings, "valueFont");
  };
  items.Add = [](UserControl& control, const PropertyBag& item) {
    controlAs<L>(control, "items")
        .ListboxItems.Add(textOf(item, "key"), textOf(item, "caption"), textOf(item, "value"),
                          iconOf(item), textOf(item, "comment"));
  };
  items.Settings = [](const UserControl& control) {
    const L& list = controlAs<L>(control, "items");
    PropertyBag settings;
    writeBoolean(settings, "sorted", list.ListboxItems.Sorted());
    writeBoolean(settings, "valueFont", list.ValueFont);
    return settings;
  };
  items.Items = [](const UserControl& control) {
    std::vector<PropertyBag> records;
    for (const std::shared_ptr<ComboData> entry : controlAs<L>(control, "items").ListboxItems) {
      PropertyBag& record = records.emplace_back();
      writeText(record, "key", entry->Key());
      writeText(record, "caption", entry->Caption());
      writeText(record, "value", entry->Value());
      writeIcon(record, entry->Icon());
      writeText(record, "comment", entry->Comment());
    }
    return records;
  };
  return items;
}

// On its form the menu is a fixed-size anchor that draws nothing; its face is
// the pop-up window CreateMenu opens.
ControlClass popupMenuClass() {
  using M = veltPUMenu;
  const int32_t side = M::kControlSize / kDefaultTwipsPerPixel;
  return ControlClass(
      "veltPUMenu", SizeL{side, side}, [] { return std::make_shared<M>(); },
      {color<M>("BackColor", &M::BackColor, &M::BackColor),
       color<M>("ForeColor", &M::ForeColor, &M::ForeColor), font<M>("Font", &M::Font, &M::Font),
       imageList<M>("ImageList", &M::ImageList, &M::ImageList),
       color<M>("SelectionColor", &M::SelectionColor, &M::SelectionColor)},
      menuItems());
}

// ---- veltToolbar ----------------------------------------------------------------

// The toolbar's ToolbarItems, in the order and with the defaults of
// ToolbarItems::Add; each item's "menu" holds its ToolbarMenuItems.
ControlClass::Collection toolbarItems() {
  using T = veltToolbar;
  ControlClass::Collection items;
  ItemField menu = field("menu", VariantType::Object);
  menu.Records = menuItemFields();
  items.Info.Fields = {textField("key"),
                       textField("caption"),
                       field("iconIndex", VariantType::Integer, INT16_MIN, INT16_MAX),
                       field("style", VariantType::Long, mitNormalButton, mitCaption),
                       booleanField("checked"),
                       booleanField("enabled"),
                       menu};
  items.ApplySettings = [](UserControl&, const PropertyBag&) {};
  items.Add = [](UserControl& control, const PropertyBag& record) {
    const std::shared_ptr<ToolbarItem> item =
        controlAs<T>(control, "items")
            .ToolbarItems.Add(
                textOf(record, "key"), textOf(record, "caption"),
                record.ReadProperty("iconIndex", Variant(int16_t{0})).ToInteger(),
                static_cast<eMenuItemType>(
                    record.ReadProperty("style", Variant(int32_t{mitNormalButton})).ToLong()),
                booleanOf(record, "checked"), booleanOf(record, "enabled", true));
    const auto menu = std::dynamic_pointer_cast<FormFile::ItemRecords>(
        record.ReadProperty("menu", Variant(std::shared_ptr<Object>())).ToObject());
    if (menu)
      for (const PropertyBag& entry : menu->Records)
        addMenuItem(*item->ToolbarMenuItems, entry);
  };
  items.Settings = [](const UserControl&) { return PropertyBag(); };
  items.Items = [](const UserControl& control) {
    std::vector<PropertyBag> records;
    for (const std::shared_ptr<ToolbarItem> item : controlAs<T>(control, "items").ToolbarItems) {
      PropertyBag& record = records.emplace_back();
      writeText(record, "key", item->sKey());
      writeText(record, "caption", item->Caption());
      record.WriteProperty("iconIndex", Variant(item->IconIndex()), Variant(int16_t{0}));
      record.WriteProperty("style", Variant(static_cast<int32_t>(item->Style())),
                           Variant(int32_t{mitNormalButton}));
      writeBoolean(record, "checked", item->Checked());
      writeBoolean(record, "enabled", item->Enabled(), true);
      auto menu = std::make_shared<FormFile::ItemRecords>();
      menu->Records = menuItemRecords(item->ToolbarMenuItems.get());
      if (!menu->Records.empty())
        record.WriteProperty("menu", Variant(std::shared_ptr<Object>(menu)));
    }
    return records;
  };
  return items;
}

ControlClass toolbarClass() {
  using T = veltToolbar;
  Property images = imageList<T>("ImageList", &T::ImageList, &T::ImageList);
  images.Key = "Imagelist";
  return ControlClass(
      "veltToolbar", SizeL{400, 30}, [] { return std::make_shared<T>(); },
      {color<T>("BackColor", &T::BackColor, &T::BackColor),
       color<T>("ForeColor", &T::ForeColor, &T::ForeColor),
       color<T>("SelectionColor", &T::SelectionColor, &T::SelectionColor),
       imageList<T>("MenuImageList", &T::MenuImageList, &T::MenuImageList), images,
       boolean<T>("Enabled", &T::Enabled, &T::Enabled), font<T>("Font", &T::Font, &T::Font)},
      toolbarItems());
}

ControlClass sliderClass() {
  using S = veltSlider;
  return ControlClass(
      "veltSlider", SizeL{150, 25}, [] { return std::make_shared<S>(); },
      {color<S>("BackColor", &S::BackColor, &S::BackColor),
       color<S>("ForeColor", &S::ForeColor, &S::ForeColor),
       boolean<S>("Enabled", &S::Enabled, &S::Enabled), font<S>("Font", &S::Font, &S::Font),
       color<S>("TabSelectColor", &S::TabSelectColor, &S::TabSelectColor),
       enumeration<S>("Orientation", &S::Orientation, &S::Orientation),
       enumeration<S>("TickStyle", &S::TickStyle, &S::TickStyle),
       longValue<S>("Min", &S::Min, &S::Min), longValue<S>("Max", &S::Max, &S::Max),
       longValue<S>("Value", &S::Value, &S::Value)});
}

ControlClass labelClass() {
  using L = veltLabel;
  return ControlClass(
      "veltLabel", SizeL{120, 20}, [] { return std::make_shared<L>(); },
      {color<L>("BackColor", &L::BackColor, &L::BackColor),
       color<L>("ForeColor", &L::ForeColor, &L::ForeColor),
       boolean<L>("Enabled", &L::Enabled, &L::Enabled),
       imageList<L>("ImageList", &L::ImageList, &L::ImageList),
       integer<L>("ImageIndex", &L::ImageIndex, &L::ImageIndex),
       text<L>("Caption", &L::Caption, &L::Caption),
       text<L>("Hyperlink", &L::Hyperlink, &L::Hyperlink),
       color<L>("SelectionColor", &L::SelectionColor, &L::SelectionColor),
       boolean<L>("TextWrap", &L::TextWrap, &L::TextWrap),
       boolean<L>("AutoSize", &L::AutoSize, &L::AutoSize), font<L>("Font", &L::Font, &L::Font),
       integer<L>("MousePointer", &L::MousePointer, &L::MousePointer)});
}

ControlClass colorPickerClass() {
  using P = veltColorPicker;
  return ControlClass("veltColorPicker", SizeL{160, 85}, [] { return std::make_shared<P>(); },
                      {color<P>("Color", &P::Color, &P::Color)});
}

ControlClass listboxClass() {
  using L = veltListbox;
  return ControlClass(
      "veltListbox", SizeL{150, 120}, [] { return std::make_shared<L>(); },
      {color<L>("BackColor", &L::BackColor, &L::BackColor),
       color<L>("ForeColor", &L::ForeColor, &L::ForeColor),
       boolean<L>("Enabled", &L::Enabled, &L::Enabled), font<L>("Font", &L::Font, &L::Font),
       color<L>("SelectionColor", &L::SelectionColor, &L::SelectionColor),
       imageList<L>("ImageList", &L::ImageList, &L::ImageList),
       integer<L>("SelectedItem", &L::SelectedItem, &L::SelectedItem),
       boolean<L>("HoverSelect", &L::HoverSelect, &L::HoverSelect)},
      listboxItems());
}

Property storedAs(Property property, const char* key) {
  property.Key = key;
  return property;
}

// The calendar sizes itself to its grid; the size asked for is a start. The
// date parts are stored under shorter keys than their names.
ControlClass monthviewClass() {
  using V = veltMonthview;
  return ControlClass(
      "veltMonthview", SizeL{200, 180}, [] { return std::make_shared<V>(); },
      {color<V>("BackColor", &V::BackColor, &V::BackColor),
       color<V>("ForeColor", &V::ForeColor, &V::ForeColor),
       color<V>("SelectionColor", &V::SelectionColor, &V::SelectionColor),
       boolean<V>("Enabled", &V::Enabled, &V::Enabled), font<V>("Font", &V::Font, &V::Font),
       storedAs(integer<V>("iDay", &V::iDay, &V::iDay), "Day"),
       storedAs(integer<V>("iMonth", &V::iMonth, &V::iMonth), "Month"),
       storedAs(integer<V>("iYear", &V::iYear, &V::iYear), "Year"),
       text<V>("WeekdayName", &V::WeekdayName, &V::WeekdayName),
       text<V>("MonthName", &V::MonthName, &V::MonthName)});
}

ControlClass textBoxClass() {
  using T = veltTextBox;
  return ControlClass("veltTextBox", SizeL{120, 21}, [] { return std::make_shared<T>(); },
                      {color<T>("BackColor", &T::BackColor, &T::BackColor),
                       color<T>("ForeColor", &T::ForeColor, &T::ForeColor),
                       boolean<T>("Enabled", &T::Enabled, &T::Enabled),
                       font<T>("Font", &T::Font, &T::Font),
                       integer<T>("Alignment", &T::Alignment, &T::Alignment),
                       text<T>("Text", &T::Text, &T::Text),
                       boolean<T>("AutoSelect", &T::AutoSelect, &T::AutoSelect),
                       longValue<T>("SelLength", &T::SelLength, &T::SelLength),
                       longValue<T>("SelStart", &T::SelStart, &T::SelStart),
                       text<T>("PasswordChar", &T::PasswordChar, &T::PasswordChar),
                       boolean<T>("RightToLeft", &T::RightToLeft, &T::RightToLeft),
                       boolean<T>("Locked", &T::Locked, &T::Locked),
                       longValue<T>("DataFormat", &T::DataFormat, &T::DataFormat),
                       color<T>("SelectionColor", &T::SelectionColor, &T::SelectionColor),
                       text<T>("textCut", &T::textCut, &T::textCut),
                       text<T>("textCopy", &T::textCopy, &T::textCopy),
                       text<T>("textPaste", &T::textPaste, &T::textPaste),
                       text<T>("textDelete", &T::textDelete, &T::textDelete),
                       text<T>("textSelectAll", &T::textSelectAll, &T::textSelectAll),
                       longValue<T>("MaxLength", &T::MaxLength, &T::MaxLength)});
}

ControlClass tabClass() {
  return ControlClass("veltTab", SizeL{40, 40}, [] { return std::make_shared<veltTab>(); }, {});
}

}  // namespace

const ControlRegistry& ControlRegistry::Standard() {
  static const ControlRegistry registry(
      {buttonClass(), glyphButtonClass(), progressBarClass(), scrollBarClass(), sliderClass(),
       popupMenuClass(), labelClass(), colorPickerClass(), listboxClass(), tabClass(),
       monthviewClass(), toolbarClass(), textBoxClass()});
  return registry;
}

ControlRegistry::ControlRegistry(std::vector<ControlClass> classes)
    : classes_(std::move(classes)) {}

std::vector<std::string> ControlRegistry::CreatableNames() const {
  std::vector<std::string> names;
  for (const ControlClass& controlClass : classes_)
    if (controlClass.Creatable()) names.push_back(controlClass.Name());
  return names;
}

const ControlClass* ControlRegistry::Find(std::string_view name) const {
  for (const ControlClass& controlClass : classes_)
    if (ControlClass::NamesMatch(controlClass.Name(), name)) return &controlClass;
  return nullptr;
}

const ControlClass& ControlRegistry::ClassNamed(std::string_view name) const {
  if (const ControlClass* controlClass = Find(name)) return *controlClass;
  throw Error(errInvalidProcedureCall, "there is no control class \"" + std::string(name) + "\"");
}

const ControlClass& ControlRegistry::ClassOf(const UserControl& control) const {
  return ClassNamed(control.ClassName());
}

std::shared_ptr<UserControl> ControlRegistry::Create(std::string_view name) const {
  return ClassNamed(name).Create();
}

std::shared_ptr<UserControl> ControlRegistry::CreateControl(std::string_view type) const {
  return Create(type);
}

std::optional<FormFile::ControlTypes::PropertyInfo> ControlRegistry::FindProperty(
    std::string_view type, std::string_view property) const {
  const ControlClass* controlClass = Find(type);
  if (!controlClass) return std::nullopt;
  const ControlClass::Property* found = controlClass->FindStoredProperty(property);
  if (!found) return std::nullopt;
  return PropertyInfo{found->StoredKey(), found->Type};
}

std::optional<FormFile::ControlTypes::ItemsInfo> ControlRegistry::FindItems(
    std::string_view type) const {
  const ControlClass* controlClass = Find(type);
  if (!controlClass || !controlClass->Items()) return std::nullopt;
  return controlClass->Items()->Info;
}

const ControlClass::Collection& ControlRegistry::collectionOf(const UserControl& control) const {
  const ControlClass& controlClass = ClassOf(control);
  if (!controlClass.Items())
    throw Error(errInvalidProcedureCall, controlClass.Name() + " owns no collection of items");
  return *controlClass.Items();
}

void ControlRegistry::ApplyItemSettings(UserControl& control, const PropertyBag& settings) const {
  collectionOf(control).ApplySettings(control, settings);
}

void ControlRegistry::AddItem(UserControl& control, const PropertyBag& item) const {
  collectionOf(control).Add(control, item);
}

PropertyBag ControlRegistry::ItemSettings(const UserControl& control) const {
  return collectionOf(control).Settings(control);
}

std::vector<PropertyBag> ControlRegistry::Items(const UserControl& control) const {
  return collectionOf(control).Items(control);
}

}  // namespace velt
