#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "FaultText.h"
#include "NfpShapes.h"
#include "ShapeJobs.h"
#include "platenest/NfpAlgorithmSet/NfpTypes.h"
#include "platenest/job/Convert.h"
#include "platenest/job/Run.h"

namespace platenest {
namespace {

using testing::HasSubstr;
using testing::SizeIs;

Job NfpJob(std::vector<Part> Parts, bool IsInside = false) {
  Job job;
  job.Kind = JobKind::Nfp;
  job.Parts = std::move(Parts);
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
      {Polygon("p", {{0, 0}, {0, 3}, {3, 0}, {0, 0}}), "none"},
      {Polygon("p", {{0, 0}, {3, 0}, {3, 1e-6}, {0, 1e-6}, {0, 0}}), "InputError: entries /parts/0/outline"},
      {Polygon("p", {{0, 0}, {3, 0}, {6, 0}}), "InputError: shape /parts/0/outline"},
      {Polygon("p", {{0, 0}, {1, nan}, {1, 1}}), "InputError: range /parts/0/outline/1/1"},
      {Polygon("p", {{0, 0}, {1.1e6, 0}, {1, 1}}), "LimitError: limit /parts/0/outline/1/0"},
      {Polygon("p", {{0, 0}, {1, 0}, {1, 5e-4}}), "LimitError: limit /parts/0/outline"},
      {Polygon("p", eight), "InputError: shape /parts/0/outline"},
      {Polygon("p", eightAtAVertex), "InputError: shape /parts/0/outline"},
      {Polygon("p", twice), "InputError: shape /parts/0/outline"},
      {Polygon("p", PolygonRing(20001, {1, 1})), "LimitError: limit /parts/0/outline"},
      {Polygon("p", Square(0, 0, 9), {Square(1, 1, 2), Square(3, 1, 2)}), "none"},  // holes that touch
      {Polygon("p", Square(0, 0, 9), {Square(0, 4, 2)}), "none"},                   // a hole at the edge
      {Polygon("p", Square(0, 0, 9), {Square(1, 1, 2), Square(2, 2, 2)}), "InputError: shape /parts/0/holes/1"},
      {Polygon("p", Square(0, 0, 9), {Square(1, 1, 4), Square(2, 2, 1)}), "InputError: shape /parts/0/holes"},
      {Polygon("p", Square(0, 0, 9), {Square(1, 1, 2), Square(20, 0, 2)}), "InputError: shape /parts/0/holes/1"},
      {Polygon("p", Square(0, 0, 9), {Square(8, 1, 2)}), "InputError: shape /parts/0/holes/0"},
      {Polygon("p", Square(0, 0, 9), {eight}), "InputError: shape /parts/0/holes/0"},
      {Polygon("p", {}, {Square(0, 0, 1)}),
       "InputError: range /parts/0/width, range /parts/0/height, conflict /parts/0/holes"},
      {{.Id = "p", .Width = 3, .Height = 0, .Outline = kL}, "InputError: conflict /parts/0/outline"},
  };
  for (const auto& [part, faults] : cases) EXPECT_EQ(CheckFaults(NfpJob({part, square})), faults);
}

// A star whose edges nearly all cross each other is refused without counting its crossings.
TEST(NfpJob, AManifoldlyCrossingOutlineIsRefusedAtOnce) {
  PolygonRing star;
  for (int i = 0; i < 19999; ++i) {
    const double angle = std::numbers::pi * 2 * i * 9999 / 19999;
    star.push_back({1000 * std::cos(angle), 1000 * std::sin(angle)});
  }
  EXPECT_EQ(CheckFaults(NfpJob({Polygon("p", star), Polygon("s", Square(0, 0, 10))})),
            "InputError: shape /parts/0/outline");
}

TEST(NfpJob, PairsAreOfKnownPartsAndWithinTheLimits) {
  const auto faultsOf = [](auto Spoil) {
    Job job = NfpJob({Polygon("a", kL), {.Id = "b", .Width = 2, .Height = 1}});
    Spoil(job);
    return CheckFaults(job);
  };
  EXPECT_EQ(faultsOf([](Job&) {}), "none");
  EXPECT_EQ(faultsOf([](Job& j) { j.Fixed = {"a", "c", "a"}; }), "InputError: choice /fixed/1, duplicate-id /fixed/2");
  EXPECT_EQ(faultsOf([](Job& j) { j.Moving = {"c"}; }), "InputError: choice /moving");
  EXPECT_EQ(faultsOf([](Job& j) { j.Gap = 1; }), "InputError: conflict /gap");
  EXPECT_EQ(faultsOf([](Job& j) { j.Plates.resize(1); }),
            "InputError: range /plates/0/width, range /plates/0/height, "
            "id /plates/0/id, entries /plates");
  EXPECT_EQ(faultsOf([](Job& j) { j.Quality = static_cast<NfpQuality>(4); }), "InputError: choice /quality");
  EXPECT_EQ(faultsOf([](Job& j) { j.Run.Method = "strip"; }), "InputError: choice /options/method");
  EXPECT_EQ(faultsOf([](Job& j) {
              j.Parts.resize(1);
              j.Moving.clear();
              j.Inside = true;
            }),
            "InputError: entries /parts");
  EXPECT_EQ(faultsOf([](Job& j) {
              PolygonRing round;
              for (int i = 0; i < 2001; ++i) {
                const double angle = std::numbers::pi * 2 * i / 2001;
                round.push_back({1000 * std::cos(angle), 1000 * std::sin(angle)});
              }
              j.Parts[0].Outline = j.Parts[1].Outline = round;
              j.Parts[1].Width = j.Parts[1].Height = 0;
            }),
            "LimitError: limit /parts/1");
  EXPECT_EQ(faultsOf([](Job& j) {
              j.Parts.assign(400, j.Parts[1]);
              for (int i = 0; i < Size(j.Parts); ++i) j.Parts[i].Id = std::to_string(i);
              j.Fixed.clear();
              j.Moving.clear();
            }),
            "LimitError: limit /parts");
  Job one = SmallJob();
  one.Inside = true;
  one.Moving = {"a"};
  EXPECT_EQ(CheckFaults(one), "InputError: conflict /moving, conflict /inside");
}

TEST(NfpRun, AnswersOnePairAndSurvivesItsForm) {
  const Job job = NfpJob({Polygon("l", kL), {.Id = "unit", .Width = 1, .Height = 1}});
  const Result result = run(job);
  ASSERT_THAT(result.Pairs, SizeIs(1));
  EXPECT_NEAR(AreaOf(result.Pairs[0]), 6 + 7 + 1, 1e-3) << "area of the L, half its way round, and the unit";
  EXPECT_EQ(Verdict(job, result), "");
  const std::string text = ResultToJson(result);
  EXPECT_THAT(text, HasSubstr("\"nfp\": {"));
  EXPECT_EQ(ParseResult(text), result);
  EXPECT_THAT(PairToSvg(job, result, 0), HasSubstr("data-part=\"unit\""));
}

// The frame is 10 wide with a hole of 6: around it 12 by 12 are forbidden, inside its hole 4 by 4 are free.
TEST(NfpRun, KeepsThePlacesInAHoleOfTheFixedPart) {
  const Job job = NfpJob({Polygon("frame", Square(0, 0, 10), {Square(2, 2, 6)}), Polygon("s", Square(0, 0, 2))});
  const Result result = run(job);
  ASSERT_THAT(result.Pairs[0].Paths, SizeIs(2));
  EXPECT_NEAR(AreaOf(result.Pairs[0]), 144 - 16, 1e-3);
}

TEST(NfpRun, FindsTheRegionInAPlateWithAHoleOrNoPlace) {
  const Part plate = Polygon("plate", Square(0, 0, 10), {Square(4, 4, 2)});
  const Result region = run(NfpJob({plate, Polygon("s", Square(0, 0, 1))}, true));
  EXPECT_NEAR(AreaOf(region.Pairs[0]), 81 - 9, 1e-3);
  const Job tooLarge = NfpJob({plate, Polygon("s", Square(0, 0, 11))}, true);
  const Result none = run(tooLarge);
  EXPECT_EQ(none.Status, ResultStatus::Complete);
  EXPECT_THAT(none.Pairs[0].Paths, SizeIs(0));
  EXPECT_EQ(Verdict(tooLarge, ParseResult(ResultToJson(none))), "");
  const Result exact = run(NfpJob({Polygon("plate", Square(0, 0, 10)), Polygon("s", Square(0, 0, 10))}, true));
  EXPECT_THAT(exact.Pairs[0].Paths, SizeIs(1)) << "a part that just fits has a place";
}

TEST(NfpRun, AnswersAllOrderedPairsInTheirOrder) {
  Job job = NfpJob({Polygon("l", kL), {.Id = "r", .Width = 2, .Height = 1}});
  job.Fixed.clear();
  job.Moving.clear();
  const Result result = run(job);
  std::string order;
  for (const NfpPair& pair : result.Pairs) order += pair.Fixed + pair.Moving + " ";
  EXPECT_EQ(order, "ll lr rl rr ");
  EXPECT_NEAR(AreaOf(result.Pairs[1]), AreaOf(result.Pairs[2]), 1e-3) << "the one mirrors the other";
  const Result read = ParseResult(ResultToJson(result));
  EXPECT_EQ(read, result);
  EXPECT_EQ(Verdict(job, read), "");
}

TEST(NfpRun, StopsBetweenPairsWithWhatIsThere) {
  Job job = NfpJob({Polygon("l", kL), {.Id = "r", .Width = 2, .Height = 1}});
  job.Fixed.clear();
  job.Moving.clear();
  const Result result = run(job, {.OnProgress = [](const Progress&) { return false; }});
  EXPECT_EQ(result.Status, ResultStatus::Stopped);
  ASSERT_THAT(result.Pairs, SizeIs(1));
  EXPECT_THAT(ResultToJson(result), HasSubstr("\"pairs\": ["));
  EXPECT_EQ(Verdict(job, ParseResult(ResultToJson(result))), "");
}

// A part a thousand times longer than wide, which the kernel cannot tell from a line.
TEST(NfpRun, KeepsPartsApartByTheirBoxesWhereTheKernelGivesUp) {
  const Job job = NfpJob({Polygon("needle", {{0, 0}, {1000, 0.01}, {1000, 0.02}}), Polygon("s", Square(0, 0, 10))});
  const Result result = run(job);
  EXPECT_EQ(result.Pairs[0].Quality, NfpQuality::Convex);
  EXPECT_NEAR(AreaOf(result.Pairs[0]), 1010 * 10.02, 1);
  EXPECT_THAT(result.Warnings, testing::ElementsAre(HasSubstr("lower quality")));
  EXPECT_EQ(Verdict(job, result), "");
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

TEST(NfpCheck, FindsWhatAResultGetsWrong) {
  const Job job = NfpJob({Polygon("l", kL), Polygon("s", Square(0, 0, 1))});
  const Result good = run(job);
  const std::pair<std::string, void (*)(Result&)> cases[] = {
      {"/status: ", [](Result& r) { r.Status = ResultStatus::TimeLimit; }},
      {"/status: ", [](Result& r) { r.Pairs.clear(); }},
      {"/nfp: ", [](Result& r) { std::swap(r.Pairs[0].Fixed, r.Pairs[0].Moving); }},
      {"/nfp/paths: has a coordinate", [](Result& r) { r.Pairs[0].Paths[0][0][0] += 3e-6; }},
      {"/nfp/paths: has a coordinate", [](Result& r) { r.Pairs[0].Paths[0][0][0] = 1e300; }},
      {"/nfp/paths: there is no polygon", [](Result& r) { r.Pairs[0].Paths.clear(); }},
      {"/nfp/paths: the paths overlap", [](Result& r) { std::ranges::reverse(r.Pairs[0].Paths[0]); }},
      {"/nfp/paths: the parts overlap",
       [](Result& r) {
         for (PolygonPoint& p : r.Pairs[0].Paths[0]) p[0] += 0.01;
       }},
      {"/nfp/paths: the moving part would fit", [](Result& r) { r.Pairs[0].Paths = {Square(-5, -5, 20)}; }},
      {"/layouts: ", [](Result& r) { r.Layouts.resize(1); }},
  };
  for (const auto& [message, spoil] : cases) {
    Result bad = good;
    spoil(bad);
    EXPECT_THAT(Verdict(job, bad), HasSubstr(message));
  }
  Result loose = good;
  loose.Pairs[0].Paths = {Square(-5, -5, 20)};
  loose.Pairs[0].Quality = NfpQuality::Convex;
  EXPECT_EQ(Verdict(job, loose), "") << "a reduced polygon may lose places";
  Job inside = job;
  inside.Inside = true;
  EXPECT_THAT(Verdict(inside, good), HasSubstr("sticks out"));
}

TEST(NfpForm, TablesAndRectangleFilesRefusePolygons) {
  const Job job = NfpJob({Polygon("l", kL)});
  EXPECT_EQ(FaultsOf([&] { PartsToCsv(job.Parts); }), "InputError: conflict /parts/0/outline");
  EXPECT_EQ(FaultsOf([&] { JobToRectText(job); }), "InputError: conflict /kind");
  EXPECT_EQ(FaultsOf([&] { PartsFromCsv("width,height,outline\n1,2,3\n", "d.csv", JobKind::Nfp); }),
            "InputError: unknown-key d.csv:1:outline");
}

}  // namespace
}  // namespace platenest
