#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "hkdb/cli.h"
#include "lib/refdb_compiler.h"

namespace orlo::tools::hkdb {

namespace {

constexpr const char *kHelp =
    "Usage: hkdb build CSV OUTDIR [--date TEXT8]\n"
    "\n"
    "Compiles the reference CSV into LEVEL1, LEVEL2 and BASEDATA in OUTDIR\n"
    "(made when it does not exist). The CSV starts with the header line\n"
    "  region,street,refcode,refid,building,parity,qual1,low,qual2,high,"
    "code9,address\n"
    "and has one reference record a row. --date sets the 8-character date\n"
    "at the head of BASEDATA (default: today's UTC date as YYYYMMDD).\n"
    "\n"
    "A CSV with only its header line gives an empty database (the matcher\n"
    "opens it and finds no region: match status 1 for every address), with\n"
    "a warning.\n"
    "\n"
    "On a fault the CSV line and field are named, no output file is\n"
    "written and the exit status is 1.\n";

std::string describe(const std::string &csv, const BuildError &err) {
  if (err.line == 0) return err.message;
  std::string where = csv + " line " + std::to_string(err.line);
  if (!err.field.empty()) where += ", field " + err.field;
  return where + ": " + err.message;
}

}  // namespace

int run_build(int argc, char **argv) {
  Args args;
  if (int status = start_command(argc, argv, "build", kHelp, {"--date"}, 2,
                                 "CSV and OUTDIR", &args);
      status >= 0)
    return status;
  std::string error;
  const std::string &csv_path = args.positional[0];
  const std::string &outdir = args.positional[1];
  BuildOptions options;
  if (auto d = args.options.find("--date"); d != args.options.end()) {
    if (d->second.size() != 8)
      return usage_error("build", "--date needs exactly 8 characters");
    options.date8 = d->second;
  }

  std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(
      std::fopen(csv_path.c_str(), "rb"), &std::fclose);
  if (!file)
    return data_error("build",
                      "cannot open " + csv_path + ": " + std::strerror(errno));
  CsvReader csv(file.get());
  BuildStats stats;
  BuildError err;
  bool ok;
  {
    Progress progress("build", "rows read");
    options.progress = [&progress](uint64_t rows) { progress.update(rows); };
    ok = build_reference_db_from(&csv, outdir, options, &stats, &err);
  }
  if (!ok) return data_error("build", describe(csv_path, err));
  if (stats.rows == 0)
    std::fprintf(stderr,
                 "hkdb build: warning: %s has no rows after its header line; "
                 "the database is empty and every address will get match "
                 "status 1 (no region)\n",
                 csv_path.c_str());
  std::printf(
      "hkdb build: %s: %llu rows, %llu regions, %llu streets; LEVEL1 %llu "
      "bytes, LEVEL2 %llu bytes, BASEDATA %llu bytes\n",
      outdir.c_str(), static_cast<unsigned long long>(stats.rows),
      static_cast<unsigned long long>(stats.regions),
      static_cast<unsigned long long>(stats.streets),
      static_cast<unsigned long long>(stats.level1_bytes),
      static_cast<unsigned long long>(stats.level2_bytes),
      static_cast<unsigned long long>(stats.basedata_bytes));
  return kExitOk;
}

}  // namespace orlo::tools::hkdb
