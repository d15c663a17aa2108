#include "PocketTree.h"

#include <cmath>

#include "ContourRing.h"
#include "platenest/foundation/MinHeap.h"

namespace platenest::detail {

namespace {

// Cuts corners on the free side, shortest new edge first, until none can be cut.
class TCornerCutter {
 public:
  explicit TCornerCutter(std::span<const TPoint2D> Vertices)
      : FRing(Vertices),
        FStamps(FRing.IndexEnd(), 0),
        FGateOf(FRing.IndexEnd(), -1),
        FWaitingOn(FRing.IndexEnd(), -1) {}

  void Run() {
    if (FRing.Count() < 3) return;
    for (int i = 0; i < FRing.IndexEnd(); ++i) Propose(i);
    while (FHeap.Count() > 0 && FRing.Count() > 3) {
      const TCorner corner = FHeap.Pop();
      if (!IsCurrent(corner)) continue;
      if (const int blocker = FRing.BlockerOfCut(corner.Vertex); blocker >= 0)
        WaitFor(blocker, corner);
      else
        Cut(corner.Vertex);
    }
  }

  const TContourRing& Ring() const { return FRing; }
  int GateOf(int Vertex) const { return FGateOf[Vertex]; }
  std::vector<TPocketTree::TGate> TakeGates() { return std::move(FGates); }

 private:
  struct TCorner {
    int Vertex = 0;
    int Stamp = 0;  // of the vertex when the corner was proposed
  };
  struct TWaiting {
    TCorner Corner;
    int Next = -1;
  };

  bool IsCurrent(const TCorner& Corner) const {
    return FRing.IsAlive(Corner.Vertex) && FStamps[Corner.Vertex] == Corner.Stamp;
  }

  void Propose(int Vertex) {
    ++FStamps[Vertex];
    if (FRing.TurnAt(Vertex) < 0) Push({Vertex, FStamps[Vertex]});
  }
  void Push(const TCorner& Corner) {
    const TPoint2D edge = FRing.At(FRing.Next(Corner.Vertex)) - FRing.At(FRing.Prev(Corner.Vertex));
    FHeap.Add(Corner, edge.DotMul(edge));
  }

  void WaitFor(int Blocker, const TCorner& Corner) {
    FWaiting.push_back({Corner, FWaitingOn[Blocker]});
    FWaitingOn[Blocker] = Size(FWaiting) - 1;
  }
  void Wake(int Blocker) {
    for (int i = FWaitingOn[Blocker]; i >= 0; i = FWaiting[i].Next)
      if (IsCurrent(FWaiting[i].Corner)) Push(FWaiting[i].Corner);
  }

  void Cut(int Vertex) {
    const int before = FRing.Prev(Vertex);
    const int after = FRing.Next(Vertex);
    FGates.push_back({FRing.At(before), FRing.At(Vertex), FRing.At(after), FGateOf[before], FGateOf[Vertex]});
    FGateOf[before] = Size(FGates) - 1;
    FRing.Cut(Vertex);
    Propose(before);
    Propose(after);
    Wake(Vertex);
  }

  TContourRing FRing;
  std::vector<int> FStamps;
  std::vector<int> FGateOf;  // by the vertex that the edge leaves
  std::vector<TPocketTree::TGate> FGates;
  TMinHeap<TCorner> FHeap;
  std::vector<int> FWaitingOn;  // by blocking vertex: the first entry of FWaiting, -1 for none
  std::vector<TWaiting> FWaiting;
};

}  // namespace

TPocketTree::TPocketTree(std::span<const TPoint2D> Vertices) {
  TCornerCutter cutter(Vertices);
  cutter.Run();
  const TContourRing& ring = cutter.Ring();
  FRoots.reserve(ring.Count());
  for (int i = 0; i < ring.IndexEnd(); ++i)
    if (ring.IsAlive(i)) FRoots.push_back({ring.At(i), cutter.GateOf(i)});
  FGates = cutter.TakeGates();
}

std::vector<TPoint2D> TPocketTree::Filled(const std::function<bool(const TGate&)>& IsShut) const {
  std::vector<TPoint2D> points;
  struct TStep {
    int Gate;
    bool IsApexNext;
  };
  std::vector<TStep> steps;
  const auto enter = [&](int Gate) {
    if (Gate >= 0 && !IsShut(FGates[Gate])) steps.push_back({Gate, false});
  };
  for (const TRoot& root : FRoots) {
    points.push_back(root.Start);
    enter(root.Gate);
    while (!steps.empty()) {
      TStep& step = steps.back();
      const TGate& gate = FGates[step.Gate];
      if (!step.IsApexNext) {
        step.IsApexNext = true;
        enter(gate.Before);
        continue;
      }
      points.push_back(gate.Apex);
      steps.pop_back();
      enter(gate.After);
    }
  }
  return points;
}

bool IsShutForDisc(const TPocketTree::TGate& Gate, double Radius) {
  const double width = Gate.From.DistanceTo(Gate.To);
  if (!(width <= 2 * Radius)) return false;
  const TPoint2D first = Gate.From - Gate.Apex;
  const TPoint2D second = Gate.To - Gate.Apex;
  // From its arc beyond the gate the disc sees the gate under pi minus the angle of this sine, from nearer points under
  // a wider angle.
  const double sine = width / (2 * Radius);
  return first.DotMul(second) > -std::sqrt(1 - sine * sine) * first.Mag() * second.Mag();
}

}  // namespace platenest::detail
