#include <cstdio>
#include <memory>
#include <string>

#include "hkdb/commands.h"
#include "hkdb/output_sink.h"
#include "lib/command_line.h"
#include "lib/refdb_check.h"
#include "lib/refdb_dump.h"

namespace orlo::tools::hkdb {

namespace {

constexpr const char *kHelp =
    "Usage: hkdb dump DBDIR [OPTIONS]\n"
    "\n"
    "Writes the database in DBDIR (LEVEL1, LEVEL2, BASEDATA) as a reference\n"
    "CSV, in file order, to standard output or to the file CSV. Building the\n"
    "CSV again with the database's date (shown in the summary) gives the\n"
    "same files. A database that fails 'hkdb check' is not dumped (exit 1).\n";

constexpr size_t kFaultsShown = 3;  // of each kind; hkdb check lists more

int run_dump(const std::string &dbdir, const std::string &out_path) {
  std::string error;
  RefdbImages images;
  if (!load_reference_images(dbdir, &images, &error))
    return data_error("dump", error);
  CheckReport report = check_reference_images(images, kFaultsShown);
  if (report.fault_count > 0) {
    // Each fault names its file, here with the folder it lies in.
    for (const CheckFault &f : report.faults)
      std::fprintf(stderr, "hkdb dump: %s/%s\n", dbdir.c_str(),
                   format_fault(f).c_str());
    return data_error("dump", dbdir + ": the database has " +
                                  counted(report.fault_count, "fault") +
                                  "; not dumped (hkdb check lists them)");
  }
  OutputSink out;
  if (!out.open(out_path, &error)) return data_error("dump", error);
  WalkTotals totals;
  dump_reference_images(images, out.writer(), &totals);
  if (!out.close(&error)) return data_error("dump", error);
  std::fprintf(stderr,
               "hkdb dump: %llu regions, %llu streets, %llu records; "
               "database date %s\n",
               static_cast<unsigned long long>(totals.regions),
               static_cast<unsigned long long>(totals.streets),
               static_cast<unsigned long long>(totals.records),
               totals.date.c_str());
  return kExitOk;
}

}  // namespace

Command add_dump_command(CLI::App *hkdb) {
  struct Args {
    std::string dbdir, out;
  };
  auto args = std::make_shared<Args>();
  CLI::App *app = hkdb->add_subcommand("dump", kHelp);
  app->footer(kExitStatusHelp);
  app->add_option("DBDIR", args->dbdir, "the database folder")->required();
  app->add_option("--out", args->out,
                  "write the CSV to this file (default: standard output)")
      ->type_name("CSV");
  return {app, [args] { return run_dump(args->dbdir, args->out); }};
}

}  // namespace orlo::tools::hkdb
