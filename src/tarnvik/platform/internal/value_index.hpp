// An insertion-ordered hash index from Value to position, shared by Dictionary, Set and
// OrderedSet. Not installed.
#pragma once

#include <unordered_map>

#include "tarnvik/platform/value.hpp"

namespace tarnvik {

using ValueIndex = std::unordered_map<Value, std::size_t, std::hash<Value>, ValueEqual>;

// Positions after a removal at `removed` move down by one.
inline void shiftIndexAfterRemoval(ValueIndex& index, std::size_t removed) {
  for (auto& [key, position] : index) {
    if (position > removed) --position;
  }
}

}  // namespace tarnvik
