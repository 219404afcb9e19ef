// A synthetic Hong Kong reference CSV for tests and benchmarks: streets and
// buildings named from Cantonese syllables in the three regions, premise
// numbers on odd and even sides, ranges, letter suffixes, floor and shop
// records, district reference codes and unique reference ids.
//
// The output depends only on the record count and the seed, and is written
// street by street so that any size is produced in constant memory.
#ifndef ORLO_TOOLS_REFERENCE_GENERATOR_H
#define ORLO_TOOLS_REFERENCE_GENERATOR_H

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace orlo::tools {

struct GeneratorOptions {
  uint64_t records = 0;
  uint64_t seed = 1;
  // Called every few tens of thousands of records with the count so far.
  std::function<void(uint64_t records)> progress;
};

// The most records the generator can spread over its streets while keeping
// every street under 65536 records.
uint64_t max_generated_records();

// Writes the CSV (header first) to sink in pieces. False with *error set
// when options.records is beyond max_generated_records().
bool generate_reference_csv(const GeneratorOptions &options,
                            const std::function<void(std::string_view)> &sink,
                            std::string *error);

}  // namespace orlo::tools

#endif  // ORLO_TOOLS_REFERENCE_GENERATOR_H
