#include "tarnvik/core/logging.hpp"

#include <gtest/gtest.h>

#include <vector>

#include "tarnvik/platform/base/object.hpp"

namespace tarnvik {
namespace {

class CapturingLogger : public Logger {
 public:
  void logMessage(const LogMessage& m) override { messages.push_back(m); }
  std::vector<LogMessage> messages;
};

// Counts how often it is asked for its description, i.e. how often it was formatted.
struct CountingObject : Object {
  String description() const override {
    ++formatted;
    return u"counted";
  }
  mutable int formatted = 0;
};

class LoggingTest : public ::testing::Test {
 protected:
  void SetUp() override {
    savedLevel = ddLogLevel.load();
    DDLog::removeAllLoggers();
    DDLog::addLogger(logger);
  }
  void TearDown() override {
    DDLog::removeAllLoggers();
    DDLog::addLogger(DDLog::standardErrorLogger());
    ddLogLevel = savedLevel;
  }
  std::shared_ptr<CapturingLogger> logger = std::make_shared<CapturingLogger>();
  unsigned long savedLevel = 0;
};

TEST_F(LoggingTest, ALineCarriesExactlyTheCallShape) {
  ddLogLevel = 0x1F;
  const int line = __LINE__ + 1;
  KU_LOG_ERROR(u"+[NSFileManager(CFIExtensions) isDirectoryCFI:]", u"IsDirectoryCFI failed on %@",
               u"/Volumes/A");
  ASSERT_EQ(logger->messages.size(), 1u);
  const LogMessage& m = logger->messages[0];
  EXPECT_FALSE(m.asynchronous);
  EXPECT_EQ(m.level, 0x1Fu);
  EXPECT_EQ(m.flag, 1u);
  EXPECT_EQ(m.context, 0);
  EXPECT_EQ(m.file.utf8(), "logging_test.cpp");
  EXPECT_EQ(m.function.utf8(), "+[NSFileManager(CFIExtensions) isDirectoryCFI:]");
  EXPECT_EQ(m.line, static_cast<unsigned long>(line));
  EXPECT_TRUE(m.tag.isNil());
  EXPECT_EQ(m.message.utf8(), "IsDirectoryCFI failed on /Volumes/A");
}

TEST_F(LoggingTest, NothingHappensWhenTheErrorBitIsClear) {
  const auto object = std::make_shared<CountingObject>();
  for (unsigned long level : {0ul, 2ul, 0x1Eul}) {
    ddLogLevel = level;
    KU_LOG_ERROR(u"f", u"%@", Value(object));
  }
  EXPECT_TRUE(logger->messages.empty());
  EXPECT_EQ(object->formatted, 0);
  for (unsigned long level : {1ul, 3ul, 0xFFFFul + 0x10000ul}) {
    ddLogLevel = level;
    KU_LOG_ERROR(u"f", u"%@", Value(object));
  }
  EXPECT_EQ(logger->messages.size(), 3u);
  EXPECT_EQ(object->formatted, 3);
}

TEST(ConsoleLog, GoesThroughTheReplaceableSink) {
  std::vector<std::string> lines;
  setConsoleSink([&](const String& line) { lines.push_back(line.utf8()); });
  consoleLog(u"[KUZipArchive] %@ (%d)", u"cannot open", 2);
  setConsoleSink(nullptr);
  EXPECT_EQ(lines, std::vector<std::string>{"[KUZipArchive] cannot open (2)"});
}

}  // namespace
}  // namespace tarnvik
