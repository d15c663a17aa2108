#include <algorithm>
#include <sstream>

#include "CommandTable.h"
#include "Process.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

// In a folder with the example jobs.
class Commands : public testing::Test {
 protected:
  Commands() { std::filesystem::copy(PLATENEST_EXAMPLES, Folder.Path()); }

  // Runs a line that succeeds and returns what it tells.
  std::string Told(const std::string& Line) const {
    const Outcome outcome = Folder.Run(Line);
    EXPECT_EQ(outcome.Exit, 0) << Line << "\n" << outcome.Err;
    return outcome.Err;
  }

  const TempFolder Folder;
};

TEST_F(Commands, OneAnswersAJobFileOrOptions) {
  EXPECT_THAT(
      Told("one panel.json -o result.json --svg out/"),
      AllOf(HasSubstr("shelf panels: complete, "), HasSubstr("written    result.json, out/layout-001-x1.svg\n")));
  EXPECT_EQ(Told("check panel.json result.json"), "OK: result.json is valid for panel.json\n");
  const std::string two = "one --plate 100x100 --part 60x60 --amount 2";
  ExpectCases(Folder, {{0, two, "unplaced   1 part ("},
                       {1, two + " --require-all", "unplaced   1 part ("},
                       {0, "one --plate 100x100 --part 60x60 --require-all", "complete, 1 part on 1 plate"}});
}

// A table goes before the parts of a job file, in the run and in the check of its answer.
TEST_F(Commands, FillTakesATableOrAJobFile) {
  Folder.Write("demand.csv",
               "id;width;height;amount;rotate;value\nside;62,5;50;2;none;10\n</svg>;30;25;9;;2\nwide;130;2;;;\n");
  Folder.Write("bad.csv", "width,height,amount\n3,4,5\n3,4,-5\n");
  Folder.Write(
      "job.json",
      R"({"schema": "platenest-job/1", "name": "two", "kind": "fill", "plates": [{"width": 125, "height": 100}],
                   "parts": [{"width": 100, "height": 100}]})");
  EXPECT_THAT(Told("fill --plate 125x100 --parts demand.csv -o r.json --csv r.csv --svg out/"),
              AllOf(HasSubstr("\n  value      36\n  bounds     value at most "), HasSubstr("unplaced   2 parts (")));
  EXPECT_THAT(Folder.Read("out/layout-001-x1.svg"), HasSubstr("data-part=\"&lt;/svg&gt;\""));
  EXPECT_THAT(Folder.Read("r.csv"), HasSubstr("1,plate-1,1,side,false,"));
  ExpectCases(Folder,
              {{0, "fill job.json --parts demand.csv --method smart -o s.json", "partial, "},
               {0, "check job.json s.json --parts demand.csv", "OK: s.json"},
               {1, "check job.json s.json", "s.json: /"},
               {1, "fill job.json --parts demand.csv --require-all", "partial, "},
               {2, "fill --plate 125x100", "fill takes a JOB, or --plate and --parts; see"},
               {2, "fill --plate 125x0 --parts demand.csv", "--plate: height must be above 0"},
               {2, "fill job.json --part 3x3", "--part: has no meaning for fill"},
               {2, "fill job.json --method strips", "--method: this version fills by the methods"},
               {3, "one job.json", "job.json: /kind: must be `one`"},
               {3, "fill --plate 125x100 --parts bad.csv", "bad.csv:3:amount: must be a whole number of at least 1"},
               {5, "fill job.json --parts none.csv", "none.csv: "}});
}

TEST_F(Commands, JobTakesTablesOrAJobFile) {
  Folder.Write("plates.csv", "id,width,height,count,cost,remnant\nboard,1000,500,2,3,\nrest,300,200,1,0,true\n");
  Folder.Write("demand.csv", "id;width;height;amount;rotate\nside;700;480;3;\nshelf;280;190;5;none\nlong;1100;9;1;\n");
  const std::string tables = " --plates plates.csv --parts demand.csv";
  EXPECT_THAT(Told("job order.json --margin 0 --time-limit 0.3 -o r.json --svg out/" + tables),
              AllOf(HasSubstr(", 7 parts on 3 plates\n  use        "),
                    HasSubstr(" %, plates cost 6\n  bounds     area at most "),
                    HasSubstr("unplaced   2 parts (1 no_stock, 1 too_large)\n"),
                    HasSubstr("written    r.json, out/layout-001-x1.svg and 1 more\n")));
  EXPECT_THAT(Folder.Read("out/layout-002-x2.svg"), HasSubstr("data-part=\"side\""));
  ExpectCases(Folder,
              {{0, "check order.json r.json --margin 0" + tables, "OK: r.json"},
               {1, "check order.json r.json --margin 0 --parts demand.csv", "r.json: /layouts/0/plate: names no plate"},
               {1, "job --gap 4 --time-limit 0.3 --require-all" + tables, "unplaced   2 parts"},
               {0, "job --plate 1000x500 --parts demand.csv --method repeat", " on 3 plates\n"},
               {2, "job --parts demand.csv", "job takes a JOB, or --plates or --plate and --parts; see"},
               {2, "job order.json --plate 9x9", "--plate: cannot stand for all of the job's 3 plates"},
               {2, "job --method svc" + tables, "--method: `svc` turns parts, but /parts/1 asks for"},
               {5, "job --parts demand.csv --plates none.csv", "none.csv: "}});
}

TEST_F(Commands, CirclesTakeARadiusATableOrAJobFile) {
  Folder.Write("demand.csv", "id;radius;amount;label\nlid;60,5;4;\n</svg>;12;9;\nwide;300;;\n");
  const std::string given = " --plate 500x300 --gap 0 --margin 0 --parts demand.csv";
  EXPECT_THAT(
      Told("circles --plate 1000x600 --radius 40 --gap 3 -o r.json --svg out/"),
      AllOf(HasSubstr(" circles on 1 plate\n  use        "), HasSubstr("\n  bounds     count at most 98 (oler)"),
            HasSubstr(" mm between the nearest two circles\n")));
  EXPECT_THAT(Folder.Read("out/layout-001-x1.svg"), HasSubstr("<circle data-part=\"part-1\""));
  EXPECT_THAT(Told("circles discs.json" + given + " --time-limit 1 -o s.json --csv s.csv --svg out/"),
              HasSubstr("unplaced   1 circle (too_large)\n"));
  EXPECT_THAT(Folder.Read("s.csv"), StartsWith("layout,plate,copies,part,x,y,radius\n1,coil,1,"));
  EXPECT_THAT(Folder.Read("out/layout-001-x1.svg"), HasSubstr("data-part=\"&lt;/svg&gt;\""));
  ExpectCases(Folder,
              {{0, "circles --plate 100x100 --radius 40 --amount 3", "complete, 3 circles on 3 plates"},
               {0, "circles --plate 600x800 --radius 10 --amount 100000 --time-limit 1", "most 100000 (demand)"},
               {0, "circles --plate 0.7x0.7 --radius 0.05", "clearance  0.000000 mm"},
               {0, "circles --plate 2x1 --radius 0.15 --gap 0.004 --units m", "offcut     0.426 x 0.088 m\n"},
               {0, "convert demand.csv c.json --plate 500x300", ""},
               {0, "check discs.json s.json" + given, "OK: s.json"},
               {1, "check discs.json s.json", "s.json: /"},
               {1, "circles c.json --time-limit 1 --require-all", "unplaced   1 circle"},
               {0, "circles c.json --method pack --time-limit 1", "13 circles on 1 plate"},
               {2, "circles --plate 9x9", "circles takes a JOB, or --plates or --plate and --radius or --parts; see"},
               {2, "circles --plate 9x9 --radius 0", "--radius: must be above 0, found 0"},
               {2, "circles --plate 9x9 --radius 1 --csv -", "--csv: cannot share standard output with the result"},
               {2, "circles flanges.json --radius 9", "--radius: cannot stand for all of the job's 6 parts"},
               {2, "circles flanges.json --method pattern", "--method: \"pattern\" lays circles of one size"},
               {2, "circles flanges.json --method dominant", "--method: must be one of auto, pattern, pack: "},
               {2, "circles flanges.json --part 3x3", "--part: has no meaning for circles"}});
}

TEST_F(Commands, NfpAnswersPairs) {
  Folder.Write("job.json", R"({"schema": "platenest-job/1", "name": "../x", "kind": "nfp", "parts": [
      {"id": "plate", "outline": [[0, 0], [50, 0], [60, 40], [0, 40]], "holes": [[[20, 15], [25, 15], [25, 25]]]},
      {"id": "</svg>", "width": 10, "height": 5}]})");
  EXPECT_THAT(Told("nfp job.json -o all.json --svg out/ --quality exact"),
              AllOf(HasSubstr("../x: complete, 4 pairs\n  quality    at least exact\n"),
                    HasSubstr("written    all.json, out/nfp-001.svg and 3 more\n")));
  EXPECT_THAT(Folder.Read("out/nfp-002.svg"), HasSubstr("&lt;/svg&gt; around plate"));
  ExpectCases(Folder, {{0, "check job.json all.json --quality exact", "OK: "},
                       {0, "nfp job.json --inside --fixed plate -o inside.json", "complete, 1 pair\n"},
                       {0, "check job.json inside.json --inside --fixed plate", "OK: "},
                       {1, "check job.json inside.json", "inside.json: /"},
                       {2, "nfp job.json --fixed pate", "--fixed: names no part, found \"pate\", did you"},
                       {2, "nfp job.json --quality best", "--quality: must be convex, concave"}});
}

TEST_F(Commands, KindsOfOnePartAnswer) {
  EXPECT_THAT(Told("array l-shape.json --along y --separate --gap 2 -o a.json --svg out/"),
              AllOf(HasSubstr("rows of an angle: complete, two vectors\n  first      0.000, 92.000\n"),
                    HasSubstr("written    a.json, out/array-001.svg\n")));
  EXPECT_THAT(Folder.Read("out/array-001.svg"), HasSubstr("data-cell"));
  ExpectCases(Folder, {{0, "check l-shape.json a.json --along y --gap 2", "OK: "},
                       {1, "check l-shape.json a.json --gap 3", "/gap: "},
                       {2, "array l-shape.json --of k", "--of: names no part, found \"k\""},
                       {2, "array l-shape.json --separate", "--separate: goes with `along`"},
                       {2, "array l-shape.json --radius 3", "--radius: has no meaning for array"},
                       {3, "label l-shape.json", "l-shape.json: /kind: must be `label`"},
                       {2, "label cover-label.json --label 20x0", "--label: height must be above 0"},
                       {1, "label cover-label.json --offset 90", ": complete, no place for the label\n"},
                       {1, "sucker cover-gripper.json --radius 90 --svg out/", "no place for the gripper\n"}});
  EXPECT_THAT(Folder.Read("out/sucker-001.svg"), HasSubstr("no place for the gripper"));
}

TEST_F(Commands, CheckJudgesByTheOptionsThatWonInTheRun) {
  Told("one panel.json --gap 0 -o close.json");
  Told("one panel.json --amount 50 -o few.json");
  Result result = ParseResult(Folder.Run("one panel.json --quiet").Out);
  result.Layouts[0].Placements[2].Trans[0] += 1;
  Folder.Write("moved.json", ResultToJson(result));
  ExpectCases(Folder, {{1, "check panel.json moved.json", "platenest: error: moved.json: /layouts/0/placements/2/"},
                       {1, "check panel.json close.json", "platenest: error: close.json: /"},
                       {0, "check panel.json close.json --gap 0", "OK: "},
                       {1, "check panel.json few.json --amount 50 --require-all", "OK: "}});
  EXPECT_THAT(Folder.Run("check panel.json - --json-progress", ResultToJson(result)).Err,
              HasSubstr(R"("pointer":"/layouts/0/placements/2/)"));
}

TEST_F(Commands, ConvertTurnsRectanglesAndTablesIntoJobsAndBack) {
  Folder.Write("demand.txt", "2440 1220\r\n300 200 60000 12\r\n0 0\r\n");
  Folder.Write("demand.csv", "id;width;height;amount\nside;720,5;560;24\nshelf;564;540;60\n");
  Folder.Write("plates.csv", "id,width,height,count\nMDF,2800,2070,6\nrest,1200,600,1\n");
  for (const char* names :
       {"demand.txt one.json --gap 4", "one.json back.txt", "back.txt again.json --gap 4",
        "demand.csv fill.json --plate 2800x2070", "demand.csv job.json --plates plates.csv", "job.json parts.csv"})
    Told(std::string("convert ") + names);
  EXPECT_EQ(Folder.Read("again.json"), Folder.Read("one.json"));
  EXPECT_EQ(ParseJob(Folder.Read("one.json")).Kind, JobKind::One);
  EXPECT_EQ(ParseJob(Folder.Read("fill.json")).Kind, JobKind::Fill);
  EXPECT_EQ(ParseJob(Folder.Read("job.json")).Kind, JobKind::Job);
  EXPECT_THAT(Folder.Read("parts.csv"), HasSubstr("side,720.5,560,24"));
}

TEST_F(Commands, ExamplesAreAnsweredByTheCommandOfTheirKind) {
  for (const std::string& file : Folder.List()) {
    const std::string kind(KindName(ParseJob(Folder.Read(file)).Kind));
    Told(kind + " " + file + " -o result.json --svg out/ --quiet");
    Told("check " + file + " result.json --quiet");
  }
}

// Each page tells the command's options; its examples and those of the README run as they stand there, one after the
// other.
TEST_F(Commands, HelpPagesAreWholeAndExamplesRunAsWritten) {
  Folder.Write("demand.txt", "1000 500\n300 200 60000 8\n");
  Folder.Write("demand.csv", "id,width,height,amount\na,300,200,4\nb,450,120,2\n");
  Folder.Write("plates.csv", "id,width,height\nboard,2000,1000\n");
  const auto runLines = [this](const std::string& text, const std::string& mark) {
    std::istringstream page(text);
    int count = 0;
    for (std::string line; std::getline(page, line);) {
      if (!line.starts_with(mark)) continue;
      ++count;
      Told(line.substr(mark.size(), line.find('#') - mark.size()));
    }
    return count;
  };
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
    EXPECT_EQ(runLines(help.Out, "  platenest "), 2) << name;
  }
  EXPECT_EQ(runLines(Folder.Read(PLATENEST_README), "$ platenest "), 14);
  EXPECT_THAT(RunLine("--help").Out, HasSubstr("Exit codes:"));
  EXPECT_THAT(RunLine("--version").Out, testing::MatchesRegex("platenest [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

}  // namespace
}  // namespace platenest
