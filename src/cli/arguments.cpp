#include "arguments.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace cli {

namespace {

bool begins_with(const std::string& text, std::string_view start) {
  return text.compare(0, start.size(), start) == 0;
}

bool ends_with(const std::string& text, std::string_view end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

constexpr char guard = '\x01';

std::string with_guard(const std::string& argument) {
  return begins_with(argument, "[") || argument == "++" ? guard + argument : argument;
}

bool takes_value(const CLI::App& command, const std::string& name) {
  const CLI::Option* option = command.get_option_no_throw(name);
  return option != nullptr && option->get_items_expected_min() > 0;
}

// Whether the next argument is a value of this one, which may be a group of letters.
bool wants_value(const CLI::App& command, const std::string& argument) {
  if (begins_with(argument, "--") || !begins_with(argument, "-")) {
    return takes_value(command, argument);
  }
  for (std::size_t i = 1; i < argument.size(); ++i) {
    if (takes_value(command, {'-', argument[i]})) return i + 1 == argument.size();
  }
  return false;
}

// "--text=": CLI11 would take the next argument for the value.
bool has_empty_value(const CLI::App& command, const std::string& argument) {
  return begins_with(argument, "--") && ends_with(argument, "=") &&
         takes_value(command, argument.substr(0, argument.size() - 1));
}

// The SUFFIX of "-iSUFFIX" and "--in-place=SUFFIX"; null for any other argument.
const char* backup_suffix(const CLI::App& command, const char* argument) {
  if (command.get_name() != "edit") return nullptr;
  for (const std::string_view start : {std::string_view("--in-place="), std::string_view("-i")}) {
    const bool is_longer = begins_with(argument, start) && argument[start.size()] != '\0';
    if (is_longer) return argument + start.size();
  }
  return nullptr;
}

}  // namespace

std::string without_guard(const std::string& argument) {
  return argument.substr(argument[0] == guard ? 1 : 0);
}

std::vector<std::string> known_forms(const CLI::App& command, int argc, char** argv,
                                     std::string& suffix) {
  std::vector<std::string> known;
  int i = 0;
  for (; i < argc && std::string_view(argv[i]) != "--"; ++i) {
    const std::string argument = argv[i];
    if (has_empty_value(command, argument)) {
      known.push_back(argument.substr(0, argument.size() - 1));
      known.emplace_back();
    } else if (const char* const found = backup_suffix(command, argv[i])) {
      known.emplace_back("--in-place");
      suffix = found;
    } else {
      known.push_back(with_guard(argument));
      if (wants_value(command, argument) && i + 1 < argc) known.emplace_back(argv[++i]);
    }
  }
  std::transform(argv + i, argv + argc, std::back_inserter(known), with_guard);
  return known;
}

}  // namespace cli
