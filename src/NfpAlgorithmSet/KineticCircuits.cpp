#include "platenest/NfpAlgorithmSet/KineticCircuits.h"

#include <cmath>
#include <ranges>
#include <utility>

#include "KineticCircuitsRules.h"
#include "SpareBuffers.h"
#include "platenest/NfpAlgorithmSet/TarjanComponents.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

using namespace detail;

namespace {

constexpr int kSentinel = -1;  // below the first vertex of every path

bool Contains(const TVertexIdList& List, int Id) {
  return std::ranges::find(List, Id) != List.end();
}

bool Exceeds(const TCircuitStop& Stop, Int64 Points, int Circuits) {
  return Points > Stop.PointsAbove && Circuits > Stop.CircuitsAbove;
}

}  // namespace

TKineticCircuits::TKineticCircuits(const TVectorGraph& dg, int numFilter)
    : TJhonsonCircuits<TPoint2D>(dg, numFilter), FVectorGraph(dg) {
  Stack = TSpareBuffers<int>::Take(static_cast<std::size_t>(dg.MaxVertexId() + 2));
}

// Not before the first walk, since most small graphs are a sole circuit, which needs none.
void TKineticCircuits::PrepareWalks() {
  if (FIsPrepared) return;
  FIsPrepared = true;
  const int count = Graph.MaxVertexId() + 1;
  for (TBoolArray* marks : {&inCycle, &FInComponent, &FOnPath, &blocked}) marks->Reset(count);
  FCircuits.ReserveIds(static_cast<std::size_t>(count));
  EdgeVisited = TSpareBuffers<TVertexIdList>::Take(static_cast<std::size_t>(count));
  EdgeVisited.resize(static_cast<std::size_t>(count));
  FTraces = TSpareBuffers<TNodeTrace>::Take(static_cast<std::size_t>(count));
}

TKineticCircuits::~TKineticCircuits() {
  TSpareBuffers<TVertexIdList>::Give(std::move(EdgeVisited));
  TSpareBuffers<int>::Give(std::move(Stack));
  TSpareBuffers<TNodeTrace>::Give(std::move(FTraces));
}

bool TKineticCircuits::DFSLoops(bool loopsInside, TNFPType, int loopSimilar) {
  FOuterCycleCounter = 0;
  if (TakeSoleCircuit()) return true;
  PrepareWalks();
  TDirectedGraph<int> living = Graph.EdgesFrom(Graph.LowestId());
  TTarjanComponents search(living, kSmallestComponent);
  const TVertexIdLists& components = search.GetStrongConnectedCompnents();
  FSccAmount = components.Count();
  if (components.empty()) throw TNestError("Empty Sccs.");
  const int main = MainComponent(components);
  FSearch = {.Component = components[main], .LoopsInside = loopsInside, .LoopSimilar = loopSimilar};
  BeginComponent(FSearch.Component);
  // In a balanced graph no edge leaves a component; then the walks need no graph of its own.
  FSearch.IsClosed = IsClosed(living, FSearch.Component);
  curGraph = FSearch.IsClosed ? std::move(living) : living.Construct(FSearch.Component);
  try {
    const bool usable = SearchMainComponent();
    FOuterCycleCounter = CircuitCount();
    if (!usable) return false;
  } catch (const std::exception&) {
    throw TNestError("Error in Circuit");
  }
  if (!FSearch.IsClosed) curGraph = std::move(living);
  for (int i = 0; i < components.Count(); ++i)
    if (i != main) SearchOtherComponent(components[i]);
  return true;
}

bool TKineticCircuits::TakeSoleCircuit() {
  if (!Graph.FindSoleCircuit(Stack)) return false;
  FSccAmount = FOuterCycleCounter = 1;
  FLongestSccCount = Size(Stack);
  FCircuits.push_back(Stack);
  return true;
}

int TKineticCircuits::MainComponent(const TVertexIdLists& Components) const {
  const int longest = TTarjanComponents::GetLongestComponent(Components);
  const int giant = Round<int>(kGiantShare * Size(Components[longest]));
  if (Graph.VertexCount() <= kGiantsVerticesAbove || Components.Count() <= kGiantsComponentsAbove ||
      giant <= kGiantSizeAbove)
    return longest;
  for (int i = 0; i < Components.Count(); ++i) {
    if (i == longest || Size(Components[i]) <= giant) continue;
    const bool larger = Size(Components[i]) + Size(Components[longest]) > kGiantsTogetherAbove &&
                        FVectorGraph.GetBound(Components[i]).Area() > FVectorGraph.GetBound(Components[longest]).Area();
    return larger ? i : longest;
  }
  return longest;
}

void TKineticCircuits::BeginComponent(std::span<const int> Component) {
  FInComponent.Clear();
  for (const int id : Component) FInComponent.Set(id);
}

bool TKineticCircuits::IsClosed(const TDirectedGraph<int>& Whole, std::span<const int> Component) const {
  return std::ranges::all_of(Component, [&](int id) {
    return std::ranges::all_of(Whole.Successors(id), [&](int successor) { return FInComponent[successor]; });
  });
}

int TKineticCircuits::DepthLimit(int n) {
  if (n <= kDepthFlatUpTo) return kDepthBase;
  if (n < kDepthLinearBelow) return kDepthBase + Round<int>((n - kDepthFlatUpTo) / 1000.0 * kDepthPerThousand);
  const double rise = kDepthPowerFactor * std::pow(n / kDepthPowerScale - kDepthPowerShift, kDepthPower);
  const int limit = kDepthBase + kDepthPowerBase + Round<int>(rise);
  return limit > kDepthKnee ? kDepthKnee + (limit - kDepthKnee) / 2 : limit;
}

bool TKineticCircuits::SearchMainComponent() {
  FLongestSccCount = Size(FSearch.Component);
  FirstWalk();
  LoopsAtExtrema();
  EarlyOutline();
  if (!CoverByLoops() || !CoverByEdges() || !UseEdgesLeft()) return false;
  LateOutline();
  return true;
}

void TKineticCircuits::FirstWalk() {
  startVertex = std::ranges::min(FSearch.Component);
  cycleCount = CyclesFrom(startVertex, DepthLimit(FLongestSccCount));
  if (!FSearch.LoopsInside) FSearch.Total = FCircuits.TotalSize(CircuitCount());
}

void TKineticCircuits::LoopsAtExtrema() {
  if (FSearch.LoopsInside || FLongestSccCount <= kExtremaVerticesAbove) return;
  TVertexIdList extrema;
  FVectorGraph.GetExtrema(FSearch.Component, extrema);
  for (const int id : extrema)
    if (!inCycle[id]) LoopStep(id);
}

// A loop through every vertex that is on no circuit yet. False: too dense.
bool TKineticCircuits::CoverByLoops() {
  if (HasOutline()) return true;
  for (const int id : FSearch.Component) {
    if (inCycle[id]) continue;
    LoopStep(id);
    if (IsHopeless()) return false;
    if (OutlineInstead()) return true;
    if (Exceeds(kLoopStop, FSearch.Total, CircuitCount())) return false;
    if (FSearch.LoopsFound >= kMostLoops) return true;
  }
  return true;
}

// Circuits over the edges between vertices that are still on none, from the other end. False: too dense.
bool TKineticCircuits::CoverByEdges() {
  if (HasOutline()) return true;
  for (const int id : FSearch.Component | std::views::reverse) {
    if (inCycle[id]) continue;
    for (const int successor : curGraph.Successors(id)) {
      if (inCycle[successor]) continue;
      FindCycle(id, successor);
      if (!loopFound) continue;
      FSearch.Total += Size(LastCircuit());
      if (IsHopeless()) return false;
      if (OutlineInstead()) return true;
      if (Exceeds(kEdgeStop, FSearch.Total, CircuitCount())) return false;
      AddEdgeVisited(LastCircuit());
    }
  }
  return true;
}

// One circuit more per vertex on a circuit with an unused edge, also for those that come onto one meanwhile. False: too
// dense.
bool TKineticCircuits::UseEdgesLeft() {
  if (HasOutline() || (FSearch.LoopsInside && CircuitCount() <= kSpecialInsideCircuitsAbove)) return true;
  for (const int id : FSearch.Component) {
    if (!inCycle[id]) continue;
    if (SpecialCycleFrom(id) && Exceeds(kSpecialStop, FSearch.Total, CircuitCount())) return false;
    if (OutlineInstead() || SpecCycles.size() >= kMostSpecialCycles) return true;
  }
  return true;
}

bool TKineticCircuits::SpecialCycleFrom(int Id) {
  for (const int successor : curGraph.Successors(Id)) {
    if (Contains(EdgeVisited[Id], successor) || curGraph.HasEdge(successor, Id)) continue;
    FindCycle(Id, successor);
    if (!loopFound) continue;
    SpecCycles.push_back(CircuitCount() - 1);
    AddEdgeVisited(LastCircuit());
    FSearch.Total += Size(LastCircuit());
    return true;
  }
  return false;
}

void TKineticCircuits::LoopStep(int Id) {
  startVertex = Id;
  const std::span<const int> loop = FindLoop(startVertex);
  if (!loopFound || loop.size() < kFewestVertices) return;
  const bool big = Size(loop) > kBigLoopAbove;
  if (big) ++FSearch.BigLoops;
  FSearch.Total += Size(loop);
  if (big && FSearch.BigLoops >= kFirstBigLoopDropped) return;
  ++FSearch.LoopsFound;
  FCircuits.push_back(loop);
  AddInCycle(loop);
  AddEdgeVisited(loop);
}

void TKineticCircuits::SearchOtherComponent(std::span<const int> Component) {
  Stack.clear();
  blocked.Clear();
  BeginComponent(Component);
  const int count = Size(Component);
  const int limit = std::max(kFewestCircuitsOfSmall, count / kVerticesPerCircuitOfSmall);
  CyclesFrom(Component.front(), limit, FInComponent, count);
  for (const int id : Component) {
    if (inCycle[id]) continue;
    startVertex = id;
    const std::span<const int> loop = FindLoop(id);
    AddInCycle(loop);
    if (loop.size() >= kFewestVertices) FCircuits.push_back(loop);
  }
}

bool TKineticCircuits::IsHopeless() const {
  return FSearch.LoopSimilar < kHopelessSimilarBelow && Exceeds(kHopelessStop, FSearch.Total, CircuitCount());
}

int TKineticCircuits::CyclesFrom(int start, int limit) {
  PrepareWalks();
  Stack.clear();
  blocked.Clear();
  int found = 0;
  WalkCircuits(
      start, [](int) { return true; },
      [&](std::span<const int> cycle) {
        AddInCycle(cycle);
        AddEdgeVisited(cycle);
        if (cycle.size() < kFewestVertices) return;
        FCircuits.push_back(cycle);
        ++found;
      },
      [&] { return found >= limit; });
  return found;
}

int TKineticCircuits::CyclesFrom(int start, int limit, const TBoolArray& mask, int count) {
  PrepareWalks();
  const int neededLength = std::min(kMostNeededLength, Round<int>(kNeededLengthShare * count));
  int found = 0;
  bool longFound = false;
  WalkCircuits(
      start, [&](int id) { return mask[id]; },
      [&](std::span<const int> cycle) {
        AddInCycle(cycle);
        if (cycle.size() < kFewestVertices) return;
        FCircuits.push_back(cycle);
        ++found;
        longFound |= Size(cycle) > neededLength;
      },
      [&] { return found >= limit && longFound; });
  return found;
}

// A vertex with several ways into it is visited once for each of them, so that circuits over all of them are met; only
// the first visit goes on.
template <class TMayEnter, class TTake, class TEnough>
void TKineticCircuits::WalkCircuits(int Start, TMayEnter MayEnter, TTake TakeCircuit, TEnough HasEnough) {
  FOnPath.Clear();
  FTraces.assign(1, {Start, kSentinel});
  Stack.push_back(kSentinel);
  while (!FTraces.empty() && !HasEnough()) {
    const TNodeTrace trace = FTraces.back();
    FTraces.pop_back();
    blocked.Set(trace.Node);
    for (; Stack.back() != trace.Parent; Stack.pop_back()) FOnPath.Set(Stack.back(), false);
    Stack.push_back(trace.Node);
    FOnPath.Set(trace.Node);
    for (const int successor : curGraph.Successors(trace.Node)) {
      if (FOnPath[successor])
        TakeCircuit(PathFrom(successor));
      else if (!blocked[successor] && MayEnter(successor))
        FTraces.push_back({successor, trace.Node});
    }
  }
}

std::span<const int> TKineticCircuits::PathFrom(int Id) const {
  const auto place = std::find(Stack.rbegin(), Stack.rend(), Id);
  return {place.base() - 1, Stack.end()};
}

std::span<const int> TKineticCircuits::FindLoop(int v) {
  PrepareWalks();
  blocked.Clear();
  Stack.assign(1, kSentinel);
  loopFound = WalkHome({v, kSentinel});
  return loopFound ? std::span<const int>(Stack).subspan(1) : std::span<const int>();
}

void TKineticCircuits::FindCycle(int a, int b) {
  PrepareWalks();
  startVertex = a;
  blocked.Clear();
  Stack.assign(1, kSentinel);
  Stack.push_back(a);
  loopFound = false;
  if (!WalkHome({b, a})) return;
  const std::span<const int> cycle = std::span<const int>(Stack).subspan(1);
  AddInCycle(cycle);
  if (cycle.size() < kFewestVertices) return;
  FCircuits.push_back(cycle);
  loopFound = true;
}

// Walks on from First until a vertex has an edge to startVertex; Stack ends with that vertex then.
bool TKineticCircuits::WalkHome(TNodeTrace First) {
  FTraces.assign(1, First);
  while (!FTraces.empty()) {
    const TNodeTrace trace = FTraces.back();
    FTraces.pop_back();
    // All that can be reached from a vertex is walked before its next trace comes up, so that one leads nowhere.
    if (blocked[trace.Node]) continue;
    blocked.Set(trace.Node);
    while (Stack.back() != trace.Parent) Stack.pop_back();
    Stack.push_back(trace.Node);
    for (const int successor : curGraph.Successors(trace.Node)) {
      if (successor == startVertex) return true;
      // No way out of a strongly connected component leads back.
      if (!blocked[successor] && FInComponent[successor]) FTraces.push_back({successor, trace.Node});
    }
  }
  return false;
}

void TKineticCircuits::AddEdgeVisited(std::span<const int> Cycle) {
  int before = Cycle.back();
  for (const int id : Cycle) {
    TVertexIdList& visited = EdgeVisited[std::exchange(before, id)];
    if (!Contains(visited, id)) visited.push_back(id);
  }
}

void TKineticCircuits::AddInCycle(std::span<const int> Cycle) {
  for (const int id : Cycle) inCycle.Set(id);
}

}  // namespace platenest
