#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>
#include <vector>

#include "Assembly.h"
#include "ForEachSeed.h"
#include "JobAnswer.h"
#include "JobBounds.h"
#include "JobFill.h"
#include "JobVerdict.h"
#include "PlateJobs.h"

namespace platenest {
namespace {

using namespace detail;
using testing::ElementsAre;

// What run() would state, had its search ended with these layouts.
Result ResultOf(const Job& AJob, const TJobSizes& Sizes, const TJobLayouts& Layouts) {
  Result result = HeadOf(AJob);
  result.Bounds = JobBoundsOf(AJob);
  result.Layouts = AssembleLayouts(AJob, Sizes, Layouts);
  for (Layout& layout : result.Layouts) MeasureInto(layout, AJob.Gap, AJob.Margin);
  Account(AJob, result);
  JudgeJob(AJob, result);
  return result;
}

// A job so small that every answer can be looked at: all lengths are a few units.
Job TinyJob(TRandom& Random, double Unit) {
  Job job = PlateJob(JobKind::Job, {}, {}, Random.Chance(30) ? Unit : 0);
  for (int i = Random.Pick(1, 2); i > 0; --i) {
    job.Plates.push_back(Sheet(Random.Pick(2, 4) * Unit, Random.Pick(2, 4) * Unit, Random.Pick(1, 3)));
    if (Random.Chance(40)) job.Plates.back().Count = std::nullopt;
    if (Random.Chance(60)) job.Plates.back().Cost = Random.Pick(0, 3) * 0.5;
  }
  for (int left = 6; left > 0; left -= *job.Parts.back().Amount + Random.Pick(0, 2)) {
    const Rotate turn = Random.Chance(30) ? Rotate::None : Rotate::Any;
    const int amount = Random.Pick(1, std::min(left, 3));
    job.Parts.push_back(Rect(Random.Pick(1, 4) * Unit, Random.Pick(1, 4) * Unit, amount, turn));
  }
  const bool isFinite = std::ranges::all_of(job.Plates, [](const Plate& plate) { return plate.Count.has_value(); });
  if (isFinite && Random.Chance(40)) job.Parts.back().Amount = std::nullopt;
  GiveIds(job);
  return job;
}

constexpr int kMostAmount = 7;
using TCopies = std::vector<int>;  // of each part

// What one plate holds, by trying all places on the grid of units. Every layout can sink until each part rests on the
// plate's edge or on another part, so that no other places are needed.
struct TEveryLayout {
  TEveryLayout(const TJobSizes& Sizes, double Unit, const TJobPlate& Plate)
      : FSizes(Sizes),
        FUnit(Unit),
        FColumns(Units(Plate.Width)),
        FRows(Units(Plate.Height)),
        FCopies(Sizes.Parts.size()) {
    Place(0, 0);
  }

  // With the gap.
  int Units(double Length) const { return static_cast<int>(std::lround((Length + FSizes.Gap) / FUnit)); }

  void Place(int Cell, std::uint64_t Taken) {
    FFound.emplace(FCopies, FLayout);
    for (; Cell < FColumns * FRows; ++Cell)
      for (int i = 0; i < Size(FCopies); ++i)
        for (const bool isTurned : {false, true}) Put(Cell, i, isTurned, Taken);
  }

  void Put(int Cell, int Index, bool IsTurned, std::uint64_t Taken) {
    const TJobPart& part = FSizes.Parts[Index];
    const int width = Units(IsTurned ? part.Height : part.Width), height = Units(IsTurned ? part.Width : part.Height);
    const int x = Cell % FColumns, y = Cell / FColumns;
    const bool isAllowed = FCopies[Index] < part.Amount && (part.MayTurn || !IsTurned);
    if (!isAllowed || x + width > FColumns || y + height > FRows) return;
    const std::uint64_t row = ((std::uint64_t{1} << width) - 1) << Cell;
    std::uint64_t cells = 0;
    for (int k = 0; k < height; ++k) cells |= row << (k * FColumns);
    if ((cells & Taken) != 0 || (y > 0 && (row >> FColumns & Taken) == 0)) return;
    const TNestRect record(1, Index, TVRect2D::FromSize(part.Width, part.Height));
    FLayout.emplace_back(record, IsTurned, TPoint2D{x * FUnit + (IsTurned ? part.Height : 0), y * FUnit});
    ++FCopies[Index];
    Place(Cell + 1, Taken | cells);
    --FCopies[Index];
    FLayout.pop_back();
  }

  const TJobSizes& FSizes;
  double FUnit;
  int FColumns, FRows;
  TCopies FCopies;
  TNestedRects FLayout;
  std::map<TCopies, TNestedRects> FFound;
};

// What an answer places, with the cheapest layouts for it and the fewest plates.
struct TAnswer {
  double Cost = 0;
  int Plates = 0;
  TJobLayouts Layouts;
};
using TAnswers = std::map<TCopies, TAnswer>;

void AddPlate(const TJobSizes& Sizes, int Kind, const std::map<TCopies, TNestedRects>& Found, TAnswers& Answers) {
  for (const auto& [placed, answer] : TAnswers(Answers))
    for (const auto& [copies, nested] : Found) {
      TCopies sum = placed;
      bool isTooMuch = false;
      for (int i = 0; i < Size(sum); ++i) isTooMuch |= (sum[i] += copies[i]) > Sizes.Parts[i].Amount;
      if (isTooMuch) continue;
      TAnswer more = answer;
      more.Layouts.push_back({Kind, 1, nested});
      more.Cost += Sizes.Plates[Kind].Cost;
      ++more.Plates;
      TAnswer& known = Answers.emplace(sum, more).first->second;
      const int plates = std::min(known.Plates, more.Plates);
      if (more.Cost < known.Cost) known = std::move(more);
      known.Plates = plates;
    }
}

TAnswers EveryAnswer(const TJobSizes& Sizes, double Unit) {
  TAnswers answers{{TCopies(Sizes.Parts.size()), {}}};
  for (int i = 0; i < Size(Sizes.Plates); ++i) {
    const TEveryLayout layouts(Sizes, Unit, Sizes.Plates[i]);
    for (int k = 0; k < std::min(Sizes.Plates[i].Count, kMostAmount); ++k) AddPlate(Sizes, i, layouts.FFound, answers);
  }
  return answers;
}

void ExpectSound(const std::vector<Bound>& Bounds, const TJobSizes& Sizes, const TAnswers& Answers) {
  for (const auto& [placed, answer] : Answers) {
    double area = 0;
    bool isAll = true;
    for (int i = 0; i < Size(placed); ++i) {
      const TJobPart& part = Sizes.Parts[i];
      area += placed[i] * part.Area;
      isAll &= part.IsUnlimited || placed[i] == part.Amount;
    }
    for (const Bound& bound : Bounds) {
      const double reached = bound.What == "plates" ? answer.Plates : answer.Cost;
      EXPECT_TRUE(bound.What == "area" ? area <= bound.Value * (1 + 1e-11)
                                       : !isAll || reached >= bound.Value * (1 - 1e-11))
          << bound.What << ", " << bound.Kind;
    }
  }
}

TEST(WholeJob, BoundsHoldForEveryAnswerAndWhatIsProvedIsBest) {
  int proved = 0, jobs = 0;
  ForEachSeed(400, [&](unsigned seed) {
    TRandom random(seed);
    const double unit = std::vector{1.0, 0.1, 2.54, 1.0 / 3}[seed % 4];
    const Job job = TinyJob(random, unit);
    SCOPED_TRACE(JobToJson(job));
    const TJobSizes sizes = JobSizesOf(job);
    if (sizes.Parts.empty() ||
        std::ranges::any_of(sizes.Parts, [](const TJobPart& p) { return p.Amount > kMostAmount; }))
      return;
    const TAnswers answers = EveryAnswer(sizes, ScaleOf(job).Up(unit));
    ExpectSound(JobBoundsOf(job), sizes, answers);
    const auto worth = [&](const TJobLayouts& layouts) {
      const TJobMerit merit = MeritOf(sizes, layouts);
      return std::tuple(-merit.UnplacedArea, merit.UnlimitedArea, -merit.Cost);
    };
    TJobLayouts best;
    for (const auto& [placed, answer] : answers)
      if (IsBetter(MeritOf(sizes, answer.Layouts), MeritOf(sizes, best))) best = answer.Layouts;
    for (int i = 0; i < 4; ++i) {
      TJobLayouts layouts = best;
      if (i > 0) layouts = std::next(answers.begin(), random.Pick(0, Size(answers) - 1))->second.Layouts;
      TidyAnswer(sizes, layouts);
      const Result result = ResultOf(job, sizes, layouts);
      EXPECT_EQ(JobFault(job, result.Layouts, result.Bounds), "");
      EXPECT_EQ(Verdict(job, result), "") << ResultToJson(result);
      EXPECT_TRUE(!result.Proved || worth(layouts) == worth(best)) << ResultToJson(result);
      if (i == 0) proved += result.Proved ? 1 : 0;
    }
    ++jobs;
  });
  EXPECT_GT(jobs, 200);
  EXPECT_GT(proved, jobs / 3);
}

// No two of the large squares fit a plate together. Costs are sums of those of plates: 249.75 is 250 where all are
// multiples of 50.
TEST(WholeJob, BoundsFollowStockAndDemand) {
  Job job = PlateJob(JobKind::Job, {Sheet(10, 10, std::nullopt)}, {Rect(6, 6, 4), Rect(4, 4, 4)});
  EXPECT_EQ(BoundsText(JobBoundsOf(job)), "plates area 3, plates fekete 4, ");
  job = PlateJob(JobKind::Job, {job.Plates[0], Sheet(20, 10, 2, 150)}, {Rect(7, 3, 9), Rect(4, 4, 9)});
  EXPECT_EQ(BoundsText(JobBoundsOf(job)), "plates area 2, cost area 250, ");
  std::tie(job.Plates[0].Count, job.Plates[0].Cost, job.Gap) = std::tuple(1, 60, 1);
  EXPECT_EQ(BoundsText(JobBoundsOf(job)), "plates area 3, cost area 330, cost plates 360, ");
  std::tie(job.Plates[0].Count, job.Parts[1].Amount) = std::tuple(2, std::nullopt);
  EXPECT_EQ(BoundsText(JobBoundsOf(job)), "plates area 2, cost area 150, area stock 455, ");
}

// Layouts of which only the counts matter.
TJobLayouts AnyLayouts(TRandom& Random, const TJobSizes& Sizes) {
  TJobLayouts layouts(Random.Pick(0, 12));
  for (TJobLayout& layout : layouts) {
    layout.Plate = Random.Pick(0, Size(Sizes.Plates) - 1);
    layout.Copies = Random.Pick(0, 4);
    const int kinds = Random.Pick(1, Size(Sizes.Parts));
    for (int k = Random.Pick(0, 9); k > 0; --k) {
      const TNestRect record(1, Random.Pick(0, kinds - 1), TVRect2D::FromSize(1, 1));
      layout.Nested.emplace_back(record, Random.Chance(20), TPoint2D{1.0 * k, 0});
    }
  }
  return layouts;
}

TEST(WholeJob, TidyAnswersKeepStockAndDemandAndLoseNothingElse) {
  ForEachSeed(2000, [](unsigned seed) {
    TRandom random(seed);
    TJobSizes sizes;
    for (int i = random.Pick(1, 3); i > 0; --i)
      sizes.Plates.push_back({.Width = 100, .Height = 100, .Count = random.Pick(1, 12), .Cost = 1, .Area = 1e4});
    for (int i = random.Pick(1, 4); i > 0; --i)
      sizes.Parts.push_back({.Width = 10, .Height = 20, .Amount = random.Pick(1, 60), .Area = 100.0 * i});
    sizes.Parts[0].MayTurn = false;
    const TJobLayouts given = AnyLayouts(random, sizes);
    TJobLayouts kept = given;
    TidyAnswer(sizes, kept);

    std::vector<Int64> offered = PlacedCopies(sizes, given);
    for (const TJobLayout& layout : given)
      for (const TNestedRect& item : layout.Nested)
        offered[0] -= item.IsRotate && item.Part.Idx == 0 ? layout.Copies : 0;
    std::set<std::pair<int, TCopies>> contents;
    for (const TJobLayout& layout : kept) {
      TCopies copies(sizes.Parts.size());
      for (const TNestedRect& item : layout.Nested) ++copies[item.Part.Idx];
      EXPECT_TRUE(layout.Copies > 0 && !layout.Nested.empty() && contents.emplace(layout.Plate, copies).second);
    }
    const std::vector<int> stock = StockLeft(sizes, kept);
    EXPECT_GE(std::ranges::min(stock), 0);
    const std::vector<Int64> placed = PlacedCopies(sizes, kept);
    for (int i = 0; i < Size(placed); ++i) {
      const Int64 due = std::min<Int64>(offered[i], sizes.Parts[i].Amount);
      EXPECT_TRUE(placed[i] == due || (placed[i] < due && std::ranges::min(stock) == 0)) << placed[i] << " of " << due;
    }
    TJobLayouts again = kept;
    TidyAnswer(sizes, again);
    const TJobMerit before = MeritOf(sizes, kept);
    EXPECT_TRUE(!IsBetter(before, MeritOf(sizes, again)) && !IsBetter(MeritOf(sizes, again), before));
  });
}

TEST(WholeJob, SizesLeaveOutWhatIsOfNoUse) {
  Job job =
      PlateJob(JobKind::Job,
               {Sheet(2800, 2070, std::nullopt, 5), Sheet(19, 900, 3), Sheet(620, 420, 9, 1, true), Sheet(60, 40, 9)},
               {Rect(2060, 300, 4, Rotate::None), Rect(600, 400, 2), Rect(2781, 10, 9)}, 3);
  job.Margin = {10, 10, 10, 10};
  const TJobSizes sizes = JobSizesOf(job);
  ASSERT_EQ(std::pair(Size(sizes.Plates), Size(sizes.Parts)), std::pair(2, 2));
  EXPECT_THAT((std::vector{sizes.Plates[0].Position, sizes.Plates[0].Count, sizes.Plates[1].Count}),
              ElementsAre(2, 2, 6));
  job.Plates.erase(job.Plates.begin());
  job.Parts[1].Amount = std::nullopt;
  EXPECT_EQ(JobSizesOf(job).Parts.at(0).Amount, 9);
  job.Parts.push_back(Rect(0.4, 0.4));
  job.Gap = 0;
  EXPECT_EQ(FaultsOf([&] { JobSizesOf(job); }), "LimitError: limit /parts/3/amount");
  job.Margin = {300, 250, 400, 250};
  EXPECT_EQ(FaultsOf([&] { JobSizesOf(job); }), "InputError: range /margin");
}

// A third of a side has more digits than a double, and three of them can be longer than the side.
TEST(WholeJob, PartsThatDivideAPlateFillIt) {
  ForEachSeed(60, [](unsigned seed) {
    TRandom random(seed);
    const double unit = std::vector{1.0, 0.001, 25.4, 1.0 / 16}[random.Pick(0, 3)];
    const int across = random.Pick(2, 9), along = random.Pick(2, 9);
    const double gap = random.Pick(0, 2) * 2 * unit, margin = random.Pick(0, 1) * 10 * unit;
    const double width = random.Pick(500, 1900) * unit, height = random.Pick(500, 1900) * unit;
    Job job = PlateJob(JobKind::Job, {Sheet(width, height)},
                       {Rect((width - 2 * margin - (across - 1) * gap) / across,
                             (height - 2 * margin - (along - 1) * gap) / along, across * along)},
                       gap);
    job.Margin.fill(margin);
    const Result result = Answer(With(job, "repeat"));
    EXPECT_EQ(result.Parts.at(0).Unplaced, 0) << JobToJson(job);
    EXPECT_TRUE(result.Layouts.at(0).EdgeToEdge) << JobToJson(job);
  });
}

// A bound on one of the things that answers are compared by does not end the search for the others.
// Five parts fill the first grown plate, but others hold more area; two small plates cost what a large one does.
TEST(WholeJob, GoesOnWhereABoundSaysHalfOfIt) {
  Job full = PlateJob(JobKind::Job, {Sheet(7, 5)}, {Rect(7, 1, 4), Rect(2, 4, 3)}, 1);
  Job cheap = PlateJob(JobKind::Job, {Sheet(9, 5, 2, 1), Sheet(5, 6, 2, 0.5)}, {Rect(5, 2, 3)}, 1);
  full.Run.Deterministic = cheap.Run.Deterministic = true;
  EXPECT_EQ(run(full).Total.PartArea, 24);
  EXPECT_EQ(run(cheap).Total.Plates, 1);
}

TEST(WholeJob, LastPlateIsARemnantOnlyWhereNoOtherIsUsed) {
  const TJobSizes sizes =
      JobSizesOf(PlateJob(JobKind::Job, {Sheet(10, 10, 1, {}, true), Sheet(20, 10)}, {Rect(10, 5, 4)}));
  const TNestedRect piece(TNestRect(1, 0, TVRect2D::FromSize(10, 5)), false, TPoint2D{0, 0});
  TNestedRects one, three;
  one.push_back(piece);
  for (int i = 0; i < 3; ++i) three.push_back(piece);
  EXPECT_EQ(MeritOf(sizes, {{0, 1, one}, {1, 1, three}}).LastUsage, 0.75);
  EXPECT_EQ(MeritOf(sizes, {{0, 1, one}}).LastUsage, 0.5);
}

// A fill that stops as soon as all is placed leaves less than six tenths of the room in one piece.
TEST(WholeJob, LeavesTheRoomOfALastPlateInOnePiece) {
  double shares = 0;
  int jobs = 0;
  ForEachSeed(30, [&](unsigned seed) {
    TRandom random(seed);
    Job job = PlateJob(JobKind::Job, {Sheet(2800, 2070, std::nullopt)}, {}, 4);
    for (double least = 0.01 * random.Pick(55, 75) * 2800 * 2070; least > 0;) {
      const Part& part = job.Parts.emplace_back(Rect(random.Pick(100, 700), random.Pick(100, 700), random.Pick(1, 4)));
      least -= part.Width * part.Height * *part.Amount;
    }
    GiveIds(job);
    job.Run.TimeLimit = 5;
    const Result result = Answer(job);
    if (result.Layouts.size() != 1) return;
    const Box& free = result.Layouts[0].FreeBox;
    shares += (free[2] - free[0]) * (free[3] - free[1]) / (result.Total.PlateArea - result.Total.PartArea);
    ++jobs;
  });
  EXPECT_GT(jobs, 20);
  EXPECT_GT(shares, 0.67 * jobs);
}

// Two plates with one layout and a remnant hold all that is asked for.
TEST(WholeJob, IsCompleteWhenNoCopyWithoutLimitFitsAnyMore) {
  Job job = PlateJob(JobKind::Job, {Sheet(1000, 500, 2, 3), Sheet(300, 200, 1, 0, true)},
                     {Rect(700, 480, 2), Rect(280, 190, 5), Rect(1100, 10, 1)}, 4);
  Result result = Answer(With(job, "repeat"));
  for (const int i : {1, 2}) job.Parts[i].Amount = result.Parts[i].Amount = std::nullopt;
  for (PartUse& part : result.Parts) part.Unplaced = 0;
  const auto status = [&] {
    JudgeJob(job, result);
    return result.Status;
  };
  EXPECT_EQ(status(), ResultStatus::Complete);
  result.Layouts[1].FreeBox = {0, 0, 190, 280};
  EXPECT_EQ(status(), ResultStatus::Partial);
  job.Parts[1].Turn = Rotate::None;
  EXPECT_EQ(status(), ResultStatus::Complete);
  job.Plates[0].Count = result.Plates[0].Count = 3;
  EXPECT_EQ(status(), ResultStatus::Partial);
}

}  // namespace
}  // namespace platenest
