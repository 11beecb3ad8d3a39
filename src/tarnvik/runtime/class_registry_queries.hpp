// Finding registered classes by naming convention: every class whose name ends in a
// suffix, begins with one of a few prefixes, or descends from a base class, in any
// combination; and turning the names back into classes.
//
//   // Every exporter a plug-in may have added, by name, e.g. "MovExporter".
//   Array names = allClassNamesWithSuffix(u"Exporter", &Exporter::staticClassInfo());
//   for (const ClassInfo* exporter : allClassesFromClassNames(names)) ...
//
// A class is a `const ClassInfo*` of the platform's class registry; nullptr stands for nil.
// The filtered queries leave out private classes (names beginning with "_") and never list
// the base class itself. None of them raises or reports an error: an unknown name gives no
// entry. Each call takes a fresh snapshot of the registry and holds no lock while it
// filters, so the queries may run on any thread while classes are being registered (those
// may or may not appear).
#pragma once

#include <vector>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/object.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// The class side of the root object type. Every filtered query starts from this object's
// allClassNames() and runs the descendant test through its _isClass(), so a subclass that
// narrows allClassNames (to the classes of one plug-in, say) narrows every query. The free
// functions below use a plain ClassNameQueries.
class ClassNameQueries {
 public:
  virtual ~ClassNameQueries() = default;

  // The names of all registered classes in registration order (private ones included);
  // nil when the snapshot cannot be allocated.
  virtual Array allClassNames() const;
  // Follows superclass links from candidate while the class is neither base nor nil, and
  // answers whether the walk stopped at base: a class descends from itself, and a nil
  // candidate descends only from a nil base.
  virtual bool _isClass(const ClassInfo* candidate, const ClassInfo* base) const;

  Array allClassNamesWithSuffix(const String& suffix) const;
  Array allClassNamesWithPrefix(const String& prefix) const;
  Array allClassNamesSubclassOfClass(const ClassInfo* base) const;
  Array allClassNamesWithSuffix(const String& suffix, const ClassInfo* base) const;
  Array allClassNamesWithPrefix(const String& prefix, const ClassInfo* base) const;
  Array allClassNamesWithSuffix(const String& suffix, const String& prefix,
                                const ClassInfo* base) const;
  // For each name, the first prefix it begins with decides: the name is listed when it
  // passes the base-class and private rules, and no later prefix is tried either way.
  Array allClassNamesWithAnyPrefix(const Array& prefixes, const ClassInfo* base) const;
};

Array allClassNames();
bool _isClass(const ClassInfo* candidate, const ClassInfo* base);
// Names ending in suffix (literal, case-sensitive).
Array allClassNamesWithSuffix(const String& suffix);
// Names beginning with prefix (literal, case-sensitive).
Array allClassNamesWithPrefix(const String& prefix);
// Names of base's descendants, base's own name excluded.
Array allClassNamesSubclassOfClass(const ClassInfo* base);
Array allClassNamesWithSuffix(const String& suffix, const ClassInfo* base);
Array allClassNamesWithPrefix(const String& prefix, const ClassInfo* base);
Array allClassNamesWithSuffix(const String& suffix, const String& prefix, const ClassInfo* base);
Array allClassNamesWithAnyPrefix(const Array& prefixes, const ClassInfo* base);
// The class of each name, in order, skipping names no class has.
std::vector<const ClassInfo*> allClassesFromClassNames(const Array& names);

}  // namespace tarnvik
