#include "velt/host/FormFile.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <map>
#include <new>
#include <tuple>
#include <unordered_set>
#include <utility>

#include <nlohmann/json.hpp>

#include "velt/host/Form.hpp"
#include "velt/host/FormWindow.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/FileReplacement.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/JsonText.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/Png.hpp"
#include "velt/platform/RegularFile.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

namespace {

constexpr const char* kFontKey = "font";
constexpr const char* kItemsKey = "items";
// Collections count their positions in 16 bits.
constexpr size_t kMaxItems = 32767;
constexpr int64_t kMaxPosition = 100'000'000;
constexpr uint64_t kMaxFormFileBytes = uint64_t{64} << 20;
// What the pictures of one form file may take, decoded and scaled together:
// 128 MB of pixels.
constexpr uint64_t kMaxPicturePixels = uint64_t{32} << 20;

const std::vector<std::string> kFormKeys = {"version",   "caption", "width",      "height",
                                            "backColor", "font",    "imageLists", "controls"};
const std::vector<std::string> kImageListKeys = {"name",      "imageWidth",   "imageHeight",
                                                 "maskColor", "useMaskColor", "images"};
const std::vector<std::string> kImageKeys = {"file", "key"};
const std::vector<std::string> kControlKeys = {"type",  "name",   "left",      "top",
                                               "width", "height", "properties"};

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words)
    text += (text.empty() ? "" : ", ") + word;
  return text;
}

std::string kindOf(const Json& value) {
  if (value.is_number_integer()) return "the whole number " + value.dump();
  if (value.is_number_float()) return "the number " + value.dump();
  if (value.is_string()) return "the text " + QuotedPrefix(value.get_ref<const std::string&>());
  if (value.is_boolean()) return value.get<bool>() ? "true" : "false";
  if (value.is_null()) return "null";
  return std::string("a JSON ") + value.type_name();
}

// What a stored value of the type looks like in the file.
std::string expectedValue(VariantType type) {
  switch (type) {
    case VariantType::Boolean:
      return "true or false";
    case VariantType::Integer:
      return "a whole number -32768..32767 (Integer)";
    case VariantType::Long:
      return "a whole number (Long)";
    case VariantType::Single:
    case VariantType::Double:
      return "a number";
    case VariantType::String:
      return "text";
    case VariantType::Color:
      return "a colour number 0x00BBGGRR (Color)";
    case VariantType::Font:
      return "a font {\"Font\": {\"Name\": ..., \"Size\": ...}}";
    case VariantType::Object:
      return "a reference {\"Ref\": \"image list name\"} or null";
    case VariantType::Empty:
      break;
  }
  return "a value";
}

std::string fileNamePart(const std::string& text) {
  std::string result;
  for (char c : text) {
    const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                       c == '-' || c == '_';
    result += plain ? c : '_';
  }
  return result.empty() ? "_" : result;
}

// An item's fields in the order the control gave them.
Json itemRecordJson(const PropertyBag& record) {
  Json object = Json::object();
  for (const std::string& key : record.Keys()) {
    const Variant value = record.ReadProperty(key);
    switch (value.Type()) {
      case VariantType::Boolean:
        object[key] = value.ToBoolean();
        break;
      case VariantType::Integer:
      case VariantType::Long:
        object[key] = value.ToLong();
        break;
      case VariantType::Object: {
        Json records = Json::array();
        if (const auto nested = std::dynamic_pointer_cast<FormFile::ItemRecords>(value.ToObject()))
          for (const PropertyBag& nestedRecord : nested->Records)
            records.push_back(itemRecordJson(nestedRecord));
        object[key] = std::move(records);
        break;
      }
      default:
        object[key] = value.ToString();
    }
  }
  return object;
}

void writeText(std::FILE* file, const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), file);
}

// A picture file name given in a form stays below the form's folder when the
// form is saved: no absolute name, no way up.
bool staysBelow(const std::string& file) {
  const fs::path name = fs::path(file).lexically_normal();
  return !file.empty() && name.is_relative() && !name.empty() && *name.begin() != ".." &&
         name.filename() != "" && name != ".";
}

bool holdsPicture(const fs::path& file, const Picture& picture) {
  std::error_code code;
  if (!fs::is_regular_file(file, code)) return false;
  try {
    const std::shared_ptr<Picture> stored = Png::Read(file.string());
    return stored->Width() == picture.Width() && stored->Height() == picture.Height() &&
           std::equal(stored->Pixels(),
                      stored->Pixels() + static_cast<size_t>(picture.Width()) * picture.Height(),
                      picture.Pixels());
  } catch (const Error&) {
    return false;
  }
}

// Reads and checks the JSON of a form file into a FormFile.
class Reader {
 public:
  Reader(std::string path, const FormFile::ControlTypes& types, FormFile& file)
      : path_(std::move(path)), types_(types), file_(file) {}

  void Read(std::string_view text) {
    Json document;
    try {
      document = ParseJsonText(text);
    } catch (const Error& error) {
      throw Error(error.Number(), path_ + ": " + error.Description());
    } catch (const std::bad_alloc&) {
      fail(errOutOfMemory, {}, "out of memory while reading the JSON");
    }
    readForm(document);
  }

 private:
  using Pointer = std::vector<std::string>;
  using ItemField = FormFile::ControlTypes::ItemField;
  using ItemsInfo = FormFile::ControlTypes::ItemsInfo;

  [[noreturn]] void fail(int32_t number, const Pointer& at, const std::string& problem) const {
    throw Error(number, path_ + ": " + FormFile::JsonPointer(at) + ": " + problem);
  }

  // Runs one step of reading; memory running out is reported with its place.
  template <class Step>
  void reading(const Pointer& at, Step step) {
    try {
      step();
    } catch (const std::bad_alloc&) {
      fail(errOutOfMemory, at, "out of memory");
    }
  }

  static Pointer child(Pointer at, const std::string& part) {
    at.push_back(part);
    return at;
  }
  static Pointer child(const Pointer& at, size_t index) { return child(at, std::to_string(index)); }

  void checkObject(const Json& value, const Pointer& at, const std::vector<std::string>& keys,
                   const std::string& what) const {
    if (!value.is_object())
      fail(errTypeMismatch, at, "expected " + what + ", found " + kindOf(value));
    for (const auto& [key, item] : value.items())
      if (std::find(keys.begin(), keys.end(), key) == keys.end())
        fail(errInvalidProcedureCall, child(at, key),
             "unknown key " + QuotedPrefix(key) + " (expected one of " + joined(keys) + ")");
  }

  const Json* find(const Json& object, const std::string& key) const {
    const auto it = object.find(key);
    return it == object.end() ? nullptr : &*it;
  }

  const Json& require(const Json& object, const Pointer& at, const std::string& key) const {
    if (const Json* value = find(object, key)) return *value;
    fail(errTypeMismatch, at, "the key \"" + key + "\" is missing");
  }

  std::string text(const Json& value, const Pointer& at, bool allowEmpty) const {
    if (!value.is_string()) fail(errTypeMismatch, at, "expected text, found " + kindOf(value));
    std::string result = value.get<std::string>();
    if (!allowEmpty && result.empty()) fail(errInvalidPropertyValue, at, "expected non-empty text");
    return result;
  }

  int64_t number(const Json& value, const Pointer& at, int64_t low, int64_t high) const {
    const std::string range = std::to_string(low) + ".." + std::to_string(high);
    if (!value.is_number_integer())
      fail(errTypeMismatch, at, "expected a whole number " + range + ", found " + kindOf(value));
    const bool negative =
        value.is_number_integer() && !value.is_number_unsigned() && value.get<int64_t>() < 0;
    if (!negative && value.get<uint64_t>() > static_cast<uint64_t>(high))
      fail(errInvalidPropertyValue, at,
           "expected a whole number " + range + ", found " + value.dump());
    const int64_t result = value.get<int64_t>();
    if (result < low)
      fail(errInvalidPropertyValue, at,
           "expected a whole number " + range + ", found " + value.dump());
    return result;
  }

  bool boolean(const Json& value, const Pointer& at) const {
    if (!value.is_boolean())
      fail(errTypeMismatch, at, "expected true or false, found " + kindOf(value));
    return value.get<bool>();
  }

  // The one rule for colours: a whole number 0..4294967295.
  OLE_COLOR color(const Json& value, const Pointer& at) const {
    return static_cast<OLE_COLOR>(number(value, at, 0, std::numeric_limits<uint32_t>::max()));
  }

  void readForm(const Json& form) {
    checkObject(form, {}, kFormKeys, "a form object");
    const int64_t version = number(require(form, {}, "version"), {"version"}, 0, 1000);
    if (version != FormFile::kVersion)
      fail(errInvalidPropertyValue, {"version"},
           "expected version " + std::to_string(FormFile::kVersion) + ", found " +
               std::to_string(version));
    if (const Json* caption = find(form, "caption"))
      file_.Caption = text(*caption, {"caption"}, true);
    file_.Width = static_cast<int32_t>(
        number(require(form, {}, "width"), {"width"}, 1, FormFile::kMaxFormSide));
    file_.Height = static_cast<int32_t>(
        number(require(form, {}, "height"), {"height"}, 1, FormFile::kMaxFormSide));
    if (const Json* back = find(form, "backColor")) file_.BackColor = color(*back, {"backColor"});
    if (const Json* font = find(form, kFontKey)) file_.Font = readFont(*font, {kFontKey});
    if (const Json* lists = find(form, "imageLists")) readImageLists(*lists, {"imageLists"});
    if (const Json* controls = find(form, "controls")) readControls(*controls, {"controls"});
  }

  std::shared_ptr<velt::Font> readFont(const Json& value, const Pointer& at) const {
    if (!value.is_object())
      fail(errTypeMismatch, at,
           "expected a font object {\"Name\": ..., \"Size\": ...}, found " + kindOf(value));
    try {
      const PropertyBag bag =
          PropertyBag::FromJsonText(Json{{kFontKey, Json{{"Font", value}}}}.dump());
      return bag.ReadProperty(kFontKey).ToFont();
    } catch (const Error& error) {
      fail(error.Number(), at,
           "expected a font object {\"Name\": ..., \"Size\": ...}: " + error.Description());
    }
  }

  void readImageLists(const Json& lists, const Pointer& at) {
    if (!lists.is_array()) fail(errTypeMismatch, at, "expected an array, found " + kindOf(lists));
    for (size_t i = 0; i < lists.size(); ++i)
      reading(child(at, i), [&] { readImageList(lists[i], child(at, i)); });
  }

  void readImageList(const Json& list, const Pointer& at) {
    checkObject(list, at, kImageListKeys, "an image list object");
    FormFile::ImageListEntry entry;
    entry.Name = text(require(list, at, "name"), child(at, "name"), false);
    if (!listNames_.insert(entry.Name).second)
      fail(errKeyAlreadyExists, child(at, "name"),
           "a second image list named " + QuotedPrefix(entry.Name));
    entry.List = std::make_shared<ImageList>();
    ImageList& imageList = *entry.List;
    if (const Json* width = find(list, "imageWidth"))
      imageList.ImageWidth(static_cast<int16_t>(
          number(*width, child(at, "imageWidth"), 1, ImageList::kMaxImageSize)));
    if (const Json* height = find(list, "imageHeight"))
      imageList.ImageHeight(static_cast<int16_t>(
          number(*height, child(at, "imageHeight"), 1, ImageList::kMaxImageSize)));
    if (const Json* mask = find(list, "maskColor"))
      imageList.MaskColor(color(*mask, child(at, "maskColor")));
    if (const Json* use = find(list, "useMaskColor"))
      imageList.UseMaskColor(boolean(*use, child(at, "useMaskColor")));
    if (const Json* images = find(list, "images")) readImages(*images, child(at, "images"), entry);
    file_.ImageLists.push_back(std::move(entry));
  }

  void readImages(const Json& images, const Pointer& at, FormFile::ImageListEntry& entry) {
    if (!images.is_array()) fail(errTypeMismatch, at, "expected an array, found " + kindOf(images));
    const fs::path folder = fs::path(path_).parent_path();
    for (size_t i = 0; i < images.size(); ++i) {
      const Pointer imageAt = child(at, i);
      checkObject(images[i], imageAt, kImageKeys, "an image object {\"file\": ..., \"key\": ...}");
      const std::string file =
          text(require(images[i], imageAt, "file"), child(imageAt, "file"), false);
      std::string key;
      if (const Json* given = find(images[i], "key"))
        key = text(*given, child(imageAt, "key"), true);
      try {
        reading(imageAt, [&] { addPicture(*entry.List, (folder / file).string(), key); });
      } catch (const Error& error) {
        if (error.Number() == errOutOfMemory) throw;
        fail(error.Number(), child(imageAt, error.Number() == errKeyAlreadyExists ? "key" : "file"),
             error.Description());
      }
      entry.Files.push_back(file);
    }
  }

  // One decoded picture per file, and one scaled copy per file and size, shared
  // by every reference; all of them together within the pixel budget.
  void addPicture(ImageList& list, const std::string& file, const std::string& key) {
    struct stat status {};
    const bool known = ::stat(file.c_str(), &status) == 0;
    const PictureKey identity{known ? status.st_dev : 0, known ? status.st_ino : 0, 0, 0};
    std::shared_ptr<Picture> decoded;
    if (const auto it = decoded_.find(identity); known && it != decoded_.end()) {
      decoded = it->second;
    } else {
      decoded = Png::Read(file, kMaxPicturePixels - usedPixels_);
      usedPixels_ += pixelsOf(*decoded);
      if (known) decoded_[identity] = decoded;
    }
    const int32_t width = list.ImageWidth() ? list.ImageWidth() : decoded->Width();
    const int32_t height = list.ImageHeight() ? list.ImageHeight() : decoded->Height();
    PictureKey sized = identity;
    std::get<2>(sized) = width;
    std::get<3>(sized) = height;
    if (const auto it = scaled_.find(sized); known && it != scaled_.end()) {
      list.ListImages().Add(it->second, key);
      return;
    }
    const bool scaling = width != decoded->Width() || height != decoded->Height();
    const uint64_t pixels = scaling ? uint64_t(width) * uint64_t(height) : 0;
    if (pixels > kMaxPicturePixels - usedPixels_)
      throw Error(errInvalidPicture, "the pictures of the form file take more than " +
                                         std::to_string(kMaxPicturePixels) + " pixels");
    const std::shared_ptr<ListImage> item = list.ListImages().Add(decoded, key);
    usedPixels_ += pixels;
    if (known) scaled_[sized] = item->Picture();
  }

  static uint64_t pixelsOf(const Picture& picture) {
    return uint64_t(picture.Width()) * uint64_t(picture.Height());
  }

  void readControls(const Json& controls, const Pointer& at) {
    if (!controls.is_array())
      fail(errTypeMismatch, at, "expected an array, found " + kindOf(controls));
    for (size_t i = 0; i < controls.size(); ++i)
      reading(child(at, i), [&] { readControl(controls[i], child(at, i)); });
  }

  void readControl(const Json& control, const Pointer& at) {
    if (!control.is_object())
      fail(errTypeMismatch, at, "expected a control object, found " + kindOf(control));
    FormFile::ControlEntry entry;
    const std::string type = text(require(control, at, "type"), child(at, "type"), false);
    std::shared_ptr<UserControl> made;
    try {
      made = types_.CreateControl(type);
    } catch (const Error& error) {
      fail(error.Number(), child(at, "type"), "unknown control type: " + error.Description());
    }
    entry.Type = made->ClassName();
    const std::optional<ItemsInfo> items = types_.FindItems(entry.Type);
    checkControlKeys(control, at, entry.Type, items);
    entry.Name = text(require(control, at, "name"), child(at, "name"), false);
    if (!controlNames_.insert(entry.Name).second)
      fail(errKeyAlreadyExists, child(at, "name"),
           "a second control named " + QuotedPrefix(entry.Name));
    entry.Bounds = readBounds(control, at);
    try {
      Site::CheckPlacement("the control", made.get(), entry.Name, entry.Bounds);
    } catch (const Error& error) {
      fail(error.Number(), at, error.Description());
    }
    if (const Json* properties = find(control, "properties")) {
      entry.Properties = readProperties(*properties, child(at, "properties"), entry.Type);
    }
    if (items) readItems(control, at, *items, *made, entry);
    file_.Controls.push_back(std::move(entry));
  }

  // A type that owns a collection also takes "items" and the collection's
  // settings.
  void checkControlKeys(const Json& control, const Pointer& at, const std::string& type,
                        const std::optional<ItemsInfo>& items) const {
    std::vector<std::string> keys = kControlKeys;
    if (items) {
      keys.push_back(kItemsKey);
      for (const ItemField& setting : items->Settings)
        keys.push_back(setting.Name);
    } else if (find(control, kItemsKey)) {
      fail(errInvalidProcedureCall, child(at, kItemsKey), type + " owns no collection of items");
    }
    checkObject(control, at, keys, "a control object");
  }

  // The entries are added to the control made for checking, so what the
  // collection itself refuses (a key used twice) is found before anything is
  // created.
  void readItems(const Json& control, const Pointer& at, const ItemsInfo& info, UserControl& made,
                 FormFile::ControlEntry& entry) const {
    entry.ItemSettings = readItemRecord(control, at, info.Settings);
    const Pointer itemsAt = child(at, kItemsKey);
    if (const Json* items = find(control, kItemsKey)) {
      if (!items->is_array())
        fail(errTypeMismatch, itemsAt, "expected an array of items, found " + kindOf(*items));
      if (items->size() > kMaxItems)
        fail(errOverflow, itemsAt,
             "more than " + std::to_string(kMaxItems) + " items (" + std::to_string(items->size()) +
                 ")");
      std::vector<std::string> names;
      for (const ItemField& field : info.Fields)
        names.push_back(field.Name);
      for (size_t i = 0; i < items->size(); ++i) {
        checkObject((*items)[i], child(itemsAt, i), names, "an item object");
        entry.Items.push_back(readItemRecord((*items)[i], child(itemsAt, i), info.Fields));
      }
    }
    try {
      types_.ApplyItemSettings(made, entry.ItemSettings);
    } catch (const Error& error) {
      fail(error.Number(), at, error.Description());
    }
    for (size_t i = 0; i < entry.Items.size(); ++i) {
      try {
        types_.AddItem(made, entry.Items[i]);
      } catch (const Error& error) {
        fail(error.Number(), child(itemsAt, i), error.Description());
      }
    }
  }

  PropertyBag readItemRecord(const Json& object, const Pointer& at,
                             const std::vector<ItemField>& fields) const {
    PropertyBag record;
    for (const ItemField& field : fields)
      if (const Json* value = find(object, field.Name))
        record.WriteProperty(field.Name, itemValue(*value, child(at, field.Name), field));
    return record;
  }

  Variant itemValue(const Json& value, const Pointer& at, const ItemField& field) const {
    if (!field.Records.empty())
      return Variant(std::shared_ptr<Object>(itemRecords(value, at, field)));
    switch (field.Type) {
      case VariantType::Boolean:
        return Variant(boolean(value, at));
      case VariantType::Integer:
        return Variant(static_cast<int16_t>(number(value, at, field.Low, field.High)));
      case VariantType::Long:
        return Variant(static_cast<int32_t>(number(value, at, field.Low, field.High)));
      default:
        return Variant(text(value, at, true));
    }
  }

  std::shared_ptr<FormFile::ItemRecords> itemRecords(const Json& value, const Pointer& at,
                                                     const ItemField& field) const {
    if (!value.is_array())
      fail(errTypeMismatch, at, "expected an array of records, found " + kindOf(value));
    if (value.size() > kMaxItems)
      fail(errOverflow, at,
           "more than " + std::to_string(kMaxItems) + " records (" + std::to_string(value.size()) +
               ")");
    std::vector<std::string> names;
    for (const ItemField& nested : field.Records)
      names.push_back(nested.Name);
    auto records = std::make_shared<FormFile::ItemRecords>();
    for (size_t i = 0; i < value.size(); ++i) {
      checkObject(value[i], child(at, i), names, "a record object");
      records->Records.push_back(readItemRecord(value[i], child(at, i), field.Records));
    }
    return records;
  }

  RectL readBounds(const Json& control, const Pointer& at) const {
    const auto coordinate = [&](const char* key, int64_t low, int64_t high) {
      return static_cast<int32_t>(number(require(control, at, key), child(at, key), low, high));
    };
    const int32_t left = coordinate("left", -kMaxPosition, kMaxPosition);
    const int32_t top = coordinate("top", -kMaxPosition, kMaxPosition);
    const int32_t width = coordinate("width", 0, Site::kMaxSize);
    const int32_t height = coordinate("height", 0, Site::kMaxSize);
    return RectL{left, top, left + width, top + height};
  }

  PropertyBag readProperties(const Json& properties, const Pointer& at, const std::string& type) {
    if (!properties.is_object())
      fail(errTypeMismatch, at,
           "expected an object of stored properties, found " + kindOf(properties));
    PropertyBag bag = PropertyBag::FromJsonText(properties.dump());
    const std::vector<FormFile::ImageListEntry>& lists = file_.ImageLists;
    bag.Resolver([&lists](const std::string& name) -> std::shared_ptr<Object> {
      for (const FormFile::ImageListEntry& entry : lists)
        if (entry.Name == name) return entry.List;
      return nullptr;
    });
    for (const auto& [key, value] : properties.items())
      checkProperty(bag, key, value, child(at, key), type);
    return bag;
  }

  void checkProperty(const PropertyBag& bag, const std::string& key, const Json& raw,
                     const Pointer& at, const std::string& type) const {
    const std::optional<FormFile::ControlTypes::PropertyInfo> info = types_.FindProperty(type, key);
    if (!info)
      fail(errInvalidProcedureCall, at, type + " has no stored property " + QuotedPrefix(key));
    if (info->Name != key)
      fail(errInvalidProcedureCall, at,
           type + " has no stored property " + QuotedPrefix(key) +
               " (names are case-sensitive: \"" + info->Name + "\")");
    const std::string expected = "expected " + expectedValue(info->Type);
    if (raw.is_null() && info->Type != VariantType::Object)
      fail(errTypeMismatch, at, expected + ", found null");
    Variant value;
    try {
      value = bag.ReadProperty(key);
    } catch (const Error& error) {
      fail(error.Number(), at, expected + ": " + error.Description());
    }
    try {
      value.ChangeType(info->Type);
    } catch (const Error& error) {
      fail(error.Number(), at,
           expected + ", found " + kindOf(raw) + " (" + error.Description() + ")");
    }
    if (info->Type == VariantType::Color) checkColor(value, raw, at);
  }

  // Stored colours follow the form's rule, converted values (text) too.
  void checkColor(const Variant& value, const Json& raw, const Pointer& at) const {
    const double number =
        raw.is_number() ? raw.get<double>() : value.ChangeType(VariantType::Double).ToDouble();
    if (!(number >= 0 && number <= std::numeric_limits<uint32_t>::max()) ||
        number != std::floor(number))
      fail(errInvalidPropertyValue, at,
           "expected a colour, a whole number 0..4294967295, found " + kindOf(raw));
  }

  // Device, inode, and the width and height a list scaled the picture to.
  using PictureKey = std::tuple<dev_t, ino_t, int32_t, int32_t>;

  std::string path_;
  const FormFile::ControlTypes& types_;
  FormFile& file_;
  std::unordered_set<std::string> controlNames_;
  std::unordered_set<std::string> listNames_;
  std::map<PictureKey, std::shared_ptr<Picture>> decoded_;
  std::map<PictureKey, std::shared_ptr<Picture>> scaled_;
  uint64_t usedPixels_ = 0;
};

}  // namespace

std::string FormFile::JsonPointer(const std::vector<std::string>& parts) {
  return JsonPointerText(parts);
}

FormFile FormFile::Load(const std::string& path, const ControlTypes& types) {
  return Parse(RegularFile::ReadText(path, kMaxFormFileBytes), path, types);
}

FormFile FormFile::Parse(std::string_view text, const std::string& path,
                         const ControlTypes& types) {
  FormFile file;
  file.Path = path;
  Reader(path, types, file).Read(text);
  for (ControlEntry& control : file.Controls)
    file.bindNames(control.Properties);
  return file;
}

void FormFile::bindNames(PropertyBag& bag) const {
  std::vector<std::pair<std::string, std::shared_ptr<ImageList>>> names;
  for (const ImageListEntry& entry : ImageLists)
    names.emplace_back(entry.Name, entry.List);
  bag.Resolver([names](const std::string& name) -> std::shared_ptr<Object> {
    for (const auto& [listName, list] : names)
      if (listName == name) return list;
    return nullptr;
  });
  bag.Namer([names](const Object& object) -> std::string {
    for (const auto& [listName, list] : names)
      if (list.get() == &object) return listName;
    return {};
  });
}

std::unique_ptr<Form> FormFile::CreateForm(std::shared_ptr<WindowSystem> system,
                                           const ControlTypes& types) const {
  auto form = std::make_unique<Form>(std::move(system), Caption, Width, Height);
  if (BackColor) form->BackColor(*BackColor);
  if (Font) form->Font(Font->Clone());
  for (size_t i = 0; i < Controls.size(); ++i) {
    const ControlEntry& entry = Controls[i];
    PropertyBag bag = entry.Properties;
    bindNames(bag);
    try {
      const std::shared_ptr<UserControl> control = types.CreateControl(entry.Type);
      form->AddControl(control, entry.Name, entry.Bounds.Left, entry.Bounds.Top,
                       entry.Bounds.Width(), entry.Bounds.Height(), &bag);
      if (entry.ItemSettings.Count() != 0 || !entry.Items.empty()) {
        types.ApplyItemSettings(*control, entry.ItemSettings);
        for (const PropertyBag& item : entry.Items)
          types.AddItem(*control, item);
      }
    } catch (const Error& error) {
      throw Error(error.Number(), (Path.empty() ? std::string("form file") : Path) + ": " +
                                      JsonPointer({"controls", std::to_string(i)}) + ": " +
                                      entry.Type + " " + QuotedPrefix(entry.Name) +
                                      " cannot be created: " + error.Description());
    } catch (const std::bad_alloc&) {
      throw Error(errOutOfMemory, (Path.empty() ? std::string("form file") : Path) + ": " +
                                      JsonPointer({"controls", std::to_string(i)}) + ": " +
                                      entry.Type + " " + QuotedPrefix(entry.Name) +
                                      " cannot be created: out of memory");
    }
  }
  return form;
}

FormFile FormFile::Capture(Form& form, const ControlTypes& types,
                           std::vector<ImageListEntry> imageLists) {
  FormFile file;
  file.Caption = form.Name();
  const RectL rect = form.WindowRect();
  file.Width = rect.Width();
  file.Height = rect.Height();
  if (form.BackColor() != FormWindow::kDefaultBackColor) file.BackColor = form.BackColor();
  if (form.Font() && !form.Font()->SameLook(*Font::Ambient())) file.Font = form.Font()->Clone();
  file.ImageLists = std::move(imageLists);
  for (Site* site : form.Sites()) {
    ControlEntry entry;
    entry.Type = site->Control()->ClassName();
    entry.Name = site->Name();
    entry.Bounds = site->Bounds();
    form.WriteProperties(*site, entry.Properties);
    if (types.FindItems(entry.Type)) {
      entry.ItemSettings = types.ItemSettings(*site->Control());
      entry.Items = types.Items(*site->Control());
    }
    for (const std::string& key : entry.Properties.Keys()) {
      const Variant value = entry.Properties.ReadProperty(key);
      if (value.Type() != VariantType::Object) continue;
      auto list = std::dynamic_pointer_cast<ImageList>(value.ToObject());
      const auto known = [&list](const ImageListEntry& e) { return e.List == list; };
      if (!list || std::any_of(file.ImageLists.begin(), file.ImageLists.end(), known)) continue;
      std::string name;
      for (int n = 1; name.empty(); ++n) {
        name = "ImageList" + std::to_string(n);
        const auto taken = [&name](const ImageListEntry& e) { return e.Name == name; };
        if (std::any_of(file.ImageLists.begin(), file.ImageLists.end(), taken)) name.clear();
      }
      file.ImageLists.push_back(ImageListEntry{name, list, {}});
    }
    file.Controls.push_back(std::move(entry));
  }
  return file;
}

FormFile FormFile::withFileNames(const std::string& path) const {
  FormFile file = *this;
  const std::string stem = path.empty() ? "form" : fileNamePart(fs::path(path).stem().string());
  for (ImageListEntry& entry : file.ImageLists) {
    if (!entry.List)
      throw Error(errObjectNotSet, "FormFile: the image list \"" + entry.Name + "\" is not set");
    const int32_t count = entry.List->ListImages().Count();
    entry.Files.resize(static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i)
      if (entry.Files[i].empty())
        entry.Files[i] =
            stem + "-" + fileNamePart(entry.Name) + "-" + std::to_string(i + 1) + ".png";
  }
  return file;
}

std::string FormFile::ToJsonText() const {
  const FormFile file = withFileNames(Path);
  Json document = Json::object();
  document["version"] = kVersion;
  document["caption"] = file.Caption;
  document["width"] = file.Width;
  document["height"] = file.Height;
  if (file.BackColor) document["backColor"] = *file.BackColor;
  if (file.Font) {
    PropertyBag bag;
    bag.WriteProperty(kFontKey, Variant(file.Font));
    document[kFontKey] = Json::parse(bag.ToJsonText())[kFontKey]["Font"];
  }
  if (!file.ImageLists.empty()) {
    Json lists = Json::array();
    for (const ImageListEntry& entry : file.ImageLists) {
      const ImageList& list = *entry.List;
      Json item = {{"name", entry.Name},
                   {"imageWidth", list.ImageWidth()},
                   {"imageHeight", list.ImageHeight()},
                   {"maskColor", list.MaskColor()},
                   {"useMaskColor", list.UseMaskColor()}};
      if (list.ImageWidth() == 0) item.erase("imageWidth");
      if (list.ImageHeight() == 0) item.erase("imageHeight");
      Json images = Json::array();
      for (int32_t i = 1; i <= list.ListImages().Count(); ++i) {
        Json image = {{"file", entry.Files[static_cast<size_t>(i - 1)]}};
        const std::string& key = list.ListImages().Item(i)->Key();
        if (!key.empty()) image["key"] = key;
        images.push_back(std::move(image));
      }
      item["images"] = std::move(images);
      lists.push_back(std::move(item));
    }
    document["imageLists"] = std::move(lists);
  }
  Json controls = Json::array();
  for (size_t i = 0; i < file.Controls.size(); ++i) {
    const ControlEntry& entry = file.Controls[i];
    PropertyBag bag = entry.Properties;
    file.bindNames(bag);
    Json properties;
    try {
      properties = Json::parse(bag.ToJsonText());
    } catch (const Error& error) {
      throw Error(error.Number(), JsonPointer({"controls", std::to_string(i), "properties"}) +
                                      ": " + error.Description());
    }
    Json control = {{"type", entry.Type},
                    {"name", entry.Name},
                    {"left", entry.Bounds.Left},
                    {"top", entry.Bounds.Top},
                    {"width", entry.Bounds.Width()},
                    {"height", entry.Bounds.Height()}};
    if (!properties.empty()) control["properties"] = std::move(properties);
    const Json settings = itemRecordJson(entry.ItemSettings);
    for (const auto& [key, value] : settings.items())
      control[key] = value;
    // Reading refuses more, so they are not written.
    if (entry.Items.size() > kMaxItems)
      throw Error(errOverflow, JsonPointer({"controls", std::to_string(i), kItemsKey}) +
                                   ": more than " + std::to_string(kMaxItems) + " items (" +
                                   std::to_string(entry.Items.size()) + ")");
    if (!entry.Items.empty()) {
      Json items = Json::array();
      for (const PropertyBag& item : entry.Items)
        items.push_back(itemRecordJson(item));
      control[kItemsKey] = std::move(items);
    }
    controls.push_back(std::move(control));
  }
  document["controls"] = std::move(controls);
  return document.dump(2) + "\n";
}

void FormFile::Save(const std::string& path) const {
  // Pictures go into the output's folder or below it, never elsewhere: a name
  // that would lead out of it is replaced by one made from the form's name.
  FormFile below = *this;
  for (ImageListEntry& entry : below.ImageLists)
    for (std::string& file : entry.Files)
      if (!staysBelow(file)) file.clear();
  FormFile file = below.withFileNames(path);
  file.Path = path;
  const std::string text = file.ToJsonText();
  const fs::path folder = fs::path(path).parent_path();
  for (const ImageListEntry& entry : file.ImageLists) {
    for (int32_t i = 1; i <= entry.List->ListImages().Count(); ++i) {
      const std::shared_ptr<Picture> picture = entry.List->ListImages().Item(i)->Picture();
      const fs::path target =
          folder / fs::path(entry.Files[static_cast<size_t>(i - 1)]).lexically_normal();
      if (holdsPicture(target, *picture)) continue;
      std::error_code code;
      if (target.has_parent_path()) fs::create_directories(target.parent_path(), code);
      Png::Write(target.string(), *picture);
    }
  }
  ReplaceFile(path, [&text](std::FILE* stream) { writeText(stream, text); });
}

}  // namespace velt
