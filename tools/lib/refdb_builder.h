// Compiles a reference CSV into the three reference files LEVEL1, LEVEL2 and
// BASEDATA, and the inverse. Shared by the hkdb tool and the tests.
//
// CSV header: region,street,refcode,refid,building,parity,qual1,low,qual2,
// high,code9,address (RFC 4180 quoting; bytes kept unchanged).
#ifndef ORLO_TOOLS_REFDB_BUILDER_H
#define ORLO_TOOLS_REFDB_BUILDER_H

#include <string>
#include <string_view>

namespace orlo::tools {

// Where and why a build failed: the 1-based CSV line, the column name (empty
// when the fault is not in one field) and a message.
struct BuildError {
  long line = 0;
  std::string field;
  std::string message;
};

// Builds LEVEL1, LEVEL2 and BASEDATA in outdir (made, with any missing
// folder above it, once the CSV has compiled) from CSV text, with the rows
// exactly as given: no content rules (see refdb_rules.h), for tests and
// benchmarks that build odd data on purpose. A header without rows gives an
// empty database. date8 is the 8-character header date (empty: today's UTC
// date as YYYYMMDD). On failure returns false, fills *err and leaves no
// output file behind (files are written under temporary names and renamed
// at the end).
bool build_reference_db(std::string_view csv_text, const std::string &outdir,
                        const std::string &date8, BuildError *err);

// The same, reading the CSV from a file.
bool build_reference_db_file(const std::string &csv_path,
                             const std::string &outdir,
                             const std::string &date8, BuildError *err);

}  // namespace orlo::tools

#endif  // ORLO_TOOLS_REFDB_BUILDER_H
