// Any bytes as a table of parts and of plates: only the facade's errors may come out, and parts that are read are
// written and read back equal.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platenest/job/Convert.h"
#include "platenest/job/JobErrors.h"

using namespace platenest;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  for (const JobKind kind : {JobKind::Fill, JobKind::Circles}) {
    try {
      const std::vector<Part> parts = PartsFromCsv(text, "fuzz.csv", kind);
      if (PartsFromCsv(PartsToCsv(parts), "written.csv", kind) != parts) std::abort();
    } catch (const JobError&) {
    }
  }
  try {
    PlatesFromCsv(text, "fuzz.csv");
  } catch (const JobError&) {
  }
  return 0;
}
