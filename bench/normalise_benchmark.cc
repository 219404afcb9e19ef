// Input normalisation per address: the sample addresses as written (upper
// case, region keys) and in title case with the regions spelt out, each
// tidied into an input record by orlo_norm_address, as hkgeocode and the
// Java Address builder do for every row. The checksum of the records shows
// that a change of speed changed no result.
#include <benchmark/benchmark.h>

#include <array>
#include <cctype>
#include <string>
#include <vector>

#include "lib/csv_reader.h"
#include "orlo_normalise.h"
#include "orlo_records.h"

namespace {

using Fields = std::array<std::string, ORLO_NF_COUNT>;

std::vector<Fields> sample_addresses(bool people) {
  orlo::tools::CsvReader csv(
      std::fopen(ORLO_SOURCE_DIR "/data/sample/addresses.csv", "rb"));
  std::vector<std::string> row;
  std::vector<Fields> out;
  csv.next(&row);  // the header
  while (csv.next(&row) == orlo::tools::CsvReader::Status::kRow) {
    if (row.size() != ORLO_NF_COUNT) continue;
    Fields f;
    for (size_t i = 0; i < f.size(); ++i) f[i] = row[i];
    if (people) {
      for (std::string &text : f)
        for (size_t i = 1; i < text.size(); ++i)
          if (std::isalpha(static_cast<unsigned char>(text[i - 1])))
            text[i] = static_cast<char>(std::tolower(text[i]));
      std::string &region = f[ORLO_NF_REGION];
      region = region == "Hk"    ? "Hong Kong"
               : region == "Kln" ? "Kowloon"
               : region == "Nt"  ? "N.T."
                                 : region;
    }
    out.push_back(f);
  }
  return out;
}

void BM_NormaliseAddress(benchmark::State &state) {
  const std::vector<Fields> addresses = sample_addresses(state.range(0) != 0);
  std::vector<const char *> ptrs(ORLO_NF_COUNT);
  std::vector<size_t> lengths(ORLO_NF_COUNT);
  char rec[HKINREC_SIZE];
  uint64_t checksum = 0;
  for (auto _ : state) {
    checksum = 0;
    for (const Fields &f : addresses) {
      for (size_t i = 0; i < f.size(); ++i) {
        ptrs[i] = f[i].data();
        lengths[i] = f[i].size();
      }
      orlo_norm_address(ptrs.data(), lengths.data(), rec, nullptr);
      for (unsigned char c : rec) checksum = checksum * 31 + c;
    }
    benchmark::DoNotOptimize(checksum);
  }
  state.SetItemsProcessed(state.iterations() *
                          static_cast<int64_t>(addresses.size()));
  state.counters["checksum"] = static_cast<double>(checksum % 1000000007);
}
BENCHMARK(BM_NormaliseAddress)->Arg(0)->Arg(1)->ArgName("people");

}  // namespace

BENCHMARK_MAIN();
