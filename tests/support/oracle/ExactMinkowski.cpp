#include "ExactMinkowski.h"

#include <algorithm>
#include <stdexcept>

#include "ConvexPieces.h"

namespace platenest {

namespace {

// Contours of a first batch, and results that are united into one at each level above.
constexpr std::size_t kFirstBatch = 16;
constexpr std::size_t kFan = 4;

std::size_t LowestOf(const TPath& Contour) {
  const auto less = [](const TIntPoint& a, const TIntPoint& b) { return a.Y < b.Y || (a.Y == b.Y && a.X < b.X); };
  return static_cast<std::size_t>(std::min_element(Contour.begin(), Contour.end(), less) - Contour.begin());
}

// Unit cells of one polygon as flags over its bounding box.
class TCells {
 public:
  explicit TCells(const TPaths& Polygon) {
    const TIntRect box = TPathUtils::BoundBox(Polygon);
    if (!box.IsValid()) throw std::invalid_argument("a shape without area has no cells");
    Left = Whole(box.Left);
    Bottom = Whole(box.Bottom);
    Columns = Whole(box.Right) - Left;
    Rows = Whole(box.Top) - Bottom;
    RequireRectilinear(Polygon);
    for (Int64 y = 0; y < Rows; ++y) {
      for (Int64 x = 0; x < Columns; ++x) Cells.push_back(PlaceOf(Middle(x, y), Polygon) == TPlace::Inside);
    }
  }
  bool At(Int64 X, Int64 Y) const { return Cells[static_cast<std::size_t>(Y * Columns + X)]; }

  Int64 Left = 0, Bottom = 0, Columns = 0, Rows = 0;

 private:
  static constexpr Int64 kUnit = 100000;

  static Int64 Whole(Int64 V) {
    if (V % kUnit != 0) throw std::invalid_argument("a vertex is off the unit grid");
    return V / kUnit;
  }
  static void RequireRectilinear(const TPaths& Polygon) {
    for (const TPath& contour : Polygon) {
      for (std::size_t i = 0; i < contour.size(); ++i) {
        const TIntPoint& next = contour[(i + 1) % contour.size()];
        Whole(contour[i].X);
        Whole(contour[i].Y);
        if (contour[i].X != next.X && contour[i].Y != next.Y) throw std::invalid_argument("an edge is oblique");
      }
    }
  }
  TIntPoint Middle(Int64 X, Int64 Y) const {
    return TPathUtils::CreateIntPoint((Left + X) * kUnit + kUnit / 2, (Bottom + Y) * kUnit + kUnit / 2);
  }

  std::vector<bool> Cells;
};

}  // namespace

TPath ConvexSum(const TPath& A, const TPath& B) {
  const std::size_t startA = LowestOf(A);
  const std::size_t startB = LowestOf(B);
  TPath sum;
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < A.size() || j < B.size()) {
    const TIntPoint& a = A[(startA + i) % A.size()];
    const TIntPoint& b = B[(startB + j) % B.size()];
    sum.push_back(TPathUtils::CreateIntPoint(a.X + b.X, a.Y + b.Y));
    const TIntPoint& nextA = A[(startA + i + 1) % A.size()];
    const TIntPoint& nextB = B[(startB + j + 1) % B.size()];
    const TIntPoint edgeA{nextA.X - a.X, nextA.Y - a.Y};
    const TIntPoint edgeB{nextB.X - b.X, nextB.Y - b.Y};
    TWide turn = Turn({0, 0}, edgeA, edgeB);
    if (i == A.size()) turn = -1;
    if (j == B.size()) turn = 1;
    if (turn >= 0) ++i;
    if (turn <= 0) ++j;
  }
  return sum;
}

TPaths UniteMany(std::vector<TPath> Contours) {
  std::vector<TPaths> parts;
  for (std::size_t begin = 0; begin < Contours.size(); begin += kFirstBatch) {
    const std::size_t end = std::min(begin + kFirstBatch, Contours.size());
    parts.push_back(Normalized(
        {Contours.begin() + static_cast<std::ptrdiff_t>(begin), Contours.begin() + static_cast<std::ptrdiff_t>(end)}));
  }
  while (parts.size() > 1) {
    std::vector<TPaths> larger;
    for (std::size_t begin = 0; begin < parts.size(); begin += kFan) {
      TPaths all;
      for (std::size_t i = begin; i < std::min(begin + kFan, parts.size()); ++i)
        TPathUtils::PathsAddRange(all, parts[i]);
      larger.push_back(Normalized(all));
    }
    parts = std::move(larger);
  }
  return parts.empty() ? TPaths() : std::move(parts.front());
}

TPaths MinkowskiSumOfPieces(const std::vector<TPath>& A, const std::vector<TPath>& B) {
  std::vector<TPath> sums;
  sums.reserve(A.size() * B.size());
  for (const TPath& a : A) {
    for (const TPath& b : B) sums.push_back(ConvexSum(a, b));
  }
  return UniteMany(std::move(sums));
}

TPaths MinkowskiSum(const TPaths& A, const TPaths& B) {
  return MinkowskiSumOfPieces(ConvexPieces(A), ConvexPieces(B));
}

TPaths ForbiddenRegion(const TPaths& Static, const TPaths& Dynamic) {
  return MinkowskiSum(Static, Negated(Dynamic));
}

TPaths ForbiddenRegion(const TVHPolygon& Static, const TVHPolygon& Dynamic) {
  return ForbiddenRegion(PolygonOf(Static), PolygonOf(Dynamic));
}

Int64 CellForbiddenArea(const TPaths& Static, const TPaths& Dynamic) {
  const TCells s(Static);
  const TCells d(Negated(Dynamic));
  const Int64 columns = s.Columns + d.Columns;
  std::vector<bool> taken(static_cast<std::size_t>(columns * (s.Rows + d.Rows)));
  for (Int64 y = 0; y < s.Rows; ++y) {
    for (Int64 x = 0; x < s.Columns; ++x) {
      if (!s.At(x, y)) continue;
      for (Int64 v = 0; v < d.Rows; ++v) {
        for (Int64 u = 0; u < d.Columns; ++u) {
          if (!d.At(u, v)) continue;
          const Int64 corner = (y + v) * columns + x + u;
          for (const Int64 cell : {corner, corner + 1, corner + columns, corner + columns + 1}) {
            taken[static_cast<std::size_t>(cell)] = true;
          }
        }
      }
    }
  }
  return std::count(taken.begin(), taken.end(), true);
}

}  // namespace platenest
