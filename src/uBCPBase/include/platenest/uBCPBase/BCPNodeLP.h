#pragma once

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

#include "platenest/uBCPBase/BCPNode.h"

// The master LP of a node: how it is built, how it grows, and the search for rows without a column.
namespace platenest {

template <BCPVariable T>
bool TBCPNode<T>::InitLP() {
  NestAssert(FRowDict.size() == FBVec.size());
  if (!FVarPool->ConstructLP(FRowDict, FColDict, FVarUB, FBVec, FIneqVec, FConstraint, FCostVec)) return false;
  CreateCBCSolver();
  return AddULBConstraint() && AddCuttingPlane();
}

template <BCPVariable T>
void TBCPNode<T>::CreateCBCSolver() {
  TDoubleDynArray low = FBVec;
  TDoubleDynArray high = FBVec;
  for (std::size_t i = 0; i < FBVec.size(); ++i) {
    if (FIneqVec[i] > 0) high[i] = kBCPInfinity;
    if (FIneqVec[i] < 0) low[i] = 0;
  }
  FCBCSolver = std::make_unique<TCbcLPSolver>(FConstraint.DenseRows(Size(FBVec)), FCostVec, false, low, high);
}

// Upper bounds only: what an up-branch has fixed is out of the LP already, so a lower bound has nothing left to say.
template <BCPVariable T>
bool TBCPNode<T>::AddULBConstraint() {
  NestAssert(FConstraint.Count() + 1 == Size(FColDict) && FBVec.size() == FIneqVec.size());
  int k = 1;
  for (int c = 0; c < Size(FIntConstraint) && k < Size(FColDict);) {
    const TIntULBConstraint& bound = FIntConstraint[c];
    if (bound.Idx > FColDict[k]) {
      ++k;
      continue;
    }
    ++c;
    if (bound.Idx < FColDict[k]) continue;
    if (bound.UB == 0) {
      DeleteColumn(k);
    } else {
      FCBCSolver->SetColUB(k - 1, std::min(FCBCSolver->GetColUB(k - 1), static_cast<double>(bound.UB)));
      ++k;
    }
  }
  return true;
}

// FVarUB keeps the entry of the column: behind it the list stands one place off the LP columns from now on, and the
// next column that is added gets no entry. Branching then works with the limit of a neighbour.
template <BCPVariable T>
void TBCPNode<T>::DeleteColumn(int Column) {
  FCBCSolver->DeleteColumn(Column - 1);
  FConstraint.Erase(Column - 1);
  FCostVec.erase(FCostVec.begin() + Column - 1);
  FColDict.erase(FColDict.begin() + Column);
}

// A column that the pool knew already is not entered, also when it is not in this LP.
template <BCPVariable T>
bool TBCPNode<T>::AddVartoConstraint(std::unique_ptr<T> AVar) {
  bool exists = false;
  const int index = FVarPool->AddVar(std::move(AVar), exists);
  if (!exists) EnterColumn(index);
  return !exists;
}

template <BCPVariable T>
bool TBCPNode<T>::AddVartoConstraint(const T& AVar) {
  bool exists = false;
  const int index = FVarPool->AddVar(AVar, exists);
  if (!exists) EnterColumn(index);
  return !exists;
}

template <BCPVariable T>
void TBCPNode<T>::EnterColumn(int PoolIdx) {
  const TDoubleDynArray column = FVarPool->GetColumn(PoolIdx, FRowDict);
  const double cost = FVarPool->Cost(PoolIdx);
  FColDict.push_back(PoolIdx);
  FConstraint.Append(TSparseColumns::Compress(column));
  FCostVec.push_back(cost);
  UpdateVarBound();
  FCBCSolver->AddColumn(column, cost, 0.0, kBCPInfinity);
  FMinCost = std::min(FMinCost, cost);
}

template <BCPVariable T>
void TBCPNode<T>::UpdateVarBound() {
  while (Size(FVarUB) < FConstraint.Count()) {
    Int64 bound = std::numeric_limits<int>::max();
    for (const TColumnEntry& entry : FConstraint[Size(FVarUB)]) {
      const Int64 use = entry.Value > 0 ? Round(entry.Value) : 0;  // an entry that rounds to 0 bounds nothing
      if (use > 0) bound = std::min(bound, Round(FBVec[entry.Row]) / use);
    }
    FVarUB.push_back(static_cast<double>(bound));
  }
}

// A row without a column would leave the LP without a solution, and so without duals to price by. Such rows are made
// expensive, and cheap again as columns come in. True if the LP may be solved.
template <BCPVariable T>
bool TBCPNode<T>::CheckNoEmptyRow() {
  TDoubleDynArray w = DefaultDuals();
  FindEmptyRows(w);
  if (FEmptyRowIdxes.empty()) return true;
  const TPricingScope scope{FSubProblem};
  FSubProblem = FSolverManager->MainProblem->GetSubBCPProblem(FRowDict, FBVec);
  for (int rounds = Size(FEmptyRowIdxes); rounds > 0 && !FEmptyRowIdxes.empty(); --rounds) {
    FDeleteList.clear();
    if (SolveSubProblem(w, 1.0, [this] { return StopByNoEmptyRow(); })) DropEmptyRows(w);
  }
  const bool allCovered = FEmptyRowIdxes.empty();
  FEmptyRowIdxes = {};
  FDeleteList = {};
  return allCovered;
}

template <BCPVariable T>
TDoubleDynArray TBCPNode<T>::DefaultDuals() const {
  TDoubleDynArray w(FRowDict.size());
  for (std::size_t i = 0; i < w.size(); ++i) w[i] = FSolverManager->MainProblem->GetDefaultDualCost(FRowDict[i]);
  return w;
}

// A row without demand, or of sense "at most", counts as empty whatever its columns are: it must be filled by new ones
// before the LP is solved.
template <BCPVariable T>
void TBCPNode<T>::FindEmptyRows(TDoubleDynArray& W) {
  constexpr double kRaise = 10000;
  std::vector<bool> covered(FBVec.size());
  for (int k = 0; k < FConstraint.Count(); ++k)
    for (const TColumnEntry& entry : FConstraint[k])
      if (entry.Value > 0) covered[entry.Row] = true;
  FEmptyRowIdxes.clear();
  for (int row = 0; row < Size(FBVec); ++row) {
    if (FBVec[row] > 0 && FIneqVec[row] >= 0 && covered[row]) continue;
    FEmptyRowIdxes.push_back(row);
    W[row] *= kRaise;
  }
}

// As many rows go as the newest column covers, but the first ones of the list, not those that it covers: only the count
// of rows is kept, and a row may be dropped that has no column yet.
template <BCPVariable T>
void TBCPNode<T>::DropEmptyRows(TDoubleDynArray& W) {
  constexpr double kLower = 1000;
  const auto end = FEmptyRowIdxes.begin() + Size(FDeleteList);
  std::for_each(FEmptyRowIdxes.begin(), end, [&](int row) { W[row] /= kLower; });
  FEmptyRowIdxes.erase(FEmptyRowIdxes.begin(), end);
}

template <BCPVariable T>
bool TBCPNode<T>::StopByNoEmptyRow() {
  const TDoubleDynArray newest = FConstraint.Dense(FConstraint.Count() - 1, Size(FBVec));
  const std::size_t before = FDeleteList.size();
  for (int i = 0; i < Size(FEmptyRowIdxes); ++i)
    if (newest[FEmptyRowIdxes[i]] > 0) FDeleteList.push_back(i);
  return FDeleteList.size() > before;
}

}  // namespace platenest
