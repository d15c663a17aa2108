// The same question as a job with ids, margin and a stop token, answered and checked by the facade.
#include <cstdio>

#include <platenest/platenest.h>

int main() {
  platenest::Job job;
  job.Kind = platenest::JobKind::One;
  job.Gap = 5;
  job.Margin = {10, 10, 10, 10};
  job.Plates.push_back({.Id = "board", .Width = 2440, .Height = 1220});
  job.Parts.push_back({.Id = "panel", .Width = 300, .Height = 200, .Amount = std::nullopt});

  try {
    platenest::StopToken stop;
    const platenest::Result result =
        platenest::run(job, {.OnProgress =
                                 [](const platenest::Progress& now) {
                                   std::printf("%s: use %.1f %%\n", now.Phase.c_str(), 100 * now.Usage);
                                   return true;
                                 },
                             .Stop = &stop});
    for (const platenest::Placement& place : result.Layouts.at(0).Placements)
      std::printf("%s at (%g, %g)%s\n", place.Part.c_str(), place.Bounds[0], place.Bounds[1],
                  place.Rotated ? ", turned" : "");
    return platenest::CheckResult(job, result).empty() ? 0 : 1;
  } catch (const platenest::JobError& error) {
    for (const platenest::Fault& fault : error.Faults())
      std::fprintf(stderr, "%s: %s\n", fault.Place.c_str(), fault.Text.c_str());
    return 1;
  }
}
