// Predicates: comparisons of two expressions and compounds of predicates, evaluated against
// objects and dictionaries by key-value coding. A fetch request's predicate is translated to
// SQL where it can be (see ManagedObjectContext::executeFetchRequest).
//
//   auto p = Predicate::predicateWithFormat(u"%K == %@", {u"name", u"A001"});
//   auto q = Predicate::predicateWithFormat(u"(%K & %d) = %d", {u"flags", 6, 6});
//   p->evaluateWithObject(Value(clip));
//
// The format language: key paths and %K (a key path argument), constants (%@ for any value,
// %d %i %ld %lld %u %lu %llu for integers, %f for doubles, "quoted" or 'quoted' strings,
// numbers, nil/NULL, YES/NO/TRUE/FALSE, SELF, {a, b} arrays), "(x & y)" for a bitwise and, the
// operators == = != <> < <= =< > >= => IN CONTAINS BEGINSWITH ENDSWITH with the options [c],
// [d] or [cd], AND && OR || NOT !, and parentheses. A malformed format raises
// NSInvalidArgumentException naming the format and the position.
#pragma once

#include <initializer_list>
#include <memory>
#include <vector>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/object.hpp"

namespace tarnvik {

class Expression : public Object {
 public:
  enum class Type { ConstantValue = 0, EvaluatedObject = 1, KeyPath = 3, Function = 4 };
  static std::shared_ptr<Expression> expressionForConstantValue(const Value& value);
  static std::shared_ptr<Expression> expressionForKeyPath(const String& keyPath);
  static std::shared_ptr<Expression> expressionForEvaluatedObject();
  // Only "bitwiseAnd:with:" (two integer arguments) is known.
  static std::shared_ptr<Expression> expressionForFunction(
      const String& name, std::vector<std::shared_ptr<Expression>> arguments);

  Type expressionType() const { return type_; }
  // The constant of a constant expression, nil for any other.
  const Value& constantValue() const { return constant_; }
  const String& keyPath() const { return keyPath_; }
  const String& function() const { return function_; }
  const std::vector<std::shared_ptr<Expression>>& arguments() const { return arguments_; }

  Value expressionValueWithObject(const Value& object) const;
  bool isEqual(const Object& other) const override;
  std::size_t hash() const override;
  String description() const override;

 private:
  Type type_ = Type::ConstantValue;
  Value constant_;
  String keyPath_;
  String function_;
  std::vector<std::shared_ptr<Expression>> arguments_;
  TARNVIK_CLASS(Expression)
};

enum class PredicateOperatorType : UInteger {
  LessThan = 0,
  LessThanOrEqualTo = 1,
  GreaterThan = 2,
  GreaterThanOrEqualTo = 3,
  EqualTo = 4,
  NotEqualTo = 5,
  BeginsWith = 8,
  EndsWith = 9,
  In = 10,
  Contains = 99,
};
enum class ComparisonPredicateModifier : UInteger { Direct = 0, All = 1, Any = 2 };
inline constexpr UInteger NSCaseInsensitivePredicateOption = 1;
inline constexpr UInteger NSDiacriticInsensitivePredicateOption = 2;
enum class CompoundPredicateType : UInteger { Not = 0, And = 1, Or = 2 };

class Predicate : public Object {
 public:
  // Raises NSInvalidArgumentException for a malformed format or a missing argument.
  static std::shared_ptr<Predicate> predicateWithFormat(const String& format,
                                                        const std::vector<Value>& arguments);
  static std::shared_ptr<Predicate> predicateWithFormat(const String& format,
                                                        std::initializer_list<Value> arguments) {
    return predicateWithFormat(format, std::vector<Value>(arguments));
  }
  static std::shared_ptr<Predicate> predicateWithValue(bool value);

  virtual bool evaluateWithObject(const Value& object) const = 0;
  // A copy that shares nothing mutable with this one (predicates are immutable, so sharing
  // the expressions is safe).
  virtual std::shared_ptr<Predicate> copy() const = 0;
  // The format text that reads back as an equal predicate.
  String predicateFormat() const { return description(); }

  TARNVIK_CLASS(Predicate)
};

// TRUEPREDICATE / FALSEPREDICATE.
class BooleanPredicate : public Predicate {
 public:
  explicit BooleanPredicate(bool value) : value_(value) {}
  bool value() const { return value_; }
  bool evaluateWithObject(const Value&) const override { return value_; }
  std::shared_ptr<Predicate> copy() const override;
  bool isEqual(const Object& other) const override;
  std::size_t hash() const override { return value_ ? 1 : 2; }
  String description() const override;

 private:
  bool value_;
  TARNVIK_CLASS(BooleanPredicate)
};

class ComparisonPredicate : public Predicate {
 public:
  ComparisonPredicate(std::shared_ptr<Expression> left, std::shared_ptr<Expression> right,
                      ComparisonPredicateModifier modifier, PredicateOperatorType type,
                      UInteger options);
  const std::shared_ptr<Expression>& leftExpression() const { return left_; }
  const std::shared_ptr<Expression>& rightExpression() const { return right_; }
  ComparisonPredicateModifier comparisonPredicateModifier() const { return modifier_; }
  PredicateOperatorType predicateOperatorType() const { return type_; }
  UInteger options() const { return options_; }

  bool evaluateWithObject(const Value& object) const override;
  std::shared_ptr<Predicate> copy() const override;
  bool isEqual(const Object& other) const override;
  std::size_t hash() const override;
  String description() const override;

 private:
  bool compareValues(const Value& left, const Value& right) const;
  std::shared_ptr<Expression> left_;
  std::shared_ptr<Expression> right_;
  ComparisonPredicateModifier modifier_;
  PredicateOperatorType type_;
  UInteger options_;
  TARNVIK_CLASS(ComparisonPredicate)
};

class CompoundPredicate : public Predicate {
 public:
  // AND of none is true, OR of none is false; NOT takes the first subpredicate.
  CompoundPredicate(CompoundPredicateType type,
                    std::vector<std::shared_ptr<Predicate>> subpredicates);
  static std::shared_ptr<CompoundPredicate> andPredicateWithSubpredicates(
      std::vector<std::shared_ptr<Predicate>> subpredicates);
  static std::shared_ptr<CompoundPredicate> orPredicateWithSubpredicates(
      std::vector<std::shared_ptr<Predicate>> subpredicates);
  static std::shared_ptr<CompoundPredicate> notPredicateWithSubpredicate(
      std::shared_ptr<Predicate> subpredicate);

  CompoundPredicateType compoundPredicateType() const { return type_; }
  const std::vector<std::shared_ptr<Predicate>>& subpredicates() const { return subpredicates_; }

  bool evaluateWithObject(const Value& object) const override;
  std::shared_ptr<Predicate> copy() const override;
  bool isEqual(const Object& other) const override;
  std::size_t hash() const override;
  String description() const override;

 private:
  CompoundPredicateType type_;
  std::vector<std::shared_ptr<Predicate>> subpredicates_;
  TARNVIK_CLASS(CompoundPredicate)
};

}  // namespace tarnvik
