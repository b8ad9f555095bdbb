// From arguments to options.
#include "orvelbox/cli/command_line.h"

#include <sstream>
#include <stdexcept>

#include "orvelbox/cli/command_tree.h"
#include "orvelbox/desk/output.h"

namespace orvelbox {
namespace {

// What CLI11 has no type for.
Options Finished(const CommandInput& input) {
  Options options = input.options;
  options.log_filter.priority = input.priority.front();
  if (input.format == "json") options.check.format = CheckOptions::Format::kJson;
  if (input.format == "sarif") options.check.format = CheckOptions::Format::kSarif;
  for (const std::string& text : input.events) options.events.push_back(ParseRawEvent(text));
  for (std::string& privilege : options.check.privileges) privilege = PrivilegeUri(privilege);
  const bool platform_named =
      !options.check.platform.empty() || (!options.platform.empty() && options.command == "test");
  if (platform_named && !options.device.empty()) {
    throw std::invalid_argument("--platform and --device exclude each other; name what to check against once");
  }
  return options;
}

// Says what CLI11 has to say, help or an error.
int Explain(const CLI::App& app, const CLI::ParseError& error) {
  std::stringstream help;
  std::stringstream complaint;
  const bool usage = app.exit(error, help, complaint) != 0;
  for (std::string line; std::getline(help, line);) Say(line);
  for (std::string line; std::getline(complaint, line);) {
    if (!line.empty()) Complain(line);
  }
  return usage ? kUsage : kDone;
}

std::string Absolute(const char* name, const char* directory) {
  return (std::filesystem::path(directory) / name).string();
}

bool IsSet(const char* value) { return value != nullptr && *value != '\0'; }

}  // namespace

std::variant<Options, int> ParseCommandLine(int argc, const char* const* argv) {
  CommandInput input;
  CLI::App app;
  AddCommands(app, input);
  try {
    app.parse(argc, argv);
    if (app.get_subcommands().empty()) throw CLI::RequiredError::Subcommand(1);
    return Finished(input);
  } catch (const CLI::ParseError& error) {
    return Explain(app, error);
  } catch (const std::invalid_argument& error) {
    Complain(error.what());
    return kUsage;
  }
}

std::filesystem::path ChooseDevice(const std::string& option, const Environment& environment) {
  if (!option.empty()) return option;
  if (const char* device = environment(host::kDeviceVariable); IsSet(device)) return device;
  // A relative XDG directory counts as none.
  if (const char* state = environment("XDG_STATE_HOME"); IsSet(state) && *state == '/') {
    return Absolute("orvelbox/device", state);
  }
  if (const char* home = environment("HOME"); IsSet(home)) return Absolute(".local/state/orvelbox/device", home);
  throw host::DeviceError("no device named; name its directory with --device");
}

}  // namespace orvelbox
