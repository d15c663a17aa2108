// Any bytes as a text rectangle file: only the facade's errors may come out, and what is read is a valid job whose text
// reads back with the same plate, sizes and amounts.
#include "Input.h"
#include "platenest/job/Convert.h"
#include "platenest/job/JobErrors.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace platenest;
  Try<JobError>([&] {
    const Job job = JobFromRectText(TextOf(data, size), "fuzz.txt");
    CheckJob(job);
    const Job again = JobFromRectText(JobToRectText(job).Text, "written.txt");
    const auto sameSize = [](const Part& A, const Part& B) {
      return A.Width == B.Width && A.Height == B.Height && A.Amount == B.Amount;
    };
    Require(again.Plates == job.Plates && std::ranges::equal(again.Parts, job.Parts, sameSize));
  });
  return 0;
}
