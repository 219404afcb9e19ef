#include "hkgeocode/batch_runner.h"

#include <utility>

#include "orlo_records.h"

namespace orlo::tools::hkgeocode {
namespace {

// Splits and geocodes an address line; a refused line becomes a bad row
// with the splitter's reason.
void process_line(Geocoder *geocoder, InputRow *row, char *outrec) {
  row->record.assign(HKINREC_SIZE, ' ');
  ORLO_LINE_INFO info;
  if (geocoder->process_line(row->address, row->record.data(), outrec, &info) !=
      ORLO_LINE_OK) {
    row->error = info.reason;
    return;
  }
  row->split = info.split;
  row->tries = info.tries;
  row->note = info.note;
}

}  // namespace

BatchRunner::BatchRunner(std::vector<std::unique_ptr<Geocoder>> *instances,
                         bool raw, OutputForm form, OutputLayout layout)
    : instances_(instances),
      raw_(raw),
      form_(form),
      layout_(std::move(layout)),
      slices_(instances->size()) {}

BatchRunner::~BatchRunner() {
  for (std::thread &t : threads_) t.join();
}

void BatchRunner::run_slice(size_t worker, size_t begin, size_t end) {
  Geocoder *geocoder = (*instances_)[worker].get();
  std::string &out = slices_[worker];
  out.clear();
  for (size_t i = begin; i < end; ++i) {
    InputRow &row = (*rows_)[i];
    char *rec = outrecs_->data() + i * HKOUTREC_SIZE;
    if (row.bad()) {
      // nothing to match
    } else if (row.is_line) {
      process_line(geocoder, &row, rec);
    } else {
      if (row.record.empty()) make_record(&row, raw_);
      if (!row.bad()) geocoder->process(row.record.data(), rec);
    }
    if (form_ == OutputForm::kFixed) {
      append_raw_record(row, rec, &out);
    } else if (form_ == OutputForm::kTable) {
      append_table_row(row, rec, &out);
    } else if (row.bad()) {
      append_bad_row(layout_, row, &out);
    } else {
      append_result_row(layout_, row, rec, &out);
    }
  }
}

void BatchRunner::start(std::vector<InputRow> *rows, size_t count,
                        std::vector<char> *outrecs) {
  rows_ = rows;
  outrecs_ = outrecs;
  outrecs->assign(count * HKOUTREC_SIZE, ' ');
  // Each worker owns one instance for the whole batch; an instance is never
  // used by two threads at once.
  const size_t workers = instances_->size();
  for (size_t w = 0; w < workers; ++w) {
    const size_t begin = count * w / workers;
    const size_t end = count * (w + 1) / workers;
    threads_.emplace_back([this, w, begin, end] { run_slice(w, begin, end); });
  }
}

const std::string &BatchRunner::wait() {
  for (std::thread &t : threads_) t.join();
  threads_.clear();
  output_.clear();
  for (const std::string &slice : slices_) output_ += slice;
  return output_;
}

}  // namespace orlo::tools::hkgeocode
