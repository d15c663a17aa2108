#include "SimpleContour.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

#include "platenest/foundation/Types.h"

namespace platenest::detail {

namespace {

__extension__ using TWide = __int128;

constexpr std::size_t kMostPoints = 400;  // beyond, pairs of edges may cost more than a union

// Twice the area of the triangle, exact.
TWide Turn(const TIntPoint& A, const TIntPoint& B, const TIntPoint& C) {
  return static_cast<TWide>(B.X - A.X) * (C.Y - B.Y) - static_cast<TWide>(B.Y - A.Y) * (C.X - B.X);
}

bool IsFlat(const TIntPoint& A, const TIntPoint& B, const TIntPoint& C) {
  return Turn(A, B, C) == 0;
}

// An edge of the contour, from left to right.
struct TEdge {
  TIntPoint Left;
  TIntPoint Right;
  int Index;
};

bool AreOnOneSide(const TEdge& Edge, const TEdge& Other) {
  const TWide left = Turn(Edge.Left, Edge.Right, Other.Left);
  const TWide right = Turn(Edge.Left, Edge.Right, Other.Right);
  return (left > 0 && right > 0) || (left < 0 && right < 0);
}

// For edges that overlap in x. Edges on one line touch where they overlap in y, too.
bool Touch(const TEdge& A, const TEdge& B) {
  const auto [bottomA, topA] = std::minmax(A.Left.Y, A.Right.Y);
  const auto [bottomB, topB] = std::minmax(B.Left.Y, B.Right.Y);
  if (topA < bottomB || topB < bottomA) return false;
  return !AreOnOneSide(A, B) && !AreOnOneSide(B, A);
}

bool IsAbove(const TIntPoint& A, const TIntPoint& B) {
  return A.Y > B.Y || (A.Y == B.Y && A.X > B.X);
}

// Counter-clockwise, turning left everywhere and once round.
bool IsConvex(std::span<const TIntPoint> Contour) {
  int reversals = 0;
  const TIntPoint* before = &Contour[Contour.size() - 2];
  const TIntPoint* at = &Contour.back();
  bool upward = IsAbove(*at, *before);
  for (const TIntPoint& next : Contour) {
    if (Turn(*before, *at, next) <= 0) return false;
    const bool up = IsAbove(next, *at);
    reversals += up != upward;
    upward = up;
    before = std::exchange(at, &next);
  }
  return reversals == 2;
}

// Of a contour that does not cross itself: the turn at its lowest vertex tells.
bool IsCounterClockwise(std::span<const TIntPoint> Contour) {
  const auto lowest = std::ranges::min_element(Contour, [](const auto& a, const auto& b) { return IsAbove(b, a); });
  const TIntPoint& before = lowest == Contour.begin() ? Contour.back() : lowest[-1];
  const TIntPoint& after = lowest + 1 == Contour.end() ? Contour.front() : lowest[1];
  return Turn(before, *lowest, after) > 0;
}

// Neighbours have a vertex in common, and nothing else where no vertex is flat.
bool TouchesItself(std::span<const TIntPoint> Contour) {
  static thread_local std::vector<TEdge> edges;
  edges.clear();
  const int count = Size(Contour);
  for (int i = 0; i < count; ++i) {
    const TIntPoint& start = Contour[i];
    const TIntPoint& end = Contour[i + 1 == count ? 0 : i + 1];
    edges.push_back(start.X <= end.X ? TEdge{start, end, i} : TEdge{end, start, i});
  }
  std::ranges::sort(edges, {}, [](const TEdge& edge) { return edge.Left.X; });
  for (auto edge = edges.begin(); edge != edges.end(); ++edge) {
    for (auto other = edge + 1; other != edges.end() && other->Left.X <= edge->Right.X; ++other) {
      const int apart = std::abs(edge->Index - other->Index);
      if (apart != 1 && apart != count - 1 && Touch(*edge, *other)) return true;
    }
  }
  return false;
}

}  // namespace

void DropFlatVertices(TPath& Points, std::size_t Begin) {
  std::size_t end = Begin;
  for (std::size_t i = Begin; i < Points.size(); ++i) {
    const TIntPoint point = Points[i];
    while (end >= Begin + 2 && IsFlat(Points[end - 2], Points[end - 1], point)) --end;
    Points[end++] = point;
  }
  std::size_t first = Begin;
  while (end >= first + 3) {
    if (IsFlat(Points[end - 2], Points[end - 1], Points[first]))
      --end;
    else if (IsFlat(Points[end - 1], Points[first], Points[first + 1]))
      ++first;
    else
      break;
  }
  if (end < first + 3) end = first;
  Points.resize(end);
  Points.erase(Points.begin() + static_cast<std::ptrdiff_t>(Begin),
               Points.begin() + static_cast<std::ptrdiff_t>(first));
}

bool IsSimpleCounterClockwise(std::span<const TIntPoint> Contour) {
  if (Contour.size() < 3) return false;
  if (IsConvex(Contour)) return true;
  return Contour.size() <= kMostPoints && IsCounterClockwise(Contour) && !TouchesItself(Contour);
}

}  // namespace platenest::detail
