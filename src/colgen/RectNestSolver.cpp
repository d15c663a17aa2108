#include "platenest/colgen/RectNestSolver.h"

#include <limits>
#include <utility>
#include <vector>

#include "PatternRepeat.h"
#include "platenest/URectNest/MultiRectNest.h"
#include "platenest/URectNest/RSKF.h"
#include "platenest/URectNest/RectNestSmart.h"
#include "platenest/colgen/SVCBPRGNest.h"
#include "platenest/colgen/SVCBPRGNestSingle.h"

namespace platenest {

namespace {

constexpr double kPricingRate = 0.5;      // usage that counts as success
constexpr double kLastGreedyRate = 0.9;   // the same for the last of the greedy chain
constexpr double kGreedyRskfLimit = 5.0;  // s, to which TRSKF adds five of its own
constexpr int kRskfDigit = 1;             // tenths of a plate unit
constexpr int kEndlessStock = 10000;      // plates
constexpr int kFirstFailure = 2;          // lowest status of TMultiRectNest that is a failure

using TPatternPtr = std::unique_ptr<TRectPattern>;

const TRectNestProblem& AsRectProblem(const TRectNestSolver::TProblem& AProblem) {
  const auto* const problem = dynamic_cast<const TRectNestProblem*>(&AProblem);
  NestAssert(problem != nullptr);
  return *problem;
}

// Status as the nester says it.
TPatternPtr PriceByNestSmart(const TRectNestProblem& Problem, bool& Status, double& CostValue) {
  TNestedRects layout;
  TRectNestSmart(Problem.Plate(), Problem.Rects(), Problem.Gap(), kPricingRate).OutNest(layout, Status);
  if (!Status) return TRectPattern::CreateEmpty();
  return TRectNestSolver::CreatePattern(std::move(layout), Problem, CostValue);
}

void MoveTo(TRectSolution& Target, TRectSolution&& Source) {
  for (int i = 0; i < Source.Count(); ++i) {
    auto& pair = Source.GetSubSolution(i);
    Target.AddSubSolution(std::move(pair.Key), pair.Value);
  }
}

}  // namespace

TPatternPtr TRectNestSolver::SolveByMultiRectNest(const TProblem& ASubProblem, bool& Status, double& CostValue) {
  const TRectNestProblem& problem = AsRectProblem(ASubProblem);
  TMultiRectNest nest(problem.Plate(), problem.Rects(), problem.Gap(), kPricingRate, /*ConstArea=*/true);
  TNestedRects layout;
  int outcome = 0;
  nest.ShapeRectNestWithAmt(layout, outcome);
  Status = outcome < kFirstFailure && !layout.empty();
  return Status ? CreatePattern(std::move(layout), problem, CostValue) : TRectPattern::CreateEmpty();
}

TPatternPtr TRectNestSolver::SolveByRSKF(const TProblem& ASubProblem, bool& Status, double& CostValue) {
  const TRectNestProblem& problem = AsRectProblem(ASubProblem);
  TRSKF nest(problem.Plate(), problem.Rects(), problem.Gap(), /*ATimeLimit=*/0.0, kRskfDigit, /*WeightedProblem=*/true);
  TNestedRects layout;
  nest.RunMultiRectNest(layout, /*ACanRotate=*/true, /*ANormalPattern=*/false);
  if (layout.empty()) return PriceByNestSmart(problem, Status, CostValue);
  return CreatePattern(std::move(layout), problem, CostValue);
}

TPatternPtr TRectNestSolver::SolveByNestSmart(const TProblem& ASubProblem, bool& Status, double& CostValue) {
  return PriceByNestSmart(AsRectProblem(ASubProblem), Status, CostValue);
}

TPatternPtr TRectNestSolver::SolverByBPRG(const TProblem& ASubProblem, bool& Status, double& CostValue) {
  const TRectNestProblem& problem = AsRectProblem(ASubProblem);
  TNestedRects layout;
  TSVCBPRGNestSingle(problem.Plate(), problem.Rects(), problem.Gap(), /*SpecificValue=*/true).NestSinglePlate(layout);
  if (layout.empty()) return TRectPattern::CreateEmpty();
  Status = true;
  return CreatePattern(std::move(layout), problem, CostValue);
}

bool TRectNestSolver::GreedyNest(const TProblem& AProblem, TRectSolution& ASolution) {
  return GreedySolve(AProblem, ASolution, /*AWeighted=*/false);
}

bool TRectNestSolver::SolveResidual(const TProblem& ASubProblem, const TRectSolution& /*ACurSolution*/,
                                    TRectSolution& AResult) {
  return BPRGSolve(ASubProblem, AResult, /*ASpecificValue=*/false);
}

bool TRectNestSolver::GreedySolve(const TProblem& AProblem, TRectSolution& ASolution, bool AWeighted) {
  const TRectNestProblem& problem = AsRectProblem(AProblem);
  TNestRectList open = problem.Rects();
  TRectSolution made;
  while (!open.empty()) {
    TNestedRects layout;
    if (!GreedySolveOnePlate(open, problem.Plate(), problem.Gap(), layout, AWeighted)) break;
    const int times = detail::Repeat(layout, std::numeric_limits<int>::max(), open);
    if (times == 0) break;
    for (TNestedRect& item : layout) item.Part.Idx = open[static_cast<std::size_t>(item.Part.Idx)].Idx;
    made.AddSubSolution(std::make_unique<TRectPattern>(std::move(layout), problem.Plate()), times);
    std::erase_if(open, [](const TNestRect& row) { return row.Amount <= 0; });
  }
  MoveTo(ASolution, std::move(made));
  return true;
}

bool TRectNestSolver::GreedySolveOnePlate(const TNestRectList& ARects, const TVRect2D& APlate, double AGap,
                                          TNestedRects& AResult, bool AWeighted) {
  TNestedRects layout;
  int outcome = 0;
  TMultiRectNest(APlate, ARects, AGap, kPricingRate, AWeighted).ShapeRectNestWithAmt(layout, outcome);
  if (outcome >= kFirstFailure) {
    layout.clear();
    TRSKF(APlate, ARects, AGap, kGreedyRskfLimit, kRskfDigit, AWeighted)
        .RunMultiRectNest(layout, /*ACanRotate=*/true, /*ANormalPattern=*/false);
    bool isDense = false;
    if (layout.empty()) TRectNestSmart(APlate, ARects, AGap, kLastGreedyRate).OutNest(layout, isDense);
  }
  AResult = std::move(layout);
  return !AResult.empty();
}

bool TRectNestSolver::BPRGSolve(const TProblem& AProblem, TRectSolution& ASolution, bool ASpecificValue) {
  const TRectNestProblem& problem = AsRectProblem(AProblem);
  const TNestSpaceList stock{TNestSpace(problem.Plate(), kEndlessStock, /*AIsUdf=*/false)};
  TRectSolution made;
  TSVCBPRGNest(stock, problem.Rects(), problem.Gap(), /*ATimeLimit=*/0.0, ASpecificValue, /*AG=*/1).Nest(made);
  for (int i = 0; i < made.Count(); ++i) {
    TRectPattern& pattern = *made.GetSubSolution(i).Key;
    for (TNestedRect& item : pattern.NestedRects()) {
      const TNestRect& row = problem.Rects()[static_cast<std::size_t>(item.Part.Idx)];
      item.Part.Idx = row.Idx;
      item.Part.BoundBox = row.BoundBox;
    }
    pattern.UpdateUsage();
  }
  MoveTo(ASolution, std::move(made));
  return true;
}

double TRectNestSolver::CalcCostValue(const TNestedRects& ANestedRects) {
  double value = 0;
  for (const TNestedRect& item : ANestedRects) value += item.Part.Area;
  return value;
}

void TRectNestSolver::ConvertIdx(TNestedRects& ANestedRects, const TRectNestProblem& AProblem) {
  for (TNestedRect& item : ANestedRects) {
    NestAssert(item.Part.Idx >= 0 && item.Part.Idx < Size(AProblem.Rects()));
    item.Part = AProblem.Rects()[static_cast<std::size_t>(item.Part.Idx)];
  }
}

TPatternPtr TRectNestSolver::CreatePattern(TNestedRects ANestedRects, const TRectNestProblem& AProblem,
                                           double& CostValue) {
  const double value = CalcCostValue(ANestedRects);
  ConvertIdx(ANestedRects, AProblem);
  auto pattern = std::make_unique<TRectPattern>(std::move(ANestedRects), AProblem.Plate());
  CostValue = value;
  return pattern;
}

}  // namespace platenest
