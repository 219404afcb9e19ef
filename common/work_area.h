// Scratch space for the in-place field routines: a fixed area for short
// fields, a heap area for longer ones.
#ifndef ORLO_COMMON_WORK_AREA_H
#define ORLO_COMMON_WORK_AREA_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace orlo {

// Fields up to this many units are handled without allocating.
inline constexpr size_t kFixedWorkUnits = 256;

namespace detail {
// Test hook: when positive, the next heap work areas fail (one per unit).
extern thread_local int fail_work_areas;
}  // namespace detail

// Work area of n units of T. ok() is false when a heap area was needed and
// could not be allocated; the caller must then leave its field untouched.
template <typename T>
class WorkArea {
 public:
  explicit WorkArea(size_t n) {
    if (n <= kFixedWorkUnits) {
      data_ = fixed_;
    } else if (detail::fail_work_areas > 0) {
      --detail::fail_work_areas;
    } else {
      data_ = static_cast<T *>(std::malloc(n * sizeof(T)));
      heap_ = data_ != nullptr;
    }
  }
  ~WorkArea() {
    if (heap_) std::free(data_);
  }
  WorkArea(const WorkArea &) = delete;
  WorkArea &operator=(const WorkArea &) = delete;

  bool ok() const { return data_ != nullptr; }
  T *data() { return data_; }

 private:
  T fixed_[kFixedWorkUnits];
  T *data_ = nullptr;
  bool heap_ = false;
};

// The frame of every in-place field routine: a negative length gives -1 and
// an empty field 0; otherwise `body` runs on a work area of len units filled
// with `blank`, and its result is returned. When no area can be had the
// result is -1 and the field is not touched.
template <typename T, typename Body>
int32_t with_blank_work_area(int32_t len, T blank, Body body) {
  if (len < 0) return -1;
  if (len == 0) return 0;
  WorkArea<T> work(static_cast<size_t>(len));
  if (!work.ok()) return -1;
  std::fill(work.data(), work.data() + len, blank);
  return body(work.data());
}

// Makes the next `count` heap work areas of this thread fail, for the tests
// of the -1 result. Restores the previous setting when it goes out of scope.
class FailWorkAreasForTesting {
 public:
  explicit FailWorkAreasForTesting(int count)
      : saved_(detail::fail_work_areas) {
    detail::fail_work_areas = count;
  }
  ~FailWorkAreasForTesting() { detail::fail_work_areas = saved_; }
  FailWorkAreasForTesting(const FailWorkAreasForTesting &) = delete;
  FailWorkAreasForTesting &operator=(const FailWorkAreasForTesting &) = delete;

 private:
  int saved_;
};

}  // namespace orlo

#endif  // ORLO_COMMON_WORK_AREA_H
