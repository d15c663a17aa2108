#pragma once

#include <concepts>
#include <memory>
#include <utility>

#include "platenest/foundation/Errors.h"
#include "platenest/uBCPBase/BCPTypes.h"

namespace platenest {

// A column of the master LP: one pattern that a solution uses a whole number of times. Descendants hold their rows by
// main row number, so that one column serves every node of a search. The operations read only; a descendant that
// computes on demand and keeps the answer belongs to one thread at a time.
class PLATENEST_API TBCPVariable {
 public:
  virtual ~TBCPVariable();

  // An independent deep copy, of the dynamic class of this object.
  virtual std::unique_ptr<TBCPVariable> Clone() const = 0;
  // Objective coefficient of the column in the master LP.
  virtual double GetObjCoeff() const = 0;
  // What the column costs where it is the last of a solution; see TBCPSolution::GetCSPCost.
  virtual double GetActualCost() const = 0;
  // The two are the same column for the LP, whatever else they differ in.
  virtual bool IsSameWith(const TBCPVariable& AVar) const = 0;
  // Negative, zero or positive, as Left stands before, level with or behind Right in a solution. This object itself
  // plays no part.
  virtual int Compare(const TBCPVariable& Left, const TBCPVariable& Right) const = 0;
  // The coefficients by main row number, AVecSize of them. No row beyond may be needed by the column.
  virtual TDoubleDynArray GetColumn(int AVecSize) const = 0;

 protected:
  TBCPVariable() = default;
  TBCPVariable(const TBCPVariable&) = default;
  TBCPVariable& operator=(const TBCPVariable&) = default;
};

// The column class that the templates of this folder are made for.
template <class T>
concept BCPVariable = std::derived_from<T, TBCPVariable>;

// Clone under the static class of AVar. TAssertionError if the copy is of another class: an override is missing.
template <BCPVariable T>
std::unique_ptr<T> CloneVariable(const T& AVar) {
  std::unique_ptr<TBCPVariable> copy = AVar.Clone();
  T* const column = dynamic_cast<T*>(copy.get());
  NestAssert(column != nullptr);
  static_cast<void>(copy.release());
  return std::unique_ptr<T>(column);
}

}  // namespace platenest
