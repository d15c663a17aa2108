#include <cstdio>

#include "FillCase.h"
#include "Input.h"
#include "platenest/foundation/Errors.h"

// Up to eight sizes on one plate go through every nester. Nothing but TNestError may come out, and every layout must
// keep plate, gap and amounts.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace platenest;
  TInput bytes(data, size, 200);
  const test::TFillCase job = test::MakeFillCase(std::ref(bytes));
  for (const test::TFillMethod method : test::kFillMethods) {
    Try<TNestError>([&] {
      const std::string fault = test::FillFault(method, test::RunFillSmall(method, job), job);
      if (!fault.empty()) std::fprintf(stderr, "%s: %s: %s\n", NameOf(method), fault.c_str(), TextOf(job).c_str());
      Require(fault.empty());
    });
  }
  return 0;
}
