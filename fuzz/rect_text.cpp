// Any bytes as a text rectangle file: only the facade's errors may come out, and what is read is a valid job whose text
// reads back with the same plate, sizes and amounts.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platenest/job/Convert.h"
#include "platenest/job/JobErrors.h"

using namespace platenest;

namespace {

bool SameSizes(const Job& A, const Job& B) {
  if (A.Plates != B.Plates || A.Parts.size() != B.Parts.size()) return false;
  for (std::size_t i = 0; i < A.Parts.size(); ++i) {
    const Part& a = A.Parts[i];
    const Part& b = B.Parts[i];
    if (a.Width != b.Width || a.Height != b.Height || a.Amount != b.Amount) return false;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    const Job job = JobFromRectText(text, "fuzz.txt");
    CheckJob(job);
    const Converted written = JobToRectText(job);
    if (!SameSizes(JobFromRectText(written.Text, "written.txt"), job)) std::abort();
  } catch (const JobError&) {
  }
  return 0;
}
