#include "platenest/job/Convert.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FaultText.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::string RectFaults(const std::string& Text) {
  return FaultsOf([&] { JobFromRectText(Text, "d.txt"); });
}

std::string PartFaults(const std::string& Text, JobKind Kind = JobKind::Job) {
  return FaultsOf([&] { PartsFromCsv(Text, "d.csv", Kind); });
}

// A line whose width or height is 0 loses only these two numbers, and the rest is read as a new line. Sizes with six
// decimals multiply to areas with twelve: an area rounded to six decimals is no value.
TEST(RectText, OneSizeBecomesKindOneAndSeveralFill) {
  const auto part = [](const char* id, double width, double height, int amount, std::optional<double> value = {}) {
    return Part{.Id = id, .Width = width, .Height = height, .Amount = amount, .Value = value};
  };
  const std::tuple<std::string, JobKind, std::vector<Part>> cases[] = {
      {"1000 500\n300 200 60000 8\n\n", JobKind::One, {part("part-1", 300, 200, 8)}},
      {"\xEF\xBB\xBF 1000 500\r\n300 200 60000 8\r\n300\t200 500.5 +8",
       JobKind::Fill,
       {part("part-1", 300, 200, 8), part("part-2", 300, 200, 8, 500.5)}},
      {"1000 500\n0 9\n3 4 12 5\n7 0\n0", JobKind::One, {part("part-1", 3, 4, 5)}},
      {"1000 500 0.333333 3.333333 1.111110 2", JobKind::One, {part("part-1", 0.333333, 3.333333, 2)}},
  };
  for (const auto& [text, kind, parts] : cases) {
    const Job job = JobFromRectText(text, "d.txt");
    EXPECT_EQ(std::tuple(job.Kind, job.Plates[0].Width, job.Plates[0].Height), std::tuple(kind, 1000, 500)) << text;
    EXPECT_EQ(job.Parts, parts) << text;
  }
}

// The form with a third number in its first line shifts all that follows, and then an amount has decimals: it is
// refused rather than misread.
TEST(RectText, FaultsNameTheLine) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "InputError: range d.txt:1:width, range d.txt:1:height, entries d.txt"},
      {"100 50\n3 4 12 5\n6 7", "InputError: range d.txt:3:amount, range d.txt:3:area"},
      {"100 50\n3 4 12 5\n6 7 42\n\n", "InputError: range d.txt:3:amount"},
      {"100 50\n3 -4 12 5\n", "InputError: range d.txt:2:height"},
      {"100 50\n\n3 4 12 2000000\n", "LimitError: limit d.txt:3:amount"},
      {"1000.0 500.0 1\n300.0 200.0 60000.000000 8\n", "InputError: syntax d.txt:2:amount"},
      {"100 50\n3 4 12 5\xFF", "InputError: encoding d.txt"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(RectFaults(text), expected) << text;
}

TEST(RectText, WritingTellsWhatIsLost) {
  Job job = SmallJob();
  job.Kind = JobKind::Fill;
  job.Plates.resize(1);
  job.Parts[0].Id = "part-1";
  job.Parts[1] = {.Id = "part-2", .Width = 2.5, .Height = 1e6, .Amount = 7, .Value = 2.5};
  job.Plates[0].Id = "plate-1";
  const Converted plain = JobToRectText(job);
  EXPECT_EQ(plain.Text, "1000 500\n300 200 60000 3\n2.5 1000000 2.5 7\n");
  EXPECT_THAT(plain.Warnings, ElementsAre());
  EXPECT_EQ(JobFromRectText(plain.Text, ""), job);

  job.Gap = 4;
  job.Parts[0] = {.Id = "=", .Width = 300, .Height = 200, .Amount = std::nullopt, .Turn = Rotate::None};
  const Converted lossy = JobToRectText(job);
  EXPECT_THAT(lossy.Text, HasSubstr("300 200 60000 8\n"));
  EXPECT_THAT(lossy.Warnings, ElementsAre(StartsWith("the gap of 4 "), StartsWith("ids "), StartsWith("`rotate` none "),
                                          HasSubstr("with the amount 8")));
}

TEST(Csv, HeaderDecidesColumnsAndSeparator) {
  const std::vector<Part> expected = {
      {.Id = "a", .Width = 1.5, .Height = 2, .Amount = 3, .Turn = Rotate::None, .Value = 0.25, .Label = "x, \"y\"\nz"},
      {.Id = "part-2", .Width = 1000, .Height = 2, .Amount = 1},
      {.Id = "c", .Width = 7, .Height = 8, .Amount = std::nullopt}};
  const std::string comma =
      "id,width,height,amount,rotate,value,label\n"
      "a,1.5,2,3,none,.25,\"x, \"\"y\"\"\nz\"\n"
      "\n,1e3,2.0,,,,\n,,,,,,\n"
      " c , 7, 8 ,null,any,,";
  const std::string semicolon =
      "\xEF\xBB\xBFlabel;value;rotate;amount;height;width;id\r\n"
      "\"x, \"\"y\"\"\nz\";0,25;none;3;2,0;1,5;a\r\n"
      ";;;;2;1000;\r\n"
      ";;\"any\";null;8;7.0;c\r\n";
  EXPECT_EQ(PartsFromCsv(comma, "", JobKind::Job), expected);
  EXPECT_EQ(PartsFromCsv(semicolon, "", JobKind::Job), expected);
  EXPECT_EQ(PartsFromCsv("height,width\n2,3", "", JobKind::One)[0].Amount, std::nullopt);
}

TEST(Csv, FaultsNameLineAndColumn) {
  const std::string head = "id,width,height,amount,rotate\n";
  const std::pair<std::string, std::string> cases[] = {
      {"", "InputError: missing d.csv"},
      {"\nid,width,heigth,height,id\na,3\n", "InputError: unknown-key d.csv:2:heigth, duplicate-key d.csv:2:id"},
      {head + "\"a\nb\",1,2,3,any\nc,1,2,-1,any\n", "InputError: id d.csv:2:id, range d.csv:4:amount"},
      {head + "a,,x,2.5,left\n",
       "InputError: missing d.csv:2:width, type d.csv:2:height, type d.csv:2:amount, choice d.csv:2:rotate"},
      {head + "a,1,2,3,any\na,0,2,3,any\n", "InputError: range d.csv:3:width, duplicate-id d.csv:3:id"},
      {head + "a,1e7,2,1000001,any\n", "LimitError: limit d.csv:2:amount, limit d.csv:2:width"},
      {"width,height,amount\n1,1,600000\n1,1,600000\n", "LimitError: limit d.csv"},
      {head + "\"a,1,2,3,any\n", "InputError: syntax d.csv:2"},
      {head + "\xE9,1,2,3,any\n", "InputError: encoding d.csv"},
      {"width,height" + std::string(200, ','), "InputError: syntax d.csv:1"},
      {"width,height,radius\n3,4,\n3,4,5\n", "InputError: conflict d.csv:3:radius"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(PartFaults(text), expected) << text;
  EXPECT_EQ(PartFaults("id,radius\na,3\n", JobKind::Fill), "InputError: missing d.csv:1:width, missing d.csv:1:height");
  const std::pair<std::string, std::string> circles[] = {
      {"id,width\na,3\n", "InputError: missing d.csv:1:radius"},
      {"radius,width\n3,\n3,2\n", "InputError: conflict d.csv:3:width"},
      {"radius,value\n,2\n-1,\n", "InputError: missing d.csv:2:radius, range d.csv:3:radius, conflict d.csv:2:value"},
  };
  for (const auto& [text, expected] : circles) EXPECT_EQ(PartFaults(text, JobKind::Circles), expected) << text;
  std::string many = "width,height\n";
  for (int i = 0; i < limits::kPartKinds; ++i) many += "2,3\n";
  EXPECT_EQ(PartFaults(many), "none");
  EXPECT_EQ(PartFaults(many + "2,3\n"), "LimitError: limit d.csv");
}

TEST(Csv, PlatesAndJobsFollowTheirForms) {
  const std::vector<Plate> plates =
      PlatesFromCsv("width,height,count,cost,remnant,id\n9,8,null,,FALSE,\n7,6,2,1.5,1,rest\n", "p.csv");
  EXPECT_EQ(plates,
            (std::vector<Plate>{{"plate-1", 9, 8, std::nullopt, std::nullopt, false}, {"rest", 7, 6, 2, 1.5, true}}));
  EXPECT_EQ(FaultsOf([] { PlatesFromCsv("width,height,remnant\n1,1,maybe\n", "p.csv"); }),
            "InputError: type p.csv:2:remnant");

  const std::vector<Plate> single(plates.begin(), plates.begin() + 1);
  EXPECT_EQ(JobFromCsv("width,height\n1,2\n", "", single).Kind, JobKind::One);
  EXPECT_EQ(JobFromCsv("width,height\n1,2\n3,4\n", "", single).Kind, JobKind::Fill);
  EXPECT_EQ(JobFromCsv("width,height\n1,2\n", "", plates).Kind, JobKind::Job);
  EXPECT_EQ(FaultsOf([] { JobFromCsv("width,height\n1,2\n", "", {}); }), "InputError: entries /plates");
}

// Spreadsheets run what begins like a formula. The guard comes off again, whatever stood there before.
TEST(Csv, FormulasAreGuardedAndReadBackExactly) {
  std::vector<Part> parts;
  for (const char* id : {"=1+1", "-x", "'=a", "''@", "it's", "'", "\"q\"", " blank ", "a;b", "null", "1.5"}) {
    parts.push_back({.Id = id, .Width = 0.1, .Height = 1e6, .Amount = 2, .Label = id});
  }
  parts[1].Amount = std::nullopt;
  parts[2].Turn = Rotate::None;
  parts[2].Value = 1e-7;
  const std::string csv = PartsToCsv(parts);
  EXPECT_THAT(
      csv,
      StartsWith("id,width,height,amount,rotate,value,label\n'=1+1,0.1,1000000,2,any,,'=1+1\n'-x,0.1,1000000,null,"));
  EXPECT_EQ(PartsFromCsv(csv, "", JobKind::Job), parts);
}

TEST(Csv, ResultsGiveOneLineForEachPlacement) {
  const Result result = ParseResult(FileText(PLATENEST_TEST_DATA "/results/good/cabinet-written.json"));
  EXPECT_EQ(ResultToCsv(result),
            "layout,plate,copies,part,rotated,x,y,left,bottom,right,top\n"
            "1,MDF-18,4,side,true,570,10,10,10,570,730\n"
            "1,MDF-18,4,shelf,false,574,10.5,574,10.5,1138,550.5\n"
            "2,rest-3,1,side,false,10,10,10,10,730,570\n");
}

}  // namespace
}  // namespace platenest
