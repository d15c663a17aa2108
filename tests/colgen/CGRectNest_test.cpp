#include "platenest/colgen/CGRectNest.h"

#include <gmock/gmock.h>

#include <chrono>
#include <random>
#include <thread>

#include "FakeClock.h"
#include "ForEachSeed.h"
#include "RectCases.h"
#include "platenest/foundation/Host.h"

namespace platenest {
namespace {

using testing::ElementsAre;

struct TProbe : TCGRectNest {
  using TCGRectNest::CheckAmount, TCGRectNest::ReturnSpace, TCGRectNest::ReturnExcessiveRects, TCGRectNest::ReturnRects,
      TCGRectNest::RunSequentialMultiPlate, TCGRectNest::TCGRectNest;
};

struct TSearch : TBCPRectNest {
  using TBCPRectNest::NeedStop, TBCPRectNest::TBCPRectNest;
};

// Flags and pool of the process as a fresh one has them.
void ResetProcess() {
  RectNestTerminated = ColumnGenerationTerminated = false;
  TCGRectNest::Initialize();
}

struct CGRectNest : testing::Test {
  void SetUp() override { ResetProcess(); }
  void TearDown() override { ResetProcess(); }
};

// Items side by side from the left, by position in Parts.
TRectPattern Row(const TNestRectList& Parts, const TNestSpace& On, const std::vector<int>& Items, double X = 0) {
  TNestedRects layout;
  for (const int i : Items) {
    TNestRect part = Parts.at(static_cast<std::size_t>(i));
    part.Idx = i;
    layout.emplace_back(part, false, TPoint2D(X, 0));
    X += part.BoundBox.Width();
  }
  return TRectPattern(layout, On.Space);
}

TRectSolution SolutionOf(std::initializer_list<std::pair<TRectPattern, int>> Pairs) {
  TRectSolution solution;
  for (const auto& [pattern, count] : Pairs) solution.AddSubSolution(pattern, count);
  return solution;
}

double FirstX(const TRectSolution& Solution, int Pair = 0) {
  return Solution.GetSubSolution(Pair).Key->NestedRects().At(0).Trans.X;
}

TEST_F(CGRectNest, StockTakesTheEmptiestPlatesBack) {
  const TNestSpace plate = Plate(100, 1);
  const auto used = [&](double share) { return Row({Part(share, 1, 9)}, plate, {0}); };
  for (const int stock : {2, 4, 6}) {
    TRectSolution solution = SolutionOf({{used(40), 2}, {used(95), 2}, {used(70), 1}});
    TProbe::ReturnSpace(solution, stock);
    EXPECT_EQ(Numbers(solution), stock == 2 ? std::vector{2} : std::vector({2, 1, std::min(stock - 3, 2)}));
  }
}

// Of three plates the first stays whole, the second loses its first copy of part 0, the third all, as the others do.
TEST_F(CGRectNest, SurplusGoesFromTheFrontOfALayoutAndItsPlateStays) {
  const TNestSpace plate = Plate(100, 10);
  TNestRectList parts = {Part(30, 10, 3), Part(20, 10, 2), Part(9, 9, -1)};
  TRectSolution solution = SolutionOf({{Row(parts, plate, {0, 0, 1}), 3}, {Row(parts, plate, {2}), 2}});
  TProbe::ReturnExcessiveRects(parts, solution);
  ASSERT_EQ(solution.Count(), 3);
  EXPECT_EQ(solution.GetSubSolution(2).Value, 3);
  EXPECT_EQ(CheckedCopies(solution, parts, {plate}), (std::vector<int>{3, 2, 0}));
  EXPECT_EQ(FirstX(solution, 1), 30);

  int warnings = 0;
  const TWarningScope scope([&](std::string_view line) { warnings += int{line == "AmountError"}; });
  TProbe(&parts, nullptr, 0).CheckAmount(SolutionOf({{Row(parts, plate, {0, 0, 0, 1, 1}), 9}}), parts);
  EXPECT_EQ(warnings, 1) << "for part 2: a pattern counts once whatever its number";

  TIntegerDynArray indices = {5, 6, 8};
  parts[0].Amount = 4;
  TProbe::ReturnRects(parts, indices, solution);
  EXPECT_THAT(indices, ElementsAre(5, 8));
  EXPECT_THAT(parts, ElementsAre(testing::Field(&TNestRect::Amount, 1), testing::Field(&TNestRect::Amount, -1)));
  EXPECT_THAT(solution.GetSubSolution(1).Key->Column(), ElementsAre(0, 0, 0, 0, 0, 1, 1));
}

// The first part is too large for the plate, the second fills it in a side, the third is not asked for.
TEST_F(CGRectNest, PartsThatAreLeftOutShiftNoIndexButOnASinglePlate) {
  const TNestRectList parts = {Part(200, 10, 3), Part(40, 100, 2), Part(30, 30, 0), Part(49, 49, 9), Part(-5, 9, 1)};
  const TNestSpaceList one = {Plate(100, 100)}, two = {Plate(100, 100), Plate(99, 99)}, small = {Plate(29, 29)}, none;
  TRectSolution solution = SolutionOf({{Row(parts, Plate(9, 9), {0}), 7}});
  EXPECT_TRUE(TCGRectNest(&parts, &two, 1).RunRectNest(0, solution));
  EXPECT_THAT(CheckedCopies(solution, parts, two, 1), ElementsAre(0, 0, 0, 9, 0));
  EXPECT_TRUE(TCGRectNest(&parts, &one, 1).RunRectNest(0, solution));
  EXPECT_THAT(CheckedCopies(solution, {parts.begin() + 1, parts.end()}, one, 1), ElementsAre(0, 0, 9, 0));
  EXPECT_EQ(solution.Count(), 2) << "two full plates and one with a single part";
  EXPECT_FALSE(TCGRectNest(&parts, &small, 1).RunRectNest(5, solution));
  EXPECT_FALSE(TCGRectNest(&parts, &none, 1).RunRectNest(5, solution));
}

// What the first plate cannot hold is offered to each later one, with its first amount.
TEST_F(CGRectNest, PartsSetAsideOnceArePlacedAgainOnEveryLaterPlate) {
  const TNestRectList parts = {Part(70, 70, 1), Part(40, 40, 4)};
  const TNestSpaceList plates = {Plate(60, 60, 3), Plate(80, 80), Plate(90, 90)};
  TRectSolution solution;
  EXPECT_TRUE(TCGRectNest(&parts, &plates, 0).RunRectNest(0, solution));
  EXPECT_THAT(CheckedCopies(solution, parts, plates), ElementsAre(2, 4));
}

// Every third run is fed by another thread, which ends it at a random moment.
TEST_F(CGRectNest, RunsKeepStockAndAmountsAndReachThemUnlessStopped) {
  ForEachSeed(45, [](unsigned seed) {
    ResetProcess();
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> side(150, 850), amount(0, 12);
    TNestRectList parts(1 + random() % 9);
    for (TNestRect& part : parts) part = Part(side(random) / 10.0, side(random) / 10.0, amount(random));
    const TNestSpaceList plates = {Plate(120, 90, 1 + seed % 9), Plate(110, 101)};
    const double gap = seed % 4 == 0 ? 1.5 : 0;
    const bool isStopped = seed % 3 == 0;
    std::thread host([&, pause = random() % 40] {
      for (unsigned ms = 0; isStopped && ms < pause; ++ms) {
        TCGRectNest::AddIntialSolution(SolutionOf({{Row(parts, plates[ms % 2], {0}), parts[0].Amount}}));
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
      }
      (seed % 2 == 0 ? ColumnGenerationTerminated : RectNestTerminated) = isStopped;
    });
    TRectSolution solution;
    TCGRectNest(&parts, &plates, gap).RunRectNest(0, solution);
    host.join();
    const std::vector<int> copies = CheckedCopies(solution, parts, plates, gap);
    for (std::size_t i = 0; i < parts.size(); ++i) {
      EXPECT_LE(copies[i], parts[i].Amount);
      EXPECT_TRUE(isStopped || copies[i] == parts[i].Amount);
    }
  });
}

// They arrive before the first search, or when it is about to begin and its budget is read from the clock.
TEST_F(CGRectNest, OutsideSolutionsWaitForTheirPlate) {
  const TNestRectList parts = {Part(60, 60, 2)};
  const TNestSpaceList plates = {Plate(100, 100, 1), Plate(90, 80)};
  for (const int arrival : {1, 2}) {
    const TClockScope clock([&, reading = 0]() mutable {
      if (++reading == arrival) {
        TCGRectNest::AddIntialSolution({});
        TCGRectNest::AddIntialSolution(SolutionOf({{Row(parts, Plate(80, 90), {0}, 7), 2}}));
        TCGRectNest::AddIntialSolution(SolutionOf({{Row(parts, plates[0], {0}, 5), 2}}));
      }
      return 0.0;
    });
    TRectSolution solution;
    EXPECT_TRUE(TCGRectNest(&parts, &plates, 0).RunRectNest(9, solution));
    EXPECT_EQ(CheckedCopies(solution, parts, plates)[0], 2);
    EXPECT_EQ(FirstX(solution, 0), 7);
    EXPECT_EQ(FirstX(solution, 1), 5);
  }
}

// A search for fewer or more rows leaves them in the pool, and so does a run that is stopped before it begins. The
// third run asks for the rest of part 0 once and for part 1 twice.
TEST_F(CGRectNest, OutsideSolutionsAreForTheFullListOnly) {
  const TNestRectList parts = {Part(40, 40, 3), Part(90, 90, 1)};
  const TNestSpace small = Plate(60, 60, 1), alike = Plate(61, 61, 1), large = Plate(100, 100);
  const auto isUsed = [&](const TNestSpaceList& plates) {
    TRectSolution solution;
    return TCGRectNest(&parts, &plates, 0).RunRectNest(0, solution) && FirstX(solution) == 7;
  };
  const TRectSolution outside = SolutionOf({{Row(parts, large, {1}, 7), 1}, {Row(parts, large, {0, 0}), 2}});
  TCGRectNest::AddIntialSolution(outside.Clone());
  for (std::atomic<bool>* flag : {&RectNestTerminated, &ColumnGenerationTerminated}) {
    *flag = true;
    EXPECT_FALSE(isUsed({large, small}));
    *flag = false;
  }
  EXPECT_FALSE(isUsed({small}));
  EXPECT_FALSE(isUsed({small, alike, large}));
  EXPECT_TRUE(isUsed({small, large}));
  TCGRectNest::AddIntialSolution(outside.Clone());
  TCGRectNest::Initialize();
  EXPECT_FALSE(isUsed({large}));
}

// An outside solution that the search cannot improve on. One part too many makes the plate of part 1 the fuller one, so
// stock takes one of part 0 back.
TEST_F(CGRectNest, StockIsKeptBeforeSurplusGoes) {
  const TNestRectList parts = {Part(152, 48.5, 2), Part(49, 49, 3)};
  const TNestSpace plate = Plate(200, 50, 2);
  for (const TNestSpaceList& plates : {TNestSpaceList{plate}, TNestSpaceList{plate, Plate(10, 10)}}) {
    TCGRectNest::AddIntialSolution(SolutionOf({{Row(parts, plate, {0}), 2}, {Row(parts, plate, {1, 1, 1, 1}), 1}}));
    TRectSolution solution;
    EXPECT_TRUE(TCGRectNest(&parts, &plates, 0).RunRectNest(0, solution));
    EXPECT_THAT(CheckedCopies(solution, parts, plates), ElementsAre(1, 3));
  }
}

// As few plates as the areas allow. It takes patterns that only the raster program finds, for the first job also below
// the root, and for the second one the completion of a rounded LP.
TEST_F(CGRectNest, TheHeuristicsTogetherSaveAPlate) {
  const std::vector<TNestRectList> jobs = {{Part(50, 40, 5), Part(20, 60, 4), Part(20, 90, 4), Part(40, 70, 2)},
                                           {Part(20, 60, 5), Part(40, 40, 3), Part(50, 50, 1), Part(70, 50, 5)}};
  for (const TNestRectList& parts : jobs) {
    TBCPRectNest nest(parts, Plate(101, 101), 0, nullptr);
    TRectSolution solution;
    nest.Solve(solution, 0);
    EXPECT_EQ(std::ceil(nest.Tree().GUB()), &parts == &jobs[0] ? 3 : 4);
  }
}

// The only row is 47 by 95, two on a plate. Ways: offered, in the queue at the start, in the queue when the search
// runs.
TEST_F(CGRectNest, SolutionsFromOutsideAreReadByPositionAndLoseWhatIsLeftOut) {
  const TNestRectList parts = {Part(5, 100, 2), Part(30, 30, 0), Part(47, 95, 4)}, others(3, Part(5, 5, 1));
  const TNestSpace plate = Plate(100, 100), turned = Plate(50, 200);
  TRectSolutionFifo fifo;
  using TOutcome = std::pair<double, int>;  // where the first item lies, columns in the pool
  const auto offer = [&](const TRectSolution& offered, int way, int otherPlates = 0) {
    TBCPRectNest nest(parts, plate, 0, &fifo);
    if (way == 0) nest.AddColumnList(offered);
    if (way == 1) fifo.Push(offered.Clone());
    nest.SetWatch([&, isDue = way == 2](const auto&) mutable {
      if (std::exchange(isDue, false)) fifo.Push(offered.Clone());
      return false;
    });
    TRectSolution solution;
    EXPECT_TRUE(nest.Solve(solution, 0));
    EXPECT_THAT(CheckedCopies(solution, parts, {plate}), ElementsAre(0, 0, 4));
    EXPECT_EQ(Size(nest.TakeOtherPlates()), way == 0 ? 0 : otherPlates);
    return TOutcome(FirstX(solution), nest.Tree().VarPool().Count());
  };
  const TRectSolution best = SolutionOf({{Row(parts, plate, {0, 2, 2}), 2}, {Row(parts, plate, {0, 1}), 1}});
  const TRectSolution column = SolutionOf({{Row(parts, plate, {0, 2}), 4}, {Row(parts, turned, {2}), 2}});
  for (int way = 0; way < 3; ++way) {
    EXPECT_EQ(offer(best, way), TOutcome(way < 2 ? 5 : 0, 1)) << "a start, or no better than what the search has";
    EXPECT_EQ(offer(column, way), TOutcome(0, way == 1 ? 1 : 2)) << "a start brings no columns";
    EXPECT_EQ(offer(SolutionOf({{Row(parts, turned, {2}), 2}}), way, 1), TOutcome(0, 1));
    EXPECT_EQ(offer(SolutionOf({{Row(parts, plate, {2, 2}, 3), 2}, {Row(others, plate, {2}), 1}}), way),
              TOutcome(0, 1));
  }
}

TEST_F(CGRectNest, ColumnGenerationStopsAfterAGraceAndTheRestAtOnce) {
  TFakeClock clock;
  TSearch late({Part(9, 9, 9)}, Plate(100, 100), 0, nullptr), stopped({Part(9, 9, 9)}, Plate(100, 100), 0, nullptr);
  clock.AdvanceMs(60000);
  ColumnGenerationTerminated = true;
  for (const bool isOver : {false, false, true}) {
    EXPECT_EQ(late.NeedStop(), isOver);
    clock.AdvanceMs(isOver ? 0 : 2501);
  }
  EXPECT_FALSE(stopped.NeedStop()) << "its own grace";
  stopped.SetWatch([once = true](const auto&) mutable { return std::exchange(once, false); });
  for (int poll = 0; poll < 2; ++poll) EXPECT_TRUE(stopped.NeedStop()) << "for good";
}

TEST_F(CGRectNest, WithoutTimeLeftTheNextPlateIsSkipped) {
  const TNestRectList parts = {Part(49, 49, 8)};
  const TNestSpaceList plates = {Plate(100, 100, 1), Plate(99, 99)};
  for (const double limit : {10.0, 11.5, 0.0}) {
    TFakeClock clock;
    clock.AdvanceAtEachReading(11000);
    TRectSolution solution;
    EXPECT_TRUE(TProbe(&parts, &plates, 0).RunSequentialMultiPlate(limit, solution));
    EXPECT_EQ(solution.Count(), limit == 10 ? 0 : limit == 11.5 ? 1 : 2);
  }
}

}  // namespace
}  // namespace platenest
