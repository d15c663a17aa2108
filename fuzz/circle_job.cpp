#include "CircleCase.h"
#include "CircleJudge.h"
#include "JobTarget.h"

// A job of few circles goes through the facade by one of its methods.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace platenest;
  TInput bytes(data, size, 200);
  constexpr const char* methods[] = {"auto", "pattern", "pack"};
  const char* const method = methods[bytes.Next() % 3];
  test::TJobCase made = test::MakeCircleCase(std::ref(bytes));
  test::AskForCircles(made, method);
  AnswerAndJudge(made, 25, [](const auto& Case, const Result& AResult) { return test::CircleFault(Case, AResult); });
  return 0;
}
