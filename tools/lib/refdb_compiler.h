// The reference database builder in steps: rows are collected into regions
// and streets (each street's packed records kept in CSV order), then sorted
// and written. refdb_builder.h is the simple entry point on top of this.
#ifndef ORLO_TOOLS_REFDB_COMPILER_H
#define ORLO_TOOLS_REFDB_COMPILER_H

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "lib/csv_reader.h"
#include "lib/refdb_builder.h"
#include "lib/refdb_format.h"
#include "lib/refdb_rules.h"

namespace orlo::tools {

// The sizes that the file layouts can hold. Tests lower them to reach the
// overflow checks without gigabytes of data.
struct BuildLimits {
  uint32_t max_streets_per_region = refdb::kMaxCount;
  uint32_t max_records_per_street = refdb::kMaxCount;
  uint64_t max_file_offset = UINT32_MAX;  // end of any block or segment
};

// A row dropped as an exact repeat: its line and the line it repeats.
struct RepeatedRow {
  long line;
  long first;
};

struct BuildStats {
  uint64_t rows = 0;
  uint64_t folded_rows = 0;  // rows whose lower-case letters were folded
  long first_folded_line = 0;
  uint64_t repeated_rows = 0;        // exact repeats, dropped
  std::vector<RepeatedRow> repeats;  // the first kRepeatsKept of them
  uint64_t regions = 0;
  uint64_t streets = 0;
  uint64_t level1_bytes = 0;
  uint64_t level2_bytes = 0;
  uint64_t basedata_bytes = 0;
};

inline constexpr size_t kRepeatsKept = 5;

struct BuildOptions {
  std::string date8;  // empty: today's UTC date
  BuildLimits limits;
  ContentRules rules;
  // Called every few tens of thousands of rows with the rows read so far.
  std::function<void(uint64_t rows)> progress;
};

// One street: its name and its packed records in CSV order.
struct StreetData {
  std::string name;
  std::string block;
  uint32_t records = 0;
};

// One region: its key padded to 30 bytes and its streets (indices into
// RefdbContent::streets, in order of first appearance).
struct RegionData {
  std::string key;
  std::vector<uint32_t> streets;
};

struct RefdbContent {
  std::vector<RegionData> regions;
  std::vector<StreetData> streets;
};

// Validates rows and gathers them into a RefdbContent, counting what the
// rules fold and drop in *stats.
class RefdbCollector {
 public:
  RefdbCollector(const BuildLimits &limits, const ContentRules &rules,
                 BuildStats *stats)
      : limits_(limits), rules_(rules), stats_(stats) {}

  // Checks the header row (line 1).
  static bool check_header(const std::vector<std::string> &row,
                           BuildError *err);
  // Adds one data row that starts on CSV line `line`.
  bool add_row(std::vector<std::string> row, long line, BuildError *err);

  RefdbContent &content() { return content_; }

 private:
  uint32_t region_index(const std::string &padded_key);
  bool street_index(uint32_t region, const std::string &name, long line,
                    uint32_t *index, BuildError *err);
  bool repeated(uint32_t street, std::string_view packed, long line);

  // Where a packed record already stored lies, to find exact repeats.
  struct StoredRecord {
    uint32_t street;
    uint32_t offset;  // in the street's block
    long line;
  };

  BuildLimits limits_;
  ContentRules rules_;
  BuildStats *stats_;
  std::unordered_multimap<uint64_t, StoredRecord> stored_;
  RefdbContent content_;
  std::unordered_map<std::string, uint32_t> regions_by_key_;
  std::unordered_map<std::string, uint32_t> streets_by_key_;
  uint64_t level2_bytes_ = 0;
  uint64_t basedata_bytes_ = refdb::kDateBytes;
};

// Sorts content and writes LEVEL1, LEVEL2 and BASEDATA into outdir through
// temporary files. False with *error set when a file cannot be written.
bool write_reference_db(RefdbContent *content, const std::string &outdir,
                        const std::string &date8, BuildStats *stats,
                        std::string *error);

// Reads the whole CSV from csv and builds the database in outdir, applying
// options.rules.
bool build_reference_db_from(CsvReader *csv, const std::string &outdir,
                             const BuildOptions &options, BuildStats *stats,
                             BuildError *err);

// Today's UTC date as YYYYMMDD.
std::string today_utc_date8();

}  // namespace orlo::tools

#endif  // ORLO_TOOLS_REFDB_COMPILER_H
