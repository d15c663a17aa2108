#pragma once

#include <string>

#include "Region.h"

// Judges the paths of a no-fit polygon or of an inner-fit region, read under non-zero fill. Each Check returns the
// first disagreement as text, empty if there is none. Lengths in drawing units.
namespace platenest {

struct TSamplingOptions {
  int Samples = 100;   // half over the box of the paths and around, half near their edges; vertices of the paths on top
  double Band = 2e-5;  // what a border may be off
  bool SafeSideOnly = false;  // paths of reduced shapes may forbid free places
};

// Strictly inside the paths and further than the band from their border the shapes must overlap. On the border or
// outside, a place with overlap must have a free one within the band (and the rounding of one path unit), or the
// overlap is nowhere wider than the band. Overlap as such is decided exactly. Free places without area inside the paths
// are met by chance only: ask Overlaps() about a known one.
std::string CheckNfpBySampling(const TPaths& Static, const TPaths& Dynamic, const TPaths& Paths, unsigned Seed,
                               const TSamplingOptions& Options = {});
std::string CheckNfpBySampling(const TVHPolygon& Static, const TVHPolygon& Dynamic, const TPaths& Paths, unsigned Seed,
                               const TSamplingOptions& Options = {});

// Inside the paths or on their border the part must fit into the plate within the band; outside and further than the
// band it must not.
std::string CheckInnerFitBySampling(const TPaths& Plate, const TPaths& Part, const TPaths& Paths, unsigned Seed,
                                    const TSamplingOptions& Options = {});
std::string CheckInnerFitBySampling(const TVHPolygon& Plate, const TVHPolygon& Part, const TPaths& Paths, unsigned Seed,
                                    const TSamplingOptions& Options = {});

// What two regions do not share, in square drawing units, once parts nowhere wider than twice the band and contours
// below a least area are dropped.
struct TRegionDifference {
  double Lost = 0;     // in Exact only: for a no-fit polygon, overlap that the paths allow
  double Surplus = 0;  // in the paths only: for a no-fit polygon, free places that they forbid
  double Exact = 0;    // area of Exact

  // The larger of both against the area of Exact; infinity if that is 0 and they differ.
  double Relative() const;
};

TRegionDifference CompareRegions(const TPaths& Paths, const TPaths& Exact, double Band = 2e-5, double LeastContour = 0);

}  // namespace platenest
