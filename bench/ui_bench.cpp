// Per-call costs of the UI helpers on realistic sizes, each at two sizes ten times apart so
// that the growth shows: a table of 200 and 2,000 columns, view trees of 1,000 and 10,000
// views, trees of 10,000 and 100,000 nodes.
#include <benchmark/benchmark.h>

#include "tarnvik/platform/base/key_value_coding.hpp"
#include "tarnvik/ui/table_layouts.hpp"
#include "tarnvik/ui/tree_navigation.hpp"
#include "tarnvik/ui/view_layout.hpp"

using namespace tarnvik;

namespace {

std::shared_ptr<TableView> table(long columns) {
  auto t = std::make_shared<TableView>();
  for (long i = 0; i < columns; ++i)
    t->addTableColumn(TableColumn::withIdentifier(String("c" + std::to_string(i)), 40 + i % 90));
  return t;
}

void BM_CaptureLayout(benchmark::State& state) {
  const auto t = table(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(ke_dictionaryForAutosavingLayout(*t));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_CaptureLayout)->Arg(200)->Arg(2000)->Complexity();

void BM_ApplyLayout(benchmark::State& state) {
  const auto t = table(state.range(0));
  const Dictionary layout = ke_dictionaryForAutosavingLayout(*t);
  for (auto _ : state) ke_adjustLayoutForAutosavedDictionary(*t, layout);
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_ApplyLayout)->Arg(200)->Arg(2000)->Complexity();

// A view tree ten wide at each level.
std::shared_ptr<View> views(long count) {
  auto root = View::viewWithFrame({{0, 0}, {1000, 1000}});
  std::vector<std::shared_ptr<View>> all{root};
  for (long i = 1; i < count; ++i) {
    auto v = View::viewWithFrame({{double(i % 10) * 10, double(i % 7) * 10}, {10, 10}});
    all[static_cast<std::size_t>((i - 1) / 10)]->addSubview(v);
    all.push_back(v);
  }
  return root;
}

void BM_AllSubviews(benchmark::State& state) {
  const auto root = views(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(allSubviews(root));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_AllSubviews)->Arg(1000)->Arg(10000)->Complexity();

void BM_ViewWithIdentifierMissing(benchmark::State& state) {
  const auto root = views(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(viewWithIdentifier(root, u"none"));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_ViewWithIdentifierMissing)->Arg(1000)->Arg(10000)->Complexity();

// Wide rows: one view with many subviews.
void BM_LayoutRowAndTrim(benchmark::State& state) {
  auto row = View::viewWithFrame({{0, 0}, {10, 10}});
  for (long i = 0; i < state.range(0); ++i) row->addSubview(View::viewWithFrame({{0, 0}, {5, 5}}));
  for (auto _ : state) {
    layoutSubviews(row, 0);
    trimToSubviewsWithBorder(row, {2, 2});
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_LayoutRowAndTrim)->Arg(1000)->Arg(10000)->Complexity();

// A tree of dictionaries, ten children under each node.
struct Tree {
  TreeController controller;
  Value last;
};
std::unique_ptr<Tree> tree(long count) {
  std::vector<Dictionary> nodes;
  nodes.reserve(static_cast<std::size_t>(count));
  for (long i = 0; i < count; ++i)
    nodes.push_back(
        Dictionary{{u"name", String("n" + std::to_string(i))}, {u"children", Array::array()}});
  for (long i = count - 1; i > 0; --i) {
    Dictionary& parent = nodes[static_cast<std::size_t>((i - 1) / 10)];
    Array children = parent.objectForKey(u"children").asArray();
    children.insertObject(Value(nodes[static_cast<std::size_t>(i)]), 0);
    parent.setObject(children, u"children");
  }
  auto t = std::make_unique<Tree>();
  t->controller.setChildrenKeyPath(u"children");
  t->controller.setContent(Array{Value(nodes[0])});
  t->last = Value(nodes.back());
  return t;
}

void BM_FlattenedNodes(benchmark::State& state) {
  const auto t = tree(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(flattenedNodes(t->controller));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_FlattenedNodes)
    ->Arg(10000)
    ->Arg(30000)
    ->Arg(100000)
    ->Complexity()
    ->Unit(benchmark::kMillisecond);

void BM_IndexPathOfLastObject(benchmark::State& state) {
  const auto t = tree(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(indexPathOfObject(t->controller, t->last));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_IndexPathOfLastObject)
    ->Arg(10000)
    ->Arg(100000)
    ->Complexity()
    ->Unit(benchmark::kMillisecond);

void BM_IndexPathForInsertion(benchmark::State& state) {
  const auto t = tree(state.range(0));
  t->controller.setSelectionIndexPaths(Array{Value(IndexPath::withIndexes({0, 3, 2}))});
  for (auto _ : state) benchmark::DoNotOptimize(indexPathForInsertion(t->controller));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_IndexPathForInsertion)->Arg(10000)->Arg(100000)->Complexity();

}  // namespace
