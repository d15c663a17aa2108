#include <cstdio>

#include "CircleCase.h"
#include "CircleJudge.h"
#include "Input.h"
#include "platenest/job/Run.h"

// A job of few circles goes through the facade by one of its methods, with a counted clock, so that an input gives the
// same answer on every machine. Nothing may be raised, and the answer must pass the judge and the facade's checker.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace platenest;
  TInput bytes(data, size, 200);
  constexpr const char* methods[] = {"auto", "pattern", "pack"};
  const char* const method = methods[bytes.Next() % 3];
  test::TJobCase made = test::MakeCircleCase([&bytes](int Count) {
    const int high = bytes.Next();
    return (Count > 256 ? high << 8 | bytes.Next() : high) % Count;
  });
  test::AskForCircles(made, method);
  Job& job = made.AJob;
  constexpr int mostCopies = 25;
  for (Part& part : job.Parts)
    if (part.Amount && *part.Amount > mostCopies) {
      part.Amount = mostCopies;
      made.Sample.reset();
    }
  job.Run.TimeLimit = 0.02;
  job.Run.Deterministic = true;
  const Result result = run(job);
  std::string fault = test::CircleFault(made, result);
  if (const std::vector<Fault> faults = CheckResult(job, result); fault.empty() && !faults.empty())
    fault = faults[0].Place + ": " + faults[0].Text;
  if (!fault.empty()) std::fprintf(stderr, "%s\n%s\n", fault.c_str(), JobToJson(job).c_str());
  Require(fault.empty());
  return 0;
}
