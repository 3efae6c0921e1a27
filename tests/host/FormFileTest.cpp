// Form files: reading (with every check naming the JSON path), creating the
// form, capturing it again and saving, pictures beside the file included.

#include "velt/host/FormFile.hpp"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "support/ExpectError.hpp"
#include "support/HeadlessForm.hpp"
#include "velt/controls/ControlRegistry.hpp"
#include "velt/controls/buttons/veltButton.hpp"
#include "velt/controls/text/veltLabel.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/Png.hpp"

namespace velt {
namespace {

namespace fs = std::filesystem;

const FormFile::ControlTypes& types() {
  return ControlRegistry::Standard();
}

std::shared_ptr<Picture> square(uint32_t argb, int32_t size = 16) {
  auto picture = std::make_shared<Picture>(size, size);
  for (int32_t y = 0; y < size; ++y)
    for (int32_t x = 0; x < size; ++x)
      picture->Pixel(x, y, (x + y) % 3 == 0 ? argb : 0xFF000000u | (argb ^ 0x00FFFFFFu));
  return picture;
}

std::string readText(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void writeText(const fs::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

std::vector<std::string> filesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    if (entry.is_regular_file()) names.push_back(fs::relative(entry.path(), folder).string());
  std::sort(names.begin(), names.end());
  return names;
}

// A folder of its own per test, removed afterwards.
class FormFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    folder = fs::temp_directory_path() /
             ("velt-formfile-" + std::to_string(getpid()) + "-" +
              ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(folder);
    fs::create_directories(folder / "icons");
    Png::Write((folder / "icons" / "red.png").string(), *square(0xFFFF0000));
    Png::Write((folder / "icons" / "blue.png").string(), *square(0xFF0000FF));
  }
  void TearDown() override { fs::remove_all(folder); }

  // The file's controls' text with one control's part replaced.
  FormFile parse(const std::string& text) {
    return FormFile::Parse(text, (folder / "form.json").string(), types());
  }
  std::unique_ptr<Form> create(const FormFile& file) { return file.CreateForm(system, types()); }

  fs::path folder;
  std::shared_ptr<HeadlessWindowSystem> system = std::make_shared<HeadlessWindowSystem>();
};

constexpr const char* kShowcase = R"({
  "version": 1,
  "caption": "Settings",
  "width": 300,
  "height": 200,
  "backColor": 15790320,
  "font": {"Name": "DejaVu Sans", "Size": 9},
  "imageLists": [
    {"name": "Icons", "imageWidth": 16, "imageHeight": 16,
     "images": [{"file": "icons/red.png", "key": "red"}, {"file": "icons/blue.png"}]}
  ],
  "controls": [
    {"type": "veltButton", "name": "ok", "left": 10, "top": 150, "width": 100, "height": 30,
     "properties": {"Caption": "OK", "BackColor": 16711680, "ImageList": {"Ref": "Icons"},
                    "ImageIndex": 2, "Enabled": false,
                    "Font": {"Font": {"Name": "DejaVu Sans", "Size": 12, "Bold": true}}}},
    {"type": "VELTSLIDER", "name": "volume", "left": 10, "top": 10, "width": 150, "height": 25,
     "properties": {"Max": 20, "Value": 15, "TickStyle": 2}},
    {"type": "veltLabel", "name": "note", "left": 10, "top": 60, "width": 200, "height": 40,
     "properties": {"Caption": "Line one and two", "TextWrap": true, "Hyperlink": "x:y",
                    "ImageList": {"Ref": "Icons"}, "ImageIndex": 1}},
    {"type": "veltProgressBar", "name": "done", "left": 10, "top": 110, "width": 200,
     "height": 20, "properties": {"Value": 70, "Style": 1, "Caption": "Busy"}},
    {"type": "veltColorPicker", "name": "accent", "left": 180, "top": 10, "width": 110,
     "height": 85, "properties": {"Color": 255}},
    {"type": "veltTab", "name": "tab", "left": 250, "top": 150, "width": 40, "height": 40}
  ]
})";

TEST_F(FormFileTest, ReadingCreatesTheFormWithItsControlsInOrderAndTheirStoredProperties) {
  const FormFile file = parse(kShowcase);
  std::unique_ptr<Form> form = create(file);

  EXPECT_EQ(form->Name(), "Settings");
  EXPECT_EQ(form->WindowRect().Width(), 300);
  EXPECT_EQ(form->WindowRect().Height(), 200);
  EXPECT_EQ(form->BackColor(), 15790320u);
  EXPECT_EQ(form->Font()->Name(), "DejaVu Sans");
  EXPECT_EQ(form->Font()->Size(), 9.0f);

  std::vector<std::string> order;
  for (Site* site : form->Sites())
    order.push_back(site->Name() + ":" + site->Control()->ClassName());
  EXPECT_EQ(order, (std::vector<std::string>{"ok:veltButton", "volume:veltSlider", "note:veltLabel",
                                             "done:veltProgressBar", "accent:veltColorPicker",
                                             "tab:veltTab"}));
  EXPECT_EQ(form->FindSite("volume")->Bounds(), (RectL{10, 10, 160, 35}));

  auto ok = std::dynamic_pointer_cast<veltButton>(form->FindSite("ok")->Control());
  EXPECT_EQ(ok->Caption(), "OK");
  EXPECT_EQ(ok->BackColor(), 16711680u);
  EXPECT_FALSE(ok->Enabled());
  EXPECT_EQ(ok->ImageIndex(), 2);
  EXPECT_TRUE(ok->Font()->Bold());
  EXPECT_EQ(ok->Font()->Size(), 12.0f);
  ASSERT_NE(ok->ImageList(), nullptr);
  EXPECT_EQ(ok->ImageList()->ListImages().Count(), 2);
  EXPECT_EQ(ok->ImageList()->ListImages().Item(1)->Key(), "red");
  EXPECT_EQ(ok->ImageList()->ListImages().Item(2)->Picture()->Pixel(0, 0), 0xFF0000FFu);

  // Both controls refer to the one image list of the form.
  auto note = std::dynamic_pointer_cast<veltLabel>(form->FindSite("note")->Control());
  EXPECT_EQ(note->ImageList(), ok->ImageList());
  EXPECT_TRUE(note->TextWrap());
  EXPECT_EQ(note->Hyperlink(), "x:y");
}

// Saving replaces an existing file whole, writes the pictures beside it and
// leaves no temporary files; reading it again gives the same bags, and a second
// round writes the same text.
TEST_F(FormFileTest, SavingWritesThePicturesBesideTheFileAndReadsBackTheSame) {
  const FormFile first = parse(kShowcase);
  std::unique_ptr<Form> form = create(first);
  const fs::path saved = folder / "out" / "saved.json";
  fs::create_directories(saved.parent_path());
  writeText(saved, "old content");
  FormFile::Capture(*form, first.ImageLists).Save(saved.string());
  EXPECT_EQ(filesIn(folder / "out"),
            (std::vector<std::string>{"icons/blue.png", "icons/red.png", "saved.json"}));
  const auto copied = Png::Read((folder / "out" / "icons" / "red.png").string());
  EXPECT_EQ(copied->Pixel(0, 0), 0xFFFF0000u);
  EXPECT_EQ(copied->Pixel(1, 0), 0xFF00FFFFu);

  const FormFile second = FormFile::Load(saved.string(), types());
  ASSERT_EQ(second.Controls.size(), first.Controls.size());
  for (size_t i = 0; i < first.Controls.size(); ++i) {
    const FormFile::ControlEntry& before = first.Controls[i];
    const FormFile::ControlEntry& after = second.Controls[i];
    SCOPED_TRACE(before.Name);
    EXPECT_EQ(after.Type + after.Name, before.Type + before.Name);
    EXPECT_EQ(after.Bounds, before.Bounds);
    // The file states no defaults, so every value it holds is stored again.
    EXPECT_EQ(after.Properties.Keys().size(), before.Properties.Keys().size());
    for (const std::string& key : before.Properties.Keys()) {
      const Variant was = before.Properties.ReadProperty(key);
      const Variant is = after.Properties.ReadProperty(key);
      if (was.Type() == VariantType::Font)
        EXPECT_TRUE(is.ToFont() && is.ToFont()->SameLook(*was.ToFont())) << key;
      else if (was.Type() == VariantType::Object)
        EXPECT_EQ(is.TypeName(), was.TypeName()) << key;
      else
        EXPECT_EQ(is, was) << key << ": " << is.ToString() << " vs " << was.ToString();
    }
  }
  EXPECT_EQ(second.ImageLists.at(0).Files,
            (std::vector<std::string>{"icons/red.png", "icons/blue.png"}));
  const fs::path resaved = folder / "out" / "resaved.json";
  FormFile::Capture(*create(second), second.ImageLists).Save(resaved.string());
  EXPECT_EQ(readText(resaved), readText(saved));
}

TEST_F(FormFileTest, ImageListsMadeInCodeGetNamesAndPictureFilesOfTheirOwn) {
  test::HeadlessForm hf;
  auto list = std::make_shared<ImageList>();
  list->ListImages().Add(square(0xFF00FF00), "green");
  auto button = hf.form.Add<veltButton>("go", 5, 5, 100, 30);
  button->ImageList(list);
  button->ImageIndex(1);
  auto plain = hf.form.Add<veltButton>("plain", 5, 45, 100, 30);

  const fs::path path = folder / "made.json";
  FormFile::Capture(hf.form).Save(path.string());
  EXPECT_TRUE(fs::exists(folder / "made-ImageList1-1.png"));

  const FormFile loaded = FormFile::Load(path.string(), types());
  ASSERT_EQ(loaded.ImageLists.size(), 1u);
  EXPECT_EQ(loaded.ImageLists[0].Name, "ImageList1");
  EXPECT_EQ(loaded.ImageLists[0].List->ListImages().Item(1)->Key(), "green");
  std::unique_ptr<Form> form = create(loaded);
  auto loadedButton = std::dynamic_pointer_cast<veltButton>(form->FindSite("go")->Control());
  ASSERT_NE(loadedButton->ImageList(), nullptr);
  EXPECT_EQ(loadedButton->ImageList()->ListImages().Item(1)->Picture()->Pixel(0, 0), 0xFF00FF00u);
  EXPECT_EQ(std::dynamic_pointer_cast<veltButton>(form->FindSite("plain")->Control())->ImageList(),
            nullptr);
}

TEST_F(FormFileTest, AFormThatCannotBeStoredWritesNothing) {
  test::HeadlessForm hf;
  auto label = hf.form.Add<veltLabel>("pointer", 0, 0, 100, 20);
  label->MouseIcon(square(0xFF123456));  // a picture: no image list to refer to
  const fs::path path = folder / "kept.json";
  writeText(path, "the old form");
  const std::string message =
      test::errorOf(errObjectNotSet, [&] { FormFile::Capture(hf.form).Save(path.string()); });
  EXPECT_NE(message.find("/controls/0/properties"), std::string::npos) << message;
  EXPECT_EQ(readText(path), "the old form");
  EXPECT_EQ(filesIn(folder),
            (std::vector<std::string>{"icons/blue.png", "icons/red.png", "kept.json"}));
}

struct BadFile {
  const char* what;
  std::string json;
  int32_t number;
  std::string pointer;
  std::string expectation;
};

std::string withControl(const std::string& control) {
  return R"({"version": 1, "width": 100, "height": 100, "controls": [
    {"type": "veltButton", "name": "first", "left": 0, "top": 0, "width": 10, "height": 10},
    )" + control +
         "]}";
}

std::string withImages(const std::string& images) {
  return R"({"version": 1, "width": 100, "height": 100,
             "imageLists": [{"name": "Icons", "images": )" +
         images + "}]}";
}

TEST_F(FormFileTest, EveryMistakeNamesTheFileThePathAndWhatWasExpected) {
  const std::string button =
      R"("type": "veltButton", "name": "b", "left": 0, "top": 0, "width": 9, "height": 9)";
  const std::vector<BadFile> cases = {
      {"no JSON", "{\"version\": 1,", errTypeMismatch, ": /: ", "not valid JSON"},
      {"an array", "[]", errTypeMismatch, ": /: ", "expected a form object"},
      {"no version", R"({"width": 1, "height": 1})", errTypeMismatch,
       ": /: ", "\"version\" is missing"},
      {"a later version", R"({"version": 2, "width": 1, "height": 1})", errInvalidPropertyValue,
       ": /version: ", "expected version 1"},
      {"a zero width", R"({"version": 1, "width": 0, "height": 1})", errInvalidPropertyValue,
       ": /width: ", "1..16384"},
      {"a height as text", R"({"version": 1, "width": 5, "height": "5"})", errTypeMismatch,
       ": /height: ", "expected a whole number"},
      {"an unknown key", R"({"version": 1, "width": 5, "height": 5, "colour": 1})",
       errInvalidProcedureCall, ": /colour: ", "unknown key"},
      {"a font without name", R"({"version": 1, "width": 5, "height": 5, "font": {"Size": 9}})",
       errTypeMismatch, ": /font: ", "\"Name\""},
      {"an unknown control type", withControl(R"({"type": "veltGizmo", "name": "g", "left": 0,
       "top": 0, "width": 1, "height": 1})"),
       errInvalidProcedureCall, ": /controls/1/type: ", "unknown control type"},
      {"an internal control type", withControl(R"({"type": "veltXButton", "name": "g", "left": 0,
       "top": 0, "width": 1, "height": 1})"),
       errInvalidProcedureCall, ": /controls/1/type: ", "part of other controls"},
      {"a control without width", withControl(R"({"type": "veltButton", "name": "g", "left": 0,
       "top": 0, "height": 1})"),
       errTypeMismatch, ": /controls/1: ", "\"width\" is missing"},
      {"a name used twice", withControl(R"({"type": "veltButton", "name": "first", "left": 0,
       "top": 0, "width": 1, "height": 1})"),
       errKeyAlreadyExists, ": /controls/1/name: ", "second control named \"first\""},
      {"a colour as a word", withControl("{" + button + R"(, "properties": {"BackColor": "red"}})"),
       errTypeMismatch, ": /controls/1/properties/BackColor: ", "expected a colour"},
      {"a null colour", withControl("{" + button + R"(, "properties": {"ForeColor": null}})"),
       errTypeMismatch, ": /controls/1/properties/ForeColor: ", "found null"},
      {"a too large Integer",
       withControl("{" + button + R"(, "properties": {"ImageIndex": 40000}})"), errOverflow,
       ": /controls/1/properties/ImageIndex: ", "-32768..32767"},
      {"a font as text", withControl("{" + button + R"(, "properties": {"Font": "Arial"}})"),
       errTypeMismatch, ": /controls/1/properties/Font: ", "expected a font"},
      {"a property of another type",
       withControl("{" + button + R"(, "properties": {"TickStyle": 1}})"), errInvalidProcedureCall,
       ": /controls/1/properties/TickStyle: ", "no stored property"},
      {"a property in the wrong case",
       withControl("{" + button + R"(, "properties": {"caption": "x"}})"), errInvalidProcedureCall,
       ": /controls/1/properties/caption: ", "\"Caption\""},
      {"a reference to no image list",
       withControl("{" + button + R"(, "properties": {"ImageList": {"Ref": "Nope"}}})"),
       errObjectNotSet, ": /controls/1/properties/ImageList: ", "\"Nope\""},
      {"an image list reference as text",
       withControl("{" + button + R"(, "properties": {"ImageList": "Icons"}})"), errTypeMismatch,
       ": /controls/1/properties/ImageList: ", "expected a reference"},
      {"a missing picture", withImages(R"([{"file": "icons/none.png"}])"), errFileNotFound,
       ": /imageLists/0/images/0/file: ", "none.png"},
      {"a picture key used twice", withImages(R"([{"file": "icons/red.png", "key": "k"},
       {"file": "icons/blue.png", "key": "k"}])"),
       errKeyAlreadyExists, ": /imageLists/0/images/1/key: ", "\"k\""},
      {"a key with a slash", R"({"version": 1, "width": 5, "height": 5, "a/b~c": 1})",
       errInvalidProcedureCall, ": /a~1b~0c: ", "unknown key"},
  };
  for (const BadFile& bad : cases) {
    SCOPED_TRACE(bad.what);
    const std::string message = test::errorOf(bad.number, [&] { parse(bad.json); });
    EXPECT_EQ(message.rfind((folder / "form.json").string() + bad.pointer, 0), 0u) << message;
    EXPECT_NE(message.find(bad.expectation), std::string::npos) << message;
  }
}

// A value the control itself refuses names the control; a missing file is
// error 53.
TEST_F(FormFileTest, AValueAControlRefusesNamesTheControlAndAMissingFileIsError53) {
  const FormFile file = parse(withControl(
      R"({"type": "veltColorPicker", "name": "picker", "left": 0, "top": 0, "width": 160,
          "height": 85, "properties": {"Color": 16777216}})"));
  const std::string message = test::errorOf(errInvalidPropertyValue, [&] { create(file); });
  EXPECT_NE(message.find("form.json: /controls/1: veltColorPicker \"picker\""), std::string::npos)
      << message;
  const std::string missing = test::errorOf(
      errFileNotFound, [&] { FormFile::Load((folder / "none.json").string(), types()); });
  EXPECT_NE(missing.find("none.json"), std::string::npos) << missing;
}

}  // namespace
}  // namespace velt
