// Move assignment of the plain records, in one place: a record moved onto itself stays as it is.
#pragma once

#include <new>
#include <utility>

namespace xkl {

// The record is rebuilt in place from the moved one; none of the records has const or reference
// members, so the name `to` goes on naming the new object.
template <class Record> Record& MoveAssign(Record& to, Record&& from) noexcept {
  if (&to != &from) {
    to.~Record();
    ::new (static_cast<void*>(&to)) Record(std::move(from));
  }
  return to;
}

} // namespace xkl
