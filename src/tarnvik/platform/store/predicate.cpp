#include "tarnvik/platform/store/predicate.hpp"

#include "tarnvik/platform/base/internal/message.hpp"
#include "tarnvik/platform/base/key_value_coding.hpp"
#include "tarnvik/platform/base/set.hpp"

namespace tarnvik {

TARNVIK_DEFINE_CLASS(
    Expression, Object,
    c.method(u"constantValue", &Expression::constantValue).method(u"keyPath", &Expression::keyPath))
TARNVIK_DEFINE_CLASS(Predicate, Object, c.method(u"predicateFormat", &Predicate::predicateFormat))
TARNVIK_DEFINE_CLASS(BooleanPredicate, Predicate, (void)c)
TARNVIK_DEFINE_CLASS(ComparisonPredicate, Predicate, (void)c)
TARNVIK_DEFINE_CLASS(CompoundPredicate, Predicate, (void)c)

namespace {

constexpr char16_t kBitwiseAnd[] = u"bitwiseAnd:with:";

bool sameExpression(const std::shared_ptr<Expression>& a, const std::shared_ptr<Expression>& b) {
  if (!a || !b) return a == b;
  return a->isEqual(*b);
}

std::size_t mix(std::size_t seed, std::size_t value) {
  return seed ^ (value + 0x9e3779b97f4a7c15ULL + (seed << 6) + (seed >> 2));
}

// A constant as the format language writes it.
String constantText(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::Nil:
    case Value::Kind::Null:
      return u"nil";
    case Value::Kind::String: {
      std::u16string out = u"\"";
      for (char16_t unit : value.asString().units()) {
        if (unit == u'"' || unit == u'\\') out.push_back(u'\\');
        out.push_back(unit);
      }
      out.push_back(u'"');
      return String(std::move(out));
    }
    case Value::Kind::Array:
    case Value::Kind::Set:
    case Value::Kind::OrderedSet: {
      std::u16string out = u"{";
      bool first = true;
      const Array elements = value.kind() == Value::Kind::Array ? value.asArray()
                             : value.kind() == Value::Kind::Set ? value.asSet().allObjects()
                                                                : value.asOrderedSet().array();
      for (const Value& element : elements) {
        if (!first) out.append(u", ");
        first = false;
        out.append(constantText(element).units());
      }
      out.push_back(u'}');
      return String(std::move(out));
    }
    default:
      return value.description();
  }
}

const char16_t* operatorText(PredicateOperatorType type) {
  switch (type) {
    case PredicateOperatorType::LessThan:
      return u"<";
    case PredicateOperatorType::LessThanOrEqualTo:
      return u"<=";
    case PredicateOperatorType::GreaterThan:
      return u">";
    case PredicateOperatorType::GreaterThanOrEqualTo:
      return u">=";
    case PredicateOperatorType::EqualTo:
      return u"==";
    case PredicateOperatorType::NotEqualTo:
      return u"!=";
    case PredicateOperatorType::BeginsWith:
      return u"BEGINSWITH";
    case PredicateOperatorType::EndsWith:
      return u"ENDSWITH";
    case PredicateOperatorType::In:
      return u"IN";
    case PredicateOperatorType::Contains:
      return u"CONTAINS";
  }
  return u"?";
}

UInteger searchOptions(UInteger predicateOptions) {
  UInteger options = 0;
  if (predicateOptions & NSCaseInsensitivePredicateOption) options |= NSCaseInsensitiveSearch;
  if (predicateOptions & NSDiacriticInsensitivePredicateOption)
    options |= NSDiacriticInsensitiveSearch;
  return options;
}

// The elements of a collection value; nullopt for anything else.
std::optional<Array> elementsOf(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::Array:
      return value.asArray();
    case Value::Kind::Set:
      return value.asSet().allObjects();
    case Value::Kind::OrderedSet:
      return value.asOrderedSet().array();
    case Value::Kind::Dictionary:
      return value.asDictionary().allValues();
    default:
      return std::nullopt;
  }
}

}  // namespace

std::shared_ptr<Expression> Expression::expressionForConstantValue(const Value& value) {
  auto e = std::make_shared<Expression>();
  e->type_ = Type::ConstantValue;
  e->constant_ = value;
  return e;
}

std::shared_ptr<Expression> Expression::expressionForKeyPath(const String& keyPath) {
  auto e = std::make_shared<Expression>();
  e->type_ = Type::KeyPath;
  e->keyPath_ = keyPath;
  return e;
}

std::shared_ptr<Expression> Expression::expressionForEvaluatedObject() {
  auto e = std::make_shared<Expression>();
  e->type_ = Type::EvaluatedObject;
  return e;
}

std::shared_ptr<Expression> Expression::expressionForFunction(
    const String& name, std::vector<std::shared_ptr<Expression>> arguments) {
  if (name != String(kBitwiseAnd) || arguments.size() != 2 || !arguments[0] || !arguments[1]) {
    throw Exception(NSInvalidArgumentException,
                    message::build(u"Expression::expressionForFunction: unsupported function ",
                                   name, u" with ", arguments.size(), u" arguments"));
  }
  auto e = std::make_shared<Expression>();
  e->type_ = Type::Function;
  e->function_ = name;
  e->arguments_ = std::move(arguments);
  return e;
}

Value Expression::expressionValueWithObject(const Value& object) const {
  switch (type_) {
    case Type::ConstantValue:
      return constant_;
    case Type::EvaluatedObject:
      return object;
    case Type::KeyPath:
      return valueForKeyPath(object, keyPath_);
    case Type::Function: {
      const Value a = arguments_[0]->expressionValueWithObject(object);
      const Value b = arguments_[1]->expressionValueWithObject(object);
      if (!a.isNumber() || !b.isNumber()) return Value();
      return Value(static_cast<long long>(static_cast<unsigned long long>(a.longLongValue()) &
                                          static_cast<unsigned long long>(b.longLongValue())));
    }
  }
  return Value();
}

bool Expression::isEqual(const Object& other) const {
  const auto* e = dynamic_cast<const Expression*>(&other);
  if (!e || e->type_ != type_) return false;
  switch (type_) {
    case Type::ConstantValue:
      return constant_.isEqual(e->constant_);
    case Type::EvaluatedObject:
      return true;
    case Type::KeyPath:
      return keyPath_ == e->keyPath_;
    case Type::Function:
      return function_ == e->function_ && sameExpression(arguments_[0], e->arguments_[0]) &&
             sameExpression(arguments_[1], e->arguments_[1]);
  }
  return false;
}

std::size_t Expression::hash() const {
  switch (type_) {
    case Type::ConstantValue:
      return mix(1, constant_.hash());
    case Type::EvaluatedObject:
      return 2;
    case Type::KeyPath:
      return mix(3, keyPath_.hash());
    case Type::Function:
      return mix(mix(4, arguments_[0]->hash()), arguments_[1]->hash());
  }
  return 0;
}

String Expression::description() const {
  switch (type_) {
    case Type::ConstantValue:
      return constantText(constant_);
    case Type::EvaluatedObject:
      return u"SELF";
    case Type::KeyPath:
      return keyPath_;
    case Type::Function:
      return message::build(u"(", arguments_[0]->description(), u" & ",
                            arguments_[1]->description(), u")");
  }
  return String();
}

std::shared_ptr<Predicate> Predicate::predicateWithValue(bool value) {
  return std::make_shared<BooleanPredicate>(value);
}

std::shared_ptr<Predicate> BooleanPredicate::copy() const {
  return std::make_shared<BooleanPredicate>(value_);
}

bool BooleanPredicate::isEqual(const Object& other) const {
  const auto* p = dynamic_cast<const BooleanPredicate*>(&other);
  return p && p->value_ == value_;
}

String BooleanPredicate::description() const {
  return value_ ? u"TRUEPREDICATE" : u"FALSEPREDICATE";
}

ComparisonPredicate::ComparisonPredicate(std::shared_ptr<Expression> left,
                                         std::shared_ptr<Expression> right,
                                         ComparisonPredicateModifier modifier,
                                         PredicateOperatorType type, UInteger options)
    : left_(left ? std::move(left) : Expression::expressionForConstantValue(Value())),
      right_(right ? std::move(right) : Expression::expressionForConstantValue(Value())),
      modifier_(modifier),
      type_(type),
      options_(options) {}

bool ComparisonPredicate::compareValues(const Value& left, const Value& right) const {
  const UInteger options = searchOptions(options_);
  const bool strings = left.isString() && right.isString();
  switch (type_) {
    case PredicateOperatorType::EqualTo:
    case PredicateOperatorType::NotEqualTo: {
      bool equal;
      if (strings && options)
        equal = left.asString().compare(right.asString(), options) == NSOrderedSame;
      else if ((left.isNil() || left.isNull()) && (right.isNil() || right.isNull()))
        equal = true;
      else
        equal = left.isEqual(right);
      return (type_ == PredicateOperatorType::EqualTo) == equal;
    }
    case PredicateOperatorType::LessThan:
    case PredicateOperatorType::LessThanOrEqualTo:
    case PredicateOperatorType::GreaterThan:
    case PredicateOperatorType::GreaterThanOrEqualTo: {
      const bool comparable = (left.isNumber() && right.isNumber()) || strings ||
                              (left.kind() == Value::Kind::Date && right.kind() == left.kind());
      if (!comparable) return false;
      const ComparisonResult order =
          strings ? left.asString().compare(right.asString(), options) : left.compare(right);
      switch (type_) {
        case PredicateOperatorType::LessThan:
          return order == NSOrderedAscending;
        case PredicateOperatorType::LessThanOrEqualTo:
          return order != NSOrderedDescending;
        case PredicateOperatorType::GreaterThan:
          return order == NSOrderedDescending;
        default:
          return order != NSOrderedAscending;
      }
    }
    case PredicateOperatorType::BeginsWith:
    case PredicateOperatorType::EndsWith: {
      if (!strings) return false;
      const String text = left.asString();
      const String affix = right.asString();
      if (affix.length() == 0) return true;
      const UInteger where = type_ == PredicateOperatorType::BeginsWith
                                 ? NSAnchoredSearch
                                 : (NSAnchoredSearch | NSBackwardsSearch);
      return text.rangeOfString(affix, options | where).location != NSNotFound;
    }
    case PredicateOperatorType::Contains: {
      if (strings) {
        return right.asString().length() == 0 ||
               left.asString().rangeOfString(right.asString(), options).location != NSNotFound;
      }
      if (const auto elements = elementsOf(left)) {
        for (const Value& element : *elements)
          if (ComparisonPredicate(nullptr, nullptr, ComparisonPredicateModifier::Direct,
                                  PredicateOperatorType::EqualTo, options_)
                  .compareValues(element, right))
            return true;
      }
      return false;
    }
    case PredicateOperatorType::In: {
      if (strings) {
        return left.asString().length() == 0 ||
               right.asString().rangeOfString(left.asString(), options).location != NSNotFound;
      }
      if (const auto elements = elementsOf(right)) {
        for (const Value& element : *elements)
          if (ComparisonPredicate(nullptr, nullptr, ComparisonPredicateModifier::Direct,
                                  PredicateOperatorType::EqualTo, options_)
                  .compareValues(left, element))
            return true;
      }
      return false;
    }
  }
  return false;
}

bool ComparisonPredicate::evaluateWithObject(const Value& object) const {
  const Value left = left_->expressionValueWithObject(object);
  const Value right = right_->expressionValueWithObject(object);
  if (modifier_ == ComparisonPredicateModifier::Direct) return compareValues(left, right);
  const auto elements = elementsOf(left);
  if (!elements) return compareValues(left, right);
  for (const Value& element : *elements) {
    const bool match = compareValues(element, right);
    if (modifier_ == ComparisonPredicateModifier::Any && match) return true;
    if (modifier_ == ComparisonPredicateModifier::All && !match) return false;
  }
  return modifier_ == ComparisonPredicateModifier::All;
}

std::shared_ptr<Predicate> ComparisonPredicate::copy() const {
  return std::make_shared<ComparisonPredicate>(left_, right_, modifier_, type_, options_);
}

bool ComparisonPredicate::isEqual(const Object& other) const {
  const auto* p = dynamic_cast<const ComparisonPredicate*>(&other);
  return p && p->type_ == type_ && p->modifier_ == modifier_ && p->options_ == options_ &&
         sameExpression(p->left_, left_) && sameExpression(p->right_, right_);
}

std::size_t ComparisonPredicate::hash() const {
  return mix(mix(static_cast<std::size_t>(type_), left_->hash()), right_->hash());
}

String ComparisonPredicate::description() const {
  std::u16string out;
  if (modifier_ == ComparisonPredicateModifier::Any) out.append(u"ANY ");
  if (modifier_ == ComparisonPredicateModifier::All) out.append(u"ALL ");
  out.append(left_->description().units());
  out.push_back(u' ');
  out.append(operatorText(type_));
  if (options_ & (NSCaseInsensitivePredicateOption | NSDiacriticInsensitivePredicateOption)) {
    out.push_back(u'[');
    if (options_ & NSCaseInsensitivePredicateOption) out.push_back(u'c');
    if (options_ & NSDiacriticInsensitivePredicateOption) out.push_back(u'd');
    out.push_back(u']');
  }
  out.push_back(u' ');
  out.append(right_->description().units());
  return String(std::move(out));
}

CompoundPredicate::CompoundPredicate(CompoundPredicateType type,
                                     std::vector<std::shared_ptr<Predicate>> subpredicates)
    : type_(type), subpredicates_(std::move(subpredicates)) {
  for (const auto& p : subpredicates_) {
    if (!p) {
      throw Exception(NSInvalidArgumentException, u"CompoundPredicate: a subpredicate is nil");
    }
  }
  if (type_ == CompoundPredicateType::Not && subpredicates_.empty()) {
    throw Exception(NSInvalidArgumentException, u"CompoundPredicate: NOT needs a subpredicate");
  }
}

std::shared_ptr<CompoundPredicate> CompoundPredicate::andPredicateWithSubpredicates(
    std::vector<std::shared_ptr<Predicate>> subpredicates) {
  return std::make_shared<CompoundPredicate>(CompoundPredicateType::And, std::move(subpredicates));
}

std::shared_ptr<CompoundPredicate> CompoundPredicate::orPredicateWithSubpredicates(
    std::vector<std::shared_ptr<Predicate>> subpredicates) {
  return std::make_shared<CompoundPredicate>(CompoundPredicateType::Or, std::move(subpredicates));
}

std::shared_ptr<CompoundPredicate> CompoundPredicate::notPredicateWithSubpredicate(
    std::shared_ptr<Predicate> subpredicate) {
  return std::make_shared<CompoundPredicate>(
      CompoundPredicateType::Not, std::vector<std::shared_ptr<Predicate>>{std::move(subpredicate)});
}

bool CompoundPredicate::evaluateWithObject(const Value& object) const {
  switch (type_) {
    case CompoundPredicateType::Not:
      return !subpredicates_.front()->evaluateWithObject(object);
    case CompoundPredicateType::And:
      for (const auto& p : subpredicates_)
        if (!p->evaluateWithObject(object)) return false;
      return true;
    case CompoundPredicateType::Or:
      for (const auto& p : subpredicates_)
        if (p->evaluateWithObject(object)) return true;
      return false;
  }
  return false;
}

std::shared_ptr<Predicate> CompoundPredicate::copy() const {
  std::vector<std::shared_ptr<Predicate>> copies;
  copies.reserve(subpredicates_.size());
  for (const auto& p : subpredicates_) copies.push_back(p->copy());
  return std::make_shared<CompoundPredicate>(type_, std::move(copies));
}

bool CompoundPredicate::isEqual(const Object& other) const {
  const auto* p = dynamic_cast<const CompoundPredicate*>(&other);
  if (!p || p->type_ != type_ || p->subpredicates_.size() != subpredicates_.size()) return false;
  for (std::size_t i = 0; i < subpredicates_.size(); ++i)
    if (!subpredicates_[i]->isEqual(*p->subpredicates_[i])) return false;
  return true;
}

std::size_t CompoundPredicate::hash() const {
  std::size_t seed = static_cast<std::size_t>(type_) + 7;
  for (const auto& p : subpredicates_) seed = mix(seed, p->hash());
  return seed;
}

String CompoundPredicate::description() const {
  const auto sub = [](const std::shared_ptr<Predicate>& p) {
    const auto* compound = dynamic_cast<const CompoundPredicate*>(p.get());
    const bool group = compound && compound->compoundPredicateType() != CompoundPredicateType::Not;
    return group ? message::build(u"(", p->description(), u")") : p->description();
  };
  if (type_ == CompoundPredicateType::Not)
    return message::build(u"NOT ", sub(subpredicates_.front()));
  if (subpredicates_.empty())
    return type_ == CompoundPredicateType::And ? u"TRUEPREDICATE" : u"FALSEPREDICATE";
  std::u16string out;
  for (std::size_t i = 0; i < subpredicates_.size(); ++i) {
    if (i) out.append(type_ == CompoundPredicateType::And ? u" AND " : u" OR ");
    out.append(sub(subpredicates_[i]).units());
  }
  return String(std::move(out));
}

}  // namespace tarnvik
