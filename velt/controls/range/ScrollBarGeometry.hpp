#pragma once

#include <cstdint>

#include "velt/controls/range/MyOrientation.hpp"
#include "velt/platform/Geometry.hpp"

namespace velt {

// Where the parts of a scroll bar lie, in pixels of its surface: the two arrow
// buttons at the ends, the track between them and the thumb on the track. One
// const function per part, shared by the painting and the hit-testing so the
// two cannot disagree.
//
// "Along" is the axis the track runs on (x for pbHorizontal, y for
// pbVertical), "across" the other one. An orientation other than the two is
// measured like a vertical bar.
class ScrollBarGeometry {
 public:
  enum class Part {
    BeforeThumb,  // the track (or margin) on the Min side of the thumb
    Thumb,
    AfterThumb,  // the track (or margin) on the Max side of the thumb
    Beside,      // level with the thumb but outside it across the bar
  };

  // `buttonSide` is the size the first arrow button has now; the track is
  // measured from it.
  ScrollBarGeometry(MyOrientation orientation, int32_t width, int32_t height, int32_t buttonSide);

  bool Horizontal() const { return orientation_ == pbHorizontal; }
  int32_t Width() const { return width_; }
  int32_t Height() const { return height_; }
  int32_t Extent() const { return Horizontal() ? width_ : height_; }
  int32_t Thickness() const { return Horizontal() ? height_ : width_; }
  int32_t ButtonSide() const { return buttonSide_; }

  // The square an arrow button (0 at the Min end, 1 at the Max end) is placed
  // on: 2 pixels in from the edges, as thick as the bar less those margins.
  RectL ArrowRect(int index) const;
  // The margin, one button side and a 3-pixel gap: where the track starts.
  int32_t ButtonSize() const { return buttonSide_ + 5; }
  // Half the extent less one button size, whatever the range.
  int32_t ThumbSize() const;
  int32_t TrackLength() const;

  // The thumb's offset on the track for a value, in whole percents of the
  // range (so it moves in steps of one percent). Max - Min must fit 32 bits.
  int32_t ValueToPos(int32_t min, int32_t max, int32_t value) const;
  // The value for a thumb offset, clamped to Min..Max.
  int32_t PosToValue(double pos, int32_t min, int32_t max) const;

  // The thumb for an offset: ButtonSize + pos to ButtonSize + pos + ThumbSize
  // along, 2 to Thickness - 2 across (right and bottom exclusive).
  RectL ThumbRect(int32_t thumbPos) const;
  Part PartAt(float x, float y, int32_t thumbPos) const;
  float Along(float x, float y) const { return Horizontal() ? x : y; }

 private:
  MyOrientation orientation_;
  int32_t width_;
  int32_t height_;
  int32_t buttonSide_;
};

}  // namespace velt
