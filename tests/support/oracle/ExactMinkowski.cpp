#include "ExactMinkowski.h"

#include <algorithm>
#include <stdexcept>

#include "ConvexPieces.h"
#include "OverlapDepth.h"

namespace platenest {

namespace {

// Contours of a first batch, and results that are united into one at each level above.
constexpr std::size_t kFirstBatch = 16;
constexpr std::size_t kFan = 4;
constexpr Int64 kUnit = 100000;

std::size_t LowestOf(const TPath& Contour) {
  const auto less = [](const TIntPoint& a, const TIntPoint& b) { return a.Y < b.Y || (a.Y == b.Y && a.X < b.X); };
  return static_cast<std::size_t>(std::min_element(Contour.begin(), Contour.end(), less) - Contour.begin());
}

// United in small batches and their results level by level, which is faster than at once.
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

void RequireOnGrid(const TPaths& Polygon) {
  for (const TPath& contour : Polygon) {
    for (std::size_t i = 0; i < contour.size(); ++i) {
      const TIntPoint& at = contour[i];
      const TIntPoint& next = Next(contour, i);
      if (at.X % kUnit != 0 || at.Y % kUnit != 0) throw std::invalid_argument("a vertex is off the unit grid");
      if (at.X != next.X && at.Y != next.Y) throw std::invalid_argument("an edge is oblique");
    }
  }
}

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
  RequireOnGrid(Static);
  RequireOnGrid(Dynamic);
  const TIntRect s = TPathUtils::BoundBox(Static);
  const TIntRect d = TPathUtils::BoundBox(Dynamic);
  Int64 taken = 0;
  for (Int64 y = s.Bottom - d.Top; y < s.Top - d.Bottom; y += kUnit)
    for (Int64 x = s.Left - d.Right; x < s.Right - d.Left; x += kUnit)
      taken += OverlapsAt(Static, Dynamic, {x + kUnit / 2, y + kUnit / 2});
  return taken;
}

}  // namespace platenest
