#include "lib/command_line.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace orlo::tools {
namespace {

// "--db DIR", "-h, --help": the option's names and the name of its value.
std::string option_label(const CLI::Option *opt) {
  std::string label;
  for (const std::string &s : opt->get_snames())
    label += (label.empty() ? "-" : ", -") + s;
  for (const std::string &l : opt->get_lnames())
    label += (label.empty() ? "--" : ", --") + l;
  if (opt->get_type_size_max() > 0) label += " " + opt->get_type_name();
  return label;
}

// The description with every line after the first indented to column.
std::string indented(const std::string &text, size_t column) {
  std::string out;
  for (char c : text) {
    out.push_back(c);
    if (c == '\n') out.append(column, ' ');
  }
  return out;
}

class ToolHelp : public CLI::Formatter {
 public:
  std::string make_help(const CLI::App *app, std::string /*name*/,
                        CLI::AppFormatMode /*mode*/) const override {
    std::vector<const CLI::Option *> options = app->get_options(
        [](const CLI::Option *o) { return o->nonpositional(); });
    size_t width = 0;
    for (const CLI::Option *o : options)
      width = std::max(width, option_label(o).size());
    const size_t column = 2 + width + 2;
    std::string help = app->get_description() + "\nOptions:\n";
    for (const CLI::Option *o : options) {
      std::string label = option_label(o);
      help += "  " + label + std::string(column - 2 - label.size(), ' ') +
              indented(o->get_description(), column) + "\n";
    }
    return help + app->get_footer();
  }
};

// The command the user named: the innermost subcommand that was parsed.
const CLI::App *named_command(const CLI::App *app) {
  while (!app->get_subcommands().empty()) app = app->get_subcommands()[0];
  return app;
}

// "hkdb build": the program and the commands named.
std::string command_path(const CLI::App *app) {
  std::string path = app->get_name();
  while (!app->get_subcommands().empty()) {
    app = app->get_subcommands()[0];
    path += " " + app->get_name();
  }
  return path;
}

// CLI11's message, or a plainer one for what users most often get wrong.
std::string usage_message(const CLI::App *app, const CLI::ParseError &e) {
  // A program of subcommands reports a missing one before an unknown word.
  bool has_commands = !app->get_subcommands({}).empty();
  if (has_commands && app->get_subcommands().empty() &&
      dynamic_cast<const CLI::RequiredError *>(&e) != nullptr) {
    std::vector<std::string> words = app->remaining();
    if (words.empty()) return "no COMMAND given";
    if (words[0].size() > 1 && words[0][0] == '-')
      return "unknown option " + words[0].substr(0, words[0].find('='));
    return "unknown command '" + words[0] + "'";
  }
  // "--db: 1 required DIR missing": an option given last, without its value.
  std::string what = e.what();
  if (dynamic_cast<const CLI::ArgumentMismatch *>(&e) != nullptr &&
      what.ends_with(" missing") && what.find(": ") != std::string::npos)
    return "option " + what.substr(0, what.find(": ")) + " needs a value";
  if (dynamic_cast<const CLI::ExtrasError *>(&e) != nullptr) {
    const CLI::App *cmd = named_command(app);
    std::vector<std::string> extra = cmd->remaining();
    if (extra.empty()) extra = app->remaining();
    if (!extra.empty()) {
      const std::string &first = extra[0];
      if (first.size() > 1 && first[0] == '-')
        return "unknown option " + first.substr(0, first.find('='));
      if (cmd == app && has_commands) return "unknown command '" + first + "'";
      return "unexpected argument '" + first + "'";
    }
  }
  return what;
}

}  // namespace

void use_tool_help(CLI::App *app, const std::string &footer) {
  app->formatter(std::make_shared<ToolHelp>());
  app->set_help_flag("-h,--help", "this text");
  app->footer(footer);
}

int parse_command_line(CLI::App *app, int argc, char **argv) {
  try {
    app->parse(argc, argv);
    return -1;
  } catch (const CLI::CallForHelp &) {
    std::fputs(named_command(app)->help().c_str(), stdout);
    return 0;
  } catch (const CLI::ParseError &e) {
    std::string path = command_path(app);
    std::fprintf(stderr, "%s: %s\nTry '%s --help'.\n", path.c_str(),
                 usage_message(app, e).c_str(), path.c_str());
    return kExitUsage;
  }
}

CLI::Validator whole_number() {
  return CLI::Validator(
      [](std::string &text) -> std::string {
        bool digits = !text.empty() && text.size() <= 19 &&
                      std::all_of(text.begin(), text.end(),
                                  [](char c) { return c >= '0' && c <= '9'; });
        return digits ? "" : "needs a whole number, not '" + text + "'";
      },
      "");
}

CLI::Validator whole_number_in(uint64_t low, uint64_t high) {
  return CLI::Validator(
      [low, high](std::string &text) -> std::string {
        std::string range = "a number from " + std::to_string(low) + " to " +
                            std::to_string(high);
        if (!whole_number()(text).empty())
          return "takes " + range + ", not '" + text + "'";
        uint64_t v = std::stoull(text);
        if (v < low || v > high) return "takes " + range + ", not " + text;
        return "";
      },
      "");
}

}  // namespace orlo::tools
