// Compile-time checks of the matcher's plain structures: field order and the
// integer widths that the other modules and the reference files rely on.
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "orlo_matcher.h"

namespace {

template <typename T, typename U>
constexpr bool same = std::is_same_v<T, U>;

static_assert(sizeof(HKHANDLE) == 16, "the handle area is four 32-bit words");
static_assert(offsetof(HKHANDLE, mcb) == 0, "word 0 holds the HKMCB address");

static_assert(sizeof(L1ENTRY::l1key) == 30);
static_assert(same<decltype(L1ENTRY::l2off), uint32_t> &&
              same<decltype(L1ENTRY::l2len), uint32_t> &&
              same<decltype(L1ENTRY::l2cnt), uint16_t>);
static_assert(offsetof(L1ENTRY, l2off) < offsetof(L1ENTRY, l2len) &&
              offsetof(L1ENTRY, l2len) < offsetof(L1ENTRY, l2cnt));

static_assert(sizeof(STREETENT::sname) == 33);
static_assert(same<decltype(STREETENT::bcnt), uint16_t> &&
              same<decltype(STREETENT::sscore), uint8_t>);
static_assert(offsetof(STREETENT, blen) < offsetof(STREETENT, bpack) &&
              offsetof(STREETENT, bunpk) < offsetof(STREETENT, bcnt) &&
              offsetof(STREETENT, sscore) < offsetof(STREETENT, sname));

static_assert(
    sizeof(HKBASEREC::brefcode) == 4 && sizeof(HKBASEREC::brefid) == 6 &&
    sizeof(HKBASEREC::bbldg) == 31 && sizeof(HKBASEREC::bparity) == 2 &&
    sizeof(HKBASEREC::bqual1) == 13 && sizeof(HKBASEREC::blotext) == 6 &&
    sizeof(HKBASEREC::bqual2) == 13 && sizeof(HKBASEREC::bhitext) == 6 &&
    sizeof(HKBASEREC::bfld9) == 35 && sizeof(HKBASEREC::baddr) == 31);
static_assert(same<decltype(HKBASEREC::bmscore), int16_t> &&
              same<decltype(HKBASEREC::bscore), int32_t> &&
              same<decltype(HKBASEREC::bpen), int32_t>);
static_assert(offsetof(HKBASEREC, baddr) < offsetof(HKBASEREC, bside) &&
              offsetof(HKBASEREC, bside) < offsetof(HKBASEREC, bscore) &&
              offsetof(HKBASEREC, bmscore) < offsetof(HKBASEREC, bpen) &&
              offsetof(HKBASEREC, bpen) < offsetof(HKBASEREC, blorc) &&
              offsetof(HKBASEREC, bhisub) < offsetof(HKBASEREC, bhisubtyp));

static_assert(sizeof(HKWORKREC::wk_premno) == 9 &&
              sizeof(HKWORKREC::wk_street) == 31 &&
              sizeof(HKWORKREC::wk_unit) == 31 &&
              sizeof(HKWORKREC::wk_region) == 31 &&
              sizeof(HKWORKREC::wk_refcode) == 4);
static_assert(
    offsetof(HKWORKREC, wk_refcode) + 4 == offsetof(HKWORKREC, wk_unused) &&
    offsetof(HKWORKREC, wk_unused) + 2 == offsetof(HKWORKREC, wk_mode) &&
    offsetof(HKWORKREC, wk_mode) < offsetof(HKWORKREC, wk_premrc) &&
    offsetof(HKWORKREC, wk_prem2) < offsetof(HKWORKREC, wk_prem2kind));

static_assert(sizeof(HKMCB::outpath) == 200 && sizeof(HKMCB::lastkey) == 30 &&
              sizeof(HKMCB::lastname) == 31);
static_assert(same<decltype(HKMCB::lvl2cnt), uint16_t> &&
              same<decltype(HKMCB::cachemax), int32_t> &&
              same<decltype(HKMCB::nread), int32_t> &&
              same<decltype(HKMCB::inmem), int32_t>);
static_assert(offsetof(HKMCB, basefp) == 0 &&
              offsetof(HKMCB, outfp) < offsetof(HKMCB, outmode) &&
              offsetof(HKMCB, outpath) < offsetof(HKMCB, baserecs) &&
              offsetof(HKMCB, basemem) < offsetof(HKMCB, lvl2cnt) &&
              offsetof(HKMCB, lvl2cnt) < offsetof(HKMCB, lvl2buf) &&
              offsetof(HKMCB, cands) < offsetof(HKMCB, lastkey) &&
              offsetof(HKMCB, lastname) < offsetof(HKMCB, lastcnt) &&
              offsetof(HKMCB, lvl1cnt) < offsetof(HKMCB, nread) &&
              offsetof(HKMCB, nmatched) < offsetof(HKMCB, state) &&
              offsetof(HKMCB, state) < offsetof(HKMCB, inmem));

}  // namespace
