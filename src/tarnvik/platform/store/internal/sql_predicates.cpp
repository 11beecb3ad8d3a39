#include "tarnvik/platform/store/internal/sql_predicates.hpp"

#include "tarnvik/platform/base/set.hpp"
#include "tarnvik/platform/store/internal/sqlite.hpp"
#include "tarnvik/platform/store/managed_object.hpp"

namespace tarnvik::sqlite {
namespace {

// Whether a constant compares in SQL exactly as Value comparison does in memory: a value of
// the attribute's kind, and no data (blobs do not compare as Data does).
bool constantFits(const AttributeDescription& attribute, const Value& value) {
  return !value.isNil() && attribute.attributeType() != AttributeType::Binary &&
         attribute.acceptsValue(value);
}

const char* sqlOperator(PredicateOperatorType type) {
  switch (type) {
    case PredicateOperatorType::LessThan:
      return "<";
    case PredicateOperatorType::LessThanOrEqualTo:
      return "<=";
    case PredicateOperatorType::GreaterThan:
      return ">";
    case PredicateOperatorType::GreaterThanOrEqualTo:
      return ">=";
    default:
      return nullptr;
  }
}

// A plain key naming a property of the entity (no key path through relationships).
const PropertyDescription* propertyOf(const Expression& e, const EntityDescription& entity) {
  if (e.expressionType() != Expression::Type::KeyPath) return nullptr;
  if (e.keyPath().rangeOfString(u".").location != NSNotFound) return nullptr;
  if (const auto* a = entity.attributeNamed(e.keyPath())) return a;
  const auto* r = entity.relationshipNamed(e.keyPath());
  return r && !r->isToMany() ? r : nullptr;
}

bool translateComparison(const ComparisonPredicate& p, const EntityDescription& entity,
                         Condition& out) {
  if (p.comparisonPredicateModifier() != ComparisonPredicateModifier::Direct || p.options())
    return false;
  const Expression& left = *p.leftExpression();
  const Expression& right = *p.rightExpression();
  if (right.expressionType() != Expression::Type::ConstantValue) return false;
  const Value& constant = right.constantValue();
  const PredicateOperatorType type = p.predicateOperatorType();

  // "(key & mask) == value": bitwise and over an integer attribute.
  if (left.expressionType() == Expression::Type::Function) {
    const auto* a =
        dynamic_cast<const AttributeDescription*>(propertyOf(*left.arguments()[0], entity));
    const Expression& mask = *left.arguments()[1];
    if (!a || a->attributeType() == AttributeType::String ||
        a->attributeType() == AttributeType::Date || a->attributeType() == AttributeType::Binary ||
        mask.expressionType() != Expression::Type::ConstantValue ||
        !mask.constantValue().isNumber() || !constant.isNumber() ||
        (type != PredicateOperatorType::EqualTo && type != PredicateOperatorType::NotEqualTo))
      return false;
    out.sql = "((" + columnName(*a) + " & ?) " +
              (type == PredicateOperatorType::EqualTo ? "IS" : "IS NOT") + " ?)";
    if (type == PredicateOperatorType::NotEqualTo) out.sql = "(" + out.sql + ")";
    out.bindings = {mask.constantValue(), constant};
    return true;
  }

  const PropertyDescription* property = propertyOf(left, entity);
  if (!property) return false;
  const std::string column = columnName(*property);
  const auto* attribute = dynamic_cast<const AttributeDescription*>(property);

  if (!attribute) {  // a to-one relationship against an object, an identifier or nil
    Value key;
    if (!constant.isNil() && !constant.isNull()) {
      std::shared_ptr<const ManagedObjectID> id =
          std::dynamic_pointer_cast<ManagedObjectID>(constant.asObject());
      if (!id) {
        const auto object = std::dynamic_pointer_cast<ManagedObject>(constant.asObject());
        if (!object) return false;
        id = object->objectID();
      }
      if (id->isTemporaryID()) return false;
      key = Value(static_cast<long long>(id->primaryKey()));
    }
    if (type != PredicateOperatorType::EqualTo && type != PredicateOperatorType::NotEqualTo)
      return false;
    out.sql = "(" + column + (type == PredicateOperatorType::EqualTo ? " IS ?)" : " IS NOT ?)");
    out.bindings = {key};
    return true;
  }

  const bool nil = constant.isNil() || constant.isNull();
  switch (type) {
    case PredicateOperatorType::EqualTo:
    case PredicateOperatorType::NotEqualTo:
      if (!nil && !constantFits(*attribute, constant)) return false;
      if (type == PredicateOperatorType::EqualTo) {
        // "=" (not IS) keeps the index in play; a NULL column gives false via the guard.
        out.sql = nil ? "(" + column + " IS NULL)"
                      : "(" + column + " = ? AND " + column + " IS NOT NULL)";
      } else {
        out.sql = nil ? "(" + column + " IS NOT NULL)" : "(" + column + " IS NOT ?)";
      }
      if (!nil) out.bindings = {constant};
      return true;
    case PredicateOperatorType::LessThan:
    case PredicateOperatorType::LessThanOrEqualTo:
    case PredicateOperatorType::GreaterThan:
    case PredicateOperatorType::GreaterThanOrEqualTo:
      // Strings order by UTF-16 units in memory, by UTF-8 bytes in SQLite: left to memory.
      if (nil || !constant.isNumber() || attribute->attributeType() == AttributeType::String ||
          !constantFits(*attribute, constant))
        return false;
      out.sql = "(" + column + " " + sqlOperator(type) + " ? AND " + column + " IS NOT NULL)";
      out.bindings = {constant};
      return true;
    case PredicateOperatorType::In: {
      std::vector<Value> elements;
      switch (constant.kind()) {
        case Value::Kind::Array:
          for (const Value& v : constant.asArray()) elements.push_back(v);
          break;
        case Value::Kind::Set:
          for (const Value& v : constant.asSet()) elements.push_back(v);
          break;
        case Value::Kind::OrderedSet:
          for (const Value& v : constant.asOrderedSet()) elements.push_back(v);
          break;
        default:
          return false;
      }
      if (elements.empty()) {
        out.sql = "0";
        return true;
      }
      out.sql = "(" + column + " IN (";
      for (std::size_t i = 0; i < elements.size(); ++i) {
        if (!constantFits(*attribute, elements[i])) return false;
        out.sql += i ? ",?" : "?";
      }
      out.sql += ") AND " + column + " IS NOT NULL)";
      out.bindings = std::move(elements);
      return true;
    }
    default:
      return false;
  }
}

}  // namespace

std::string columnName(const PropertyDescription& property) {
  return quoted("Z" + property.name().utf8());
}

std::string tableName(const EntityDescription& entity) {
  return quoted("Z" + entity.name().utf8());
}

std::string joinTableName(const RelationshipDescription& r) {
  return quoted("Z_" + r.entity().name().utf8() + "_" + r.name().utf8());
}

bool translatePredicate(const Predicate& predicate, const EntityDescription& entity,
                        Condition& out) {
  if (const auto* b = dynamic_cast<const BooleanPredicate*>(&predicate)) {
    out.sql = b->value() ? "1" : "0";
    return true;
  }
  if (const auto* c = dynamic_cast<const ComparisonPredicate*>(&predicate))
    return translateComparison(*c, entity, out);
  const auto* compound = dynamic_cast<const CompoundPredicate*>(&predicate);
  if (!compound) return false;
  const auto& parts = compound->subpredicates();
  if (compound->compoundPredicateType() == CompoundPredicateType::Not) {
    Condition inner;
    if (!translatePredicate(*parts.front(), entity, inner)) return false;
    out.sql = "(NOT " + inner.sql + ")";
    out.bindings = std::move(inner.bindings);
    return true;
  }
  const bool conjunction = compound->compoundPredicateType() == CompoundPredicateType::And;
  if (parts.empty()) {
    out.sql = conjunction ? "1" : "0";
    return true;
  }
  out.sql = "(";
  for (std::size_t i = 0; i < parts.size(); ++i) {
    Condition inner;
    if (!translatePredicate(*parts[i], entity, inner)) return false;
    if (i) out.sql += conjunction ? " AND " : " OR ";
    out.sql += inner.sql;
    out.bindings.insert(out.bindings.end(), inner.bindings.begin(), inner.bindings.end());
  }
  out.sql += ")";
  return true;
}

Condition translatableConditions(const Predicate& predicate, const EntityDescription& entity,
                                 bool& complete) {
  Condition whole;
  if (translatePredicate(predicate, entity, whole)) {
    complete = true;
    return whole;
  }
  complete = false;
  Condition partial;
  const auto* compound = dynamic_cast<const CompoundPredicate*>(&predicate);
  if (!compound || compound->compoundPredicateType() != CompoundPredicateType::And) return partial;
  for (const auto& part : compound->subpredicates()) {
    Condition inner;
    if (!translatePredicate(*part, entity, inner)) continue;
    partial.sql += partial.sql.empty() ? inner.sql : " AND " + inner.sql;
    partial.bindings.insert(partial.bindings.end(), inner.bindings.begin(), inner.bindings.end());
  }
  return partial;
}

}  // namespace tarnvik::sqlite
