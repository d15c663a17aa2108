#pragma once

#include <memory>

#include "platenest/colgen/RectNestProblem.h"

namespace platenest {

// The rectangle nesters as the heuristics of branch-and-price: they price patterns, give a whole solution to begin
// with, and complete a rounded one. Pricing is no exact knapsack: a nester gathers as much Area as it can on one plate,
// and SetDualCost of the problem has put the prices there. So a search that finds no better column has not proved that
// there is none.
//
// Lengths are plate units. Part.Idx of what a nester returns is a position in the rows that it was given; what leaves
// here carries the Idx of the rows. Every problem must be a TRectNestProblem, TAssertionError otherwise; what else is
// raised comes from the nesters (TRangeError for plates and worths beyond their tables, TNestError where one fails) and
// leaves the arguments as they were. A stop (RectNestStopped) is obeyed by the nesters: a pattern made then is valid,
// and a whole solution may cover less than the demand.
// No state: any number of calls on any threads. Cost: that of the nesters, one of each a call and plate; see there.
class PLATENEST_API TRectNestSolver {
 public:
  using TProblem = TBCPProblem<TRectPattern>;

  TRectNestSolver() = delete;

  // Pricing: a pattern of at most the amounts of the rows. Status says whether it may be used; CostValue is its worth,
  // written with a layout only. Without one the pattern is empty, never null.

  // By three blocks of stacks. False, with nothing tried, where the demand covers less than nine tenths of the plate;
  // a poor usage is no failure, since the usage of prices means nothing. Blind to layouts worth less than 2.5e-5 of the
  // area of the plate.
  static std::unique_ptr<TRectPattern> SolveByMultiRectNest(const TProblem& ASubProblem, bool& Status,
                                                            double& CostValue);
  // By the raster dynamic program, without a limit of time, or by best fit where that finds nothing. With a raster
  // layout Status keeps what the solver before it has left there: in a chain behind SolveByMultiRectNest the pattern
  // counts only if that one succeeded too, so that where little demand is left pricing ends at once, even though this
  // pattern may be worth more than a plate.
  static std::unique_ptr<TRectPattern> SolveByRSKF(const TProblem& ASubProblem, bool& Status, double& CostValue);
  // By best fit, which knows nothing of prices. False below a usage of one half.
  static std::unique_ptr<TRectPattern> SolveByNestSmart(const TProblem& ASubProblem, bool& Status, double& CostValue);
  // By strips. Without a layout Status stays as it is. See TSVCBPRGNestSingle for the decimals that count.
  static std::unique_ptr<TRectPattern> SolverByBPRG(const TProblem& ASubProblem, bool& Status, double& CostValue);

  // Whole solutions, added to ASolution. True whatever was made: TBCPProblem::CheckSolution tells what covers the
  // demand.

  // GreedySolve by area.
  static bool GreedyNest(const TProblem& AProblem, TRectSolution& ASolution);
  // BPRGSolve by area; ACurSolution plays no part, as the demand of ASubProblem is what it leaves.
  static bool SolveResidual(const TProblem& ASubProblem, const TRectSolution& ACurSolution, TRectSolution& AResult);
  // Fills a plate, repeats the layout as often as no row gets too much, and goes on with what remains. Ends early at a
  // plate that stays empty, and at one that holds more of a row than remains. AWeighted: for greatest Area.
  static bool GreedySolve(const TProblem& AProblem, TRectSolution& ASolution, bool AWeighted);
  // Three blocks, then the raster dynamic program (up to ten seconds), then best fit: the first that gives a result
  // counts. Three blocks that were tried count also when they hold nothing. Replaces AResult; false if it is empty.
  static bool GreedySolveOnePlate(const TNestRectList& ARects, const TVRect2D& APlate, double AGap,
                                  TNestedRects& AResult, bool AWeighted);
  // TSVCBPRGNest, without correction, on a stock of 10000 plates: all of the demand or nothing. The boxes are those of
  // the rows again, where the nester rounds them to three decimals. ASpecificValue: by Area.
  static bool BPRGSolve(const TProblem& AProblem, TRectSolution& ASolution, bool ASpecificValue);

  // Sum of the Area of the items: their worth while the layout still carries the priced rows.
  static double CalcCostValue(const TNestedRects& ANestedRects);
  // Turns positions in the rows of AProblem into the rows themselves, their Idx, Amount, Area and box.
  static void ConvertIdx(TNestedRects& ANestedRects, const TRectNestProblem& AProblem);
  // The pattern of a nester's layout. CostValue is read from the layout before ConvertIdx.
  static std::unique_ptr<TRectPattern> CreatePattern(TNestedRects ANestedRects, const TRectNestProblem& AProblem,
                                                     double& CostValue);
};

}  // namespace platenest
