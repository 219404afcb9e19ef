// hkaddrgen: writes input addresses for hkgeocode, derived from a reference
// CSV, for tests and benchmarks.
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "hkaddrgen/address_variants.h"
#include "lib/command_line.h"
#include "lib/csv_reader.h"
#include "lib/csv_writer.h"
#include "lib/refdb_compiler.h"

namespace orlo::tools::hkaddrgen {
namespace {

constexpr int kExitOk = 0;
constexpr int kExitData = 1;

// At most this many reference records are kept to draw addresses from; a
// larger reference CSV is sampled evenly.
constexpr size_t kPlacesKept = 200000;

constexpr const char *kDescription =
    "Usage: hkaddrgen --reference CSV --count N [OPTIONS]\n"
    "\n"
    "Writes N input addresses in the CSV form that hkgeocode reads, made\n"
    "from the records of the reference CSV (as written by 'hkdb generate'\n"
    "or data/sample/reference.csv): house numbers inside the reference\n"
    "ranges, streets in full or abbreviated, building names with floor and\n"
    "unit lines, typing errors, and about 5% unknown streets. The same\n"
    "reference, N and seed always give the same file.\n";

constexpr const char *kExitStatus =
    "\nExit status: 0 success, 1 unreadable or bad reference CSV or output\n"
    "error, 2 wrong usage.\n";

struct Args {
  std::string reference, out;
  uint64_t count = 0, seed = 1;
};

void define_command_line(CLI::App *app, Args *a) {
  app->description(kDescription);
  use_tool_help(app, kExitStatus);
  app->add_option("--reference", a->reference,
                  "the reference CSV to draw addresses from")
      ->type_name("CSV")
      ->required();
  app->add_option("--count", a->count, "the number of addresses to write")
      ->type_name("N")
      ->required()
      ->check(whole_number());
  app->add_option("--seed", a->seed,
                  "the seed of the random choices (default 1)")
      ->type_name("S")
      ->check(whole_number());
  app->add_option("--out", a->out,
                  "write the addresses to this file (default: standard\n"
                  "output)")
      ->type_name("PATH");
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
  for (uint64_t n = 0; n < a.count; ++n) {
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
               static_cast<unsigned long long>(a.count), places.size());
  return kExitOk;
}

}  // namespace
}  // namespace orlo::tools::hkaddrgen

int main(int argc, char **argv) {
  namespace ag = orlo::tools::hkaddrgen;
  ag::Args args;
  CLI::App app("", "hkaddrgen");
  ag::define_command_line(&app, &args);
  if (int status = orlo::tools::parse_command_line(&app, argc, argv);
      status >= 0)
    return status;
  return ag::run(args);
}
