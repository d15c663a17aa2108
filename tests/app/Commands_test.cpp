#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "CommandTable.h"
#include "Process.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kJob =
    R"({"schema": "platenest-job/1", "name": "panels", "kind": "one", "gap": 5, "margin": 10,
        "plates": [{"id": "board", "width": 1000, "height": 700}], "parts": [{"id": "panel", "width": 300, "height": 200}]})";

std::string TextOf(const std::filesystem::path& Path) {
  return (std::ostringstream() << std::ifstream(Path).rdbuf()).str();
}

std::vector<std::string> CopyExamples(const TempFolder& Folder) {
  for (const auto& entry : std::filesystem::directory_iterator(PLATENEST_EXAMPLES))
    Folder.Write(entry.path().filename().string(), TextOf(entry.path()));
  return Folder.List();
}

TEST(One, AnswersAJobFileAndTheAnswerPassesTheCheck) {
  const TempFolder folder;
  folder.Write("job.json", kJob);
  const Outcome one = folder.Run("one job.json -o result.json --svg out/");
  EXPECT_EQ(one.Exit, 0) << one.Err;
  EXPECT_THAT(one.Err, HasSubstr("panels: complete, "));
  EXPECT_THAT(one.Err, HasSubstr("written    result.json, out/layout-001-x1.svg\n"));
  EXPECT_EQ(ParseResult(folder.Read("result.json")).Layouts.front().Placements.size(), 9U);

  const Outcome check = folder.Run("check job.json result.json");
  EXPECT_EQ(check.Exit, 0);
  EXPECT_EQ(check.Out + check.Err, "OK: result.json is valid for job.json\n");
}

TEST(One, GivesEqualBytesForEqualDeterministicRuns) {
  const std::string line = "one --plate 2440x1220 --part 317x213 --gap 3.175 --quiet --seed 7 --deterministic";
  const std::string first = RunLine(line).Out;
  EXPECT_THAT(first, StartsWith("{"));
  EXPECT_EQ(RunLine(line + " --threads 1").Out, first);
}

TEST(Fill, TakesATableOrAJobFileAndTheAnswerPassesTheCheck) {
  const TempFolder folder;
  folder.Write("demand.csv",
               "id;width;height;amount;rotate;value\nside;62,5;50;2;none;10\n</svg>;30;25;9;;2\nwide;130;2;;;\n");
  folder.Write(
      "job.json",
      R"({"schema": "platenest-job/1", "name": "two", "kind": "fill", "plates": [{"width": 125, "height": 100}],
                   "parts": [{"width": 100, "height": 100}]})");
  const Outcome fill = folder.Run("fill --plate 125x100 --parts demand.csv -o r.json --csv r.csv --svg out/");
  EXPECT_EQ(fill.Exit, 0) << fill.Err;
  EXPECT_THAT(fill.Err, HasSubstr("\n  value      36\n  bounds     value at most "));
  EXPECT_THAT(fill.Err, HasSubstr("unplaced   2 parts ("));
  EXPECT_THAT(folder.Read("out/layout-001-x1.svg"), HasSubstr("data-part=\"&lt;/svg&gt;\""));
  EXPECT_THAT(folder.Read("r.csv"), HasSubstr("1,plate-1,1,side,false,"));

  // A table goes before the parts of a job file, in the run and in the check of its answer.
  EXPECT_EQ(folder.Run("fill job.json --parts demand.csv --method smart -o s.json").Exit, 0);
  const std::tuple<int, std::string, std::string> cases[] = {
      {0, "check job.json s.json --parts demand.csv", "OK: s.json"},
      {1, "check job.json s.json", "s.json: /"},
      {1, "fill job.json --parts demand.csv --require-all", "partial, "},
      {2, "fill --plate 125x100", "fill takes a JOB, or --plate and --parts; see"},
      {2, "fill --plate 125x0 --parts demand.csv", "--plate: height must be above 0"},
      {2, "fill job.json --part 3x3", "--part: has no meaning for fill"},
      {2, "fill job.json --html r.html", "--html: unknown option"},
      {2, "fill job.json --method strips", "--method: this version fills by the methods"},
      {2, "fill job.json --method raster --parts demand.csv", "--method: \"raster\" turns parts, but"},
      {3, "one job.json", "job.json: /kind: must be `one`"},
      {3, "fill --plate 125x100 --parts bad.csv", "error: bad.csv:3:amount: must be a whole number of at least 1"},
      {5, "fill job.json --parts none.csv", "none.csv"},
  };
  folder.Write("bad.csv", "width,height,amount\n3,4,5\n3,4,-5\n");
  for (const auto& [exit, line, message] : cases) {
    const Outcome outcome = folder.Run(line);
    EXPECT_EQ(outcome.Exit, exit) << line << outcome.Err;
    EXPECT_THAT(outcome.Err, HasSubstr(message)) << line;
  }
}

TEST(Job, TakesTablesOrAJobFileAndTheAnswerPassesTheCheck) {
  const TempFolder folder;
  CopyExamples(folder);
  folder.Write("plates.csv", "id,width,height,count,cost,remnant\nboard,1000,500,2,3,\nrest,300,200,1,0,true\n");
  folder.Write("demand.csv", "id;width;height;amount;rotate\nside;700;480;3;\nshelf;280;190;5;none\nlong;1100;9;1;\n");
  folder.Write("job.json", R"({"schema": "platenest-job/1", "kind": "job", "plates": [{"width": 9, "height": 9}],
                               "parts": [{"width": 9, "height": 9}]})");
  const std::string tables = " --plates plates.csv --parts demand.csv";
  const Outcome job = folder.Run("job --gap 4 --time-limit 0.3 -o r.json --svg out/" + tables);
  EXPECT_EQ(job.Exit, 0) << job.Err;
  EXPECT_THAT(job.Err, HasSubstr(", 7 parts on 3 plates\n  use        "));
  EXPECT_THAT(job.Err, HasSubstr(" %, plates cost 6\n  bounds     area at most "));
  EXPECT_THAT(job.Err, HasSubstr("unplaced   2 parts (1 no_stock, 1 too_large)\n"));
  EXPECT_THAT(job.Err, HasSubstr("written    r.json, out/layout-001-x1.svg and 1 more\n"));
  EXPECT_THAT(folder.Read("out/layout-002-x2.svg"), HasSubstr("data-part=\"side\""));
  const std::tuple<int, std::string, std::string> cases[] = {
      {0, "check job.json r.json --gap 4" + tables, "OK: r.json"},
      {1, "check job.json r.json --gap 4 --parts demand.csv", "r.json: /layouts/0/plate: names no plate"},
      {1, "job --gap 4 --time-limit 0.3 --require-all" + tables, "unplaced   2 parts"},
      {0, "job --plate 1000x500 --parts demand.csv --method repeat", " on 3 plates\n"},
      {2, "job --parts demand.csv", "job takes a JOB, or --plates or --plate and --parts; see"},
      {2, "job order.json --plate 9x9", "--plate: cannot stand for all of the job's 3 plates"},
      {2, "job --method svc" + tables, "--method: `svc` turns parts, but /parts/1 asks for"},
      {3, "job --parts demand.csv --plates demand.csv", "demand.csv:1"},
      {5, "job --parts demand.csv --plates none.csv", "none.csv"},
  };
  for (const auto& [exit, line, message] : cases) {
    const Outcome outcome = folder.Run(line);
    EXPECT_EQ(outcome.Exit, exit) << line << outcome.Err;
    EXPECT_THAT(outcome.Err, HasSubstr(message)) << line;
  }
}

TEST(Circles, TakeARadiusATableOrAJobFileAndTheAnswerPassesTheCheck) {
  const TempFolder folder;
  CopyExamples(folder);
  folder.Write("demand.csv", "id;radius;amount;label\nlid;60,5;4;\n</svg>;12;9;\nwide;300;;\n");
  folder.Write(
      "job.json",
      R"({"schema": "platenest-job/1", "kind": "circles", "plates": [{"width": 500, "height": 300, "count": null}],
                               "parts": [{"radius": 9}]})");
  const Outcome one = folder.Run("circles --plate 1000x600 --radius 40 --gap 3 -o r.json --svg out/");
  EXPECT_EQ(one.Exit, 0) << one.Err;
  EXPECT_THAT(one.Err, HasSubstr(" circles on 1 plate\n  use        "));
  EXPECT_THAT(one.Err, HasSubstr("\n  bounds     count at most 98 (oler)"));
  EXPECT_THAT(one.Err, HasSubstr(" mm between the nearest two circles\n"));
  EXPECT_THAT(folder.Read("out/layout-001-x1.svg"), HasSubstr("<circle data-part=\"part-1\""));
  const Outcome some =
      folder.Run("circles --plate 500x300 --parts demand.csv --time-limit 1 -o s.json --csv s.csv --svg out/");
  EXPECT_EQ(some.Exit, 0) << some.Err;
  EXPECT_THAT(some.Err, HasSubstr("unplaced   1 circle (too_large)\n"));
  EXPECT_THAT(folder.Read("s.csv"), StartsWith("layout,plate,copies,part,x,y,radius\n1,plate-1,1,"));
  EXPECT_THAT(folder.Read("out/layout-001-x1.svg"), HasSubstr("data-part=\"&lt;/svg&gt;\""));
  const std::tuple<int, std::string, std::string> cases[] = {
      {0, "circles --plate 100x100 --radius 40 --amount 3", "complete, 3 circles on 3 plates"},
      {0, "circles --plate 600x800 --radius 10 --amount 100000 --time-limit 1", "count at most 100000 (demand)"},
      {0, "circles --plate 0.7x0.7 --radius 0.05", "clearance  0.000000 mm"},
      {0, "circles --plate 2x1 --radius 0.15 --gap 0.004 --units m", "offcut     0.426 x 0.088 m\n"},
      {0, "check job.json s.json --parts demand.csv", "OK: s.json"},
      {1, "check job.json s.json", "s.json: /"},
      {1, "circles job.json --parts demand.csv --time-limit 1 --require-all", "unplaced   1 circle"},
      {0, "convert demand.csv c.json --plate 500x300", ""},
      {0, "circles c.json --method pack --time-limit 1", "13 circles on 1 plate"},
      {2, "circles --plate 9x9", "circles takes a JOB, or --plates or --plate and --radius or --parts; see"},
      {2, "circles --plate 9x9 --radius 0", "--radius: must be above 0, found 0"},
      {2, "circles --plate 9x9 --radius 1 --csv -", "--csv: cannot share standard output with the result"},
      {2, "circles flanges.json --radius 9", "--radius: cannot stand for all of the job's 6 parts"},
      {2, "circles flanges.json --method pattern", "--method: \"pattern\" lays circles of one size"},
      {2, "circles flanges.json --method dominant", "\"dominant\" is not available in this version"},
      {2, "circles flanges.json --part 3x3", "--part: has no meaning for circles"},
      {3, "fill discs.json", "/kind: must be `fill`"},
      {3, "fill --plate 500x300 --parts demand.csv", "demand.csv:1:width: is missing in the header"},
  };
  for (const auto& [exit, line, message] : cases) {
    const Outcome outcome = folder.Run(line);
    EXPECT_EQ(outcome.Exit, exit) << line << outcome.Err;
    EXPECT_THAT(outcome.Err, HasSubstr(message)) << line;
  }
}

constexpr const char* kShapes =
    R"({"schema": "platenest-job/1", "name": "../x", "kind": "nfp", "parts": [
        {"id": "plate", "outline": [[0, 0], [50, 0], [60, 20], [60, 40], [0, 40]], "holes": [[[20, 15], [25, 15], [25, 25]]]},
        {"id": "</svg>", "width": 10, "height": 5}]})";

TEST(Nfp, AnswersPairsDrawsThemAndTheAnswersPassTheCheck) {
  const TempFolder folder;
  folder.Write("job.json", kShapes);
  const Outcome all = folder.Run("nfp job.json -o all.json --svg out/ --quality exact");
  EXPECT_EQ(all.Exit, 0) << all.Err;
  EXPECT_THAT(all.Err, HasSubstr("../x: complete, 4 pairs\n  quality    at least exact\n"));
  EXPECT_THAT(all.Err, HasSubstr("written    all.json, out/nfp-001.svg and 3 more\n"));
  EXPECT_THAT(folder.Read("out/nfp-002.svg"), HasSubstr("&lt;/svg&gt; around plate"));
  EXPECT_EQ(folder.Run("check job.json all.json --quality exact").Exit, 0);

  const Outcome inside = folder.Run("nfp job.json --inside --fixed plate -o inside.json");
  EXPECT_EQ(inside.Exit, 0) << inside.Err;
  EXPECT_EQ(ParseResult(folder.Read("inside.json")).Pairs.at(0).Paths.size(), 2U);
  EXPECT_EQ(folder.Run("check job.json inside.json --inside --fixed plate").Exit, 0);
  EXPECT_EQ(folder.Run("check job.json inside.json").Exit, 1);
  const Outcome mistyped = folder.Run("nfp job.json --fixed pate");
  EXPECT_EQ(mistyped.Exit, 2);
  EXPECT_THAT(mistyped.Err, HasSubstr("--fixed: names no part, found \"pate\", did you"));
  EXPECT_THAT(folder.Run("nfp job.json --quality best").Err, HasSubstr("--quality: must be convex, concave"));
  EXPECT_EQ(folder.Run("one job.json").Exit, 3);
}

TEST(PartKinds, AnswerDrawAndPassTheCheck) {
  const TempFolder folder;
  CopyExamples(folder);
  const Outcome array = folder.Run("array l-shape.json --along y --separate --gap 2 -o a.json --svg out/");
  EXPECT_EQ(array.Exit, 0) << array.Err;
  EXPECT_THAT(array.Err, HasSubstr("rows of an angle: complete, two vectors\n  first      0.000, 92.000\n"));
  EXPECT_THAT(array.Err, HasSubstr("written    a.json, out/array-001.svg\n"));
  EXPECT_THAT(folder.Read("out/array-001.svg"), HasSubstr("data-cell"));
  const std::tuple<int, std::string, std::string> cases[] = {
      {0, "check l-shape.json a.json --along y --gap 2", "OK: "},
      {1, "check l-shape.json a.json --gap 3", "/gap: "},
      {2, "array l-shape.json --of k", "--of: names no part, found \"k\""},
      {2, "array l-shape.json --separate", "--separate: goes with `along`"},
      {2, "array l-shape.json --radius 3", "--radius: has no meaning for array"},
      {3, "label l-shape.json", "/kind: must be `label`"},
      {2, "label cover-label.json --label 20x0", "--label: height must be above 0"},
      {1, "label cover-label.json --offset 90", ": complete, no place for the label\n"},
      {1, "sucker cover-gripper.json --radius 90 --svg out/", "no place for the gripper\n"},
  };
  for (const auto& [exit, line, message] : cases) {
    const Outcome outcome = folder.Run(line);
    EXPECT_EQ(outcome.Exit, exit) << line;
    EXPECT_THAT(outcome.Err, HasSubstr(message)) << line;
  }
  EXPECT_THAT(folder.Read("out/sucker-001.svg"), HasSubstr("no place for the gripper"));
}

TEST(Check, JudgesTheResultForTheJobAndTheOptionsThatWonInTheRun) {
  const TempFolder folder;
  folder.Write("job.json", kJob);
  EXPECT_EQ(folder.Run("one job.json --gap 0 -o close.json --quiet").Exit, 0);
  EXPECT_EQ(folder.Run("one job.json --amount 50 -o few.json --quiet").Exit, 0);
  Result result = ParseResult(folder.Run("one job.json --quiet").Out);
  result.Layouts[0].Placements[2].Trans[0] += 1;
  const std::string moved = ResultToJson(result);
  folder.Write("moved.json", moved);
  const std::tuple<std::string, int, std::string> cases[] = {
      {"moved.json", 1, "platenest: error: moved.json: /layouts/0/placements/2/"},
      {"- --json-progress", 1, R"("pointer":"/layouts/0/placements/2/)"},
      {"close.json", 1, "platenest: error: close.json: /"},
      {"close.json --gap 0", 0, "OK: "},
      {"few.json --amount 50 --require-all", 1, "OK: "},
  };
  for (const auto& [words, exit, message] : cases) {
    const Outcome outcome = folder.Run("check job.json " + words, words[0] == '-' ? moved : "");
    EXPECT_EQ(outcome.Exit, exit) << words;
    EXPECT_THAT(outcome.Err, HasSubstr(message)) << words;
  }
}

TEST(Convert, TurnsRectanglesAndTablesIntoJobsAndBack) {
  const TempFolder folder;
  folder.Write("demand.txt", "2440 1220\r\n300 200 60000 12\r\n0 0\r\n");
  folder.Write("demand.csv", "id;width;height;amount\nside;720,5;560;24\nshelf;564;540;60\n");
  folder.Write("plates.csv", "id,width,height,count\nMDF,2800,2070,6\nrest,1200,600,1\n");
  for (const char* names :
       {"demand.txt one.json --gap 4", "one.json back.txt", "back.txt again.json --gap 4",
        "demand.csv fill.json --plate 2800x2070", "demand.csv job.json --plates plates.csv", "job.json parts.csv"})
    EXPECT_EQ(folder.Run(std::string("convert ") + names).Exit, 0) << names;
  EXPECT_EQ(folder.Read("again.json"), folder.Read("one.json"));
  EXPECT_EQ(ParseJob(folder.Read("one.json")).Kind, JobKind::One);
  EXPECT_EQ(ParseJob(folder.Read("fill.json")).Kind, JobKind::Fill);
  EXPECT_EQ(ParseJob(folder.Read("job.json")).Kind, JobKind::Job);
  EXPECT_THAT(folder.Read("parts.csv"), HasSubstr("side,720.5,560,24"));
}

TEST(Examples, EachIsAnsweredByTheCommandOfItsKind) {
  const TempFolder folder;
  for (const std::string& file : CopyExamples(folder)) {
    const std::string kind(KindName(ParseJob(folder.Read(file)).Kind));
    EXPECT_EQ(folder.Run(kind + " " + file + " -o result.json --svg out/ --quiet").Exit, 0) << file;
    EXPECT_EQ(folder.Run("check " + file + " result.json --quiet").Exit, 0) << file;
  }
}

// Runs the lines of a text that begin with Mark, up to a comment, and tells how many there are.
int RunLines(const TempFolder& Folder, const std::string& Text, const std::string& Mark) {
  std::istringstream page(Text);
  int count = 0;
  for (std::string line; std::getline(page, line);) {
    if (!line.starts_with(Mark)) continue;
    ++count;
    const Outcome outcome = Folder.Run(line.substr(Mark.size(), line.find('#') - Mark.size()));
    EXPECT_EQ(outcome.Exit, 0) << line << "\n" << outcome.Err;
  }
  return count;
}

// Each page tells the command's options, and its examples run in their order, each as it stands there.
TEST(Help, PagesAreWholeAndTheirExamplesRunAsWritten) {
  const TempFolder folder;
  CopyExamples(folder);
  folder.Write("demand.txt", "1000 500\n300 200 60000 8\n");
  folder.Write("demand.csv", "id,width,height,amount\na,300,200,4\nb,450,120,2\n");
  folder.Write("plates.csv", "id,width,height\nboard,2000,1000\n");
  for (const CommandRow& command : CommandTable()) {
    const std::string name(command.Name);
    const Outcome help = RunLine(name + " --help");
    EXPECT_TRUE(help.Exit == 0 && help.Err.empty());
    EXPECT_THAT(help.Out, StartsWith("Usage: platenest " + name));
    for (const OptionRow& option : OptionTable()) {
      const bool isShown = help.Out.find("\n  " + std::string(option.Name) + " ") != std::string::npos;
      const auto rows = std::ranges::count_if(
          OptionTable(), [&](const OptionRow& row) { return row.Name == option.Name && Takes(command.Id, row); });
      EXPECT_EQ(isShown ? 1 : 0, rows) << name << " " << option.Name;
    }
    EXPECT_EQ(RunLines(folder, help.Out, "  platenest "), 2) << name;
  }
  EXPECT_EQ(RunLines(folder, TextOf(PLATENEST_README), "$ platenest "), 14);
  EXPECT_THAT(RunLine("--help").Out, HasSubstr("Exit codes:"));
  EXPECT_THAT(RunLine("--version").Out, testing::MatchesRegex("platenest [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

}  // namespace
}  // namespace platenest
