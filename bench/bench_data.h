// The data the search and call benchmarks share: a generated reference
// database of ORLO_BENCH_RECORDS records (1000000 by default), built once
// into /tmp/orlo-search-bench-<records> and reused by later runs, and input
// records drawn from it in three mixes.
#ifndef ORLO_BENCH_BENCH_DATA_H
#define ORLO_BENCH_BENCH_DATA_H

#include <string>
#include <vector>

namespace orlo::bench {

// Generates and builds the database unless an earlier run did. Returns its
// directory, or an empty string when it cannot be made.
const std::string &database_dir();

enum Mix {
  kExact,      // the street name as stored
  kFuzzy,      // two neighbouring letters of the longest word exchanged
  kRealistic,  // mostly exact, some typing errors, abbreviations, unknowns
  kNoRegion,   // region blanked: the search stops at once (call overhead)
};

// 200-byte input records for every 40th reference row of the database, in
// random order (fixed seed) or sorted by region and street. Built once per
// mix and order; empty when the database cannot be made.
const std::vector<std::string> &inputs(Mix mix, bool sorted);

}  // namespace orlo::bench

#endif  // ORLO_BENCH_BENCH_DATA_H
