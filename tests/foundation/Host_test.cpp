#include <gtest/gtest.h>

#include <atomic>
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

TEST(Host, DoorsWithoutASinkDoNothing) {
  AppSys::CallProc("CmdLogln", "nobody hears");
  TCerr::W("nobody hears");
  TCerr::W("%d", 1);
  EXPECT_GT(FreePhysicalMemory(), 0);
}

TEST(Host, TheInnermostScopeHearsAndTheOuterOneComesBack) {
  const THostCapture outer;
  TCerr::W("before");
  {
    const THostCapture inner;
    AppSys::CallProc("CmdLogln", "inside");
    TCerr::W("inside");
    EXPECT_EQ(inner.Calls(), (TCalls{{"CmdLogln", "inside"}}));
    EXPECT_EQ(inner.Warnings(), TLines{"inside"});
  }
  AppSys::CallProc("CmdLogln", "after");
  EXPECT_EQ(outer.Calls(), (TCalls{{"CmdLogln", "after"}}));
  EXPECT_EQ(outer.Warnings(), TLines{"before"});
}

TEST(Host, ScopesComeBackWhenTheirBlockThrows) {
  const THostCapture outer;
  const TFreeMemoryScope memory([] { return Int64{7}; });
  try {
    const THostCapture inner;
    const TFreeMemoryScope little([] { return Int64{1}; });
    throw std::runtime_error("out");
  } catch (const std::runtime_error&) {
  }
  TCerr::W("after");
  EXPECT_EQ(outer.Warnings(), TLines{"after"});
  EXPECT_EQ(FreePhysicalMemory(), 7);
}

TEST(Host, ASinkThatThrowsDoesNotStopTheCaller) {
  const THostProcScope proc([](std::string_view, std::string_view) { throw std::runtime_error("host"); });
  const TWarningScope sink([](std::string_view) { throw 1; });
  const TFreeMemoryScope memory([]() -> Int64 { throw std::runtime_error("memory"); });
  AppSys::CallProc("CmdLogln", "x");
  TCerr::W("x");
  TCerr::W("%s", "x");
  EXPECT_EQ(FreePhysicalMemory(), 0);
}

TEST(Host, AWarningMayBeALongTextOrAFormat) {
  const THostCapture host;
  const std::string longText(5000, 'x');
  TCerr::W(longText);
  TCerr::W("100%");  // no format without arguments
  TCerr::W("%d of %s, %.2f", 3, "six", 0.5);
  TCerr::W("%s", longText.c_str());
  EXPECT_EQ(host.Warnings(), (TLines{longText, "100%", "3 of six, 0.50", std::string(1023, 'x')}));
}

TEST(Host, ASinkMayOpenAScopeOfItsOwn) {
  TLines lines;
  const TWarningScope sink([&](std::string_view Line) {
    const TWarningScope quiet([](std::string_view) {});
    TCerr::W("lost");
    lines.emplace_back(Line);
  });
  TCerr::W("kept");
  TCerr::W("kept");
  EXPECT_EQ(lines, (TLines{"kept", "kept"}));
}

TEST(Clock, TheStopwatchSumsItsSpans) {
  TFakeClock clock;
  TStopwatch watch;
  clock.AdvanceMs(1);
  EXPECT_EQ(watch.ElapsedMs(), 0);
  watch.Start();
  clock.AdvanceMs(5);
  watch.Start();
  clock.AdvanceMs(5);
  EXPECT_EQ(watch.ElapsedMs(), 10);
  watch.Stop();
  clock.AdvanceMs(100);
  watch.Stop();
  EXPECT_EQ(watch.ElapsedMs(), 10);
  watch.Start();
  clock.AdvanceMs(2);
  EXPECT_EQ(watch.ElapsedMs(), 12);
  watch.Reset();
  EXPECT_FALSE(watch.IsRunning());
  EXPECT_EQ(watch.ElapsedMs(), 0);
}

TEST(Clock, ScopesNestAndComeBackWhenTheirBlockThrows) {
  TFakeClock outer;
  outer.AdvanceMs(100);
  try {
    TFakeClock inner;
    inner.AdvanceAtEachReading(3);
    EXPECT_EQ(Clock::NowMs(), 3);
    EXPECT_EQ(Clock::NowMs(), 6);
    throw std::runtime_error("out");
  } catch (const std::runtime_error&) {
  }
  EXPECT_EQ(Clock::NowMs(), 100);
  EXPECT_EQ(outer.Readings(), 1);
}

TEST(Clock, AReplacedSourceBelongsToItsThread) {
  const TFakeClock clock;
  double elsewhere = 0;
  std::thread([&] { elsewhere = Clock::NowMs(); }).join();
  EXPECT_EQ(Clock::NowMs(), 0);
  EXPECT_GT(elsewhere, 0);
}

TEST(StopToken, ScopesNestAndComeBackWhenTheirBlockThrows) {
  EXPECT_EQ(CurrentStopToken(), nullptr);
  TStopToken outer;
  TStopToken inner;
  inner.RequestStop();
  const TStopTokenScope scope(&outer);
  try {
    const TStopTokenScope nested(&inner);
    EXPECT_TRUE(RunStopRequested());
    const TStopTokenScope none(nullptr);
    EXPECT_FALSE(RunStopRequested());
    throw std::runtime_error("out");
  } catch (const std::runtime_error&) {
  }
  EXPECT_EQ(CurrentStopToken(), &outer);
  EXPECT_FALSE(RunStopRequested());
}

TEST(StopToken, BelongsToItsThreadAndIsHeardOnAllThatSetIt) {
  TStopToken token;
  const TStopTokenScope scope(&token);
  bool withoutScope = true;
  std::atomic<bool> waiting{false};
  std::thread worker([&] {
    withoutScope = CurrentStopToken() != nullptr;
    const TStopTokenScope own(&token);
    waiting = true;
    while (!RunStopRequested()) std::this_thread::yield();
  });
  while (!waiting) std::this_thread::yield();
  token.RequestStop();
  worker.join();
  EXPECT_FALSE(withoutScope);
  EXPECT_TRUE(RunStopRequested());
}

}  // namespace
}  // namespace platenest
