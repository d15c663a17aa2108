#include "FillMethods.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>

#include "FillJob.h"
#include "Report.h"
#include "platenest/foundation/StopToken.h"

namespace platenest::bench {

namespace {

// Stops the nesters of this thread once the time is up, for its own lifetime.
class TDeadline {
 public:
  explicit TDeadline(double Seconds)
      : FScope(&FToken), FWatch([this, Seconds](const std::stop_token& end) {
          std::unique_lock lock(FMutex);
          FWake.wait_for(lock, end, std::chrono::duration<double>(Seconds), [] { return false; });
          FToken.RequestStop();
        }) {}
  bool Passed() const { return FToken.StopRequested(); }

 private:
  TStopToken FToken;
  TStopTokenScope FScope;
  std::mutex FMutex;
  std::condition_variable_any FWake;
  std::jthread FWatch;
};

// With the plate's axes exchanged and every size with them.
test::TFillCase Exchanged(test::TFillCase Case) {
  Case.Plate = TVRect2D::FromSize(Case.Plate.Height(), Case.Plate.Width());
  for (TNestRect& part : Case.Parts) part.BoundBox = TVRect2D::FromSize(part.BoundBox.Height(), part.BoundBox.Width());
  return Case;
}

TNestedRects WithoutTurned(const TNestedRects& Layout) {
  TNestedRects kept;
  for (const TNestedRect& item : Layout)
    if (!item.IsRotate) kept.push_back(item);
  return kept;
}

TNestedRects BestBigFirst(const test::TFillCase& Case, double Seconds, const TDeadline& Deadline) {
  TNestedRects best;
  for (int i = 0; i < Size(Case.Parts) && !Deadline.Passed(); ++i) {
    TNestedRects layout = test::RunFill(test::TFillMethod::BigFirst, Case, Seconds, i);
    if (!Case.CanTurn) layout = WithoutTurned(layout);
    if (test::WorthOf(layout, Case) > test::WorthOf(best, Case)) best = std::move(layout);
  }
  return best;
}

TNestedRects NestAlone(const std::string& Method, const test::TFillCase& Case, double Seconds) {
  const TDeadline deadline(Seconds);
  if (Method == "bigfirst") return BestBigFirst(Case, Seconds, deadline);
  for (const test::TFillMethod method : test::kFillMethods)
    if (Method == NameOf(method)) {
      const TNestedRects layout = test::RunFill(method, Case, Seconds);
      return Case.CanTurn ? layout : WithoutTurned(layout);
    }
  return {};
}

TNestedRects AskFacade(const test::TFillCase& Case, double Seconds, std::string& Fault) {
  const Job job = test::FillJobOf(Case, Seconds);
  const Result result = run(job);
  Fault = test::FirstFault(job, result);
  return test::LayoutOf(result, Case);
}

}  // namespace

bool Answers(const std::string& Method, const test::TFillCase& Case) {
  return Case.CanTurn || Method != "raster";
}

TFillAnswer AnswerFill(const std::string& Method, const test::TFillCase& Case, double Seconds, int Repeat) try {
  // The raster program exchanges the axes of tall plates, but not those of sizes that must not turn.
  const bool exchange = Method != "auto" && !Case.CanTurn && Case.Plate.Height() > Case.Plate.Width();
  const test::TFillCase fill = exchange ? Exchanged(Case) : Case;
  TFillAnswer answer;
  answer.Ms = MedianMs(Repeat, [&] {
    answer.Layout = Method == "auto" ? AskFacade(fill, Seconds, answer.Fault) : NestAlone(Method, fill, Seconds);
  });
  answer.Worth = test::WorthOf(answer.Layout, fill);
  if (answer.Fault.empty()) answer.Fault = test::FillFault(answer.Layout, fill);
  return answer;
} catch (const std::exception& error) {
  TFillAnswer failed;
  failed.Fault = std::string("raised ") + error.what();
  return failed;
}

}  // namespace platenest::bench
