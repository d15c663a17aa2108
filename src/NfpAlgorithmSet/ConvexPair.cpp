#include "ConvexPair.h"

#include <cstdlib>

#include "SimpleContour.h"

namespace platenest::detail {

namespace {

constexpr double kShortEdge = 0.001;  // drawing units, a hundred cells of a graph
constexpr double kLeastWidth = 0.001;
constexpr int kNearAngle = 200;      // 2e-6 radian: well above the angles that are compared with tolerance
constexpr double kLeastTurn = 0.01;  // lengths times 1e-8 radian: ten times what a graph takes for straight

// Once round in ascending directions, and wide enough.
bool IsPlainConvex(const TKMPLoop& Loop) {
  if (Loop.Count() != Loop.FCount() || Loop.Count() < 3) return false;
  double length = 0;
  for (int i = 0; i < Loop.Count(); ++i) {
    if (Loop[i].FLpNext != Loop.NextEdge(i, true) || Loop[i].FLength < kShortEdge) return false;
    length += Loop[i].FLength;
  }
  return Loop.Area() > kLeastWidth * length;
}

bool LieAlongOneAxis(const TKMPEdge& A, const TKMPEdge& B) {
  const TPoint2D a = A.FDirectionVector;
  const TPoint2D b = B.FDirectionVector;
  return A.FAngle == B.FAngle && ((a.X == 0 && b.X == 0) || (a.Y == 0 && b.Y == 0));
}

// Difference of their angles.
bool AreNear(const TKMPEdge& A, const TKMPEdge& B, int Difference) {
  return Difference < kNearAngle || A.FLength * B.FLength * Difference < kLeastTurn;
}

bool AreNearAroundFullTurn(const TKMPEdge& First, const TKMPEdge& Last) {
  return AreNear(First, Last, First.FAngle + FULL_TURN_ANGLE - Last.FAngle);
}

}  // namespace

bool MergeConvexLoops(const TKMPLoop& A, const TKMPLoop& B, TPath& Ring) {
  Ring.clear();
  if (!IsPlainConvex(A) || !IsPlainConvex(B)) return false;
  const int countA = A.Count();
  const int countB = B.Count();
  if (AreNearAroundFullTurn(A[0], B[countB - 1]) || AreNearAroundFullTurn(B[0], A[countA - 1])) return false;
  Ring.reserve(static_cast<std::size_t>(countA + countB));
  for (int a = 0, b = 0; a < countA || b < countB;) {
    const TKMPEdge& edgeA = A[a == countA ? 0 : a];
    const TKMPEdge& edgeB = B[b == countB ? 0 : b];
    Ring.push_back(TPathUtils::CreateIntPoint(edgeA.FLocation + edgeB.FLocation, kPathScale));
    const int lead = a == countA ? 1 : b == countB ? -1 : edgeA.FAngle - edgeB.FAngle;
    const bool areBothLeft = a < countA && b < countB;
    const bool areNear = areBothLeft && AreNear(edgeA, edgeB, std::abs(lead));
    if (areNear && !LieAlongOneAxis(edgeA, edgeB)) return false;
    a += areNear || lead < 0;
    b += areNear || lead > 0;
  }
  DropFlatVertices(Ring, 0);
  return IsConvexCounterClockwise(Ring);
}

}  // namespace platenest::detail
