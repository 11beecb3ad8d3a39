#include "tarnvik/runtime/class_registry_queries.hpp"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <deque>
#include <string>
#include <thread>

#include "runtime/registry_classes.hpp"

namespace tarnvik::testing {

struct FooExporter : Base {
  TARNVIK_CLASS(FooExporter)
};
struct FooExporterDraft : FooExporter {
  TARNVIK_CLASS(FooExporterDraft)
};
struct BarExporter : Object {
  TARNVIK_CLASS(BarExporter)
};

TARNVIK_DEFINE_CLASS(Base, Object)
TARNVIK_DEFINE_CLASS(FooExporter, Base)
TARNVIK_DEFINE_CLASS(FooExporterDraft, FooExporter)
TARNVIK_DEFINE_CLASS(BarExporter, Object)

namespace {

// A private class (its name cannot be a C++ class name), registered at run time.
const ClassInfo& privateExporter() {
  static const ClassInfo* info = [] {
    static ClassInfo registered(u"_FooExporter", &Base::staticClassInfo());
    ClassRegistry::add(registered);
    return &registered;
  }();
  return *info;
}

const ClassInfo* base() { return &Base::staticClassInfo(); }

class ClassRegistryQueriesTest : public ::testing::Test {
 protected:
  void SetUp() override { privateExporter(); }
};

TEST_F(ClassRegistryQueriesTest, ListsEveryClassInRegistrationOrder) {
  const Array names = allClassNames();
  const auto position = [&](const char16_t* name) { return names.indexOfObject(String(name)); };
  ASSERT_NE(position(u"NSObject"), NSNotFound);
  EXPECT_LT(position(u"Base"), position(u"FooExporter"));
  EXPECT_LT(position(u"FooExporter"), position(u"FooExporterDraft"));
  EXPECT_NE(position(u"_FooExporter"), NSNotFound) << "the full listing keeps private classes";
  EXPECT_EQ(names.count(), ClassRegistry::count());
}

TEST_F(ClassRegistryQueriesTest, FiltersBySuffixPrefixAndBaseClass) {
  EXPECT_EQ(allClassNamesWithSuffix(u"Exporter", base()), (Array{u"FooExporter"}));
  EXPECT_EQ(allClassNamesWithSuffix(u"Exporter"), (Array{u"FooExporter", u"BarExporter"}));
  EXPECT_EQ(allClassNamesWithPrefix(u"FooExporter"), (Array{u"FooExporter", u"FooExporterDraft"}));
  EXPECT_EQ(allClassNamesWithPrefix(u"_"), Array::array()) << "private names never listed";
  EXPECT_EQ(allClassNamesWithPrefix(u"Foo", base()), (Array{u"FooExporter", u"FooExporterDraft"}));
  EXPECT_EQ(allClassNamesWithSuffix(u"Draft", u"Foo", base()), (Array{u"FooExporterDraft"}));
  EXPECT_EQ(allClassNamesWithSuffix(u"Draft", u"Bar", base()), Array::array());
  // Matching is literal and case-sensitive.
  EXPECT_EQ(allClassNamesWithSuffix(u"exporter"), Array::array());
}

TEST_F(ClassRegistryQueriesTest, BaseClassIsItsOwnDescendantButNeverListed) {
  EXPECT_TRUE(_isClass(base(), base()));
  EXPECT_TRUE(_isClass(&FooExporterDraft::staticClassInfo(), base()));
  EXPECT_FALSE(_isClass(&BarExporter::staticClassInfo(), base()));
  EXPECT_FALSE(_isClass(nullptr, base()));
  EXPECT_TRUE(_isClass(nullptr, nullptr));
  EXPECT_TRUE(_isClass(base(), nullptr)) << "every walk ends at nil";

  const Array descendants = allClassNamesSubclassOfClass(base());
  EXPECT_FALSE(descendants.containsObject(String(u"Base")));
  EXPECT_TRUE(descendants.containsObject(String(u"FooExporterDraft")));
  EXPECT_FALSE(descendants.containsObject(String(u"_FooExporter")));
  EXPECT_EQ(allClassNamesSubclassOfClass(&FooExporterDraft::staticClassInfo()), Array::array());
  // A nil base: every public class.
  EXPECT_EQ(allClassNamesSubclassOfClass(nullptr).count() + 1, allClassNames().count());
}

TEST_F(ClassRegistryQueriesTest, FirstMatchingPrefixDecides) {
  EXPECT_EQ(allClassNamesWithAnyPrefix(Array{u"Foo", u"FooE"}, base()),
            (Array{u"FooExporter", u"FooExporterDraft"}));
  EXPECT_EQ(allClassNamesWithAnyPrefix(Array{u"Bar", u"Foo"}, base()),
            (Array{u"FooExporter", u"FooExporterDraft"}));
  EXPECT_EQ(allClassNamesWithAnyPrefix(Array{u"_Foo", u"Base"}, base()), Array::array());
  EXPECT_EQ(allClassNamesWithAnyPrefix(Array::array(), base()), Array::array());
}

TEST_F(ClassRegistryQueriesTest, NamesBackToClasses) {
  const auto classes = allClassesFromClassNames(Array{u"Base", u"NoSuchClass", u"_FooExporter"});
  ASSERT_EQ(classes.size(), 2u);
  EXPECT_EQ(classes[0], base());
  EXPECT_EQ(classes[1], &privateExporter());
  EXPECT_TRUE(allClassesFromClassNames(Array()).empty());
}

// A receiver that narrows the listing narrows every query built on it.
struct OnlyFooClasses : ClassNameQueries {
  Array allClassNames() const override {
    return Array{u"FooExporterDraft", u"BarExporter", u"Base", u"NoSuchClass"};
  }
};

struct NoSnapshot : ClassNameQueries {
  Array allClassNames() const override { return Array(); }
};

TEST_F(ClassRegistryQueriesTest, QueriesStartFromTheReceiversListing) {
  const OnlyFooClasses foo;
  EXPECT_EQ(foo.allClassNamesWithSuffix(u"Exporter"), (Array{u"BarExporter"}));
  EXPECT_EQ(foo.allClassNamesSubclassOfClass(base()), (Array{u"FooExporterDraft"}));
  // An unknown name is a nil class, a descendant of nothing but nil.
  EXPECT_EQ(foo.allClassNamesWithPrefix(u"No", nullptr), (Array{u"NoSuchClass"}));
  const NoSnapshot none;
  EXPECT_EQ(none.allClassNamesWithPrefix(u"Foo"), Array::array());
  EXPECT_FALSE(none.allClassNamesWithAnyPrefix(Array{u"Foo"}, base()).isNil());
}

TEST_F(ClassRegistryQueriesTest, PlugInClassesAppearOnceLoaded) {
  EXPECT_FALSE(allClassNames().containsObject(String(u"PlugInExporter")));
  void* plugin = ::dlopen(TARNVIK_REGISTRY_PLUGIN, RTLD_NOW | RTLD_NODELETE);
  ASSERT_NE(plugin, nullptr) << ::dlerror();
  EXPECT_EQ(allClassNamesWithSuffix(u"Exporter", base()),
            (Array{u"FooExporter", u"PlugInExporter"}));
  EXPECT_EQ(allClassNamesWithPrefix(u"PlugIn"), (Array{u"PlugInExporter", u"PlugInHelper"}));
  const auto classes = allClassesFromClassNames(Array{u"PlugInExporter"});
  ASSERT_EQ(classes.size(), 1u);
  EXPECT_EQ(classes[0]->superclass(), base()) << "the plug-in's class links to the host's base";
  ::dlclose(plugin);
}

TEST_F(ClassRegistryQueriesTest, QueriesRunWhileAnotherThreadRegisters) {
  static std::deque<ClassInfo> added;  // registered classes live as long as the process
  for (int i = 0; i < 2000; ++i) {
    added.emplace_back(String("Late" + std::to_string(i) + "Exporter"), base());
  }
  std::atomic<bool> done{false};
  std::thread writer([&] {
    for (const ClassInfo& info : added) ClassRegistry::add(info);
    done = true;
  });
  UInteger last = 0;
  while (!done) {
    const UInteger found = allClassNamesWithSuffix(u"Exporter", base()).count();
    EXPECT_GE(found, last) << "a later snapshot never has fewer classes";
    last = found;
  }
  writer.join();
  EXPECT_EQ(allClassNamesWithPrefix(u"Late", base()).count(), added.size());
}

}  // namespace
}  // namespace tarnvik::testing
