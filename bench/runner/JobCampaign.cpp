#include "JobCampaign.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <thread>

#include "CircleCase.h"
#include "CircleJudge.h"
#include "JobJudge.h"
#include "platenest/job/Run.h"

namespace platenest::bench {

namespace {

using TSteady = std::chrono::steady_clock;

double MsSince(TSteady::time_point Start) {
  return std::chrono::duration<double, std::milli>(TSteady::now() - Start).count();
}

// What is random, asked and judged.
struct TCampaignRules {
  std::vector<std::string> Methods;  // the first one is the quick one, which auto may not be worse than
  test::TJobCase (*Make)(unsigned Seed);
  void (*Ask)(test::TJobCase& Case, const std::string& Method);
  std::string (*Fault)(const test::TJobCase& Case, const Result& AResult);
  bool UsesThreads;  // then the number of threads changes from job to job, and must not change deterministic answers
};

const TCampaignRules kRectRules = {
    {"repeat", "svc", "cg", "auto"},
    test::MakeJobCase,
    [](test::TJobCase& Case, const std::string& Method) { test::AskFor(Case.AJob, Method); },
    test::JobFault,
    false};
const TCampaignRules kCircleRules = {
    {"pattern", "pack", "auto"}, test::MakeCircleCase, test::AskForCircles, test::CircleFault, true};

struct TJobAnswer {
  std::optional<Result> AResult;
  std::string Fault;
  double Ms = 0;
  double LateMs = 0;  // behind the time limit or the request to stop
};

// What differs on one thread.
std::string ThreadFault(const Job& AJob, const Result& AResult) {
  Job alone = AJob;
  alone.Run.Threads = 1;
  return ResultToJson(run(alone)) == ResultToJson(AResult) ? "" : "another answer on one thread";
}

// Stopped from another thread after that time; 0 for never.
TJobAnswer AnswerOf(const TCampaignRules& Rules, const test::TJobCase& Case, double StopMs) {
  TJobAnswer answer;
  StopToken stop;
  const TSteady::time_point start = TSteady::now();
  const std::jthread stopper([&stop, StopMs] {
    if (StopMs > 0) std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(StopMs));
    if (StopMs > 0) stop.RequestStop();
  });
  try {
    answer.AResult = run(Case.AJob, {.OnProgress = {}, .Stop = &stop});
  } catch (const StoppedError& error) {
    if (StopMs <= 0) answer.Fault = std::string("raised ") + error.what();
  } catch (const std::exception& error) {
    answer.Fault = std::string("raised ") + error.what();
  }
  answer.Ms = MsSince(start);
  const double limit = Case.AJob.Run.Deterministic ? 1e9 : Case.AJob.Run.TimeLimit * 1000;
  answer.LateMs = std::max(0.0, answer.Ms - (StopMs > 0 ? std::min(limit, StopMs) : limit));
  if (!answer.AResult || !answer.Fault.empty()) return answer;
  answer.Fault = Rules.Fault(Case, *answer.AResult);
  if (Rules.UsesThreads && Case.AJob.Run.Deterministic && StopMs <= 0 && answer.Fault.empty())
    answer.Fault = ThreadFault(Case.AJob, *answer.AResult);
  if (const std::vector<Fault> faults = CheckResult(Case.AJob, *answer.AResult); !faults.empty())
    answer.Fault += (answer.Fault.empty() ? "" : "; ") + faults[0].Place + ": " + faults[0].Text;
  return answer;
}

// Jobs that went wrong, where a person finds them.
class TFaultFolder {
 public:
  explicit TFaultFolder(std::string Folder) : FFolder(std::move(Folder)) {
    if (!FFolder.empty()) std::filesystem::create_directories(FFolder);
  }
  void Note(const std::string& Name, const Job& AJob) const {
    if (!FFolder.empty()) std::ofstream(FFolder + "/" + Name + ".json") << JobToJson(AJob);
  }
  void Forget(const std::string& Name) const {
    if (!FFolder.empty()) std::filesystem::remove(FFolder + "/" + Name + ".json");
  }

 private:
  std::string FFolder;
};

// The sample of a job that was made smaller is no longer one.
Job Smallest(const TCampaignRules& Rules, const Job& AJob) {
  const TSteady::time_point start = TSteady::now();
  return test::Shrunk(AJob, [&Rules, start](const Job& less) {
    return MsSince(start) < 30000 && !AnswerOf(Rules, {less, {}}, 0).Fault.empty();
  });
}

struct TTally {
  int Answers = 0, Complete = 0, Stopped = 0, Faults = 0, OverPromise = 0;
  double UsageSum = 0;
  std::vector<double> Ms, LateMs;
  std::string Slowest;

  void Add(const std::string& Name, const TJobAnswer& Answer, double PromiseMs) {
    if (Ms.empty() || Answer.Ms > std::ranges::max(Ms)) Slowest = Name;
    ++Answers;
    Stopped += !Answer.AResult;
    Complete += Answer.AResult && Answer.AResult->Status == ResultStatus::Complete;
    Faults += !Answer.Fault.empty();
    UsageSum += Answer.AResult ? Answer.AResult->Total.Usage : 0;
    OverPromise += Answer.LateMs > PromiseMs;
    Ms.push_back(Answer.Ms);
    LateMs.push_back(Answer.LateMs);
  }
  void Print(const std::string& Method) const {
    std::printf(
        "%-7s %5d answers, %d complete, %d without result, %d faults, usage %.4f, ms median %.1f worst %.1f (%s), late "
        "ms "
        "median %.1f p99 %.1f worst %.1f, %d later than promised\n",
        Method.c_str(), Answers, Complete, Stopped, Faults, UsageSum / std::max(1, Answers - Stopped),
        Quantile(Ms, 0.5), Quantile(Ms, 1), Slowest.c_str(), Quantile(LateMs, 0.5), Quantile(LateMs, 0.99),
        Quantile(LateMs, 1), OverPromise);
  }
};

class TCampaign {
 public:
  TCampaign(const TArguments& Arguments, const TCampaignRules& Rules)
      : FArguments(Arguments), FRules(Rules), FFolder(Arguments.Faults) {
    FMethods = Arguments.Method.empty() ? Rules.Methods : std::vector{Arguments.Method};
  }

  std::vector<TRow> Run() {
    for (int i = 0; i < FArguments.Pairs; ++i) RunSeed(static_cast<unsigned>(FArguments.Seed + i));
    for (const auto& [method, tally] : FTallies) tally.Print(method);
    std::printf("auto worse than %s alone: %d\n", FRules.Methods.front().c_str(), FWorse);
    return std::move(FRows);
  }

 private:
  void RunSeed(unsigned Seed) {
    std::mt19937 engine(Seed);
    std::optional<test::TJobWorth> quick;
    std::vector<Part> quickParts;
    for (const std::string& method : FMethods) {
      const double limitMs = FArguments.Seconds * 1000;
      const double stopMs = FArguments.Stops ? 0.1 + limitMs * static_cast<double>(engine() % 1000) / 1000 : 0;
      const TJobAnswer answer = RunMethod(Seed, method, stopMs);
      if (!answer.AResult || FArguments.Stops) continue;
      const test::TJobCase made = CaseOf(Seed, method);
      const test::TJobWorth worth = test::JobWorthOf(made.AJob, *answer.AResult);
      if (method == FRules.Methods.front()) {
        quick = worth;
        quickParts = made.AJob.Parts;
      }
      if (method != "auto" || quickParts != made.AJob.Parts || !test::IsWorse(worth, *quick)) continue;
      ++FWorse;
      std::printf("seed %u: auto is worse than %s alone: unplaced %g, %g, cost %g, %g, plates %d, %d, last %g, %g\n",
                  Seed, FRules.Methods.front().c_str(), worth.UnplacedArea, quick->UnplacedArea, worth.Cost,
                  quick->Cost, worth.Plates, quick->Plates, worth.LastUsage, quick->LastUsage);
    }
  }

  test::TJobCase CaseOf(unsigned Seed, const std::string& Method) const {
    test::TJobCase made = FRules.Make(Seed);
    FRules.Ask(made, Method);
    if (FRules.UsesThreads) made.AJob.Run.Threads = FArguments.Deterministic || Seed % 2 == 0 ? 4 : 1;
    made.AJob.Run.TimeLimit = FArguments.Seconds;
    made.AJob.Run.Seed = Seed;
    made.AJob.Run.Deterministic = FArguments.Deterministic;
    return made;
  }

  TJobAnswer RunMethod(unsigned Seed, const std::string& Method, double StopMs) {
    const test::TJobCase made = CaseOf(Seed, Method);
    FFolder.Note("running-" + Method, made.AJob);
    TJobAnswer answer = AnswerOf(FRules, made, StopMs);
    FFolder.Forget("running-" + Method);
    const double promise = StopMs > 0 ? 150 : std::max(150.0, 30 * FArguments.Seconds);
    const std::string name = Numbered("seed-", Seed) + "-" + Method;
    FTallies[Method].Add(name, answer, promise);
    if (answer.LateMs > promise) std::printf("%s: %.0f ms late\n", name.c_str(), answer.LateMs);
    if (!answer.Fault.empty()) {
      std::printf("%s: %s\n", name.c_str(), answer.Fault.c_str());
      FFolder.Note(name, made.AJob);
      if (!FArguments.Faults.empty()) FFolder.Note(name + "-small", Smallest(FRules, made.AJob));
    }
    std::fflush(stdout);
    FRows.push_back(RowOf(name, made, answer));
    return answer;
  }

  static TRow RowOf(const std::string& Name, const test::TJobCase& Case, const TJobAnswer& Answer) {
    TRow row;
    row.Id = Name;
    row.Result = Answer.AResult ? Answer.AResult->Total.Plates : 0;
    row.Best = Case.Sample ? Case.Sample->Plates : 0;
    row.Ms = Answer.Ms;
    row.Fault = Answer.Fault;
    row.Figures = {{"late_ms", Answer.LateMs}};
    return row;
  }

  const TArguments& FArguments;
  const TCampaignRules& FRules;
  const TFaultFolder FFolder;
  std::vector<std::string> FMethods;
  std::map<std::string, TTally> FTallies;
  std::vector<TRow> FRows;
  int FWorse = 0;
};

}  // namespace

std::vector<TRow> RunJobCampaign(const TArguments& Arguments) {
  return TCampaign(Arguments, Arguments.Suite == "circles-random" ? kCircleRules : kRectRules).Run();
}

}  // namespace platenest::bench
