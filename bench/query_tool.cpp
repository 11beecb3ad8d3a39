// Parses a query file with URLQueryParametersWithOptions and builds it back with
// URLQueryWithParameters, repeating the pair `rounds` times, and prints the seconds each
// took per round; net_compare.py runs Python's urllib.parse on the same text.
//   query_tool FILE ROUNDS
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "tarnvik/net/url_strings.hpp"
#include "tarnvik/platform/base/data.hpp"

using namespace tarnvik;

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const Data bytes = Data::dataWithContentsOfFile(argv[1]);
  const String query = String::fromUTF8(bytes.asStringView());
  const int rounds = std::atoi(argv[2]);
  double parse = 0, build = 0;
  std::size_t sink = 0;
  for (int i = 0; i < rounds; ++i) {
    const auto t0 = std::chrono::steady_clock::now();
    const Dictionary parameters = URLQueryParametersWithOptions(query, URLQueryArrayModeAll);
    const auto t1 = std::chrono::steady_clock::now();
    const String rebuilt = URLQueryWithParameters(parameters, URLQueryArrayModeAll);
    const auto t2 = std::chrono::steady_clock::now();
    parse += std::chrono::duration<double>(t1 - t0).count();
    build += std::chrono::duration<double>(t2 - t1).count();
    sink += parameters.count() + rebuilt.length();
  }
  std::printf("%.6f %.6f %zu\n", parse / rounds, build / rounds, sink);
  return 0;
}
