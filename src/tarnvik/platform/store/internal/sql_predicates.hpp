// Translation of predicates into SQL conditions over an entity's table.
#pragma once

#include <string>
#include <vector>

#include "tarnvik/platform/store/model.hpp"
#include "tarnvik/platform/store/predicate.hpp"

namespace tarnvik::sqlite {

struct Condition {
  std::string sql;
  std::vector<Value> bindings;
};

// The column of an attribute or to-one relationship, and an entity's table.
std::string columnName(const PropertyDescription& property);
std::string tableName(const EntityDescription& entity);
std::string joinTableName(const RelationshipDescription& relationship);

// The whole predicate as SQL, when every part of it translates. A condition is never NULL, so
// NOT and != behave as the in-memory evaluation does for missing values.
bool translatePredicate(const Predicate& predicate, const EntityDescription& entity,
                        Condition& out);
// The parts of a top-level AND that translate (all of a predicate that translates whole).
// `complete` tells whether that was everything.
Condition translatableConditions(const Predicate& predicate, const EntityDescription& entity,
                                 bool& complete);

}  // namespace tarnvik::sqlite
