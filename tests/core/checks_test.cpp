#include "tarnvik/core/checks.hpp"

#include <gtest/gtest.h>

#include "support/raised.hpp"

namespace tarnvik {
namespace {

struct Recorded {
  String method, file, description;
  Value object;
  Integer line = 0;
  int calls = 0;
};

class RecordingHandler : public AssertionHandler {
 public:
  explicit RecordingHandler(Recorded* out) : out_(out) {}
  void handleFailureInMethod(const String& method, const Value& object, const String& file,
                             Integer line, const String& description) override {
    *out_ = {method, file, description, object, line, out_->calls + 1};
  }

 private:
  Recorded* out_;
};

class InstalledHandler : public ::testing::Test {
 protected:
  void SetUp() override {
    AssertionHandler::setCurrentHandler(std::make_shared<RecordingHandler>(&seen));
  }
  void TearDown() override { AssertionHandler::setCurrentHandler(nullptr); }
  Recorded seen;
};

TEST(Preconditions, ExceptionsCarryTheirNameAndExactText) {
  EXPECT_EQ(testing::raised([] { raiseInvalidArgumentFormat(u"%@ is not a prefix", u"A0"); }),
            "NSInvalidArgumentException: A0 is not a prefix");
  try {
    raiseInvalidArgumentFormat(u"%@ is not a prefix", u"A0");
  } catch (const Exception& e) {
    EXPECT_TRUE(e.userInfo().isNil());
    EXPECT_STREQ(e.what(), "A0 is not a prefix");
  }
  EXPECT_EQ(testing::raised([] {
              raiseRangeFormat(u"Requested startingIndex %lu is >= than array count %lu", 5ul, 3ul);
            }),
            "NSRangeException: Requested startingIndex 5 is >= than array count 3");
}

TEST(Preconditions, TheDefaultHandlerRaisesAnInconsistency) {
  EXPECT_EQ(testing::raised([] {
              KU_ASSERT(false, u"-[NSString(KU) hexValue]", Value(u"ABC"), u"invalid character %c",
                        'G');
            }),
            "NSInternalInconsistencyException: invalid character G");
}

TEST_F(InstalledHandler, ReceivesOperationObjectFileLineAndText) {
  const int line = __LINE__ + 1;
  KU_ASSERT(1 + 1 == 3, u"-[NSArray(KU) flatten]", Value(u"receiver"),
            u"array length %lu is not a multple of give group length %lu", 5ul, 2ul);
  EXPECT_EQ(seen.calls, 1);
  EXPECT_EQ(seen.method.utf8(), "-[NSArray(KU) flatten]");
  EXPECT_EQ(seen.object.asString().utf8(), "receiver");
  EXPECT_EQ(seen.file.utf8(), "checks_test.cpp");
  EXPECT_EQ(seen.line, line);
  EXPECT_EQ(seen.description.utf8(), "array length 5 is not a multple of give group length 2");
}

TEST_F(InstalledHandler, ParameterAssertionNamesTheCondition) {
  const String name;
  KU_PARAMETER_ASSERT(!name.isNil(), "name", u"-[KUZipArchive writeData:name:]", Value());
  EXPECT_EQ(seen.description.utf8(), "Invalid parameter not satisfying: name");
}

TEST_F(InstalledHandler, NothingIsFormattedWhenTheConditionHolds) {
  int evaluated = 0;
  auto expensive = [&] { return ++evaluated; };
  KU_ASSERT(true, u"op", Value(), u"%d", expensive());
  EXPECT_EQ(evaluated, 0);
  EXPECT_EQ(seen.calls, 0);
}

TEST(SourceFileName, KeepsTheBaseNameOnly) {
  EXPECT_EQ(sourceFileName("/a/b/c.mm").utf8(), "c.mm");
  EXPECT_EQ(sourceFileName("plain.cpp").utf8(), "plain.cpp");
  EXPECT_EQ(sourceFileName(nullptr).utf8(), "<Unknown File>");
  EXPECT_EQ(sourceFileName("dir/").utf8(), "<Unknown File>");
}

}  // namespace
}  // namespace tarnvik
