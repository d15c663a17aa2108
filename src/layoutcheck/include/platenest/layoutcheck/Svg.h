#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "platenest/layoutcheck/PlacedBox.h"

// Pictures of layouts. No state; safe on any thread.
namespace platenest {

// A kind of part, which gets one colour. Id and label are the user's texts, in UTF-8, of whatever content: bytes that
// are no UTF-8 and characters that XML cannot hold are replaced by U+FFFD.
struct TPictureKind {
  std::string Id;
  std::string Label;  // written into the part when there is room; empty: the id
};

struct TPicturePart {
  TPlacedBox Box;
  int Kind = 0;  // position in TLayoutPicture::Kinds
  bool Turned = false;
};

struct TLayoutPicture {
  std::string Title;         // empty: made from the plate's size
  std::string Description;   // for those who do not see the picture; empty: counts of parts by kind, and the marks used
  std::string Units = "mm";  // of all lengths: mm, cm, m, in give a picture of real size, anything else pixels
  double Width = 0;          // the plate lies from (0, 0) to (Width, Height), y up
  double Height = 0;
  std::array<double, 4> Margin{0, 0, 0, 0};  // left, bottom, right, top
  std::vector<TPictureKind> Kinds;
  std::vector<TPicturePart> Parts;
  std::optional<TPlacedBox> Free;  // the largest free rectangle, hatched
};

// One SVG document, well-formed XML in UTF-8 without a declaration, so that it can also stand inside HTML. It holds no
// ids, styles or scripts that could meet others there.
//   - The picture is as large as the plate; one user unit is one unit of the job.
//   - Parts come in list order, each as <rect data-part="id"> in the outermost group, which turns the y axis up.
//   - A line across the lower right corner marks a turned part, a dashed line the margin.
//   - Texts shrink to fit their part, stand upright in a narrow one, and are left out below a readable size.
//   - Numbers are rounded to ten digits of the plate's longer side and written in the shortest form, with a point.
// Raises TArgumentError for a plate whose sides are not from 1e-100 to 1e100, a margin that is not finite or below 0 or
// a box that is not proper, and TRangeError for a kind outside the list. Cost: linear, 90 to 150 bytes a part and its
// id where no text fits.
PLATENEST_API std::string RectLayoutSvg(const TLayoutPicture& Picture);

// The same of a layout of circles: each part is the circle in its box, as wide as the box, <circle data-part="id">.
// Texts shrink to stay within the circle with all their corners. Nothing is drawn as turned.
PLATENEST_API std::string CircleLayoutSvg(const TLayoutPicture& Picture);

// The fill of a kind as "#rrggbb": seven hues that colour-blind readers tell apart (Okabe, Ito 2008) in six shades;
// kinds from 42 on repeat them.
PLATENEST_API std::string KindColour(int Kind);

}  // namespace platenest
