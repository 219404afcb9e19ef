#include "hkgeocode/command_line.h"

#include <unistd.h>

#include <climits>
#include <string_view>

#include "hkgeocode/output_format.h"

namespace orlo::tools::hkgeocode {
namespace {

constexpr const char *kDescription =
    "Usage: hkgeocode [OPTIONS] [INPUT]\n"
    "\n"
    "Matches Hong Kong addresses against a reference database, one record\n"
    "at a time, and writes each input row with the matcher's result.\n"
    "\n"
    "INPUT is a CSV file with the header\n"
    "  refcode,premno,street,building,unit,extra,district,region,mode\n"
    "(widths 3, 8, 30, 30, 30, 30, 30, 30, 1; unit is the floor and unit\n"
    "line; mode is the record mode byte, empty for none). Without INPUT, or\n"
    "with '-', the rows are read from standard input.\n"
    "\n"
    "The fields are tidied as people write them (--raw turns this off):\n"
    "UTF-8 (with or without a byte-order mark) or Latin-1 text; full-width\n"
    "letters and digits made plain; letters in upper case; blanks\n"
    "collapsed; the region as its key HK, KLN or NT whether written as the\n"
    "key or spelt out (\"Kowloon\", \"N.T.\", \"Hong Kong Island\"), and\n"
    "taken from the district (\"Tsim Sha Tsui\", \"Causeway Bay\", \"Sha\n"
    "Tin\") when it is empty. A field with characters outside Latin-1\n"
    "(Chinese, for one) makes the row bad. Widths count after tidying.\n"
    "\n"
    "With --lines, INPUT holds addresses as people write them, one to a\n"
    "line of text (\"Flat B, 12/F, 28 Nathan Rd, TST, Kowloon\"), or with\n"
    "--column NAME in the named column of a CSV file with a header. Each\n"
    "line is split into the fields of the record by the library's line\n"
    "splitter (the floor and unit line, block and tower, premise number,\n"
    "street and building by the database's own names, district and\n"
    "region), the likely splits are tried through the matcher, and the\n"
    "best result is kept; the output shows the split. An empty line, a\n"
    "line longer than a record can carry or one in characters such as\n"
    "Chinese is a bad row.\n";

constexpr const char *kOutputColumns =
    "\n"
    "The CSV output repeats the input columns exactly as read (with\n"
    "--lines: the column \"line\", or every column of the CSV), with\n"
    "--lines adds the split:\n";

constexpr const char *kResultColumns =
    "and then these, in UTF-8 (\"as read\" is the record the matcher\n"
    "received):\n";

constexpr const char *kCodes =
    "\n"
    "Codes (RC return code, MS match status) with their meanings, and the\n"
    "matcher's own message in brackets where it has one:\n";

constexpr const char *kNotes =
    "\n"
    "Bad rows (a wrong number of fields, a field wider than its record\n"
    "field after tidying, a character outside Latin-1, a control\n"
    "character, with --raw any byte that is not printable ASCII, with\n"
    "--lines a line refused by the splitter, or malformed CSV) are\n"
    "reported on standard error with their line, counted\n"
    "in the summary and written to the output with return code E and the\n"
    "reason; with --fixed, as a record of blanks with E in byte 0.\n"
    "Malformed CSV ends the input.\n"
    "\n"
    "The accuracy statement counts the records of all workers together (one\n"
    "a line, however many splits of it were tried): each\n"
    "worker's instance is closed without a statement and the first one, its\n"
    "counters holding the totals of all, is closed last with one. The open\n"
    "options then decide, as for any close, whether a statement is written.\n"
    "\n"
    "A progress line is shown on standard error when it is a terminal; a\n"
    "summary follows at the end.\n"
    "\n"
    "Exit status:\n"
    "  0  every row was processed (return code 0 or 1)\n"
    "  1  some input rows were bad (E); every other row was processed\n"
    "  2  wrong usage, or an input, output or report file that cannot be used\n"
    "  3  the reference database cannot be opened\n"
    "  4  some rows failed in the matcher (any other return code: damaged or\n"
    "     cut-short reference data, out of memory), or the accuracy\n"
    "     statement could not be written; a one-line reason goes to\n"
    "     standard error\n";

// An extract file is written by each instance to the same path, so extract
// options and several workers exclude each other.
bool writes_extract(const std::string &open_options) {
  if (open_options.empty()) return false;
  std::string_view extract = "WwRrXx";
  return extract.find(open_options[0]) != std::string_view::npos;
}

}  // namespace

void define_command_line(CLI::App *app, Options *o) {
  app->description(kDescription);
  use_tool_help(app, kOutputColumns + split_columns_help() + kResultColumns +
                         columns_help() + kCodes + code_legend("", "") +
                         kNotes);
  app->add_option("INPUT", o->input, "the input file ('-': standard input)");
  app->add_option("--db", o->db_dir,
                  "reference database (LEVEL1, LEVEL2, BASEDATA);\n"
                  "default: the sample database of the build, or\n"
                  "the installed one")
      ->type_name("DIR");
  app->add_option("--options", o->open_options,
                  "option string of the open (listing, pass, extract\n"
                  "and memory mode, e.g. \" M\" for memory mode)")
      ->type_name("TEXT");
  app->add_option("--threads", o->threads,
                  "N workers (1 to 64), each with its own instance;\n"
                  "the output is in input order and the same as with\n"
                  "one worker")
      ->type_name("N")
      ->check(whole_number_in(1, kMaxThreads));
  CLI::Option *raw =
      app->add_flag("--raw", o->raw,
                    "place the CSV fields as given: printable ASCII in\n"
                    "the matcher's form (upper case, region keys)");
  CLI::Option *table =
      app->add_flag("--table", o->table,
                    "a readable table (address, return code RC, match\n"
                    "status MS, result lines, reference) and a legend\n"
                    "of the codes in it, instead of CSV");
  CLI::Option *fixed =
      app->add_flag("--fixed", o->fixed,
                    "raw 200-byte input records, raw 300-byte output\n"
                    "records (never tidied)");
  CLI::Option *lines = app->add_flag("--lines", o->lines,
                                     "one address a line of text (see above)");
  app->add_option("--column", o->column,
                  "with --lines: the addresses are the column NAME of\n"
                  "a CSV file with a header")
      ->type_name("NAME")
      ->needs(lines);
  app->add_option("--out", o->out_path,
                  "output file (default: standard output)")
      ->type_name("PATH");
  app->add_option("--report", o->report_path,
                  "write the address accuracy statement at the end")
      ->type_name("PATH");
  app->add_option("--report-line", o->report_lines,
                  "a free line of the statement (up to six times)")
      ->type_name("TEXT")
      ->allow_extra_args(false);
  app->add_flag("--quiet", o->quiet, "no progress display");
  table->excludes(fixed);
  lines->excludes(fixed)->excludes(raw);
  app->final_callback([o] {
    if (o->report_lines.size() > kMaxReportLines)
      throw CLI::ValidationError("--report-line", "at most six texts");
    if (o->threads > 1 && writes_extract(o->open_options))
      throw CLI::ValidationError(
          "--options",
          "an extract option cannot be combined with --threads "
          "above 1");
  });
}

std::string default_db_dir() {
  char exe[PATH_MAX];
  ssize_t n = ::readlink("/proc/self/exe", exe, sizeof exe - 1);
  if (n <= 0) return "data/sample";
  std::string path(exe, static_cast<size_t>(n));
  std::string folder = path.substr(0, path.rfind('/'));
  // In the build tree the sample database lies beside bin/; installed, it
  // lies where the install put it, relative to the tools' folder.
  std::string built = folder + "/../data/sample";
  std::string installed = folder + "/" ORLO_INSTALLED_SAMPLE_DB;
  if (::access((built + "/LEVEL1").c_str(), F_OK) != 0 &&
      ::access((installed + "/LEVEL1").c_str(), F_OK) == 0)
    return installed;
  return built;
}

}  // namespace orlo::tools::hkgeocode
