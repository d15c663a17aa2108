#pragma once

#include <cmath>
#include <cstddef>

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

// Whether the row prices Prices prove that X is an optimum of value Objective. Any prices bound the objective from
// below, through rows and reduced costs against the bounds that they press on (weak duality), and an X within its
// bounds bounds it from above.
inline bool IsLpOptimum(const TLpModel& Model, double Objective, const TDoubleDynArray& X,
                        const TDoubleDynArray& Prices) {
  constexpr double kTol = 1e-7;  // absolute for prices and relative for the rest
  if (X.size() != Model.Obj.size() || Prices.size() != Model.Matrix.size()) return false;
  double value = 0, bound = 0;
  bool isWithin = true;
  const auto judge = [&](double v, double lower, double upper, double price) {
    const double slack = kTol * (1 + std::fabs(v));
    isWithin = isWithin && v >= lower - slack && v <= upper + slack;
    const double pressed = price > 0 ? lower : upper;
    if (std::fabs(price) > kTol) bound += std::fabs(pressed) >= 1e30 ? -kBCPInfinity : price * pressed;
  };
  TDoubleDynArray reduced = Model.Obj;
  for (std::size_t row = 0; row < Prices.size(); ++row) {
    double activity = 0;
    for (std::size_t col = 0; col < X.size(); ++col) {
      activity += Model.Matrix[row][col] * X[col];
      reduced[col] -= Model.Matrix[row][col] * Prices[row];
    }
    judge(activity, Model.RowLB[row], Model.RowUB[row], Prices[row]);
  }
  for (std::size_t col = 0; col < X.size(); ++col) {
    judge(X[col], Model.ColLB[col], Model.ColUB[col], reduced[col]);
    value += Model.Obj[col] * X[col];
  }
  const double slack = kTol * (1 + std::fabs(value)) * static_cast<double>(1 + X.size() + Prices.size());
  return isWithin && std::fabs(value - Objective) <= slack && value - bound <= slack;
}

}  // namespace platenest
