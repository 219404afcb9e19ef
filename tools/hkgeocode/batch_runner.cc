#include "hkgeocode/batch_runner.h"

#include <thread>

#include "orlo_records.h"

namespace orlo::tools::hkgeocode {
namespace {

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

// Rows begin..end-1, each worker on its own rows only.
void process_slice(Geocoder *geocoder, std::vector<InputRow> *rows,
                   size_t begin, size_t end, char *outrecs) {
  for (size_t i = begin; i < end; ++i) {
    InputRow &row = (*rows)[i];
    if (row.bad()) continue;
    if (row.is_line) {
      process_line(geocoder, &row, outrecs + i * HKOUTREC_SIZE);
    } else {
      geocoder->process(row.record.data(), outrecs + i * HKOUTREC_SIZE);
    }
  }
}

}  // namespace

BatchRunner::BatchRunner(std::vector<std::unique_ptr<Geocoder>> *instances)
    : instances_(instances) {}

void BatchRunner::run(std::vector<InputRow> *rows, std::vector<char> *outrecs) {
  outrecs->assign(rows->size() * HKOUTREC_SIZE, ' ');
  size_t workers = instances_->size();
  if (workers == 1) {
    process_slice((*instances_)[0].get(), rows, 0, rows->size(),
                  outrecs->data());
    return;
  }
  // Each worker owns one instance for the whole batch; an instance is never
  // used by two threads at once.
  std::vector<std::jthread> threads;
  threads.reserve(workers);
  for (size_t w = 0; w < workers; ++w) {
    size_t begin = rows->size() * w / workers;
    size_t end = rows->size() * (w + 1) / workers;
    threads.emplace_back(process_slice, (*instances_)[w].get(), rows, begin,
                         end, outrecs->data());
  }
}

}  // namespace orlo::tools::hkgeocode
