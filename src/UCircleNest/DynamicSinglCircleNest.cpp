#include <algorithm>
#include <numbers>
#include <utility>

#include "platenest/UCircleNest/MaxCirclePacking.h"
#include "platenest/foundation/Sort.h"

namespace platenest {

namespace {

constexpr double kSameColumn = 1e-6;      // drawing units
constexpr double kSameDensity = 1e-12;    // share of the density
constexpr double kLeastShareOfPlate = 3;  // a third: what lies there always stays

int CompareXY(const TPoint2D& A, const TPoint2D& B) {
  if (A.X != B.X) return A.X < B.X ? -1 : 1;
  return A.Y < B.Y ? -1 : A.Y > B.Y ? 1 : 0;
}

TVPoint2DList Pack(double ExtentX, double ExtentY, double Radius, double Gap) {
  TMaxCirclePacking packing(TVRect2D::FromSize(ExtentX, ExtentY), Radius, 0, Gap);
  packing.TryMaxFill();
  return packing.TakeResultPt();
}

// Equal but for rounding is not denser, so that a longer use of the plate stays.
bool Denser(double Trial, double Best) {
  return Trial > Best * (1 + kSameDensity);
}

double LargestX(const TVPoint2DList& Points) {
  double largest = 0;
  for (const TPoint2D& point : Points) largest = std::max(largest, point.X);
  return largest;
}

}  // namespace

double DynamicSinglCircleNest(double Radius, double ExtentY, double ExtentX, double Gap, TVPoint2DList& Points) {
  const double area = std::numbers::pi * (Radius + Gap / 2) * (Radius + Gap / 2);
  const auto density = [&](int Count, double Length) { return Count * area / (ExtentY + Gap) / (Length + Gap); };
  TVPoint2DList columns = Pack(ExtentX, ExtentY, Radius, Gap);
  SortBy(columns, CompareXY);
  double best = columns.empty() ? 0 : density(Size(columns), ExtentX);
  int kept = Size(columns);
  TVPoint2DList shorter;  // takes the place of the columns where it is not empty
  for (int left = kept - 1; left > 0 && ExtentX < kLeastShareOfPlate * columns[left].X; --left) {
    const double x = columns[left - 1].X;
    if (columns[left].X - x <= kSameColumn) continue;
    if (const double trial = density(left, x + Radius); Denser(trial, best)) {
      best = trial;
      kept = left;
      shorter.clear();
    }
    TVPoint2DList repacked = Pack((x + columns[left].X) / 2, ExtentY, Radius, Gap);
    if (const double trial = density(Size(repacked), LargestX(repacked) + Radius); Denser(trial, best)) {
      best = trial;
      shorter = std::move(repacked);
    }
  }
  columns.resize(kept);
  Points = std::move(shorter.empty() ? columns : shorter);
  return best;
}

}  // namespace platenest
