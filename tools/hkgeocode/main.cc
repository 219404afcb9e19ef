// hkgeocode: matches a file of Hong Kong addresses against a reference
// database through the matcher's call interface, one record per process
// call, on one or more instances, and writes every row with its result.
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "hkgeocode/batch_runner.h"
#include "hkgeocode/command_line.h"
#include "hkgeocode/geocoder.h"
#include "hkgeocode/input_rows.h"
#include "hkgeocode/legend.h"
#include "hkgeocode/output_format.h"
#include "hkgeocode/run_summary.h"
#include "orlo_codes.h"
#include "orlo_matcher.h"

namespace orlo::tools::hkgeocode {
namespace {

// Rows read and processed at a time, per worker.
constexpr size_t kRowsPerWorker = 2048;

int fail(const std::string &message) {
  std::fprintf(stderr, "hkgeocode: %s\n", message.c_str());
  return kExitUsage;
}

std::string system_error(const std::string &what, const std::string &path) {
  return what + " " + path + ": " + std::strerror(errno);
}

uint64_t regular_file_size(std::FILE *f) {
  struct stat st;
  if (fstat(fileno(f), &st) != 0 || !S_ISREG(st.st_mode)) return 0;
  return static_cast<uint64_t>(st.st_size);
}

// The files of one run; standard streams are not closed.
struct Streams {
  std::FILE *in = nullptr;
  std::FILE *out = nullptr;
  std::string in_name;

  ~Streams() {
    if (in != nullptr && in != stdin) std::fclose(in);
    if (out != nullptr && out != stdout) std::fclose(out);
  }
};

int open_streams(const Options &o, Streams *s) {
  s->in_name = o.input == "-" ? "standard input" : o.input;
  s->in = o.input == "-" ? stdin : std::fopen(o.input.c_str(), "rb");
  if (s->in == nullptr) return fail(system_error("cannot open", o.input));
  // Checked now rather than at the close, where a report file that cannot
  // be created would send the statement into the output.
  if (!o.report_path.empty()) {
    std::FILE *r = std::fopen(o.report_path.c_str(), "a");
    if (r == nullptr) return fail(system_error("cannot write", o.report_path));
    std::fclose(r);
  }
  s->out = o.out_path.empty() ? stdout : std::fopen(o.out_path.c_str(), "wb");
  if (s->out == nullptr) return fail(system_error("cannot create", o.out_path));
  return kExitOk;
}

std::string db_dir(const Options &o) {
  return o.db_dir.empty() ? default_db_dir() : o.db_dir;
}

int open_instances(const Options &o,
                   std::vector<std::unique_ptr<Geocoder>> *instances) {
  std::string dir = db_dir(o);
  for (int i = 0; i < o.threads; ++i) {
    auto g = std::make_unique<Geocoder>();
    char code = g->open(dir, o.open_options);
    if (code != HKRC_OK) {
      std::string_view why = return_code_meaning(code);
      std::fprintf(stderr,
                   "hkgeocode: cannot open the reference database %s: %.*s\n",
                   dir.c_str(), static_cast<int>(why.size()), why.data());
      hk_doem(g->open_record());
      return kExitNoDatabase;
    }
    instances->push_back(std::move(g));
  }
  return kExitOk;
}

void report_bad_row(const std::string &in_name, bool fixed,
                    const InputRow &row) {
  std::fprintf(stderr, "hkgeocode: %s:%s%ld: %s\n", in_name.c_str(),
               fixed ? "record " : "", row.line, row.error.c_str());
}

OutputForm output_form(const Options &o) {
  return o.fixed   ? OutputForm::kFixed
         : o.table ? OutputForm::kTable
                   : OutputForm::kCsv;
}

// Reads the input in batches; while the workers match one batch, the next
// is read. The reports of bad rows, the totals and the output keep the
// input's order.
void process_all(const Options &o, const Streams &s, RowSource *source,
                 std::vector<std::unique_ptr<Geocoder>> *instances,
                 Totals *totals) {
  Progress progress(!o.quiet, regular_file_size(s.in));
  BatchRunner runner(instances, o.raw, output_form(o),
                     OutputLayout{source->columns(), o.lines});
  std::vector<InputRow> rows[2];
  std::vector<char> outrecs;
  const size_t batch = kRowsPerWorker * instances->size();
  size_t count = source->read_batch(batch, &rows[0]);
  for (int cur = 0; count > 0; cur = 1 - cur) {
    runner.start(&rows[cur], count, &outrecs);
    const size_t next = source->read_batch(batch, &rows[1 - cur]);
    const std::string &output = runner.wait();
    for (size_t i = 0; i < count; ++i) {
      const InputRow &row = rows[cur][i];
      if (row.bad()) {
        progress.finish();  // messages start on a line of their own
        report_bad_row(s.in_name, o.fixed, row);
      }
      totals->add(row, outrecs.data() + i * HKOUTREC_SIZE);
    }
    std::fwrite(output.data(), 1, output.size(), s.out);
    progress.update(totals->read, source->bytes_read());
    count = next;
  }
  progress.finish();
}

// The first instance takes the counts of all the others and is closed last,
// with the statement; the others are closed without one. False when a
// statement was asked for and its close failed.
bool close_instances(const Options &o,
                     std::vector<std::unique_ptr<Geocoder>> *instances) {
  Geocoder &first = *(*instances)[0];
  for (size_t i = 1; i < instances->size(); ++i) {
    Geocoder &g = *(*instances)[i];
    first.add_counts(g.records_read(), g.records_matched());
    g.close_quietly();
  }
  if (o.report_path.empty()) {
    first.close_quietly();
    return true;
  }
  if (!first.statement_allowed(o.open_options)) {
    std::fprintf(stderr,
                 "hkgeocode: the options \"%s\" allow no accuracy statement\n",
                 o.open_options.c_str());
  }
  char code = first.close_with_statement(
      o.open_options, StatementRequest{o.report_path, o.report_lines});
  if (code == HKRC_OK) return true;
  std::string_view why = return_code_meaning(code);
  std::fprintf(stderr,
               "hkgeocode: the accuracy statement was not written to %s: "
               "%.*s\n",
               o.report_path.c_str(), static_cast<int>(why.size()), why.data());
  char rec[HKOUTREC_SIZE] = {code};
  hk_doem(rec);
  return false;
}

// The codes that occurred, as the legend of --table lists them.
std::string codes_seen(const std::array<uint64_t, 256> &counts) {
  std::string codes;
  for (size_t c = 0; c < counts.size(); ++c)
    if (counts[c] > 0) codes.push_back(static_cast<char>(c));
  return codes;
}

void write_legend(const Totals &t, std::FILE *out) {
  std::string rc = codes_seen(t.by_code);
  if (t.bad > 0) rc.push_back(kBadRowCode);
  if (rc.empty()) return;
  std::string legend = "\nRC return code, MS match status:\n" +
                       code_legend(rc, codes_seen(t.by_status));
  std::fputs(legend.c_str(), out);
}

// One line on standard error for each failure code that rows got; true
// when there was any.
bool report_failures(const Totals &t, const std::string &dir) {
  bool any = false;
  for (size_t c = 0; c < t.by_code.size(); ++c) {
    auto code = static_cast<char>(c);
    if (t.by_code[c] == 0 || code == HKRC_OK || code == HKRC_REFERENCE)
      continue;
    std::string why = failure_reason(code, t.by_code[c], t.processed, dir);
    std::fprintf(stderr, "hkgeocode: %s\n", why.c_str());
    any = true;
  }
  return any;
}

int run(const Options &o) {
  auto start = std::chrono::steady_clock::now();
  Streams s;
  if (int rc = open_streams(o, &s); rc != kExitOk) return rc;
  std::vector<std::unique_ptr<Geocoder>> instances;
  if (int rc = open_instances(o, &instances); rc != kExitOk) return rc;
  RowSource source =
      o.lines ? RowSource::lines(s.in, o.column) : RowSource(s.in, o.fixed);

  std::string error;
  if (!source.start(&error)) return fail(s.in_name + ": " + error);
  if (o.table) {
    std::fputs(table_header().c_str(), s.out);
  } else if (!o.fixed) {
    std::fputs(csv_header({source.columns(), o.lines}).c_str(), s.out);
  }

  Totals totals;
  process_all(o, s, &source, &instances, &totals);
  if (o.table) write_legend(totals, s.out);
  bool statement_ok = close_instances(o, &instances);
  bool written = std::fflush(s.out) == 0 && std::ferror(s.out) == 0;
  double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start)
          .count();
  print_summary(stderr, totals, seconds);
  if (!written) {
    return fail(
        "cannot write the output " +
        (o.out_path.empty() ? std::string("to standard output") : o.out_path));
  }
  bool failed = report_failures(totals, db_dir(o));
  if (failed || !statement_ok) return kExitFailedRows;
  return totals.bad > 0 ? kExitBadRows : kExitOk;
}

}  // namespace
}  // namespace orlo::tools::hkgeocode

int main(int argc, char **argv) {
  namespace hg = orlo::tools::hkgeocode;
  hg::Options options;
  CLI::App app("", "hkgeocode");
  hg::define_command_line(&app, &options);
  if (int status = orlo::tools::parse_command_line(&app, argc, argv);
      status >= 0)
    return status;
  return hg::run(options);
}
