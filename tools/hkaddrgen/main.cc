// hkaddrgen: writes input addresses for hkgeocode, derived from a reference
// CSV, for tests and benchmarks.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "hkaddrgen/address_variants.h"
#include "lib/csv_reader.h"
#include "lib/csv_writer.h"
#include "lib/refdb_compiler.h"

namespace orlo::tools::hkaddrgen {
namespace {

constexpr int kExitOk = 0;
constexpr int kExitData = 1;
constexpr int kExitUsage = 2;

// At most this many reference records are kept to draw addresses from; a
// larger reference CSV is sampled evenly.
constexpr size_t kPlacesKept = 200000;

constexpr const char *kUsage =
    "Usage: hkaddrgen --reference CSV --count N [--seed S] [--out PATH]\n"
    "\n"
    "Writes N input addresses in the CSV form that hkgeocode reads, made\n"
    "from the records of the reference CSV (as written by 'hkdb generate'\n"
    "or data/sample/reference.csv): house numbers inside the reference\n"
    "ranges, streets in full or abbreviated, building names with floor and\n"
    "unit lines, typing errors, and about 5% unknown streets. The same\n"
    "reference, N and seed (default 1) always give the same file.\n"
    "Exit status: 0 success, 1 unreadable or bad reference CSV or output\n"
    "error, 2 wrong usage.\n";

struct Args {
  std::string reference, out;
  unsigned long long count = 0, seed = 1;
  bool have_count = false, help = false;
};

bool parse_number(const char *text, unsigned long long *value) {
  if (*text == '\0' || std::strlen(text) > 18) return false;
  unsigned long long v = 0;
  for (const char *p = text; *p != '\0'; ++p) {
    if (*p < '0' || *p > '9') return false;
    v = v * 10 + static_cast<unsigned long long>(*p - '0');
  }
  *value = v;
  return true;
}

bool parse_args(int argc, char **argv, Args *a, std::string *error) {
  for (int i = 1; i < argc; ++i) {
    std::string_view name = argv[i];
    if (name == "--help" || name == "-h") {
      a->help = true;
      continue;
    }
    if (i + 1 >= argc) {
      *error = "unknown option or missing value: " + std::string(name);
      return false;
    }
    const char *value = argv[++i];
    bool ok = true;
    if (name == "--reference") {
      a->reference = value;
    } else if (name == "--out") {
      a->out = value;
    } else if (name == "--count") {
      ok = a->have_count = parse_number(value, &a->count);
    } else if (name == "--seed") {
      ok = parse_number(value, &a->seed);
    } else {
      *error = "unknown option " + std::string(name);
      return false;
    }
    if (!ok) {
      *error = std::string(name) + " needs a whole number";
      return false;
    }
  }
  if (!a->help && (a->reference.empty() || !a->have_count)) {
    *error = "--reference and --count are required";
    return false;
  }
  return true;
}

// Reads the reference CSV, keeping an even sample of at most kPlacesKept
// records (reservoir sampling).
bool read_places(const std::string &path, std::mt19937_64 &rng,
                 std::vector<ReferencePlace> *places, std::string *error) {
  std::FILE *f = std::fopen(path.c_str(), "rb");
  if (f == nullptr) {
    *error = "cannot open " + path + ": " + std::strerror(errno);
    return false;
  }
  CsvReader reader(f);
  std::vector<std::string> fields;
  unsigned long long seen = 0;
  bool ok = true;
  for (bool header = true;; header = false) {
    CsvReader::Status s = reader.next(&fields);
    if (s == CsvReader::Status::kEnd) break;
    // Faults name the file and line as hkdb build does.
    std::string fault;
    BuildError header_error;
    if (s == CsvReader::Status::kError) {
      fault = reader.error();
    } else if (header && !RefdbCollector::check_header(fields, &header_error)) {
      fault = header_error.message;
    } else if (fields.size() != 12) {
      fault = "expected 12 fields, found " + std::to_string(fields.size());
    }
    if (!fault.empty()) {
      *error = path + " line " + std::to_string(reader.line()) + ": " + fault;
      ok = false;
      break;
    }
    if (header) continue;
    ReferencePlace p{fields[0], fields[1], fields[2], fields[4],
                     fields[5], fields[6], fields[7], fields[9]};
    if (places->size() < kPlacesKept) {
      places->push_back(std::move(p));
    } else {
      unsigned long long j =
          std::uniform_int_distribution<unsigned long long>(0, seen)(rng);
      if (j < kPlacesKept) (*places)[j] = std::move(p);
    }
    ++seen;
  }
  std::fclose(f);
  if (ok && places->empty()) {
    *error = path + ": no reference records after the header line";
    ok = false;
  }
  return ok;
}

bool write_addresses(const Args &a, const std::vector<ReferencePlace> &places,
                     std::mt19937_64 &rng, std::FILE *out) {
  std::fputs("refcode,premno,street,building,unit,extra,district,region,mode\n",
             out);
  std::uniform_int_distribution<size_t> any(0, places.size() - 1);
  std::string line;
  for (unsigned long long n = 0; n < a.count; ++n) {
    AddressRow row = make_address(places[any(rng)], rng);
    line.clear();
    append_csv_row(&line, row);
    std::fwrite(line.data(), 1, line.size(), out);
  }
  return std::fflush(out) == 0 && std::ferror(out) == 0;
}

int run(const Args &a) {
  std::mt19937_64 rng(a.seed);
  std::vector<ReferencePlace> places;
  std::string error;
  if (!read_places(a.reference, rng, &places, &error)) {
    std::fprintf(stderr, "hkaddrgen: %s\n", error.c_str());
    return kExitData;
  }
  std::FILE *out = a.out.empty() ? stdout : std::fopen(a.out.c_str(), "wb");
  if (out == nullptr) {
    std::fprintf(stderr, "hkaddrgen: cannot create %s: %s\n", a.out.c_str(),
                 std::strerror(errno));
    return kExitData;
  }
  bool written = write_addresses(a, places, rng, out);
  if (out != stdout) written = std::fclose(out) == 0 && written;
  if (!written) {
    std::fprintf(stderr, "hkaddrgen: error writing %s\n",
                 a.out.empty() ? "standard output" : a.out.c_str());
    return kExitData;
  }
  std::fprintf(stderr, "hkaddrgen: %llu addresses from %zu reference records\n",
               a.count, places.size());
  return kExitOk;
}

}  // namespace
}  // namespace orlo::tools::hkaddrgen

int main(int argc, char **argv) {
  namespace ag = orlo::tools::hkaddrgen;
  ag::Args args;
  std::string error;
  if (!ag::parse_args(argc, argv, &args, &error)) {
    std::fprintf(stderr, "hkaddrgen: %s\nTry 'hkaddrgen --help'.\n",
                 error.c_str());
    return ag::kExitUsage;
  }
  if (args.help) {
    std::fputs(ag::kUsage, stdout);
    return ag::kExitOk;
  }
  return ag::run(args);
}
