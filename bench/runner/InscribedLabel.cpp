#include "InscribedLabel.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <queue>
#include <span>

namespace platenest::bench {

namespace {

// The least growth at which the label about the origin meets a point of the segment: the growth is a convex function
// along it, so the least one is closed in by thirds.
double GrowthTo(const TPoint2D& A, const TPoint2D& B, double HalfWidth, double HalfHeight) {
  const auto at = [&](double t) {
    const TPoint2D p = A + t * (B - A);
    return std::max(std::fabs(p.X) - HalfWidth, std::fabs(p.Y) - HalfHeight);
  };
  double low = 0;
  double high = 1;
  for (int i = 0; i < 60; ++i) {
    const double left = low + (high - low) / 3;
    const double right = high - (high - low) / 3;
    if (at(left) > at(right))
      low = left;
    else
      high = right;
  }
  return std::min({at(0), at(1), at((low + high) / 2)});
}

bool IsLeftOfCrossing(const TPoint2D& P, const TPoint2D& A, const TPoint2D& B) {
  if ((A.Y > P.Y) == (B.Y > P.Y)) return false;
  return P.X < A.X + (P.Y - A.Y) / (B.Y - A.Y) * (B.X - A.X);
}

struct TCell {
  TPoint2D Center;
  double Half = 0;
  double Margin = 0;

  double Most() const { return Margin + Half; }
  friend bool operator<(const TCell& A, const TCell& B) { return A.Most() < B.Most(); }
};

}  // namespace

double TLabelRoom::MarginAt(const TPoint2D& Center) const {
  double least = std::numeric_limits<double>::infinity();
  bool isInside = false;
  const auto visit = [&](const TVPolyline2D& contour, bool isBorder) {
    const std::span<const TPoint2D> points = contour.Vertices();
    for (std::size_t i = 0; i < points.size(); ++i) {
      const TPoint2D& a = points[i];
      const TPoint2D& b = points[i + 1 == points.size() ? 0 : i + 1];
      const double nearX = std::max({std::min(a.X, b.X) - Center.X, Center.X - std::max(a.X, b.X), 0.0}) - Width / 2;
      const double nearY = std::max({std::min(a.Y, b.Y) - Center.Y, Center.Y - std::max(a.Y, b.Y), 0.0}) - Height / 2;
      if (std::max(nearX, nearY) < least)
        least = std::min(least, GrowthTo(a - Center, b - Center, Width / 2, Height / 2));
      if (isBorder && IsLeftOfCrossing(Center, a, b)) isInside = !isInside;
    }
  };
  for (const TVPolyline2D& contour : Part) visit(contour, true);
  for (const TVPolyline2D& obstacle : Obstacles) visit(obstacle, false);
  return isInside ? least : -std::max(std::fabs(least), std::max(Width, Height));
}

double TLabelRoom::BestMargin(double Pitch) const {
  const TVRect2D box = Part.front().BoundBox();
  std::priority_queue<TCell> cells;
  double best = -std::numeric_limits<double>::infinity();
  const auto add = [&](const TPoint2D& center, double half) {
    const double margin = MarginAt(center);
    best = std::max(best, margin);
    if (margin + half > best + Pitch) cells.push({center, half, margin});
  };
  constexpr int kCells = 16;
  const double side = std::max(box.Width(), box.Height()) / kCells;
  for (int i = 0; i < kCells; ++i)
    for (int j = 0; j < kCells; ++j) {
      const TPoint2D center{box.Left + (i + 0.5) * side, box.Bottom + (j + 0.5) * side};
      if (center.X < box.Right + side && center.Y < box.Top + side) add(center, side / 2);
    }
  while (!cells.empty() && cells.top().Most() > best + Pitch) {
    const TCell cell = cells.top();
    cells.pop();
    const double half = cell.Half / 2;
    for (const double dx : {-half, half})
      for (const double dy : {-half, half}) add(cell.Center + TPoint2D{dx, dy}, half);
  }
  return best;
}

}  // namespace platenest::bench
