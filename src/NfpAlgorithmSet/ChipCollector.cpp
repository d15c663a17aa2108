#include "ChipCollector.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "platenest/NfpAlgorithmSet/KineticConvolution.h"
#include "platenest/NfpAlgorithmSet/NfpStatistics.h"

namespace platenest {

namespace {

constexpr int kStartOfTurn = 5;           // angles below it count as a full turn where a scan begins
constexpr double kSurelyTurned = 0.0001;  // cross product at length 100, so 1e-8 radian
constexpr int kNearAngle = 50;            // 1e-8 radian: within it two angles are compared without wrapping
constexpr int kSameAngle = 9;
constexpr int kPastRange = 1000;  // a scan goes on by this much behind the end of its range
constexpr int kLapsPerScan = 2;   // around the list, where contradictory tests would go on for ever

// Sides by the cross product and, for directions that are next to parallel, by the angles.
struct TTolerantSides {
  static bool IsRight(const TKMPEdge& X, const TKMPEdge& Y, bool ParallelInclude) {
    double mul = 0;
    if (X.isRight(Y, ParallelInclude, mul)) return true;
    if (std::fabs(mul) > kSurelyTurned) return false;
    const int d = X.FAngle - Y.FAngle;
    if (std::abs(d) < kNearAngle) return (ParallelInclude && std::abs(d) < kSameAngle) || d >= 1;
    return std::abs(d + FULL_TURN_ANGLE) < kSameAngle;
  }
  static bool IsLeft(const TKMPEdge& X, const TKMPEdge& Y, bool ParallelInclude) {
    double mul = 0;
    if (X.IsLeft(Y, ParallelInclude, mul)) return true;
    if (std::fabs(mul) > kSurelyTurned) return false;
    const int d = X.FAngle - Y.FAngle;
    if (std::abs(d) < kNearAngle) return (ParallelInclude && std::abs(d) < kSameAngle) || d < 0;
    return std::abs(FULL_TURN_ANGLE - d) < kSameAngle;
  }
};

// Sides by the angles alone, so that no two answers contradict each other.
struct TStrictSides {
  static int Turn(const TKMPEdge& X, const TKMPEdge& Y) {
    const int d = Y.FAngle - X.FAngle;
    if (d > HALF_TURN_ANGLE) return d - FULL_TURN_ANGLE;
    return d < -HALF_TURN_ANGLE ? d + FULL_TURN_ANGLE : d;
  }
  static bool IsRight(const TKMPEdge& X, const TKMPEdge& Y, bool ParallelInclude) {
    const int d = Turn(X, Y);
    return d < 0 || (ParallelInclude && d == 0);
  }
  static bool IsLeft(const TKMPEdge& X, const TKMPEdge& Y, bool ParallelInclude) {
    const int d = Turn(X, Y);
    return d > 0 || (ParallelInclude && d == 0);
  }
};

// Lays the chips of every vertex of one loop with the directions of the other one that lie in the turn at that vertex.
template <class TSides>
class TCollector {
 public:
  TCollector(const TKMPLoop& A, const TKMPLoop& B, TChipList& Chips, bool IsFirst)
      : FA(A), FB(B), FChips(Chips), FIsFirst(IsFirst), FMostSteps(kLapsPerScan * B.Count()) {}

  void Run() {
    for (int entry = 0; entry < FA.Count(); ++entry) {
      StartAt(FA[entry].FAngle);
      // The edges of one direction go on from where the scan of the one before has ended.
      for (const TKMPEdge& edge : FA.Chain(entry)) {
        const TKMPEdge& next = FA.Next(edge);
        Scan(edge, next);
        if (FFirst >= 0) LayRange(next);
      }
    }
  }

 private:
  void StartAt(int Angle) {
    FPlace = FB.FindFirstEqualLarger(Angle < kStartOfTurn ? FULL_TURN_ANGLE : Angle);
    if (FPlace < 0) FPlace = 0;
  }

  // Directions between Edge and Next: clockwise where the contour turns so, and each border counts for the one loop or
  // for the other, never for both.
  void Scan(const TKMPEdge& Edge, const TKMPEdge& Next) {
    const auto right = [](const TKMPEdge& x, bool parallel) {
      return [&x, parallel](const TKMPEdge& y) { return TSides::IsRight(x, y, parallel); };
    };
    const auto left = [](const TKMPEdge& x, bool parallel) {
      return [&x, parallel](const TKMPEdge& y) { return TSides::IsLeft(x, y, parallel); };
    };
    if (Next.FIsConvex)
      ScanRange(false, Next.FAngle, right(Edge, FIsFirst), left(Next, !FIsFirst));
    else
      ScanRange(true, Next.FAngle, left(Edge, !FIsFirst), right(Next, FIsFirst));
  }

  // Steps back before the range, then through it. Leaves FFirst and FLast at its borders, FFirst below 0 if it is
  // empty.
  template <class TBehindStart, class TBeforeEnd>
  void ScanRange(bool Forward, int EndAngle, TBehindStart IsBehindStart, TBeforeEnd IsBeforeEnd) {
    FFirst = FLast = -1;
    for (int steps = 0; steps < FMostSteps && IsBehindStart(FB[FPlace]); ++steps)
      FPlace = FB.NextEdge(FPlace, !Forward);
    bool sawStart = false;
    bool left = false;
    for (int steps = 0; steps < FMostSteps; ++steps) {
      FPlace = FB.NextEdge(FPlace, Forward);
      const TKMPEdge& edge = FB[FPlace];
      sawStart = sawStart || IsBehindStart(edge);
      const bool beforeEnd = IsBeforeEnd(edge);
      if (beforeEnd && sawStart && FFirst < 0) FFirst = FPlace;
      if (beforeEnd) FLast = FPlace;
      left = left || (!beforeEnd && sawStart);
      if (left && std::abs(edge.FAngle - EndAngle) > kPastRange) return;
    }
  }

  void LayRange(const TKMPEdge& Vertex) {
    const TPoint2D p = Vertex.FLocation;
    for (int i = FFirst;; i = FB.NextEdge(i, !Vertex.FIsConvex)) {
      for (const TKMPEdge& edge : FB.Chain(i)) {
        const TPoint2D start = edge.FLocation + p;
        const TPoint2D end = FB.Next(edge).FLocation + p;
        if (Vertex.FIsConvex)
          FChips.push_back({start, end});
        else
          FChips.push_back({end, start});
      }
      if (i == FLast) return;
    }
  }

  const TKMPLoop& FA;
  const TKMPLoop& FB;
  TChipList& FChips;
  const bool FIsFirst;
  const int FMostSteps;
  int FPlace = 0;
  int FFirst = -1;
  int FLast = -1;
};

template <class TSides>
void CollectBoth(const TKMPLoop& A, const TKMPLoop& B, TChipList& Chips) {
  Chips.clear();
  TCollector<TSides>(A, B, Chips, true).Run();
  TCollector<TSides>(B, A, Chips, false).Run();
  NfpStatistics.Chips += Size(Chips);
}

std::uint64_t Checksum(const TPoint2D& P) {
  constexpr std::uint64_t odd1 = 0x9E3779B97F4A7C15u;
  constexpr std::uint64_t odd2 = 0xC2B2AE3D27D4EB4Fu;
  std::uint64_t bits = std::bit_cast<std::uint64_t>(P.X) * odd1;
  bits = (bits ^ (bits >> 32)) + std::bit_cast<std::uint64_t>(P.Y);
  bits *= odd2;
  bits = (bits ^ (bits >> 29)) * odd1;
  return bits ^ (bits >> 32);
}

}  // namespace

namespace detail {

bool IsBalanced(const TChipList& Chips) {
  std::uint64_t sum = 0;
  for (const TChip& chip : Chips) sum += Checksum(chip.FEndPoint) - Checksum(chip.FStartPoint);
  return sum == 0;
}

void CollectConvolution(const TKMPLoop& A, const TKMPLoop& B, TChipList& Chips) {
  CollectBoth<TTolerantSides>(A, B, Chips);
  if (IsBalanced(Chips)) return;
  ++NfpStatistics.Recollected;
  CollectBoth<TStrictSides>(A, B, Chips);
}

}  // namespace detail

void TKineticConvolution::CollectChains(const TKMPLoop& loopA, const TKMPLoop& loopB, TChipList& chips, bool isFirst) {
  TCollector<TTolerantSides>(loopA, loopB, chips, isFirst).Run();
}

}  // namespace platenest
