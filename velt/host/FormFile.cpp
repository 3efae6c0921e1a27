#include "velt/host/FormFile.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <utility>

#include <nlohmann/json.hpp>

#include "velt/host/Form.hpp"
#include "velt/host/FormWindow.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/Png.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

namespace {

constexpr const char* kFontKey = "font";
constexpr int64_t kMaxPosition = 100'000'000;

const std::vector<std::string> kFormKeys = {"version",   "caption", "width",      "height",
                                            "backColor", "font",    "imageLists", "controls"};
const std::vector<std::string> kImageListKeys = {"name",      "imageWidth",   "imageHeight",
                                                 "maskColor", "useMaskColor", "images"};
const std::vector<std::string> kImageKeys = {"file", "key"};
const std::vector<std::string> kControlKeys = {"type",  "name",   "left",      "top",
                                               "width", "height", "properties"};

std::string withoutLibraryPrefix(const std::string& message) {
  // nlohmann's messages start with "[json.exception.parse_error.101] ".
  if (!message.empty() && message.front() == '[') {
    const auto end = message.find("] ");
    if (end != std::string::npos) return message.substr(end + 2);
  }
  return message;
}

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words)
    text += (text.empty() ? "" : ", ") + word;
  return text;
}

std::string kindOf(const Json& value) {
  if (value.is_number_integer()) return "the whole number " + value.dump();
  if (value.is_number_float()) return "the number " + value.dump();
  if (value.is_string()) return "the text " + value.dump();
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

std::string readWholeFile(const std::string& path) {
  std::error_code code;
  if (!fs::is_regular_file(path, code)) {
    if (fs::exists(path, code))
      throw Error(errPathFileAccess, path + ": not a file that can be read");
    throw Error(errFileNotFound, path + ": no such file");
  }
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  if (!file && !file.eof()) throw Error(errPathFileAccess, path + ": cannot be read");
  return text.str();
}

// Writes through a temporary file in the target's folder, renamed over the
// target once complete.
template <class Write>
void replaceFile(const fs::path& target, Write write) {
  fs::path temporary = target;
  temporary.replace_filename("." + target.filename().string() + ".tmp");
  try {
    write(temporary.string());
    fs::rename(temporary, target);
  } catch (const fs::filesystem_error& error) {
    std::error_code ignored;
    fs::remove(temporary, ignored);
    throw Error(errPathFileAccess, target.string() + ": cannot be written (" + error.what() + ")");
  } catch (...) {
    std::error_code ignored;
    fs::remove(temporary, ignored);
    throw;
  }
}

void writeText(const std::string& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << text;
  file.close();
  if (!file) throw Error(errPathFileAccess, path + ": cannot be written");
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
      document = Json::parse(text.begin(), text.end());
    } catch (const Json::exception& error) {
      fail(errTypeMismatch, {}, "not valid JSON: " + withoutLibraryPrefix(error.what()));
    }
    readForm(document);
  }

 private:
  using Pointer = std::vector<std::string>;

  [[noreturn]] void fail(int32_t number, const Pointer& at, const std::string& problem) const {
    const std::string where = at.empty() ? "/" : FormFile::JsonPointer(at);
    throw Error(number, path_ + ": " + where + ": " + problem);
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
             "unknown key \"" + key + "\" (expected one of " + joined(keys) + ")");
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
      readImageList(lists[i], child(at, i));
  }

  void readImageList(const Json& list, const Pointer& at) {
    checkObject(list, at, kImageListKeys, "an image list object");
    FormFile::ImageListEntry entry;
    entry.Name = text(require(list, at, "name"), child(at, "name"), false);
    for (const FormFile::ImageListEntry& other : file_.ImageLists)
      if (other.Name == entry.Name)
        fail(errKeyAlreadyExists, child(at, "name"),
             "a second image list named \"" + entry.Name + "\"");
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
        entry.List->ListImages().Add((folder / file).string(), key);
      } catch (const Error& error) {
        fail(error.Number(), child(imageAt, error.Number() == errKeyAlreadyExists ? "key" : "file"),
             error.Description());
      }
      entry.Files.push_back(file);
    }
  }

  void readControls(const Json& controls, const Pointer& at) {
    if (!controls.is_array())
      fail(errTypeMismatch, at, "expected an array, found " + kindOf(controls));
    for (size_t i = 0; i < controls.size(); ++i)
      readControl(controls[i], child(at, i));
  }

  void readControl(const Json& control, const Pointer& at) {
    checkObject(control, at, kControlKeys, "a control object");
    FormFile::ControlEntry entry;
    const std::string type = text(require(control, at, "type"), child(at, "type"), false);
    std::shared_ptr<UserControl> made;
    try {
      made = types_.CreateControl(type);
    } catch (const Error& error) {
      fail(error.Number(), child(at, "type"), "unknown control type: " + error.Description());
    }
    entry.Type = made->ClassName();
    entry.Name = text(require(control, at, "name"), child(at, "name"), false);
    for (const FormFile::ControlEntry& other : file_.Controls)
      if (other.Name == entry.Name)
        fail(errKeyAlreadyExists, child(at, "name"),
             "a second control named \"" + entry.Name + "\"");
    entry.Bounds = readBounds(control, at);
    try {
      Site::CheckPlacement("the control", made.get(), entry.Name, entry.Bounds);
    } catch (const Error& error) {
      fail(error.Number(), at, error.Description());
    }
    if (const Json* properties = find(control, "properties")) {
      entry.Properties = readProperties(*properties, child(at, "properties"), entry.Type);
    }
    file_.Controls.push_back(std::move(entry));
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
    if (!info) fail(errInvalidProcedureCall, at, type + " has no stored property \"" + key + "\"");
    if (info->Name != key)
      fail(errInvalidProcedureCall, at,
           type + " has no stored property \"" + key + "\" (names are case-sensitive: \"" +
               info->Name + "\")");
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
  }

  std::string path_;
  const FormFile::ControlTypes& types_;
  FormFile& file_;
};

}  // namespace

std::string FormFile::JsonPointer(const std::vector<std::string>& parts) {
  std::string pointer;
  for (const std::string& part : parts) {
    pointer += '/';
    for (char c : part) {
      if (c == '~')
        pointer += "~0";
      else if (c == '/')
        pointer += "~1";
      else
        pointer += c;
    }
  }
  return pointer;
}

FormFile FormFile::Load(const std::string& path, const ControlTypes& types) {
  return Parse(readWholeFile(path), path, types);
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
      form->AddControl(types.CreateControl(entry.Type), entry.Name, entry.Bounds.Left,
                       entry.Bounds.Top, entry.Bounds.Width(), entry.Bounds.Height(), &bag);
    } catch (const Error& error) {
      throw Error(error.Number(), (Path.empty() ? std::string("form file") : Path) + ": " +
                                      JsonPointer({"controls", std::to_string(i)}) + ": " +
                                      entry.Type + " \"" + entry.Name +
                                      "\" cannot be created: " + error.Description());
    }
  }
  return form;
}

FormFile FormFile::Capture(Form& form, std::vector<ImageListEntry> imageLists) {
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
    controls.push_back(std::move(control));
  }
  document["controls"] = std::move(controls);
  return document.dump(2) + "\n";
}

void FormFile::Save(const std::string& path) const {
  FormFile file = withFileNames(path);
  file.Path = path;
  const std::string text = file.ToJsonText();
  const fs::path folder = fs::path(path).parent_path();
  for (const ImageListEntry& entry : file.ImageLists) {
    for (int32_t i = 1; i <= entry.List->ListImages().Count(); ++i) {
      const std::shared_ptr<Picture> picture = entry.List->ListImages().Item(i)->Picture();
      const fs::path target = folder / entry.Files[static_cast<size_t>(i - 1)];
      if (holdsPicture(target, *picture)) continue;
      std::error_code code;
      if (target.has_parent_path()) fs::create_directories(target.parent_path(), code);
      replaceFile(target,
                  [&picture](const std::string& temporary) { Png::Write(temporary, *picture); });
    }
  }
  replaceFile(fs::path(path),
              [&text](const std::string& temporary) { writeText(temporary, text); });
}

}  // namespace velt
