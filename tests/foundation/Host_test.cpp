#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "FakeClock.h"
#include "HostCapture.h"
#include "platenest/foundation/StopToken.h"

namespace platenest {
namespace {

using TCalls = std::vector<THostCapture::TCall>;
using TLines = std::vector<std::string>;

TEST(Host, ScopesNestLikeBracketsAndTokensBelongToTheirThread) {
  const THostCapture outer;
  const TFreeMemoryScope memory([] { return Int64{7}; });
  TFakeClock clock;
  clock.AdvanceMs(100);
  TStopToken token;
  const TStopTokenScope stop(&token);
  {
    const THostCapture inner;
    const TFreeMemoryScope broken([]() -> Int64 { throw std::runtime_error("memory"); });
    TFakeClock fast;
    fast.AdvanceAtEachReading(3);
    const TStopTokenScope none(nullptr);
    AppSys::CallProc("CmdLogln", "inside");
    TCerr::W("inside");
    EXPECT_EQ(inner.Calls(), (TCalls{{"CmdLogln", "inside"}}));
    EXPECT_EQ(inner.Warnings(), TLines{"inside"});
    EXPECT_EQ(FreePhysicalMemory(), 0) << "what a source raises goes no further";
    EXPECT_EQ(Clock::NowMs(), 3);
    token.RequestStop();
    EXPECT_FALSE(RunStopRequested());
  }
  AppSys::CallProc("CmdLogln", "outside");
  TCerr::W("outside");
  EXPECT_EQ(outer.Calls(), (TCalls{{"CmdLogln", "outside"}}));
  EXPECT_EQ(outer.Warnings(), TLines{"outside"});
  EXPECT_EQ(FreePhysicalMemory(), 7);
  EXPECT_EQ(Clock::NowMs(), 100);
  EXPECT_TRUE(RunStopRequested());
  std::thread([] { EXPECT_FALSE(RunStopRequested()); }).join();
}

TEST(Host, AWarningMayBeALongTextOrAFormatAndASinkThatThrowsDoesNotStopTheCaller) {
  const THostCapture host;
  const std::string longText(5000, 'x');
  TCerr::W(longText);
  TCerr::W("100%");  // no format without arguments
  TCerr::W("%d of %s, %.2f", 3, "six", 0.5);
  TCerr::W("%s", longText.c_str());
  EXPECT_EQ(host.Warnings(), (TLines{longText, "100%", "3 of six, 0.50", std::string(1023, 'x')}));
  const THostProcScope proc([](std::string_view, std::string_view) { throw std::runtime_error("host"); });
  const TWarningScope sink([](std::string_view) { throw 1; });
  AppSys::CallProc("CmdLogln", "x");
  TCerr::W("%s", "x");
}

TEST(Clock, TheStopwatchSumsItsSpans) {
  TFakeClock clock;
  TStopwatch watch;
  for (const double total : {5, 10}) {
    watch.Start();
    clock.AdvanceMs(5);
    EXPECT_EQ(watch.ElapsedMs(), total);
  }
  watch.Stop();
  clock.AdvanceMs(100);
  EXPECT_EQ(watch.ElapsedMs(), 10);
}

}  // namespace
}  // namespace platenest
