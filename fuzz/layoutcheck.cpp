#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "Input.h"
#include "platenest/foundation/Errors.h"
#include "platenest/layoutcheck/LayoutCheck.h"
#include "platenest/layoutcheck/Measures.h"
#include "platenest/layoutcheck/Svg.h"

// Boxes of any doubles go through every door of the layout checker. Nothing but TNestError may come out, and what the
// sweeps answer must be what a look at all pairs answers.

namespace {

using namespace platenest;

// Mostly small whole numbers and halves, which make boxes touch; now and then any bits.
double Number(TInput& In) {
  const int kind = In.Next();
  if (kind < 200) return kind / 2.0;
  if (kind < 240) return -(kind - 200) / 4.0;
  return AnyDouble(In);
}

std::string Text(TInput& In) {
  std::string text(In.Next() % 12, ' ');
  for (char& c : text) c = static_cast<char>(In.Next());
  return text;
}

void CompareWithAllPairs(const std::vector<TPlacedBox>& Boxes, double Gap) {
  double least = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < Boxes.size(); ++i)
    for (std::size_t j = 0; j < i; ++j) least = std::min(least, Clearance(Boxes[i], Boxes[j]));
  Require(FirstTooClose(Boxes, Gap).has_value() == (least < Gap - kDefaultTol));
  Require(LeastClearance(Boxes).value_or(0) == (Boxes.size() < 2 ? 0 : std::max(least, 0.0)));
}

void CheckFreeBox(const std::vector<TPlacedBox>& Boxes, const TPlacedBox& Plate, double Gap) {
  const std::optional<TPlacedBox> free = LargestFreeBox(Boxes, Plate, Gap);
  if (!free) return;
  for (const TPlacedBox& b : Boxes) {
    const TPlacedBox grown{b.Left - Gap, b.Bottom - Gap, b.Right + Gap, b.Top + Gap};
    const bool hasArea = grown.Left < grown.Right && grown.Bottom < grown.Top;
    Require(!hasArea || free->Left >= grown.Right || free->Right <= grown.Left || free->Bottom >= grown.Top ||
            free->Top <= grown.Bottom);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  TInput bytes(data, size, 2000);
  TLayoutPicture picture;
  picture.Width = Number(bytes);
  picture.Height = Number(bytes);
  picture.Margin[0] = Number(bytes);
  picture.Kinds = {{Text(bytes), Text(bytes)}};
  picture.Units = Text(bytes);
  const double gap = Number(bytes);
  TNestedRects layout;
  std::vector<TPlacedBox> boxes;
  const TNestRectList demand = {{30, 0, TVRect2D::FromSize(2, 3)}};
  while (!bytes.Empty() && boxes.size() < 60) {
    const double left = Number(bytes);
    const double bottom = Number(bytes);
    boxes.push_back({left, bottom, left + Number(bytes), bottom + Number(bytes)});
    picture.Parts.push_back({boxes.back(), 0, bytes.Next() % 2 == 0});
    layout.push_back({demand[0], picture.Parts.back().Turned, {left, bottom}});
  }
  const TPlacedBox plate{0, 0, picture.Width, picture.Height};
  const TVRect2D plateRect = TVRect2D::FromSize(picture.Width, picture.Height);
  if (CheckRectLayout(layout, plateRect, gap, demand).empty() && !layout.empty())
    Require(!FirstOutside(PlacedBoxesOf(layout), plate) && layout.Count() <= 30);
  Try<TNestError>([&] { CompareWithAllPairs(boxes, gap); });
  Try<TNestError>([&] { CheckFreeBox(boxes, plate, gap); });
  Try<TNestError>([&] { MeasureLayout(boxes, plate, plate, 0); });
  picture.Free = plate;
  Try<TNestError>([&] { Require(RectLayoutSvg(picture).ends_with("</svg>\n")); });
  return 0;
}
