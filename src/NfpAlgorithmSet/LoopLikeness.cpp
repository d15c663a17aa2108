#include <cmath>
#include <cstdlib>

#include "KineticConvolutionRules.h"
#include "platenest/NfpAlgorithmSet/KineticConvolution.h"

namespace platenest {

using namespace detail;

namespace {

double BoxArea(const TKMPLoop& Loop) {
  return Loop.GetBoundbox().Area();
}

bool EndsAtFullTurn(const TKMPLoop& Loop) {
  return FULL_TURN_ANGLE - Loop[Loop.Count() - 1].FAngle < kFullTurnWithin;
}

// The same directions, or all but one next to the full turn, and many edges; told by the first two of them.
bool HaveSameAngles(const TKMPLoop& A, const TKMPLoop& B) {
  const int directions = std::abs(A.Count() - B.Count());
  if (directions > 1 || (directions == 1 && !EndsAtFullTurn(A) && !EndsAtFullTurn(B))) return false;
  return A[0].FAngle == B[0].FAngle && std::abs(A[1].FAngle - B[1].FAngle) < kSecondAngleWithin &&
         Int64{A.FCount()} * B.FCount() > kSameAnglesProductAbove;
}

}  // namespace

int TKineticConvolution::LoopSimilar(const TKMPLoop& loop1, const TKMPLoop& loop2) {
  const int directions = std::abs(loop1.Count() - loop2.Count());
  const int edges = std::abs(loop1.FCount() - loop2.FCount());
  const double area = std::fabs(loop1.Area() - loop2.Area());
  const double areaShare = area / loop1.Area();
  const double edgeCount = loop1.FCount();
  if (edges < kTwinEdgesBelow && (directions < kTwinDirectionsBelow || edges / edgeCount < kTwinEdgesShareBelow) &&
      areaShare < kTwinAreaShareBelow) {
    if (directions == 0 && edges < kSameShapeEdgesBelow && area < kSameShapeAreaBelow) return 4;
    if (area < kTwinAreaBelow) return 3;
  }
  if (HaveSameAngles(loop1, loop2)) return 2;
  for (const TLikeArea& row : kLikeAreas)
    if (areaShare < row.AreaShareBelow && edges < row.EdgesBelow) return row.Similar;
  const double share1 = loop1.Count() / edgeCount;
  if (share1 < kFewDirectionsBelow && loop2.Count() * share1 / loop2.FCount() < kFewDirectionsBothBelow) return 1;
  if (edgeCount / loop1.Count() <= kRegularEdgesPerDirectionAbove ||
      static_cast<double>(loop2.FCount()) / loop2.Count() <= kRegularEdgesPerDirectionAbove)
    return 0;
  const bool boxLike = loop1.Area() / BoxArea(loop1) > kBoxFullnessAbove;
  return boxLike && (loop1.Area() - loop2.Area()) / loop1.Area() < kAreaLossBelow ? 2 : 1;
}

// Sizes of areas are compared: the sign only tells which of the two is the cavity.
bool TKineticConvolution::BoundCheck(const TKMPLoop& staticLoop, const TKMPLoop& dynamicLoop) {
  const bool staticCavity = staticLoop.Area() < 0;
  const bool dynamicCavity = dynamicLoop.Area() < 0;
  const double staticArea = std::fabs(staticLoop.Area());
  const double dynamicArea = std::fabs(dynamicLoop.Area());
  if (staticCavity && !dynamicCavity && staticArea <= dynamicArea) return false;
  if (dynamicCavity && !staticCavity && staticArea >= dynamicArea) return false;
  const TVRect2D staticBox = staticLoop.GetBoundbox();
  const TVRect2D dynamicBox = dynamicLoop.GetBoundbox();
  const bool holds =
      staticCavity ? staticBox.Holds(dynamicBox.Inflate(kBoxMargin)) : dynamicBox.Holds(staticBox.Inflate(kBoxMargin));
  if (!holds) return false;
  const double staticFullness = staticArea / staticBox.Area();
  const double dynamicFullness = dynamicArea / dynamicBox.Area();
  const double staticFilled = staticArea * staticFullness;
  const double dynamicFilled = dynamicArea * dynamicFullness;
  if (staticCavity && staticFullness > kCavityFullnessAbove && kFittingShare * dynamicFilled >= staticFilled)
    return false;
  return !(dynamicCavity && dynamicFullness > kCavityFullnessAbove && kFittingShare * staticFilled >= dynamicFilled);
}

}  // namespace platenest
