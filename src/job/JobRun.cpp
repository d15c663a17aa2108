#include "JobRun.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Assembly.h"
#include "JobColumns.h"
#include "JobOffcut.h"
#include "JobRepeat.h"
#include "JobRounds.h"
#include "JobSearch.h"
#include "JobStripValue.h"
#include "JobVerdict.h"
#include "platenest/foundation/Random.h"
#include "platenest/job/JobErrors.h"

namespace platenest::detail {

namespace {

// Shares of the time that is left when a phase of auto begins.
constexpr double kRepeatShare = 0.08;
constexpr double kFirstRoundsShare = 0.2;
constexpr double kStripValueShare = 0.15;
constexpr double kColumnsShare = 0.35;
// Where sizes have many copies on average, layouts repeat, which is what columns are good at.
constexpr double kManyCopies = 4;
constexpr double kColumnsShareOfMany = 0.75;
// What a proof on the cost leaves for the emptiest plate, and for fewer plates where these are not proved.
constexpr double kOffcutShare = 0.1;
constexpr double kMostOffcutSeconds = 1;
constexpr double kFewerShare = 0.3;
constexpr double kMostFewerSeconds = 3;
constexpr int kFewerCycles = 4;
constexpr int kCycles = 60;
constexpr int kDeterministicCycles = 4;

double ColumnsShare(const TJobSizes& Sizes) {
  double copies = 0;
  for (const TJobPart& part : Sizes.Parts) copies += part.IsUnlimited ? 0 : part.Amount;
  return copies >= kManyCopies * Size(Sizes.Parts) ? kColumnsShareOfMany : kColumnsShare;
}

// Where bounds on the cost ended the search early: a moment for fewer plates, and for an emptier last one.
void SearchBeyondProof(TJobSearch& Search, TSkyTrials& Trials) {
  if (!Search.IsBest() || Search.Merit().Plates <= 1 || Search.Control().IsOver()) return;
  Search.SeekFewer();
  const bool isFewest = Search.HasFewestPlates();
  std::optional<double> seconds = Search.SecondsOf(isFewest ? kOffcutShare : kFewerShare);
  if (seconds) seconds = std::min(*seconds, isFewest ? kMostOffcutSeconds : kMostFewerSeconds);
  const TTimeShare share(seconds);
  ImproveInCycles(Search, Trials, isFewest ? 1 : kFewerCycles, nullptr);
}

void SearchByAll(TJobSearch& Search, TSkyTrials& Trials) {
  RepeatNested(Search, Trials, kRepeatShare);
  std::vector<TJobLayouts> found;
  {
    const TTimeShare share(Search.SecondsOf(kFirstRoundsShare));
    ImproveInCycles(Search, Trials, 1, &found);
  }
  if (Search.Sizes().TurnsAll()) {
    NestByStripValues(Search, Trials, kStripValueShare, /*Must=*/false, found);
    found.push_back(Search.Best());
    NestByColumns(Search, Trials, ColumnsShare(Search.Sizes()), found);
  }
  ImproveInCycles(Search, Trials, Search.Run().Deterministic ? kDeterministicCycles : kCycles, nullptr);
  SearchBeyondProof(Search, Trials);
}

void SearchBy(const std::string& Method, TJobSearch& Search) {
  TSkyTrials trials(Search.Sizes());
  RepeatQuickly(Search, trials);
  std::vector<TJobLayouts> found;
  if (Method == "repeat") RepeatNested(Search, trials, 1);
  if (Method == "svc") NestByStripValues(Search, trials, 1, /*Must=*/true, found);
  if (Method == "cg") NestByColumns(Search, trials, 1, found);
  if (Method == "auto") SearchByAll(Search, trials);
}

}  // namespace

void RequireJobMethod(const Job& AJob) {
  const std::string& method = AJob.Run.Method;
  if (method != "svc" && method != "cg") return;
  for (int i = 0; i < Size(AJob.Parts); ++i) {
    const Part& part = AJob.Parts[i];
    if (part.Turn == Rotate::Any || part.Width == part.Height) continue;
    throw InputError({"conflict", "/options/method",
                      "`" + method + "` turns parts, but /parts/" + std::to_string(i) + " asks for `rotate` none", ""});
  }
}

void AnswerJob(const Job& AJob, TRunControl& Control, Result& AResult) {
  AResult.Bounds = JobBoundsOf(AJob);
  const TRandomScope random(AJob.Run.Seed);
  TJobSearch search(AJob, Control, AResult.Bounds);
  if (!search.Sizes().Parts.empty()) SearchBy(AJob.Run.Method, search);
  if (!search.HasAnswer()) {
    search.RaiseTrouble();
    if (Control.StoppedByCaller()) throw StoppedError({"stopped", "", "stopped before any result", ""});
  } else {
    const std::string& named = AJob.Run.Method;
    if (named != "auto" && named != search.Method())
      AResult.Warnings.push_back(named + " found nothing better than the answer of " + search.Method());
    AResult.Run.Method = search.Method();
    AResult.Layouts = search.TakeLayouts();
    for (Layout& layout : AResult.Layouts) MeasureInto(layout, AJob.Gap, AJob.Margin);
    const TStopTokenScope scope(Control.CallersToken());  // the time may be over, the caller's stop goes on
    WidenOffcuts(AJob, search.Sizes(), search.Best(), AResult.Layouts);
  }
  Account(AJob, AResult);
  // What an answer has refuted is no estimate any more.
  if (search.Estimate())
    AResult.Estimate = {"plates", "cg", std::min<double>(*search.Estimate(), AResult.Total.Plates)};
  JudgeJob(AJob, AResult);
  if (!AResult.Proved) NoteInterruption(Control, AResult);
}

}  // namespace platenest::detail
