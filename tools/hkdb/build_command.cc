#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "hkdb/commands.h"
#include "lib/command_line.h"
#include "lib/refdb_compiler.h"

namespace orlo::tools::hkdb {

namespace {

constexpr const char *kHelp =
    "Usage: hkdb build CSV OUTDIR [OPTIONS]\n"
    "\n"
    "Compiles the reference CSV into LEVEL1, LEVEL2 and BASEDATA in OUTDIR\n"
    "(made when it does not exist). The CSV starts with the header line\n"
    "  region,street,refcode,refid,building,parity,qual1,low,qual2,high,"
    "code9,address\n"
    "and has one reference record a row, in Latin-1.\n"
    "\n"
    "Each row is checked: every field within its width; the region one of\n"
    "the keys the front ends route to, HK, KLN and NT (unless\n"
    "--any-region); parity E, O or empty; refcode 3 and refid 5 letters or\n"
    "digits, or empty; the low number not above the high one. Lower-case\n"
    "letters are folded to upper case, as the front ends fold input, with\n"
    "one warning that counts the rows; exact duplicate rows are kept once,\n"
    "with a warning that counts them and names the first.\n"
    "\n"
    "A CSV with only its header line gives an empty database (the matcher\n"
    "opens it and finds no region: match status 1 for every address), with\n"
    "a warning.\n"
    "\n"
    "On a fault the CSV line and field are named, no output file is\n"
    "written and the exit status is 1.\n";

struct BuildArgs {
  std::string csv_path;
  std::string outdir;
  BuildOptions options;
  bool any_region = false;
};

// Warnings of what the rules changed, on standard error.
void warn(const BuildStats &stats) {
  if (stats.folded_rows > 0)
    std::fprintf(stderr,
                 "hkdb build: warning: %s had lower-case letters, folded to "
                 "upper case (the first on line %ld)\n",
                 counted(stats.folded_rows, "row").c_str(),
                 stats.first_folded_line);
  if (stats.repeated_rows == 0) return;
  std::string which;
  for (const RepeatedRow &r : stats.repeats)
    which += (which.empty() ? "" : ", ") + std::string("line ") +
             std::to_string(r.line) + " repeats line " +
             std::to_string(r.first);
  if (stats.repeated_rows > stats.repeats.size()) which += ", ...";
  std::fprintf(stderr,
               "hkdb build: warning: %s repeated an earlier row exactly and "
               "%s left out: %s\n",
               counted(stats.repeated_rows, "row").c_str(),
               stats.repeated_rows == 1 ? "was" : "were", which.c_str());
}

std::string describe(const std::string &csv, const BuildError &err) {
  if (err.line == 0) return err.message;
  std::string where = csv + " line " + std::to_string(err.line);
  if (!err.field.empty()) where += ", field " + err.field;
  return where + ": " + err.message;
}

int run_build(const BuildArgs &args) {
  const std::string &csv_path = args.csv_path;
  const std::string &outdir = args.outdir;
  BuildOptions options = args.options;
  options.rules.known_regions = !args.any_region;

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
  warn(stats);
  std::string rows = counted(stats.rows, "row");
  if (stats.repeated_rows > 0)
    rows += " (" + std::to_string(stats.repeated_rows) + " left out)";
  std::printf(
      "hkdb build: %s: %s, %s, %s; LEVEL1 %llu bytes, LEVEL2 %llu bytes, "
      "BASEDATA %llu bytes\n",
      outdir.c_str(), rows.c_str(), counted(stats.regions, "region").c_str(),
      counted(stats.streets, "street").c_str(),
      static_cast<unsigned long long>(stats.level1_bytes),
      static_cast<unsigned long long>(stats.level2_bytes),
      static_cast<unsigned long long>(stats.basedata_bytes));
  return kExitOk;
}

// The date at the head of BASEDATA is 8 characters, whatever they are.
CLI::Validator eight_characters() {
  return CLI::Validator(
      [](std::string &text) -> std::string {
        return text.size() == 8 ? "" : "needs exactly 8 characters";
      },
      "");
}

}  // namespace

Command add_build_command(CLI::App *hkdb) {
  auto args = std::make_shared<BuildArgs>();
  CLI::App *app = hkdb->add_subcommand("build", kHelp);
  app->footer(kExitStatusHelp);
  app->add_option("CSV", args->csv_path, "the reference CSV")->required();
  app->add_option("OUTDIR", args->outdir, "the output folder")->required();
  app->add_option("--date", args->options.date8,
                  "the 8-character date at the head of BASEDATA\n"
                  "(default: today's UTC date as YYYYMMDD)")
      ->type_name("TEXT8")
      ->check(eight_characters());
  app->add_flag("--any-region", args->any_region,
                "allow any region key, not only HK, KLN and NT");
  return {app, [args] { return run_build(*args); }};
}

}  // namespace orlo::tools::hkdb
