#include "RskfStair.h"

#include <algorithm>
#include <utility>

#include "platenest/foundation/Compare.h"

namespace platenest {

namespace {

using TPositions = std::vector<double>;

// Steps up to this much wider than the gap are joined with a neighbour.
constexpr double kNarrow = 0.001;

// The index of Position in the list, which it enters if it is not there. The step that it cuts has one height on both
// sides of it.
int Ensure(double Position, TPositions& Positions, TPositions& Heights) {
  const auto found =
      std::partition_point(Positions.begin(), Positions.end(), [&](double Known) { return fSmall(Known, Position); });
  const auto index = found - Positions.begin();
  if (found != Positions.end() && fEqual(*found, Position)) return static_cast<int>(index);
  Positions.insert(found, Position);
  const double height = Heights[index - 1];
  Heights.insert(Heights.begin() + index, height);
  return static_cast<int>(index);
}

// Beyond the ends of the stair there is nothing to raise.
void AddStair(double Start, double End, double Height, TPositions& Positions, TPositions& Heights) {
  const double first = Positions.front();
  const double last = Positions.back();
  const int begin = Ensure(std::clamp(Start, first, last), Positions, Heights);
  const int end = Ensure(std::clamp(End, first, last), Positions, Heights);
  for (int i = begin; i < end; ++i) Heights[i] = std::max(Heights[i], Height);
}

void JoinEqualSteps(TPositions& Positions, TPositions& Heights) {
  for (int i = Size(Heights) - 2; i >= 0; --i) {
    if (!fEqual(Heights[i], Heights[i + 1])) continue;
    Heights.erase(Heights.begin() + i);
    Positions.erase(Positions.begin() + i + 1);
  }
}

// A narrow step sinks into a higher right neighbour. One that is higher than that is a rest of something that
// continues below its still higher left neighbour, and joins this; a needle, higher than both, stands on its own. The
// last step of a stair may stay narrow.
void JoinNarrowSteps(double Gap, TPositions& Positions, TPositions& Heights) {
  for (int i = Size(Positions) - 2; i >= 1; --i) {
    if (!fEqual(Positions[i - 1], Positions[i], Gap + kNarrow)) continue;
    const bool isHigher = Heights[i - 1] > Heights[i];
    if (isHigher && i > 1 && fGreat(Heights[i - 1], Heights[i - 2])) continue;
    Heights.erase(Heights.begin() + i - 1);
    Positions.erase(Positions.begin() + (isHigher ? i - 1 : i));
  }
}

// The widest run of steps around step K that are not higher than it, as the positions of its ends.
std::pair<double, double> RunOf(int K, const TPositions& Positions, const TPositions& Heights) {
  const auto isLow = [&](int i) { return !fGreat(Heights[i], Heights[K]); };
  int left = K;
  while (left > 0 && isLow(left - 1)) --left;
  int right = K + 1;
  while (right < Size(Heights) && isLow(right)) ++right;
  return {Positions[left], Positions[right]};
}

bool FitsTurnedEitherWay(const TVRect2D& Rect, double Gap, const TVRect2D& Area) {
  const auto [shortSide, longSide] = std::minmax({Rect.Width() + Gap, Rect.Height() + Gap});
  const auto [shortArea, longArea] = std::minmax({Area.Width(), Area.Height()});
  return !fGreat(longSide, longArea) && !fGreat(shortSide, shortArea);
}

}  // namespace

TRSKF::TLStair::TLStair(const TVRect2D& APlate, const TNestedRects& ANestedRects, double AGap)
    : FGap(AGap),
      FXs{APlate.Left, APlate.Right},
      FYs{APlate.Bottom, APlate.Top},
      FXHeights{APlate.Bottom},
      FYHeights{APlate.Left} {
  for (const TNestedRect& item : ANestedRects) AddRect(item.BoundBox().Inflate(AGap / 2));
  RemoveDup();
}

void TRSKF::TLStair::AddRect(const TVRect2D& Rect) {
  AddStair(Rect.Left, Rect.Right, Rect.Top, FXs, FXHeights);
  AddStair(Rect.Bottom, Rect.Top, Rect.Right, FYs, FYHeights);
}

void TRSKF::TLStair::RemoveDup() {
  JoinEqualSteps(FXs, FXHeights);
  JoinNarrowSteps(FGap, FXs, FXHeights);
  JoinEqualSteps(FYs, FYHeights);
  JoinNarrowSteps(FGap, FYs, FYHeights);
}

std::vector<TVRect2D> TRSKF::TLStair::FindCandidateArea(const TNestRectList& ARects) const {
  double smallest = 1.7e308;
  for (const TNestRect& rect : ARects) smallest = std::min({smallest, rect.BoundBox.Width(), rect.BoundBox.Height()});

  std::vector<TVRect2D> areas;
  const auto keep = [&](double left, double bottom, double right, double top) {
    const TVRect2D area = TVRect2D::FromBounds(top, left, bottom, right).Inflate(-FGap / 2);
    if (!fGreat(area.Width(), smallest) || !fGreat(area.Height(), smallest)) return;
    const auto fits = [&](const TNestRect& rect) { return FitsTurnedEitherWay(rect.BoundBox, FGap, area); };
    if (std::any_of(ARects.begin(), ARects.end(), fits)) areas.push_back(area);
  };
  for (int k = 0; k < Size(FXHeights); ++k) {
    const auto [left, right] = RunOf(k, FXs, FXHeights);
    keep(left, FXHeights[k], right, FYs.back());
  }
  for (int k = 0; k < Size(FYHeights); ++k) {
    const auto [bottom, top] = RunOf(k, FYs, FYHeights);
    keep(FYHeights[k], bottom, FXs.back(), top);
  }
  return areas;
}

}  // namespace platenest
