#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <thread>

#include "ForEachSeed.h"
#include "JobCase.h"
#include "JobExchange.h"
#include "JobFill.h"
#include "JobSearch.h"
#include "JobTrials.h"
#include "JobUnits.h"
#include "PlateJobs.h"
#include "platenest/foundation/Random.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

using namespace detail;

std::string FaultOf(const TJobSizes& Sizes, const TJobLayouts& Layouts) {
  TNestRectList demand;
  for (int i = 0; i < Size(Sizes.Parts); ++i)
    demand.emplace_back(Sizes.Parts[i].Amount, i, TVRect2D::FromSize(Sizes.Parts[i].Width, Sizes.Parts[i].Height));
  for (const TJobLayout& layout : Layouts) {
    for (const TNestedRect& placed : layout.Nested)
      if (placed.IsRotate && !Sizes.Parts[placed.Part.Idx].MayTurn) return "a locked part is turned";
    const TVRect2D plate = TVRect2D::FromSize(Sizes.Plates[layout.Plate].Width, Sizes.Plates[layout.Plate].Height);
    if (std::string fault = CheckRectLayout(layout.Nested, plate, Sizes.Gap, demand); !fault.empty()) return fault;
  }
  const std::vector<Int64> placed = PlacedCopies(Sizes, Layouts);
  for (int i = 0; i < Size(placed); ++i)
    if (placed[i] > Sizes.Parts[i].Amount) return "more copies than asked for";
  return std::ranges::min(StockLeft(Sizes, Layouts)) < 0 ? "more plates than in stock" : "";
}

TJobLayouts Walked(const TJobSizes& Sizes, TSkyTrials& Trials) {
  std::vector<int> left = AskedCopies(Sizes);
  std::vector<int> stock = StockLeft(Sizes, {});
  return FillPlates(Sizes, PlateOrder(Sizes), left, stock, Trials.Nest(6));
}

// What one trial of each random job starts from.
struct TSearch {
  TRandom Random;
  const TJobSizes& Sizes;
  TSkyTrials Trials;
};

// For jobs of which some part fits.
template <class Function>
void ForEachSearch(unsigned Count, Function Try) {
  ForEachSeed(Count, [&](unsigned seed) {
    const TJobSizes sizes = JobSizesOf(test::MakeJobCase(seed).AJob);
    const TRandomScope scope(seed);
    TSearch search{TRandom(seed), sizes, TSkyTrials(sizes)};
    if (!sizes.Parts.empty()) Try(search);
  });
}

TEST(JobSearch, QuickFillsAreValidAndTakeWhatTheyPlaceOffTheDemand) {
  ForEachSearch(150, [](TSearch& search) {
    const TJobSizes& sizes = search.Sizes;
    const std::vector<int> all = AskedCopies(sizes);
    for (int kind = 0; kind < Size(sizes.Plates); ++kind) {
      std::vector<int> left = all, counted = all;
      const TNestedRects nested = search.Trials.LayoutOf(search.Trials.Fill(kind, left, search.Random.Pick(1, 15)));
      EXPECT_EQ(FaultOf(sizes, {{kind, 1, nested}}), "");
      for (const TNestedRect& placed : nested) --counted[placed.Part.Idx];
      EXPECT_EQ(counted, left);
      for (int i = 0; i < Size(left) && nested.empty(); ++i)
        EXPECT_TRUE(left[i] == 0 || !Holds(sizes.Plates[kind], sizes.Parts[i])) << "an empty plate holds each part";
    }
  });
}

// Copies that a damaged answer lacks come back as long as there is room or stock, and nothing else moves.
TEST(JobSearch, WhatALayoutLeavesIsPlacedWhereItFits) {
  ForEachSearch(100, [](TSearch& search) {
    const TJobSizes& sizes = search.Sizes;
    TJobLayouts layouts = Walked(sizes, search.Trials);
    EXPECT_EQ(FaultOf(sizes, layouts), "");
    for (TJobLayout& layout : layouts)
      if (search.Random.Chance(50)) layout.Nested.pop_back();
    const TJobMerit less = MeritOf(sizes, layouts);
    PlaceLeftOver(sizes, layouts, search.Trials.Nest(6));
    EXPECT_EQ(FaultOf(sizes, layouts), "");
    EXPECT_LE(MeritOf(sizes, layouts).UnplacedArea, less.UnplacedArea);
    const std::vector<int> stock = StockLeft(sizes, layouts), left = LeftOver(sizes, layouts);
    for (int i = 0; i < Size(left); ++i)
      for (int kind = 0; kind < Size(stock) && left[i] > 0; ++kind)
        EXPECT_TRUE(stock[kind] == 0 || !Holds(sizes.Plates[kind], sizes.Parts[i]));
  });
}

TEST(JobSearch, ExchangesKeepAnswersValidAndNeverMakeThemWorse) {
  ForEachSearch(40, [](TSearch& search) {
    const TJobSizes& sizes = search.Sizes;
    TExchange exchange(sizes, search.Trials, Walked(sizes, search.Trials));
    const auto merit = [&] {
      TJobMerit now = MeritOf(sizes, exchange.Layouts());
      now.LastUsage = 0;
      return now;
    };
    const auto remnants = [&] {
      Int64 used = 0;
      for (const TJobLayout& layout : exchange.Layouts())
        used += sizes.Plates[layout.Plate].Remnant ? layout.Copies : 0;
      return used;
    };
    const Int64 least = remnants();
    for (int step = 0; step < 60; ++step) {
      const TJobMerit then = merit();
      const TExchange::Outcome outcome = exchange.Step();
      ASSERT_EQ(FaultOf(sizes, exchange.Layouts()), "") << "step " << step;
      EXPECT_FALSE(IsBetter(then, merit())) << "step " << step;
      EXPECT_EQ(IsBetter(merit(), then), outcome == TExchange::Outcome::Better) << "step " << step;
    }
    EXPECT_GE(remnants(), least) << "remnants stay in use";
  });
}

// No part equals a plate in units that are exact, and layouts come back from them as they were.
TEST(JobSearch, LayoutsGoToWholeUnitsAndBack) {
  ForEachSearch(100, [](TSearch& search) {
    const TJobSizes& sizes = search.Sizes;
    const TJobUnits units(sizes, 20000);
    const TNestRectList rects = units.Rects(AskedCopies(sizes));
    for (const TJobLayout& layout : Walked(sizes, search.Trials)) {
      const TNestedRects back = units.LayoutOf(units.PatternOf(layout));
      EXPECT_EQ(FaultOf(sizes, {{layout.Plate, 1, back}}), "");
      for (int i = 0; i < Size(back); ++i) {
        EXPECT_NEAR(back[i].Trans.X, layout.Nested[i].Trans.X, 1e-9);
        EXPECT_NEAR(back[i].Trans.Y, layout.Nested[i].Trans.Y, 1e-9);
      }
      const double width = units.Plate(layout.Plate).Width();
      for (int i = 0; i < Size(rects) && std::fmod(width, 2) == 1; ++i) {
        EXPECT_EQ(rects[i].BoundBox.Width() < width, sizes.Parts[i].Width <= sizes.Plates[layout.Plate].Width);
        EXPECT_NE(rects[i].BoundBox.Width(), width);
      }
    }
  });
}

TEST(JobSearch, AShareOfTheTimeEndsWithoutTheRunAndTheRunEndsEachShare) {
  TStopToken run;
  const TStopTokenScope scope(&run);
  {
    const TTimeShare spent(0.0);
    while (!spent.IsOver()) std::this_thread::yield();
    EXPECT_TRUE(RunStopRequested());
  }
  EXPECT_FALSE(RunStopRequested());
  const TTimeShare endless(std::nullopt);
  EXPECT_FALSE(endless.IsOver());
  run.RequestStop();
  EXPECT_TRUE(endless.IsOver() && RunStopRequested());
}

TEST(JobSearch, EqualJobsInOtherUnitsHaveEqualAnswers) {
  const auto answer = [](const char* unit) {
    const auto in = [unit](int length) { return std::stod(std::to_string(length) + unit); };
    Job job = PlateJob(JobKind::Job, {Sheet(in(2800), in(2070), 3), Sheet(in(1200), in(600), 9)},
                       {Rect(in(720), in(560), 24), Rect(in(564), in(540), 20), Rect(in(300), in(82), 40)}, in(4));
    job.Run = {.TimeLimit = 0.3, .Deterministic = true};
    Result result = run(job);
    std::vector<std::pair<int, std::size_t>> contents;
    for (const Layout& layout : result.Layouts) contents.emplace_back(layout.Copies, layout.Placements.size());
    return std::pair(contents, result.Plates);
  };
  EXPECT_EQ(answer("e-3"), answer(""));
}

}  // namespace
}  // namespace platenest
