#pragma once

#include <memory>
#include <vector>

#include "platenest/colgen/BCPRectNest.h"

namespace platenest {

// Whole jobs by column generation (Gilmore and Gomory 1965): parts with amounts on kinds of plates with a stock, kind
// after kind in the order of the list, each by a search of TBCPRectNest that stock does not bound and is then cut down
// to it. Lengths are plate units.
//
// Other nesters may feed solutions into the pool of the process while a run goes on; these are written against the full
// list of parts. A host calls Initialize between two runs, AddIntialSolution at any time from any thread, and
// RunRectNest, once per object. Runs on several threads at a time would take each other's solutions out of the pool.
class PLATENEST_API TCGRectNest {
 public:
  // Parts and plates belong to the caller and outlive this object; a plate exists Ratio times.
  TCGRectNest(const TNestRectList* ARects, const TNestSpaceList* APlates, double AGap);

  // Empties the pool.
  static void Initialize();
  // Part.Idx of every item is a position in the list of parts. A solution without patterns is dropped later.
  static void AddIntialSolution(TRectSolution ASolution);

  // Replaces ASolution; true if there is a pattern in it. No part is there more often than its amount on one kind of
  // plate; on several it may be, since parts that were set aside once are offered with their first amount again after
  // every later kind. What could not be placed is not reported: the caller compares amounts. Patterns may be empty.
  //
  // On several kinds of plates Part.Idx of an item is the position in the list of parts. On a single kind it is the
  // position among the parts that this plate holds: parts too large for it are taken out first and count no more.
  //
  // ATimeLimit in seconds; 0, below 0 and NaN mean none. It is looked at between kinds of plates only: a search runs
  // until it is done or one of the stop flags is set, see TBCPRectNest::Solve. Raises what the start heuristic raises,
  // with ASolution as it was.
  bool RunRectNest(double ATimeLimit, TRectSolution& ASolution);

 protected:
  bool RunSequentialMultiPlate(double ATimeLimit, TRectSolution& ASolution);
  bool RunUniPlate(double ATimeLimit, TRectSolution& ASolution);
  // Warns "AmountError" for every part whose number in a solution of single plates is not its amount.
  void CheckAmount(const TRectSolution& ASolution, const TNestRectList& ARects) const;
  // Cuts a solution down to ANum plates, from the least used pattern up. A pattern that loses only some of its copies
  // goes to the end.
  static void ReturnSpace(TRectSolution& ASolution, int ANum);
  // Takes out what is produced beyond the amounts of ARects, pattern after pattern and in each from the last item to
  // the first, so that the last items of a layout stay. Patterns left without items stay too.
  static void ReturnExcessiveRects(const TNestRectList& ARects, TRectSolution& ASolution);
  // Books a solution for the rows of ARects: their amounts fall, rows with nothing left go, and items now carry the
  // entry of AIdxList for their row.
  static void ReturnRects(TNestRectList& ARects, TIntegerDynArray& AIdxList, TRectSolution& ASolution);
  // A search for ARects on one kind of plate, with all outside solutions that lie on it; the others are kept. If ARects
  // has not as many entries as the full list, outside solutions say nothing about it: then it gets none, and no queue.
  std::unique_ptr<TBCPRectNest> CreateBCPRectNest(const TNestRectList& ARects, const TNestSpace& ASpace);

 private:
  static TRectSolutionFifo& ColumnPool();
  bool SolvePlate(const TNestRectList& ARects, const TNestSpace& ASpace, double ATimeLimit, TRectSolution& ASolution);

  const TNestRectList* FRects;
  const TNestSpaceList* FPlates;
  std::vector<TRectSolution> FOtherPlateSolutions;
  double FGap;
};

}  // namespace platenest
