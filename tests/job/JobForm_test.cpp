#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "PlateJobs.h"

namespace platenest {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

// A job with one part whose members are given.
std::string WithPart(const std::string& Members) {
  return R"({"schema":"platenest-job/1","kind":"job","plates":[{"width":1000,"height":500}],"parts":[{)" + Members +
         "}]}";
}

// A job whose members beyond schema, plates and parts are given.
std::string WithHead(const std::string& Members) {
  return R"({"schema":"platenest-job/1",)" + Members +
         R"(,"plates":[{"width":1000,"height":500}],"parts":[{"width":300,"height":200}]})";
}

std::string ParseFaults(const std::string& Json) {
  return FaultsOf([&] { ParseJob(Json); });
}

std::string ParseText(const std::string& Json) {
  return FirstText([&] { ParseJob(Json); });
}

TEST(JobForm, TestFilesAreRefusedOrReadBackAsWritten) {
  for (const auto& file : DataFiles("jobs/bad")) EXPECT_NE(ParseFaults(FileText(file)), "none") << file;
  for (const auto& file : DataFiles("jobs/good")) {
    const std::string text = FileText(file);
    const Job job = ParseJob(text);
    const std::string written = JobToJson(job);
    EXPECT_EQ(ParseJob(written), job) << file;
    EXPECT_TRUE(written == text || !file.string().ends_with("-written.json")) << file << '\n' << written;
  }
}

TEST(JobForm, AbsentMembersTakeTheirDefaults) {
  EXPECT_EQ(ParseJob(WithHead(R"("kind":"one")")).Parts[0].Amount, std::nullopt);
  const Job fill = ParseJob(WithHead(R"("kind":"fill","margin":[1,2,3,4])"));
  EXPECT_EQ(std::tuple(fill.Parts[0].Amount, fill.Parts[0].Id, fill.Plates[0].Id), std::tuple(1, "part-1", "plate-1"));
  EXPECT_EQ(fill.Margin, (std::array<double, 4>{1, 2, 3, 4}));
  EXPECT_EQ(fill.Run, Options{});
}

TEST(JobForm, FaultsHaveTheirCodeAndPlace) {
  const std::string size = R"("width":3,"height":2)";
  const std::pair<std::string, std::string> cases[] = {
      {WithPart(size + R"(,"amont":3)"), "InputError: unknown-key /parts/0/amont"},
      {WithPart(size + R"(,"amount":3,"amount":3)"), "InputError: duplicate-key /parts/0/amount"},
      {WithPart(size + R"(,"a/b~":{"c":[{}]})"), "InputError: unknown-key /parts/0/a~1b~0"},
      {WithPart(R"("width":3)"), "InputError: missing /parts/0"},
      {WithPart(R"("width":0,"height":-0.0)"), "InputError: range /parts/0/width, range /parts/0/height"},
      {WithPart(size + R"(,"amount":1.5)"), "InputError: type /parts/0/amount"},
      {WithPart(size + R"(,"id":"")"), "InputError: id /parts/0/id"},
      {WithPart(size + R"(,"id":"a\u0085")"), "InputError: id /parts/0/id"},
      {WithPart(size + R"(},7,{"width":1)"), "InputError: type /parts/1, missing /parts/2"},
      {WithPart(size + R"(,"id":"x"},{"id":"x",)" + size), "InputError: duplicate-id /parts/1/id"},
      {WithHead(R"("kind":"job","margin":[1,2,"3",4,5])"), "InputError: type /margin/2, entries /margin"},
      {WithHead(R"("kind":"one","gap":1e999,"oops":1)"), "InputError: range /gap"},
      {"[]", "InputError: type "},
      {"{}", "InputError: missing , missing , missing "},
  };
  for (const auto& [json, expected] : cases) EXPECT_EQ(ParseFaults(json), expected) << json;
}

TEST(JobForm, TextsSayWhatIsWantedAndFound) {
  const std::string size = R"("width":3,"height":2)";
  const std::pair<std::string, std::string> cases[] = {
      {WithPart(size + R"(,"amount":-2)"), "must be a whole number of at least 1, found -2"},
      {WithPart(size + R"(,"amount":"many\n")"), R"(must be a whole number of at least 1, found "many\n")"},
      {WithPart(R"("width":3,"heigth":2)"), "is no key of this form, did you mean `height`?"},
      {WithPart(R"("width":0.5e-3,"height":2)"), "must be at least 0.001, found 0.0005"},
      {WithHead(R"("kind":"one","options":{"method":"stirp"})"),
       R"(must be one of auto, strip, fiveblock, trim, found "stirp", did you mean `strip`?)"},
      {WithHead(R"("kind":"one","gap":-1e999)"), "must be a finite number, found -1e999"},
  };
  for (const auto& [json, expected] : cases) EXPECT_EQ(ParseText(json), expected) << json;
}

TEST(JobForm, WhatIsNoJsonIsToldByLineAndColumn) {
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"{\"schema\": \"platenest-job/1\",\n \"kind\" \"one\"}", "syntax", "is not JSON at line 2, column 13: "},
      {"", "syntax", "line 1, column 1"},
      {R"({"name":"\ud800"})", "syntax", "surrogate"},
      {"{\n\"name\":\"ab\xE9 c\"}", "encoding", "is not UTF-8 at line 2, column 11"},
      {"{\"name\":\"" + std::string(100000, 'x'), "syntax", ""},
  };
  for (const auto& [json, code, text] : cases) {
    EXPECT_EQ(ParseFaults(json), "InputError: " + code + " ");
    EXPECT_THAT(ParseText(json), AllOf(StartsWith("is not "), HasSubstr(text)));
    EXPECT_LT(ParseText(json).size(), 200u);
  }
}

TEST(JobForm, AtMostTwentyFaultsWithLimitsLast) {
  std::string parts;
  for (int i = 0; i < 15; ++i) parts += R"("width":2e6,"height":0,"x":1},{)";
  const std::string faults = ParseFaults(WithPart(parts + R"("width":1,"height":1)"));
  EXPECT_THAT(faults, StartsWith("InputError: unknown-key /parts/0/x, "));
  EXPECT_EQ(std::count(faults.begin(), faults.end(), ','), JobError::kMaxFaults - 1);
  EXPECT_THAT(faults, EndsWith("range /parts/4/height"));
  EXPECT_EQ(ParseFaults(WithPart(R"("width":2e6,"height":0)")),
            "InputError: range /parts/0/height, limit /parts/0/width");
  EXPECT_EQ(ParseFaults(WithPart(R"("width":2e6,"height":1)")), "LimitError: limit /parts/0/width");
}

// Each pair: at the limit, one beyond it.
TEST(JobForm, LimitsHoldExactly) {
  const std::string size = R"("width":3,"height":2)";
  const auto times = [](int count, const std::string& text) {
    std::string all;
    while (count-- > 0) all += text;
    return all;
  };
  const auto parts = [&](int count) { return WithPart(size + times(count - 1, "},{" + size)); };
  const auto part = [&](const std::string& more) { return WithPart(size + more); };
  const auto nested = [&](int depth) { return WithPart(R"("x":)" + times(depth, "[") + times(depth, "]")); };
  const auto padded = [&](Int64 bytes) { return parts(1) + std::string(bytes - parts(1).size(), ' '); };
  const auto plates = [&](int count) {
    return parts(1).insert(parts(1).find(R"({"width":1000)"), times(count - 1, R"({"width":9,"height":9},)"));
  };
  const std::string id(limits::kIdCharacters - 1, 'x');

  const std::tuple<std::string, std::string, std::string> cases[] = {
      {parts(10000), parts(10001), "/parts"},
      {part(R"(,"amount":1000000)"), part(R"(,"amount":1000001)"), "/parts/0/amount"},
      {part(R"(,"id":"é)" + id + "\""), part(R"(,"id":"é)" + id + "x\""), "/parts/0/id"},
      {plates(limits::kPlateKinds), plates(limits::kPlateKinds + 1), "/plates"},
      {WithPart(R"("width":0.001,"height":1000)"), WithPart(R"("width":0.0009999,"height":1)"), "/parts/0/width"},
      {WithPart(R"("width":1,"height":1e6)"), WithPart(R"("width":1,"height":1000000.1)"), "/parts/0/height"},
      {WithPart(R"("width":1,"height":1e6)"), WithPart(R"("width":0.999999,"height":1e6)"), "/parts/0/width"},
      {WithHead(R"("kind":"job","options":{"threads":1024})"), WithHead(R"("kind":"job","options":{"threads":1025})"),
       "/options/threads"},
      {WithHead(R"("kind":"job","options":{"seed":18446744073709551615})"),
       WithHead(R"("kind":"job","options":{"seed":18446744073709551616})"), "/options/seed"},
      {padded(limits::kJobBytes), padded(limits::kJobBytes + 1), ""},
  };
  for (const auto& [good, bad, place] : cases) {
    EXPECT_EQ(ParseFaults(good), "none") << good.substr(0, 300);
    EXPECT_EQ(ParseFaults(bad), "LimitError: limit " + place) << bad.substr(0, 300);
  }
  EXPECT_THAT(ParseFaults(nested(29)), StartsWith("InputError"));  // below root, list and part
  EXPECT_EQ(ParseFaults(nested(30)), "LimitError: limit ");
  EXPECT_EQ(ParseFaults(std::string(10000000, '[')), "LimitError: limit ");
  EXPECT_THAT(ParseFaults(R"({"name":")" + std::string(100, '[') + R"(\"[[["})"), StartsWith("InputError: missing"));
}

// A wish to leave parts unturned is kept or refused, never dropped.
TEST(JobForm, KindsAndMethodsSayWhatTheyTake) {
  const std::string refused = "InputError: conflict /options/method";
  const std::string entries = "InputError: entries /plates, entries /parts";
  const std::tuple<JobKind, int, int, int, const char*, std::string> cases[] = {
      {JobKind::One, 1, 1, 1, "auto", "none"},       {JobKind::One, 2, 2, 0, "auto", entries},
      {JobKind::One, 1, 1, 1, "trim", refused},      {JobKind::Fill, 1, 2, 1, "smart", "none"},
      {JobKind::Fill, 2, 0, 0, "auto", entries},     {JobKind::Fill, 1, 2, 2, "rskf", "none"},
      {JobKind::Fill, 1, 2, 1, "rskf", refused},     {JobKind::Fill, 1, 2, 2, "strips", refused},
      {JobKind::Fill, 1, 2, 2, "bigfirst", refused}, {JobKind::Fill, 1, 2, 0, "bigfirst", "none"},
      {JobKind::Job, 2, 2, 0, "auto", "none"},       {JobKind::Job, 0, 0, 0, "auto", entries},
  };
  for (const auto& [kind, plates, parts, locked, method, expected] : cases) {
    Job job = With(SmallJob(), method);
    job.Kind = kind;
    job.Plates.resize(plates);
    job.Parts.resize(parts);
    for (int i = 0; i < locked; ++i) job.Parts[i].Turn = Rotate::None;
    EXPECT_EQ(CheckFaults(job), expected) << JobToJson(job);
  }
}

// What can be wrong only in a job built in code. What JSON cannot hold is refused by the writer at the same place.
TEST(JobForm, JobsBuiltInCodePassTheSameChecks) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  const std::tuple<void (*)(Job&), std::string, bool> cases[] = {
      {[](Job& job) { job.Parts[1].Id = "\xFF"; }, "InputError: encoding /parts/1/id", false},
      {[](Job& job) { job.Name = "\xC3"; }, "InputError: encoding /name", false},
      {[](Job& job) { job.Parts[0].Amount = -3; }, "InputError: range /parts/0/amount", true},
      {[](Job& job) { job.Margin[3] = nan; }, "InputError: range /margin/3", false},
      {[](Job& job) { job.Kind = static_cast<JobKind>(9); }, "InputError: choice /kind", true},
      {[](Job& job) { job.Run.Threads = -1; }, "InputError: range /options/threads", true},
      {[](Job& job) { job.Plates[1].Count = job.Parts[1].Amount = {}; }, "InputError: conflict /parts/1/amount", true},
  };
  for (const auto& [spoil, expected, isWritten] : cases) {
    Job job = SmallJob();
    spoil(job);
    EXPECT_EQ(CheckFaults(job), expected);
    EXPECT_EQ(FaultsOf([&] { JobToJson(job); }), isWritten ? "none" : expected);
  }
}

}  // namespace
}  // namespace platenest
