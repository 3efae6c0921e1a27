#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "velt/platform/Font.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/ShapedLine.hpp"
#include "velt/platform/Types.hpp"

namespace velt {

// A GradientFill vertex: position and 16-bit channels (the 8-bit value shifted
// left by 8). Alpha is carried but not used by rectangle fills.
struct TriVertex {
  int32_t x = 0;
  int32_t y = 0;
  uint16_t Red = 0;
  uint16_t Green = 0;
  uint16_t Blue = 0;
  uint16_t Alpha = 0;
};

// A rectangle mesh record: indexes of two vertices at opposite corners.
struct GradientRectMesh {
  uint32_t UpperLeft = 0;
  uint32_t LowerRight = 0;
};

enum GradientFillMode : uint32_t {
  GRADIENT_FILL_RECT_H = 0,  // colour varies left to right
  GRADIENT_FILL_RECT_V = 1,  // colour varies top to bottom
};

// How DrawPicture puts a picture on the canvas.
enum class PictureLook {
  Normal,      // alpha-blended as it is
  Monochrome,  // every covered pixel in one colour, blended by the picture's alpha
  Disabled,    // embossed: highlight colour one pixel down-right, shadow colour on top
};

// The persistent drawing surface of one control: a 32-bit image (0x00RRGGBB per
// pixel) that keeps what is drawn until the next clear. Every primitive clips to
// the image, so drawing off the edge is never an error. Colours are OLE colours;
// system colours (high bit set) are translated through SystemColors.
class Canvas {
 public:
  Canvas(int32_t width, int32_t height);  // erased to BackColor white; ForeColor black

  // New size; the image is erased to BackColor. Negative sizes are error 5.
  void Resize(int32_t width, int32_t height);
  int32_t ScaleWidth() const { return width_; }
  int32_t ScaleHeight() const { return height_; }

  OLE_COLOR BackColor() const { return backColor_; }
  void BackColor(OLE_COLOR color);  // also erases the whole image to the colour
  OLE_COLOR ForeColor() const { return foreColor_; }
  void ForeColor(OLE_COLOR color);  // affects later text and lines only

  // Erases to BackColor and puts CurrentX and CurrentY back to 0.
  void Clear();

  // Lights max(|dx|,|dy|) pixels from (x1,y1) towards (x2,y2); the end point is
  // never lit. An exact half step rounds to the smaller coordinate.
  void Line(int32_t x1, int32_t y1, int32_t x2, int32_t y2);
  void Line(int32_t x1, int32_t y1, int32_t x2, int32_t y2, OLE_COLOR color);
  void PSet(int32_t x, int32_t y);
  void PSet(int32_t x, int32_t y, OLE_COLOR color);
  // The OLE colour at (x, y), or -1 outside the image.
  int32_t Point(int32_t x, int32_t y) const;
  // Solid rectangle x..x+width-1 by y..y+height-1.
  void FillRect(int32_t x, int32_t y, int32_t width, int32_t height, OLE_COLOR color);

  // Rectangle gradients with the platform's GradientFill pixel rules. Returns
  // false (drawing nothing) for a mode other than the two rectangle modes or a
  // mesh index outside the vertices.
  bool GradientFill(std::span<const TriVertex> vertices, std::span<const GradientRectMesh> meshes,
                    uint32_t mode);

  // Text. The canvas starts with its own copy of the ambient font; Font(f)
  // shares f by reference.
  const std::shared_ptr<velt::Font>& Font() const { return font_; }
  void Font(std::shared_ptr<velt::Font> font);      // nullptr is error 91
  int32_t TextWidth(std::string_view text) const;   // widest line, pixels
  int32_t TextHeight(std::string_view text) const;  // line height times line count
  float CurrentX() const { return currentX_; }
  void CurrentX(float x) { currentX_ = x; }
  float CurrentY() const { return currentY_; }
  void CurrentY(float y) { currentY_ = y; }
  // Draws text (UTF-8; "\n" or "\r\n" start new lines) with its top-left corner at
  // (CurrentX, CurrentY) in ForeColor on a transparent background, then sets
  // CurrentX to 0 and moves CurrentY down one line per printed line.
  void Print(std::string_view text);
  // Lines take the direction of their first strong character; with
  // RightToLeft(true) every line is a right-to-left paragraph.
  bool RightToLeft() const { return rightToLeft_; }
  void RightToLeft(bool rightToLeft) { rightToLeft_ = rightToLeft; }

  // What cutting and a text cursor need, for one line of text with the current
  // font. Positions count characters (code points) from 0.
  // The last cluster boundary at or before `characters`: cutting the line
  // there never separates a base from its marks, an emoji sequence or a
  // ligature.
  int32_t ClusterCut(std::string_view line, int32_t characters) const;
  // Every cursor position of the line with its x from the line's start, in
  // visual order (left to right), and the cursor position nearest to x.
  std::vector<CaretStop> CaretStops(std::string_view line) const;
  int32_t CaretAt(std::string_view line, int32_t x) const;

  void DrawPicture(const Picture& picture, int32_t x, int32_t y,
                   PictureLook look = PictureLook::Normal, OLE_COLOR monochromeColor = 0);

  // Raw access for compositing, snapshots and tests.
  const uint32_t* Pixels() const;
  uint32_t* Pixels();
  uint32_t PixelRGB(int32_t x, int32_t y) const;  // 0x00RRGGBB; 0 outside

 private:
  void gradientRect(const TriVertex& a, const TriVertex& b, uint32_t mode);
  void straightLine(int32_t x1, int32_t y1, int32_t x2, int32_t y2, uint32_t rgb);
  void eraseAll(uint32_t rgb);
  void settle() const;
  void prepareRows(int64_t top, int64_t bottom, bool fullWidth);

  int32_t width_ = 0;
  int32_t height_ = 0;
  // An erase is only recorded: rows [pendingTop_, pendingBottom_) still have
  // to be set to pendingPixel_. Full-width fills that cover them cancel the
  // work (a face painted over its cleared background); anything else writes
  // them out first. Reads see them written, hence mutable.
  mutable std::vector<uint32_t> pixels_;
  mutable int32_t pendingTop_ = 0;
  mutable int32_t pendingBottom_ = 0;
  uint32_t pendingPixel_ = 0;
  OLE_COLOR backColor_ = 0xFFFFFF;
  OLE_COLOR foreColor_ = 0;
  std::shared_ptr<velt::Font> font_;
  float currentX_ = 0;
  float currentY_ = 0;
  bool rightToLeft_ = false;
};

}  // namespace velt
