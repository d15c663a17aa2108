#pragma once

#include <string>
#include <vector>

#include "platenest/foundation/Export.h"
#include "platenest/foundation/Paths.h"
#include "platenest/layoutcheck/PlacedBox.h"

// Verifies what is said about one part, a lattice of its copies or a place on it, with code that shares nothing with
// the searches. Parts are in path units (kPathScale), outer contour counter-clockwise, holes clockwise; all other
// lengths are in drawing units. The answers are the first thing wrong as one English sentence, or an empty text. No
// state; safe on any thread.
namespace platenest {

struct TLattice {
  TPoint2D First;
  TPoint2D Second;

  // Of the parallelogram of the two vectors.
  double CellArea() const;
};

// Whether copies of the part, moved by i * First + j * Second, keep Gap from each other up to Tol; with a Gap below Tol
// they may overlap by what is missing. The copies that can reach the part are looked at one by one, up to 40 steps of
// the shortest vectors of the lattice to each side. Cost: one offset, and one intersection of two polygons for each
// copy whose box meets that of the part.
PLATENEST_API std::string CheckLattice(const TPaths& Part, const TLattice& Lattice, double Gap, double Tol);

// Whether a rectangle, grown all round by Margin - Tol, lies in the part and no line passes through it. Lines are open:
// a closed one repeats its first point. Cost: linear in the points, but for one difference of polygons.
PLATENEST_API std::string CheckLabel(const TPaths& Part, const std::vector<std::vector<TPoint2D>>& Lines,
                                     const TPlacedBox& Label, double Margin, double Tol);

// Whether a disc lies in the part, up to Tol. Cost: linear.
PLATENEST_API std::string CheckDisc(const TPaths& Part, const TPoint2D& Center, double Radius, double Tol);

}  // namespace platenest
