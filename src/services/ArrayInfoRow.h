#pragma once

#include <string_view>

#include "platenest/foundation/Paths.h"

namespace platenest::detail {

// The whole copies in Count; -1 for any negative number. TArgumentError with the name of the operation where it is NaN
// or more than a row may have.
int RowCopies(double Count, std::string_view Operation);

// What the copies are to the clipper: all subjects in the order of k, or the one at 0 the subject and the others clips.
// The region is the same, the order of its points need not be.
enum class TRowForm { AllSubjects, CopiesClip };

// The union, filled where the winding is not zero, of Paths moved by k * Vector (drawing units) for k from -Count to
// Count, its paths closed by their first points. TArgumentError where the row would leave kMaxRowCoordinate.
TPaths UniteRow(const TPaths& Paths, int Count, const TPoint2D& Vector, TRowForm Form, std::string_view Operation);

// The union of Subject with Clip moved by Vector, as above.
TPaths UnitePair(const TPaths& Subject, const TPath& Clip, const TPoint2D& Vector, std::string_view Operation);

// Sets the first path counter-clockwise and the others clockwise, in place, and returns what to make a row of: the
// region that they fill, its outlines counter-clockwise. Outlines apart from the first one would else run clockwise,
// and overlapping copies of opposite outlines would cancel and free what they forbid.
TPaths CounterClockwiseForRow(TPaths& NFP, std::string_view Operation);

}  // namespace platenest::detail
