#include "CircleGrid.h"

#include <algorithm>
#include <cmath>

#include "platenest/foundation/Rounding.h"

namespace platenest::detail {

namespace {

constexpr double kCellsACircle = 2;
constexpr double kMostSide = 20000;  // cells along a side

}  // namespace

TCircleGrid::TCircleGrid(double Width, double Height, double LeastRadius, double Expected)
    : FWidth(Width), FHeight(Height), FLeastRadius(LeastRadius), FExpected(std::max(Expected, 16.0)) {}

int TCircleGrid::LevelOf(double Radius) const {
  return std::max(0, Floor<int>(std::log2(Radius / FLeastRadius)));
}

int TCircleGrid::CellOf(double At, double Cell, int Count) {
  return Trunc<int>(std::clamp(At / Cell, 0.0, Count - 1.0));
}

TCircleGrid::TLevel& TCircleGrid::LevelFor(double Radius) {
  const int index = LevelOf(Radius);
  if (index >= static_cast<int>(FLevels.size())) FLevels.resize(index + 1);
  TLevel& level = FLevels[index];
  if (!level.First.empty()) return level;
  const double few = std::sqrt(FWidth * FHeight / (kCellsACircle * FExpected));
  level.MostRadius = FLeastRadius * std::ldexp(1.0, index + 1);
  level.Cell = std::max({level.MostRadius, few, FWidth / kMostSide, FHeight / kMostSide});
  level.Columns = Ceil<int>(FWidth / level.Cell) + 1;
  level.Rows = Ceil<int>(FHeight / level.Cell) + 1;
  level.First.assign(static_cast<std::size_t>(level.Columns) * level.Rows, -1);
  return level;
}

void TCircleGrid::Add(const TPoint2D& Center, double Radius) {
  TLevel& level = LevelFor(Radius);
  const std::size_t cell = static_cast<std::size_t>(CellOf(Center.Y, level.Cell, level.Rows)) * level.Columns +
                           CellOf(Center.X, level.Cell, level.Columns);
  FNext.push_back(level.First[cell]);
  level.First[cell] = static_cast<int>(FDiscs.size());
  FDiscs.push_back({Center, Radius});
}

// Visits all circles that come that near, and others, until Visit returns true.
template <class Visitor>
bool TCircleGrid::VisitNear(const TPoint2D& Point, double Reach, Visitor Visit) const {
  for (const TLevel& level : FLevels) {
    if (level.First.empty()) continue;
    const double reach = Reach + level.MostRadius;
    const int left = CellOf(Point.X - reach, level.Cell, level.Columns);
    const int right = CellOf(Point.X + reach, level.Cell, level.Columns);
    const int bottom = CellOf(Point.Y - reach, level.Cell, level.Rows);
    const int top = CellOf(Point.Y + reach, level.Cell, level.Rows);
    for (int row = bottom; row <= top; ++row)
      for (int column = left; column <= right; ++column)
        for (int i = level.First[static_cast<std::size_t>(row) * level.Columns + column]; i >= 0; i = FNext[i])
          if (Visit(i)) return true;
  }
  return false;
}

bool TCircleGrid::IsFree(const TPoint2D& Point, double Reach, double Slack) const {
  return !VisitNear(Point, Reach, [&](int i) {
    const TDisc& disc = FDiscs[i];
    const double dx = disc.Center.X - Point.X;
    const double dy = disc.Center.Y - Point.Y;
    const double least = disc.Radius + Reach - Slack;
    return dx * dx + dy * dy < least * least;
  });
}

void TCircleGrid::FindNear(const TPoint2D& Point, double Reach, std::vector<int>& Found) const {
  Found.clear();
  VisitNear(Point, Reach, [&](int i) {
    const TDisc& disc = FDiscs[i];
    const double dx = disc.Center.X - Point.X;
    const double dy = disc.Center.Y - Point.Y;
    const double most = disc.Radius + Reach;
    if (dx * dx + dy * dy <= most * most) Found.push_back(i);
    return false;
  });
}

}  // namespace platenest::detail
