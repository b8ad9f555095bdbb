// The child process that runs hooks, and its report to the parent.
#include "orvelbox/operations/hook_process.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "base/affix.h"
#include "base/unique_fd.h"
#include "orvelbox/desk/output.h"
#include "platform/host/files.h"
#include "platform/host/fixed_paths.h"

namespace orvelbox {
namespace {

using Hook = int (*)(xmlDoc* document, const char* package_id);

// A report in memory: it has no size limit like a pipe, needs no concurrent reader, and no disk space.
UniqueFd MakeReport() {
  UniqueFd report(memfd_create("orvelbox-report", MFD_CLOEXEC));
  if (!report) host::ThrowFileError("the report of the hooks", "create", errno);
  return report;
}

// Writes one line at once, so that it survives a crash of the next hook. A line feed in a message becomes a space;
// names have none.
void Report(int report, std::string line) {
  std::replace(line.begin(), line.end(), '\n', ' ');
  line += '\n';
  host::WriteAll(report, line);
}

Hook FindHook(void* library, const std::filesystem::path& plugin, const std::string& name) {
  const std::string symbol = "PKGMGR_PARSER_PLUGIN_" + name;
  void* address = dlsym(library, symbol.c_str());
  if (address == nullptr) throw host::DeviceError(plugin.string() + ": no parser plug-in, it has no " + symbol);
  return reinterpret_cast<Hook>(address);
}

// A hook threw. That is already reported; no further hook is called.
struct HookThrew {};

int CallHook(int report, Hook hook, xmlDoc* document, const std::string& package_id) {
  try {
    const int value = hook(document, package_id.c_str());
    Report(report, "returned " + std::to_string(value));
    return value;
  } catch (const std::exception& error) {
    Report(report, std::string("threw ") + error.what());
  } catch (...) {
    Report(report, "threw something that is no std::exception");
  }
  throw HookThrew();
}

void SetEnvironment(const HookSettings& settings) {
  setenv(host::kDeviceVariable, settings.device.directory.c_str(), 1);
  if (!settings.trace.empty()) setenv(host::kTraceVariable, settings.trace.c_str(), 1);
}

void DropOutput() {
  const UniqueFd nowhere(open("/dev/null", O_WRONLY | O_CLOEXEC));
  for (const int output : {STDOUT_FILENO, STDERR_FILENO}) dup2(nowhere.get(), output);
}

// The body of the child. The library stays loaded until the process ends, as in the package manager.
void CallHooks(const HookSettings& settings, int report, const std::function<void(const HookCaller&)>& body) {
  SetEnvironment(settings);
  if (settings.quiet) DropOutput();
  void* library = dlopen(settings.plugin.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) throw host::DeviceError(dlerror());
  body([&](const std::string& name, xmlDoc* document, const std::string& package_id) {
    const Hook hook = FindHook(library, settings.plugin, name);
    Report(report, "begin " + name + " " + package_id);
    return CallHook(report, hook, document, package_id);
  });
}

int RunChild(const HookSettings& settings, int report, const std::function<void(const HookCaller&)>& body) {
  try {
    CallHooks(settings, report, body);
  } catch (const HookThrew&) {
  } catch (const std::exception& error) {
    Report(report, std::string("problem ") + error.what());
  }
  std::fflush(nullptr);
  return 0;
}

// Printed once per command, however many operations it has.
void PrintInPlaceNote() {
  static bool told = false;
  if (!std::exchange(told, true)) {
    Remark(std::string("no namespaces here: working in place on ") + host::kPlatformAssemblies + " and " +
           host::kUserArea);
  }
}

std::string InWords(const host::ChildOutcome& outcome) {
  if (!outcome.signalled) return "ended its process with exit status " + std::to_string(outcome.code);
  return "was killed by signal " + std::to_string(outcome.code) + " (" + strsignal(outcome.code) + ")";
}

// Removes `prefix` from the front of `line`; returns false when it is not there.
bool Take(std::string_view& line, std::string_view prefix) {
  if (!HasPrefix(line, prefix)) return false;
  line.remove_prefix(prefix.size());
  return true;
}

HookResult BegunHook(std::string_view hook_and_package, const std::string& ending) {
  const std::size_t blank = hook_and_package.find(' ');
  HookResult result;
  result.hook = hook_and_package.substr(0, blank);
  result.package_id = hook_and_package.substr(blank + 1);
  result.message = ending;
  return result;
}

void End(HookRun& run, HookResult::End end, int value, std::string_view message) {
  if (run.results.empty()) return;
  run.results.back().end = end;
  run.results.back().value = value;
  run.results.back().message = message;
}

void ReadReportLine(std::string_view line, const std::string& ending, HookRun& run) {
  if (Take(line, "begin ")) {
    run.results.push_back(BegunHook(line, ending));
  } else if (Take(line, "returned ")) {
    End(run, HookResult::End::kReturned, std::atoi(std::string(line).c_str()), "");
  } else if (Take(line, "threw ")) {
    End(run, HookResult::End::kThrew, 0, "threw an exception: " + std::string(line));
  } else if (Take(line, "problem ")) {
    run.problem = line;
  }
}

}  // namespace

bool HookRun::Succeeded() const {
  return problem.empty() && std::all_of(results.begin(), results.end(), [](const HookResult& result) {
           return result.end == HookResult::End::kReturned && result.value == 0;
         });
}

HookRun ReadHookReport(std::string_view report, const std::string& ending) {
  HookRun run;
  for (std::size_t end = report.find('\n'); end != std::string_view::npos; end = report.find('\n')) {
    ReadReportLine(report.substr(0, end), ending, run);
    report.remove_prefix(end + 1);
  }
  return run;
}

HookRun RunHooks(const HookSettings& settings, const std::function<void(const HookCaller&)>& body) {
  if (access(settings.plugin.c_str(), R_OK) != 0) {
    throw host::DeviceError(settings.plugin.string() + ": no such plug-in; build it, or name it with --plugin");
  }
  const UniqueFd report = MakeReport();
  FlushOutput();
  const auto tell = [&] {
    if (settings.tells_in_place) PrintInPlaceNote();
  };
  const host::ChildOutcome outcome = host::RunWithFixedPaths(
      settings.device.Root(), [&] { return RunChild(settings, report.get(), body); }, tell);
  HookRun run = ReadHookReport(host::ReadFromStart(report.get()), InWords(outcome));
  const bool failed = outcome.signalled || outcome.code != 0;
  const bool explained = !run.problem.empty() || (!run.results.empty() && !run.results.back().message.empty());
  if (failed && !explained) run.problem = "outside of any hook, the plug-in " + InWords(outcome);
  return run;
}

}  // namespace orvelbox
