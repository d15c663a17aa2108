#pragma once

#include <cmath>
#include <cstddef>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

#include "LpCheck.h"

// A small simplex of another kind, to judge the one of the library.
namespace platenest {

// Maximise C * x with A * x <= B and x >= 0 by the criss-cross method, which needs no feasible start and no second
// phase: always the first variable out of order changes places. Terlaky, A convergent criss-cross method, 1985. For few
// variables and small numbers of few binary places, where what is not 0 is far above the tolerance of signs.
class TCrissCross {
 public:
  using TRow = TDoubleDynArray;

  TCrissCross(std::vector<TRow> A, TRow B, TRow C) : FA(std::move(A)), FB(std::move(B)), FC(std::move(C)) {
    for (std::size_t j = 0; j < FC.size(); ++j) FNonBasic.push_back(j);
    for (std::size_t i = 0; i < FB.size(); ++i) FBasic.push_back(FC.size() + i);
  }

  // The greatest value, or nothing where the program is infeasible or without bound.
  std::optional<double> Solve() {
    for (;;) {
      std::size_t row = First(FBasic, [&](std::size_t i) { return SignOf(FB[i]) < 0; });
      std::size_t col = First(FNonBasic, [&](std::size_t j) { return SignOf(FC[j]) > 0; });
      if (row == FB.size() && col == FC.size()) return FZ;
      const bool rowFirst = col == FC.size() || (row < FB.size() && FBasic[row] < FNonBasic[col]);
      if (rowFirst)
        col = First(FNonBasic, [&](std::size_t j) { return SignOf(FA[row][j]) < 0; });
      else
        row = First(FBasic, [&](std::size_t i) { return SignOf(FA[i][col]) > 0; });
      if (row == FB.size() || col == FC.size()) return std::nullopt;
      Pivot(row, col);
    }
  }

 private:
  static int SignOf(double V) { return int{V > 1e-9} - int{V < -1e-9}; }

  // Place of the least variable that passes Test; behind the last one if there is none.
  template <class Test>
  static std::size_t First(const std::vector<std::size_t>& Variables, Test Passes) {
    std::size_t first = Variables.size();
    for (std::size_t i = 0; i < Variables.size(); ++i) {
      if (Passes(i) && (first == Variables.size() || Variables[i] < Variables[first])) first = i;
    }
    return first;
  }

  // The basic variable of Row and the other one of Col change places.
  void Pivot(std::size_t Row, std::size_t Col) {
    std::swap(FBasic[Row], FNonBasic[Col]);
    const double pivot = std::exchange(FA[Row][Col], 1);
    for (double& a : FA[Row]) a /= pivot;
    FB[Row] /= pivot;
    const auto eliminate = [&](TRow& line) {
      const double factor = std::exchange(line[Col], 0);
      for (std::size_t j = 0; j < FC.size(); ++j) line[j] -= factor * FA[Row][j];
      return factor * FB[Row];
    };
    for (std::size_t i = 0; i < FB.size(); ++i) {
      if (i != Row) FB[i] -= eliminate(FA[i]);
    }
    FZ += eliminate(FC);
  }

  std::vector<TRow> FA;
  TRow FB, FC;
  double FZ = 0;
  std::vector<std::size_t> FBasic, FNonBasic;
};

// The least objective, if there is one, of a program with finite lower column bounds.
inline std::optional<double> LeastObjective(const TLpModel& Model) {
  std::vector<TDoubleDynArray> a;
  TDoubleDynArray b, c = Model.Obj;
  for (double& v : c) v = -v;
  // Sense 1: row * x <= bound; -1: row * x >= bound. The variables are the distances from the lower bounds.
  const auto add = [&](TDoubleDynArray row, double bound, int sense) {
    if (std::fabs(bound) >= 1e30) return;
    b.push_back(sense * (bound - std::inner_product(row.begin(), row.end(), Model.ColLB.begin(), 0.0)));
    for (double& v : row) v *= sense;
    a.push_back(std::move(row));
  };
  for (std::size_t i = 0; i < Model.Matrix.size(); ++i) {
    add(Model.Matrix[i], Model.RowLB[i], -1);
    add(Model.Matrix[i], Model.RowUB[i], 1);
  }
  for (std::size_t j = 0; j < c.size(); ++j) {
    TDoubleDynArray unit(c.size());
    unit[j] = 1;
    add(std::move(unit), Model.ColUB[j], 1);
  }
  const std::optional<double> most = TCrissCross(std::move(a), std::move(b), std::move(c)).Solve();
  if (!most) return std::nullopt;
  return std::inner_product(Model.Obj.begin(), Model.Obj.end(), Model.ColLB.begin(), 0.0) - *most;
}

}  // namespace platenest
