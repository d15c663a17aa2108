#include "RskfRebuild.h"

#include <gtest/gtest.h>

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

TRskfJob RandomJob(unsigned Seed) {
  std::mt19937 random(Seed);
  const auto from = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
  TRskfJob job{1.0 * from(20, 130), 1.0 * from(20, 130), {}, from(0, 3) > 0};
  job.Weighted = from(0, 3) == 0;
  for (int i = from(1, 9); i >= 0; --i) {
    const double width = from(3, 40);
    const double height = from(3, 40);
    job.Parts.push_back(Part(from(0, 2) == 0 ? kAnyAmount : from(1, 9), width, height, width * height * from(7, 12)));
  }
  return job;
}

double WorthOf(const TNestedRects& List, bool Weighted) {
  double worth = 0;
  for (const TNestedRect& placed : List) worth += Weighted ? placed.Part.Area : placed.Part.BoundBox.Area() * 100;
  return worth;
}

// Draws the layout of one pass and checks it.
TNestedRects Drawn(TRskfProbe& Nester, const TRskfJob& Job, bool Bounded) {
  EXPECT_TRUE(Nester.Pass(Bounded));
  const TNestedRects list = Nester.Layout();
  EXPECT_EQ(CheckRectLayout(list, Job.Plate(), Job.Gap, Job.Demand()), "") << (Bounded ? "bounded" : "unbounded");
  return list;
}

TEST(RskfRebuild, LayoutsAreWorthWhatThePassSays) {
  int bundles = 0;
  ForEachSeed(1500, [&](unsigned seed) {
    TRskfJob job = RandomJob(seed);
    job.Gap = seed % 3 == 0 ? 2 : 0;
    for (const bool bounded : {true, false}) {
      if (!bounded)
        for (TNestRect& part : job.Parts) part.Amount = kAnyAmount;
      TRskfProbe nester(job);
      const double worth = WorthOf(Drawn(nester, job, bounded), job.Weighted);
      // A cell that was rounded up to the raster may hold more of a tiny part than its grid.
      const bool hasBundle =
          std::any_of(nester.Boxes.begin(), nester.Boxes.end(), [](const TIntBox& box) { return box.SmallGroup; });
      if (hasBundle)
        ++bundles;
      else
        EXPECT_EQ(worth, static_cast<double>(nester.Value()));
    }
  });
  EXPECT_GT(bundles, 50);
}

TEST(RskfRebuild, LayoutsKeepGapAndAmountsInAllUnits) {
  ForEachSeed(1000, [](unsigned seed) {
    std::mt19937 random(seed + 9999);
    const auto fraction = [&] { return std::uniform_real_distribution(0.0, 0.99)(random); };
    TRskfJob job = RandomJob(seed);
    job.Gap = seed % 2 == 0 ? fraction() * 3 : 0;
    job.Digit = seed % 5 == 0 ? 1 : 0;
    job.Amp = job.Digit == 1 ? 10 : (seed % 4 == 1 ? -2 : 1);
    job.Width += fraction();
    job.Height += fraction();
    for (TNestRect& part : job.Parts) {
      if (seed % 7 == 0) part.BoundBox = part.BoundBox * 0.3;
      part.BoundBox.Right += fraction();
      part.BoundBox.Top += fraction();
    }
    TRskfProbe nester(job);
    Drawn(nester, job, /*Bounded=*/seed % 3 != 0);
  });
}

// With three prices only, many layouts of a cell have one value but different pieces. A few of them are lost because an
// equal cut came later than the pieces were counted.
TEST(RskfRebuild, NearlyAllLayoutsAreFoundAgainWhereManyCellsAreWorthTheSame) {
  int jobs = 0;
  int full = 0;
  ForEachSeed(1000, [&](unsigned seed) {
    TRskfJob job = RandomJob(seed);
    job.Weighted = true;
    for (TNestRect& part : job.Parts) part.Area = 100 * (1 + static_cast<int>(part.BoundBox.Width()) % 3);
    TRskfProbe nester(job);
    for (const TIntBox& box : nester.Boxes)
      if (box.SmallGroup) return;
    ++jobs;
    if (WorthOf(Drawn(nester, job, true), true) == static_cast<double>(nester.Value())) ++full;
  });
  EXPECT_GE(full, 0.99 * jobs);
}

//   +-----------+     A group of four 4 by 4 on a plate that rounds its cell of 8 up to 13: three in a row fit there,
//   | + + +     |     but five in all are wanted.
//   | + +       |
//   +-----------+
TEST(RskfRebuild, GroupsFillTheirCellUpToTheDemand) {
  const TIntBoxList boxes{[] {
    TIntBox box(8, 8, 0, 1, 6400);
    box.SmallGroup = true;
    return box;
  }()};
  TRaster raster;
  raster.ConstructNormalPattern({0, 13}, {0, 8});
  raster.ConstructIndex(13, 8);
  for (const bool plateRotate : {false, true}) {
    for (const auto& [amount, placed] : {std::pair(5, 5), std::pair(kAnyAmount, 6)}) {
      const TNestRectList parts{Part(amount, 4, 4)};
      std::vector<detail::TRasterBox> pieces{detail::TRasterBox(0, 1, false, true)};
      detail::TRskfPieceRows rows = detail::PieceRowsOf(boxes, raster, true);
      const detail::TRskfProblem problem{raster, boxes, rows.Rows, rows.Columns, rows.Boxes};
      const TStopwatch unlimited;
      detail::TRskfBudget budget(unlimited, 0);
      detail::TRskfTables tables;
      detail::TRskfCell best;
      ASSERT_TRUE(RunBoundedPass(problem, budget, tables, best));
      TNestedRects list;
      detail::TRskfRebuild(problem, tables, {.PlateRotate = plateRotate}, parts, pieces).Draw(best, list);
      EXPECT_EQ(list.Count(), placed);
      const TVRect2D plate = plateRotate ? TVRect2D::FromSize(8, 13) : TVRect2D::FromSize(13, 8);
      EXPECT_EQ(CheckRectLayout(list, plate, 0, parts), "");
    }
  }
}

TEST(RskfRebuild, ALayoutWithOnePieceTooManyIsDropped) {
  TRskfProbe nester({100, 60, {Part(1, 50, 30), Part(2, 50, 30)}});
  TNestedRects list{TNestedRect(Part(1, 50, 30), false, {0, 0})};
  EXPECT_FALSE(nester.CheckExcess(list));
  list.push_back(list.front());
  EXPECT_TRUE(nester.CheckExcess(list));

  ASSERT_TRUE(nester.Pass(true));
  TNestedRects result;
  EXPECT_TRUE(nester.GetNestResult(0, nester.Row, nester.Tables, nester.Raster, result));
  EXPECT_TRUE(nester.GetNestResult(nester.Column, 0, nester.Tables, nester.Raster, result));
  EXPECT_TRUE(result.empty());
}

TEST(RskfRebuild, PiecesSettleWhichOfEqualCellsIsMeant) {
  using namespace detail;
  TRaster raster;
  raster.ConstructNormalPattern({0, 2, 4}, {0, 2, 4, 6});
  raster.ConstructIndex(4, 6);
  TIntBoxList boxes{TIntBox(4, 2, 0, 1, 6), TIntBox(4, 4, 1, 1, 4), TIntBox(2, 4, 2, 1, 4)};
  for (const int above : {1, 2}) {
    TRskfTables tables;
    tables.F = TGrid<Int64>(4, 3);
    tables.X = TGrid<std::uint16_t>(4, 3);
    tables.Y = TGrid<std::uint16_t>(3, 4);
    tables.Packing = TPiecePacking(boxes, 24);
    tables.Used = TPieceTable(4, 3, 1);
    const auto set = [&](const TRskfCell& cell, Int64 value, int cutX, int cutY, int box) {
      tables.F.At(cell.Row, cell.Column) = value;
      tables.X.At(cell.Row, cell.Column) = static_cast<std::uint16_t>(cutX);
      tables.Y.At(cell.Column, cell.Row) = static_cast<std::uint16_t>(cutY);
      tables.Used.Use(cell.Row);
      tables.Packing.SetSingle(tables.Used.Row(cell.Row) + cell.Column, box);
    };
    set({2, 1}, 6, 2, 1, 0);
    set({2, 2}, 4, 2, 2, 1);
    set({1, 2}, 4, 1, 2, 2);
    set({2, 3}, 10, 2, 1, above);
    tables.Used.Row(3)[2] += *tables.Used.At(1, 2);
    const TCellHalves halves = TRskfCells(tables, raster).Halves({2, 3});
    EXPECT_EQ(halves.Second.Column, above == 1 ? 2 : 1) << "the smaller cell is worth as much";
  }
}

TEST(RskfRebuild, TablesThatContradictThemselvesAreReported) {
  using namespace detail;
  TRaster raster;
  raster.ConstructNormalPattern({0, 2, 4}, {0, 2, 4});
  raster.ConstructIndex(4, 4);
  TRskfTables tables;
  tables.F = TGrid<Int64>(3, 3);
  tables.X = TGrid<std::uint16_t>(3, 3);
  tables.Y = TGrid<std::uint16_t>(3, 3);
  tables.F.At(2, 2) = 10;
  const auto expectError = [&](const std::string& text) {
    const THostCapture host;
    try {
      TRskfCells(tables, raster).Halves({2, 2});
      ADD_FAILURE() << text;
    } catch (const TNestError& error) {
      EXPECT_EQ(error.Text(), text);
      EXPECT_STREQ(error.ClassName(), TNestError("").ClassName());
    }
    EXPECT_EQ(host.Warnings(), std::vector{text});
  };
  expectError("No Guillotine Point is Found");
  tables.Y.At(2, 2) = 1;
  expectError("Value Error in FindGuillotine");
  tables.F.At(1, 2) = 6;
  expectError("No Tighter Raster is Found");
  tables.F.At(1, 1) = 4;
  const TCellHalves halves = TRskfCells(tables, raster).Halves({2, 2});
  EXPECT_EQ(halves.First.Column * 10 + halves.First.Row, 21);
  EXPECT_EQ(halves.Second.Column * 10 + halves.Second.Row, 11) << "found along the row";
}

}  // namespace
}  // namespace platenest
