// Form files: reading (with every check naming the JSON path), creating the
// form, capturing it again and saving, pictures beside the file included.

#include "velt/host/FormFile.hpp"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "support/ExpectError.hpp"
#include "support/HeadlessForm.hpp"
#include "velt/controls/ControlRegistry.hpp"
#include "velt/controls/buttons/veltButton.hpp"
#include "velt/controls/lists/veltListbox.hpp"
#include "velt/controls/menus/veltPUMenu.hpp"
#include "velt/controls/menus/veltToolbar.hpp"
#include "velt/controls/text/veltLabel.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/ImageList.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/Png.hpp"

namespace velt {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

std::shared_ptr<Picture> square(uint32_t argb) {
  return std::make_shared<Picture>(16, 16, std::vector<uint32_t>(16 * 16, argb));
}

std::string readText(const fs::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

Names filesIn(const fs::path& folder) {
  Names names;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    if (entry.is_regular_file()) names.push_back(fs::relative(entry.path(), folder).string());
  std::sort(names.begin(), names.end());
  return names;
}

template <typename Control>
std::shared_ptr<Control> control(Form& form, const std::string& name) {
  return std::dynamic_pointer_cast<Control>(form.FindSite(name)->Control());
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

  FormFile parse(const std::string& text) {
    return FormFile::Parse(text, (folder / "form.json").string(), ControlRegistry::Standard());
  }
  std::unique_ptr<Form> create(const FormFile& file) {
    return file.CreateForm(system, ControlRegistry::Standard());
  }
  FormFile load(const fs::path& path) {
    return FormFile::Load(path.string(), ControlRegistry::Standard());
  }

  fs::path folder;
  std::shared_ptr<HeadlessWindowSystem> system = std::make_shared<HeadlessWindowSystem>();
};

constexpr const char* kShowcase = R"({
  "version": 1, "caption": "Settings", "width": 300, "height": 200, "backColor": 15790320,
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
    {"type": "veltListbox", "name": "list", "left": 10, "top": 100, "width": 150, "height": 90,
     "properties": {"SelectedItem": 2}, "sorted": true, "valueFont": true,
     "items": [{"key": "b", "caption": "Beta", "value": "DejaVu Sans", "icon": 2},
               {"key": "a", "caption": "alpha", "comment": "first"}]},
    {"type": "veltPUMenu", "name": "menu", "left": 200, "top": 10, "width": 47, "height": 47,
     "items": [{"key": "t", "caption": "Title", "itemType": 4},
               {"caption": "Off", "icon": -3, "enabled": false, "child": "c", "group": "g",
                "checked": true, "bold": true}]}
  ]
})";

// Saving replaces an existing file whole, copies the pictures beside it and
// leaves no temporary files; reading it again gives the same bags, and a second
// round writes the same text.
TEST_F(FormFileTest, ReadingCreatesTheFormAndSavingWritesItAndItsPicturesBackTheSame) {
  const FormFile first = parse(kShowcase);
  std::unique_ptr<Form> form = create(first);
  EXPECT_EQ(form->Name(), "Settings");
  EXPECT_EQ(form->WindowRect(), (RectL{0, 0, 300, 200}));
  EXPECT_EQ(form->BackColor(), 15790320u);
  EXPECT_EQ(form->Font()->Size(), 9.0f);
  Names order;
  for (Site* site : form->Sites())
    order.push_back(site->Name() + ":" + site->Control()->ClassName());
  EXPECT_EQ(order, (Names{"ok:veltButton", "volume:veltSlider", "note:veltLabel",
                          "list:veltListbox", "menu:veltPUMenu"}));
  EXPECT_EQ(form->FindSite("volume")->Bounds(), (RectL{10, 10, 160, 35}));
  auto ok = control<veltButton>(*form, "ok");
  EXPECT_EQ(ok->Caption(), "OK");
  EXPECT_FALSE(ok->Enabled());
  EXPECT_TRUE(ok->Font()->Bold());
  EXPECT_EQ(ok->ImageList()->ListImages().Item(1)->Key(), "red");
  EXPECT_EQ(ok->ImageList()->ListImages().Item(2)->Picture()->Pixel(0, 0), 0xFF0000FFu);
  EXPECT_EQ(control<veltLabel>(*form, "note")->ImageList(), ok->ImageList()) << "one list";

  const fs::path saved = folder / "out" / "saved.json";
  fs::create_directories(saved.parent_path());
  std::ofstream(saved) << "old content";
  FormFile::Capture(*form, ControlRegistry::Standard(), first.ImageLists).Save(saved.string());
  EXPECT_EQ(filesIn(folder / "out"), (Names{"icons/blue.png", "icons/red.png", "saved.json"}));
  EXPECT_EQ(Png::Read((folder / "out/icons/red.png").string())->Pixel(0, 0), 0xFFFF0000u);
  const FormFile second = load(saved);
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
      if (was.Type() == VariantType::Font) {
        EXPECT_TRUE(is.ToFont() && is.ToFont()->SameLook(*was.ToFont())) << key;
      } else if (was.Type() != VariantType::Object) {
        EXPECT_EQ(is, was) << key << ": " << is.ToString() << " vs " << was.ToString();
      }
    }
  }
  EXPECT_EQ(second.ImageLists.at(0).Files, (Names{"icons/red.png", "icons/blue.png"}));
  const fs::path resaved = folder / "out" / "resaved.json";
  std::unique_ptr<Form> again = create(second);
  FormFile::Capture(*again, ControlRegistry::Standard(), second.ImageLists).Save(resaved.string());
  EXPECT_EQ(readText(resaved), readText(saved));

  // Items come back: the list sorted as it was filled, every menu field kept.
  const auto list = control<veltListbox>(*again, "list");
  ASSERT_EQ(list->ListboxItems.Count(), 2);
  EXPECT_TRUE(list->ListboxItems.Sorted());
  EXPECT_TRUE(list->ValueFont);
  const auto alpha = list->ListboxItems.Item(int16_t{1});
  EXPECT_EQ(alpha->Key() + alpha->Caption() + alpha->Comment(), "aalphafirst");
  const auto beta = list->ListboxItems.Item(int16_t{2});
  EXPECT_EQ(beta->Value() + std::to_string(beta->Icon()), "DejaVu Sans2");
  const auto& menuItems = *control<veltPUMenu>(*again, "menu")->MenuItem;
  ASSERT_EQ(menuItems.Count(), 2);
  EXPECT_EQ(menuItems.Item(int16_t{1})->ItemType(), itTitle);
  EXPECT_TRUE(menuItems.Item(int16_t{1})->Enabled());
  const auto off = menuItems.Item(int16_t{2});
  EXPECT_EQ(off->Key() + off->Caption() + off->Child() + off->Group(), "Offcg");
  EXPECT_EQ(off->Icon(), -3);
  EXPECT_FALSE(off->Enabled());
  EXPECT_EQ(off->ItemType(), itNormal);
  EXPECT_TRUE(off->Checked() && off->Bold());
}

// A toolbar's items keep their fields and each its menu, saved and read again.
TEST_F(FormFileTest, ToolbarItemsKeepTheirMenusThroughSavingAndReading) {
  const std::string json = R"({"version": 1, "width": 300, "height": 100, "controls": [
    {"type": "veltToolbar", "name": "bar", "left": 0, "top": 0, "width": 300, "height": 30,
     "items": [{"key": "new", "caption": "New", "iconIndex": 2},
               {"key": "file", "caption": "File", "style": 3,
                "menu": [{"key": "open", "caption": "Open", "icon": 1},
                         {"itemType": 3}, {"caption": "Quit", "bold": true}]},
               {"caption": "Off", "style": 2, "checked": true, "enabled": false}]}]})";
  const auto check = [](Form& form) {
    const auto bar = control<veltToolbar>(form, "bar");
    ASSERT_EQ(bar->ToolbarItems.Count(), 3);
    const auto first = bar->ToolbarItems.Item(int16_t{1});
    EXPECT_EQ(first->sKey() + first->Caption() + std::to_string(first->IconIndex()), "newNew2");
    EXPECT_EQ(first->Style(), mitNormalButton);
    EXPECT_EQ(first->ToolbarMenuItems->Count(), 0);
    const MenuItems& menu = *bar->ToolbarItems.Item("file")->ToolbarMenuItems;
    ASSERT_EQ(menu.Count(), 3);
    EXPECT_EQ(menu.Item(int16_t{1})->Key() + std::to_string(menu.Item(int16_t{1})->Icon()),
              "open1");
    EXPECT_EQ(menu.Item(int16_t{2})->ItemType(), itPlaceholder);
    EXPECT_TRUE(menu.Item(int16_t{3})->Bold());
    const auto off = bar->ToolbarItems.Item(int16_t{3});
    EXPECT_EQ(off->Style(), mitCheckButton);
    EXPECT_TRUE(off->Checked());
    EXPECT_FALSE(off->Enabled());
  };
  const std::unique_ptr<Form> form = create(parse(json));
  check(*form);
  const fs::path saved = folder / "bar.json";
  FormFile::Capture(*form, ControlRegistry::Standard()).Save(saved.string());
  const std::unique_ptr<Form> again = create(load(saved));
  check(*again);
  const fs::path resaved = folder / "bar2.json";
  FormFile::Capture(*again, ControlRegistry::Standard()).Save(resaved.string());
  EXPECT_EQ(readText(resaved), readText(saved));
}

// Lists made in code get names and picture files of their own; a form holding
// an object no list can name is not stored, and the old file stays whole.
TEST_F(FormFileTest, FormsMadeInCodeNameTheirImageListsOrWriteNothing) {
  test::HeadlessForm hf;
  auto list = std::make_shared<ImageList>();
  list->ListImages().Add(square(0xFF00FF00), "green");
  hf.form.Add<veltButton>("go", 5, 5, 100, 30)->ImageList(list);
  hf.form.Add<veltButton>("plain", 5, 45, 100, 30);
  const fs::path path = folder / "made.json";
  FormFile::Capture(hf.form, ControlRegistry::Standard()).Save(path.string());
  EXPECT_TRUE(fs::exists(folder / "made-ImageList1-1.png"));
  const FormFile loaded = load(path);
  ASSERT_EQ(loaded.ImageLists.size(), 1u);
  EXPECT_EQ(loaded.ImageLists[0].Name, "ImageList1");
  std::unique_ptr<Form> form = create(loaded);
  const auto& images = control<veltButton>(*form, "go")->ImageList()->ListImages();
  EXPECT_EQ(images.Item(1)->Key(), "green");
  EXPECT_EQ(images.Item(1)->Picture()->Pixel(0, 0), 0xFF00FF00u);
  EXPECT_EQ(control<veltButton>(*form, "plain")->ImageList(), nullptr);

  const std::string saved = readText(path);
  hf.form.Add<veltLabel>("pointer", 0, 0, 100, 20)->MouseIcon(square(0xFF123456));
  const std::string message = test::errorOf(errObjectNotSet, [&] {
    FormFile::Capture(hf.form, ControlRegistry::Standard()).Save(path.string());
  });
  EXPECT_NE(message.find("/controls/2/properties"), std::string::npos) << message;
  EXPECT_EQ(readText(path), saved);
  EXPECT_EQ(filesIn(folder),
            (Names{"icons/blue.png", "icons/red.png", "made-ImageList1-1.png", "made.json"}));
}

// The second control has the properties and, after them, further keys.
std::string withControl(const std::string& properties, const std::string& type = "veltButton",
                        const std::string& name = "b", const std::string& keys = "") {
  return R"({"version": 1, "width": 100, "height": 100, "controls": [
    {"type": "veltButton", "name": "first", "left": 0, "top": 0, "width": 10, "height": 10},
    {"type": ")" +
         type + R"(", "name": ")" + name + R"(", "left": 0, "top": 0, "width": 9, "height": 9,
     "properties": {)" +
         properties + "}" + (keys.empty() ? "" : ", " + keys) + "}]}";
}

std::string withItems(const std::string& type, const std::string& keys) {
  return withControl("", type, "c", keys);
}

std::string withImage(const std::string& file) {
  return R"({"version": 1, "width": 9, "height": 9, "imageLists": [{"name": "Icons",
          "images": [{"file": ")" +
         file + R"("}]}]})";
}

std::string repeated(const std::string& text, size_t count) {
  std::string result;
  for (size_t i = 0; i < count; ++i)
    result += text;
  return result;
}

TEST_F(FormFileTest, EveryMistakeNamesTheFileThePathAndWhatWasExpected) {
  ASSERT_EQ(::mkfifo((folder / "fifo.png").c_str(), 0600), 0);
  fs::create_symlink("/dev/zero", folder / "zero.png");
  const struct {
    std::string json;
    int32_t number;
    std::string pointer, expectation;
  } cases[] = {
      {"{\"version\": 1,", errTypeMismatch, "/", "not valid JSON"},
      {R"({"width": 1, "height": 1})", errTypeMismatch, "/", "\"version\" is missing"},
      {R"({"version": 1, "width": 0, "height": 1})", errInvalidPropertyValue, "/width", "1..16384"},
      {R"({"version": 1, "width": 5, "height": "5"})", errTypeMismatch, "/height",
       "expected a whole number"},
      {R"({"version": 1, "width": 5, "height": 5, "a/b~c": 1})", errInvalidProcedureCall,
       "/a~1b~0c", "unknown key"},
      {withControl("", "veltGizmo"), errInvalidProcedureCall, "/controls/1/type",
       "unknown control type"},
      {withControl("", "veltXButton"), errInvalidProcedureCall, "/controls/1/type",
       "part of other controls"},
      {withControl("", "veltButton", "first"), errKeyAlreadyExists, "/controls/1/name",
       "second control named \"first\""},
      {withControl(R"("BackColor": "red")"), errTypeMismatch, "/controls/1/properties/BackColor",
       "expected a colour"},
      {withControl(R"("ImageIndex": 40000)"), errOverflow, "/controls/1/properties/ImageIndex",
       "-32768..32767"},
      {withControl(R"("TickStyle": 1)"), errInvalidProcedureCall,
       "/controls/1/properties/TickStyle", "no stored property"},
      {withControl(R"("caption": "x")"), errInvalidProcedureCall, "/controls/1/properties/caption",
       "\"Caption\""},
      {withControl(R"("ImageList": {"Ref": "Nope"})"), errObjectNotSet,
       "/controls/1/properties/ImageList", "\"Nope\""},
      {R"({"version": 1, "width": 9, "height": 9, "imageLists": [{"name": "Icons",
          "images": [{"file": "icons/none.png"}]}]})",
       errFileNotFound, "/imageLists/0/images/0/file", "none.png"},
      {withImage("fifo.png"), errPathFileAccess, "/imageLists/0/images/0/file", "a FIFO"},
      {withImage("zero.png"), errPathFileAccess, "/imageLists/0/images/0/file", "a device"},
      {withImage("icons"), errPathFileAccess, "/imageLists/0/images/0/file", "a folder"},
      {R"({"version": 1, "width": 10, "width": 20, "height": 10})", errTypeMismatch, "/width",
       "the key \"width\" appears twice"},
      {withControl(R"("Caption": )" + std::string(80000, '[') + std::string(80000, ']')),
       errTypeMismatch,
       "/controls/1/properties/Caption" + repeated("/0", 8) + "/..." + repeated("/0", 4) +
           " (256 levels)",
       "nested deeper than 256 levels"},
      // One rule for colours: the form's and the controls'.
      {R"({"version": 1, "width": 9, "height": 9, "backColor": -1})", errInvalidPropertyValue,
       "/backColor", "0..4294967295"},
      {withControl(R"("BackColor": -1)"), errInvalidPropertyValue,
       "/controls/1/properties/BackColor", "0..4294967295"},
      {withControl(R"("ForeColor": "-1")"), errInvalidPropertyValue,
       "/controls/1/properties/ForeColor", "0..4294967295"},
      {withControl(R"("ForeColor": 2.5)"), errInvalidPropertyValue,
       "/controls/1/properties/ForeColor", "0..4294967295"},
      // Items: only for a type that owns a collection, every field checked,
      // and what the collection refuses found while checking.
      {withItems("veltButton", R"("items": [])"), errInvalidProcedureCall, "/controls/1/items",
       "veltButton owns no collection of items"},
      {withItems("veltButton", R"("sorted": true)"), errInvalidProcedureCall, "/controls/1/sorted",
       "unknown key"},
      {withItems("veltListbox", R"("items": {})"), errTypeMismatch, "/controls/1/items",
       "expected an array of items"},
      {withItems("veltListbox", R"("sorted": 1)"), errTypeMismatch, "/controls/1/sorted",
       "expected true or false"},
      {withItems("veltListbox", R"("items": [{"key": "a"}, {"caption": 5}])"), errTypeMismatch,
       "/controls/1/items/1/caption", "expected text"},
      {withItems("veltListbox", R"("items": [{"Caption": "x"}])"), errInvalidProcedureCall,
       "/controls/1/items/0/Caption", "unknown key"},
      {withItems("veltListbox", R"("items": [{"key": "a"}, {"key": "A"}])"), errKeyAlreadyExists,
       "/controls/1/items/1", "\"A\""},
      {withItems("veltPUMenu", R"("items": [{"itemType": 5}])"), errInvalidPropertyValue,
       "/controls/1/items/0/itemType", "1..4"},
      {withItems("veltPUMenu", R"("items": [{"icon": 32768}])"), errInvalidPropertyValue,
       "/controls/1/items/0/icon", "-32768..32767"},
      {withItems("veltToolbar", R"("items": [{"style": 8}])"), errInvalidPropertyValue,
       "/controls/1/items/0/style", "1..7"},
      {withItems("veltToolbar", R"("items": [{"menu": {}}])"), errTypeMismatch,
       "/controls/1/items/0/menu", "expected an array of records"},
      {withItems("veltToolbar", R"("items": [{"menu": [{"itemType": 9}]}])"),
       errInvalidPropertyValue, "/controls/1/items/0/menu/0/itemType", "1..4"},
      {withItems("veltToolbar", R"("items": [{"menu": [{"Key": "a"}]}])"), errInvalidProcedureCall,
       "/controls/1/items/0/menu/0/Key", "unknown key"},
      {withItems("veltToolbar", R"("items": [{"menu": [{"key": "a"}, {"key": "a"}]}])"),
       errKeyAlreadyExists, "/controls/1/items/0", "\"a\""},
  };
  for (const auto& bad : cases) {
    SCOPED_TRACE(bad.json);
    const std::string message = test::errorOf(bad.number, [&] { parse(bad.json); });
    EXPECT_EQ(message.rfind((folder / "form.json").string() + ": " + bad.pointer + ": ", 0), 0u)
        << message;
    EXPECT_NE(message.find(bad.expectation), std::string::npos) << message;
  }
  // A huge value is quoted by a short prefix only.
  const std::string huge = test::errorOf(errTypeMismatch, [&] {
    parse(withControl(R"("BackColor": ")" + std::string(5 << 20, 'x') + "\""));
  });
  EXPECT_LT(huge.size(), 600u) << huge.substr(0, 600);
  EXPECT_NE(huge.find("(5242880 bytes)"), std::string::npos) << huge.substr(0, 600);
}

// Every reference to one file shares one decoded picture (and one scaled copy
// per size), and what the pictures of one file may take is bounded, checked
// from the header before a picture is decoded.
TEST_F(FormFileTest, PicturesAreSharedAndWithinAPixelBudget) {
  std::string images;
  for (int i = 0; i < 250; ++i)
    images += std::string(i ? "," : "") + R"({"file": "icons/red.png"})";
  const FormFile file = parse(R"({"version": 1, "width": 9, "height": 9, "imageLists": [
      {"name": "Big", "imageWidth": 1024, "imageHeight": 1024, "images": [)" +
                              images + R"(]},
      {"name": "Same", "images": [{"file": "icons/red.png"}, {"file": "icons/../icons/red.png"}]}]})");
  const ListImages& big = file.ImageLists[0].List->ListImages();
  ASSERT_EQ(big.Count(), 250);
  EXPECT_EQ(big.Item(1)->Picture(), big.Item(250)->Picture());
  EXPECT_EQ(big.Item(1)->Picture()->Width(), 1024);
  const ListImages& same = file.ImageLists[1].List->ListImages();
  EXPECT_EQ(same.Item(1)->Picture(), same.Item(2)->Picture());

  Picture wide(16384, 1);
  Png::Write((folder / "wide.png").string(), wide);
  std::string header = readText(folder / "wide.png");
  header[22] = 0x40;  // the height 1 becomes 16384; the checksum is no longer right
  header[23] = 0x00;
  std::ofstream(folder / "huge.png", std::ios::binary) << header;
  const std::string message =
      test::errorOf(errInvalidPicture, [&] { parse(withImage("huge.png")); });
  EXPECT_NE(message.find("/imageLists/0/images/0/file: "), std::string::npos) << message;
  EXPECT_NE(message.find("16384x16384 pixels, more than"), std::string::npos) << message;
}

// Memory running out while a file is read is error 7 naming the file and the
// JSON path reached, not an unexpected failure. Run in a child process whose
// address space is limited; the sanitizers reserve more address space than
// any limit would leave, so the test cannot run under them.
TEST_F(FormFileTest, RunningOutOfMemoryNamesTheFileAndThePlace) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "address space limits do not work under the address sanitizer";
#else
  const std::string text = R"({"version": 1, "width": 9, "height": 9, "controls": [)" +
                           repeated("[],", 6'000'000) + "[]]}";
  int channel[2];
  ASSERT_EQ(::pipe(channel), 0);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    ::close(channel[0]);
    long pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t room = static_cast<rlim_t>(pages) * ::sysconf(_SC_PAGESIZE) + (96 << 20);
    const struct rlimit limit { room, room };
    ::setrlimit(RLIMIT_AS, &limit);
    std::string message = "no error";
    try {
      parse(text);
    } catch (const Error& error) {
      message = std::to_string(error.Number()) + " " + error.Description();
    }
    const ssize_t written = ::write(channel[1], message.data(), message.size());
    ::_exit(written > 0 ? 0 : 1);
  }
  ::close(channel[1]);
  std::string message;
  char buffer[512];
  for (ssize_t got; (got = ::read(channel[0], buffer, sizeof buffer)) > 0;)
    message.append(buffer, static_cast<size_t>(got));
  ::close(channel[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status)) << "the child died: " << status;
  const std::string expected = "7 " + (folder / "form.json").string() + ": /controls/";
  EXPECT_EQ(message.rfind(expected, 0), 0u) << message;
  EXPECT_NE(message.find(": out of memory"), std::string::npos) << message;
#endif
}

// Pictures saved with a form stay in the output's folder or below it; a
// failure names the target and the system's reason.
TEST_F(FormFileTest, SavingKeepsPicturesBelowTheOutputAndNamesWhatFailed) {
  fs::create_directories(folder / "a" / "b");
  fs::create_directories(folder / "x");
  Png::Write((folder / "x" / "ok.png").string(), *square(0xFF00FF00));
  const FormFile file =
      FormFile::Parse(withImage("../../x/ok.png"), (folder / "a" / "b" / "in.json").string(),
                      ControlRegistry::Standard());
  const fs::path out = folder / "a" / "b" / "out.json";
  file.Save(out.string());
  EXPECT_EQ(filesIn(folder / "a"), (Names{"b/out-Icons-1.png", "b/out.json"}));
  EXPECT_EQ(filesIn(folder / "x"), (Names{"ok.png"}));
  EXPECT_EQ(load(out).ImageLists[0].List->ListImages().Item(1)->Picture()->Pixel(0, 0),
            0xFF00FF00u);
  const std::string missing = (folder / "none" / "out.json").string();
  EXPECT_EQ(test::errorOf(errPathFileAccess, [&] { parse(withControl("")).Save(missing); }),
            missing + ": cannot be written: No such file or directory");
}

TEST_F(FormFileTest, AValueAControlRefusesNamesTheControlAndAMissingFileIsError53) {
  const FormFile file = parse(withControl(R"("Color": 16777216)", "veltColorPicker", "picker"));
  const std::string message = test::errorOf(errInvalidPropertyValue, [&] { create(file); });
  EXPECT_NE(message.find("form.json: /controls/1: veltColorPicker \"picker\""), std::string::npos)
      << message;
  const std::string missing = test::errorOf(errFileNotFound, [&] { load(folder / "none.json"); });
  EXPECT_NE(missing.find("none.json"), std::string::npos) << missing;
}

}  // namespace
}  // namespace velt
