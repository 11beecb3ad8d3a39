#include "tarnvik/platform/text/regular_expression.hpp"

#include <unicode/regex.h>
#include <unicode/unistr.h>
#include <unicode/utypes.h>

#include "tarnvik/platform/base/internal/icu_text.hpp"
#include "tarnvik/platform/base/internal/ranges.hpp"
#include "tarnvik/platform/text/format.hpp"

namespace tarnvik {

struct CompiledPattern {
  String source;
  UInteger options = 0;
  std::unique_ptr<icu::RegexPattern> pattern;
};

namespace {

// NSFormattingError in NSCocoaErrorDomain: the pattern is not a valid expression.
constexpr Integer kInvalidPatternErrorCode = 2048;

uint32_t icuFlags(UInteger options) {
  uint32_t flags = 0;
  if (options & NSRegularExpressionCaseInsensitive) flags |= UREGEX_CASE_INSENSITIVE;
  if (options & NSRegularExpressionAllowCommentsAndWhitespace) flags |= UREGEX_COMMENTS;
  if (options & NSRegularExpressionIgnoreMetacharacters) flags |= UREGEX_LITERAL;
  if (options & NSRegularExpressionDotMatchesLineSeparators) flags |= UREGEX_DOTALL;
  if (options & NSRegularExpressionAnchorsMatchLines) flags |= UREGEX_MULTILINE;
  if (options & NSRegularExpressionUseUnixLineSeparators) flags |= UREGEX_UNIX_LINES;
  if (options & NSRegularExpressionUseUnicodeWordBoundaries) flags |= UREGEX_UWORD;
  return flags;
}

TextCheckingResult resultOf(const icu::RegexMatcher& matcher) {
  UErrorCode status = U_ZERO_ERROR;
  const int32_t groups = matcher.groupCount();
  std::vector<Range> ranges;
  ranges.reserve(static_cast<std::size_t>(groups) + 1);
  for (int32_t g = 0; g <= groups; ++g) {
    const int32_t start = matcher.start(g, status);
    const int32_t end = matcher.end(g, status);
    if (U_FAILURE(status) || start < 0) {
      ranges.push_back({NSNotFound, 0});
      status = U_ZERO_ERROR;
    } else {
      ranges.push_back({static_cast<UInteger>(start), static_cast<UInteger>(end - start)});
    }
  }
  return TextCheckingResult(std::move(ranges));
}

}  // namespace

RegularExpression RegularExpression::regularExpressionWithPattern(const String& pattern,
                                                                  UInteger options, Error* error) {
  UParseError parseError{};
  UErrorCode status = U_ZERO_ERROR;
  auto compiled = std::make_shared<CompiledPattern>();
  compiled->source = pattern.isNil() ? String(u"") : pattern;
  compiled->options = options;
  compiled->pattern.reset(icu::RegexPattern::compile(icu_text::alias(compiled->source),
                                                     icuFlags(options), parseError, status));
  if (U_FAILURE(status) || !compiled->pattern) {
    if (error) {
      const String reason =
          stringWithFormat(u"%s at offset %d", u_errorName(status), parseError.offset);
      *error = Error(NSCocoaErrorDomain, kInvalidPatternErrorCode,
                     Dictionary{{u"NSInvalidValue", compiled->source},
                                {NSLocalizedFailureReasonErrorKey, reason}});
    }
    return RegularExpression();
  }
  RegularExpression re;
  re.compiled_ = std::move(compiled);
  return re;
}

String RegularExpression::escapedPatternForString(const String& text) {
  static constexpr std::u16string_view kMeta = u"\\*?+[(){}^$|./";
  std::u16string out;
  for (const char16_t c : text.units()) {
    if (kMeta.find(c) != std::u16string_view::npos) out.push_back(u'\\');
    out.push_back(c);
  }
  return String(std::move(out));
}

String RegularExpression::pattern() const { return compiled_ ? compiled_->source : String(); }
UInteger RegularExpression::options() const { return compiled_ ? compiled_->options : 0; }

UInteger RegularExpression::numberOfCaptureGroups() const {
  if (!compiled_) return 0;
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::RegexMatcher> matcher(compiled_->pattern->matcher(status));
  return U_SUCCESS(status) ? static_cast<UInteger>(matcher->groupCount()) : 0;
}

void RegularExpression::enumerateMatchesInString(const String& text, UInteger options, Range range,
                                                 const MatchBlock& block) const {
  checkRangeInLength(range, text.length(), "RegularExpression::enumerateMatchesInString");
  if (!compiled_) return;
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString input = icu_text::alias(text);
  std::unique_ptr<icu::RegexMatcher> matcher(compiled_->pattern->matcher(input, status));
  if (U_FAILURE(status)) return;
  matcher->region(static_cast<int64_t>(range.location), static_cast<int64_t>(range.end()), status);
  matcher->useTransparentBounds((options & NSMatchingWithTransparentBounds) != 0);
  matcher->useAnchoringBounds((options & NSMatchingWithoutAnchoringBounds) == 0);
  if (options & NSMatchingAnchored) {
    if (matcher->lookingAt(status) && U_SUCCESS(status)) {
      bool stop = false;
      block(resultOf(*matcher), 0, &stop);
    }
    return;
  }
  bool stop = false;
  while (!stop && matcher->find(status) && U_SUCCESS(status)) block(resultOf(*matcher), 0, &stop);
}

TextCheckingResult RegularExpression::firstMatchInString(const String& text, UInteger options,
                                                         Range range) const {
  TextCheckingResult first;
  enumerateMatchesInString(text, options, range,
                           [&](const TextCheckingResult& r, UInteger, bool* stop) {
                             first = r;
                             *stop = true;
                           });
  return first;
}

std::vector<TextCheckingResult> RegularExpression::matchesInString(const String& text,
                                                                   UInteger options,
                                                                   Range range) const {
  std::vector<TextCheckingResult> all;
  enumerateMatchesInString(text, options, range,
                           [&](const TextCheckingResult& r, UInteger, bool*) { all.push_back(r); });
  return all;
}

UInteger RegularExpression::numberOfMatchesInString(const String& text, UInteger options,
                                                    Range range) const {
  UInteger count = 0;
  enumerateMatchesInString(text, options, range,
                           [&](const TextCheckingResult&, UInteger, bool*) { ++count; });
  return count;
}

}  // namespace tarnvik
