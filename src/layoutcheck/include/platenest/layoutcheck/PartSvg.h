#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platenest/foundation/Export.h"
#include "platenest/layoutcheck/NfpSvg.h"
#include "platenest/layoutcheck/PartCheck.h"
#include "platenest/layoutcheck/PlacedBox.h"

// Pictures of one part and what is said about it. No state; safe on any thread.
namespace platenest {

struct TPictureLabel {
  TPlacedBox Box;
  double Margin = 0;
};

struct TPictureDisc {
  TPoint2D Center;
  double Radius = 0;
};

struct TPartPicture {
  std::string Title;   // empty: made from the id
  std::string PartId;  // a text like those of TPictureKind
  std::string Units = "mm";
  std::vector<std::string> Remarks;  // rows of the legend below the part's own
  TPictureContours Part;
  TPictureContours Lines;           // open ones, on the part
  std::optional<TLattice> Lattice;  // drawn with the neighbours nearby, the cell and its two vectors
  std::optional<TPictureLabel> Label;
  std::optional<TPictureDisc> Disc;
};

// One SVG document like that of NfpSvg: the part is filled, its neighbours in the lattice pale; the cell dashed from
// the lower left corner of the part; label and disc in a colour of their own, the margin dashed. Raises TArgumentError
// for a coordinate that is not finite or beyond 1e15, or a part without extent.
PLATENEST_API std::string PartSvg(const TPartPicture& Picture);

}  // namespace platenest
