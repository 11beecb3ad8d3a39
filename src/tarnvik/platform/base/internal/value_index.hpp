// An open-addressing hash index from Value to position, shared by Dictionary, Set and
// OrderedSet: slots hold a position and part of the key's hash, the keys themselves stay
// in the collection's own vector. Copying an index is one vector copy. Not installed.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "tarnvik/platform/base/value.hpp"

namespace tarnvik {

class ValueIndex {
 public:
  static constexpr std::size_t npos = static_cast<std::size_t>(-1);

  // The position of the key, or npos; keyAt(position) reads the stored key.
  template <class KeyAt>
  std::size_t find(const Value& key, KeyAt keyAt) const {
    if (slots_.empty()) return npos;
    const std::size_t hash = key.hash();
    const auto tag = tagOf(hash);
    for (std::size_t i = tag & mask(); slots_[i].positionPlusOne != 0; i = (i + 1) & mask()) {
      const Slot& slot = slots_[i];
      if (slot.tag == tag && keyAt(slot.positionPlusOne - 1).isEqual(key))
        return slot.positionPlusOne - 1;
    }
    return npos;
  }

  // Records the key at `position` unless an equal key is there already; answers the
  // position of the key and whether it was added.
  template <class KeyAt>
  std::pair<std::size_t, bool> insert(const Value& key, std::size_t position, KeyAt keyAt) {
    if ((used_ + 1) * 2 > slots_.size()) grow(std::max<std::size_t>(16, slots_.size() * 2));
    const std::size_t hash = key.hash();
    const auto tag = tagOf(hash);
    std::size_t i = tag & mask();
    for (; slots_[i].positionPlusOne != 0; i = (i + 1) & mask()) {
      const Slot& slot = slots_[i];
      if (slot.tag == tag && keyAt(slot.positionPlusOne - 1).isEqual(key))
        return {slot.positionPlusOne - 1, false};
    }
    slots_[i] = {static_cast<std::uint32_t>(position + 1), tag};
    ++used_;
    return {position, true};
  }

  // Indexes the keys at positions 0 to count - 1 afresh (after removals).
  template <class KeyAt>
  void rebuild(std::size_t count, KeyAt keyAt) {
    clear();
    reserve(count);
    for (std::size_t p = 0; p < count; ++p) insert(keyAt(p), p, keyAt);
  }

  void reserve(std::size_t count) {
    std::size_t size = 16;
    while (size < count * 2) size *= 2;
    if (size > slots_.size()) grow(size);
  }

  void clear() {
    slots_.assign(slots_.size(), Slot{});
    used_ = 0;
  }

 private:
  struct Slot {
    std::uint32_t positionPlusOne = 0;
    std::uint32_t tag = 0;
  };

  static std::uint32_t tagOf(std::size_t hash) {
    return static_cast<std::uint32_t>(hash >> 32 ^ hash);
  }
  std::size_t mask() const { return slots_.size() - 1; }

  // Moves the slots into a larger table; slots are placed by their tag, so no key is hashed
  // again.
  void grow(std::size_t size) {
    std::vector<Slot> old = std::move(slots_);
    slots_.assign(size, Slot{});
    used_ = 0;
    for (const Slot& slot : old) {
      if (slot.positionPlusOne == 0) continue;
      std::size_t i = slot.tag & mask();
      while (slots_[i].positionPlusOne != 0) i = (i + 1) & mask();
      slots_[i] = slot;
      ++used_;
    }
  }

  std::vector<Slot> slots_;
  std::size_t used_ = 0;
};

}  // namespace tarnvik
