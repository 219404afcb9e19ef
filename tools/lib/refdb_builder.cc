#include "lib/refdb_builder.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

#include "lib/refdb_compiler.h"

namespace orlo::tools {

namespace {

constexpr uint64_t kProgressEvery = 1u << 16;

bool fail(BuildError *err, long line, std::string message) {
  err->line = line;
  err->field.clear();
  err->message = std::move(message);
  return false;
}

bool check_date(const std::string &date8, BuildError *err) {
  if (date8.size() != refdb::kDateBytes ||
      date8.find('\0') != std::string::npos)
    return fail(err, 0, "date must be exactly 8 characters");
  return true;
}

// Makes outdir and any folder above it that is missing.
bool make_output_dir(const std::string &outdir, BuildError *err) {
  std::error_code ec;
  std::filesystem::create_directories(outdir, ec);
  if (!ec && std::filesystem::is_directory(outdir, ec)) return true;
  if (!ec) return fail(err, 0, "output folder " + outdir + " is not a folder");
  return fail(err, 0,
              "cannot create output folder " + outdir + ": " + ec.message());
}

// Reads the header and every row into collector.
bool collect_rows(CsvReader *csv, RefdbCollector *collector,
                  const BuildOptions &options, BuildStats *stats,
                  BuildError *err) {
  std::vector<std::string> row;
  CsvReader::Status st = csv->next(&row);
  if (st == CsvReader::Status::kError)
    return fail(err, csv->line(), csv->error());
  if (st == CsvReader::Status::kEnd)
    return fail(err, 1, "empty file: the header line is missing");
  if (!RefdbCollector::check_header(row, err)) return false;
  while ((st = csv->next(&row)) == CsvReader::Status::kRow) {
    if (!collector->add_row(row, csv->line(), err)) return false;
    if (++stats->rows % kProgressEvery == 0 && options.progress)
      options.progress(stats->rows);
  }
  if (st == CsvReader::Status::kError)
    return fail(err, csv->line(), csv->error());
  // A header without rows makes an empty database: the matcher opens it and
  // finds no region for any address (match status '1').
  return true;
}

}  // namespace

bool build_reference_db_from(CsvReader *csv, const std::string &outdir,
                             const BuildOptions &options, BuildStats *stats,
                             BuildError *err) {
  *stats = BuildStats{};
  std::string date8 = options.date8.empty() ? today_utc_date8() : options.date8;
  if (!check_date(date8, err)) return false;
  RefdbCollector collector(options.limits, options.rules, stats);
  if (!collect_rows(csv, &collector, options, stats, err)) return false;
  // Only a CSV that compiles gets its folder made, so a failed build leaves
  // nothing behind.
  if (!make_output_dir(outdir, err)) return false;
  std::string error;
  if (!write_reference_db(&collector.content(), outdir, date8, stats, &error))
    return fail(err, 0, error);
  return true;
}

bool build_reference_db(std::string_view csv_text, const std::string &outdir,
                        const std::string &date8, BuildError *err) {
  CsvReader csv(csv_text);
  BuildOptions options;
  options.date8 = date8;
  options.rules = kRowsAsGiven;
  BuildStats stats;
  return build_reference_db_from(&csv, outdir, options, &stats, err);
}

bool build_reference_db_file(const std::string &csv_path,
                             const std::string &outdir,
                             const std::string &date8, BuildError *err) {
  std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(
      std::fopen(csv_path.c_str(), "rb"), &std::fclose);
  if (!file)
    return fail(err, 0,
                "cannot open " + csv_path + ": " + std::strerror(errno));
  CsvReader csv(file.get());
  BuildOptions options;
  options.date8 = date8;
  options.rules = kRowsAsGiven;
  BuildStats stats;
  return build_reference_db_from(&csv, outdir, options, &stats, err);
}

}  // namespace orlo::tools
