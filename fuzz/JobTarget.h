#pragma once

#include <cstdio>
#include <string>

#include "Input.h"
#include "JobCase.h"
#include "platenest/job/Run.h"

namespace platenest {

// Answers a job of few copies with a counted clock, so that an input gives the same answer on every machine. Nothing
// may be raised, and the answer must pass the judge and the facade's checker.
template <class TJudge>
void AnswerAndJudge(test::TJobCase Case, int MostCopies, TJudge FaultOf) {
  Job& job = Case.AJob;
  for (Part& part : job.Parts)
    if (part.Amount && *part.Amount > MostCopies) {
      part.Amount = MostCopies;
      Case.Sample.reset();
    }
  job.Run.TimeLimit = 0.02;
  job.Run.Deterministic = true;
  const Result result = run(job);
  std::string fault = FaultOf(Case, result);
  if (const std::vector<Fault> faults = CheckResult(job, result); fault.empty() && !faults.empty())
    fault = faults[0].Place + ": " + faults[0].Text;
  if (!fault.empty()) std::fprintf(stderr, "%s\n%s\n", fault.c_str(), JobToJson(job).c_str());
  Require(fault.empty());
}

}  // namespace platenest
