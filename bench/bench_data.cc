// Generation of the benchmarks' reference database and input records.
#include "bench_data.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <vector>

#include "lib/csv_reader.h"
#include "lib/refdb_builder.h"
#include "lib/reference_generator.h"
#include "orlo_records.h"

namespace orlo::bench {
namespace {

uint64_t record_count() {
  const char *env = std::getenv("ORLO_BENCH_RECORDS");
  return env != nullptr ? std::strtoull(env, nullptr, 10) : 1000000;
}

bool exists(const std::string &path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0;
}

// Generates and builds the database unless an earlier run did. Returns its
// directory, or an empty string when it cannot be made.
}  // namespace

const std::string &database_dir() {
  static const std::string dir = [] {
    uint64_t n = record_count();
    std::string d = "/tmp/orlo-search-bench-" + std::to_string(n);
    std::string csv = d + "/reference.csv";
    if (exists(d + "/BASEDATA") && exists(csv)) return d;
    ::mkdir(d.c_str(), 0755);
    std::FILE *f = std::fopen(csv.c_str(), "wb");
    if (f == nullptr) return std::string();
    orlo::tools::GeneratorOptions options;
    options.records = n;
    std::string error;
    bool ok = orlo::tools::generate_reference_csv(
        options,
        [f](std::string_view piece) {
          std::fwrite(piece.data(), 1, piece.size(), f);
        },
        &error);
    ok = std::fclose(f) == 0 && ok;
    orlo::tools::BuildError err;
    if (!ok ||
        !orlo::tools::build_reference_db_file(csv, d, "20260101", &err)) {
      std::fprintf(stderr, "cannot make the database in %s: %s%s\n", d.c_str(),
                   error.c_str(), err.message.c_str());
      return std::string();
    }
    return d;
  }();
  return dir;
}

namespace {

// ---- Input records -----------------------------------------------------

struct Row {
  std::string region, street, building, low;
};

// Every 40th reference row (25000 of a million), as input addresses.
std::vector<Row> sample_rows(const std::string &dir) {
  std::vector<Row> rows;
  std::FILE *f = std::fopen((dir + "/reference.csv").c_str(), "rb");
  if (f == nullptr) return rows;
  orlo::tools::CsvReader reader(f);
  std::vector<std::string> fields;
  for (long i = 0; reader.next(&fields) == orlo::tools::CsvReader::Status::kRow;
       ++i) {
    if (i == 0 || i % 40 != 0 || fields.size() < 12) continue;
    rows.push_back({fields[0], fields[1], fields[4], fields[7]});
  }
  std::fclose(f);
  return rows;
}

void put(std::string &rec, int off, int len, const std::string &text) {
  size_t n = std::min(text.size(), static_cast<size_t>(len));
  rec.replace(off, n, text, 0, n);
}

std::string input_record(const Row &r, const std::string &street,
                         const std::string &premno) {
  std::string rec(HKINREC_SIZE, ' ');
  put(rec, HKIN_REGION_OFF, HKIN_REGION_LEN, r.region);
  put(rec, HKIN_STREET_OFF, HKIN_STREET_LEN, street);
  put(rec, HKIN_BLDG_OFF, HKIN_BLDG_LEN, r.building);
  put(rec, HKIN_PREMNO_OFF, HKIN_PREMNO_LEN, premno);
  rec[HKIN_MODE_OFF] = '1';
  return rec;
}

// The street name with two neighbouring letters exchanged near the middle
// of its longest word, the commonest typing error.
std::string typo(const std::string &street) {
  std::string s = street;
  size_t best = 0, best_len = 0;
  for (size_t i = 0; i < s.size();) {
    size_t j = s.find(' ', i);
    if (j == std::string::npos) j = s.size();
    if (j - i > best_len) best = i, best_len = j - i;
    i = j + 1;
  }
  for (size_t k = best + best_len / 2; k + 1 < best + best_len; ++k) {
    if (s[k] != s[k + 1]) {
      std::swap(s[k], s[k + 1]);
      break;
    }
  }
  return s;
}

// The street name with its street-type word abbreviated.
std::string abbreviated(const std::string &street) {
  static const std::pair<const char *, const char *> kWords[] = {
      {" ROAD", " RD"}, {" STREET", " ST"}, {" AVENUE", " AVE"}};
  for (auto [word, abbr] : kWords) {
    size_t at = street.rfind(word);
    if (at != std::string::npos) {
      return street.substr(0, at) + abbr + street.substr(at + strlen(word));
    }
  }
  return typo(street);
}

// A realistic batch: mostly exact names, some with typing errors or
// abbreviations, some numbers that no record holds, some unknown streets.
std::string realistic(const Row &r, std::mt19937 &rng) {
  int roll = static_cast<int>(rng() % 100);
  if (roll < 70) return input_record(r, r.street, r.low);
  if (roll < 80) return input_record(r, typo(r.street), r.low);
  if (roll < 88) return input_record(r, abbreviated(r.street), r.low);
  if (roll < 95) return input_record(r, r.street, "9999");
  return input_record(r, "NO SUCH " + r.street, r.low);
}

std::vector<std::string> make_inputs(Mix mix, bool sorted) {
  std::vector<Row> rows = sample_rows(database_dir());
  std::mt19937 rng(42);
  std::vector<std::string> recs;
  for (const Row &r : rows) {
    switch (mix) {
      case kExact:
        recs.push_back(input_record(r, r.street, r.low));
        break;
      case kFuzzy:
        recs.push_back(input_record(r, typo(r.street), r.low));
        break;
      case kRealistic:
        recs.push_back(realistic(r, rng));
        break;
      case kNoRegion:
        recs.push_back(input_record(r, r.street, r.low));
        recs.back().replace(HKIN_REGION_OFF, HKIN_REGION_LEN, HKIN_REGION_LEN,
                            ' ');
    }
  }
  std::shuffle(recs.begin(), recs.end(), rng);
  if (sorted) {
    // A batch sorted by region and street, as a caller may present it.
    std::stable_sort(
        recs.begin(), recs.end(), [](const auto &a, const auto &b) {
          return a.compare(HKIN_REGION_OFF, HKIN_REGION_LEN, b, HKIN_REGION_OFF,
                           HKIN_REGION_LEN) < 0 ||
                 (a.compare(HKIN_REGION_OFF, HKIN_REGION_LEN, b,
                            HKIN_REGION_OFF, HKIN_REGION_LEN) == 0 &&
                  a.compare(HKIN_STREET_OFF, HKIN_STREET_LEN, b,
                            HKIN_STREET_OFF, HKIN_STREET_LEN) < 0);
        });
  }
  return recs;
}

}  // namespace

const std::vector<std::string> &inputs(Mix mix, bool sorted) {
  // Benchmarks running on several threads ask for their inputs at once.
  static std::mutex lock;
  static std::unique_ptr<std::vector<std::string>> cache[4][2];
  std::lock_guard<std::mutex> hold(lock);
  auto &c = cache[mix][sorted];
  if (!c)
    c = std::make_unique<std::vector<std::string>>(make_inputs(mix, sorted));
  return *c;
}

}  // namespace orlo::bench
