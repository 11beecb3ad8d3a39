// The predicate format language, parsed by recursive descent.
#include <cstdlib>
#include <string>

#include "tarnvik/platform/base/internal/message.hpp"
#include "tarnvik/platform/store/predicate.hpp"

namespace tarnvik {
namespace {

struct SyntaxError {
  std::size_t position;
  const char16_t* what;
};

bool isIdentifierStart(char16_t c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_' || c == u'@' || c > 0x7f;
}
bool isIdentifierPart(char16_t c) { return isIdentifierStart(c) || (c >= u'0' && c <= u'9'); }

bool sameWord(std::u16string_view word, std::u16string_view keyword) {
  if (word.size() != keyword.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    char16_t c = word[i];
    if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - u'a' + u'A');
    if (c != keyword[i]) return false;
  }
  return true;
}

class Parser {
 public:
  Parser(std::u16string_view format, const std::vector<Value>& arguments)
      : f_(format), arguments_(arguments) {}

  std::shared_ptr<Predicate> parse() {
    auto p = orPredicate();
    skipBlanks();
    if (at_ != f_.size()) fail(u"unexpected text after the predicate");
    if (next_ != arguments_.size()) fail(u"more arguments than the format uses");
    return p;
  }

 private:
  [[noreturn]] void fail(const char16_t* what) const { throw SyntaxError{at_, what}; }

  void skipBlanks() {
    while (at_ < f_.size() &&
           (f_[at_] == u' ' || f_[at_] == u'\t' || f_[at_] == u'\n' || f_[at_] == u'\r'))
      ++at_;
  }

  bool take(std::u16string_view symbol) {
    skipBlanks();
    if (f_.substr(at_, symbol.size()) != symbol) return false;
    at_ += symbol.size();
    return true;
  }

  // A whole word, case-insensitive.
  bool takeWord(std::u16string_view keyword) {
    skipBlanks();
    std::size_t end = at_;
    while (end < f_.size() && isIdentifierPart(f_[end])) ++end;
    if (!sameWord(f_.substr(at_, end - at_), keyword)) return false;
    at_ = end;
    return true;
  }

  const Value& argument() {
    if (next_ >= arguments_.size()) fail(u"the format needs more arguments than were given");
    return arguments_[next_++];
  }

  std::shared_ptr<Predicate> orPredicate() {
    std::vector<std::shared_ptr<Predicate>> parts{andPredicate()};
    while (take(u"||") || takeWord(u"OR")) parts.push_back(andPredicate());
    if (parts.size() == 1) return parts.front();
    return CompoundPredicate::orPredicateWithSubpredicates(std::move(parts));
  }

  std::shared_ptr<Predicate> andPredicate() {
    std::vector<std::shared_ptr<Predicate>> parts{notPredicate()};
    while (take(u"&&") || takeWord(u"AND")) parts.push_back(notPredicate());
    if (parts.size() == 1) return parts.front();
    return CompoundPredicate::andPredicateWithSubpredicates(std::move(parts));
  }

  // Nesting is limited, so that a hostile format cannot exhaust the stack.
  struct Nested {
    explicit Nested(Parser& p) : parser(p) {
      if (++parser.depth_ > kMaxDepth) parser.fail(u"the format is nested too deeply");
    }
    ~Nested() { --parser.depth_; }
    Parser& parser;
  };
  static constexpr int kMaxDepth = 200;

  std::shared_ptr<Predicate> notPredicate() {
    const Nested nested(*this);
    skipBlanks();
    if (takeWord(u"NOT") || (f_.substr(at_, 2) != u"!=" && take(u"!")))
      return CompoundPredicate::notPredicateWithSubpredicate(notPredicate());
    if (takeWord(u"TRUEPREDICATE")) return Predicate::predicateWithValue(true);
    if (takeWord(u"FALSEPREDICATE")) return Predicate::predicateWithValue(false);
    skipBlanks();
    if (at_ < f_.size() && f_[at_] == u'(') {
      // "(" opens either a parenthesized predicate or an expression such as "(flags & 4)".
      const std::size_t start = at_;
      const std::size_t argumentsUsed = next_;
      try {
        return comparison();
      } catch (const SyntaxError&) {
        at_ = start;
        next_ = argumentsUsed;
      }
      take(u"(");
      auto inner = orPredicate();
      if (!take(u")")) fail(u"missing \")\"");
      return inner;
    }
    return comparison();
  }

  std::shared_ptr<Predicate> comparison() {
    auto modifier = ComparisonPredicateModifier::Direct;
    if (takeWord(u"ANY") || takeWord(u"SOME"))
      modifier = ComparisonPredicateModifier::Any;
    else if (takeWord(u"ALL"))
      modifier = ComparisonPredicateModifier::All;
    auto left = expression();
    const PredicateOperatorType type = operatorType();
    const UInteger options = operatorOptions();
    auto right = expression();
    return std::make_shared<ComparisonPredicate>(std::move(left), std::move(right), modifier, type,
                                                 options);
  }

  PredicateOperatorType operatorType() {
    using T = PredicateOperatorType;
    if (take(u"==")) return T::EqualTo;
    if (take(u"!=") || take(u"<>")) return T::NotEqualTo;
    if (take(u"<=") || take(u"=<")) return T::LessThanOrEqualTo;
    if (take(u">=") || take(u"=>")) return T::GreaterThanOrEqualTo;
    if (take(u"<")) return T::LessThan;
    if (take(u">")) return T::GreaterThan;
    if (take(u"=")) return T::EqualTo;
    if (takeWord(u"IN")) return T::In;
    if (takeWord(u"CONTAINS")) return T::Contains;
    if (takeWord(u"BEGINSWITH")) return T::BeginsWith;
    if (takeWord(u"ENDSWITH")) return T::EndsWith;
    fail(u"expected a comparison operator");
  }

  UInteger operatorOptions() {
    skipBlanks();
    if (at_ >= f_.size() || f_[at_] != u'[') return 0;
    ++at_;
    UInteger options = 0;
    while (at_ < f_.size() && f_[at_] != u']') {
      if (f_[at_] == u'c')
        options |= NSCaseInsensitivePredicateOption;
      else if (f_[at_] == u'd')
        options |= NSDiacriticInsensitivePredicateOption;
      else
        fail(u"unknown comparison option");
      ++at_;
    }
    if (!take(u"]")) fail(u"missing \"]\"");
    return options;
  }

  std::shared_ptr<Expression> expression() {
    auto e = unary();
    while (true) {
      skipBlanks();
      if (f_.substr(at_, 2) == u"&&" || !take(u"&")) return e;
      e = Expression::expressionForFunction(u"bitwiseAnd:with:",
                                            std::vector<std::shared_ptr<Expression>>{e, unary()});
    }
  }

  std::shared_ptr<Expression> unary() {
    const Nested nested(*this);
    if (take(u"(")) {
      auto e = expression();
      if (!take(u")")) fail(u"missing \")\"");
      return e;
    }
    return atom();
  }

  std::shared_ptr<Expression> atom() {
    skipBlanks();
    if (at_ >= f_.size()) fail(u"expected an expression");
    const char16_t c = f_[at_];
    if (c == u'%') return formatArgument();
    if (c == u'"' || c == u'\'') return Expression::expressionForConstantValue(quoted(c));
    if ((c >= u'0' && c <= u'9') ||
        (c == u'-' && at_ + 1 < f_.size() && f_[at_ + 1] >= u'0' && f_[at_ + 1] <= u'9'))
      return Expression::expressionForConstantValue(number());
    if (c == u'{') return Expression::expressionForConstantValue(arrayLiteral());
    if (takeWord(u"NIL") || takeWord(u"NULL"))
      return Expression::expressionForConstantValue(Value());
    if (takeWord(u"YES") || takeWord(u"TRUE"))
      return Expression::expressionForConstantValue(Value(true));
    if (takeWord(u"NO") || takeWord(u"FALSE"))
      return Expression::expressionForConstantValue(Value(false));
    if (takeWord(u"SELF")) return Expression::expressionForEvaluatedObject();
    if (!isIdentifierStart(c)) fail(u"expected an expression");
    const std::size_t start = at_;
    while (at_ < f_.size() && (isIdentifierPart(f_[at_]) || f_[at_] == u'.')) ++at_;
    return Expression::expressionForKeyPath(String(f_.substr(start, at_ - start)));
  }

  std::shared_ptr<Expression> formatArgument() {
    const std::size_t start = at_++;
    // Length modifiers (l, ll, q) change nothing: arguments arrive as values.
    while (at_ < f_.size() && (f_[at_] == u'l' || f_[at_] == u'q')) ++at_;
    if (at_ >= f_.size()) fail(u"incomplete format specifier");
    const char16_t conversion = f_[at_++];
    switch (conversion) {
      case u'K': {
        const Value key = argument();
        if (!key.isString()) {
          at_ = start;
          fail(u"%K needs a string argument");
        }
        return Expression::expressionForKeyPath(key.asString());
      }
      case u'@':
        return Expression::expressionForConstantValue(argument());
      case u'd':
      case u'i':
      case u'u':
      case u'x': {
        const Value v = argument();
        if (!v.isNumber()) {
          at_ = start;
          fail(u"an integer specifier needs a number argument");
        }
        return Expression::expressionForConstantValue(conversion == u'u' || conversion == u'x'
                                                          ? Value(v.unsignedIntegerValue())
                                                          : Value(v.longLongValue()));
      }
      case u'f':
      case u'g':
      case u'e': {
        const Value v = argument();
        if (!v.isNumber()) {
          at_ = start;
          fail(u"a floating-point specifier needs a number argument");
        }
        return Expression::expressionForConstantValue(Value(v.doubleValue()));
      }
      default:
        at_ = start;
        fail(u"unknown format specifier");
    }
  }

  Value quoted(char16_t quote) {
    ++at_;
    std::u16string text;
    while (at_ < f_.size() && f_[at_] != quote) {
      if (f_[at_] == u'\\' && at_ + 1 < f_.size()) ++at_;
      text.push_back(f_[at_++]);
    }
    if (at_ >= f_.size()) fail(u"unterminated string");
    ++at_;
    return Value(String(std::move(text)));
  }

  Value number() {
    const std::size_t start = at_;
    if (f_[at_] == u'-') ++at_;
    bool real = false;
    while (at_ < f_.size() && ((f_[at_] >= u'0' && f_[at_] <= u'9') || f_[at_] == u'.' ||
                               f_[at_] == u'e' || f_[at_] == u'E')) {
      if (f_[at_] == u'.' || f_[at_] == u'e' || f_[at_] == u'E') real = true;
      ++at_;
    }
    std::string ascii;
    for (std::size_t i = start; i < at_; ++i) ascii.push_back(static_cast<char>(f_[i]));
    char* end = nullptr;
    if (real) {
      const double d = std::strtod(ascii.c_str(), &end);
      if (*end) fail(u"malformed number");
      return Value(d);
    }
    const long long n = std::strtoll(ascii.c_str(), &end, 10);
    if (*end) fail(u"malformed number");
    return Value(n);
  }

  Value arrayLiteral() {
    take(u"{");
    Array elements = Array::array();
    if (take(u"}")) return elements;
    do {
      const auto e = expression();
      if (e->expressionType() != Expression::Type::ConstantValue)
        fail(u"an array literal holds constants only");
      elements.addObject(e->constantValue().isNil() ? Value(kNull) : e->constantValue());
    } while (take(u","));
    if (!take(u"}")) fail(u"missing \"}\"");
    return elements;
  }

  std::u16string_view f_;
  const std::vector<Value>& arguments_;
  std::size_t at_ = 0;
  std::size_t next_ = 0;
  int depth_ = 0;
};

}  // namespace

std::shared_ptr<Predicate> Predicate::predicateWithFormat(const String& format,
                                                          const std::vector<Value>& arguments) {
  if (format.isNil()) {
    throw Exception(NSInvalidArgumentException, u"Predicate::predicateWithFormat: nil format");
  }
  try {
    return Parser(format.units(), arguments).parse();
  } catch (const SyntaxError& e) {
    throw Exception(NSInvalidArgumentException,
                    message::build(u"Predicate::predicateWithFormat: unable to parse the format \"",
                                   format, u"\" at position ", e.position, u": ", e.what));
  }
}

}  // namespace tarnvik
