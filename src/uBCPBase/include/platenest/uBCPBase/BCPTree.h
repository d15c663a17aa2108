#pragma once

#include <atomic>
#include <cmath>
#include <memory>
#include <vector>

#include "platenest/foundation/MinHeap.h"
#include "platenest/uBCPBase/BCPNode.h"

namespace platenest {

namespace detail {

// No whole solution can be better by more than the tolerance: the bounds lie under one ceiling, which is what counts
// where whole columns of cost 1 are charged, or within 0.01 percent of each other.
inline bool BoundsMeet(double LB, double UB) {
  constexpr double kGap = 1.0001;
  return std::ceil(LB) >= std::ceil(UB) || kGap * LB > UB;
}

}  // namespace detail

// The work that a search has done so far.
struct TBCPCounts {
  int Nodes = 0;     // made, the root included
  int LPRounds = 0;  // LPs solved
  int Pricings = 0;  // calls of pricing heuristics
  int Columns = 0;   // in the pool
};

// Branch-and-price for one covering problem (Barnhart et al. 1998): a first solution by heuristics, the root by column
// generation, then a dive along the better child, with a heap of open nodes as the way back. Every solution that is
// taken meets the demand, as CheckSolution of the main problem has it. The proof of status 0 is as good as pricing:
// with heuristic pricing the lower bound is an estimate.
//
// Solve runs once, on the thread of its caller. Other threads may set the stop flag and push solutions into the queue,
// nothing else. The stop is polled between steps, so a long heuristic delays it.
template <BCPVariable T>
class TBCPTree {
 public:
  using TNode = TBCPNode<T>;
  using TSolutionFifo = typename TNode::TSolutionFifo;

  // The manager, its main problem and the queue (null: none) belong to the caller and outlive the tree. ACGInBranch:
  // up-branches generate columns, not only the root. ATimeLimit in seconds, 0 for none.
  TBCPTree(const TBCPSolverManager<T>* ASolverManager, TSolutionFifo* AFIFOSolution, bool ACGInBranch,
           double ATimeLimit);

  // A deep copy into the pool; true if the column was new.
  bool AddVar(const T& AVar);
  // In order, up to the first that is known already, which makes the result false.
  bool AddVars(const std::vector<std::unique_ptr<T>>& AVars);
  // Offers a copy of a whole solution; true if it is the best by now. Its columns enter the pool in any case.
  // CheckConstraint has no effect: the solution is always checked. One that meets the demand is sorted and merged.
  bool AddSolution(TBCPSolution<T>& ASolution, bool CheckConstraint);
  TBCPSolution<T> BestResult() const { return FBestSolution.Clone(); }

  // The search, until it is done, stopped, out of time, or has walked 1000 nodes. Empty if the start heuristics find
  // nothing. What they throw goes to the caller; what is thrown later ends the search with the best solution so far.
  TBCPSolution<T> Solve(std::atomic<bool>& Stop);
  TBCPSolution<T> Solve(const TBCPStopFunc& AStopFunc);

  // -1: not run, no first solution, out of time or at the limit of nodes; 0: the bounds have met; 1: stopped; 2: no
  // open node is left, which is also how an error ends. A node that the clock keeps from its first LP counts as closed,
  // so a search whose time is up before the root's LP ends with 2 as well: 2 proves nothing.
  int Status() const { return FStatus; }
  double GLB() const { return FGLB; }
  double GUB() const { return FGUB; }  // cost of the best solution; kBCPInfinity before the first one
  const TVarPool<T>& VarPool() const { return FVarPool; }
  const TNode& Root() const { return FRoot; }
  // By a walk over all nodes, a few thousand at most. Only on the thread of Solve while that runs.
  TBCPCounts Counts() const;

 protected:
  bool StopByFlag() const { return FPStopper->load(std::memory_order_relaxed); }
  bool UpdateBestResult(TBCPSolution<T>& ASolution, double ACost, bool AClone);
  bool GreedySolve();
  TNode* SolveRootNode(const TBCPStopFunc& AStop);
  bool Bound(const TNode& Node);
  bool BoundMeet();
  TNode* Branch(TNode& Node);
  TNode* Select(TNode* Node, bool ABestFirst);
  TNode* DeleteSearch(TNode& Node);
  // By the bound of the parent, the lower first, then the deeper node, then Idx. TAssertionError without a parent.
  static int CompareNodes(TNode* const& N1, TNode* const& N2);

  TNode& RootNode() { return FRoot; }
  TMinHeap<TNode*>& NodeHeap() { return FNodeHeap; }

 private:
  TNode* ExploreRoot(const TBCPStopFunc& AStop, std::vector<TBCPSolution<T>>& Arrived);
  TNode* Explore(TNode& Node, int Counter, const TBCPStopFunc& AStop);
  TNode* Search(TNode* Node, const TBCPStopFunc& AStop);
  void OfferIntSolution(TNode& Node);
  void OfferResidual(TNode& Node);
  TNode* PopOpenNode();
  static TNode* FirstOpenChild(const TNode& Node);
  static bool IsOpenLeaf(const TNode& Node) { return !Node.Calced && Node.ChildNodes.empty(); }
  static void Close(TNode& Node);

  const std::atomic<bool>* FPStopper = nullptr;
  int FStatus = -1;
  TBCPStopWatch FSW;
  TBCPSolution<T> FBestSolution;
  TSolutionFifo* FFIFOSolution;
  const TBCPSolverManager<T>* FSolverManager;
  TVarPool<T> FVarPool;
  TNode FRoot;
  TMinHeap<TNode*> FNodeHeap{CompareNodes};
  double FGLB = 0;
  double FGUB = kBCPInfinity;
  bool FCGInBranch;
};

}  // namespace platenest

#include "platenest/uBCPBase/BCPTreeBounds.h"
#include "platenest/uBCPBase/BCPTreeSearch.h"
