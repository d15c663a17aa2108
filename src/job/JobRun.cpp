#include "JobRun.h"

#include <string>
#include <utility>

#include "Assembly.h"
#include "JobRepeat.h"
#include "JobRounds.h"
#include "JobSearch.h"
#include "JobVerdict.h"
#include "platenest/foundation/Random.h"
#include "platenest/job/JobErrors.h"

namespace platenest::detail {

namespace {

constexpr double kRepeatShare = 0.1;
constexpr int kCycles = 60;
constexpr int kDeterministicCycles = 4;

void Search(TJobSearch& AllOf, const std::string& Method) {
  TSkyTrials trials(AllOf.Sizes());
  RepeatQuickly(AllOf, trials);
  const bool isAuto = Method == "auto";
  if (isAuto || Method == "repeat") RepeatNested(AllOf, trials, isAuto ? kRepeatShare : 1);
  if (isAuto) ImproveInCycles(AllOf, trials, AllOf.Run().Deterministic ? kDeterministicCycles : kCycles);
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
  if (!search.Sizes().Parts.empty()) Search(search, AJob.Run.Method);
  if (!search.HasAnswer()) {
    search.RaiseTrouble();
    if (Control.StoppedByCaller()) throw StoppedError({"stopped", "", "stopped before any result", ""});
  } else {
    AResult.Run.Method = search.Method();
    AResult.Layouts = search.TakeLayouts();
    for (Layout& layout : AResult.Layouts) MeasureInto(layout, AJob.Gap, AJob.Margin);
  }
  Account(AJob, AResult);
  JudgeJob(AJob, AResult);
  if (!AResult.Proved) NoteInterruption(Control, AResult);
}

}  // namespace platenest::detail
