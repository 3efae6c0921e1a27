#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velt/platform/Geometry.hpp"
#include "velt/platform/Object.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Types.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {

class Font;
class Form;
class ImageList;
class UserControl;
class WindowSystem;

// A form stored as a JSON file (docs/form-files.md): its caption, size,
// colour and font, the image lists its controls refer to (their pictures are
// PNG files beside the form file), and its controls in creation order, each
// with its type, name, place in pixels and the property bag its
// WriteProperties stored.
//
// Reading checks the whole file before anything is created: the JSON, every
// key, the control types, each stored property against the type's property
// table and the pictures. A problem is a velt::Error whose message names the
// file, the JSON path of the value ("/controls/2/properties/BackColor") and
// what was expected there.
class FormFile {
 public:
  static constexpr int32_t kVersion = 1;
  static constexpr int32_t kMaxFormSide = 16384;

  // What a form file needs to know of the control classes; the control
  // registry answers it.
  class ControlTypes {
   public:
    struct PropertyInfo {
      std::string Name;  // as stored, in its own letter case
      VariantType Type = VariantType::Empty;
    };

    virtual ~ControlTypes() = default;
    // A new control of the type (any letter case); error 5 naming the type
    // when there is no such type or it cannot be created on its own.
    virtual std::shared_ptr<UserControl> CreateControl(std::string_view type) const = 0;
    // The property of the type whose name matches in any letter case.
    virtual std::optional<PropertyInfo> FindProperty(std::string_view type,
                                                     std::string_view property) const = 0;

    // A field of each entry of a collection a type owns (a menu's items, a
    // list's entries), or a setting of the collection itself, written beside
    // "items" on the control: Boolean, String, or Integer within Low..High.
    //
    // A field with Records is an array of records with those fields (the
    // entries of a toolbar item's menu); its value in a record is an
    // ItemRecords object.
    struct ItemField {
      std::string Name;  // lowerCamelCase, as in the file
      VariantType Type = VariantType::String;
      int32_t Low = 0;
      int32_t High = 0;
      std::vector<ItemField> Records;
    };
    struct ItemsInfo {
      std::vector<ItemField> Fields;
      std::vector<ItemField> Settings;
    };
    // The collection of the type (any letter case); nothing when it owns none.
    virtual std::optional<ItemsInfo> FindItems(std::string_view type) const = 0;
    // Records are property bags keyed by field name holding checked values; a
    // field left out takes its default. Settings are applied before entries
    // are added; the control's own errors pass through.
    virtual void ApplyItemSettings(UserControl& control, const PropertyBag& settings) const = 0;
    virtual void AddItem(UserControl& control, const PropertyBag& item) const = 0;
    // What the control's collection holds now, fields at their default left out.
    virtual PropertyBag ItemSettings(const UserControl& control) const = 0;
    virtual std::vector<PropertyBag> Items(const UserControl& control) const = 0;
  };

  // The records of an array field, in order, each keyed by field name.
  class ItemRecords : public Object {
   public:
    std::vector<PropertyBag> Records;
  };

  struct ImageListEntry {
    std::string Name;
    std::shared_ptr<velt::ImageList> List;
    // Each picture's PNG file relative to the form file's folder, by position;
    // Save names the missing ones after the form file and the list.
    std::vector<std::string> Files;
  };

  struct ControlEntry {
    std::string Type;
    std::string Name;
    RectL Bounds;  // pixels of the form's client area
    PropertyBag Properties;
    // For a type that owns a collection: its settings and entries in order.
    PropertyBag ItemSettings;
    std::vector<PropertyBag> Items;
  };

  // Where the file was read from ("" for one captured from a form); messages
  // name it, and picture files are found beside it.
  std::string Path;
  std::string Caption = "Form1";
  int32_t Width = 640;
  int32_t Height = 480;
  std::optional<OLE_COLOR> BackColor;  // nothing: the form's default
  std::shared_ptr<velt::Font> Font;    // nullptr: the library's ambient font
  std::vector<ImageListEntry> ImageLists;
  std::vector<ControlEntry> Controls;

  // Errors: 53 no such file, 75 unreadable, 13 not JSON or a value of the
  // wrong kind, 5 an unknown key, control type or property, or items for a
  // type that owns none, 380 a number out of range, 457 a control, image list
  // or item key used twice, 91 a reference to no image list, 481 a picture
  // that is no PNG.
  static FormFile Load(const std::string& path, const ControlTypes& types);
  // The same for text; path names it in messages and locates the pictures.
  static FormFile Parse(std::string_view text, const std::string& path, const ControlTypes& types);

  // A new form on the window system: caption, size, colour and font, then the
  // controls in order, each reading its stored properties. An error of a
  // control's creation names the file and the control's path.
  std::unique_ptr<Form> CreateForm(std::shared_ptr<WindowSystem> system,
                                   const ControlTypes& types) const;

  // The form as it is now: every control of the form with the properties its
  // WriteProperties stores and the collection it owns. The image lists given
  // keep their names and files; others the controls refer to are added as
  // ImageList1, ImageList2, ...
  static FormFile Capture(Form& form, const ControlTypes& types,
                          std::vector<ImageListEntry> imageLists = {});

  // The file's JSON text (nothing is written). Errors for a property that
  // cannot be stored (an object that is no image list).
  std::string ToJsonText() const;
  // Writes the JSON file and the pictures of the image lists beside it (a
  // picture file already holding the same image is left alone). Each file is
  // written to a temporary file in the same folder and renamed over the
  // target, so a crash never leaves half a file; a problem found before
  // writing writes nothing.
  void Save(const std::string& path) const;

  // "/controls/2/properties/BackColor" from its parts ("~" and "/" escaped).
  static std::string JsonPointer(const std::vector<std::string>& parts);

 private:
  FormFile withFileNames(const std::string& path) const;
  void bindNames(PropertyBag& bag) const;
};

}  // namespace velt
