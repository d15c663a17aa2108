#include <cstdio>

#include "Input.h"
#include "JobJudge.h"
#include "platenest/job/Run.h"

// A whole job of few copies goes through the facade by one of its methods, with a counted clock, so that an input gives
// the same answer on every machine. Nothing may be raised, and the answer must pass the judge and the facade's checker.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace platenest;
  TInput bytes(data, size, 200);
  constexpr const char* methods[] = {"auto", "repeat", "svc", "cg"};
  const char* const method = methods[bytes.Next() % 4];
  test::TJobCase made = test::MakeJobCase([&bytes](int Count) {
    const int high = bytes.Next();
    return (Count > 256 ? high << 8 | bytes.Next() : high) % Count;
  });
  Job& job = made.AJob;
  constexpr int mostCopies = 40;
  for (Part& part : job.Parts)
    if (part.Amount && *part.Amount > mostCopies) {
      part.Amount = mostCopies;
      made.Sample.reset();
    }
  test::AskFor(job, method);
  job.Run.TimeLimit = 0.02;
  job.Run.Deterministic = true;
  job.Run.MemoryLimit = Int64{64} << 20;
  const Result result = run(job);
  std::string fault = test::JobFault(made, result);
  if (const std::vector<Fault> faults = CheckResult(job, result); fault.empty() && !faults.empty())
    fault = faults[0].Place + ": " + faults[0].Text;
  if (!fault.empty()) std::fprintf(stderr, "%s\n%s\n", fault.c_str(), JobToJson(job).c_str());
  Require(fault.empty());
  return 0;
}
