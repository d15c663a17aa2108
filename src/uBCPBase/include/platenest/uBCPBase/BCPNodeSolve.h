#pragma once

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "platenest/uBCPBase/BCPNode.h"

// Column generation in a node: LP, duals, pricing, and again (Gilmore and Gomory 1961).
namespace platenest {

namespace detail {

// The newest column has a negative reduced cost, and further ones can still change the whole-number bound: LP value by
// column value is a lower bound of what the LP can come to (Farley 1990).
inline bool IsWorthAnotherLP(double CostValue, double MinCost, double LPValue) {
  constexpr double kTolerance = 1e-6;
  return CostValue > MinCost + kTolerance && std::ceil(LPValue) > std::ceil(LPValue / CostValue);
}

}  // namespace detail

template <BCPVariable T>
bool TBCPNode<T>::Solve(const TBCPStopWatch& ASW, const TBCPStopFunc& Stop) {
  const TPricingScope scope{FSubProblem};
  TDoubleDynArray duals;
  bool solved = false;
  if (InitializeSolve(ASW, Stop)) {
    while (!ASW.TimeOver() && !Stop()) {
      UpdateVarBound();
      if (!SolveMaster(duals)) break;
      solved = true;
      if (!FCGRequired || !PriceMaster(duals)) break;
    }
  }
  FinalizeSolve(solved);
  return solved;
}

template <BCPVariable T>
bool TBCPNode<T>::SolveWithFIFOSolutions(const TBCPStopWatch& ASW, const TBCPStopFunc& Stop,
                                         TSolutionFifo* AFIFOSolutions, TSolutionList& ASolutions) {
  const TPricingScope scope{FSubProblem};
  TDoubleDynArray duals;
  bool solved = false;
  InitializeSolve(ASW, Stop);
  while (FCBCSolver != nullptr && FSubProblem != nullptr && !ASW.TimeOver() && !Stop()) {
    if (AFIFOSolutions != nullptr) CheckFIFO(*AFIFOSolutions, ASolutions);
    if (!SolveMaster(duals)) break;
    solved = true;
    if (FCGRequired && PriceMaster(duals)) continue;
    if (AFIFOSolutions == nullptr || !CheckFIFO(*AFIFOSolutions, ASolutions)) break;
  }
  FinalizeSolve(solved);
  return solved;
}

template <BCPVariable T>
bool TBCPNode<T>::InitializeSolve(const TBCPStopWatch& ASW, const TBCPStopFunc& Stop) {
  if (ASW.TimeOver() || Stop() || !InitLP() || Stop() || !CheckNoEmptyRow() || Stop()) return false;
  FMinCost = FCostVec.empty() ? kBCPInfinity : *std::min_element(FCostVec.begin(), FCostVec.end());
  FSubProblem = FSolverManager->MainProblem->GetSubBCPProblem(FRowDict, FBVec);
  return true;
}

template <BCPVariable T>
void TBCPNode<T>::FinalizeSolve(bool Solved) {
  LLB = Solved ? FLPSol + FBoundBase : kBCPInfinity;
  if (Solved) UpdateVarBound();
}

// One LP; what it gave becomes that of the node. False if it has no optimum, which leaves the values of the last one.
template <BCPVariable T>
bool TBCPNode<T>::SolveMaster(TDoubleDynArray& Duals) {
  bool status = false;
  TDoubleDynArray solution;
  const double value = SolveByCBC(status, Duals, solution);
  if (!status) return false;
  FLPSol = value;
  FLPSolVec = std::move(solution);
  Duals.resize(FRowDict.size());
  return true;
}

template <BCPVariable T>
double TBCPNode<T>::SolveByCBC(bool& Status, TDoubleDynArray& Duals, TDoubleDynArray& Solution) {
  ++FLPRounds;
  const double value = FCBCSolver->Solve(Status);
  if (!Status) return value;
  const TDoubleDynArray& x = FCBCSolver->GetColSolution();
  Status = !x.empty();
  if (!Status) return kBCPInfinity;
  Solution.assign(1, 0.0);
  Solution.insert(Solution.end(), x.begin(), x.end());
  Duals = FCBCSolver->GetRowPrice();
  return value;
}

// Pricing heuristics may work on whole numbers, so the duals reach them enlarged.
template <BCPVariable T>
bool TBCPNode<T>::PriceMaster(const TDoubleDynArray& Duals) {
  constexpr double kAmplifier = 10000;
  return SolveSubProblem(Duals, kAmplifier, [this] { return StopByCostValue(); });
}

// One pricing pass. Every heuristic that gives a new column adds it, and the next one runs while AStop has not taken
// one: a column that AStop rejects stays in the LP all the same. One status serves all: a heuristic that leaves it
// alone is believed what the one before it said, and has its column dropped if that was false.
template <BCPVariable T>
bool TBCPNode<T>::SolveSubProblem(const TDoubleDynArray& AWVec, double Amp, const TBCPStopFunc& AStop) {
  FSubProblem->SetDualCost(AWVec, Amp);
  bool status = false;
  for (const TSubProblemSolveFunc<T>& solver : FSolverManager->SubProblemSolvers()) {
    ++FPricings;
    std::unique_ptr<T> column = solver(*FSubProblem, status, FCostValue);
    FCostValue /= Amp;
    if (status && column != nullptr && AddVartoConstraint(std::move(column)) && AStop()) return true;
  }
  return false;
}

template <BCPVariable T>
bool TBCPNode<T>::StopByCostValue() const {
  return detail::IsWorthAnotherLP(FCostValue, FMinCost, FLPSol);
}

// Takes all that stands in the queue. True if there was a solution to admit, also when all its columns were known.
template <BCPVariable T>
bool TBCPNode<T>::CheckFIFO(TSolutionFifo& AFIFOSolutions, TSolutionList& ASolutions) {
  bool any = false;
  for (TBCPSolution<T> arrived; AFIFOSolutions.Pop(arrived);) {
    if (!FSolverManager->Admits(arrived)) continue;
    any = true;
    ASolutions.push_back(std::move(arrived));
    for (const auto& pair : ASolutions.back()) AddVartoConstraint(*pair.Key);
  }
  return any;
}

}  // namespace platenest
