#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "PlateJobs.h"
#include "ShapeJobs.h"

namespace platenest {
namespace {

using testing::HasSubstr;
using TPlace = nlohmann::json::json_pointer;

Job OneJob() {
  return PlateJob(JobKind::One, {Sheet(1000, 500)}, {Rect(300, 200, 9)}, 5);
}

Job FillJob() {
  Job job = PlateJob(JobKind::Fill, {Sheet(1000, 700)},
                     {Rect(313, 207, 5), Rect(171, 133, 9, Rotate::Any, 3e4), Rect(97, 83, 14), Rect(2000, 10, 1)}, 3);
  job.Margin = {5, 6, 7, 8};
  return With(job, "smart");
}

// Two plates of a stock, one layout on both, a remnant, a part too large and parts that found no plate.
Job WholeJob() {
  Job job = PlateJob(JobKind::Job, {Sheet(1000, 500, 2, 3), Sheet(300, 200, 1, 0, true)},
                     {Rect(700, 480, 3), Rect(280, 190, 5), Rect(1100, 10, 1)}, 4);
  job.Name = "sample";
  return With(job, "repeat");
}

// Two sheets that hold 3 x 2 of the discs each, of which seven are asked for.
Job CirclesJob() {
  Job job = PlateJob(JobKind::Circles, {Sheet(80, 52, 2)}, {{.Id = "disc", .Amount = 7, .Radius = 10}}, 2);
  job.Margin = {5, 5, 5, 5};
  return With(job, "pattern");
}

Job ShapeJob(JobKind Kind) {
  const bool isArray = Kind == JobKind::Array;
  Job job = PlateJob(Kind, {}, {Polygon("l", kL), Polygon("s", Square(0, 0, 10))});
  if (Kind == JobKind::Nfp) job.Fixed = {"l"};
  if (Kind == JobKind::Nfp) job.Moving = {"s"};
  if (Kind != JobKind::Nfp) job.PartId = isArray ? "l" : "s";
  if (Kind == JobKind::Label) job.Label = LabelSize{2, job.Offset = 1};
  if (Kind == JobKind::Sucker) job.Radius = 2;
  if (isArray) job.Direction = Along::X;
  return job;
}

// Another value of the same type; numbers become less, so that a gap or margin is not merely kept more generously.
nlohmann::json Changed(const nlohmann::json& Value) {
  if (Value.is_boolean()) return !Value.get<bool>();
  if (Value.is_number_integer()) return Value.get<Int64>() - 1;
  if (Value.is_number()) return Value.get<double>() * (1 - 1e-3) - 1e-3;
  if (Value.is_string()) return Value.get<std::string>() + "x";
  return 1;  // a null
}

std::string VerdictOnText(const Job& AJob, const std::string& Text) {
  try {
    return Verdict(AJob, ParseResult(Text));
  } catch (const JobError& error) {
    return error.Faults().front().Place;
  }
}

// Every value that a result states about itself is changed alone. It must be found where it stands, but for what makes
// sums wrong, or the text is no result any more. What may be chosen is left out.
TEST(CheckResult, FindsEachValueThatIsWrong) {
  const std::set<std::string> chosen = {"/array/second/0", "/label/found", "/label/margin"};
  for (const Job& job : {OneJob(), FillJob(), WholeJob(), CirclesJob(), ShapeJob(JobKind::Nfp),
                         ShapeJob(JobKind::Array), ShapeJob(JobKind::Label)}) {
    const std::string text = ResultToJson(Answer(job));
    const nlohmann::json good = nlohmann::json::parse(text), values = good.flatten();
    for (const auto& [place, value] : values.items()) {
      if (place.starts_with("/run/") || place.starts_with("/warnings") || chosen.contains(place)) continue;
      nlohmann::json bad = good;
      bad[TPlace(place)] = Changed(value);
      const std::string verdict = VerdictOnText(job, bad.dump());
      const std::string parent = verdict.substr(0, verdict.substr(0, verdict.find(':')).rfind('/'));
      EXPECT_TRUE(!verdict.empty() && (place.starts_with(parent) || place.ends_with("/copies")))
          << place << " in " << text << ": " << verdict;
    }
  }
}

// Each value of a job is replaced by what it can never be.
TEST(ParseJob, RefusesEachValueThatIsWrongWhereItStands) {
  for (const Job& job : {OneJob(), FillJob(), WholeJob(), CirclesJob(), ShapeJob(JobKind::Nfp),
                         ShapeJob(JobKind::Array), ShapeJob(JobKind::Label), ShapeJob(JobKind::Sucker)}) {
    const nlohmann::json good = nlohmann::json::parse(JobToJson(job)), values = good.flatten();
    for (const auto& [place, value] : values.items())
      for (const nlohmann::json& wrong :
           {nlohmann::json::object(), nlohmann::json(-1e9), nlohmann::json(1e300), nlohmann::json("?")}) {
        if (value.is_string() && wrong.is_string() && (place == "/name" || place.ends_with("/id"))) continue;
        nlohmann::json bad = good;
        bad[TPlace(place)] = wrong;
        EXPECT_THAT(FaultsOf([&] { ParseJob(bad.dump()); }), HasSubstr(" " + place)) << wrong;
      }
  }
}

TEST(CheckJob, TellsWhatIsWrongAndWhere) {
  const std::tuple<Job, std::vector<std::pair<void (*)(Job&), std::string>>> cases[] = {
      {CirclesJob(),
       {{[](Job& j) { j.Parts[0].Radius = 5.1e5; }, "LimitError: limit /parts/0/radius"},
        {[](Job& j) { j.Parts[0].Radius = 4.9e-4; }, "LimitError: limit /parts/0/radius"},
        {[](Job& j) { j.Plates[0].Width = 1e6, j.Parts[0].Radius = 0.49; }, "LimitError: limit /parts/0/radius"},
        {[](Job& j) { j.Parts[0].Height = 20; }, "InputError: conflict /parts/0/height"},
        {[](Job& j) { j.Parts[0].Turn = Rotate::None; }, "InputError: conflict /parts/0/rotate"},
        {[](Job& j) { j.Parts[0].Value = 2; }, "InputError: conflict /parts/0/value"},
        {[](Job& j) { j.Parts[0].Outline = kL; }, "InputError: conflict /parts/0/outline"},
        {[](Job& j) { j.Parts[0] = SmallJob().Parts[0]; },
         "InputError: range /parts/0/radius, conflict /parts/0/width, conflict /parts/0/height"},
        {[](Job& j) { j.Parts.push_back({.Id = "b", .Radius = 4}); }, "InputError: conflict /options/method"},
        {[](Job& j) { j.Parts[0].Amount = j.Plates[0].Count = {}; }, "InputError: conflict /parts/0/amount"}}},
      {SmallJob(),
       {{[](Job& j) { j.Parts[0].Radius = 3; }, "InputError: conflict /parts/0/radius"},
        {[](Job& j) { j.Inside = true, j.Moving = {"a"}; }, "InputError: conflict /moving, conflict /inside"}}},
      {ShapeJob(JobKind::Nfp),
       {{[](Job& j) {
           j.Fixed.insert(j.Fixed.end(), {"c", "l"});
         },
         "InputError: choice /fixed/1, duplicate-id /fixed/2"},
        {[](Job& j) { j.Moving = {"c"}; }, "InputError: choice /moving"},
        {[](Job& j) { j.Gap = 1; }, "InputError: conflict /gap"},
        {[](Job& j) { j.Plates = SmallJob().Plates; }, "InputError: entries /plates"},
        {[](Job& j) { j.Quality = static_cast<NfpQuality>(4); }, "InputError: choice /quality"},
        {[](Job& j) { j.Run.Method = "strip"; }, "InputError: choice /options/method"},
        {[](Job& j) { j.Parts.resize(1), j.Inside = true, j.Moving = {}; }, "InputError: entries /parts"},
        {[](Job& j) { j.Parts[0].Outline = j.Parts[1].Outline = Disc(2001); }, "LimitError: limit /parts/1"},
        {[](Job& j) {
           j.Parts.assign(400, j.Parts[1]);
           for (Part& part : j.Parts) part.Id = std::to_string(&part - j.Parts.data());
           j.Fixed = j.Moving = {};
         },
         "LimitError: limit /parts"}}},
      {ShapeJob(JobKind::Array),
       {{[](Job& j) { j.PartId = "another part"; }, "InputError: choice /part"},
        {[](Job& j) { j.PartId.clear(); }, "InputError: missing /part"},
        {[](Job& j) { j.Direction = static_cast<Along>(4); }, "InputError: choice /along"},
        {[](Job& j) { j.Direction = Along::Free, j.Separate = true; }, "InputError: conflict /separate"},
        {[](Job& j) { j.Parts[0].Outline = Disc(2001); }, "LimitError: limit /parts/0"}}},
      {ShapeJob(JobKind::Label),
       {{[](Job& j) { j.Offset = std::nan(""); }, "InputError: range /offset"},
        {[](Job& j) { j.InnerLines.assign(1, kL), j.InnerLines[0][2][1] = INFINITY; },
         "InputError: range /inner_lines/0/2/1"},
        {[](Job& j) { j.InnerLines.assign(10001, kL); }, "LimitError: limit /inner_lines"}}},
      {ShapeJob(JobKind::Sucker),
       {{[](Job& j) { j.Radius = 2e6; }, "LimitError: limit /radius"},
        {[](Job& j) { j.Gap = j.Offset = 1; }, "InputError: conflict /gap, conflict /offset"}}}};
  for (const auto& [good, changes] : cases) {
    EXPECT_EQ(CheckFaults(good), "none");
    for (const auto& [change, faults] : changes) {
      Job bad = good;
      change(bad);
      EXPECT_EQ(CheckFaults(bad), faults);
    }
  }
}

void MovePart(Result& AResult, double By) {
  Placement& place = AResult.Layouts[0].Placements[0];
  for (double* x : {&place.Trans[0], &place.Bounds[0], &place.Bounds[2]}) *x += By;
}

void MovePath(Result& AResult, double By) {
  for (PolygonPoint& p : AResult.Pairs[0].Paths[0]) p[0] += By;
}

// What no single value shows, in the result or in what the job asks for. The tolerance is granted once: a gap or a
// plate stated a little wrong does not add another one.
TEST(CheckResult, TellsWhatIsWrongAndWhere) {
  using TChange = std::function<void(Job&, Result&)>;
  Job half = OneJob();
  half.Parts[0].Amount = 2;
  const std::tuple<Job, std::vector<std::pair<const char*, TChange>>> cases[] = {
      {OneJob(),
       {{"/kind", [](Job&, Result& r) { r.Kind = JobKind::Job; }},
        {"/gap", [](Job&, Result& r) { r.Gap -= 1e-7; }},
        {"/layouts/0/width", [](Job&, Result& r) { r.Layouts[0].Width += 1e-7; }},
        {"/layouts/0: ", [](Job&, Result& r) { MovePart(r, -0.001); }},
        {"/layouts/0: ", [](Job&, Result& r) { MovePart(r, 0.001); }},
        {"/status: should be ", [](Job&, Result& r) { r.Status = ResultStatus::Partial; }}}},
      {half,  // is not taken for complete
       {{"/status: ",
         [](Job& j, Result& r) {
           j.Parts[0].Amount = r.Parts[0].Amount = {};
           r.Proved = (r.Bounds.pop_back(), false);
         }}}},
      {FillJob(),
       {{"/summary/value: is missing", [](Job&, Result& r) { r.Total.Value.reset(); }},
        {"/parts/3/reason: should be too_large", [](Job&, Result& r) { r.Parts[3].Reason = "left_by_method"; }},
        {"/parts/3/reason: is not a known reason", [](Job&, Result& r) { r.Parts[3].Reason = "lost"; }}}},
      {WholeJob(),
       {{"/layouts/1/copies: ", [](Job&, Result& r) { r.Layouts[1].Copies = 0; }},
        {"/layouts/0/placements/0/rotated: ",
         [](Job& j, Result& r) {
           j.Parts[1].Turn = Rotate::None;
           r.Layouts[0].Placements[0] = {"part-2", true, {190, 0}, {0, 0, 190, 280}};
         }},
        {"/plates/0/used: ", [](Job& j, Result& r) { j.Plates[0].Count = r.Plates[0].Count = 1; }},
        {"/parts/1/placed: ", [](Job& j, Result& r) { j.Parts[1].Amount = r.Parts[1].Amount = 4; }},
        {"/parts/2/reason: ", [](Job&, Result& r) { r.Parts[2].Reason = "no_stock"; }},
        {"/estimate/value: ", [](Job&, Result& r) { r.Estimate = {"plates", "cg", std::nan("")}; }}}},
      {CirclesJob(),
       {{"/layouts/0: ", [](Job&, Result& r) { r.Layouts[0].Circles[1].Center[0] -= 1e-3; }},
        {"/layouts/0: ", [](Job&, Result& r) { r.Layouts[0].Circles[0].Center[1] -= 1e-3; }},
        {"/layouts/1/placements: is empty", [](Job&, Result& r) { r.Layouts[1].Circles.clear(); }},
        {"/layouts/1/placements: holds rectangles", [](Job&, Result& r) { r.Layouts[1].Placements.resize(1); }}}},
      {ShapeJob(JobKind::Nfp),
       {{"/status: ", [](Job&, Result& r) { r.Status = ResultStatus::TimeLimit; }},
        {"/status: ", [](Job&, Result& r) { r.Pairs.clear(); }},
        {"/margin: ", [](Job&, Result& r) { r.Margin[0] = 1; }},
        {"/layouts: ", [](Job&, Result& r) { r.Layouts.resize(1); }},
        {"/nfp/quality: ", [](Job&, Result& r) { r.Pairs[0].Quality = NfpQuality::Exact; }},
        {"/nfp/paths: has a coordinate", [](Job&, Result& r) { MovePath(r, 3e-6); }},
        {"/nfp/paths: has a coordinate", [](Job&, Result& r) { MovePath(r, 1e300); }},
        {"/nfp/paths: the parts overlap", [](Job&, Result& r) { MovePath(r, 0.01); }},
        {"/nfp/paths: the moving part sticks out", [](Job& j, Result&) { j.Inside = true; }},
        {"",
         [](Job&, Result& r) {  // a reduced polygon may lose places
           r.Pairs[0] = {"l", "s", NfpQuality::Convex, {Square(-15, -15, 30)}};
         }}}},
      {ShapeJob(JobKind::Array),
       {{"/array: the copy at ", [](Job&, Result& r) { r.Gap = 0.01; }},
        {"/array: a vector is too long", [](Job&, Result& r) { r.Array->Second[1] = 1e300; }},
        {"/array/first: ", [](Job&, Result& r) { std::swap(r.Array->First, r.Array->Second); }},
        {"/array: is missing", [](Job&, Result& r) { r.Array.reset(); }}}},
      {ShapeJob(JobKind::Label),
       {{"/label: the label with its margin does not", [](Job&, Result& r) { r.Label->Margin = 5; }},
        {"/label/margin: ", [](Job&, Result& r) { r.Label->Margin = 0.5; }},
        {"/sucker: ", [](Job&, Result& r) { r.Sucker.emplace(); }},
        {"/status: ", [](Job&, Result& r) { r.Status = ResultStatus::TimeLimit; }}}},
      {ShapeJob(JobKind::Sucker),
       {{"/sucker: the disc sticks out", [](Job&, Result& r) { r.Sucker->Center[0] = 1.9; }},
        {"/sucker: the centre lies outside", [](Job&, Result& r) { r.Sucker->Center[0] = -50; }}}}};
  for (const auto& [job, changes] : cases) {
    const Result good = Answer(job);
    for (const auto& [message, change] : changes) {
      Job asked = job;
      Result bad = good;
      change(asked, bad);
      const std::string verdict = Verdict(asked, bad);
      EXPECT_TRUE(*message == 0 ? verdict.empty() : verdict.starts_with(message)) << message << " is " << verdict;
    }
  }
}

}  // namespace
}  // namespace platenest
