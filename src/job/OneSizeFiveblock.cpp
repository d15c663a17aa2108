#include "OneSizeFiveblock.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "Scale.h"
#include "platenest/URectNest/URectNest.h"
#include "platenest/foundation/Rounding.h"

namespace platenest::detail {

namespace {

// A longer plate is not counted in finer units: the nest keeps a few bytes for each.
constexpr double kMostUnits = 1e6;
// Four seconds for a search.
constexpr int kLevel = 0;

// A job in whole units; Scale of them make one unit of the job.
struct TWholeJob {
  double PlateWidth;
  double PlateHeight;
  double PartWidth;
  double PartHeight;
  double HalfGap;
  double Scale;
};

TWholeJob ToWholeUnits(const TOneSize& S) {
  const double longest = std::max(S.PlateWidth, S.PlateHeight) + S.Gap;
  const std::array<double, 5> sizes{S.PlateWidth, S.PlateHeight, S.PartWidth, S.PartHeight, S.Gap};
  if (const auto decimals = CommonDecimals(sizes)) {
    const double quantum = std::pow(10.0, *decimals);
    const bool isGapOdd = std::fmod(RoundHalfEven(S.Gap * quantum), 2) != 0;
    const double scale = isGapOdd ? 2 * quantum : quantum;
    const auto whole = [scale](double V) { return RoundHalfEven(V * scale); };
    if (longest * scale <= kMostUnits)
      return {whole(S.PlateWidth), whole(S.PlateHeight), whole(S.PartWidth),
              whole(S.PartHeight), whole(S.Gap) / 2,     scale};
  }
  const double scale = std::pow(10.0, std::floor(std::log10(kMostUnits / longest)));
  return {std::floor(S.PlateWidth * scale), std::floor(S.PlateHeight * scale), std::ceil(S.PartWidth * scale),
          std::ceil(S.PartHeight * scale),  std::ceil(S.Gap * scale / 2),      scale};
}

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
  const TWholeJob job = ToWholeUnits(Sizes);
  TNestRect part = Part;
  part.BoundBox = TVRect2D::FromSize(job.PartWidth, job.PartHeight);
  TNestedRects layout;
  TRecursiveFiveblockNest(TVRect2D::FromSize(job.PlateWidth, job.PlateHeight), part, 2 * job.HalfGap, 0)
      .SingleNest(layout, 0, kLevel);
  // With a gap the nest keeps half of it free at the left and at the lower edge and ends as much beyond the others.
  for (TNestedRect& placed : layout) {
    placed.Trans = {(placed.Trans.X - job.HalfGap) / job.Scale, (placed.Trans.Y - job.HalfGap) / job.Scale};
    placed.Part = Part;
  }
  KeepLeftmost(layout, Part.Amount);
  return layout;
}

}  // namespace platenest::detail
