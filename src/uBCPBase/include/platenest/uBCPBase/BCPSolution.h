#pragma once

#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Sort.h"
#include "platenest/uBCPBase/BCPVariable.h"

namespace platenest {

// A whole-number solution: columns, each with the number of times that it is used. It owns its columns; copies are made
// by Clone only. One thread at a time.
template <BCPVariable T>
class TBCPSolution {
 public:
  struct TSubSolution {
    std::unique_ptr<T> Key;
    int Value = 0;  // times used
  };

  int Count() const { return Size(FSubSolutions); }
  void Clear() { FSubSolutions.clear(); }

  // The pair at Idx, from 0. TNestError at Count and above; below 0 is not looked for.
  TSubSolution& GetSubSolution(int Idx) { return FSubSolutions[Checked(Idx)]; }
  const TSubSolution& GetSubSolution(int Idx) const { return FSubSolutions[Checked(Idx)]; }
  auto begin() const { return FSubSolutions.begin(); }
  auto end() const { return FSubSolutions.end(); }

  // Appends a pair without a look for equal columns: AVar itself, or a deep copy of it. AVar must not be null.
  void AddSubSolution(std::unique_ptr<T> AVar, int Num) { FSubSolutions.push_back({std::move(AVar), Num}); }
  void AddSubSolution(const T& AVar, int Num) { AddSubSolution(CloneVariable(AVar), Num); }

  // Appends deep copies of all pairs, which may be those of this object, then merges: also when ASolution is empty.
  // On a throw of Clone nothing is changed.
  void AddBCPSolution(const TBCPSolution& ASolution);

  // Removes the pair at Idx, the ones behind move up. TAssertionError for an index outside.
  void Delete(int Idx);

  // Deep copies in the same order, nothing merged.
  TBCPSolution Clone() const;

  // What the whole solution produces: the sum of Value times column, by main row number.
  TDoubleDynArray GetColumn(int AVecSize) const;

  static int CompareByCost(const TSubSolution& Item1, const TSubSolution& Item2) {
    return Item1.Key->Compare(*Item1.Key, *Item2.Key);
  }

  // Sorts by Compare and joins each pair with the one before it if the columns are the same. Two same columns with
  // another between them after sorting stay apart: one comparison a pair, never all against all.
  void MergeSameSolution();

  // Sum of the objective coefficients, the last column in sorted order charged once at its actual cost. With a
  // coefficient of 1 and the used fraction as actual cost this is the number of plates with the emptiest one counted by
  // its used part, so that of two solutions with as many plates the one that leaves more is cheaper. 0 if empty.
  // Sorts and merges this object.
  double GetCSPCost();

 private:
  std::size_t Checked(int Idx) const {
    if (Idx >= Count()) throw TNestError("Out of Range in getting SubBCPSoution");
    PLATENEST_DCHECK(Idx >= 0);
    return static_cast<std::size_t>(Idx);
  }

  std::vector<TSubSolution> FSubSolutions;
};

template <BCPVariable T>
void TBCPSolution<T>::AddBCPSolution(const TBCPSolution& ASolution) {
  TBCPSolution copy = ASolution.Clone();
  FSubSolutions.insert(FSubSolutions.end(), std::make_move_iterator(copy.FSubSolutions.begin()),
                       std::make_move_iterator(copy.FSubSolutions.end()));
  MergeSameSolution();
}

template <BCPVariable T>
void TBCPSolution<T>::Delete(int Idx) {
  NestAssert(Idx >= 0 && Idx < Count());
  FSubSolutions.erase(FSubSolutions.begin() + Idx);
}

template <BCPVariable T>
TBCPSolution<T> TBCPSolution<T>::Clone() const {
  TBCPSolution result;
  result.FSubSolutions.reserve(FSubSolutions.size());
  for (const TSubSolution& pair : FSubSolutions) result.AddSubSolution(*pair.Key, pair.Value);
  return result;
}

template <BCPVariable T>
TDoubleDynArray TBCPSolution<T>::GetColumn(int AVecSize) const {
  TDoubleDynArray sum(static_cast<std::size_t>(AVecSize));
  for (const TSubSolution& pair : FSubSolutions) {
    const TDoubleDynArray column = pair.Key->GetColumn(AVecSize);
    for (int row = 0; row < AVecSize; ++row) sum[row] += pair.Value * column[row];
  }
  return sum;
}

template <BCPVariable T>
void TBCPSolution<T>::MergeSameSolution() {
  if (FSubSolutions.empty()) return;
  SortBy(FSubSolutions, CompareByCost);
  std::size_t kept = 0;
  for (std::size_t i = 1; i < FSubSolutions.size(); ++i) {
    if (FSubSolutions[kept].Key->IsSameWith(*FSubSolutions[i].Key))
      FSubSolutions[kept].Value += FSubSolutions[i].Value;
    else if (++kept != i)
      FSubSolutions[kept] = std::move(FSubSolutions[i]);
  }
  FSubSolutions.resize(kept + 1);
}

template <BCPVariable T>
double TBCPSolution<T>::GetCSPCost() {
  MergeSameSolution();
  double cost = 0;
  for (const TSubSolution& pair : FSubSolutions) cost += pair.Key->GetObjCoeff() * pair.Value;
  if (FSubSolutions.empty()) return cost;
  const T& last = *FSubSolutions.back().Key;
  return cost - last.GetObjCoeff() + last.GetActualCost();
}

}  // namespace platenest
