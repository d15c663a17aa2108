#pragma once

#include <memory>
#include <vector>

#include "platenest/colgen/BCPRectNest.h"

namespace platenest {

// FRAME. Whole jobs by column generation, plate kind by plate kind.
class PLATENEST_API TCGRectNest {
 public:
  TCGRectNest(const TNestRectList* ARects, const TNestSpaceList* APlates, double AGap);

  static void Initialize();
  static void AddIntialSolution(TRectSolution ASolution);

  bool RunRectNest(double ATimeLimit, TRectSolution& ASolution);

 protected:
  bool RunSequentialMultiPlate(double ATimeLimit, TRectSolution& ASolution);
  bool RunUniPlate(double ATimeLimit, TRectSolution& ASolution);
  void CheckAmount(const TRectSolution& ASolution, const TNestRectList& ARects) const;
  static void ReturnSpace(TRectSolution& ASolution, int ANum);
  static void ReturnExcessiveRects(const TNestRectList& ARects, TRectSolution& ASolution);
  static void ReturnRects(TNestRectList& ARects, TIntegerDynArray& AIdxList, TRectSolution& ASolution);
  std::unique_ptr<TBCPRectNest> CreateBCPRectNest(const TNestRectList& ARects, const TNestSpace& ASpace);

 private:
  static TRectSolutionFifo& ColumnPool();

  const TNestRectList* FRects;
  const TNestSpaceList* FPlates;
  std::vector<TRectSolution> FOtherPlateSolutions;
  double FGap;
};

}  // namespace platenest
