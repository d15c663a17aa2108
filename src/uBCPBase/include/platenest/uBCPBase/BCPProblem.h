#pragma once

#include <memory>
#include <numeric>

#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/uBCPBase/BCPSolution.h"

namespace platenest {

// A covering problem: a demand in each row, to be met by whole numbers of columns. Its rows are those of the master LP.
// A problem over some rows of another one is a sub-problem: pricing works on it, and so does what completes a rounded
// LP solution. One thread at a time.
template <BCPVariable T>
class TBCPProblem {
 public:
  virtual ~TBCPProblem() = default;

  const TDoubleDynArray& BVec() const { return FBVec; }         // right-hand sides
  const TIntegerDynArray& IneqVec() const { return FIneqVec; }  // positive: at least; negative: at most; 0: equal
  const TIntegerDynArray& RowDict() const { return FRowDict; }  // main row number of each row

  // Sets the worth of each row to AWVec times Amp, for pricing on this problem. AWVec has one entry per row.
  virtual void SetDualCost(const TDoubleDynArray& AWVec, double Amp) = 0;
  // Worth of main row AIdx before an LP has priced it.
  virtual double GetDefaultDualCost(int AIdx) const = 0;
  // The problem over the main rows ARowDict with the demand ANumVec. An override hides the form below, so a descendant
  // says `using TBCPProblem<T>::GetSubBCPProblem;`.
  virtual std::unique_ptr<TBCPProblem> GetSubBCPProblem(const TIntegerDynArray& ARowDict,
                                                        const TIntegerDynArray& ANumVec) const = 0;

  // The same for what an LP leaves: each entry is raised by 0.001 and truncated, so that 2.9999999 stays 3. TRangeError
  // for an entry that fits no int.
  std::unique_ptr<TBCPProblem> GetSubBCPProblem(const TIntegerDynArray& ARowDict,
                                                const TDoubleDynArray& ADoubleVec) const;

  // Whether every row is met, within 1e-8. False for a solution without columns, also where nothing is demanded.
  bool CheckSolution(const TBCPSolution<T>& ASolution) const;

 protected:
  // TArgumentError for vectors of different lengths. The rows of a main problem are numbered from 0; otherwise FRowDict
  // is left empty for the descendant to fill.
  TBCPProblem(const TDoubleDynArray& ABVec, const TIntegerDynArray& AIneqVec, bool IsMainProb);
  TBCPProblem(const TBCPProblem&) = default;
  TBCPProblem& operator=(const TBCPProblem&) = default;

  TIntegerDynArray FRowDict;
  TDoubleDynArray FBVec;
  TIntegerDynArray FIneqVec;
  TDoubleDynArray FWVec;  // empty; a place for the dual costs of a descendant
};

template <BCPVariable T>
TBCPProblem<T>::TBCPProblem(const TDoubleDynArray& ABVec, const TIntegerDynArray& AIneqVec, bool IsMainProb)
    : FBVec(ABVec), FIneqVec(AIneqVec) {
  if (ABVec.size() != AIneqVec.size())
    throw TArgumentError("[Error] TBCPProblem.Create: demand and senses differ in length");
  if (!IsMainProb) return;
  FRowDict.resize(ABVec.size());
  std::iota(FRowDict.begin(), FRowDict.end(), 0);
}

template <BCPVariable T>
std::unique_ptr<TBCPProblem<T>> TBCPProblem<T>::GetSubBCPProblem(const TIntegerDynArray& ARowDict,
                                                                 const TDoubleDynArray& ADoubleVec) const {
  constexpr double kWholeSlack = 0.001;
  TIntegerDynArray numVec(ADoubleVec.size());
  for (std::size_t i = 0; i < numVec.size(); ++i) numVec[i] = Trunc<int>(ADoubleVec[i] + kWholeSlack);
  return GetSubBCPProblem(ARowDict, numVec);
}

template <BCPVariable T>
bool TBCPProblem<T>::CheckSolution(const TBCPSolution<T>& ASolution) const {
  constexpr double kTolerance = 1e-8;
  if (ASolution.Count() == 0) return false;
  const TDoubleDynArray sum = ASolution.GetColumn(Size(FBVec));
  for (std::size_t row = 0; row < FBVec.size(); ++row) {
    const double difference = sum[row] - FBVec[row];
    const int sign = int{difference > kTolerance} - int{difference < -kTolerance};
    if (sign != 0 && sign != Sign(FIneqVec[row], 0)) return false;
  }
  return true;
}

}  // namespace platenest
