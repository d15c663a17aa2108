#include "OneSizeFiveblock.h"

#include <algorithm>
#include <array>

#include "WholeUnits.h"
#include "platenest/URectNest/URectNest.h"

namespace platenest::detail {

namespace {

// A longer plate is not counted in finer units: the nest keeps a few bytes for each.
constexpr double kMostUnits = 1e6;
// Four seconds for a search.
constexpr int kLevel = 0;

void KeepLeftmost(TNestedRects& Layout, int Amount) {
  if (Layout.Count() <= Amount) return;
  Layout.Sort([](const TNestedRect& Left, const TNestedRect& Right) {
    const TVRect2D left = Left.BoundBox();
    const TVRect2D right = Right.BoundBox();
    const int byEdge = Sign(left.Right, right.Right);
    return byEdge != 0 ? byEdge : Sign(left.Bottom, right.Bottom);
  });
  Layout.erase(Layout.begin() + std::max(Amount, 0), Layout.end());
}

}  // namespace

TNestedRects NestByFiveblock(const TOneSize& Sizes, const TNestRect& Part) {
  const std::array<double, 4> lengths{Sizes.PlateWidth, Sizes.PlateHeight, Sizes.PartWidth, Sizes.PartHeight};
  const TWholeUnits units(lengths, Sizes.Gap, kMostUnits);
  TNestRect part = Part;
  part.BoundBox = TVRect2D::FromSize(units.Need(Sizes.PartWidth), units.Need(Sizes.PartHeight));
  TNestedRects layout;
  TRecursiveFiveblockNest(TVRect2D::FromSize(units.Room(Sizes.PlateWidth), units.Room(Sizes.PlateHeight)), part,
                          2 * units.HalfGap(), 0)
      .SingleNest(layout, 0, kLevel);
  // With a gap the nest keeps half of it free at the left and at the lower edge and ends as much beyond the others.
  for (TNestedRect& placed : layout) {
    placed.Trans = {(placed.Trans.X - units.HalfGap()) / units.Scale(),
                    (placed.Trans.Y - units.HalfGap()) / units.Scale()};
    placed.Part = Part;
  }
  KeepLeftmost(layout, Part.Amount);
  return layout;
}

}  // namespace platenest::detail
