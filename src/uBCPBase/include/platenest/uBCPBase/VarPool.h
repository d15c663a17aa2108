#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <exception>
#include <limits>
#include <memory>
#include <mutex>
#include <span>
#include <utility>
#include <vector>

#include "platenest/foundation/CodeMap.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/uBCPBase/BCPSolution.h"
#include "platenest/uBCPBase/SparseColumns.h"

namespace platenest {

// Every column that a search has seen, each once, numbered in the order of arrival. Columns are never changed or taken
// out, so an index is good for the life of the pool.
//
// A column that is the same as one of the pool is found through a hash of its coefficients, and the first of equal hash
// for which IsSameWith holds is taken: the answer of a walk over the whole pool, provided that variables which
// IsSameWith calls the same have equal coefficients in all rows. T must see to that.
//
// Columns may be added from several threads; all else, reading included, is for one thread while nobody adds. On a
// throw the pool stays as it was. Adding costs the length of the column; 24 bytes and 16 for each entry are kept beside
// T.
template <BCPVariable T>
class TVarPool {
 public:
  // Demand and sense of the main rows, as in TBCPProblem.
  TVarPool(TDoubleDynArray ABVec, TIntegerDynArray AIneqVec) : FBVec(std::move(ABVec)), FIneqVec(std::move(AIneqVec)) {}

  int Count() const { return Size(FItems); }
  const T& operator[](int AIdx) const { return *FItems[AIdx].Var; }
  double Cost(int AIdx) const { return FItems[AIdx].Cost; }  // objective coefficient
  const TDoubleDynArray& BVec() const { return FBVec; }
  const TIntegerDynArray& IneqVec() const { return FIneqVec; }

  // The index of the column of the pool that is the same, with VarExist true; otherwise that of the new column, which
  // is AVar itself or a deep copy of it. A variable handed over that was known already is freed.
  int AddVar(std::unique_ptr<T> AVar, bool& VarExist);
  int AddVar(const T& AVar, bool& VarExist);
  // The same for each in turn; the result has one index for each.
  TIntegerDynArray AddVars(std::vector<std::unique_ptr<T>>&& AVars);
  TIntegerDynArray AddVars(const std::vector<std::unique_ptr<T>>& AVars);
  // The same for the columns of a solution. Always with deep copies, whatever DeepCopy says: a solution keeps its own.
  TIntegerDynArray AddBCPSolution(const TBCPSolution<T>& ASolution, bool DeepCopy);

  // The coefficients of a column at the main rows ARowDict.
  TDoubleDynArray GetColumn(int AIdx, const TIntegerDynArray& ARowDict) const;

  // Deep copies of the columns whose count, by pool index, is above 0. TAssertionError for more counts than columns.
  TBCPSolution<T> GetIntSolution(const TIntegerDynArray& ANumVec) const;

  // The master LP over the main rows ARowDict, which ascend, with the demand ABVec: all columns that fit, in the order
  // of the pool. AColDict starts with -1, for the right-hand side, and gives the pool index of LP column k at k; the
  // other lists hold LP column k at k - 1. ACon has the rows of ARowDict. False, with the lists as they were, without
  // rows and where anything throws. TAssertionError if ABVec has another length than ARowDict.
  bool ConstructLP(const TIntegerDynArray& ARowDict, TIntegerDynArray& AColDict, TDoubleDynArray& AVarUBs,
                   const TDoubleDynArray& ABVec, TIntegerDynArray& AIneqVec, TSparseColumns& ACon,
                   TDoubleDynArray& ACostVec) const;

  // Whether a column fits the demand ABVec in the main rows ARowDict, which ascend: no entry above its demand and none
  // above 0 in another row. If so, MaxAmount is how often it can be used, the largest int where nothing bounds it, and
  // Column its coefficients. False also where a number is out of range.
  bool GetSatisfiedColumn(const TIntegerDynArray& ARowDict, const TDoubleDynArray& ABVec, int AVarIdx, int& MaxAmount,
                          TDoubleDynArray& Column) const;

 private:
  struct TItem {
    std::unique_ptr<T> Var;
    double Cost = 0;
  };
  // Demand by main row.
  struct TOpenRows {
    TIntegerDynArray Local;  // row of the LP, -1 for a closed one
    const TDoubleDynArray& Demand;
    int NegativeCount = 0;
  };
  static Int64 HashOf(std::span<const TColumnEntry> AColumn);
  template <class Maker>
  int Enter(const T& AVar, bool& VarExist, Maker MakeItem);
  TOpenRows OpenRows(const TIntegerDynArray& ARowDict, const TDoubleDynArray& ABVec) const;
  bool Fits(int AVarIdx, const TOpenRows& Rows, std::vector<TColumnEntry>& Column, int& MaxAmount) const;

  std::mutex FCS;
  std::vector<TItem> FItems;
  TSparseColumns FConstraint;  // all main rows
  TCodeMap FByHash;
  TDoubleDynArray FBVec;
  TIntegerDynArray FIneqVec;
};

template <BCPVariable T>
int TVarPool<T>::AddVar(std::unique_ptr<T> AVar, bool& VarExist) {
  const T& var = *AVar;
  return Enter(var, VarExist, [&AVar] { return std::move(AVar); });
}

template <BCPVariable T>
int TVarPool<T>::AddVar(const T& AVar, bool& VarExist) {
  return Enter(AVar, VarExist, [&AVar] { return CloneVariable(AVar); });
}

template <BCPVariable T>
TIntegerDynArray TVarPool<T>::AddVars(std::vector<std::unique_ptr<T>>&& AVars) {
  TIntegerDynArray indices;
  bool exists = false;
  for (std::unique_ptr<T>& var : AVars) indices.push_back(AddVar(std::move(var), exists));
  return indices;
}

template <BCPVariable T>
TIntegerDynArray TVarPool<T>::AddVars(const std::vector<std::unique_ptr<T>>& AVars) {
  TIntegerDynArray indices;
  bool exists = false;
  for (const std::unique_ptr<T>& var : AVars) indices.push_back(AddVar(*var, exists));
  return indices;
}

template <BCPVariable T>
TIntegerDynArray TVarPool<T>::AddBCPSolution(const TBCPSolution<T>& ASolution, bool /*DeepCopy*/) {
  TIntegerDynArray indices;
  bool exists = false;
  for (const auto& pair : ASolution) indices.push_back(AddVar(*pair.Key, exists));
  return indices;
}

template <BCPVariable T>
template <class Maker>
int TVarPool<T>::Enter(const T& AVar, bool& VarExist, Maker MakeItem) {
  const std::lock_guard lock(FCS);
  const std::vector<TColumnEntry> column = TSparseColumns::Compress(AVar.GetColumn(Size(FIneqVec)));
  const Int64 hash = HashOf(column);
  const int known = FByHash.Find(hash, [&](int i) { return AVar.IsSameWith(*FItems[i].Var); });
  VarExist = known != TCodeMap::kNone;
  if (VarExist) return known;

  const int index = Count();
  if (FItems.size() == FItems.capacity()) FItems.reserve(2 * FItems.size() + 16);
  FByHash.Reserve(index + 1);
  TItem item{nullptr, AVar.GetObjCoeff()};
  item.Var = MakeItem();
  FConstraint.Append(column);  // the last step that can fail
  FItems.push_back(std::move(item));
  FByHash.Add(hash, index);
  return index;
}

// Zeros play no part, so 0 and -0, and columns of any number of rows, come out alike.
template <BCPVariable T>
Int64 TVarPool<T>::HashOf(std::span<const TColumnEntry> AColumn) {
  std::uint64_t hash = 0;
  for (const TColumnEntry& entry : AColumn) {
    hash = (hash ^ static_cast<std::uint64_t>(entry.Row)) * 0x9E3779B97F4A7C15u;
    hash = (hash ^ (hash >> 29) ^ std::bit_cast<std::uint64_t>(entry.Value)) * 0xBF58476D1CE4E5B9u;
    hash ^= hash >> 32;
  }
  return static_cast<Int64>(hash);
}

template <BCPVariable T>
TDoubleDynArray TVarPool<T>::GetColumn(int AIdx, const TIntegerDynArray& ARowDict) const {
  const TDoubleDynArray full = FConstraint.Dense(AIdx, Size(FIneqVec));
  TDoubleDynArray column(ARowDict.size());
  for (std::size_t i = 0; i < column.size(); ++i) column[i] = full[ARowDict[i]];
  return column;
}

template <BCPVariable T>
TBCPSolution<T> TVarPool<T>::GetIntSolution(const TIntegerDynArray& ANumVec) const {
  NestAssert(Size(ANumVec) <= Count());
  TBCPSolution<T> solution;
  for (int i = 0; i < Size(ANumVec); ++i)
    if (ANumVec[i] > 0) solution.AddSubSolution((*this)[i], ANumVec[i]);
  return solution;
}

template <BCPVariable T>
bool TVarPool<T>::ConstructLP(const TIntegerDynArray& ARowDict, TIntegerDynArray& AColDict, TDoubleDynArray& AVarUBs,
                              const TDoubleDynArray& ABVec, TIntegerDynArray& AIneqVec, TSparseColumns& ACon,
                              TDoubleDynArray& ACostVec) const {
  NestAssert(ABVec.size() == ARowDict.size());
  if (ARowDict.empty()) return false;
  try {
    const TOpenRows rows = OpenRows(ARowDict, ABVec);
    TIntegerDynArray ineqVec;
    for (const int row : ARowDict) ineqVec.push_back(FIneqVec[row]);
    TIntegerDynArray colDict{-1};
    TDoubleDynArray varUBs;
    TDoubleDynArray costVec;
    TSparseColumns con;
    std::vector<TColumnEntry> column;
    int maxAmount = 0;
    for (int i = 0; i < Count(); ++i) {
      if (!Fits(i, rows, column, maxAmount)) continue;
      costVec.push_back(Cost(i));
      colDict.push_back(i);
      varUBs.push_back(maxAmount);
      con.Append(column);
    }
    AColDict = std::move(colDict);
    AVarUBs = std::move(varUBs);
    AIneqVec = std::move(ineqVec);
    ACon = std::move(con);
    ACostVec = std::move(costVec);
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

template <BCPVariable T>
bool TVarPool<T>::GetSatisfiedColumn(const TIntegerDynArray& ARowDict, const TDoubleDynArray& ABVec, int AVarIdx,
                                     int& MaxAmount, TDoubleDynArray& Column) const {
  try {
    std::vector<TColumnEntry> entries;
    if (!Fits(AVarIdx, OpenRows(ARowDict, ABVec), entries, MaxAmount)) return false;
    Column.assign(ARowDict.size(), 0.0);
    for (const TColumnEntry& entry : entries) Column[entry.Row] = entry.Value;
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

template <BCPVariable T>
typename TVarPool<T>::TOpenRows TVarPool<T>::OpenRows(const TIntegerDynArray& ARowDict,
                                                      const TDoubleDynArray& ABVec) const {
  TOpenRows rows{TIntegerDynArray(FIneqVec.size(), -1), ABVec};
  for (int k = 0; k < Size(ARowDict); ++k) {
    rows.Local.at(ARowDict[k]) = k;
    rows.NegativeCount += int{ABVec[k] < 0};
  }
  return rows;
}

// A row with a demand below 0 refuses every column that has no entry there, since 0 is above that demand. What cannot
// be counted does not fit.
template <BCPVariable T>
bool TVarPool<T>::Fits(int AVarIdx, const TOpenRows& Rows, std::vector<TColumnEntry>& Column, int& MaxAmount) const
    try {
  constexpr Int64 lowest = std::numeric_limits<int>::min();
  Column.clear();
  MaxAmount = std::numeric_limits<int>::max();
  int negativeCount = 0;
  for (const TColumnEntry& entry : FConstraint[AVarIdx]) {
    const int row = Rows.Local[entry.Row];
    if (row < 0 && entry.Value > 0) return false;
    if (row < 0) continue;
    const double demand = Rows.Demand[row];
    if (entry.Value > demand) return false;
    negativeCount += int{demand < 0};
    const Int64 amount = Trunc(demand / entry.Value);
    MaxAmount = static_cast<int>(std::clamp<Int64>(amount, lowest, MaxAmount));
    Column.push_back({row, entry.Value});
  }
  return negativeCount == Rows.NegativeCount;
} catch (const std::exception&) {
  return false;
}

}  // namespace platenest
