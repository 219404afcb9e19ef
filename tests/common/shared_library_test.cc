// Checks made on the built shared library itself: the calloc it exports,
// and that it exports nothing but the public routines.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

namespace {

using CallocFn = void *(*)(size_t, size_t);

class SharedLibrary : public ::testing::Test {
 protected:
  void SetUp() override {
    handle_ = dlopen(ORLO_SHARED_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle_, nullptr) << dlerror();
    own_calloc_ = reinterpret_cast<CallocFn>(dlsym(handle_, "calloc"));
    ASSERT_NE(own_calloc_, nullptr);
  }
  void TearDown() override {
    if (handle_) dlclose(handle_);
  }
  void *handle_ = nullptr;
  CallocFn own_calloc_ = nullptr;
};

TEST_F(SharedLibrary, CallocIsTheLibrarysOwn) {
  Dl_info info{};
  ASSERT_NE(dladdr(reinterpret_cast<void *>(own_calloc_), &info), 0);
  EXPECT_NE(std::string(info.dli_fname).find("liborloHKGeocoder"),
            std::string::npos);
}

// Returning at all proves there is no recursion: a calloc that called itself
// would exhaust the stack.
TEST_F(SharedLibrary, CallocZeroFills) {
  for (size_t n : {1u, 7u, 4096u, 1u << 20}) {
    auto *p = static_cast<unsigned char *>(own_calloc_(n, 3));
    ASSERT_NE(p, nullptr);
    size_t nonzero = 0;
    for (size_t i = 0; i < n * 3; ++i) nonzero += p[i] != 0;
    EXPECT_EQ(nonzero, 0u) << n;
    free(p);
  }
  void *empty = own_calloc_(0, 16);
  free(empty);
}

TEST_F(SharedLibrary, CallocRefusesOverflowingProducts) {
  EXPECT_EQ(own_calloc_(SIZE_MAX / 2 + 2, 2), nullptr);
  EXPECT_EQ(own_calloc_(2, SIZE_MAX / 2 + 2), nullptr);
  EXPECT_EQ(own_calloc_(SIZE_MAX, SIZE_MAX), nullptr);
}

std::set<std::string> exported_symbols() {
  std::set<std::string> names;
  std::string cmd = std::string("nm -D --defined-only ") + ORLO_SHARED_LIBRARY;
  FILE *p = popen(cmd.c_str(), "r");
  if (p == nullptr) return names;
  char line[512];
  while (fgets(line, sizeof line, p)) {
    std::istringstream in(line);
    std::string addr, type, name;
    if (in >> addr >> type >> name) names.insert(name);
  }
  pclose(p);
  return names;
}

// Every routine declared ORLO_API in the public headers: the identifier just
// before the first '(' on a line that starts a declaration with ORLO_API.
std::set<std::string> public_routines() {
  std::set<std::string> names;
  for (const auto &h :
       std::filesystem::directory_iterator(ORLO_SOURCE_DIR "/include")) {
    std::ifstream f(h.path());
    std::string line;
    while (std::getline(f, line)) {
      if (line.rfind("ORLO_API", 0) != 0) continue;
      size_t paren = line.find('(');
      if (paren == std::string::npos) continue;
      size_t end = paren;
      while (end > 0 && line[end - 1] == ' ') --end;
      size_t begin = end;
      while (begin > 0 &&
             (isalnum(static_cast<unsigned char>(line[begin - 1])) ||
              line[begin - 1] == '_'))
        --begin;
      names.insert(line.substr(begin, end - begin));
    }
  }
  names.insert("calloc");  // declared for C only, exported all the same
  return names;
}

TEST(SharedLibraryExports, OnlyPublicRoutinesAreExported) {
  std::set<std::string> exported = exported_symbols();
  ASSERT_FALSE(exported.empty());
  std::set<std::string> allowed = public_routines();
  for (const std::string &name : exported) {
    bool jni = name == "JNI_OnLoad" ||
               name.rfind("Java_pkgs_natives_OrloHKGeocoder_", 0) == 0 ||
               name == "Java_pkgs_natives_Normaliser_normalise" ||
               name == "Java_pkgs_natives_LineGeocoder_geocodeLine" ||
               name == "Java_pkgs_natives_BatchProcessor_processBatch";
    EXPECT_TRUE(allowed.count(name) || jni) << "unexpected export " << name;
  }
  for (const char *name :
       {"cm_lftadj", "cm_rhtadj", "cm_lftpck", "cm_bllz", "cm_cfrmt",
        "cmulftadj", "cmulftpck", "cmurhtadj", "calloc", "orlo_line_split",
        "orlo_line_geocode", "orlo_process_batch", "orlo_return_meaning",
        "orlo_status_meaning"}) {
    EXPECT_TRUE(exported.count(name)) << "missing export " << name;
  }
}

}  // namespace
