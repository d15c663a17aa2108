#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "platenest/colgen/RectNestProblem.h"
#include "platenest/uBCPBase/BCPStopWatch.h"
#include "platenest/uBCPBase/BCPTree.h"

namespace platenest {

extern template class PLATENEST_API TBCPNode<TRectPattern>;
extern template class PLATENEST_API TBCPTree<TRectPattern>;

using TRectSolutionFifo = TFifo<TRectSolution>;

// One search by branch-and-price (see TBCPTree) for rectangles on one kind of plate, as many plates as needed: pricing
// by TRectNestSolver::SolveByMultiRectNest, then SolveByRSKF; a first solution by GreedyNest; rounded LPs completed by
// SolveResidual. Lengths are plate units.
//
// Left out are the parts that TRectNestProblem leaves out, those equal to the plate in a side among them, parts without
// a finite positive size, and everything on a plate or with a gap that is not finite. Part.Idx in solutions that go in
// and come out is the position in ARects whatever was left out; rows inside number what is kept.
//
// A solution from outside, by AddColumnList or from the queue, loses its items of parts that were left out, and its
// patterns that are then empty or lie on a plate of another size; turned by a quarter it is the same size, and patterns
// of the answer may lie so. What remains can be the answer, and its columns enter the pool, unless it stood in the
// queue when the search began. A solution that names positions or sizes that ARects does not have was written for
// another list and is not used at all. From the queue, a solution whose first pattern lies on a plate of another size
// is set aside untouched, see TakeOtherPlates.
//
// Searches of different objects may run on different threads; this one uses its queue, the stop flags of the process
// and the stop token of the thread of Solve. Cost: each pricing is a run of one or two nesters, each node one at least.
class PLATENEST_API TBCPRectNest {
 public:
  using TTree = TBCPTree<TRectPattern>;
  // Called on the thread of Solve wherever the search looks at its stop flags, which is at least before every LP. It
  // may read the tree: bounds, counts, best result, pool, the LP of the root.
  using TWatchFunc = std::function<bool(const TTree& Tree)>;

  // ARects are copied. The queue (null: none) belongs to the caller and outlives this object; other threads may push
  // into it at any time.
  TBCPRectNest(const TNestRectList& ARects, const TNestSpace& ASpace, double AGap, TRectSolutionFifo* AFIFOSolution);

  // True stops the search at once, and for good.
  void SetWatch(TWatchFunc Watch) { FWatch = std::move(Watch); }
  // Before Solve. Its layouts are taken as valid.
  void AddColumnList(const TRectSolution& ASolution);
  // Runs the search, once, and adds the best solution to ASolution, which is merged. Always true. Nothing is added if
  // the start heuristic finds no solution. Each part that is kept is there in its amount at least, not exactly.
  // ATimeLimit is not read: the search ends by itself, at once by RectNestStopped and by the watch, and five seconds
  // after it has first seen ColumnGenerationTerminated. Errors of the start heuristic go to the caller, with ASolution
  // as it was; later ones end the search with the best solution so far.
  bool Solve(TRectSolution& ASolution, double ATimeLimit);

  const TTree& Tree() const { return FTree; }
  // The solutions for plates of another size that came through the queue so far, in their order.
  std::vector<TRectSolution> TakeOtherPlates() { return std::exchange(FOtherPlates, {}); }

 protected:
  void InitializeManager();
  bool NeedStop();

 private:
  TBCPRectNest(const TNestRectList& ARects, const TVRect2D& APlate, double AGap, TRectSolutionFifo* AFIFOSolution,
               const TNestRectList& AKept);
  bool Admit(TRectSolution& ASolution);
  bool ToRows(TRectSolution& ASolution) const;
  bool IsOfTheList(const TNestRect& Part) const;
  void ToPositions(TRectSolution& ASolution) const;

  TNestRectList FRects;         // by position
  TIntegerDynArray FRows;       // row by position, -1 for what was left out
  TIntegerDynArray FPositions;  // position by row
  TWatchFunc FWatch;
  bool FWatchStopped = false;
  TBCPStopWatch FStopWatch{0.0};  // runs since ColumnGenerationTerminated was seen
  TRectNestProblem FMainProblem;
  TBCPSolverManager<TRectPattern> FSolverManager;
  TTree FTree;
  std::vector<TRectSolution> FOtherPlates;
};

}  // namespace platenest
