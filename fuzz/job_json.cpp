// Any bytes as a job and as a result: only the facade's errors may come out, and what is read is written and read back
// equal.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platenest/job/Job.h"
#include "platenest/job/JobErrors.h"
#include "platenest/job/Result.h"

using namespace platenest;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    const Job job = ParseJob(text);
    CheckJob(job);
    if (ParseJob(JobToJson(job)) != job) std::abort();
  } catch (const JobError&) {
  }
  try {
    const Result result = ParseResult(text);
    if (ParseResult(ResultToJson(result)) != result) std::abort();
  } catch (const JobError&) {
  }
  return 0;
}
