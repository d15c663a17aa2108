#include "RskfRebuild.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "ForEachSeed.h"
#include "HostCapture.h"
#include "RskfCells.h"
#include "RskfProbe.h"
#include "platenest/foundation/Errors.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

// IsWhole: whole sizes and an even gap, which the units hold exactly. One job in four has three prices
// only: many layouts of a cell have one value but different pieces.
TRskfJob RandomJob(unsigned Seed, bool IsWhole) {
  std::mt19937 random(Seed);
  const auto from = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
  const auto size = [&](int low, int high) { return from(low, high) + (IsWhole ? 0 : from(0, 99) / 100.0); };
  TRskfJob job{size(20, 130), size(20, 130), {}, from(0, 3) > 0};
  job.Gap = from(0, 1) == 0 ? 0 : (IsWhole ? 2 : size(0, 2));
  job.Digit = IsWhole ? 0 : from(0, 1);
  job.Amp = job.Digit == 1 ? 10 : (IsWhole || from(0, 1) == 0 ? 1 : -2);
  job.Weighted = Seed % 2 == 0;
  for (int i = from(2, 10); i > 0; --i) {
    const double a = size(3, 40);
    const double b = size(3, 40);
    const double worth = Seed % 4 == 0 ? from(1, 3) : std::floor(a * b * from(7, 12));
    job.Parts.push_back(Part(from(0, 2) == 0 ? kAnyAmount : from(1, 9), a, b, worth, Size(job.Parts)));
  }
  return job;
}

double Worth(const TRskfJob& Job, const TNestedRects& List) {
  double worth = 0;
  for (const TNestedRect& placed : List) worth += Job.Weighted ? placed.Part.Area : placed.Part.BoundBox.Area() * 100;
  return worth;
}

// A cell that was rounded up to the raster may hold more of a tiny part than its grid. Where cells of equal value are
// many, one layout in some thousands loses a piece.
TEST(RskfRebuild, LayoutsAreValidAndWorthWhatThePassSays) {
  int jobs = 0;
  int lost = 0;
  ForEachSeed(4000, [&](unsigned seed) {
    const bool isWhole = seed % 5 < 3;
    const TRskfJob job = RandomJob(seed, isWhole);
    TRskfProbe nester(job);
    ASSERT_TRUE(nester.Pass(isWhole || seed % 3 != 0));
    const TNestedRects list = nester.Layout();
    ASSERT_EQ(CheckRectLayout(list, job.Plate(), job.Gap, job.Parts), "");
    const auto isGroup = [](const TIntBox& box) { return box.SmallGroup; };
    if (!isWhole || std::any_of(nester.Boxes.begin(), nester.Boxes.end(), isGroup)) return;
    ++jobs;
    if (Worth(job, list) != static_cast<double>(nester.Value())) ++lost;
  });
  EXPECT_LE(lost, 0.001 * jobs);
}

// The cell of the answer has the cut of its left neighbour, but its own lower side is worth more than that one's.
TEST(RskfRebuild, CutsThatLeaveNoRestAreNotFollowed) {
  const TRskfJob job{.Width = 21, .Height = 31, .Parts = {Part(3, 5, 20, 3), Part(5, 6, 8, 1, 1)}, .Weighted = true};
  TRskfProbe nester(job);
  ASSERT_TRUE(nester.Pass(true));
  EXPECT_EQ(Worth(job, nester.Layout()), nester.Value());
}

//   +-----------+     A group of 2 by 2 on a plate that rounds the cell up: three columns fit there, but five copies in
//   | + + +     |     all are wanted.
//   | + +       |
//   +-----------+
TEST(RskfRebuild, GroupsFillTheirCellUpToTheDemand) {
  TIntBoxList boxes{TIntBox(8, 8, 0, 1, 6400)};
  TRaster raster;
  raster.ConstructNormalPattern({0, 13}, {0, 8});
  raster.ConstructIndex(13, 8);
  const detail::TRskfPieceRows rows = detail::PieceRowsOf(boxes, raster, true);
  const detail::TRskfProblem problem{raster, boxes, rows.Rows, rows.Columns, rows.Boxes};
  const TStopwatch unlimited;
  detail::TRskfBudget budget(unlimited, 0);
  detail::TRskfTables tables;
  detail::TRskfCell best;
  ASSERT_TRUE(RunBoundedPass(problem, budget, tables, best));
  for (const auto& [amount, placed] : {std::pair(5, 5), std::pair(kAnyAmount, 6)}) {
    for (const bool plateRotate : {false, true}) {
      const TNestRectList parts{Part(amount, 4, 3.9)};
      std::vector<detail::TRasterBox> pieces{detail::TRasterBox(0, 1, false, true)};
      TNestedRects list;
      detail::TRskfRebuild(problem, tables, {.PlateRotate = plateRotate}, parts, pieces).Draw(best, list);
      EXPECT_EQ(list.Count(), placed);
      const TVRect2D plate = plateRotate ? TVRect2D::FromSize(8, 13) : TVRect2D::FromSize(13, 8);
      EXPECT_EQ(CheckRectLayout(list, plate, 0, parts), "");
    }
  }
}

TEST(RskfRebuild, OnePieceTooManyIsAnExcess) {
  const TRskfProbe nester({100, 60, {Part(1, 50, 30), Part(2, 50, 30)}});
  TNestedRects list{TNestedRect(Part(1, 50, 30), false, {0, 0})};
  EXPECT_FALSE(nester.CheckExcess(list));
  list.push_back(list.front());
  EXPECT_TRUE(nester.CheckExcess(list));
}

// Points 0, 2, 4 and 0, 2, 4, 6; cell (2, 3) is cut at row 1. Words of three boxes with one copy each.
struct THandMadeTables : detail::TRskfTables {
  THandMadeTables() {
    F = TGrid<Int64>(4, 3);
    X = TGrid<std::uint16_t>(4, 3);
    Y = TGrid<std::uint16_t>(3, 4);
    Raster.ConstructNormalPattern({0, 2, 4}, {0, 2, 4, 6});
    Raster.ConstructIndex(4, 6);
  }
  void CountPieces() {
    Packing = detail::TPiecePacking(TIntBoxList(3, TIntBox(4, 2, 0, 1, 6)), 24);
    Used = detail::TPieceTable(4, 3, 1);
    for (int row = 1; row < 4; ++row) Used.Use(row);
  }
  void Set(int Column, int Row, Int64 Value, int CutX, int CutY, int Box = 0) {
    F.At(Row, Column) = Value;
    X.At(Row, Column) = static_cast<std::uint16_t>(CutX);
    Y.At(Column, Row) = static_cast<std::uint16_t>(CutY);
    if (Packing.Words() > 0) Packing.SetSingle(Used.Row(Row) + Column, Box);
  }
  detail::TCellHalves Halves() const { return detail::TRskfCells(*this, Raster).Halves({2, 3}); }

  TRaster Raster;
};

TEST(RskfRebuild, PiecesSettleWhichOfEqualCellsIsMeant) {
  for (const int above : {1, 2}) {
    THandMadeTables tables;
    tables.CountPieces();
    tables.Set(2, 1, 6, 2, 1, 0);
    tables.Set(2, 2, 4, 2, 2, 1);
    tables.Set(1, 2, 4, 1, 2, 2);
    tables.Set(2, 3, 10, 2, 1, above);
    tables.Used.Row(3)[2] += *tables.Used.At(1, 2);
    EXPECT_EQ(tables.Halves().Second.Column, above == 1 ? 2 : 1) << "the smaller cell is worth as much";
  }
}

TEST(RskfRebuild, TablesThatContradictThemselvesAreReported) {
  THandMadeTables tables;
  const auto expectError = [&](const std::string& text) {
    const THostCapture host;
    try {
      tables.Halves();
      ADD_FAILURE() << text;
    } catch (const TNestError& error) {
      EXPECT_EQ(error.Text(), text);
    }
    EXPECT_EQ(host.Warnings(), std::vector{text});
  };
  tables.Set(2, 3, 10, 0, 0);
  expectError("No Guillotine Point is Found");
  tables.Set(2, 3, 10, 0, 1);
  expectError("Value Error in FindGuillotine");
  tables.Set(2, 1, 6, 2, 1);
  expectError("No Tighter Raster is Found");
  tables.Set(1, 1, 4, 1, 1);
  EXPECT_EQ(tables.Halves().Second.Column, 1) << "in the block below";
}

}  // namespace
}  // namespace platenest
