// RegularExpression and TextCheckingResult: ICU regular expressions (the syntax the
// platform's were defined with) over String, with the platform's options and results.
//
//   Error error;
//   RegularExpression re = RegularExpression::regularExpressionWithPattern(u"C(\\d+)", 0, &error);
//   TextCheckingResult m = re.firstMatchInString(u"A001C009", 0, {0, 8});   // range {4, 4}
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

enum RegularExpressionOptions : UInteger {
  NSRegularExpressionCaseInsensitive = 1,
  NSRegularExpressionAllowCommentsAndWhitespace = 2,
  NSRegularExpressionIgnoreMetacharacters = 4,
  NSRegularExpressionDotMatchesLineSeparators = 8,
  NSRegularExpressionAnchorsMatchLines = 16,
  NSRegularExpressionUseUnixLineSeparators = 32,
  NSRegularExpressionUseUnicodeWordBoundaries = 64,
};

enum MatchingOptions : UInteger {
  NSMatchingReportProgress = 1,
  NSMatchingReportCompletion = 2,
  NSMatchingAnchored = 4,
  NSMatchingWithTransparentBounds = 8,
  NSMatchingWithoutAnchoringBounds = 16,
};

enum MatchingFlags : UInteger {
  NSMatchingProgress = 1,
  NSMatchingCompleted = 2,
  NSMatchingHitEnd = 4,
  NSMatchingRequiredEnd = 8,
  NSMatchingInternalError = 16,
};

// One match: the whole match at index 0 and one range per capture group. A group that took
// no part has the location NSNotFound. A default-constructed result is nil (no ranges).
class TextCheckingResult {
 public:
  TextCheckingResult() = default;
  explicit TextCheckingResult(std::vector<Range> ranges) : ranges_(std::move(ranges)) {}

  bool isNil() const { return ranges_.empty(); }
  // {NSNotFound, 0} for a nil result.
  Range range() const { return rangeAtIndex(0); }
  UInteger numberOfRanges() const { return ranges_.size(); }
  // Every index from numberOfRanges() on answers {NSNotFound, 0}, never an exception.
  Range rangeAtIndex(UInteger index) const {
    return index < ranges_.size() ? ranges_[index] : Range{NSNotFound, 0};
  }

 private:
  std::vector<Range> ranges_;
};

struct CompiledPattern;

// A compiled pattern; immutable and safe to use from several threads at once. A
// default-constructed RegularExpression is nil and matches nothing.
class RegularExpression {
 public:
  using MatchBlock =
      std::function<void(const TextCheckingResult& result, UInteger flags, bool* stop)>;

  RegularExpression() = default;
  // nil when the pattern does not compile, with an Error in NSCocoaErrorDomain (code 2048)
  // whose user info holds the pattern under "NSInvalidValue" and ICU's message (error name
  // and offset) as the failure reason.
  static RegularExpression regularExpressionWithPattern(const String& pattern, UInteger options,
                                                        Error* error = nullptr);
  // Escapes the metacharacters of the text so that it matches literally.
  static String escapedPatternForString(const String& text);

  bool isNil() const { return !compiled_; }
  String pattern() const;
  UInteger options() const;
  UInteger numberOfCaptureGroups() const;

  // The first match within the range (NSRangeException when it lies outside the text); a
  // nil result when there is none. NSMatchingAnchored accepts only a match at the start of
  // the range.
  TextCheckingResult firstMatchInString(const String& text, UInteger options, Range range) const;
  std::vector<TextCheckingResult> matchesInString(const String& text, UInteger options,
                                                  Range range) const;
  UInteger numberOfMatchesInString(const String& text, UInteger options, Range range) const;
  // Calls the block for each match in order until it sets *stop.
  void enumerateMatchesInString(const String& text, UInteger options, Range range,
                                const MatchBlock& block) const;

 private:
  std::shared_ptr<const CompiledPattern> compiled_;
};

}  // namespace tarnvik
