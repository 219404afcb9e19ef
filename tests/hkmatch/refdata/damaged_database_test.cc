// Exhaustive damage of the sample database: every truncation at a structural
// boundary and a flip of every length, count, offset and presence byte, each
// followed by an open and a few searches through the call interface. The
// open never looks at where the index points, so it always succeeds; every
// search outcome must be a defined return code (the sanitizer build adds: no
// bad access, no leak), and a flipped byte changes nothing for a region
// other than its own. The counts of outcomes are printed with the results.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "common/byte_order.h"
#include "lib/refdb_walk.h"
#include "orlo_matcher.h"
#include "support/test_db.h"

namespace {

namespace fs = std::filesystem;

#if defined(__SANITIZE_ADDRESS__)
#define ORLO_DAMAGE_SAMPLED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORLO_DAMAGE_SAMPLED 1
#endif
#endif

// Under the address sanitizer every search is many times slower, so there
// each number byte is flipped one way only (the optimised build flips it
// both ways); every byte is still damaged.
#ifdef ORLO_DAMAGE_SAMPLED
constexpr bool kSampled = true;
#else
constexpr bool kSampled = false;
#endif

uint32_t be32(const std::string &s, size_t at) {
  return orlo::load_be32(reinterpret_cast<const unsigned char *>(&s[at]));
}
uint16_t be16(const std::string &s, size_t at) {
  return orlo::load_be16(reinterpret_cast<const unsigned char *>(&s[at]));
}

// A structural byte or boundary of the database, with a street that a search
// must reach to meet it.
struct Spot {
  const char *file;
  size_t offset;
  std::string region;
  std::string street;
};

// The positions of every structural field of a sound database.
struct Layout {
  std::vector<Spot> numbers;     // offsets, lengths and counts
  std::vector<Spot> presence;    // record length and presence bytes
  std::vector<Spot> boundaries;  // starts of records, segments and blocks

  explicit Layout(const orlo::tools::RefdbImages &img) {
    for (size_t r = 0; r + 40 <= img.level1.size(); r += 40) {
      if (be32(img.level1, r) == 0) break;  // the end record
      std::string region = img.level1.substr(r, 30);
      region.erase(region.find_last_not_of(' ') + 1);
      boundaries.push_back({"LEVEL1", r, region, ""});
      for (size_t i = 30; i < 40; ++i)
        numbers.push_back({"LEVEL1", r + i, region, ""});
      walk_segment(img, region, be32(img.level1, r + 30),
                   be16(img.level1, r + 38));
    }
  }

 private:
  void walk_segment(const orlo::tools::RefdbImages &img,
                    const std::string &region, size_t pos, size_t count) {
    boundaries.push_back({"LEVEL2", pos, region, ""});
    for (size_t k = 0; k < count; ++k) {
      std::string name(img.level2.c_str() + pos + 10);
      boundaries.push_back({"LEVEL2", pos, region, name});
      for (size_t i = 0; i < 10; ++i)
        numbers.push_back({"LEVEL2", pos + i, region, name});
      walk_block(img, region, name, be32(img.level2, pos),
                 be16(img.level2, pos + 8));
      pos += 11 + name.size();
    }
  }
  void walk_block(const orlo::tools::RefdbImages &img,
                  const std::string &region, const std::string &street,
                  size_t pos, size_t count) {
    boundaries.push_back({"BASEDATA", pos, region, street});
    for (size_t k = 0; k < count; ++k) {
      for (size_t i = 0; i < 3; ++i)
        presence.push_back({"BASEDATA", pos + i, region, street});
      pos += static_cast<unsigned char>(img.basedata[pos]);
    }
  }
};

class DamagedDatabase : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = orlo::testing::make_temp_dir();
    for (const char *f : {"LEVEL1", "LEVEL2", "BASEDATA"})
      fs::copy_file(orlo::testing::sample_db_dir() + "/" + f, dir_ + "/" + f);
    std::string error;
    ASSERT_TRUE(orlo::tools::load_reference_images(dir_, &images_, &error))
        << error;
    for (bool memory : {false, true})
      open_and_search({}, memory, false, &sound_);
    cases_ = searches_ = 0;
    outcomes_.clear();
  }
  void TearDown() override {
    fs::remove_all(dir_);
    std::string summary;
    for (const auto &[code, n] : outcomes_)
      summary += " '" + std::string(1, code) + "':" + std::to_string(n);
    std::printf("%d damaged databases, %d searches; return codes:%s\n", cases_,
                searches_, summary.c_str());
  }

  const std::string &image(const char *file) const {
    return !std::strcmp(file, "LEVEL1")   ? images_.level1
           : !std::strcmp(file, "LEVEL2") ? images_.level2
                                          : images_.basedata;
  }

  // The two fixed addresses searched on every damaged database.
  static std::vector<std::pair<std::string, std::string>> probes() {
    return {{"NATHAN ROAD", "KLN"}, {"HENNESSY ROAD", "HK"}};
  }

  // Opens the damaged database in file or memory mode and searches the
  // street of the spot and the fixed addresses. With `local` (damage that
  // stays inside the spot's region), the fixed addresses of other regions
  // must come out as on the sound database; `sound` receives them instead
  // when it is given.
  void open_and_search(const Spot &spot, bool memory, bool local = false,
                       std::map<std::string, std::string> *sound = nullptr) {
    ++cases_;
    std::string l1 = dir_ + "/LEVEL1", l2 = dir_ + "/LEVEL2",
                bd = dir_ + "/BASEDATA";
    static char namelist[30000], reclist[7500];
    const char *options = memory ? "LM" : "L";
    HKHANDLE h{};
    char out[HKOUTREC_SIZE];
    auto call = [&](const char *type, const std::string &in) {
      hk_mtci(type, &h, in.c_str(), out, options, "20260101", "", "", "", "",
              "", "", "/dev/null", l1.c_str(), l2.c_str(), bd.c_str(), namelist,
              reclist);
    };
    call("O", std::string(HKINREC_SIZE, ' '));
    ASSERT_EQ(out[0], '0') << spot.file << "@" << spot.offset;
    auto searches = probes();
    searches.insert(searches.begin(), {spot.street, spot.region});
    for (size_t i = 0; i < searches.size(); ++i) {
      const auto &[street, region] = searches[i];
      std::string in(HKINREC_SIZE, ' ');
      in.replace(HKIN_PREMNO_OFF, 2, "12");
      in.replace(HKIN_STREET_OFF, street.size(), street);
      in.replace(HKIN_REGION_OFF, region.size(), region);
      call("P", in);
      ++searches_;
      ++outcomes_[out[0]];
      ASSERT_NE(std::strchr("01345", out[0]), nullptr)
          << spot.file << "@" << spot.offset;
      const std::string key = street + (memory ? "/memory" : "/file");
      if (sound != nullptr && i > 0) (*sound)[key] = std::string(out, 300);
      if (local && i > 0 && region != spot.region) {
        ASSERT_EQ(std::string(out, 300), sound_.at(key))
            << spot.file << "@" << spot.offset << " damages " << region;
      }
    }
    call("C", std::string(HKINREC_SIZE, ' '));
  }

  // Writes `bytes` at `offset` of `file`, runs the searches in both modes and
  // restores the original bytes.
  void with_bytes(const Spot &spot, const std::string &bytes) {
    std::string path = dir_ + "/" + spot.file;
    int fd = ::open(path.c_str(), O_WRONLY);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(
        pwrite(fd, bytes.data(), bytes.size(), static_cast<off_t>(spot.offset)),
        static_cast<ssize_t>(bytes.size()));
    open_and_search(spot, false, true);
    open_and_search(spot, true, true);
    std::string original = image(spot.file).substr(spot.offset, bytes.size());
    ASSERT_EQ(pwrite(fd, original.data(), original.size(),
                     static_cast<off_t>(spot.offset)),
              static_cast<ssize_t>(original.size()));
    ::close(fd);
  }

  void truncated_at(const Spot &spot) {
    std::string path = dir_ + "/" + spot.file;
    ASSERT_EQ(truncate(path.c_str(), static_cast<off_t>(spot.offset)), 0);
    open_and_search(spot, false);
    open_and_search(spot, true);
    FILE *f = std::fopen(path.c_str(), "r+b");
    ASSERT_NE(f, nullptr);
    const std::string &img = image(spot.file);
    std::fseek(f, static_cast<long>(spot.offset), SEEK_SET);
    std::fwrite(img.data() + spot.offset, 1, img.size() - spot.offset, f);
    std::fclose(f);
  }

  std::string dir_;
  orlo::tools::RefdbImages images_;
  int cases_ = 0, searches_ = 0;
  std::map<char, int> outcomes_;
  std::map<std::string, std::string> sound_;  // probe results, undamaged
};

TEST_F(DamagedDatabase, EveryNumberByteFlipped) {
  Layout layout(images_);
  ASSERT_GT(layout.numbers.size(), 5000u);
  for (size_t i = 0; i < layout.numbers.size(); ++i) {
    const Spot &s = layout.numbers[i];
    char b = image(s.file)[s.offset];
    with_bytes(s, std::string(1, static_cast<char>(b ^ 0xFF)));
    if (!kSampled) with_bytes(s, std::string(1, static_cast<char>(b + 1)));
    if (HasFatalFailure()) return;
  }
}

TEST_F(DamagedDatabase, EveryRecordLengthAndPresenceByteFlipped) {
  Layout layout(images_);
  ASSERT_GT(layout.presence.size(), 25000u);
  for (size_t i = 0; i < layout.presence.size(); ++i) {
    const Spot &s = layout.presence[i];
    char b = image(s.file)[s.offset];
    with_bytes(s, std::string(1, static_cast<char>(b ^ 0xFF)));
    if (HasFatalFailure()) return;
  }
}

TEST_F(DamagedDatabase, TruncatedAtEveryStructuralBoundary) {
  Layout layout(images_);
  ASSERT_GT(layout.boundaries.size(), 1000u);
  for (size_t i = 0; i < layout.boundaries.size(); ++i) {
    const Spot &s = layout.boundaries[i];
    truncated_at(s);
    if (HasFatalFailure()) return;
  }
}

}  // namespace
