#pragma once

#include <functional>

#include "platenest/colgen/RectNestProblem.h"
#include "platenest/uBCPBase/BCPStopWatch.h"
#include "platenest/uBCPBase/BCPTree.h"

namespace platenest {

extern template class TBCPNode<TRectPattern>;
extern template class TBCPTree<TRectPattern>;

using TRectSolutionFifo = TFifo<TRectSolution>;

// FRAME. One search over one kind of plate, as often as needed.
class PLATENEST_API TBCPRectNest {
 public:
  using TTree = TBCPTree<TRectPattern>;
  // Called on the thread of Solve wherever the search looks at its stop flags (at least before every LP); true stops it
  // at once. It may read the tree: bounds, best result, pool, LP rounds of the root.
  using TWatchFunc = std::function<bool(const TTree& Tree)>;

  // Part.Idx in solutions that go in and come out is the position in ARects, also where some were left out. The queue
  // (null: none) belongs to the caller and outlives this.
  TBCPRectNest(const TNestRectList& ARects, const TNestSpace& ASpace, double AGap, TRectSolutionFifo* AFIFOSolution);

  void SetWatch(TWatchFunc Watch) { FWatch = std::move(Watch); }
  void AddColumnList(const TRectSolution& ASolution);
  bool Solve(TRectSolution& ASolution, double ATimeLimit);
  const TTree& Tree() const { return *FTree; }

 protected:
  void InitializeManager();
  bool NeedStop();

 private:
  TWatchFunc FWatch;
  std::unique_ptr<TTree> FTree;
};

}  // namespace platenest
