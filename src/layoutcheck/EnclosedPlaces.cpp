#include "EnclosedPlaces.h"

#include "PathTools.h"

namespace platenest::detail {

namespace {

TIntPoint Difference(const TIntPoint& A, const TIntPoint& B) {
  return {A.X - B.X, A.Y - B.Y};
}

// The places where an edge of Moving meets one of Fixed, as parallelograms with a positive area.
void AddContacts(const TPath& Fixed, const TPath& Moving, TPaths& Contacts) {
  for (std::size_t i = 0; i < Fixed.size(); ++i) {
    const TIntPoint& a0 = Fixed[i];
    const TIntPoint& a1 = Fixed[(i + 1) % Fixed.size()];
    for (std::size_t j = 0; j < Moving.size(); ++j) {
      const TIntPoint& b0 = Moving[j];
      const TIntPoint& b1 = Moving[(j + 1) % Moving.size()];
      TPath contact{Difference(a0, b0), Difference(a1, b0), Difference(a1, b1), Difference(a0, b1)};
      const double area = ClipperLib::Area(contact);
      if (area < 0) ClipperLib::ReversePath(contact);
      if (area != 0) Contacts.push_back(std::move(contact));
    }
  }
}

// Shape around Center, turned by half a turn: where a point of Fixed lies in the moving shape.
TPaths Mirrored(const TPaths& Shape, const TIntPoint& Center) {
  TPaths mirrored = Shape;
  for (TPath& path : mirrored)
    for (TIntPoint& point : path) point = Difference(Center, point);
  return mirrored;
}

TPaths Moved(const TPaths& Shape, const TIntPoint& Origin) {
  return TPathUtils::Translate(Shape, TPathUtils::CreatePointL2D(Difference({0, 0}, Origin)));
}

}  // namespace

TPaths EnclosedPlaces(const TNfpQuestion& Question) {
  TPaths forbidden;
  for (const TPath& fixed : Question.Fixed)
    for (const TPath& moving : Question.Moving) AddContacts(fixed, moving, forbidden);
  const TPaths movingWithin = Moved(Question.Fixed, Question.Moving.front().front());
  for (std::size_t i = Question.IsInside ? 1 : 0; i < (Question.IsInside ? Question.Fixed.size() : 1); ++i)
    forbidden = Clipped(forbidden, Mirrored(Question.Moving, Question.Fixed[i].front()), ClipperLib::ctUnion);
  return Clipped(movingWithin, forbidden, Question.IsInside ? ClipperLib::ctDifference : ClipperLib::ctUnion);
}

}  // namespace platenest::detail
