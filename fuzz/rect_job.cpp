#include "JobJudge.h"
#include "JobTarget.h"

// A whole job of few copies goes through the facade by one of its methods.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace platenest;
  TInput bytes(data, size, 200);
  constexpr const char* methods[] = {"auto", "repeat", "svc", "cg"};
  const char* const method = methods[bytes.Next() % 4];
  test::TJobCase made = test::MakeJobCase(std::ref(bytes));
  test::AskFor(made.AJob, method);
  made.AJob.Run.MemoryLimit = Int64{64} << 20;
  AnswerAndJudge(made, 40, [](const auto& Case, const Result& AResult) { return test::JobFault(Case, AResult); });
  return 0;
}
