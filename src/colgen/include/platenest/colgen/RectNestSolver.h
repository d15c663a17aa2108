#pragma once

#include <memory>

#include "platenest/colgen/RectNestProblem.h"

namespace platenest {

// FRAME
class PLATENEST_API TRectNestSolver {
 public:
  using TProblem = TBCPProblem<TRectPattern>;

  TRectNestSolver() = delete;

  // Pricing.
  static std::unique_ptr<TRectPattern> SolveByMultiRectNest(const TProblem& ASubProblem, bool& Status,
                                                            double& CostValue);
  static std::unique_ptr<TRectPattern> SolveByRSKF(const TProblem& ASubProblem, bool& Status, double& CostValue);
  static std::unique_ptr<TRectPattern> SolveByNestSmart(const TProblem& ASubProblem, bool& Status, double& CostValue);
  static std::unique_ptr<TRectPattern> SolverByBPRG(const TProblem& ASubProblem, bool& Status, double& CostValue);

  // Whole solutions.
  static bool GreedyNest(const TProblem& AProblem, TRectSolution& ASolution);
  static bool SolveResidual(const TProblem& ASubProblem, const TRectSolution& ACurSolution, TRectSolution& AResult);
  static bool GreedySolve(const TProblem& AProblem, TRectSolution& ASolution, bool AWeighted);
  static bool GreedySolveOnePlate(const TNestRectList& ARects, const TVRect2D& APlate, double AGap,
                                  TNestedRects& AResult, bool AWeighted);
  static bool BPRGSolve(const TProblem& AProblem, TRectSolution& ASolution, bool ASpecificValue);

  static double CalcCostValue(const TNestedRects& ANestedRects);
  static void ConvertIdx(TNestedRects& ANestedRects, const TRectNestProblem& AProblem);
  static std::unique_ptr<TRectPattern> CreatePattern(TNestedRects ANestedRects, const TRectNestProblem& AProblem,
                                                     double& CostValue);
};

}  // namespace platenest
