#include <cstdio>
#include <limits>
#include <memory>
#include <string>

#include "hkdb/commands.h"
#include "lib/command_line.h"
#include "lib/refdb_check.h"

namespace orlo::tools::hkdb {

namespace {

constexpr const char *kHelp =
    "Usage: hkdb check DBDIR [OPTIONS]\n"
    "\n"
    "Validates LEVEL1, LEVEL2 and BASEDATA in DBDIR: LEVEL1 keys sorted and\n"
    "unique; every segment inside LEVEL2, its street records ending exactly\n"
    "at its length and their count matching; street names NUL-terminated,\n"
    "at most 30 bytes and sorted; every block inside BASEDATA, its records\n"
    "walking exactly to its end and their count matching; record lengths 4\n"
    "to 127; every item inside its record, of a known type, and decoding\n"
    "within its field's width; LEVEL2 and BASEDATA whole 23200-byte units.\n"
    "\n"
    "Prints the faults grouped by kind, each with its file and byte offset\n"
    "(a byte that is not printable text as \\xNN), at most ten of each kind,\n"
    "then a summary. Exit status 1 when there is any\n"
    "fault.\n";

constexpr size_t kFaultsPerKind = 10;

void print_group(const CheckReport &report, FaultKind kind, size_t shown) {
  uint64_t n = report.by_kind[static_cast<size_t>(kind)];
  if (n == 0) return;
  std::string_view title = fault_kind_title(kind);
  std::printf("%.*s: %s", static_cast<int>(title.size()), title.data(),
              counted(n, "fault").c_str());
  if (n > shown) std::printf(", the first %zu (--all shows every one)", shown);
  std::printf("\n");
  for (const CheckFault &f : report.faults)
    if (f.kind == kind) std::printf("  %s\n", format_fault(f).c_str());
}

int run_check(const std::string &dbdir, bool all) {
  std::string error;
  RefdbImages images;
  if (!load_reference_images(dbdir, &images, &error))
    return data_error("check", error);
  size_t shown = all ? std::numeric_limits<size_t>::max() : kFaultsPerKind;
  CheckReport report = check_reference_images(images, shown);
  for (size_t k = 0; k < kFaultKinds; ++k)
    print_group(report, static_cast<FaultKind>(k), shown);
  const WalkTotals &t = report.totals;
  std::printf(
      "hkdb check: %s: %s, %s, %s; date %s; LEVEL1 %zu bytes, LEVEL2 %zu "
      "bytes, BASEDATA %zu bytes; %s\n",
      dbdir.c_str(), counted(t.regions, "region").c_str(),
      counted(t.streets, "street").c_str(),
      counted(t.records, "record").c_str(), printable_text(t.date).c_str(),
      images.level1.size(), images.level2.size(), images.basedata.size(),
      counted(report.fault_count, "fault").c_str());
  return report.fault_count == 0 ? kExitOk : kExitData;
}

}  // namespace

Command add_check_command(CLI::App *hkdb) {
  struct Args {
    std::string dbdir;
    bool all = false;
  };
  auto args = std::make_shared<Args>();
  CLI::App *app = hkdb->add_subcommand("check", kHelp);
  app->footer(kExitStatusHelp);
  app->add_option("DBDIR", args->dbdir, "the database folder")->required();
  app->add_flag("--all", args->all, "list every fault, not ten of each kind");
  return {app, [args] { return run_check(args->dbdir, args->all); }};
}

}  // namespace orlo::tools::hkdb
