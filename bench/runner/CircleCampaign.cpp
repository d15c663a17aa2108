#include "CircleCampaign.h"

#include <cmath>
#include <cstdio>
#include <numbers>
#include <random>
#include <string>

#include "CircleCase.h"
#include "platenest/UCircleNest/UCircleNest.h"
#include "platenest/layoutcheck/CircleCheck.h"

namespace platenest::bench {

namespace {

constexpr Int64 kSteps = 20000;

struct TProblem {
  TVRect2D Rect;
  double Gap = 0;
  std::vector<double> Radii;
  std::vector<int> Counts;
};

// The first plate of a random job, and its sizes in random order.
TProblem MakeProblem(unsigned Seed) {
  const Job job = test::MakeCircleCase(Seed).AJob;
  std::mt19937 engine(Seed);
  TProblem made;
  made.Rect = TVRect2D::FromSize(job.Plates[0].Width, job.Plates[0].Height);
  const auto pick = [&engine](int count) { return static_cast<int>(engine() % static_cast<unsigned>(count)); };
  if (pick(2) == 0) made.Rect = made.Rect.Translate({pick(1000) - 500.0, pick(1000) - 500.0});
  made.Gap = job.Gap;
  for (const Part& part : job.Parts) {
    const int at = pick(Size(made.Radii) + 1);
    made.Radii.insert(made.Radii.begin() + at, part.Radius);
    made.Counts.insert(made.Counts.begin() + at, pick(16) == 0 ? 0 : part.Amount.value_or(100));
  }
  return made;
}

std::string FaultOf(const TProblem& Problem, TCirclePacking& Packing) {
  const double stated = Packing.OccuRate();
  std::vector<TPlacedCircle> layout;
  std::vector<TCircleDemand> demand;
  double area = 0;
  for (std::size_t i = 0; i < Problem.Radii.size(); ++i) demand.push_back({Problem.Radii[i], Problem.Counts[i]});
  for (const TCornerPlacement& item : Packing.ResultTranslation()) {
    const double radius = Problem.Radii.at(static_cast<std::size_t>(item.CircleIdx));
    layout.push_back({item.Center, radius, item.CircleIdx});
    area += std::numbers::pi * radius * radius;
  }
  const double working = (Problem.Rect.Width() + Problem.Gap) * (Problem.Rect.Height() + Problem.Gap);
  if (std::fabs(area / working - stated) > 1e-9) return "the occupancy is not that of the circles";
  const TPlacedBox plate{0, 0, Problem.Rect.Width(), Problem.Rect.Height()};
  return CheckCircles(layout, plate, Problem.Gap, demand, {.Tol = 1e-5});
}

struct TPacked {
  TCircleNestRst Circles;
  double Occupancy = 0;
  std::string Fault;
};

TPacked Pack(const TProblem& Problem, int Threads, Int64 Steps) {
  TPacked made;
  TCirclePacking packing(Problem.Rect, Problem.Gap, Problem.Radii, Problem.Counts);
  packing.SetThreadLimit(Threads);
  packing.SetStepLimit(Steps);
  packing.Packing(0, 0);
  made.Fault = FaultOf(Problem, packing);
  made.Circles = packing.PackingResult();
  made.Occupancy = packing.OccuRate();
  return made;
}

bool AreSame(const TCircleNestRst& A, const TCircleNestRst& B) {
  return std::ranges::equal(A, B, [](const TCornerPlacement& a, const TCornerPlacement& b) {
    return a.CircleIdx == b.CircleIdx && a.Center.X == b.Center.X && a.Center.Y == b.Center.Y;
  });
}

TRow RunSeed(unsigned Seed) {
  TRow row;
  row.Id = Numbered("seed-", Seed);
  const TProblem problem = MakeProblem(Seed);
  row.Ms = MedianMs(1, [&] {
    const TPacked four = Pack(problem, 4, kSteps), one = Pack(problem, 1, kSteps), none = Pack(problem, 4, 0);
    row.Result = four.Occupancy;
    row.Fault = four.Fault + one.Fault + none.Fault;
    if (row.Fault.empty() && !AreSame(four.Circles, one.Circles)) row.Fault = "another packing on one thread";
    row.Figures = {{"circles", Size(four.Circles)}};
  });
  if (!row.Fault.empty()) std::printf("%s: %s\n", row.Id.c_str(), row.Fault.c_str());
  return row;
}

}  // namespace

std::vector<TRow> RunCircleCampaign(const TArguments& Arguments) {
  std::vector<TRow> rows;
  int faults = 0, empty = 0;
  double circles = 0, usage = 0;
  std::vector<double> times;
  for (int i = 0; i < Arguments.Pairs; ++i) {
    rows.push_back(RunSeed(static_cast<unsigned>(Arguments.Seed + i)));
    const TRow& row = rows.back();
    faults += !row.Fault.empty();
    empty += row.Result == 0;
    circles += row.Figures.empty() ? 0 : row.Figures[0].second;
    usage += row.Result;
    times.push_back(row.Ms);
  }
  std::printf("%zu lists, %d without a packing, %.0f circles, occupancy %.4f, %d faults, ms median %.1f worst %.1f\n",
              rows.size(), empty, circles, usage / static_cast<double>(rows.size()), faults, Quantile(times, 0.5),
              Quantile(times, 1));
  return rows;
}

}  // namespace platenest::bench
