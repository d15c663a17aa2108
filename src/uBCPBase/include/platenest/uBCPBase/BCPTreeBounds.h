#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "platenest/foundation/Rounding.h"
#include "platenest/uBCPBase/BCPTree.h"

// What the search knows: its pool, its best solution, its bounds.
namespace platenest {

template <BCPVariable T>
TBCPTree<T>::TBCPTree(const TBCPSolverManager<T>* ASolverManager, TSolutionFifo* AFIFOSolution, bool ACGInBranch,
                      double ATimeLimit)
    : FSW(ATimeLimit),
      FFIFOSolution(AFIFOSolution),
      FSolverManager(ASolverManager),
      FVarPool(ASolverManager->MainProblem->BVec(), ASolverManager->MainProblem->IneqVec()),
      FRoot(ASolverManager->MainProblem->RowDict(), ASolverManager->MainProblem->BVec(), ASolverManager, &FVarPool,
            nullptr, 0.0, /*CGFlag=*/true),
      FCGInBranch(ACGInBranch) {}

template <BCPVariable T>
bool TBCPTree<T>::AddVar(const T& AVar) {
  bool exists = false;
  FVarPool.AddVar(AVar, exists);
  return !exists;
}

template <BCPVariable T>
bool TBCPTree<T>::AddVars(const std::vector<std::unique_ptr<T>>& AVars) {
  for (const std::unique_ptr<T>& var : AVars)
    if (!AddVar(*var)) return false;
  return true;
}

template <BCPVariable T>
bool TBCPTree<T>::AddSolution(TBCPSolution<T>& ASolution, bool /*CheckConstraint*/) {
  const bool isBetter = FSolverManager->MainProblem->CheckSolution(ASolution) &&
                        UpdateBestResult(ASolution, ASolution.GetCSPCost(), /*AClone=*/true);
  for (const auto& pair : ASolution) AddVar(*pair.Key);
  return isBetter;
}

// Without AClone a solution that is taken is moved from.
template <BCPVariable T>
bool TBCPTree<T>::UpdateBestResult(TBCPSolution<T>& ASolution, double ACost, bool AClone) {
  if (ASolution.Count() == 0 || !(ACost < FGUB) || !FSolverManager->MainProblem->CheckSolution(ASolution)) return false;
  FBestSolution = AClone ? ASolution.Clone() : std::move(ASolution);
  FGUB = ACost;
  return true;
}

// Solutions from outside serve as the best one only: their columns do not enter the pool here. With one of them no
// heuristic runs.
template <BCPVariable T>
bool TBCPTree<T>::GreedySolve() {
  if (FFIFOSolution != nullptr) {
    for (TBCPSolution<T> arrived; FFIFOSolution->Pop(arrived);)
      if (FSolverManager->Admits(arrived)) UpdateBestResult(arrived, arrived.GetCSPCost(), /*AClone=*/false);
  }
  if (FBestSolution.Count() > 0) return true;
  for (const TGreedySolveFunc<T>& solver : FSolverManager->GreedySolvers()) {
    TBCPSolution<T> solution;
    if (!solver(*FSolverManager->MainProblem, solution)) continue;
    FVarPool.AddBCPSolution(solution, /*DeepCopy=*/true);
    if (UpdateBestResult(solution, solution.GetCSPCost(), /*AClone=*/false)) return true;
  }
  return false;
}

// False for a node that cannot improve on the best solution. The root sets the global bound and other nodes only lower
// it: what is closed does not raise it again.
template <BCPVariable T>
bool TBCPTree<T>::Bound(const TNode& Node) {
  FGLB = &Node == &FRoot ? Node.LLB : std::min(Node.LLB, FGLB);
  return FGUB > Node.LLB;
}

// The lower bound stays rounded, so that the noise of the LP does not lift it over a whole number.
template <BCPVariable T>
bool TBCPTree<T>::BoundMeet() {
  FGLB = RoundTo(FGLB, -6);
  const bool met = detail::BoundsMeet(FGLB, FGUB);
  if (met) FStatus = 0;
  return met;
}

template <BCPVariable T>
TBCPCounts TBCPTree<T>::Counts() const {
  TBCPCounts counts{0, 0, 0, FVarPool.Count()};
  std::vector<const TNode*> open{&FRoot};
  while (!open.empty()) {
    const TNode& node = *open.back();
    open.pop_back();
    ++counts.Nodes;
    counts.LPRounds += node.LPRounds();
    counts.Pricings += node.Pricings();
    for (const std::unique_ptr<TNode>& child : node.ChildNodes) open.push_back(child.get());
  }
  return counts;
}

template <BCPVariable T>
void TBCPTree<T>::OfferIntSolution(TNode& Node) {
  double cost = 0;
  TBCPSolution<T> solution = Node.GetIntSolution(cost);
  UpdateBestResult(solution, cost, /*AClone=*/false);
}

template <BCPVariable T>
void TBCPTree<T>::OfferResidual(TNode& Node) {
  double cost = 0;
  TBCPSolution<T> solution = Node.SolveResidual(cost);
  UpdateBestResult(solution, cost, /*AClone=*/false);
}

}  // namespace platenest
