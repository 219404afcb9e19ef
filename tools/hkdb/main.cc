// hkdb: builds, dumps, checks and generates Hong Kong reference databases
// (LEVEL1, LEVEL2, BASEDATA) and their reference CSV.
#include <cstdio>
#include <string_view>

#include "hkdb/cli.h"

namespace {

constexpr const char *kUsage =
    "Usage: hkdb COMMAND [ARGS]\n"
    "\n"
    "Commands:\n"
    "  build CSV OUTDIR [--date TEXT8] [--any-region]\n"
    "                                    check a reference CSV and compile it\n"
    "                                    into LEVEL1, LEVEL2 and BASEDATA\n"
    "  dump DBDIR [--out CSV]            write a database back as CSV\n"
    "  check DBDIR [--all]               validate a database's structure\n"
    "  generate --records N [--seed S] [--out CSV]\n"
    "                                    write a synthetic reference CSV\n"
    "\n"
    "'hkdb COMMAND --help' describes a command. Exit status: 0 success,\n"
    "1 bad or damaged data (or a file that cannot be read or written),\n"
    "2 wrong usage.\n";

}  // namespace

int main(int argc, char **argv) {
  namespace cli = orlo::tools::hkdb;
  if (argc < 2) {
    std::fputs(kUsage, stderr);
    return cli::kExitUsage;
  }
  std::string_view cmd = argv[1];
  if (cmd == "--help" || cmd == "-h" || cmd == "help") {
    std::fputs(kUsage, stdout);
    return cli::kExitOk;
  }
  if (cmd == "build") return cli::run_build(argc, argv);
  if (cmd == "dump") return cli::run_dump(argc, argv);
  if (cmd == "check") return cli::run_check(argc, argv);
  if (cmd == "generate") return cli::run_generate(argc, argv);
  std::fprintf(stderr, "hkdb: unknown command '%s'\n%s", argv[1], kUsage);
  return cli::kExitUsage;
}
