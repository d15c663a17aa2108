#pragma once

#include <algorithm>
#include <span>
#include <vector>

#include "platenest/NfpAlgorithmSet/BoolArray.h"
#include "platenest/NfpAlgorithmSet/JhonsonCircuits.h"
#include "platenest/NfpAlgorithmSet/NfpTypes.h"
#include "platenest/NfpAlgorithmSet/VectorGraph.h"
#include "platenest/foundation/Export.h"
#include "platenest/foundation/Paths.h"
#include "platenest/foundation/Polyline.h"

namespace platenest {

// A vertex that a walk has still to visit, and the vertex of its path from which it was seen.
struct TNodeTrace {
  int Node;
  int Parent;
};

// Looks for a small set of circuits that covers the graph of a convolution, where listing all of them would explode: a
// few from one depth-first walk, loops through each vertex and some of the edges not yet covered and, where the tangle
// stays dense, the outline of the whole main component instead. Gives up on graphs that are too dense. Every walk is
// without recursion and costs O(V + E) besides the circuits that it meets; the number of walks is bounded by the points
// of the circuits found. The graph is the caller's, must outlive this object and stays unchanged. One object per search
// and thread.
class PLATENEST_API TKineticCircuits : public TJhonsonCircuits<TPoint2D> {
 public:
  TKineticCircuits(const TVectorGraph& dg, int numFilter);
  TKineticCircuits(TVectorGraph&&, int) = delete;
  ~TKineticCircuits() override;

  // Runs the search, once per object. True: the circuits, or the outline, may be used. False: the graph is too dense,
  // the circuits found by then stand but cover it in part only. loopsInside: the convolution of a part inside a plate,
  // for which no outline is tried. required changes nothing. loopSimilar: how alike the two outlines are, 0 to 4.
  // Circuits have 3 vertices or more, follow the edges and do not repeat their start. A vertex that was met on a pair
  // of opposite edges counts as covered, although that pair is no circuit; so it may be on none. A graph without
  // circuits raises "Empty Sccs."; any other failure in the search of the main component raises "Error in Circuit".
  bool DFSLoops(bool loopsInside, TNFPType required, int loopSimilar);

  // How many leading circuits belong to the main component; those of smaller components follow.
  int OuterCycleCounter() const { return FOuterCycleCounter; }
  // Their vertices together.
  Int64 TotalOuterCyclePoints() const { return FCircuits.TotalSize(FOuterCycleCounter); }
  // Circuits from the first walk alone, of the main component.
  int CycleCount() const { return cycleCount; }
  int SccAmount() const { return FSccAmount; }
  // Vertices of the main component.
  int LongestSccCount() const { return FLongestSccCount; }
  // True for a circuit that was added for the sake of an edge, its vertices being covered already.
  bool IsSpecCycle(int Index) const { return std::ranges::binary_search(SpecCycles, Index); }
  // Counter-clockwise; empty if none was made. With it the circuits of the main component are not needed.
  const TVPolyline2D& SccOutline() const { return FSccOutline; }

  // The circuit as a path, against its edges or along them. Against is right where both loops run the same way round
  // (then the circuits about forbidden places come out positive), along where they run opposite ways, as a part in a
  // cavity does. The sign of a circuit tells real regions from artefacts, so none may be turned by its own area.
  void TransCircuitToPath(int Index, TPath& Path, bool AgainstEdges = true) const;

 protected:
  // The circuits closed on a depth-first walk through curGraph from start on, until limit of them are found or more, or
  // the walk ends. Returns how many were kept. Marks their vertices and edges, also those of pairs that are not kept.
  int CyclesFrom(int start, int limit);
  // The same within mask; Stack and blocked must be clear. Needs also one circuit that is long for a component of count
  // vertices before it ends early, and marks no edges.
  int CyclesFrom(int start, int limit, const TBoolArray& mask, int count);
  // The first way back to startVertex from v, itself included; empty and loopFound false if there is none. Valid until
  // the next walk.
  std::span<const int> FindLoop(int v);
  // Looks for the first circuit over the edge from a to b, marks its vertices and keeps it if it is long enough;
  // loopFound tells whether it was kept.
  void FindCycle(int a, int b);
  void AddEdgeVisited(std::span<const int> Cycle);
  void AddInCycle(std::span<const int> Cycle);
  // The outer boundary of the arrangement of all edges of a component; true if FSccOutline was made. Made only where
  // the edges cross often enough to be a tangle, and not so often (about a million times) that the arrangement would
  // cost more than a search on reduced loops.
  bool TryCalcOutline(const TDirectedGraph<int>& Scc);
  // How many circuits the first walk through a component of n vertices may find. Not monotone: it drops from 157 to 152
  // at 4500 vertices.
  static int DepthLimit(int n);

  int cycleCount = 0;
  bool loopFound = false;
  TBoolArray inCycle;                      // by id
  std::vector<TVertexIdList> EdgeVisited;  // by id: the successors that a circuit has used, each once
  int FOuterCycleCounter = 0;
  TVPolyline2D FSccOutline;
  std::vector<int> SpecCycles;  // indices of circuits, ascending

 private:
  // What the steps on the main component share.
  struct TSearch {
    std::span<const int> Component;
    bool IsClosed = false;  // no edge leaves the component, and curGraph is the whole graph
    bool LoopsInside = false;
    int LoopSimilar = 0;
    Int64 Total = 0;  // points of the circuits, dropped loops included
    int LoopsFound = 0;
    int BigLoops = 0;
    bool OutlineTried = false;
  };

  template <class TMayEnter, class TTake, class TEnough>
  void WalkCircuits(int Start, TMayEnter MayEnter, TTake TakeCircuit, TEnough HasEnough);
  bool WalkHome(TNodeTrace First);
  std::span<const int> PathFrom(int Id) const;
  std::span<const int> LastCircuit() const { return FCircuits[CircuitCount() - 1]; }

  void PrepareWalks();
  bool TakeSoleCircuit();
  int MainComponent(const TVertexIdLists& Components) const;
  void BeginComponent(std::span<const int> Component);
  // Component is the one begun.
  bool IsClosed(const TDirectedGraph<int>& Whole, std::span<const int> Component) const;
  bool SearchMainComponent();
  void FirstWalk();
  void LoopsAtExtrema();
  bool CoverByLoops();
  bool CoverByEdges();
  bool UseEdgesLeft();
  void LoopStep(int Id);
  bool SpecialCycleFrom(int Id);
  void SearchOtherComponent(std::span<const int> Component);

  bool HasOutline() const { return !FSccOutline.empty(); }
  bool IsHopeless() const;
  bool OutlineInstead();
  bool OutlineTrial();
  void EarlyOutline();
  void LateOutline();
  bool CallOutline();

  const TVectorGraph& FVectorGraph;
  bool FIsPrepared = false;
  int FSccAmount = 0;
  int FLongestSccCount = 0;
  TSearch FSearch;
  TBoolArray FInComponent;  // by id: the component in hand
  TBoolArray FOnPath;       // by id
  std::vector<TNodeTrace> FTraces;
};

}  // namespace platenest
