#include <cstdio>

#include "hkdb/cli.h"
#include "hkdb/output_sink.h"
#include "lib/reference_generator.h"

namespace orlo::tools::hkdb {

namespace {

constexpr const char *kHelp =
    "Usage: hkdb generate --records N [--seed S] [--out CSV]\n"
    "\n"
    "Writes a synthetic Hong Kong reference CSV of N records to standard\n"
    "output or to the file CSV: streets and buildings of the regions HK,\n"
    "KLN and NT, odd and even premise ranges, letter suffixes, floor and\n"
    "shop records, district reference codes and unique reference ids.\n"
    "The same N and seed (default 1) always give the same file.\n";

}  // namespace

int run_generate(int argc, char **argv) {
  Args args;
  if (int status =
          start_command(argc, argv, "generate", kHelp,
                        {"--records", "--seed", "--out"}, 0, "", &args);
      status >= 0)
    return status;
  std::string error;
  GeneratorOptions options;
  auto records = args.options.find("--records");
  if (records == args.options.end())
    return usage_error("generate", "--records is required");
  if (!parse_count(records->second, &options.records))
    return usage_error("generate", "--records needs a whole number");
  if (auto seed = args.options.find("--seed");
      seed != args.options.end() && !parse_count(seed->second, &options.seed))
    return usage_error("generate", "--seed needs a whole number");
  if (options.records > max_generated_records())
    return usage_error("generate", "--records is at most " +
                                       std::to_string(max_generated_records()));

  OutputSink out;
  auto path = args.options.find("--out");
  if (!out.open(path == args.options.end() ? "" : path->second, &error))
    return data_error("generate", error);
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

}  // namespace orlo::tools::hkdb
