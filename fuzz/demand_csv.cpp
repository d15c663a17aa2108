// Any bytes as a table of parts and of plates: only the facade's errors may come out, and parts that are read are
// written and read back equal.
#include "Input.h"
#include "platenest/job/Convert.h"
#include "platenest/job/JobErrors.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace platenest;
  const std::string_view text = TextOf(data, size);
  for (const JobKind kind : {JobKind::Fill, JobKind::Circles})
    Try<JobError>([&] {
      const std::vector<Part> parts = PartsFromCsv(text, "fuzz.csv", kind);
      Require(PartsFromCsv(PartsToCsv(parts), "written.csv", kind) == parts);
    });
  Try<JobError>([&] { PlatesFromCsv(text, "fuzz.csv"); });
  return 0;
}
