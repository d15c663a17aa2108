#include "FiveblockPoints.h"

#include <algorithm>
#include <iterator>

#include "platenest/URectNest/Raster.h"

namespace platenest::detail {

namespace {

// The sums of sides up to L, and L.
std::vector<int> ConicCombinations(int L, int A, int B) {
  std::vector<bool> isSum(static_cast<std::size_t>(L) + 1);
  std::vector<int> sums;
  for (int x = 0; x <= L; ++x) {
    const auto reached = [&](int side) { return x >= side && isSum[static_cast<std::size_t>(x - side)]; };
    if (x != 0 && !reached(A) && !reached(B)) continue;
    isSum[static_cast<std::size_t>(x)] = true;
    sums.push_back(x);
  }
  if (sums.back() != L) sums.push_back(L);
  return sums;
}

std::vector<int> ReducedRaster(int Length, const std::vector<int>& Sums, const std::vector<int>& Normal) {
  std::vector<int> points(Sums.size() + 1);
  const int used = TRaster::ConstructReducedRaster(Length, Sums, Size(Sums) - 1, points, Normal);
  points.resize(static_cast<std::size_t>(used));
  return points;
}

}  // namespace

TFiveblockPoints::TFiveblockPoints(int L, int W, int A, int B) {
  const std::vector<int> sums = ConicCombinations(L, A, B);
  FPositions = TRaster::ConstructNormalList(L, sums);
  const int normalW = FPositions[static_cast<std::size_t>(W)];
  const std::vector<int> alongL = ReducedRaster(L, sums, FPositions);
  const std::vector<int> alongW = ReducedRaster(W, sums, FPositions);
  std::ranges::set_union(alongL, alongW, std::back_inserter(FPoints));
  for (int x = 0, position = 0; x <= L; ++x) {
    if (position + 1 < Rows() && Length(position + 1) == x) ++position;
    FPositions[static_cast<std::size_t>(x)] = position;
  }
  FColumns = Position(normalW) + 1;
}

}  // namespace platenest::detail
