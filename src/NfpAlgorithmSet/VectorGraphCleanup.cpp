#include <algorithm>
#include <cmath>

#include "platenest/NfpAlgorithmSet/VectorGraph.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"

namespace platenest {

namespace {

constexpr double kCollinear = 1e-11;  // cross product of two edges, not divided by their lengths

// Integer angles count 1e-8 radian.
constexpr double kAnglesPerRadian = 1e8;
constexpr int kFullTurn = 628318531;
constexpr int kHalfTurn = 314159265;
constexpr int kQuarterTurn = 157079633;
constexpr int kParallel = 4;          // edges of less difference run along each other
constexpr int kNearVertical = 1000;   // up to this distance from a quarter turn spans are measured in y
constexpr double kSameLine = 0.0001;  // drawing units

// A vertex at its place along a line.
struct TIntFloat {
  int Key = -1;
  double Value = 0;
};

}  // namespace

// An edge as a span on its line.
struct TVectorGraph::TEdge {
  int SIdx = -1;
  int EIdx = -1;
  int Angle = 0;    // of the line: folded to a half turn
  double Dist = 0;  // signed distance from the first line of the run
  double V0 = 0;    // the span, V0 the smaller
  double V1 = 0;
  bool IsRev = false;  // the edge runs from V0 to V1
  bool IsX = false;    // the span is measured in x

  // The vertex at V0, and the one at V1.
  int HeadIdx() const { return IsRev ? SIdx : EIdx; }
  int TailIdx() const { return IsRev ? EIdx : SIdx; }
  void GetInv(double A, double B) {
    IsRev = B >= A;
    V0 = IsRev ? A : B;
    V1 = IsRev ? B : A;
  }
};

bool TVectorGraph::Collinear(int A, int B, int C) const {
  const TVertexList& vertices = Vertices();
  return std::fabs(TPoint2DUtils::IsLeft(vertices[A], vertices[B], vertices[C])) <= kCollinear;
}

// v -> a -> c and v -> b -> c on one line: the way over b goes.
void TVectorGraph::CloseDiamonds(std::vector<int>& InDegrees) {
  const auto isPlainLink = [&](int id) { return InDegrees[id] == 1 && Successors(id).size() == 1; };
  for (int v = LowestId(); v <= MaxVertexId(); ++v) {
    TVertexIdList& successors = SuccessorsForChange(v);
    if (successors.size() < 2) continue;
    const int a = successors[0];
    const int b = successors[1];
    if (!isPlainLink(a) || !isPlainLink(b)) continue;
    const int c = Successors(a).front();
    if (Successors(b).front() != c || !Collinear(v, a, c) || !Collinear(v, b, c)) continue;
    successors.erase(successors.begin() + 1);
    SuccessorsForChange(b).clear();
    InDegrees[b] = 0;
  }
}

// v -> a -> b on one line becomes v -> b, at most twice from one v, so a longer run may keep inner vertices.
void TVectorGraph::StraightenRuns(std::vector<int>& InDegrees) {
  for (int v = LowestId(); v <= MaxVertexId(); ++v)
    if (SkipMiddle(v, InDegrees) && Successors(Successors(v).front()).size() == 1) SkipMiddle(v, InDegrees);
}

bool TVectorGraph::SkipMiddle(int Start, std::vector<int>& InDegrees) {
  TVertexIdList& successors = SuccessorsForChange(Start);
  if (successors.empty()) return false;
  const int middle = successors.front();
  if (Successors(middle).size() != 1) return false;
  const int end = Successors(middle).front();
  if (end == Start || Successors(end).empty() || !Collinear(Start, middle, end)) return false;

  const auto former = std::find(successors.begin() + 1, successors.end(), end);
  successors.front() = end;
  ++InDegrees[end];
  if (former != successors.end()) {
    successors.erase(former);
    --InDegrees[end];
  }
  if (InDegrees[middle] == 1) {
    SuccessorsForChange(middle).clear();
    --InDegrees[end];
  }
  --InDegrees[middle];
  return true;
}

// Edges that overlap along a line are taken apart at all ends between them; each piece counts +1 or -1 by its
// direction, and what is left of the counts goes back into the graph.
class TVectorGraph::TOverlaps {
 public:
  TOverlaps(TVectorGraph& Graph, const std::vector<int>& InDegrees) : FGraph(Graph) {
    FEdges.reserve(InDegrees.size());
    FWhole.reserve(InDegrees.size());
    for (int id = Graph.LowestId(); id <= Graph.MaxVertexId(); ++id) {
      if (InDegrees[id] <= 0) continue;
      for (const int end : Graph.Successors(id))
        if (!Graph.Successors(end).empty()) FEdges.push_back(EdgeOf(id, end));
    }
  }

  void Eliminate() {
    SortBy(FEdges, [](const TEdge& A, const TEdge& B) { return Sign(A.Angle, B.Angle); });
    for (auto from = FEdges.begin(); from != FEdges.end();) {
      const auto to = std::partition_point(
          from, FEdges.end(), [bound = from->Angle + kParallel](const TEdge& Edge) { return Edge.Angle < bound; });
      if (to - from > 1) CutRun({from, to});
      if (to - from == 1) FWhole.push_back(*from);
      from = to;
    }
    TakeWholeEdges();
    PutBack();
  }

 private:
  TEdge EdgeOf(int Start, int End) const {
    TEdge edge;
    edge.SIdx = Start;
    edge.EIdx = End;
    edge.Angle = Round<int>((FGraph.GetVertex(End) - FGraph.GetVertex(Start)).Angle() * kAnglesPerRadian);
    if (edge.Angle == kFullTurn) edge.Angle = 0;
    if (edge.Angle >= kHalfTurn) edge.Angle -= kHalfTurn;
    return edge;
  }

  // Parallel edges: those of one line go on together.
  void CutRun(std::span<TEdge> Run) {
    const TPoint2D start = FGraph.GetVertex(Run.front().SIdx);
    const TPoint2D end = FGraph.GetVertex(Run.front().EIdx);
    const double length = (end - start).Mag();
    for (TEdge& edge : Run.subspan(1))
      edge.Dist = TPoint2DUtils::IsLeft(start, end, FGraph.GetVertex(edge.SIdx)) / length;
    SortBy(Run, [](const TEdge& A, const TEdge& B) { return Sign(A.Dist, B.Dist); });
    for (auto from = Run.begin(); from != Run.end();) {
      const auto to = std::partition_point(
          from, Run.end(), [bound = from->Dist + kSameLine](const TEdge& Edge) { return Edge.Dist <= bound; });
      if (to - from > 1) CutLine({from, to});
      if (to - from == 1) FWhole.push_back(*from);
      from = to;
    }
  }

  // Spans compare only along one axis, so the first edge chooses it for its line.
  void CutLine(std::span<TEdge> Line) {
    const bool isX = std::abs(Line.front().Angle - kQuarterTurn) > kNearVertical;
    const auto place = [&](int id) { return isX ? FGraph.GetVertex(id).X : FGraph.GetVertex(id).Y; };
    FEnds.clear();
    for (TEdge& edge : Line) {
      edge.IsX = isX;
      edge.GetInv(place(edge.SIdx), place(edge.EIdx));
      FEnds.push_back({edge.HeadIdx(), edge.V0});
      FEnds.push_back({edge.TailIdx(), edge.V1});
    }
    SortBy(Line, [](const TEdge& A, const TEdge& B) { return Sign(A.V0, B.V0); });
    SortBy(FEnds, [](const TIntFloat& A, const TIntFloat& B) {
      const int byValue = Sign(A.Value, B.Value);
      return byValue != 0 ? byValue : Sign(A.Key, B.Key);
    });
    double reached = Line.front().V0;
    for (std::size_t i = 0; i < Line.size(); ++i) {
      const bool overlapsNext = i + 1 < Line.size() && Line[i + 1].V0 < Line[i].V1;
      if (overlapsNext || (i > 0 && Line[i].V0 < reached))
        CutEdge(Line[i]);
      else
        FWhole.push_back(Line[i]);
      reached = std::max(reached, Line[i].V1);
    }
  }

  // Every end strictly within the span cuts. The walk goes from V0 to V1; pieces of an edge that runs the other way
  // count with the opposite sign, which is the same as walking along it.
  void CutEdge(const TEdge& Edge) {
    FGraph.RemoveEdge(Edge.SIdx, Edge.EIdx);
    const int sign = Edge.IsRev ? 1 : -1;
    const auto inside =
        std::partition_point(FEnds.begin(), FEnds.end(), [&](const TIntFloat& End) { return End.Value <= Edge.V0; });
    int from = Edge.HeadIdx();
    for (auto cut = inside; cut != FEnds.end() && cut->Value < Edge.V1; ++cut) {
      if (cut->Key == from) continue;
      CountPiece(from, cut->Key, sign);
      from = cut->Key;
    }
    CountPiece(from, Edge.TailIdx(), sign);
  }

  void CountPiece(int From, int To, int Times) {
    if (From == To) return;
    Int64 key = 0;
    const int sign = KeyCount(From, To, key);
    int place = FPlaces.Find(key);
    if (place < 0) {
      place = Size(FCounts);
      FPlaces.Add(key, place);
      FCounts.push_back({key, 0});
    }
    FCounts[place].Count += sign * Times;
  }

  // An edge that overlaps nothing may still be the same as a piece of a line that was taken for another one.
  void TakeWholeEdges() {
    for (const TEdge& edge : FWhole) {
      Int64 key = 0;
      const int sign = KeyCount(edge.SIdx, edge.EIdx, key);
      const int place = FPlaces.Find(key);
      if (place < 0) continue;
      FGraph.RemoveEdge(edge.SIdx, edge.EIdx);
      FCounts[place].Count += sign;
    }
  }

  void PutBack() {
    for (const auto& [key, count] : FCounts) {
      const int a = static_cast<int>(key / KeyCoef);
      const int b = static_cast<int>(key % KeyCoef);
      if (count > 0) FGraph.JoinKnown(a, b);
      if (count < 0) FGraph.JoinKnown(b, a);
    }
  }

  struct TPieceCount {
    Int64 Key;
    int Count;
  };

  TVectorGraph& FGraph;
  std::vector<TEdge> FEdges;
  std::vector<TEdge> FWhole;         // edges that overlap no other
  std::vector<TIntFloat> FEnds;      // ends of the line in hand, along it
  std::vector<TPieceCount> FCounts;  // in order of first appearance
  TCodeMap FPlaces;                  // pair key -> place in FCounts
};

void TVectorGraph::EliminateEdges(bool elimAll) {
  std::vector<int> inDegrees = InDegrees();
  if (elimAll) {
    TOverlaps(*this, inDegrees).Eliminate();
    return;
  }
  CloseDiamonds(inDegrees);
  StraightenRuns(inDegrees);
}

}  // namespace platenest
