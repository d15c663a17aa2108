#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platenest/uBCPBase/BCPProblem.h"

namespace platenest {

// True asks the caller to stop.
using TBCPStopFunc = std::function<bool()>;

// Pricing: a column of high worth for the sub-problem, by its dual costs. Status says whether the column may be used;
// a solver that does not write it leaves what the solver before it in the chain has said. CostValue is the worth, still
// times the Amp of SetDualCost. A column that may not be used can be null.
template <BCPVariable T>
using TSubProblemSolveFunc =
    std::function<std::unique_ptr<T>(const TBCPProblem<T>& ASubProblem, bool& Status, double& CostValue)>;

// A whole solution from nothing, into an empty ASolution. False if there is none.
template <BCPVariable T>
using TGreedySolveFunc = std::function<bool(const TBCPProblem<T>& AProblem, TBCPSolution<T>& ASolution)>;

// A solution of the residual demand, which is that of the sub-problem, into an empty AResult. ACurSolution is what
// stands already. False if there is none.
template <BCPVariable T>
using TResidualSolveFunc = std::function<bool(const TBCPProblem<T>& ASubProblem, const TBCPSolution<T>& ACurSolution,
                                              TBCPSolution<T>& AResult)>;

// Rewrites a solution from a queue for the rows of the main problem, before anything else looks at it. False refuses
// it; it may have been moved from then.
template <BCPVariable T>
using TAdmitFunc = std::function<bool(TBCPSolution<T>& ASolution)>;

// The heuristics that a search may call, each kind in the order in which it was added.
template <BCPVariable T>
class TBCPSolverManager {
 public:
  // AMainProblem belongs to the caller and outlives this object.
  explicit TBCPSolverManager(const TBCPProblem<T>* AMainProblem) : MainProblem(AMainProblem) {}

  void AddSubProblemSolver(TSubProblemSolveFunc<T> ASolver) { FSubProblemSolvers.push_back(std::move(ASolver)); }
  void AddGreedySolver(TGreedySolveFunc<T> ASolver) { FGreedySolvers.push_back(std::move(ASolver)); }
  void AddResidualSolver(TResidualSolveFunc<T> ASolver) { FResidualSolvers.push_back(std::move(ASolver)); }

  // What solutions from a queue pass first. Without it they are taken as they are.
  void SetAdmit(TAdmitFunc<T> AAdmit) { FAdmit = std::move(AAdmit); }
  bool Admits(TBCPSolution<T>& ASolution) const { return !FAdmit || FAdmit(ASolution); }

  const std::vector<TSubProblemSolveFunc<T>>& SubProblemSolvers() const { return FSubProblemSolvers; }
  const std::vector<TGreedySolveFunc<T>>& GreedySolvers() const { return FGreedySolvers; }
  const std::vector<TResidualSolveFunc<T>>& ResidualSolvers() const { return FResidualSolvers; }

  const TBCPProblem<T>* MainProblem;

 private:
  std::vector<TSubProblemSolveFunc<T>> FSubProblemSolvers;
  std::vector<TGreedySolveFunc<T>> FGreedySolvers;
  std::vector<TResidualSolveFunc<T>> FResidualSolvers;
  TAdmitFunc<T> FAdmit;
};

}  // namespace platenest
