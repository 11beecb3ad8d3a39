// A small registered domain class for key-value coding and method-by-name tests.
#pragma once

#include "tarnvik/platform/base/object.hpp"

namespace tarnvik::testing {

struct Clip : Object {
  Clip(String n, Integer f, bool s) : name(std::move(n)), frames(f), selected(s) {}
  String name;
  Integer frames = 0;
  bool selected = false;
  Value owner;
  bool isSelected() const { return selected; }
  String title() const { return name.uppercaseString(); }
  Value nothing() const { return Value(); }
  // Results whose first byte in memory differs from their value, for the BOOL selection.
  double seconds() const { return static_cast<double>(frames) / 25; }
  float ratio() const { return static_cast<float>(frames); }
  std::int32_t takes() const { return static_cast<std::int32_t>(frames) + 256; }
  TARNVIK_CLASS(Clip)
};

// A subclass, for class tests.
struct StillClip : Clip {
  using Clip::Clip;
  TARNVIK_CLASS(StillClip)
};

inline Value clip(const char16_t* name, Integer frames, bool selected = false) {
  return Value(std::make_shared<Clip>(String(name), frames, selected));
}

}  // namespace tarnvik::testing
