#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "JsonReader.h"

namespace platenest::detail {

// Fills records from JSON events by their forms. It holds one frame for each open object or list and nothing else, so
// that memory does not grow with what is passed over.
class FormReader final : public JsonEvents {
 public:
  FormReader(Slot Root, FaultList& Faults);

  bool Value(const Scalar& V) override;
  bool BeginObject() override;
  bool Key(std::string Name) override;
  bool BeginList() override;
  bool End() override;
  void Overflow(std::string_view Written) override;

 private:
  struct Frame {
    Slot Into;  // Skip for what nobody asked for
    bool IsList = false;
    std::int64_t Count = 0;  // entries of a list begun so far
    std::uint64_t Seen = 0;  // a bit for each field of an object
    std::string Name;        // the member of an object that is being read
    Slot Member;             // and where it goes
  };

  Slot Next();
  void Open(const Slot& Into, bool IsList, bool IsWanted);

  // The member that Top.Name tells, by the kind of slot that the object stands in.
  template <class T>
  Slot MemberAt(Frame& Top, const T&);
  template <class T>
  Slot MemberAt(Frame& Top, const ObjectAt<T>& Object);

  // What can be said only at the end of an object or list.
  template <class T>
  void CheckComplete(const Frame& Closed, const T&);
  template <class T>
  void CheckComplete(const Frame& Closed, const ObjectAt<T>&);
  template <class T>
  void CheckComplete(const Frame& Closed, const ListAt<T>& List);
  void CheckComplete(const Frame& Closed, const NumbersAt& List);
  void CheckComplete(const Frame& Closed, const IdsAt& List);
  void CheckMost(std::int64_t Count, std::int64_t Most);

  std::string Pointer() const;

  Slot FRoot;
  FaultList& FFaults;
  std::vector<Frame> FOpen;
  PlaceOf FPlace;
};

}  // namespace platenest::detail
