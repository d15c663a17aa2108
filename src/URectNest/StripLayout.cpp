#include "StripLayout.h"

#include "StripChoice.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

TStripLayout::TStripLayout(double W, double H, const TStripPart& Part) : FPitch(Part.Pitch) {
  const std::vector<bool> choices = BestStrips(W, H, Part.Thickness, Part.Pitch).NestArr;
  const int count = Size(choices);
  double x = 0;
  double y = 0;
  for (int strip = 0; strip < count;) {
    const int first = strip;
    const bool bottom = choices[Index(strip)];
    do {
      FStripY.push_back(y);
      if (bottom) y += Part.Thickness;
    } while (++strip < count && bottom && choices[Index(strip)]);
    if (bottom) {
      AddBottom(Part, x, first, strip - 1, W - x);
    } else {
      AddLeft(Part, x, first, H - y);
      x += Part.Thickness;
    }
  }
  SortBy(FColumns, [this](const TColumn& Left, const TColumn& Right) {
    const int byEdge = Sign(Left.Right, Right.Right);
    return byEdge != 0 ? byEdge : Sign(Y(Left, 0), Y(Right, 0));
  });
}

void TStripLayout::AddLeft(const TStripPart& Part, double X, int Strip, double Room) {
  const int count = Trunc<int>(Room / Part.Pitch);
  const bool turned = Part.IsVertical;
  if (count > 0) FColumns.push_back({X, X + (turned ? Part.Height : Part.Width), turned, true, Strip, count});
  FCount += count;
}

void TStripLayout::AddBottom(const TStripPart& Part, double X, int FirstStrip, int LastStrip, double Room) {
  const int count = Trunc<int>(Room / Part.Pitch);
  const int strips = LastStrip - FirstStrip + 1;
  const bool turned = !Part.IsVertical;
  for (int k = 0; k < count; ++k) {
    const double left = X + k * Part.Pitch;
    FColumns.push_back({left, left + (turned ? Part.Height : Part.Width), turned, false, FirstStrip, strips});
  }
  FCount += Int64{count} * strips;
}

}  // namespace platenest::detail
