#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "platenest/foundation/Sort.h"
#include "platenest/uBCPBase/BCPNode.h"

// From the LP solution of a node to whole solutions.
namespace platenest {

template <BCPVariable T>
bool TBCPNode<T>::Fathom(double ATol) const {
  return std::all_of(FLPSolVec.begin(), FLPSolVec.end(), [ATol](double x) {
    const double f = Frac(x);
    return f <= ATol || f >= 1 - ATol;
  });
}

template <BCPVariable T>
TBCPSolution<T> TBCPNode<T>::GetIntSolution(double& ACost) {
  TBCPSolution<T> solution;
  for (int k = 1; k < Size(FLPSolVec); ++k) {
    const int count = Round<int>(FLPSolVec[k]);
    if (count > 0) solution.AddSubSolution(VarOf(k), count);
  }
  AddParentSolution(solution);
  LUB = ACost = solution.GetCSPCost();
  return solution;
}

template <BCPVariable T>
TBCPSolution<T> TBCPNode<T>::SolveResidual(double& ACost) {
  TDoubleDynArray residual;
  TBCPSolution<T> solution = RoundingLargeFracPrior(residual);
  AddParentSolution(solution);
  const auto subProblem = FSolverManager->MainProblem->GetSubBCPProblem(FRowDict, residual);
  solution.AddBCPSolution(BestResidual(*subProblem, solution));
  LUB = ACost = solution.GetCSPCost();
  return solution;
}

// The cheapest answer, the first of equals; empty if there is none.
template <BCPVariable T>
TBCPSolution<T> TBCPNode<T>::BestResidual(const TBCPProblem<T>& SubProblem, const TBCPSolution<T>& Partial) const {
  TBCPSolution<T> best;
  double bestCost = 0;
  bool any = false;
  for (const TResidualSolveFunc<T>& solver : FSolverManager->ResidualSolvers()) {
    TBCPSolution<T> result;
    if (!solver(SubProblem, Partial, result)) continue;
    const double cost = result.GetCSPCost();
    if (any && cost >= bestCost) continue;
    best = std::move(result);
    bestCost = cost;
    any = true;
  }
  return best;
}

template <BCPVariable T>
void TBCPNode<T>::AddParentSolution(TBCPSolution<T>& Solution) const {
  NestAssert(Size(FParentSolVec) <= FVarPool->Count());
  for (int i = 0; i < Size(FParentSolVec); ++i)
    if (FParentSolVec[i] > 0) Solution.AddSubSolution((*FVarPool)[i], FParentSolVec[i]);
}

// Greedy, the largest fractions first; each column as often as its rounded value and the demand left allow.
template <BCPVariable T>
TBCPSolution<T> TBCPNode<T>::RoundingLargeFracPrior(TDoubleDynArray& AResidual) const {
  AResidual = FBVec;
  TBCPSolution<T> solution;
  std::vector<std::pair<int, double>> columns = FractionalColumns();
  std::reverse(columns.begin(), columns.end());
  for (const auto& [k, fraction] : columns) {
    TDoubleDynArray use = FConstraint.Dense(k - 1, Size(FBVec));
    for (double& u : use) u = RoundHalfEven(u);
    int count = Round<int>(FLPSolVec[k]);
    const auto fits = [&] {
      for (std::size_t row = 0; row < use.size(); ++row)
        if (count * use[row] > AResidual[row]) return false;
      return true;
    };
    while (count > 0 && !fits()) --count;
    if (count <= 0) continue;
    for (std::size_t row = 0; row < use.size(); ++row) AResidual[row] -= count * use[row];
    solution.AddSubSolution(VarOf(k), count);
  }
  return solution;
}

// LP columns with their fractions, ascending. A value at or just above a whole number other than 0 counts as just below
// it, with a fraction next to 1: what the LP gives as whole is rounded first.
template <BCPVariable T>
std::vector<std::pair<int, double>> TBCPNode<T>::FractionalColumns() const {
  constexpr double kNearlyWhole = 0.001;
  std::vector<std::pair<int, double>> columns;
  for (int k = 1; k < Size(FLPSolVec); ++k) {
    const double x = FLPSolVec[k];
    double fraction = Frac(x);
    if (fraction < kNearlyWhole && Trunc(x) > 0) fraction = Frac(x - kNearlyWhole);
    if (fraction != 0) columns.emplace_back(k, fraction);
  }
  SortBy(columns, [](const auto& left, const auto& right) { return Sign(left.second, right.second); });
  return columns;
}

}  // namespace platenest
