// The object-graph store against hand-written SQLite C code doing the same work, in the same
// run: saving new objects, fetching by an indexed key, and deep copies of owned trees.
//
// usage: store_bench [INSERTS] [ROWS] [LOOKUPS]   (defaults 100000, 1000000, 20000)
#include <sqlite3.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>

#include "tarnvik/platform/store/context.hpp"
#include "tarnvik/store/deep_copy.hpp"
#include "tarnvik/store/fetch_helpers.hpp"

using namespace tarnvik;
namespace fs = std::filesystem;

namespace {

double seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

long peakMiB() {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line))
    if (line.rfind("VmHWM:", 0) == 0) return std::stol(line.substr(6)) / 1024;
  return 0;
}

void check(int rc, sqlite3* db) {
  if (rc != SQLITE_OK && rc != SQLITE_DONE && rc != SQLITE_ROW) {
    std::fprintf(stderr, "sqlite: %s\n", sqlite3_errmsg(db));
    std::exit(1);
  }
}

std::shared_ptr<const ManagedObjectModel> clipModel() {
  return ModelBuilder()
      .entity(u"Clip",
              [](EntityBuilder& e) {
                e.attribute(u"name", AttributeType::String).indexed();
                e.attribute(u"frames", AttributeType::Integer64);
                e.attribute(u"rating", AttributeType::Double);
              })
      .build();
}

std::shared_ptr<ManagedObjectContext> open(const std::shared_ptr<const ManagedObjectModel>& model,
                                           const fs::path& file) {
  auto coordinator = std::make_shared<PersistentStoreCoordinator>(model);
  Error error;
  const bool memory = file.empty();
  if (!coordinator->addPersistentStoreWithType(memory ? NSInMemoryStoreType : NSSQLiteStoreType,
                                               memory ? String() : String(file.string()),
                                               Dictionary(), &error)) {
    std::fprintf(stderr, "%s\n", error.localizedDescription().utf8().c_str());
    std::exit(1);
  }
  return ManagedObjectContext::create(coordinator);
}

std::string clipName(long i) { return "A" + std::to_string(1000000 + i) + "C001"; }

// The raw side uses the store's own schema and pragmas, so both write the same file.
sqlite3* openRaw(const fs::path& file) {
  sqlite3* db = nullptr;
  check(sqlite3_open(file.c_str(), &db), db);
  check(sqlite3_exec(db, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL", nullptr, nullptr,
                     nullptr),
        db);
  return db;
}

void rawInsert(const fs::path& file, long count, long firstKey) {
  sqlite3* db = openRaw(file);
  sqlite3_stmt* insert = nullptr;
  check(sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr), db);
  check(sqlite3_prepare_v2(db,
                           "INSERT INTO \"ZClip\" (Z_PK, \"Zname\", \"Zframes\", \"Zrating\") "
                           "VALUES (?, ?, ?, ?)",
                           -1, &insert, nullptr),
        db);
  for (long i = 0; i < count; ++i) {
    const std::string name = clipName(i);
    sqlite3_bind_int64(insert, 1, firstKey + i);
    sqlite3_bind_text(insert, 2, name.data(), static_cast<int>(name.size()), SQLITE_TRANSIENT);
    sqlite3_bind_int64(insert, 3, i * 24);
    sqlite3_bind_double(insert, 4, static_cast<double>(i % 5));
    check(sqlite3_step(insert), db);
    sqlite3_reset(insert);
  }
  sqlite3_finalize(insert);
  check(sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr), db);
  sqlite3_close(db);
}

void insertBenchmark(const fs::path& dir, long count) {
  const auto model = clipModel();
  const fs::path ours = dir / "ours.sqlite";
  const fs::path raw = dir / "raw.sqlite";
  const auto fresh = [&](const fs::path& file) {
    for (const char* suffix : {"", "-wal", "-shm"}) fs::remove(file.string() + suffix);
    open(model, file);  // creates the schema
  };
  const auto& entity = *model->entityNamed(u"Clip");
  const auto* name = entity.attributeNamed(u"name");
  const auto* frames = entity.attributeNamed(u"frames");
  const auto* rating = entity.attributeNamed(u"rating");
  double saveOnly = 1e300;
  const auto oursRun = [&] {
    fresh(ours);
    auto context = open(model, ours);
    return seconds([&] {
      for (long i = 0; i < count; ++i) {
        auto clip = ManagedObject::initWithEntity(entity, context.get());
        clip->setValueForAttribute(*name, Value(clipName(i)));
        clip->setValueForAttribute(*frames, Value(i * 24));
        clip->setValueForAttribute(*rating, Value(static_cast<double>(i % 5)));
      }
      Error error;
      saveOnly = std::min(saveOnly, seconds([&] {
                            if (!context->save(&error)) std::exit(1);
                          }));
    });
  };
  const auto rawRun = [&] {
    fresh(raw);
    return seconds([&] { rawInsert(raw, count, 1); });
  };
  // Alternating runs, the best of five of each, so that both meet the same machine state.
  double oursTime = 1e300, rawTime = 1e300;
  for (int i = 0; i < 5; ++i) {
    oursTime = std::min(oursTime, oursRun());
    rawTime = std::min(rawTime, rawRun());
  }
  std::printf(
      "save %ld new objects: %.3f s (the save alone %.3f s); raw inserts %.3f s; "
      "ratio %.2f (save alone %.2f; goal <= 2.0)\n",
      count, oursTime, saveOnly, rawTime, oursTime / rawTime, saveOnly / rawTime);
}

void fetchBenchmark(const fs::path& dir, long rows, long lookups) {
  const auto model = clipModel();
  const fs::path file = dir / "big.sqlite";
  open(model, file);
  rawInsert(file, rows, 1);
  std::mt19937 random(3);
  std::vector<std::string> wanted;
  for (long i = 0; i < lookups; ++i) wanted.push_back(clipName(static_cast<long>(random() % rows)));

  // Only the lookups are timed: opening (and closing) the store, the context or the raw
  // connection and its prepared statement happen outside, as they do once in an application.
  long found = 0;
  const auto ours = [&] {
    auto context = open(model, file);
    const double time = seconds([&] {
      for (const std::string& name : wanted)
        found += static_cast<long>(objectsForEntityNamedMatchingAllValuesForKeys(
                                       *context, u"Clip", Array{Value(name)}, Array{Value(u"name")})
                                       .count());
    });
    return time;
  };
  long rawFound = 0;
  const auto raw = [&] {
    sqlite3* db = openRaw(file);
    sqlite3_stmt* select = nullptr;
    check(sqlite3_prepare_v2(db,
                             "SELECT Z_PK, \"Zname\", \"Zframes\", \"Zrating\" FROM \"ZClip\" "
                             "WHERE \"Zname\" = ?",
                             -1, &select, nullptr),
          db);
    const double time = seconds([&] {
      for (const std::string& name : wanted) {
        sqlite3_bind_text(select, 1, name.data(), static_cast<int>(name.size()), SQLITE_STATIC);
        while (sqlite3_step(select) == SQLITE_ROW) {
          rawFound += sqlite3_column_int64(select, 0) > 0;
          (void)sqlite3_column_text16(select, 1);
          (void)sqlite3_column_int64(select, 2);
          (void)sqlite3_column_double(select, 3);
        }
        sqlite3_reset(select);
      }
    });
    sqlite3_finalize(select);
    sqlite3_close(db);
    return time;
  };
  // Alternating runs, the best of five of each, so that both meet the same cache and machine.
  double oursTime = 1e300, rawTime = 1e300;
  for (int i = 0; i < 5; ++i) {
    oursTime = std::min(oursTime, ours());
    rawTime = std::min(rawTime, raw());
  }
  std::printf(
      "objectsForEntityNamed:matchingAllValues:forKeys: %ld lookups in %ld rows: "
      "%.3f s; raw indexed SELECT %.3f s; ratio %.2f (goal <= 1.5; %ld and %ld found)\n",
      lookups, rows, oursTime, rawTime, oursTime / rawTime, found / 5, rawFound / 5);
}

std::shared_ptr<const ManagedObjectModel> treeModel() {
  return ModelBuilder()
      .entity(u"Node",
              [](EntityBuilder& e) {
                e.attribute(u"name", AttributeType::String);
                e.attribute(u"size", AttributeType::Integer64);
                e.toMany(u"children", u"Node").inverse(u"parent").deleteRule(NSCascadeDeleteRule);
                e.toOne(u"parent", u"Node");
              })
      .build();
}

void deepCopyBenchmark(long size) {
  const auto model = treeModel();
  auto context = open(model, {});
  const auto& entity = *model->entityNamed(u"Node");
  const auto* name = entity.attributeNamed(u"name");
  const auto* children = entity.relationshipNamed(u"children");
  // A tree with ten children under each node, filled breadth first.
  std::vector<std::shared_ptr<ManagedObject>> nodes;
  nodes.reserve(static_cast<std::size_t>(size));
  for (long i = 0; i < size; ++i) {
    auto node = ManagedObject::initWithEntity(entity, context.get());
    node->setValueForAttribute(*name, Value("n" + std::to_string(i)));
    if (i) {
      const auto& parent = nodes[static_cast<std::size_t>((i - 1) / 10)];
      (void)children;
      node->setValueForDynamicKey(u"parent", Value(parent));
    }
    nodes.push_back(std::move(node));
  }
  const long before = peakMiB();
  std::shared_ptr<ManagedObject> copy;
  const double time = seconds([&] { copy = copyDeepWithZone(nodes[0], nullptr, false); });
  std::printf(
      "deep copy of a tree of %ld objects: %.3f s, %.0f objects/s, peak %ld MiB "
      "(%ld MiB before the copy)\n",
      size, time, static_cast<double>(size) / time, peakMiB(), before);
}

}  // namespace

int main(int argc, char** argv) {
  const long inserts = argc > 1 ? std::stol(argv[1]) : 100000;
  const long rows = argc > 2 ? std::stol(argv[2]) : 1000000;
  const long lookups = argc > 3 ? std::stol(argv[3]) : 20000;
  char pattern[] = "/tmp/store-bench-XXXXXX";
  const fs::path dir = ::mkdtemp(pattern);
  insertBenchmark(dir, inserts);
  fetchBenchmark(dir, rows, lookups);
  for (const long size : {10000L, 100000L, 1000000L}) {
    if (size > rows) break;
    deepCopyBenchmark(size);
  }
  fs::remove_all(dir);
}
