#include <cmath>
#include <random>
#include <span>
#include <utility>
#include <vector>

#include "KineticCircuitsRules.h"
#include "platenest/NfpAlgorithmSet/KineticCircuits.h"
#include "platenest/foundation/LineIntersector.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"

namespace platenest {

using namespace detail;

namespace {

bool AnyHolds(std::span<const TOutlineCall> Calls, int Similar, int Vertices, Int64 Points, int Circuits) {
  return std::ranges::any_of(Calls, [&](const TOutlineCall& call) {
    return Points > call.PointsAbove && Similar >= call.SimilarAtLeast && Vertices >= call.VerticesAtLeast &&
           Vertices < call.VerticesBelow && Circuits > call.CircuitsAbove &&
           Points - Vertices > call.PointsBeyondVerticesAbove &&
           static_cast<double>(Points) / Vertices > call.RatioAbove;
  });
}

// The end of an edge that rises by next to nothing takes the height of its start, so that the edge does not cross a
// level one beside it. Falling edges stay. Edges come in order of their start, each with the ends as moved by then.
void LevelEdges(const TDirectedGraph<int>& Scc, std::vector<TPoint2D>& Points) {
  const int lowest = Scc.LowestId();
  for (int id = lowest; id <= Scc.MaxVertexId(); ++id) {
    for (const int successor : Scc.Successors(id)) {
      TPoint2D& end = Points[successor - lowest];
      const TPoint2D step = end - Points[id - lowest];
      if (std::fabs(step.X) <= kLevelRunAbove) continue;
      const double slope = step.Y / step.X;
      if (slope > kLevelSlopeAbove && slope < kLevelSlopeBelow && std::fabs(step.Y) < kLevelRiseBelow) end.Y -= step.Y;
    }
  }
}

TVLine2DList EdgeLines(const TDirectedGraph<int>& Scc, const std::vector<TPoint2D>& Points) {
  const int lowest = Scc.LowestId();
  TVLine2DList lines;
  for (int id = lowest; id <= Scc.MaxVertexId(); ++id)
    for (const int successor : Scc.Successors(id)) lines.push_back({Points[id - lowest], Points[successor - lowest]});
  return lines;
}

bool Cross(const TVLine2D& A, const TVLine2D& B) {
  const auto isLeft = [](const TVLine2D& line, const TPoint2D& point) {
    return TPoint2DUtils::IsLeft(line.StartPoint, line.EndPoint, point) > 0;
  };
  const auto apart = [&](const TVLine2D& line, const TVLine2D& other) {
    return isLeft(line, other.StartPoint) != isLeft(line, other.EndPoint);
  };
  return apart(A, B) && apart(B, A);
}

// The same pairs in every run, so the answer is the same as well.
bool CrossTooOften(const TVLine2DList& Lines) {
  const double count = static_cast<double>(Lines.size());
  const double pairs = count * (count - 1) / 2;
  if (pairs <= kMostCrossings) return false;
  std::mt19937 random;
  int crossings = 0;
  for (int i = 0; i < kPairsSampled; ++i) {
    const TVLine2D& line = Lines[random() % Lines.size()];
    if (Cross(line, Lines[random() % Lines.size()])) ++crossings;
  }
  return crossings * (pairs / kPairsSampled) > kMostCrossings;
}

// A crossing as one of its two lines sees it.
struct TCut {
  int Line;
  double SquaredDistance;  // from the start of the line
  TPoint2D Point;
};

// A line is not cut at its own ends.
void AddCut(const TVLine2DList& Lines, int Line, const TPoint2D& Point, std::vector<TCut>& Cuts) {
  const TVLine2D& line = Lines[Line];
  if (Point == line.StartPoint || Point == line.EndPoint) return;
  const TPoint2D way = Point - line.StartPoint;
  Cuts.push_back({Line, way.DotMul(way), Point});
}

// Every line in order, as the chain of its pieces between the crossings.
TVLine2DList CutAtCrossings(const TVLine2DList& Lines, const std::vector<TLineHit>& Crossings) {
  std::vector<TCut> cuts;
  cuts.reserve(2 * Crossings.size());
  for (const TLineHit& crossing : Crossings) {
    AddCut(Lines, crossing.Line1, crossing.Point, cuts);
    AddCut(Lines, crossing.Line2, crossing.Point, cuts);
  }
  SortBy(cuts, [](const TCut& a, const TCut& b) {
    if (a.Line != b.Line) return a.Line < b.Line ? -1 : 1;
    return a.SquaredDistance < b.SquaredDistance ? -1 : a.SquaredDistance > b.SquaredDistance ? 1 : 0;
  });
  TVLine2DList pieces;
  pieces.reserve(Lines.size() + cuts.size());
  auto cut = cuts.begin();
  for (int i = 0; i < Size(Lines); ++i) {
    TPoint2D from = Lines[i].StartPoint;
    for (; cut != cuts.end() && cut->Line == i; ++cut) pieces.push_back({std::exchange(from, cut->Point), cut->Point});
    pieces.push_back({from, Lines[i].EndPoint});
  }
  return pieces;
}

}  // namespace

// Before the sweeps: a few long circuits are enough to tell that the tangle is dense.
void TKineticCircuits::EarlyOutline() {
  if (!FSearch.LoopsInside &&
      AnyHolds(kEarlyCalls, FSearch.LoopSimilar, FLongestSccCount, FSearch.Total, CircuitCount()))
    CallOutline();
}

// After the sweeps: similar outlines give few circuits that go round many times.
void TKineticCircuits::LateOutline() {
  if (FSearch.LoopsInside || FSearch.LoopSimilar < kLateSimilarAtLeast || FSearch.OutlineTried ||
      FSearch.Total <= kLatePointsAbove)
    return;
  const double ratio = static_cast<double>(FSearch.Total) / FLongestSccCount;
  for (const TLateOutlineCall& call : kLateCalls) {
    if (CircuitCount() >= call.CircuitsBelow || ratio <= call.RatioAbove) continue;
    CallOutline();
    return;
  }
}

// At most one outline is tried for a graph, whatever comes of it.
bool TKineticCircuits::OutlineInstead() {
  return !FSearch.LoopsInside && !FSearch.OutlineTried && OutlineTrial();
}

bool TKineticCircuits::OutlineTrial() {
  const auto holds = [&](std::span<const TOutlineCall> calls) {
    return AnyHolds(calls, FSearch.LoopSimilar, FLongestSccCount, FSearch.Total, CircuitCount());
  };
  if (holds(kTrialCalls)) return CallOutline();
  return CircuitCount() >= kTrialFewestCircuits && holds(kDenseTrialCalls) && CallOutline();
}

bool TKineticCircuits::CallOutline() {
  FSearch.OutlineTried = true;
  return FSearch.IsClosed ? TryCalcOutline(curGraph.Construct(FSearch.Component)) : TryCalcOutline(curGraph);
}

bool TKineticCircuits::TryCalcOutline(const TDirectedGraph<int>& Scc) {
  std::vector<TPoint2D> points(Graph.Vertices().begin() + Scc.LowestId(), Graph.Vertices().end());
  LevelEdges(Scc, points);
  const TVLine2DList lines = EdgeLines(Scc, points);
  if (CrossTooOften(lines)) return false;
  TLineIntersector sweep(lines, false);
  sweep.FindInterSect();
  const int crossings = Size(sweep.Intersections());
  if (crossings == 0 || crossings < Round<int>(kCrossingsPerVertex * Size(points)) ||
      Scc.DegreeMoreThan(kDegreeAbove) > crossings)
    return false;
  TVectorGraph arrangement(CutAtCrossings(lines, sweep.Intersections()));
  TVertexIdList cycle;
  if (!arrangement.TryGetCcwCycle(cycle)) return false;
  for (const int id : cycle) FSccOutline.push_back(arrangement.GetVertex(id));
  // The walk goes round clockwise where the convolution is an outer one, but a union by positive fill wants it the
  // other way round.
  FSccOutline.SetIsClockwise(false);
  return true;
}

void TKineticCircuits::TransCircuitToPath(int Index, TPath& Path, bool AgainstEdges) const {
  const std::span<const int> circuit = GetCircuit(Index);
  Path.clear();
  Path.reserve(circuit.size());
  for (const int id : circuit) Path.push_back(TPathUtils::CreateIntPoint(Graph.GetVertex(id), kPathScale));
  if (AgainstEdges) std::ranges::reverse(Path);
}

}  // namespace platenest
