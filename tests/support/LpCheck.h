#pragma once

#include <cmath>
#include <cstddef>
#include <string>
#include <utility>

#include "platenest/uBCPBase/BCPTypes.h"

namespace platenest {

// A linear program as plain data: minimise Obj * x, row bounds on Matrix * x, column bounds on x.
struct TLpModel {
  TDoubleMatrix Matrix;  // row first
  TDoubleDynArray Obj, RowLB, RowUB, ColLB, ColUB;

  void AddColumn(const TDoubleDynArray& ACol, double AObj, double ALB, double AUB) {
    for (std::size_t row = 0; row < Matrix.size(); ++row) Matrix[row].push_back(ACol[row]);
    Obj.push_back(AObj);
    ColLB.push_back(ALB);
    ColUB.push_back(AUB);
  }
  void DeleteColumn(int AIdx) {
    for (TDoubleDynArray& row : Matrix) row.erase(row.begin() + AIdx);
    for (auto* list : {&Obj, &ColLB, &ColUB}) list->erase(list->begin() + AIdx);
  }
};

namespace detail {

// Price times the bound that it presses against; 0 for a price within the tolerance of 0.
inline double BoundValue(double Price, double Lower, double Upper, double Tol) {
  if (std::fabs(Price) <= Tol) return 0;
  const double bound = Price > 0 ? Lower : Upper;
  return std::fabs(bound) >= 1e30 ? -kBCPInfinity : Price * bound;
}

}  // namespace detail

// The first reason why X with the row prices Prices is no optimum of value Objective, or nothing. Proven by weak
// duality: any prices bound the objective from below, through rows and reduced costs against the bounds that they press
// on, and an X within its bounds bounds it from above. Tol is absolute for prices and relative for the rest.
inline std::string CheckLpOptimum(const TLpModel& Model, double Objective, const TDoubleDynArray& X,
                                  const TDoubleDynArray& Prices, double Tol = 1e-7) {
  if (X.size() != Model.Obj.size() || Prices.size() != Model.Matrix.size()) return "wrong number of values or prices";
  const auto within = [Tol](double v, double lower, double upper) {
    const double slack = Tol * (1 + std::fabs(v));
    return v >= lower - slack && v <= upper + slack;
  };
  double value = 0, bound = 0;
  TDoubleDynArray reduced = Model.Obj;
  for (std::size_t row = 0; row < Prices.size(); ++row) {
    double activity = 0;
    for (std::size_t col = 0; col < X.size(); ++col) {
      activity += Model.Matrix[row][col] * X[col];
      reduced[col] -= Model.Matrix[row][col] * Prices[row];
    }
    if (!within(activity, Model.RowLB[row], Model.RowUB[row])) return "row " + std::to_string(row) + " is violated";
    bound += detail::BoundValue(Prices[row], Model.RowLB[row], Model.RowUB[row], Tol);
  }
  for (std::size_t col = 0; col < X.size(); ++col) {
    if (!within(X[col], Model.ColLB[col], Model.ColUB[col])) return "column " + std::to_string(col) + " is violated";
    value += Model.Obj[col] * X[col];
    bound += detail::BoundValue(reduced[col], Model.ColLB[col], Model.ColUB[col], Tol);
  }
  const double slack = Tol * (1 + std::fabs(value)) * static_cast<double>(1 + X.size() + Prices.size());
  if (std::fabs(value - Objective) > slack)
    return "the values cost " + std::to_string(value) + ", not " + std::to_string(Objective);
  if (!(value - bound <= slack)) return "the prices prove " + std::to_string(bound) + " of " + std::to_string(value);
  return {};
}

}  // namespace platenest
