#include <cstdio>

#include "hkdb/cli.h"
#include "hkdb/output_sink.h"
#include "lib/refdb_check.h"
#include "lib/refdb_dump.h"

namespace orlo::tools::hkdb {

namespace {

constexpr const char *kHelp =
    "Usage: hkdb dump DBDIR [--out CSV]\n"
    "\n"
    "Writes the database in DBDIR (LEVEL1, LEVEL2, BASEDATA) as a reference\n"
    "CSV, in file order, to standard output or to the file CSV. Building the\n"
    "CSV again with the database's date (shown in the summary) gives the\n"
    "same files. A database that fails 'hkdb check' is not dumped (exit 1).\n";

constexpr size_t kFaultsShown = 3;  // of each kind; hkdb check lists more

}  // namespace

int run_dump(int argc, char **argv) {
  Args args;
  if (int status = start_command(argc, argv, "dump", kHelp, {"--out"}, 1,
                                 "DBDIR", &args);
      status >= 0)
    return status;
  std::string error;
  RefdbImages images;
  if (!load_reference_images(args.positional[0], &images, &error))
    return data_error("dump", error);
  CheckReport report = check_reference_images(images, kFaultsShown);
  if (report.fault_count > 0) {
    for (const CheckFault &f : report.faults)
      std::fprintf(stderr, "%s\n", format_fault(f).c_str());
    return data_error("dump", "the database has " +
                                  counted(report.fault_count, "fault") +
                                  "; not dumped (hkdb check lists them)");
  }
  OutputSink out;
  auto it = args.options.find("--out");
  if (!out.open(it == args.options.end() ? "" : it->second, &error))
    return data_error("dump", error);
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

}  // namespace orlo::tools::hkdb
