#include "velt/utilities/StockIcons.hpp"

#include <algorithm>
#include <cmath>

namespace velt {

namespace {

enum class Shape { File, Folder, Drive, Optical, Computer, Printer, Network, Calendar };
enum Badge : unsigned {
  kNoBadge = 0,
  kRemovable = 1,
  kNetwork = 2,
  kDefault = 4,
  kPage = 8,
  kScreen = 16
};

struct StockIcon {
  int32_t index;
  Shape shape;
  unsigned badges;
  std::vector<std::string> names;
};

const std::vector<StockIcon>& stockIcons() {
  static const std::vector<StockIcon> icons = {
      {0, Shape::File, kNoBadge, {"text-x-generic", "application-x-generic", "unknown"}},
      {3, Shape::Folder, kNoBadge, {"folder"}},
      {6, Shape::Drive, kRemovable, {"drive-removable-media", "media-removable"}},
      {8, Shape::Drive, kNoBadge, {"drive-harddisk"}},
      {9, Shape::Drive, kNetwork, {"folder-remote", "network-server"}},
      {11, Shape::Optical, kNoBadge, {"drive-optical", "media-optical"}},
      {15, Shape::Computer, kNoBadge, {"computer"}},
      {16, Shape::Printer, kNoBadge, {"printer"}},
      {18, Shape::Network, kNoBadge, {"network-workgroup", "network-wired"}},
      {34, Shape::Computer, kScreen, {"user-desktop"}},
      {60, Shape::Folder, kPage, {"folder-documents", "x-office-document"}},
      {81, Shape::Printer, kNetwork, {"printer-network", "printer"}},
      {82, Shape::Printer, kDefault, {"printer", "printer-network"}},
      {126, Shape::Printer, kNetwork | kDefault, {"printer-network", "printer"}},
      {167, Shape::Calendar, kNoBadge, {"x-office-calendar", "office-calendar"}},
  };
  return icons;
}

const StockIcon* find(int32_t index) {
  for (const StockIcon& icon : stockIcons())
    if (icon.index == index) return &icon;
  return nullptr;
}

// Shapes are laid out on a 16 by 16 grid and scaled: a pixel is painted when
// its centre lies inside.
class Art {
 public:
  explicit Art(int32_t side) : side_(side), picture_(std::make_shared<Picture>(side, side)) {}

  void Box(double left, double top, double right, double bottom, uint32_t fill, uint32_t edge = 0) {
    paint([&](double x, double y) { return x >= left && x < right && y >= top && y < bottom; },
          fill);
    if (edge == 0) return;
    const double line = 16.0 / side_;
    paint(
        [&](double x, double y) {
          const bool inside = x >= left && x < right && y >= top && y < bottom;
          return inside &&
                 (x < left + line || x >= right - line || y < top + line || y >= bottom - line);
        },
        edge);
  }
  void Disc(double cx, double cy, double radius, uint32_t fill) {
    paint([&](double x, double y) { return std::hypot(x - cx, y - cy) < radius; }, fill);
  }
  std::shared_ptr<Picture> Result() { return picture_; }

 private:
  template <typename Inside>
  void paint(Inside inside, uint32_t argb) {
    for (int32_t py = 0; py < side_; ++py)
      for (int32_t px = 0; px < side_; ++px)
        if (inside((px + 0.5) * 16.0 / side_, (py + 0.5) * 16.0 / side_))
          picture_->Pixel(px, py, argb);
  }

  int32_t side_;
  std::shared_ptr<Picture> picture_;
};

constexpr uint32_t kWhite = 0xFFFFFFFF, kEdge = 0xFF505050, kGrey = 0xFFB0B0B0, kDark = 0xFF303030,
                   kYellow = 0xFFF2C94C, kBrown = 0xFFC9A03A, kBlue = 0xFF3B7DD8,
                   kGreen = 0xFF2EA043, kOrange = 0xFFE67E22, kRed = 0xFFD03A3A;

void drawShape(Art& art, Shape shape) {
  switch (shape) {
    case Shape::File:
      art.Box(3, 1, 13, 15, kWhite, kEdge);
      art.Box(10, 1, 13, 4, kGrey, kEdge);
      break;
    case Shape::Folder:
      art.Box(1, 3, 7, 5, kBrown);
      art.Box(1, 4, 15, 14, kYellow, kBrown);
      break;
    case Shape::Drive:
      art.Box(1, 6, 15, 12, kGrey, kEdge);
      art.Box(11, 8, 13, 10, kGreen);
      break;
    case Shape::Optical:
      art.Disc(8, 8, 7, kGrey);
      art.Disc(8, 8, 2, kWhite);
      break;
    case Shape::Computer:
      art.Box(1, 2, 15, 12, kDark);
      art.Box(2, 3, 14, 11, kBlue);
      art.Box(5, 12, 11, 14, kGrey, kEdge);
      break;
    case Shape::Printer:
      art.Box(4, 1, 12, 6, kWhite, kEdge);
      art.Box(1, 6, 15, 12, kGrey, kEdge);
      art.Box(4, 10, 12, 15, kWhite, kEdge);
      break;
    case Shape::Network:
      art.Disc(8, 8, 7, kBlue);
      art.Box(1, 7.5, 15, 8.5, kWhite);
      art.Box(7.5, 1, 8.5, 15, kWhite);
      break;
    case Shape::Calendar:
      art.Box(1, 2, 15, 15, kWhite, kEdge);
      art.Box(1, 2, 15, 5, kRed);
      for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column)
          art.Box(3 + 3 * column, 7 + 2.5 * row, 4.5 + 3 * column, 8.5 + 2.5 * row, kGrey);
      break;
  }
}

void drawBadges(Art& art, unsigned badges) {
  if (badges & kRemovable) art.Box(3, 8, 9, 10, kOrange);
  if (badges & kScreen) art.Box(2, 3, 14, 11, kGreen);
  if (badges & kPage) art.Box(6, 6, 12, 13, kWhite, kEdge);
  if (badges & kNetwork) {
    art.Box(7, 12, 9, 15, kDark);
    art.Box(3, 14, 13, 16, kBlue);
  }
  if (badges & kDefault) art.Disc(13, 3, 3, kGreen);
}

}  // namespace

bool StockIcons::Names(const std::string& location) {
  const auto slash = location.find_last_of("/\\");
  std::string name = location.substr(slash == std::string::npos ? 0 : slash + 1);
  std::transform(name.begin(), name.end(), name.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return name == "shell32.dll";
}

std::vector<std::string> StockIcons::ThemeNames(int32_t index) {
  const StockIcon* icon = find(index);
  return icon ? icon->names : std::vector<std::string>();
}

std::shared_ptr<Picture> StockIcons::Drawn(int32_t index, int32_t side) {
  const StockIcon* icon = find(index);
  if (!icon || side < 1) return nullptr;
  Art art(side);
  drawShape(art, icon->shape);
  drawBadges(art, icon->badges);
  return art.Result();
}

}  // namespace velt
