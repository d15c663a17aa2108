#pragma once

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "platenest/uBCPBase/BCPNode.h"

// Branching on the count of one column.
namespace platenest {

namespace detail {

// Low for a value near one half in its fraction and near its upper bound; a whole value at its upper bound has 0.5.
inline double BranchScore(double X, double LB, double UB) {
  return std::fabs(Frac(X) - 0.5) + (UB - X) / (UB - LB);
}

}  // namespace detail

template <BCPVariable T>
bool TBCPNode<T>::BranchMostInfeasible(bool CGFlag) {
  const TBranching branching = ChooseBranching();
  if (branching.Column == 0) return false;
  const bool triesUp = branching.Floor >= 0;
  const double up = triesUp ? BranchUp(branching, CGFlag) : kBCPInfinity;
  const std::size_t before = ChildNodes.size();
  const double down = BranchDown(branching);
  if (down < up) std::reverse(ChildNodes.begin(), ChildNodes.end());
  return triesUp || ChildNodes.size() > before;
}

// The column of the lowest score, the first of equals. Whole values take part, and one at its upper bound can be chosen
// again and again, which only the limit of nodes ends: its down-branch is the node itself. A column whose bounds leave
// it no room is left out.
template <BCPVariable T>
typename TBCPNode<T>::TBranching TBCPNode<T>::ChooseBranching() const {
  constexpr double kPositive = 1e-6;
  double best = 2.0;
  TBranching result;
  auto bound = FIntConstraint.begin();
  for (int k = 1; k < Size(FLPSolVec); ++k) {
    const double x = FLPSolVec[k];
    if (x <= kPositive) continue;
    while (bound != FIntConstraint.end() && bound->Idx < FColDict[k]) ++bound;
    const bool isBounded = bound != FIntConstraint.end() && bound->Idx == FColDict[k];
    const Int64 limit = Round(FVarUB[k - 1]);
    const Int64 ub = isBounded ? std::min<Int64>(bound->UB, limit) : limit;
    const Int64 lb = isBounded ? std::max(0, bound->LB) : 0;
    if (ub == lb) continue;
    const double score = detail::BranchScore(x, static_cast<double>(lb), static_cast<double>(ub));
    if (score >= best) continue;
    best = score;
    result = {k, std::min(Trunc(x), Round(FVarUB[k - 1] - 1.0))};
  }
  return result;
}

template <BCPVariable T>
typename TBCPNode<T>::TBoundList TBCPNode<T>::UpBounds(const TBranching& Branching) const {
  TBoundList bounds = FIntConstraint;
  const int fixed = static_cast<int>(Branching.Floor) + 1;
  for (TIntULBConstraint& bound : bounds) {
    if (bound.Idx != FColDict[Branching.Column]) continue;
    bound.LB = std::max(0, bound.LB - fixed);
    bound.UB -= fixed;
  }
  return bounds;
}

template <BCPVariable T>
typename TBCPNode<T>::TBoundList TBCPNode<T>::DownBounds(const TBranching& Branching) const {
  TBoundList bounds = FIntConstraint;
  const int index = FColDict[Branching.Column];
  const int highest = static_cast<int>(Branching.Floor);
  const auto place =
      std::find_if(bounds.begin(), bounds.end(), [index](const TIntULBConstraint& b) { return b.Idx >= index; });
  if (place != bounds.end() && place->Idx == index)
    *place = {index, std::min(highest, place->UB), 0};
  else
    bounds.insert(place, {index, highest, 0});
  return bounds;
}

// Fixes Floor + 1 copies of the column. Rows whose demand they meet are out of the child. Returns the value of the LP
// with the raised bound.
template <BCPVariable T>
double TBCPNode<T>::BranchUp(const TBranching& Branching, bool CGFlag) {
  const int column = Branching.Column;
  const Int64 fixed = Branching.Floor + 1;
  bool feasible = false;
  ++FLPRounds;
  FCBCSolver->SetColLB(column - 1, static_cast<double>(fixed));
  const double value = FCBCSolver->Solve(feasible);
  FCBCSolver->SetColLB(column - 1, 0.0);
  if (!feasible) return value;

  TIntegerDynArray rowDict;
  TDoubleDynArray bVec;
  const TDoubleDynArray use = FConstraint.Dense(column - 1, Size(FBVec));
  for (std::size_t row = 0; row < FBVec.size(); ++row) {
    const Int64 rest = Round(FBVec[row]) - fixed * Round(use[row]);
    if (rest <= 0) continue;
    rowDict.push_back(FRowDict[row]);
    bVec.push_back(static_cast<double>(rest));
  }
  const double base = VarOf(column).GetObjCoeff() * static_cast<double>(fixed) + FBoundBase;
  TBCPNode& child = AddChild(std::move(rowDict), std::move(bVec), base, CGFlag);
  child.FIntConstraint = UpBounds(Branching);
  const int longEnough = *std::max_element(FColDict.begin(), FColDict.end()) + 1;
  child.FParentSolVec.resize(std::max(Size(FParentSolVec), longEnough));
  child.FParentSolVec[FColDict[column]] += static_cast<int>(fixed);
  return value;
}

// Allows Floor copies at most. The bound stays in the LP of this node, which is not solved again. The child generates
// no columns: pricing knows nothing of the bound and would offer the bounded column again.
template <BCPVariable T>
double TBCPNode<T>::BranchDown(const TBranching& Branching) {
  bool feasible = false;
  ++FLPRounds;
  FCBCSolver->SetColUB(Branching.Column - 1, static_cast<double>(Branching.Floor));
  const double value = FCBCSolver->Solve(feasible);
  if (feasible) AddChild(FRowDict, FBVec, FBoundBase, false).FIntConstraint = DownBounds(Branching);
  return value;
}

template <BCPVariable T>
TBCPNode<T>& TBCPNode<T>::AddChild(TIntegerDynArray RowDict, TDoubleDynArray BVec, double BoundBase, bool CGFlag) {
  auto child = std::make_unique<TBCPNode>(std::move(RowDict), std::move(BVec), FSolverManager, FVarPool, this,
                                          BoundBase, CGFlag);
  child->FParentSolVec = FParentSolVec;
  child->FDepth = FDepth + 1;
  ChildNodes.push_back(std::move(child));
  return *ChildNodes.back();
}

}  // namespace platenest
