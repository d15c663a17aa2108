#include "platenest/colgen/BCPRectNest.h"

#include <cmath>
#include <memory>

#include "PlateSizes.h"
#include "platenest/colgen/RectNestSolver.h"
#include "platenest/foundation/Compare.h"

namespace platenest {

template class TBCPNode<TRectPattern>;
template class TBCPTree<TRectPattern>;

namespace {

bool HasSize(const TVRect2D& Rect) {
  return std::isfinite(Rect.Width()) && std::isfinite(Rect.Height()) && Rect.Width() > 0 && Rect.Height() > 0;
}

// The rows of the problem for all parts: with Idx as the position in ARects.
TNestRectList KeptParts(TNestRectList ARects, const TVRect2D& APlate, double AGap) {
  if (!HasSize(APlate) || !std::isfinite(AGap)) return {};
  for (TNestRect& rect : ARects)
    if (!HasSize(rect.BoundBox)) rect.Amount = 0;
  return TRectNestProblem(ARects, APlate, AGap).Rects();
}

}  // namespace

TBCPRectNest::TBCPRectNest(const TNestRectList& ARects, const TNestSpace& ASpace, double AGap,
                           TRectSolutionFifo* AFIFOSolution)
    : TBCPRectNest(ARects, ASpace.Space, AGap, AFIFOSolution, KeptParts(ARects, ASpace.Space, AGap)) {}

TBCPRectNest::TBCPRectNest(const TNestRectList& ARects, const TVRect2D& APlate, double AGap,
                           TRectSolutionFifo* AFIFOSolution, const TNestRectList& AKept)
    : FRects(ARects),
      FRows(ARects.size(), -1),
      FMainProblem(AKept, APlate, AGap),
      FSolverManager(&FMainProblem),
      FTree(&FSolverManager, AFIFOSolution, /*ACGInBranch=*/true, /*ATimeLimit=*/0.0) {
  for (const TNestRect& rect : AKept) {
    FRows[static_cast<std::size_t>(rect.Idx)] = Size(FPositions);
    FPositions.push_back(rect.Idx);
  }
  InitializeManager();
}

void TBCPRectNest::InitializeManager() {
  FSolverManager.AddSubProblemSolver(TRectNestSolver::SolveByMultiRectNest);
  FSolverManager.AddSubProblemSolver(TRectNestSolver::SolveByRSKF);
  FSolverManager.AddGreedySolver(TRectNestSolver::GreedyNest);
  FSolverManager.AddResidualSolver(TRectNestSolver::SolveResidual);
  FSolverManager.SetAdmit([this](TRectSolution& ASolution) { return Admit(ASolution); });
}

void TBCPRectNest::AddColumnList(const TRectSolution& ASolution) {
  TRectSolution solution = ASolution.Clone();
  if (ToRows(solution)) FTree.AddSolution(solution, /*CheckConstraint=*/true);
}

bool TBCPRectNest::Solve(TRectSolution& ASolution, double /*ATimeLimit*/) {
  TRectSolution solution = FTree.Solve([this] { return NeedStop(); });
  ToPositions(solution);
  ASolution.AddBCPSolution(solution);
  return true;
}

// Who asks to end column generation gets an answer within the grace period, which lets a round that is nearly done
// pay off.
bool TBCPRectNest::NeedStop() {
  constexpr double kGraceSeconds = 5.0;
  if (RectNestStopped()) return true;
  FWatchStopped = FWatchStopped || (FWatch && FWatch(FTree));
  if (FWatchStopped) return true;
  if (ColumnGenerationTerminated.load(std::memory_order_relaxed) && !FStopWatch.IsRunning()) {
    FStopWatch = TBCPStopWatch(kGraceSeconds);
    FStopWatch.Start();
  }
  return FStopWatch.TimeOver();
}

bool TBCPRectNest::Admit(TRectSolution& ASolution) {
  const bool isForAnother =
      ASolution.Count() > 0 && !detail::SamePlate(ASolution.GetSubSolution(0).Key->Plate(), FMainProblem.Plate());
  if (isForAnother) FOtherPlates.push_back(std::move(ASolution));
  return !isForAnother && ToRows(ASolution);
}

// From positions to rows; false if nothing of the solution can be used.
bool TBCPRectNest::ToRows(TRectSolution& ASolution) const {
  TRectSolution solution;
  for (const auto& pair : ASolution) {
    TNestedRects layout;
    for (TNestedRect item : pair.Key->NestedRects()) {
      if (!IsOfTheList(item.Part)) return false;
      item.Part.Idx = FRows[static_cast<std::size_t>(item.Part.Idx)];
      if (item.Part.Idx >= 0) layout.push_back(item);
    }
    if (layout.empty() || !detail::SamePlate(pair.Key->Plate(), FMainProblem.Plate())) continue;
    solution.AddSubSolution(std::make_unique<TRectPattern>(std::move(layout), pair.Key->Plate()), pair.Value);
  }
  ASolution = std::move(solution);
  return ASolution.Count() > 0;
}

bool TBCPRectNest::IsOfTheList(const TNestRect& Part) const {
  return Part.Idx >= 0 && Part.Idx < Size(FRects) &&
         Part.BoundBox.SizeEquals(FRects[static_cast<std::size_t>(Part.Idx)].BoundBox, kDefaultTol);
}

void TBCPRectNest::ToPositions(TRectSolution& ASolution) const {
  for (int i = 0; i < ASolution.Count(); ++i) {
    TRectPattern& pattern = *ASolution.GetSubSolution(i).Key;
    for (TNestedRect& item : pattern.NestedRects()) item.Part.Idx = FPositions[static_cast<std::size_t>(item.Part.Idx)];
    pattern.UpdateUsage();
  }
}

}  // namespace platenest
