// hkdb: builds, dumps, checks and generates Hong Kong reference databases
// (LEVEL1, LEVEL2, BASEDATA) and their reference CSV.
#include <vector>

#include "hkdb/commands.h"
#include "lib/command_line.h"

namespace {

constexpr const char *kDescription =
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
    "'hkdb COMMAND --help' describes a command.\n";

}  // namespace

int main(int argc, char **argv) {
  namespace hkdb = orlo::tools::hkdb;
  CLI::App app(kDescription, "hkdb");
  orlo::tools::use_tool_help(&app, hkdb::kExitStatusHelp);
  app.require_subcommand(1);
  const std::vector<hkdb::Command> commands = {
      hkdb::add_build_command(&app), hkdb::add_dump_command(&app),
      hkdb::add_check_command(&app), hkdb::add_generate_command(&app)};
  if (int status = orlo::tools::parse_command_line(&app, argc, argv);
      status >= 0)
    return status;
  for (const hkdb::Command &c : commands)
    if (c.app->parsed()) return c.run();
  return orlo::tools::kExitUsage;  // require_subcommand leaves no other way
}
