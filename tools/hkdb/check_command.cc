#include <cstdio>

#include "hkdb/cli.h"
#include "lib/refdb_check.h"

namespace orlo::tools::hkdb {

namespace {

constexpr const char *kHelp =
    "Usage: hkdb check DBDIR\n"
    "\n"
    "Validates LEVEL1, LEVEL2 and BASEDATA in DBDIR: LEVEL1 keys sorted and\n"
    "unique; every segment inside LEVEL2, its street records ending exactly\n"
    "at its length and their count matching; street names NUL-terminated,\n"
    "at most 30 bytes and sorted; every block inside BASEDATA, its records\n"
    "walking exactly to its end and their count matching; record lengths 4\n"
    "to 127; every item inside its record, of a known type, and decoding\n"
    "within its field's width; LEVEL2 and BASEDATA whole 23200-byte units.\n"
    "\n"
    "Prints each fault with its file and byte offset, then a summary.\n"
    "Exit status 1 when there is any fault.\n";

constexpr size_t kFaultsShown = 1000;

}  // namespace

int run_check(int argc, char **argv) {
  Args args;
  if (int status =
          start_command(argc, argv, "check", kHelp, {}, 1, "DBDIR", &args);
      status >= 0)
    return status;
  std::string error;
  RefdbImages images;
  if (!load_reference_images(args.positional[0], &images, &error))
    return data_error("check", error);
  CheckReport report = check_reference_images(images, kFaultsShown);
  for (const CheckFault &f : report.faults)
    std::printf("%s\n", format_fault(f).c_str());
  if (report.fault_count > report.faults.size())
    std::printf("... and %llu more faults\n",
                static_cast<unsigned long long>(report.fault_count -
                                                report.faults.size()));
  const WalkTotals &t = report.totals;
  std::printf(
      "hkdb check: %s: %llu regions, %llu streets, %llu records; date %s; "
      "LEVEL1 %zu bytes, LEVEL2 %zu bytes, BASEDATA %zu bytes; %llu faults\n",
      args.positional[0].c_str(), static_cast<unsigned long long>(t.regions),
      static_cast<unsigned long long>(t.streets),
      static_cast<unsigned long long>(t.records), t.date.c_str(),
      images.level1.size(), images.level2.size(), images.basedata.size(),
      static_cast<unsigned long long>(report.fault_count));
  return report.fault_count == 0 ? kExitOk : kExitData;
}

}  // namespace orlo::tools::hkdb
