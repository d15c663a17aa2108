#include "ExactMinkowski.h"

#include <algorithm>

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

// Sum of two convex counter-clockwise contours, by merging their edges in the order of their directions. Exact.
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

}  // namespace

TPaths MinkowskiSumOfPieces(const std::vector<TPath>& A, const std::vector<TPath>& B) {
  std::vector<TPath> sums;
  sums.reserve(A.size() * B.size());
  for (const TPath& a : A) {
    for (const TPath& b : B) sums.push_back(ConvexSum(a, b));
  }
  return UniteMany(std::move(sums));
}

TPaths ForbiddenRegion(const TPaths& Static, const TPaths& Dynamic) {
  return MinkowskiSumOfPieces(ConvexPieces(Static), ConvexPieces(Negated(Dynamic)));
}

TPaths ForbiddenRegion(const TVHPolygon& Static, const TVHPolygon& Dynamic) {
  return ForbiddenRegion(PolygonOf(Static), PolygonOf(Dynamic));
}

}  // namespace platenest
