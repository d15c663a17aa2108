#include <gtest/gtest.h>

#include "ForEachSeed.h"
#include "LiteralPacking.h"
#include "PackingThread.h"
#include "platenest/foundation/EventTimer.h"

namespace platenest {
namespace {

// Some plates are so narrow that one circle of a start pair rides on the other, some twice as long as the job needs.
TRuleJob JobForRuns(unsigned Seed) {
  TRuleJob job = RandomJob(Seed, 10);
  const double widest = *std::max_element(job.Radii.begin(), job.Radii.end()) + job.Gap / 2;
  if (Seed % 3 == 0) job.Width = widest * (3.05 + Seed % 7 * 0.15);
  if (Seed % 3 < 2) job.Height = 2 * job.Height + 5 * widest;
  if (Seed % 5 == 0) job.Height = std::max(job.Height / 2, 2 * widest);
  if (Seed % 2 == 0) return job;
  for (double* length : {&job.Width, &job.Height, &job.Gap}) *length *= 10;  // bisection is a matter of units
  for (double& radius : job.Radii) radius *= 10;
  return job;
}

TEST(CircleRuns, PlateAndStripAreThoseOfTheRules) {
  TTimerBoard noTime;
  const TTimerScope scope(&noTime);
  ForEachSeed(150, [](unsigned Seed) {
    const TRuleJob job = JobForRuns(Seed);
    TLiteralRun literal(job);
    literal.Packing();
    TRuleProbe packing = job.Packing();
    packing.StopPacking();  // a run begins with the flag cleared
    packing.Packing(0, 60000);
    ExpectSame(packing.PackingResult(), literal.Result);
    EXPECT_EQ(packing.OccuRate(), literal.Occu);
    if (literal.Configs.empty()) return;
    double shortest = kNoLength;
    for (const int strategy : {2, 4}) {
      TLiteralRun strip(job);
      TRuleProbe own = job.Packing();
      own.GenerateInitConfig();
      const double length = strip.Strip(strategy == 4);
      EXPECT_EQ(own.TakeShortest(strip.Workers(), strategy, kNoLength), length) << strategy;
      shortest = std::min(shortest, length);
      ExpectSame(own.PackingResult(), strip.Result);
    }
    const double none = kNoLength - job.Gap;
    EXPECT_EQ(job.Packing().StripPacking(60000, TStripMethod::Best).value_or(none), shortest - job.Gap);
    TLiteralRun rest(job);
    rest.FillAndOffer(rest.Pair(rest.Workers() - 1), false);
    rest.RedoTop();
    TRuleProbe own = job.Packing();
    TCircleNestRst pair = rest.Pair(rest.Workers() - 1);
    own.FillRest(pair);
    own.TailRePack();
    ExpectSame(own.PackingResult(), rest.Result);
  });
}

}  // namespace
}  // namespace platenest
