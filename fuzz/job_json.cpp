// Any bytes as a job and as a result: only the facade's errors may come out, and what is read is written and read back
// equal.
#include "Input.h"
#include "platenest/job/Job.h"
#include "platenest/job/JobErrors.h"
#include "platenest/job/Result.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace platenest;
  const std::string_view text = TextOf(data, size);
  Try<JobError>([&] {
    const Job job = ParseJob(text);
    CheckJob(job);
    Require(ParseJob(JobToJson(job)) == job);
  });
  Try<JobError>([&] {
    const Result result = ParseResult(text);
    Require(ParseResult(ResultToJson(result)) == result);
  });
  return 0;
}
