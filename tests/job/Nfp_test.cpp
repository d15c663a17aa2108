#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "NfpShapes.h"
#include "PlateJobs.h"
#include "ShapeJobs.h"
#include "platenest/NfpAlgorithmSet/NfpTypes.h"

namespace platenest {
namespace {

using testing::HasSubstr;
using testing::SizeIs;

Job NfpJob(std::vector<Part> Parts, bool IsInside = false) {
  Job job = PlateJob(JobKind::Nfp, {}, std::move(Parts));
  job.Fixed = {job.Parts.front().Id};
  job.Moving = {job.Parts.back().Id};
  job.Inside = IsInside;
  return job;
}

double AreaOf(const NfpPair& Pair) {
  return TPathUtils::Area(detail::PathsOf(Pair.Paths)) / (kPathScale * kPathScale);
}

TEST(NfpJob, FaultsHaveTheirCodeAndPlace) {
  const Part square = Polygon("s", Square(0, 0, 10));
  const double nan = std::nan("");
  const PolygonRing eight = {{0, 0}, {4, 4}, {4, 0}, {0, 4}};
  const PolygonRing eightAtAVertex = {{0, 0}, {2, 2}, {4, 4}, {4, 0}, {2, 2}, {0, 4}};
  PolygonRing twice = Square(0, 0, 2);
  twice.insert(twice.end(), twice.begin(), twice.end());
  const std::pair<Part, std::string> cases[] = {
      {Polygon("p", kL), "none"},
      {Polygon("p", {{0, 0}, {3, 0}, {3, 1e-6}, {0, 1e-6}, {0, 0}}), "InputError: entries /parts/0/outline"},
      {Polygon("p", {{0, 0}, {3, 0}, {6, 0}}), "InputError: shape /parts/0/outline"},
      {Polygon("p", {{0, 0}, {1, nan}, {1, 1}}), "InputError: range /parts/0/outline/1/1"},
      {Polygon("p", {{0, 0}, {1.1e6, 0}, {1, 1}}), "LimitError: limit /parts/0/outline/1/0"},
      {Polygon("p", {{0, 0}, {1, 0}, {1, 5e-4}}), "LimitError: limit /parts/0/outline"},
      {Polygon("p", eightAtAVertex), "InputError: shape /parts/0/outline"},
      {Polygon("p", twice), "InputError: shape /parts/0/outline"},
      {Polygon("p", PolygonRing(20001, {1, 1})), "LimitError: limit /parts/0/outline"},
      {Polygon("p", Square(0, 0, 9), {Square(1, 1, 2), Square(3, 1, 2)}), "none"},  // holes that touch
      {Polygon("p", Square(0, 0, 9), {Square(0, 4, 2)}), "none"},                   // a hole at the edge
      {Polygon("p", Square(0, 0, 9), {Square(1, 1, 2), Square(2, 2, 2)}), "InputError: shape /parts/0/holes/1"},
      {Polygon("p", Square(0, 0, 9), {Square(1, 1, 4), Square(2, 2, 1)}), "InputError: shape /parts/0/holes"},
      {Polygon("p", Square(0, 0, 9), {Square(1, 1, 2), Square(20, 0, 2)}), "InputError: shape /parts/0/holes/1"},
      {Polygon("p", {}, {Square(0, 0, 1)}),
       "InputError: range /parts/0/width, range /parts/0/height, conflict /parts/0/holes"},
      {{.Id = "p", .Width = 3, .Height = 0, .Outline = kL}, "InputError: conflict /parts/0/outline"},
  };
  for (const auto& [part, faults] : cases) EXPECT_EQ(CheckFaults(NfpJob({part, square})), faults);
}

// A star whose edges nearly all cross each other is refused without counting its crossings.
TEST(NfpJob, AManifoldlyCrossingOutlineIsRefusedAtOnce) {
  const PolygonRing disc = Disc(19999);
  PolygonRing star;
  for (std::size_t i = 0; i < disc.size(); ++i) star.push_back(disc[i * 9999 % disc.size()]);
  EXPECT_EQ(CheckFaults(NfpJob({Polygon("p", star), Polygon("s", Square(0, 0, 10))})),
            "InputError: shape /parts/0/outline");
}

const Job kAllPairs = [] {
  Job job = NfpJob({Polygon("l", kL), {.Id = "r", .Width = 2, .Height = 1}});
  job.Fixed.clear();
  job.Moving.clear();
  return job;
}();

// Areas that can be told by hand: of an L, half its way round and a unit; of a frame of 10 with a hole of 6 that leaves
// 4 by 4 free; of the places in a plate with a hole, of none, and of the one place of a part that just fits.
TEST(NfpRun, AnswersHaveTheirAreaPassTheCheckAndSurviveTheirForm) {
  const Part plate = Polygon("plate", Square(0, 0, 10), {Square(4, 4, 2)});
  const std::tuple<Job, std::size_t, double> cases[] = {
      {NfpJob({Polygon("l", kL), {.Id = "unit", .Width = 1, .Height = 1}}), 1, 6 + 7 + 1},
      {NfpJob({Polygon("frame", Square(0, 0, 10), {Square(2, 2, 6)}), Polygon("s", Square(0, 0, 2))}), 2, 144 - 16},
      {NfpJob({plate, Polygon("s", Square(0, 0, 1))}, true), 2, 81 - 9},
      {NfpJob({plate, Polygon("s", Square(0, 0, 11))}, true), 0, 0},
      {NfpJob({Polygon("plate", Square(0, 0, 10)), Polygon("s", Square(0, 0, 10))}, true), 1, 0},
  };
  for (const auto& [job, paths, area] : cases) {
    const Result result = Answer(job);
    EXPECT_EQ(result.Status, ResultStatus::Complete);
    EXPECT_THAT(result.Pairs.at(0).Paths, SizeIs(paths));
    EXPECT_NEAR(AreaOf(result.Pairs[0]), area, 1e-3);
    EXPECT_EQ(ParseResult(ResultToJson(result)), result);
  }
}

TEST(NfpRun, AnswersAllOrderedPairsInTheirOrderUntilItIsStopped) {
  const Result whole = run(kAllPairs);
  std::string order;
  for (const NfpPair& pair : whole.Pairs) order += pair.Fixed + pair.Moving + " ";
  EXPECT_EQ(order, "ll lr rl rr ");
  EXPECT_NEAR(AreaOf(whole.Pairs[1]), AreaOf(whole.Pairs[2]), 1e-3) << "the one mirrors the other";
  const Result stopped = run(kAllPairs, {.OnProgress = [](const Progress&) { return false; }});
  EXPECT_EQ(stopped.Status, ResultStatus::Stopped);
  EXPECT_THAT(stopped.Pairs, SizeIs(1));
  for (const Result& result : {whole, stopped}) {
    const std::string text = ResultToJson(result);
    EXPECT_THAT(text, HasSubstr("\"pairs\": ["));
    EXPECT_EQ(Verdict(kAllPairs, ParseResult(text)), "");
  }
}

// A part a thousand times longer than wide, which the kernel cannot tell from a line.
TEST(NfpRun, KeepsPartsApartByTheirBoxesWhereTheKernelGivesUp) {
  const Job job = NfpJob({Polygon("needle", {{0, 0}, {1000, 0.01}, {1000, 0.02}}), Polygon("s", Square(0, 0, 10))});
  const Result result = Answer(job);
  EXPECT_EQ(result.Pairs[0].Quality, NfpQuality::Convex);
  EXPECT_NEAR(AreaOf(result.Pairs[0]), 1010 * 10.02, 1);
  EXPECT_THAT(result.Warnings, testing::ElementsAre(HasSubstr("lower quality")));
}

// The ceiling belongs to the host: a run leaves it alone and says what it could not deliver.
TEST(NfpRun, ExactNeedsTheHostsCeiling) {
  Job job = NfpJob({Polygon("l", kL), Polygon("m", kL)});
  job.Quality = NfpQuality::Exact;
  const Result lowered = run(job);
  EXPECT_EQ(lowered.Pairs[0].Quality, NfpQuality::Complete);
  EXPECT_THAT(lowered.Warnings, testing::ElementsAre(HasSubstr("lower quality than exact")));
  EXPECT_EQ(HighestNFPType.load(), ntComplete);
  HighestNFPType = ntExact;
  const Result exact = run(job);
  HighestNFPType = ntComplete;
  EXPECT_EQ(exact.Pairs[0].Quality, NfpQuality::Exact);
  EXPECT_THAT(exact.Warnings, SizeIs(0));
}

}  // namespace
}  // namespace platenest
