#include "OutwardThinning.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "ContourRing.h"
#include "platenest/foundation/Line2D.h"
#include "platenest/foundation/MinHeap.h"

namespace platenest::detail {

namespace {

constexpr double kParallelSine = 1e-9;      // edges that meet at less have no meeting point worth having
constexpr double kLongestExtension = 1000;  // times the edge: beyond, the rounding of its ends would tilt it too far

class TThinner {
 public:
  TThinner(std::span<const TPoint2D> Vertices, const TThinningLimits& Limits)
      : FRing(Vertices), FLimits(Limits), FStamps(FRing.IndexEnd(), 0), FDrift(FRing.IndexEnd(), 0) {}

  std::vector<TPoint2D> Run() {
    if (FRing.Count() > 3)
      for (int i = 0; i < FRing.IndexEnd(); ++i) Propose(i);
    double area = 0;
    while (FHeap.Count() > 0 && FRing.Count() > 3) {
      const double added = FHeap.TopKey();
      if (area + added > FLimits.Area) break;
      const TMove move = FHeap.Pop();
      if (!FRing.IsAlive(move.Vertex) || FStamps[move.Vertex] != move.Stamp) continue;
      if (move.IsCut ? Cut(move.Vertex) : Meet(move.Vertex)) area += added;
    }
    return FRing.Points();
  }

 private:
  struct TMove {
    int Vertex = 0;
    int Stamp = 0;  // of the vertex when the move was proposed
    bool IsCut = false;
  };

  // How far the input may be from the ring along the edges that a move makes.
  double DriftOfCut(int Vertex) const {
    const int before = FRing.Prev(Vertex);
    double t = 0;
    const TVLine2D bridge{FRing.At(before), FRing.At(FRing.Next(Vertex))};
    return std::max(FDrift[before], FDrift[Vertex]) + bridge.SegmentDistanceTo(FRing.At(Vertex), t);
  }
  double DriftOfMeeting(int Vertex, const TPoint2D& Meeting) const {
    const TVLine2D edge{FRing.At(Vertex), FRing.At(FRing.Next(Vertex))};
    double t = 0;
    return FDrift[Vertex] + edge.SegmentDistanceTo(Meeting, t);
  }

  // Where the neighbours of the edge that leaves Vertex meet beyond it, if both its ends are tips and they meet at all.
  std::optional<TPoint2D> MeetingPoint(int Vertex) const {
    const int after = FRing.Next(Vertex);
    if (!(FRing.TurnAt(Vertex) > 0) || !(FRing.TurnAt(after) > 0)) return std::nullopt;
    const TPoint2D in = FRing.At(Vertex) - FRing.At(FRing.Prev(Vertex));
    const TPoint2D edge = FRing.At(after) - FRing.At(Vertex);
    const TPoint2D out = FRing.At(FRing.Next(after)) - FRing.At(after);
    const double cross = in.CrossMul(out);
    if (!(cross > kParallelSine * in.Mag() * out.Mag())) return std::nullopt;
    const double inward = edge.CrossMul(out) / cross;
    const double outward = in.CrossMul(edge) / cross;
    if (!(std::max(inward, outward) <= kLongestExtension)) return std::nullopt;
    return FRing.At(Vertex) + in * inward;
  }

  // A straight vertex costs nothing, but one where the contour folds back stays.
  bool MayCut(int Vertex) const {
    const double turn = FRing.TurnAt(Vertex);
    if (turn != 0) return turn < 0;
    const TPoint2D& point = FRing.At(Vertex);
    return (point - FRing.At(FRing.Prev(Vertex))).DotMul(FRing.At(FRing.Next(Vertex)) - point) > 0;
  }

  void Propose(int Vertex) {
    ++FStamps[Vertex];
    if (MayCut(Vertex)) {
      if (DriftOfCut(Vertex) <= FLimits.Distance)
        FHeap.Add({Vertex, FStamps[Vertex], true}, std::fabs(FRing.TurnAt(Vertex)) / 2);
      return;
    }
    const std::optional<TPoint2D> meeting = MeetingPoint(Vertex);
    if (!meeting || !(DriftOfMeeting(Vertex, *meeting) <= FLimits.Distance)) return;
    const TPoint2D& from = FRing.At(Vertex);
    FHeap.Add({Vertex, FStamps[Vertex], false},
              TPoint2DUtils::TriangleArea(from, *meeting, FRing.At(FRing.Next(Vertex)), false));
  }

  bool Cut(int Vertex) {
    if (FRing.BlockerOfCut(Vertex) >= 0) return false;
    const int before = FRing.Prev(Vertex);
    FDrift[before] = DriftOfCut(Vertex);
    FRing.Cut(Vertex);
    ProposeAround(before, FRing.Next(before));
    return true;
  }

  bool Meet(int Vertex) {
    const std::optional<TPoint2D> meeting = MeetingPoint(Vertex);
    if (!meeting || !FRing.MayMeet(Vertex, *meeting)) return false;
    const int before = FRing.Prev(Vertex);
    const double drift = DriftOfMeeting(Vertex, *meeting);
    FDrift[before] = std::max(FDrift[before], drift);
    FDrift[Vertex] = std::max(FDrift[FRing.Next(Vertex)], drift);
    FRing.Meet(Vertex, *meeting);
    ProposeAround(before, FRing.Next(Vertex));
    return true;
  }

  // The moves that look at an edge between First and Last.
  void ProposeAround(int First, int Last) {
    Propose(FRing.Prev(First));
    for (int vertex = First; vertex != Last; vertex = FRing.Next(vertex)) Propose(vertex);
    Propose(Last);
  }

  TContourRing FRing;
  TThinningLimits FLimits;
  std::vector<int> FStamps;
  std::vector<double> FDrift;  // of the edge that leaves the vertex
  TMinHeap<TMove> FHeap;
};

}  // namespace

std::vector<TPoint2D> ThinnedOutward(std::span<const TPoint2D> Vertices, const TThinningLimits& Limits) {
  return TThinner(Vertices, Limits).Run();
}

}  // namespace platenest::detail
