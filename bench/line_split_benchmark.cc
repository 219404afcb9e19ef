// What splitting an address line costs beside geocoding the fielded record:
// orlo_line_split (tidy, read, place; the database's names warm), hk_mtci
// "P" on the fielded record, and orlo_line_geocode (split and every try),
// per address, on the same addresses and one instance each. Two sets: the
// sample addresses on the sample database, and the search benchmark's
// realistic mix on its generated database (bench_data.h), each address
// written as one comma-separated line of its fields. The checksums (of the
// records split, and of the references found) show that a change of speed
// changed no result.
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "bench_data.h"
#include "lib/csv_reader.h"
#include "orlo_lines.h"
#include "orlo_matcher.h"
#include "orlo_normalise.h"
#include "orlo_records.h"

namespace {

struct Workload {
  HKHANDLE handle{};
  std::vector<std::string> records;  // fielded, 200 bytes each
  std::vector<std::string> lines;
};

std::string trimmed(const std::string &rec, int off, int len) {
  std::string s =
      rec.substr(static_cast<size_t>(off), static_cast<size_t>(len));
  return s.substr(0, s.find_last_not_of(' ') + 1);
}

// The record's fields as a comma-separated line: unit, building, premise
// number and street, district, region.
std::string line_of(const std::string &rec) {
  std::string unit = trimmed(rec, HKIN_UNIT_OFF, HKIN_UNIT_LEN) + " " +
                     trimmed(rec, HKIN_UNITEXT_OFF, HKIN_UNITEXT_LEN);
  std::string premno = trimmed(rec, HKIN_PREMNO_OFF, HKIN_PREMNO_LEN);
  std::string street = trimmed(rec, HKIN_STREET_OFF, HKIN_STREET_LEN);
  std::string line;
  for (std::string part : {trimmed(unit, 0, static_cast<int>(unit.size())),
                           trimmed(rec, HKIN_BLDG_OFF, HKIN_BLDG_LEN),
                           premno.empty() ? street : premno + " " + street,
                           trimmed(rec, HKIN_DISTRICT_OFF, HKIN_DISTRICT_LEN),
                           trimmed(rec, HKIN_REGION_OFF, HKIN_REGION_LEN)}) {
    if (part.empty()) continue;
    if (!line.empty()) line += ", ";
    line += part;
  }
  return line;
}

void open(Workload *w, const std::string &dir) {
  std::string l1 = dir + "/LEVEL1", l2 = dir + "/LEVEL2",
              bd = dir + "/BASEDATA";
  char out[HKOUTREC_SIZE];
  hk_mtci("O", &w->handle, nullptr, out, "", nullptr, nullptr, nullptr, nullptr,
          nullptr, nullptr, nullptr, nullptr, l1.c_str(), l2.c_str(),
          bd.c_str(), nullptr, nullptr);
  for (const std::string &rec : w->records) w->lines.push_back(line_of(rec));
  // Collects the database's names before anything is timed.
  char in[HKINREC_SIZE];
  orlo_line_split(&w->handle, "1 A ROAD", 8, in, nullptr);
}

// The sample addresses tidied as hkgeocode does, without what a line cannot
// carry (reference code, extra line, mode).
const Workload &sample() {
  static Workload *w = [] {
    auto *s = new Workload;
    orlo::tools::CsvReader csv(
        std::fopen(ORLO_SOURCE_DIR "/data/sample/addresses.csv", "rb"));
    std::vector<std::string> row;
    csv.next(&row);
    while (csv.next(&row) == orlo::tools::CsvReader::Status::kRow) {
      row[0].clear();
      row[5].clear();
      row[8].clear();
      const char *text[ORLO_NF_COUNT];
      size_t len[ORLO_NF_COUNT];
      for (int i = 0; i < ORLO_NF_COUNT; ++i) {
        text[i] = row[i].data();
        len[i] = row[i].size();
      }
      std::string rec(HKINREC_SIZE, ' ');
      if (orlo_norm_address(text, len, rec.data(), nullptr) == ORLO_NORM_OK)
        s->records.push_back(rec);
    }
    open(s, ORLO_BINARY_DIR "/data/sample");
    return s;
  }();
  return *w;
}

const Workload &generated() {
  static Workload *w = [] {
    auto *g = new Workload;
    g->records = orlo::bench::inputs(orlo::bench::kRealistic, false);
    open(g, orlo::bench::database_dir());
    return g;
  }();
  return *w;
}

const Workload &workload(int64_t which) {
  return which == 0 ? sample() : generated();
}

uint64_t mix(uint64_t sum, const char *p, size_t n) {
  for (size_t i = 0; i < n; ++i)
    sum = sum * 31 + static_cast<unsigned char>(p[i]);
  return sum;
}

void report(benchmark::State &state, size_t n, uint64_t checksum) {
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(n));
  state.counters["checksum"] = static_cast<double>(checksum % 1000000007);
}

// Runs step over every item of the workload per iteration; step returns
// the bytes of its result that go into the checksum.
template <typename Item, typename Step>
void run_each(benchmark::State &state, const std::vector<Item> &items,
              Step step) {
  uint64_t sum = 0;
  for (auto _ : state) {
    sum = 0;
    for (const Item &item : items) {
      const std::string_view got = step(item);
      sum = mix(sum, got.data(), got.size());
    }
    benchmark::DoNotOptimize(sum);
  }
  report(state, items.size(), sum);
}

void BM_SplitLine(benchmark::State &state) {
  const Workload &w = workload(state.range(0));
  auto *h = const_cast<HKHANDLE *>(&w.handle);
  char in[HKINREC_SIZE];
  run_each(state, w.lines, [&](const std::string &line) {
    orlo_line_split(h, line.data(), line.size(), in, nullptr);
    return std::string_view(in, sizeof in);
  });
}

void BM_GeocodeFielded(benchmark::State &state) {
  const Workload &w = workload(state.range(0));
  auto *h = const_cast<HKHANDLE *>(&w.handle);
  char out[HKOUTREC_SIZE];
  run_each(state, w.records, [&](const std::string &rec) {
    hk_mtci("P", h, rec.data(), out, nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr);
    return std::string_view(out + HKOUT_REFCODE_OFF, 8);
  });
}

void BM_GeocodeLine(benchmark::State &state) {
  const Workload &w = workload(state.range(0));
  auto *h = const_cast<HKHANDLE *>(&w.handle);
  char out[HKOUTREC_SIZE];
  run_each(state, w.lines, [&](const std::string &line) {
    orlo_line_geocode(h, line.data(), line.size(), nullptr, out, nullptr,
                      nullptr, nullptr);
    return std::string_view(out + HKOUT_REFCODE_OFF, 8);
  });
}

// Argument 0: the sample addresses; 1: the generated realistic mix.
BENCHMARK(BM_SplitLine)->Arg(0)->Arg(1)->ArgName("generated");
BENCHMARK(BM_GeocodeFielded)->Arg(0)->Arg(1)->ArgName("generated");
BENCHMARK(BM_GeocodeLine)->Arg(0)->Arg(1)->ArgName("generated");

}  // namespace

BENCHMARK_MAIN();
