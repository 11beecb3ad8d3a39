#include "tarnvik/platform/base/object.hpp"

#include <functional>
#include <mutex>
#include <unordered_map>

#include "tarnvik/platform/base/internal/message.hpp"

namespace tarnvik {

namespace {

struct Registry {
  std::mutex lock;
  std::vector<const ClassInfo*> classes;
  // The first class registered under each name.
  std::unordered_map<String, const ClassInfo*> byName;
};

Registry& registry() {
  static Registry r;
  return r;
}

}  // namespace

const PropertyInfo* ClassInfo::property(const String& name) const {
  for (const ClassInfo* c = this; c; c = c->superclass_) {
    for (const PropertyInfo& p : c->properties_) {
      if (p.name == name) return &p;
    }
  }
  return nullptr;
}

const MethodInfo* ClassInfo::method(const String& name) const {
  for (const ClassInfo* c = this; c; c = c->superclass_) {
    for (const MethodInfo& m : c->methods_) {
      if (m.name == name) return &m;
    }
  }
  return nullptr;
}

bool ClassInfo::isSubclassOfClass(const ClassInfo& other) const {
  for (const ClassInfo* c = this; c; c = c->superclass_) {
    if (c == &other) return true;
  }
  return false;
}

bool ClassInfo::isNamedOrInherits(const String& name) const {
  for (const ClassInfo* c = this; c; c = c->superclass_) {
    if (c->name_ == name) return true;
  }
  return false;
}

void ClassRegistry::add(const ClassInfo& info) {
  Registry& r = registry();
  std::lock_guard guard(r.lock);
  r.classes.push_back(&info);
  r.byName.emplace(info.name(), &info);
}

std::size_t ClassRegistry::count() {
  Registry& r = registry();
  std::lock_guard guard(r.lock);
  return r.classes.size();
}

std::vector<const ClassInfo*> ClassRegistry::allClasses() {
  Registry& r = registry();
  std::lock_guard guard(r.lock);
  return r.classes;
}

const ClassInfo* ClassRegistry::classNamed(const String& name) {
  Registry& r = registry();
  std::lock_guard guard(r.lock);
  const auto found = r.byName.find(name);
  return found == r.byName.end() ? nullptr : found->second;
}

const ClassInfo& Object::staticClassInfo() {
  static const ClassInfo* info = [] {
    auto* created = new ClassInfo(u"NSObject", nullptr);
    ClassRegistry::add(*created);
    return created;
  }();
  return *info;
}

std::size_t Object::hash() const { return std::hash<const void*>{}(this); }

String Object::description() const {
  return message::build(u"<", className(), u": ", message::Pointer{this}, u">");
}

std::optional<Value> Object::valueForDynamicKey(const String&) const { return std::nullopt; }
bool Object::setValueForDynamicKey(const String&, const Value&) { return false; }

}  // namespace tarnvik
