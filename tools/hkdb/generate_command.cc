#include <cstdio>
#include <memory>
#include <string>

#include "hkdb/commands.h"
#include "hkdb/output_sink.h"
#include "lib/command_line.h"
#include "lib/reference_generator.h"

namespace orlo::tools::hkdb {

namespace {

constexpr const char *kHelp =
    "Usage: hkdb generate --records N [OPTIONS]\n"
    "\n"
    "Writes a synthetic Hong Kong reference CSV of N records to standard\n"
    "output or to the file CSV: streets and buildings of the regions HK,\n"
    "KLN and NT, odd and even premise ranges, letter suffixes, floor and\n"
    "shop records, district reference codes and unique reference ids.\n"
    "The same N and seed always give the same file.\n";

int run_generate(GeneratorOptions options, const std::string &out_path) {
  std::string error;
  OutputSink out;
  if (!out.open(out_path, &error)) return data_error("generate", error);
  {
    Progress progress("generate", "records written");
    options.progress = [&progress](uint64_t n) { progress.update(n); };
    if (!generate_reference_csv(options, out.writer(), &error))
      return data_error("generate", error);
  }
  if (!out.close(&error)) return data_error("generate", error);
  std::fprintf(stderr, "hkdb generate: %llu records (seed %llu)\n",
               static_cast<unsigned long long>(options.records),
               static_cast<unsigned long long>(options.seed));
  return kExitOk;
}

}  // namespace

Command add_generate_command(CLI::App *hkdb) {
  struct Args {
    GeneratorOptions options;
    std::string out;
  };
  auto args = std::make_shared<Args>();
  CLI::App *app = hkdb->add_subcommand("generate", kHelp);
  app->footer(kExitStatusHelp);
  app->add_option("--records", args->options.records,
                  "the number of records to write")
      ->type_name("N")
      ->required()
      ->check(whole_number_in(0, max_generated_records()));
  app->add_option("--seed", args->options.seed,
                  "the seed of the random choices (default 1)")
      ->type_name("S")
      ->check(whole_number());
  app->add_option("--out", args->out,
                  "write the CSV to this file (default: standard output)")
      ->type_name("CSV");
  return {app, [args] { return run_generate(args->options, args->out); }};
}

}  // namespace orlo::tools::hkdb
