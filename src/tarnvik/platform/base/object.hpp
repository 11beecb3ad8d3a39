// Object, the base of reference types (domain objects, tree nodes, ...), and the class
// registry: each class registers its name, superclass, properties (getter and setter) and
// no-argument methods once, and that registration serves key-value coding, calling a method
// by its name and listing the classes.
//
//   struct Clip : Object {
//     String name;
//     bool selected = false;
//     TARNVIK_CLASS(Clip)
//   };
//   TARNVIK_DEFINE_CLASS(Clip, Object, c.property(u"name", &Clip::name).property(u"selected",
//   &Clip::selected))
#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <vector>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/dictionary.hpp"
#include "tarnvik/platform/base/string.hpp"
#include "tarnvik/platform/base/value.hpp"

namespace tarnvik {

class Object;

// What a registered method or property getter returns, as far as the layout of the result
// in memory goes: a BOOL, a signed or unsigned integer of 1, 2, 4 or 8 bytes, a float, a
// double, or an object (any other type).
enum class ReturnKind { Bool, Integer8, Integer16, Integer32, Integer64, Float, Double, Object };

template <class R>
constexpr ReturnKind returnKindOf() {
  if constexpr (std::is_same_v<R, bool>) {
    return ReturnKind::Bool;
  } else if constexpr (std::is_integral_v<R> || std::is_enum_v<R>) {
    return sizeof(R) == 1   ? ReturnKind::Integer8
           : sizeof(R) == 2 ? ReturnKind::Integer16
           : sizeof(R) == 4 ? ReturnKind::Integer32
                            : ReturnKind::Integer64;
  } else if constexpr (std::is_same_v<R, float>) {
    return ReturnKind::Float;
  } else if constexpr (std::is_floating_point_v<R>) {
    return ReturnKind::Double;
  } else {
    return ReturnKind::Object;
  }
}

struct PropertyInfo {
  String name;
  std::function<Value(const Object&)> getter;
  std::function<void(Object&, const Value&)> setter;  // empty for read-only properties
  ReturnKind returns = ReturnKind::Object;
};

struct MethodInfo {
  String name;
  ReturnKind returns = ReturnKind::Object;
  std::function<Value(Object&)> invoke;
};

// A registered class. Lookups search the superclasses too.
class ClassInfo {
 public:
  ClassInfo(String name, const ClassInfo* superclass)
      : name_(std::move(name)), superclass_(superclass) {}
  const String& name() const { return name_; }
  const ClassInfo* superclass() const { return superclass_; }
  const PropertyInfo* property(const String& name) const;
  const MethodInfo* method(const String& name) const;
  // The class itself or one of its superclasses.
  bool isSubclassOfClass(const ClassInfo& other) const;
  bool isNamedOrInherits(const String& name) const;

  void addProperty(PropertyInfo property) { properties_.push_back(std::move(property)); }
  void addMethod(MethodInfo method) { methods_.push_back(std::move(method)); }
  const std::vector<PropertyInfo>& properties() const { return properties_; }

 private:
  String name_;
  const ClassInfo* superclass_;
  std::vector<PropertyInfo> properties_;
  std::vector<MethodInfo> methods_;
};

// Every registered class, in registration order; safe to use from several threads.
// Classes register when their program or shared library starts (TARNVIK_DEFINE_CLASS), or
// at run time by handing add() a ClassInfo that lives as long as the process. A shared
// library that registers classes must therefore never be unloaded (dlopen it with
// RTLD_NODELETE, or never dlclose it).
struct ClassRegistry {
  static void add(const ClassInfo& info);
  static std::size_t count();
  // A snapshot: classes registered afterwards do not change it.
  static std::vector<const ClassInfo*> allClasses();
  // The first class registered under the name; nullptr when none has it.
  static const ClassInfo* classNamed(const String& name);
};

class Object : public std::enable_shared_from_this<Object> {
 public:
  virtual ~Object() = default;
  static const ClassInfo& staticClassInfo();
  virtual const ClassInfo& classInfo() const { return staticClassInfo(); }
  String className() const { return classInfo().name(); }
  // Whether this object's class is the named class or derives from it.
  bool isKindOfClass(const String& name) const { return classInfo().isNamedOrInherits(name); }
  // Identity unless a subclass says otherwise; hash must agree with isEqual.
  virtual bool isEqual(const Object& other) const { return this == &other; }
  virtual std::size_t hash() const;
  // "<ClassName: 0x...>" unless a subclass says otherwise.
  virtual String description() const;

  // Keys the object answers beyond its registered properties, such as the attributes and
  // relationships a managed object takes from its entity. Key-value coding asks these first;
  // nullopt (or false) means "not one of mine".
  virtual std::optional<Value> valueForDynamicKey(const String& key) const;
  virtual bool setValueForDynamicKey(const String& key, const Value& value);
};

// Conversions between member types and Value for registered properties.
template <class T>
T valueAs(const Value& value) {
  if constexpr (std::is_same_v<T, Value>) {
    return value;
  } else if constexpr (std::is_same_v<T, String>) {
    return value.asString();
  } else if constexpr (std::is_same_v<T, bool>) {
    return value.boolValue();
  } else if constexpr (std::is_integral_v<T>) {
    return static_cast<T>(value.integerValue());
  } else if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>(value.doubleValue());
  } else if constexpr (std::is_same_v<T, Array>) {
    return value.asArray();
  } else if constexpr (std::is_same_v<T, Dictionary>) {
    return value.asDictionary();
  } else {
    return std::dynamic_pointer_cast<typename T::element_type>(value.asObject());
  }
}

// Builds one class's registration; see TARNVIK_DEFINE_CLASS.
template <class C>
class ClassBuilder {
 public:
  explicit ClassBuilder(ClassInfo& info) : info_(info) {}

  // A data member read and written through key-value coding.
  template <class T>
  ClassBuilder& property(const String& name, T C::*member) {
    info_.addProperty(
        {name, [member](const Object& o) { return Value(static_cast<const C&>(o).*member); },
         [member](Object& o, const Value& v) { static_cast<C&>(o).*member = valueAs<T>(v); },
         returnKindOf<T>()});
    return *this;
  }
  // A computed property with a getter and, optionally, a setter.
  template <class T>
  ClassBuilder& property(const String& name, T (C::*getter)() const,
                         void (C::*setter)(T) = nullptr) {
    std::function<void(Object&, const Value&)> set;
    if (setter)
      set = [setter](Object& o, const Value& v) { (static_cast<C&>(o).*setter)(valueAs<T>(v)); };
    info_.addProperty(
        {name, [getter](const Object& o) { return Value((static_cast<const C&>(o).*getter)()); },
         std::move(set), returnKindOf<T>()});
    return *this;
  }
  // A no-argument method callable by its name.
  template <class R>
  ClassBuilder& method(const String& name, R (C::*function)() const) {
    info_.addMethod({name, returnKindOf<R>(), [function](Object& o) {
                       return Value((static_cast<const C&>(o).*function)());
                     }});
    return *this;
  }

 private:
  ClassInfo& info_;
};

}  // namespace tarnvik

// In the class body: declares the class's registration.
#define TARNVIK_CLASS(ClassName)                        \
 public:                                                \
  static const ::tarnvik::ClassInfo& staticClassInfo(); \
  const ::tarnvik::ClassInfo& classInfo() const override { return staticClassInfo(); }

// In one source file: defines the registration, `c` being the ClassBuilder, and registers the
// class when the program starts.
#define TARNVIK_DEFINE_CLASS(ClassName, SuperName, ...)                                        \
  const ::tarnvik::ClassInfo& ClassName::staticClassInfo() {                                   \
    static const ::tarnvik::ClassInfo* info = [] {                                             \
      auto* created = new ::tarnvik::ClassInfo(u## #ClassName, &SuperName::staticClassInfo()); \
      [[maybe_unused]] ::tarnvik::ClassBuilder<ClassName> c(*created);                         \
      __VA_ARGS__;                                                                             \
      ::tarnvik::ClassRegistry::add(*created);                                                 \
      return created;                                                                          \
    }();                                                                                       \
    return *info;                                                                              \
  }                                                                                            \
  [[maybe_unused]] static const bool tarnvikRegistered##ClassName =                            \
      (ClassName::staticClassInfo(), true);
