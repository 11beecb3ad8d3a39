#include "tarnvik/runtime/class_registry_queries.hpp"

#include <new>
#include <optional>

namespace tarnvik {

namespace {

// The rules of one filtered query, tested in this order, stopping at the first that fails.
struct Rules {
  std::optional<String> suffix;
  std::optional<String> prefix;
  bool hasBase = false;
  const ClassInfo* base = nullptr;
};

// The part of the rules that follows the suffix and prefix: own name, private, descendant.
bool passesBaseRules(const ClassNameQueries& queries, const String& name, const Rules& rules) {
  if (rules.hasBase) {
    if (rules.base && name.isEqualToString(rules.base->name())) return false;
  }
  if (name.hasPrefix(u"_")) return false;
  return !rules.hasBase || queries._isClass(ClassRegistry::classNamed(name), rules.base);
}

Array filtered(const ClassNameQueries& queries, const Rules& rules) {
  Array result = Array::array();
  for (const Value& entry : queries.allClassNames()) {
    const String name = entry.asString();
    if (rules.suffix && !name.hasSuffix(*rules.suffix)) continue;
    if (rules.prefix && !name.hasPrefix(*rules.prefix)) continue;
    if (passesBaseRules(queries, name, rules)) result.addObject(name);
  }
  return result;
}

}  // namespace

Array ClassNameQueries::allClassNames() const {
  if (ClassRegistry::count() < 1) return Array::array();
  try {
    const std::vector<const ClassInfo*> classes = ClassRegistry::allClasses();
    Array names = Array::arrayWithCapacity(classes.size());
    for (const ClassInfo* c : classes) {
      if (c && !c->name().isNil()) names.addObject(c->name());
    }
    return names;
  } catch (const std::bad_alloc&) {
    return Array();
  }
}

bool ClassNameQueries::_isClass(const ClassInfo* candidate, const ClassInfo* base) const {
  const ClassInfo* current = candidate;
  while (current != base && current != nullptr) current = current->superclass();
  return current == base;
}

Array ClassNameQueries::allClassNamesWithSuffix(const String& suffix) const {
  return filtered(*this, {suffix, std::nullopt, false, nullptr});
}

Array ClassNameQueries::allClassNamesWithPrefix(const String& prefix) const {
  return filtered(*this, {std::nullopt, prefix, false, nullptr});
}

Array ClassNameQueries::allClassNamesSubclassOfClass(const ClassInfo* base) const {
  return filtered(*this, {std::nullopt, std::nullopt, true, base});
}

Array ClassNameQueries::allClassNamesWithSuffix(const String& suffix, const ClassInfo* base) const {
  return filtered(*this, {suffix, std::nullopt, true, base});
}

Array ClassNameQueries::allClassNamesWithPrefix(const String& prefix, const ClassInfo* base) const {
  return filtered(*this, {std::nullopt, prefix, true, base});
}

Array ClassNameQueries::allClassNamesWithSuffix(const String& suffix, const String& prefix,
                                                const ClassInfo* base) const {
  return filtered(*this, {suffix, prefix, true, base});
}

Array ClassNameQueries::allClassNamesWithAnyPrefix(const Array& prefixes,
                                                   const ClassInfo* base) const {
  const Rules rules{std::nullopt, std::nullopt, true, base};
  Array result = Array::array();
  for (const Value& entry : allClassNames()) {
    const String name = entry.asString();
    for (const Value& prefix : prefixes) {
      if (!name.hasPrefix(prefix.asString())) continue;
      if (passesBaseRules(*this, name, rules)) result.addObject(name);
      break;
    }
  }
  return result;
}

namespace {
const ClassNameQueries& rootQueries() {
  static const ClassNameQueries queries;
  return queries;
}
}  // namespace

Array allClassNames() { return rootQueries().allClassNames(); }

bool _isClass(const ClassInfo* candidate, const ClassInfo* base) {
  return rootQueries()._isClass(candidate, base);
}

Array allClassNamesWithSuffix(const String& suffix) {
  return rootQueries().allClassNamesWithSuffix(suffix);
}

Array allClassNamesWithPrefix(const String& prefix) {
  return rootQueries().allClassNamesWithPrefix(prefix);
}

Array allClassNamesSubclassOfClass(const ClassInfo* base) {
  return rootQueries().allClassNamesSubclassOfClass(base);
}

Array allClassNamesWithSuffix(const String& suffix, const ClassInfo* base) {
  return rootQueries().allClassNamesWithSuffix(suffix, base);
}

Array allClassNamesWithPrefix(const String& prefix, const ClassInfo* base) {
  return rootQueries().allClassNamesWithPrefix(prefix, base);
}

Array allClassNamesWithSuffix(const String& suffix, const String& prefix, const ClassInfo* base) {
  return rootQueries().allClassNamesWithSuffix(suffix, prefix, base);
}

Array allClassNamesWithAnyPrefix(const Array& prefixes, const ClassInfo* base) {
  return rootQueries().allClassNamesWithAnyPrefix(prefixes, base);
}

std::vector<const ClassInfo*> allClassesFromClassNames(const Array& names) {
  std::vector<const ClassInfo*> classes;
  for (const Value& entry : names) {
    if (const ClassInfo* found = ClassRegistry::classNamed(entry.asString())) {
      classes.push_back(found);
    }
  }
  return classes;
}

}  // namespace tarnvik
