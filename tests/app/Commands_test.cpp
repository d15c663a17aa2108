#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Process.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kJob =
    R"({"schema": "platenest-job/1", "name": "panels", "kind": "one", "gap": 5, "margin": 10,
        "plates": [{"id": "board", "width": 1000, "height": 700}], "parts": [{"id": "panel", "width": 300, "height": 200}]})";

std::string Replaced(std::string Text, const std::string& From, const std::string& To) {
  const std::size_t at = Text.find(From);
  EXPECT_NE(at, std::string::npos) << From;
  return at == std::string::npos ? Text : Text.replace(at, From.size(), To);
}

TEST(One, AnswersAJobFileAndTheAnswerPassesTheCheck) {
  const TempFolder folder;
  folder.Write("job.json", kJob);
  const Outcome one = Execute({"one", "job.json", "-o", "result.json", "--svg", "out/"}, folder.Path());
  EXPECT_EQ(one.Exit, 0) << one.Err;
  EXPECT_THAT(one.Err, HasSubstr("panels: complete, "));
  EXPECT_THAT(one.Err, HasSubstr("written    result.json, out/layout-001-x1.svg\n"));
  EXPECT_LE(std::count(one.Err.begin(), one.Err.end(), '\n'), 10 + 5) << "summary and a few improvements";
  const Result result = ParseResult(folder.Read("result.json"));
  EXPECT_EQ(result.Layouts.front().Placements.size(), 9U);

  const Outcome check = Execute({"check", "job.json", "result.json"}, folder.Path());
  EXPECT_EQ(check.Exit, 0);
  EXPECT_EQ(check.Out, "");
  EXPECT_EQ(check.Err, "OK: result.json is valid for job.json\n");
  EXPECT_EQ(Execute({"check", "job.json", "result.json", "--quiet"}, folder.Path()).Err, "");
}

TEST(One, GivesEqualBytesForEqualDeterministicRuns) {
  const std::vector<std::string> words = {"one",   "--plate", "2440x1220", "--part", "317x213",        "--gap",
                                          "3.175", "--quiet", "--seed",    "7",      "--deterministic"};
  const std::string first = Execute(words).Out;
  EXPECT_THAT(first, StartsWith("{"));
  EXPECT_THAT(first, testing::EndsWith("}\n"));
  std::vector<std::string> single = words;
  single.insert(single.end(), {"--threads", "1"});
  EXPECT_EQ(Execute(words).Out, first);
  EXPECT_EQ(Execute(single).Out, first);
}

TEST(Check, FaultsStandAtTheirPlaceInTheResult) {
  const TempFolder folder;
  folder.Write("job.json", kJob);
  Result result = ParseResult(Execute({"one", "job.json", "--quiet"}, folder.Path()).Out);
  result.Layouts[0].Placements[2].Trans[0] += 1;
  folder.Write("moved.json", ResultToJson(result));
  const Outcome moved = Execute({"check", "job.json", "moved.json"}, folder.Path());
  EXPECT_EQ(moved.Exit, 1);
  EXPECT_THAT(moved.Err, HasSubstr("platenest: error: moved.json: /layouts/0/placements/2/"));

  Start start;
  start.Words = {"check", "job.json", "-", "--json-progress"};
  start.Folder = folder.Path();
  const Outcome json = Execute(start, ResultToJson(result));
  EXPECT_EQ(json.Exit, 1);
  EXPECT_THAT(json.Err, HasSubstr(R"("pointer":"/layouts/0/placements/2/)"));
}

TEST(Check, TakesTheOptionsThatWonInTheRun) {
  const TempFolder folder;
  folder.Write("job.json", kJob);
  EXPECT_EQ(Execute({"one", "job.json", "--gap", "0", "-o", "r.json", "--quiet"}, folder.Path()).Exit, 0);
  EXPECT_EQ(Execute({"check", "job.json", "r.json"}, folder.Path()).Exit, 1);
  EXPECT_EQ(Execute({"check", "job.json", "r.json", "--gap", "0"}, folder.Path()).Exit, 0);
}

TEST(Check, NamesTheFileThatIsWrong) {
  const TempFolder folder;
  folder.Write("job.json", kJob);
  folder.Write("result.json", "{}");
  folder.Write("bad.json", Replaced(kJob, "\"gap\": 5", "\"gap\": \"5\""));
  const Outcome result = Execute({"check", "job.json", "result.json"}, folder.Path());
  EXPECT_EQ(result.Exit, 3);
  EXPECT_THAT(result.Err, StartsWith("platenest: error: result.json: "));
  const Outcome job = Execute({"check", "bad.json", "result.json"}, folder.Path());
  EXPECT_EQ(job.Exit, 3);
  EXPECT_THAT(job.Err, StartsWith("platenest: error: bad.json: /gap: "));
}

TEST(Check, SaysWhenDemandIsLeft) {
  const TempFolder folder;
  folder.Write("job.json", Replaced(kJob, "\"height\": 200", "\"height\": 200, \"amount\": 50"));
  EXPECT_EQ(Execute({"one", "job.json", "-o", "r.json", "--quiet"}, folder.Path()).Exit, 0);
  EXPECT_EQ(Execute({"check", "job.json", "r.json"}, folder.Path()).Exit, 0);
  EXPECT_EQ(Execute({"check", "job.json", "r.json", "--require-all"}, folder.Path()).Exit, 1);
}

TEST(Convert, TurnsARectangleFileIntoAJobAndBack) {
  const TempFolder folder;
  folder.Write("demand.txt", "2440 1220\r\n300 200 60000 12\r\n0 0\r\n");
  EXPECT_EQ(Execute({"convert", "demand.txt", "job.json", "--gap", "4"}, folder.Path()).Exit, 0);
  const Job job = ParseJob(folder.Read("job.json"));
  EXPECT_EQ(job.Kind, JobKind::One);
  EXPECT_EQ(job.Gap, 4);
  EXPECT_EQ(job.Plates.front().Width, 2440);
  EXPECT_EQ(job.Parts.front().Amount, 12);
  EXPECT_EQ(Execute({"convert", "job.json", "back.txt"}, folder.Path()).Exit, 0);
  EXPECT_EQ(Execute({"convert", "back.txt", "again.json", "--gap", "4"}, folder.Path()).Exit, 0);
  EXPECT_EQ(folder.Read("again.json"), folder.Read("job.json"));
}

TEST(Convert, TurnsTablesIntoJobs) {
  const TempFolder folder;
  folder.Write("demand.csv", "id;width;height;amount\nside;720,5;560;24\nshelf;564;540;60\n");
  folder.Write("plates.csv", "id,width,height,count\nMDF,2800,2070,6\nrest,1200,600,1\n");
  EXPECT_EQ(Execute({"convert", "demand.csv", "fill.json", "--plate", "2800x2070"}, folder.Path()).Exit, 0);
  EXPECT_EQ(ParseJob(folder.Read("fill.json")).Kind, JobKind::Fill);
  EXPECT_EQ(ParseJob(folder.Read("fill.json")).Parts.front().Width, 720.5);
  EXPECT_EQ(Execute({"convert", "demand.csv", "job.json", "--plates", "plates.csv"}, folder.Path()).Exit, 0);
  EXPECT_EQ(ParseJob(folder.Read("job.json")).Kind, JobKind::Job);
  EXPECT_EQ(Execute({"convert", "job.json", "parts.csv"}, folder.Path()).Exit, 0);
  EXPECT_THAT(folder.Read("parts.csv"), HasSubstr("side,720.5,560,24"));
}

TEST(Convert, FaultsNameLineAndColumnAndLeaveTheFormerFile) {
  const TempFolder folder;
  folder.Write("demand.csv", "id,width,height,amount\nside,720,560,2.5\n");
  folder.Write("written.txt", "2440.000000 1220.000000 1\n300.000000 200.000000 60000.000000 12\n");
  folder.Write("job.json", "former");
  const Outcome table = Execute({"convert", "demand.csv", "job.json", "--plate", "9x9"}, folder.Path());
  EXPECT_EQ(table.Exit, 3);
  EXPECT_THAT(table.Err, StartsWith("platenest: error: demand.csv:2:amount: "));
  const std::string absolute = folder / "demand.csv";
  EXPECT_THAT(Execute({"convert", absolute, "job.json", "--plate", "9x9"}, folder.Path()).Err,
              StartsWith("platenest: error: " + absolute + ":2:amount: "));
  EXPECT_EQ(Execute({"convert", "written.txt", "job.json"}, folder.Path()).Exit, 3);
  EXPECT_EQ(folder.Read("job.json"), "former");
  EXPECT_THAT(folder.List(), ElementsAre("demand.csv", "job.json", "written.txt"));
}

TEST(Schema, IsPrintedForBothForms) {
  EXPECT_EQ(Execute({"schema", "job"}).Out, std::string(JobSchema()) + (JobSchema().ends_with('\n') ? "" : "\n"));
  EXPECT_THAT(Execute({"schema", "result"}).Out, HasSubstr("platenest-result/1"));
}

}  // namespace
}  // namespace platenest
