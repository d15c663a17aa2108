#include <algorithm>
#include <cmath>

#include "platenest/NfpAlgorithmSet/BoolArray.h"
#include "platenest/NfpAlgorithmSet/VectorGraph.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Host.h"

namespace platenest {

namespace {

constexpr double kSameAngle = 1e-7;   // radians
constexpr double kApart = 0.0001;     // distance of the edges' far ends, drawing units: directions differ
constexpr double kSameLength = 1e-4;  // drawing units
constexpr int kMostOverlapsAtVertex = 3;
constexpr int kMostSameEdges = 5;  // over the whole walk

}  // namespace

// The state of one walk along the outer face.
class TVectorGraph::TOutlineWalk {
 public:
  explicit TOutlineWalk(TVectorGraph& Graph) : FGraph(Graph), FVisited(Graph.MaxVertexId() + 1) {}

  // The vertex that the walk goes to from Current; -1 after a warning.
  int NextVertex(int Current) {
    const TVertexIdList& successors = FGraph.Successors(Current);
    if (successors.empty()) {
      TCerr::W("Fatal Error in [TryCalcOutline]");
      return -1;
    }
    return successors.size() == 1 ? successors.front() : Outermost(Current, successors);
  }

  void Step(int From, int To) {
    FVisited.Set(To);
    FReference = FGraph.GetVertex(From) - FGraph.GetVertex(To);
  }

 private:
  // An edge from the current vertex, named by its far end.
  struct TCandidate {
    int Id;
    double Angle;  // counter-clockwise from the reference
    double Length;
  };

  TCandidate CandidateTo(int Current, int Id) const {
    const TPoint2D edge = FGraph.GetVertex(Id) - FGraph.GetVertex(Current);
    return {Id, edge.AngleFrom(FReference), edge.Mag()};
  }

  int Outermost(int Current, const TVertexIdList& Successors) {
    TCandidate best = CandidateTo(Current, Successors.front());
    if (FVisited[best.Id]) best.Angle = 0;
    int overlaps = 0;
    for (std::size_t i = 1; i < Successors.size(); ++i) {
      if (FVisited[Successors[i]]) continue;
      const TCandidate rival = CandidateTo(Current, Successors[i]);
      const double difference = std::fabs(rival.Angle - best.Angle);
      if (difference <= kSameAngle) {
        if (overlaps == kMostOverlapsAtVertex) {
          TCerr::W("Something wrong in [TryCalcOutline]");
          return -1;
        }
        if (std::min(best.Length, rival.Length) * difference < kApart) {
          ++overlaps;
          best = JoinOverlap(best, rival);
          continue;
        }
      }
      if (rival.Angle > best.Angle) best = rival;
    }
    if (FSameEdges <= kMostSameEdges) return best.Id;
    TCerr::W("Something Error in [TryCalcOutline]");
    return -1;
  }

  // Two edges along each other count as one that ends at the nearer far end and goes on to the other one.
  TCandidate JoinOverlap(const TCandidate& Best, const TCandidate& Rival) {
    if (fEqual(Best.Length, Rival.Length, kSameLength)) {
      ++FSameEdges;
      TCerr::W("Same Edge(%d-%d) Overlap in [TryCalcOutline]", Best.Id, Rival.Id);
      const bool rivalWins = Rival.Angle > Best.Angle;
      const TCandidate& winner = rivalWins ? Rival : Best;
      const TCandidate& loser = rivalWins ? Best : Rival;
      for (const int successor : FGraph.Successors(loser.Id)) FGraph.AddEdge(winner.Id, successor);
      return winner;
    }
    const bool rivalWins = Rival.Length < Best.Length;
    const TCandidate& winner = rivalWins ? Rival : Best;
    const TCandidate& loser = rivalWins ? Best : Rival;
    FGraph.AddEdge(winner.Id, loser.Id);
    return winner;
  }

  TVectorGraph& FGraph;
  TBoolArray FVisited;
  TPoint2D FReference{0, 1};
  int FSameEdges = 0;
};

bool TVectorGraph::TryGetCcwCycle(TVertexIdList& cycle) {
  cycle.clear();
  if (VertexCount() <= 0) return false;
  int first = LowestId();
  for (int id = first + 1; id <= MaxVertexId(); ++id) {
    const TPoint2D& highest = GetVertex(first);
    const TPoint2D& vertex = GetVertex(id);
    if (vertex.Y > highest.Y || (vertex.Y == highest.Y && vertex.X > highest.X)) first = id;
  }
  cycle.push_back(first);
  TOutlineWalk walk(*this);
  for (int current = first;;) {
    const int next = walk.NextVertex(current);
    if (next < 0) return false;
    if (next == first && cycle.size() > 2) return true;
    if (Size(cycle) >= VertexCount()) return false;
    walk.Step(current, next);
    cycle.push_back(next);
    current = next;
  }
}

}  // namespace platenest
