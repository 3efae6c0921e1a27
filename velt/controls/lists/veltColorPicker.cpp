#include "velt/controls/lists/veltColorPicker.hpp"

#include <array>
#include <utility>

#include "velt/foundation/Colors.hpp"
#include "velt/foundation/EventRaising.hpp"
#include "velt/foundation/Gradients.hpp"
#include "velt/foundation/NumberText.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/PropertyBag.hpp"
#include "velt/platform/Rounding.hpp"
#include "velt/platform/Variant.hpp"

namespace velt {

namespace {

constexpr const char* kColorKey = "Color";

constexpr OLE_COLOR kWhite = 0xFFFFFF;
constexpr OLE_COLOR kBlack = 0x000000;
constexpr OLE_COLOR kRed = 0x0000FF;
constexpr OLE_COLOR kYellow = 0x00FFFF;
constexpr OLE_COLOR kGreen = 0x00FF00;
constexpr OLE_COLOR kBlue = 0xFF0000;
constexpr int32_t kHalfWay = 128;

constexpr int16_t kLeftButton = 1;

// Picks stay this far inside the left and top edges, and one pixel more
// inside the right and bottom ones.
constexpr float kEdgeMargin = 3;
constexpr float kFarEdgeMargin = 4;

constexpr int32_t kColumnWidth = 10;
constexpr int32_t kColumnCount = 8;

// The swatch frames: 21 x 21 outlines at x 90, the picked one at y 10, the
// Color one at y 40; each is filled 19 x 19 inside its outline.
constexpr int32_t kSwatchLeft = 90;
constexpr int32_t kSwatchSize = 20;
constexpr int32_t kPickedSwatchTop = 10;
constexpr int32_t kColorSwatchTop = 40;

struct TextSpot {
  float x;
  float y;
};
constexpr TextSpot kRedText{115, 10};
constexpr TextSpot kGreenText{115, 25};
constexpr TextSpot kBlueText{115, 40};
constexpr TextSpot kHexText{90, 65};

// The middle colour of each column, left to right: grey, red, orange, yellow,
// green, green-blue, blue, purple.
std::array<OLE_COLOR, kColumnCount> columnColors() {
  return {BlendColor(kWhite, kBlack, kHalfWay),
          kRed,
          BlendColor(kRed, kYellow, kHalfWay),
          kYellow,
          kGreen,
          BlendColor(kGreen, kBlue, kHalfWay),
          kBlue,
          BlendColor(kBlue, kRed, kHalfWay)};
}

int32_t pixel(float coordinate) {
  return static_cast<int32_t>(RoundHalfEven(coordinate));
}

OLE_COLOR checkedColor(OLE_COLOR color, const std::string& where) {
  if (color <= kWhite) return color;
  throw Error(errInvalidPropertyValue, where + ": colour " + std::to_string(color) +
                                           " is not a plain RGB colour (0 to 0xFFFFFF)");
}

void printAt(Canvas& surface, TextSpot spot, const std::string& text) {
  surface.CurrentX(spot.x);
  surface.CurrentY(spot.y);
  surface.Print(text);
}

void swatchFrame(Canvas& surface, int32_t top) {
  const int32_t left = kSwatchLeft;
  const int32_t right = kSwatchLeft + kSwatchSize;
  const int32_t bottom = top + kSwatchSize;
  surface.Line(left, top, right + 1, top, kBlack);
  surface.Line(right, bottom, right, top, kBlack);
  surface.Line(right, bottom, left, bottom, kBlack);
  surface.Line(left, bottom, left, top, kBlack);
}

void swatchFill(Canvas& surface, int32_t top, OLE_COLOR color) {
  const VertexColor vertex = ColorToVertexColor(color);
  GradientRect(surface, kSwatchLeft + 1, top + 1, kSwatchSize - 1, kSwatchSize - 1, vertex, vertex,
               kGradientVertical);
}

}  // namespace

veltColorPicker::~veltColorPicker() = default;

// ---- Properties -------------------------------------------------------------

void veltColorPicker::Color(OLE_COLOR color) {
  color_ = checkedColor(color, "veltColorPicker.Color");
  if (!host_) return;
  host_->PropertyChanged(kColorKey);
  repaint();
}

// ---- Life cycle and persistence ---------------------------------------------

void veltColorPicker::Initialize(ControlHost& host) {
  host_ = &host;
  markerX_ = kStartMarker;
  markerY_ = kStartMarker;
  picked_ = kStartPicked;
}

// The first Resize paints.
void veltColorPicker::InitProperties() {
  color_ = kDefaultColor;
}

void veltColorPicker::ReadProperties(PropertyBag& bag) {
  color_ = checkedColor(bag.ReadProperty(kColorKey, Variant::Color(kDefaultColor)).ToColor(),
                        std::string("PropertyBag key \"") + kColorKey + "\"");
  repaint();
}

void veltColorPicker::WriteProperties(PropertyBag& bag) {
  bag.WriteProperty(kColorKey, Variant::Color(color_), Variant::Color(kDefaultColor));
  repaint();
}

void veltColorPicker::Resize() {
  repaint();
}

void veltColorPicker::Terminate() {
  host_ = nullptr;
}

// ---- Painting ---------------------------------------------------------------

void veltColorPicker::repaint() {
  if (!host_) return;
  Canvas& surface = host_->Surface();
  if (std::shared_ptr<velt::Font> font = host_->Font(); font && surface.Font() != font)
    surface.Font(std::move(font));
  surface.Clear();
  surface.BackColor(kWhite);
  paintColumns(surface);
  paintMarker(surface);
  paintSwatches(surface);
  paintReadout(surface);
}

void veltColorPicker::paintColumns(Canvas& surface) const {
  const int32_t height = surface.ScaleHeight();
  const std::array<OLE_COLOR, kColumnCount> middles = columnColors();
  for (int32_t i = 0; i < kColumnCount; ++i)
    GradientBox3(surface, i * kColumnWidth, 0, kColumnWidth, height, kWhite, middles[i], kBlack,
                 kBoxStacked);
}

// A black square outline seven pixels wide around the point, a white one five
// wide inside it; the three pixels across the middle keep the picked colour.
void veltColorPicker::paintMarker(Canvas& surface) const {
  const int32_t x = pixel(markerX_);
  const int32_t y = pixel(markerY_);
  surface.Line(x - 3, y - 3, x + 4, y - 3, kBlack);
  surface.Line(x - 3, y - 3, x - 3, y + 3, kBlack);
  surface.Line(x - 3, y + 3, x + 3, y + 3, kBlack);
  surface.Line(x + 3, y + 3, x + 3, y - 3, kBlack);
  surface.Line(x - 2, y - 2, x + 3, y - 2, kWhite);
  surface.Line(x - 2, y - 2, x - 2, y + 2, kWhite);
  surface.Line(x - 2, y + 2, x + 2, y + 2, kWhite);
  surface.Line(x + 2, y + 2, x + 2, y - 2, kWhite);
}

void veltColorPicker::paintSwatches(Canvas& surface) const {
  swatchFrame(surface, kPickedSwatchTop);
  swatchFrame(surface, kColorSwatchTop);
  swatchFill(surface, kPickedSwatchTop, picked_);
  swatchFill(surface, kColorSwatchTop, color_);
}

// The hexadecimal digits run blue, green, red, as the colour value is written.
void veltColorPicker::paintReadout(Canvas& surface) const {
  const RGBTriple rgb = ColorToRGB(picked_);
  surface.ForeColor(kBlack);
  printAt(surface, kRedText, "R: " + std::to_string(rgb.Red));
  printAt(surface, kGreenText, "G: " + std::to_string(rgb.Green));
  printAt(surface, kBlueText, "B: " + std::to_string(rgb.Blue));
  printAt(surface, kHexText, HexDigits(static_cast<int32_t>(picked_)));
}

// ---- Input ------------------------------------------------------------------
// Each handler holds the picker alive while it raises events: a handler may
// remove it from its container, which unsites it; the rest is then skipped.

void veltColorPicker::OnMouseDown(int16_t button, int16_t shift, float x, float y) {
  const auto self = weak_from_this().lock();
  pick(button, shift, x, y);
  raiseMouse("MouseDown", MouseDown, button, shift, x, y);
}

void veltColorPicker::OnMouseMove(int16_t button, int16_t shift, float x, float y) {
  const auto self = weak_from_this().lock();
  pick(button, shift, x, y);
}

void veltColorPicker::OnMouseUp(int16_t button, int16_t shift, float x, float y) {
  const auto self = weak_from_this().lock();
  pick(button, shift, x, y);
  raiseMouse("MouseUp", MouseUp, button, shift, x, y);
}

// Only the left button alone picks, and only inside the edge margins; anything
// inside them can be picked, the swatches, their frames and the digits too.
bool veltColorPicker::accepts(int16_t button, float x, float y) const {
  const Canvas& surface = host_->Surface();
  const auto width = static_cast<float>(surface.ScaleWidth());
  const auto height = static_cast<float>(surface.ScaleHeight());
  return button == kLeftButton && x >= kEdgeMargin && y >= kEdgeMargin &&
         x <= width - kFarEdgeMargin && y <= height - kFarEdgeMargin;
}

// The colour is read from the surface as it is shown, the marker of the last
// paint included, so a pick right beside the marker can take its black or white.
void veltColorPicker::pick(int16_t button, int16_t shift, float x, float y) {
  raiseMouse("MouseMove", MouseMove, button, shift, x, y);
  if (!sited() || !accepts(button, x, y)) return;
  markerX_ = x;
  markerY_ = y;
  picked_ = static_cast<OLE_COLOR>(host_->Surface().Point(pixel(x), pixel(y)));
  repaint();
}

void veltColorPicker::raiseMouse(const char* name,
                                 const Event<int16_t, int16_t, float, float>& event, int16_t button,
                                 int16_t shift, float x, float y) {
  if (!sited()) return;
  RaiseEvent(*host_, name, event, button, shift, x, y);
}

}  // namespace velt
