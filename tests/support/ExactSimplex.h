#pragma once

#include <cmath>
#include <cstddef>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "LpCheck.h"

// A small simplex in exact fractions, to judge the one in doubles.
namespace platenest {

// Reduced, denominator above 0. std::overflow_error where 128 bits do not suffice.
class TFraction {
 public:
  __extension__ typedef __int128 TWide;

  TFraction(TWide Num = 0, TWide Den = 1) : FNum(Num), FDen(Den) {
    TWide a = Num < 0 ? -Num : Num, b = Den < 0 ? -Den : Den;
    while (b != 0) a = std::exchange(b, a % b);
    if (FDen < 0) a = -a;
    FNum /= a;
    FDen /= a;
  }
  // A double of few binary places.
  static TFraction Of(double V) {
    TWide den = 1;
    for (; V != std::floor(V); den *= 2) V *= 2;
    return {static_cast<TWide>(V), den};
  }
  double Value() const { return static_cast<double>(FNum) / static_cast<double>(FDen); }
  int Sign() const { return int{FNum > 0} - int{FNum < 0}; }

  friend TFraction operator*(const TFraction& A, const TFraction& B) {
    return {Times(A.FNum, B.FNum), Times(A.FDen, B.FDen)};
  }
  friend TFraction operator/(const TFraction& A, const TFraction& B) {
    return {Times(A.FNum, B.FDen), Times(A.FDen, B.FNum)};
  }
  friend TFraction operator-(const TFraction& A, const TFraction& B) {
    TWide result = 0;
    if (__builtin_sub_overflow(Times(A.FNum, B.FDen), Times(B.FNum, A.FDen), &result))
      throw std::overflow_error("fraction");
    return {result, Times(A.FDen, B.FDen)};
  }
  friend TFraction operator+(const TFraction& A, const TFraction& B) { return A - TFraction(-1) * B; }

 private:
  static TWide Times(TWide A, TWide B) {
    TWide result = 0;
    if (__builtin_mul_overflow(A, B, &result)) throw std::overflow_error("fraction");
    return result;
  }

  TWide FNum, FDen;
};

// Maximise C * x with A * x <= B and x >= 0 by the criss-cross method, which needs no feasible start and no second
// phase: always the first variable out of order changes places. Terlaky, A convergent criss-cross method, 1985.
class TExactSimplex {
 public:
  using TRow = std::vector<TFraction>;

  TExactSimplex(std::vector<TRow> A, TRow B, TRow C) : FA(std::move(A)), FB(std::move(B)), FC(std::move(C)) {
    for (std::size_t j = 0; j < FC.size(); ++j) FNonBasic.push_back(j);
    for (std::size_t i = 0; i < FB.size(); ++i) FBasic.push_back(FC.size() + i);
  }

  // The greatest value, or nothing where the program is infeasible or without bound.
  std::optional<TFraction> Solve() {
    for (;;) {
      std::size_t row = First(FBasic, [&](std::size_t i) { return FB[i].Sign() < 0; });
      std::size_t col = First(FNonBasic, [&](std::size_t j) { return FC[j].Sign() > 0; });
      if (row == FB.size() && col == FC.size()) return FZ;
      const bool rowFirst = col == FC.size() || (row < FB.size() && FBasic[row] < FNonBasic[col]);
      if (rowFirst)
        col = First(FNonBasic, [&](std::size_t j) { return FA[row][j].Sign() < 0; });
      else
        row = First(FBasic, [&](std::size_t i) { return FA[i][col].Sign() > 0; });
      if (row == FB.size() || col == FC.size()) return std::nullopt;
      Pivot(row, col);
    }
  }

 private:
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
    const TFraction pivot = std::exchange(FA[Row][Col], 1);
    for (TFraction& a : FA[Row]) a = a / pivot;
    FB[Row] = FB[Row] / pivot;
    const auto eliminate = [&](TRow& line) {
      const TFraction factor = std::exchange(line[Col], 0);
      for (std::size_t j = 0; j < FC.size(); ++j) line[j] = line[j] - factor * FA[Row][j];
      return factor * FB[Row];
    };
    for (std::size_t i = 0; i < FB.size(); ++i) {
      if (i != Row) FB[i] = FB[i] - eliminate(FA[i]);
    }
    FZ = FZ + eliminate(FC);
  }

  std::vector<TRow> FA;
  TRow FB, FC;
  TFraction FZ = 0;
  std::vector<std::size_t> FBasic, FNonBasic;
};

// The exact least objective, if there is one, of a program with finite lower column bounds and numbers of few binary
// places.
inline std::optional<double> SolveExactly(const TLpModel& Model) {
  const std::size_t cols = Model.Obj.size();
  std::vector<TExactSimplex::TRow> a;
  TExactSimplex::TRow b, c;
  // Sense 1: row * x <= bound; -1: row * x >= bound. The variables are the distances from the lower bounds.
  const auto add = [&](const TDoubleDynArray& row, double bound, int sense) {
    if (std::fabs(bound) >= 1e30) return;
    const double shift = std::inner_product(row.begin(), row.end(), Model.ColLB.begin(), 0.0);
    TExactSimplex::TRow line;
    for (const double v : row) line.push_back(TFraction::Of(sense * v));
    a.push_back(std::move(line));
    b.push_back(TFraction::Of(sense * (bound - shift)));
  };
  for (std::size_t i = 0; i < Model.Matrix.size(); ++i) {
    add(Model.Matrix[i], Model.RowLB[i], -1);
    add(Model.Matrix[i], Model.RowUB[i], 1);
  }
  for (std::size_t j = 0; j < cols; ++j) {
    TDoubleDynArray unit(cols);
    unit[j] = 1;
    add(unit, Model.ColUB[j], 1);
    c.push_back(TFraction::Of(-Model.Obj[j]));
  }
  const std::optional<TFraction> most = TExactSimplex(std::move(a), std::move(b), std::move(c)).Solve();
  if (!most) return std::nullopt;
  return std::inner_product(Model.Obj.begin(), Model.Obj.end(), Model.ColLB.begin(), 0.0) - most->Value();
}

}  // namespace platenest
