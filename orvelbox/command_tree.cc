// The commands with their options, as help, manual and completions tell them.
#include "orvelbox/command_tree.h"

namespace orvelbox {
namespace {

constexpr const char* kDescription =
    "orvelbox: a TV device on a desk. It installs packages of .NET applications with the platform's own parser\n"
    "plug-in, and tells what the plug-in did to them.";

constexpr const char* kFooter =
    "A package is a directory with an orvel-manifest.xml in it, or a zip archive of one (.opk). A device is a\n"
    "directory too: --device, else $ORVELBOX_DEVICE, else orvelbox/device in the XDG state directory. Begin with:\n"
    "orvelbox init\n"
    "Exit status: 0 done, 1 the operation failed, 2 wrong usage.";

void AddGlobalOptions(CLI::App& app, Options& options) {
  app.add_option("--device", options.device, "The directory of the device")->type_name("DIR");
  app.add_option("--plugin", options.plugin, "The parser plug-in to load, instead of the one built with this program")
      ->type_name("FILE");
  app.add_option("--trace", options.trace,
                 "Append the plug-in's trace spans to FILE (Chrome trace-event format, as Perfetto reads it)")
      ->type_name("FILE");
  app.add_flag("--quiet", options.quiet, "Print nothing but complaints");
}

// `example` is how it may be called, after "orvelbox ".
CLI::App* AddCommand(CLI::App& app, Options& options, const std::string& name, const std::string& description,
                     const std::string& example) {
  CLI::App* command = app.add_subcommand(name, description);
  command->footer("Example: orvelbox " + example);
  command->callback([&options, name] { options.command = name; });
  return command;
}

void AddTargetCommand(CLI::App& app, Options& options, const std::string& name, const std::string& target,
                      const std::string& description) {
  const char* meaning = target == "PACKAGE" ? "The directory or the .opk archive of the package" : "The package id";
  const std::string example = name + (target == "PACKAGE" ? " shop.opk" : " org.example.shop");
  AddCommand(app, options, name, description, example)->add_option(target, options.target, meaning)->required();
}

void AddChangingCommands(CLI::App& app, Options& options) {
  AddCommand(app, options, "init", "Make a device", "init --platform tv-assemblies")
      ->add_option("--platform", options.platform,
                   "Copy the platform's assemblies (netcoreapp/ framework/ d.pc/ tvappapi/) from DIR")
      ->type_name("DIR");
  AddTargetCommand(app, options, "install", "PACKAGE", "Install a package: INSTALL, then CLEAN");
  AddTargetCommand(app, options, "upgrade", "PACKAGE", "Upgrade an installed package: UPGRADE, then CLEAN");
  AddTargetCommand(app, options, "uninstall", "PKG", "Uninstall a package: UNINSTALL, then CLEAN");
  for (const PackageEvent& event : PackageEvents()) {
    AddTargetCommand(app, options, event.command, "PKG", event.explanation);
  }
}

// From 2.4 on CLI11 takes no ":" in a name.
void AddEventsCommand(CLI::App& app, Options& options, std::vector<std::string>& texts) {
  AddCommand(app, options, "events", "Call hooks one after the other in one process, and nothing else",
             "events clean:org.example.shop uninstall:org.example.shop")
      ->add_option("CALL", texts,
                   "EVENT:PKG, the event one of install, upgrade, removed, uninstall, recoveruninstall, clean, cleanup "
                   "and undo, and a package id")
      ->required();
}

void AddCheckCommand(CLI::App& app, Options& options, std::string& format) {
  CheckOptions& check = options.check;
  CLI::App* command = AddCommand(app, options, "check",
                                 "Say which DLLs of packages an install would remove, and because of what; nothing is "
                                 "installed",
                                 "check --platform tv-assemblies shop.opk");
  command->add_option("PACKAGE", check.packages, "Directories or .opk archives of packages")->required();
  command
      ->add_option("--platform", check.platform,
                   "Check against the platform in this directory (netcoreapp/ framework/ d.pc/ tvappapi/) or list "
                   "file (paths of a device, one a line), instead of a device")
      ->type_name("DIR|LIST");
  command->add_option("--coba", check.coba, "A CoBA package (directory or .opk) that is there as well")
      ->type_name("PACKAGE")
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->expected(1);
  command
      ->add_option("--privilege", check.privileges,
                   "A privilege that the packages hold beside those of their manifests: a URI, \"platform\" or "
                   "\"appdebugging\"")
      ->type_name("URI")
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->expected(1);
  command->add_option("--format", format, "table, json (one line per package) or sarif (2.1.0)")
      ->type_name("FORMAT")
      ->check(CLI::IsMember({"table", "json", "sarif"}));
  command->add_option("--jobs", check.jobs, "How many packages are checked at a time (one per core)")
      ->type_name("N")
      ->check(CLI::Range(1U, 1024U));
  command->footer(
      "Exit status: 0 no duplicates, 1 duplicates, 2 wrong usage, or something could not be read.\n"
      "Example: orvelbox check --platform tv-assemblies shop.opk");
}

// A command that lists something, for people or for programs.
CLI::App* AddListing(CLI::App& app, Options& options, const std::string& name, const std::string& description,
                     const std::string& example) {
  CLI::App* command = AddCommand(app, options, name, description, example);
  command->add_flag("--json", options.json, "Print JSON");
  return command;
}

void AddCacheCommand(CLI::App& app, Options& options) {
  CLI::App* cache =
      AddListing(app, options, "cache", "Show the candidate loader's cache files, one entry a line", "cache verify");
  CLI::App* verify = cache->add_subcommand(
      "verify",
      "Look for what is wrong with them: markers, entries whose files are gone, packages that are not "
      "installed, entries that are there twice, roots that begin others");
  verify->callback([&options] { options.verify = true; });
  verify->add_flag("--json", options.json, "Print JSON");
  verify->footer("Exit status: 0 nothing is wrong, 1 something is, 2 wrong usage.\nExample: orvelbox cache verify");
}

void AddLogCommand(CLI::App& app, Options& options, std::string& priority) {
  CLI::App* log = AddListing(app, options, "log", "Show the device's log", "log --priority I --follow");
  log->add_flag("--follow", options.follow, "Go on with every record that comes");
  log->add_option("--tag", options.log_filter.tag, "Only records under this tag")->type_name("TAG");
  log->add_option("--priority", priority, "Only records of this priority and above (D, I, E)")
      ->type_name("P")
      ->check(CLI::IsMember({"D", "I", "E"}));
}

std::string FaultOfPicture(const std::string& file) {
  const std::string extension = std::filesystem::path(file).extension();
  return extension == ".svg" || extension == ".html" ? "" : file + " must end in .svg or .html";
}

void AddTraceCommand(CLI::App& app, Options& options) {
  CLI::App* command =
      AddCommand(app, options, "trace", "Draw what --trace wrote: the functions of the plug-in, by time",
                 "trace trace.json --output trace.html");
  command->add_option("FILE", options.target, "A file that --trace wrote")->required();
  command->add_option("--output", options.output, "Draw a picture (.svg) or a page for a browser (.html) into FILE")
      ->type_name("FILE")
      ->check(FaultOfPicture, "");
}

void AddTestCommand(CLI::App& app, Options& options) {
  CLI::App* command =
      AddListing(app, options, "test",
                 "Let a package live through install, clean, undo, recovery, upgrade and uninstall on a "
                 "throw-away device, and report what it leaves behind",
                 "test --platform tv-assemblies shop-1.opk shop-2.opk");
  command->add_option("PACKAGE", options.target, "The directory or the .opk archive of the package")->required();
  command->add_option("NEW", options.upgrade, "What it is upgraded to (itself)");
  command
      ->add_option("--platform", options.platform,
                   "Give the throw-away device the platform in DIR instead of that of the device")
      ->type_name("DIR");
}

void AddReadingCommands(CLI::App& app, Options& options, std::string& priority) {
  AddListing(app, options, "list", "List the installed packages", "list --json");
  AddListing(app, options, "show", "Show what is registered about a package", "show org.example.shop")
      ->add_option("PKG", options.target, "The package id")
      ->required();
  AddListing(app, options, "why", "Say what was removed from an installed package, when, and because of what",
             "why org.example.shop")
      ->add_option("PATH|PKG", options.target,
                   "A package id, or the path of a DLL, of its information file (…_deleted) or of a directory in a "
                   "package")
      ->required();
  AddCacheCommand(app, options);
  AddLogCommand(app, options, priority);
}

}  // namespace

void AddCommands(CLI::App& app, CommandInput& input) {
  app.name("orvelbox");
  app.description(kDescription);
  app.footer(kFooter);
  app.require_subcommand(0, 1);  // none at all is told by the caller, so that an unknown one is told by its name
  app.fallthrough();
  AddGlobalOptions(app, input.options);
  AddChangingCommands(app, input.options);
  AddEventsCommand(app, input.options, input.events);
  AddCheckCommand(app, input.options, input.format);
  AddTestCommand(app, input.options);
  AddReadingCommands(app, input.options, input.priority);
  AddTraceCommand(app, input.options);
}

}  // namespace orvelbox
