#include "hkdb/cli.h"

#include <unistd.h>

#include <cstdio>

namespace orlo::tools::hkdb {

bool parse_args(int argc, char **argv, int first,
                const std::vector<std::string_view> &value_options, Args *args,
                std::string *error,
                const std::vector<std::string_view> &flag_options) {
  for (int i = first; i < argc; ++i) {
    std::string_view a = argv[i];
    if (a == "--help" || a == "-h") {
      args->help = true;
      continue;
    }
    if (!a.starts_with("-") || a == "-") {
      args->positional.emplace_back(a);
      continue;
    }
    std::string_view name = a.substr(0, a.find('='));
    bool flag = false;
    for (std::string_view o : flag_options) flag = flag || o == a;
    if (flag) {
      args->flags.emplace(a);
      continue;
    }
    bool known = false;
    for (std::string_view o : value_options) known = known || o == name;
    if (!known) {
      *error = "unknown option " + std::string(name);
      return false;
    }
    if (name.size() < a.size()) {
      args->options[std::string(name)] = std::string(a.substr(name.size() + 1));
    } else if (i + 1 < argc) {
      args->options[std::string(name)] = argv[++i];
    } else {
      *error = "option " + std::string(name) + " needs a value";
      return false;
    }
  }
  return true;
}

int start_command(int argc, char **argv, std::string_view cmd, const char *help,
                  const std::vector<std::string_view> &value_options,
                  size_t positionals, std::string_view expected, Args *args,
                  const std::vector<std::string_view> &flag_options) {
  std::string error;
  if (!parse_args(argc, argv, 2, value_options, args, &error, flag_options))
    return usage_error(cmd, error);
  if (args->help) {
    std::fputs(help, stdout);
    return kExitOk;
  }
  if (args->positional.size() == positionals) return -1;
  if (positionals == 0)
    return usage_error(cmd, "unexpected argument " + args->positional[0]);
  return usage_error(cmd, "expected " + std::string(expected));
}

int usage_error(std::string_view cmd, const std::string &message) {
  std::fprintf(stderr, "hkdb %.*s: %s\nTry 'hkdb %.*s --help'.\n",
               static_cast<int>(cmd.size()), cmd.data(), message.c_str(),
               static_cast<int>(cmd.size()), cmd.data());
  return kExitUsage;
}

int data_error(std::string_view cmd, const std::string &message) {
  std::fprintf(stderr, "hkdb %.*s: %s\n", static_cast<int>(cmd.size()),
               cmd.data(), message.c_str());
  return kExitData;
}

std::string counted(uint64_t n, std::string_view noun) {
  return std::to_string(n) + " " + std::string(noun) + (n == 1 ? "" : "s");
}

bool parse_count(std::string_view text, uint64_t *value) {
  if (text.empty() || text.size() > 19) return false;
  uint64_t v = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return false;
    v = v * 10 + static_cast<uint64_t>(c - '0');
  }
  *value = v;
  return true;
}

Progress::Progress(std::string_view cmd, std::string_view unit)
    : enabled_(::isatty(STDERR_FILENO) == 1),
      prefix_("hkdb " + std::string(cmd) + ": "),
      unit_(unit) {}

Progress::~Progress() {
  if (shown_) std::fputc('\n', stderr);
}

void Progress::update(uint64_t count) {
  if (!enabled_) return;
  std::fprintf(stderr, "\r%s%llu %s", prefix_.c_str(),
               static_cast<unsigned long long>(count), unit_.c_str());
  shown_ = true;
}

}  // namespace orlo::tools::hkdb
