#include "PackingThread.h"

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <new>
#include <thread>

#include "AllocationCounter.h"
#include "ForEachSeed.h"
#include "LiteralPacking.h"
#include "platenest/foundation/EventTimer.h"

namespace platenest {
namespace {

using namespace std::chrono_literals;
using testing::SizeIs;

// Thirty circles of radius 1 on a square of side 10: one start pair, (1, 1) and (9, 1), and more circles than fit.
const TRuleJob kThirty{10, 10, 0, {1}, {30}};
// Far more look-ahead than a test may wait for.
const TRuleJob kEndless{200, 200, 0, {12, 11, 10, 9, 8}, {40, 40, 40, 40, 40}};
const TRuleJob kEndlessStrip{200, 5000, 0, kEndless.Radii, kEndless.Counts};

TEST(CircleRuns, PlatesAreThoseOfTheRules) {
  TTimerBoard noTime;
  const TTimerScope scope(&noTime);
  ForEachSeed(150, [](unsigned Seed) {
    const TRuleJob job = RandomJob(Seed, 10);
    double before = 0;
    for (const int threads : {1, 4}) {
      TLiteral literal(job, threads);
      literal.Packing();
      TRuleProbe packing = job.Packing();
      packing.SetThreadLimit(threads);
      packing.StopPacking();  // a run begins with the flag cleared
      packing.Packing(0, 60000);
      ExpectSame(packing.PackingResult(), literal.Result);
      EXPECT_EQ(packing.OccuRate(), literal.Occu);
      EXPECT_GE(packing.OccuRate(), before - 1e-12);
      before = packing.OccuRate();
      const TCircleNestRst once = packing.ResultTranslation();
      ExpectSame(packing.ResultTranslation(), once);
      EXPECT_EQ(job.Fault(once), "");
    }
    TLiteral literal(job);
    if (literal.Pairs.empty()) return;
    TCircleNestRst pair = literal.Pairs.back();
    TRuleProbe own = job.Packing();
    own.UpdateResult(own.Occupancy(pair), pair);
    own.PackingMultiThread(kNoLookAhead, 1, 0);
    literal.Fill(pair, false, false);
    ExpectSame(own.PackingResult(), literal.Result);
    own.FillRest(pair);
    own.TailRePack();
    literal.Fill(literal.Pairs.back(), false, true);
    literal.RedoTop();
    ExpectSame(own.PackingResult(), literal.Result);
  });
}

TEST(CircleRuns, StripsAreThoseOfTheRules) {
  TTimerBoard noTime;
  const TTimerScope scope(&noTime);
  ForEachSeed(150, [](unsigned Seed) {
    const TRuleJob job = RandomJob(Seed, 10);
    if (TLiteral(job).Pairs.empty()) return;
    std::vector<double> lengths;
    for (const int strategy : {2, 4}) {
      TLiteral literal(job);
      lengths.push_back(literal.Strip(strategy == 4));
      TRuleProbe own = job.Packing();
      own.GenerateInitConfig();
      EXPECT_EQ(own.TakeShortest(literal.Workers, strategy, kNoLength), lengths.back()) << strategy;
      ExpectSame(own.PackingResult(), literal.Result);
    }
    lengths.push_back(std::min(lengths[0], lengths[1]));
    for (const int method : {0, 1, 2}) {
      TRuleProbe packing = job.Packing();
      const double plain = lengths[method] - job.Gap;
      const double length = packing.StripPacking(60000, TStripMethod{method}).value_or(kNoLength - job.Gap);
      EXPECT_TRUE(method == 0 ? length == plain : length <= plain) << "look-ahead follows the bisection";
      const TCircleNestRst& rst = packing.ResultTranslation();
      EXPECT_EQ(job.Fault(rst), "");
      if (rst.empty()) continue;
      double used = 0;
      for (const TCornerPlacement& c : rst) used = std::max(used, c.Center.X + job.Radii[c.CircleIdx]);
      EXPECT_NEAR(used, length, 1e-9);
      EXPECT_THAT(rst, SizeIs(TLiteral(job).Amount));
    }
  });
}

TEST(Strip, IsNothingWithoutRoomTimeOrStartPair) {
  for (const TRuleJob& job : {kThirty, TRuleJob{10, 100, 0, {4}, {5}}, TRuleJob{10, 100, 0, {6}, {5}}})
    EXPECT_FALSE(job.Packing().StripPacking(60000, TStripMethod::Best));
  EXPECT_FALSE(kEndless.Packing().StripPacking(0, TStripMethod::Best));
}

TEST(Workers, GoOnFromTheSharedResult) {
  for (const int count : {20, 30}) {
    TRuleProbe packing = TRuleJob{10, 10, 0, {1}, {count}}.Packing();
    packing.UpdateResult(0.01, {{0, 1, 1}, {0, 9, 1}});
    const double length = packing.TakeShortest(1, 3, 50.0);
    EXPECT_EQ(length < 10, count == 20) << "a strip needs all circles, and 23 fit";
    EXPECT_THAT(packing.PackingResult(), SizeIs(count == 20 ? 20 : 2));
  }
}

TEST(Workers, AStopBeforeTheStartOrABudgetOfNoSecondLeavesTheStartPair) {
  const auto pack = [](int Budget) {
    TRuleProbe packing = kEndless.Packing();
    packing.Packing(0, Budget);
    EXPECT_THAT(packing.PackingResult(), SizeIs(2));
  };
  pack(999);
  FClassStop = true;
  pack(60000);
  FClassStop = false;
  TStopToken token;
  token.RequestStop();
  const TStopTokenScope scope(&token);
  pack(60000);
}

TEST(Workers, ASuspendedOneWaitsForItsStart) {
  TRuleProbe packing = kThirty.Packing();
  packing.GenerateInitConfig();
  TRuleProbe::TMyPackingThread worker(true, packing, 0, kNoLookAhead, 1, TMainStrategy::InitConfig);
  worker.WaitFor();
  EXPECT_EQ(worker.OccuRate(), 0);
  worker.Start();
  worker.WaitFor();
  EXPECT_GT(worker.OccuRate(), 0.6);
}

TEST(Workers, WhatOneRaisesArrivesOnTheCallersThreadAndLeavesTheResult) {
  TRuleProbe packing = kThirty.Packing();
  packing.GenerateInitConfig();
  {
    const TAllocationsFailElsewhere noMemory;
    EXPECT_THROW(packing.PackingMultiThread(1.0, 3, 1), std::bad_alloc);
  }
  EXPECT_THAT(packing.PackingResult(), SizeIs(0));
  packing.PackingMultiThread(kNoLookAhead, 3, 1);
  EXPECT_GT(packing.OccuRate(), 0.6);
}

// Work that ends Seconds after so many timers have begun to run, and not before.
template <class TWork>
void ExpectEndAfter(double Seconds, int Timers, TTimerBoard& Time, TWork Work) {
  const auto run = std::async(std::launch::async, [&] {
    const TTimerScope scope(&Time);
    Work();
  });
  while (Time.Running() < Timers) std::this_thread::sleep_for(1ms);
  Time.AdvanceSeconds(Seconds - 0.1);
  EXPECT_EQ(run.wait_for(50ms), std::future_status::timeout);
  Time.AdvanceSeconds(0.1);
  ASSERT_EQ(run.wait_for(100s), std::future_status::ready);
}

TEST(Budget, IsThatOfWholeSecondsAndABisectionHasTenOfItsOwn) {
  TTimerBoard time;
  TRuleProbe packing = kEndless.Packing();
  ExpectEndAfter(5, 1, time, [&packing] { packing.Packing(0, 5999); });
  EXPECT_EQ(kEndless.Fault(packing.ResultTranslation()), "");
  EXPECT_GT(packing.OccuRate(), 0.7);
  const TRuleJob longer{200, 40000, 0, kEndless.Radii, {300, 300, 300, 300, 300}};
  TRuleProbe strip = longer.Packing();
  strip.GenerateInitConfig();
  strip.StopPacking();
  ExpectEndAfter(10, 2, time, [&strip] { strip.TakeShortest(2, 4, kNoLength); });
}

TEST(StepLimit, AnswersDependOnNeitherThreadsNorTime) {
  TTimerBoard time;
  const TTimerScope scope(&time);
  for (const bool strip : {false, true}) {
    TCircleNestRst first;
    for (const int threads : {1, 2, 4}) {
      TRuleProbe packing = (strip ? kEndlessStrip : kEndless).Packing();
      packing.SetThreadLimit(threads);
      packing.SetStepLimit(150000);
      if (strip)
        packing.StripPacking(0, TStripMethod::Best);
      else
        packing.Packing(0, 0);
      if (threads == 1) first = packing.PackingResult();
      EXPECT_GT(packing.PackingResult().size(), 20u);
      ExpectSame(packing.PackingResult(), first);
    }
  }
}

// Rows of five, then five in the hollows and so on: no row of full width fits above the fifth.
TEST(BottomLeft, LeavesOutWhatFindsNoPlace) {
  const TRuleProbe packing = kThirty.Packing();
  TCircleNestRst result{{0, 1, 1}, {0, 9, 1}};
  EXPECT_NEAR(packing.PackingWithY({0}, {28}, result), 8.92820, 1e-5);
  EXPECT_THAT(result, SizeIs(23));
  TCircleNestRst nothing;
  EXPECT_EQ(packing.PackingWithY({0}, {30}, nothing), 0) << "without circles there is no corner";
}

TEST(Bisection, PutsThePlateBackAndKeepsThePairWhereNoHeightHoldsAll) {
  TRuleProbe packing = TRuleJob{50, 200, 0, {5}, {40}}.Packing();
  TCircleNestRst result{{0, 5, 5}, {0, 45, 5}};
  auto candidates = packing.GeneratePosibleCP({0}, {38}, result, false);
  EXPECT_EQ(packing.BinaryPacking({0}, {38}, result, candidates, 0, 64, 63), 10) << "no round at a width of 1";
  EXPECT_EQ(packing.BinaryPacking({0}, {38}, result, candidates, 0, 30, 20), 10) << "no height holds them all";
  EXPECT_THAT(result, SizeIs(2));
  TCircleNestRst nothing;
  EXPECT_EQ(packing.BinaryPacking({0}, {38}, nothing, {}, 0, 64, 63), -4294967295.0);

  std::vector<int> remaining{38};
  packing.GreedyPacking({0}, remaining, result, 0, candidates);
  EXPECT_THAT(result, SizeIs(40)) << "the plate has its height again";
}

}  // namespace
}  // namespace platenest
