// Runs orvelbox and creates its devices and packages.
#include "tests/support/orvelbox_desk.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <sstream>

#include "platform/host/fixed_paths.h"
#include "platform/host/package_store.h"
#include "tests/host/machine.h"
#include "tests/support/uris.h"

namespace e2e {
namespace {

std::string ApplicationText(const std::string& id, const std::string& content) {
  return "<ui-application appid=\"" + id + ".main\" exec=\"Main.dll\" type=\"dotnet-inhouse\">" + content +
         "</ui-application>";
}

void SendTo(const std::string& file, int descriptor) {
  const int opened = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (opened < 0 || dup2(opened, descriptor) < 0) _exit(126);
}

void Add(const host::Application& application, std::ostream& text) {
  text << application.id << '|' << application.kind << '|' << application.type << '|' << application.exec << '|';
  for (const host::MetadataEntry& entry : application.metadata) text << entry.key << '=' << entry.value << '|';
}

// The content of the database; the error if it cannot be read.
std::string DatabaseText(const host::Device& device) {
  std::ostringstream text;
  try {
    for (const host::Package& package :
         host::PackageStore(device.Database(), host::PackageStore::Mode::kReadOnly).List()) {
      text << package.id << '|' << package.version << '|' << package.type << '|' << package.root << '|'
           << package.main_app_id << '|';
      for (const host::Application& application : package.applications) Add(application, text);
      for (const std::string& privilege : package.privileges) text << privilege << '|';
      text << '\n';
    }
  } catch (const host::DeviceError& error) {
    text << error.what();
  }
  return text.str();
}

[[noreturn]] void Execute(const std::vector<std::string>& arguments) {
  std::vector<char*> argv = {const_cast<char*>("orvelbox")};
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  execv(ORVELBOX_PROGRAM, argv.data());
  _exit(127);
}

}  // namespace

std::string ManifestText(const std::string& id, const std::string& version, const std::string& application,
                         const std::string& package) {
  return "<manifest package=\"" + id + "\" version=\"" + version + "\">" + ApplicationText(id, application) + package +
         "</manifest>";
}

std::string CobaMetadata() { return std::string("<metadata key=\"") + support::kCobaKey + "\" value=\"true\"/>"; }

std::string DebuggingPrivileges() {
  return std::string("<privileges><privilege>") + support::kDebuggingPrivilege + "</privilege></privileges>";
}

Desk::Desk() : device_{dir_.path() / "device"} { host::CreateDevice(device_.directory); }

pid_t Desk::Start(const std::vector<std::string>& arguments, const std::function<void()>& before) const {
  const pid_t process = fork();
  if (process != 0) return process;
  // As on a terminal, even if the parent process ignores these signals.
  for (const int interruption : {SIGINT, SIGTERM, SIGHUP}) std::signal(interruption, SIG_DFL);
  for (const char* name : {"ORVEL_TRACE", "NO_COLOR", "XDG_STATE_HOME"}) unsetenv(name);
  setenv("ORVELBOX_DEVICE", device_.directory.c_str(), 1);
  for (const auto& [name, value] : environment_) setenv(name.c_str(), value.c_str(), 1);
  const std::string number = std::to_string(getpid());
  SendTo(dir_ / ("out-" + number), STDOUT_FILENO);
  SendTo(dir_ / ("err-" + number), STDERR_FILENO);
  before();
  Execute(arguments);
}

Result Desk::WaitFor(pid_t process) const {
  int ending = 0;
  if (waitpid(process, &ending, 0) != process) throw std::runtime_error("orvelbox could not be started");
  const std::string number = std::to_string(process);
  Result result;
  result.status = WIFEXITED(ending) ? WEXITSTATUS(ending) : 128 + WTERMSIG(ending);
  result.out = support::ReadFile(dir_ / ("out-" + number));
  result.err = support::ReadFile(dir_ / ("err-" + number));
  return result;
}

Result Desk::Run(const std::vector<std::string>& arguments) const { return WaitFor(Start(arguments)); }

Result Desk::RunExpecting(int status, const std::vector<std::string>& arguments) const {
  const Result result = Run(arguments);
  EXPECT_EQ(result.status, status) << arguments.front() << ":\n" << result.out << result.err;
  return result;
}

void Desk::ExpectRefusal(const std::vector<std::string>& arguments, const std::vector<std::string>& texts) const {
  const auto before = DeviceState();
  const Result result = RunExpecting(1, arguments);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, StartsWith("orvelbox: "));
  EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
  for (const std::string& text : texts) EXPECT_THAT(result.err, HasSubstr(text));
  EXPECT_EQ(DeviceState(), before);
}

std::string Desk::MakePackage(const std::string& name, const std::string& manifest,
                              const std::map<std::string, std::string>& files) const {
  const fs::path package = dir_.path() / "packages" / name;
  fs::create_directories(package);
  support::WriteFile(package / "orvel-manifest.xml", manifest);
  for (const auto& [file, content] : files) support::WriteFile(package / file, content);
  return package.string();
}

void Desk::AddPlatformFile(const std::string& relative_path) const {
  support::WriteFile(device_.OnDesk(host::kPlatformAssemblies) / relative_path, "the platform's");
}

std::string Desk::CacheFile(const std::string& name) const {
  return support::ReadFile(device_.OnDesk(kCacheDirectory) / name);
}

std::map<std::string, std::string> Desk::DeviceState() const {
  std::map<std::string, std::string> state = {{"(database)", DatabaseText(device_)}};
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(device_.directory)) {
    const std::string name = entry.path().lexically_relative(device_.directory).string();
    if (name == "log" || name == "loader.json" || name == "lock" || name.rfind("packages.db", 0) == 0) continue;
    state[name] = entry.is_regular_file() ? support::ReadFile(entry.path()) : "";
  }
  return state;
}

void HookDesk::SetUp() {
  std::string reason;
  if (host::AvailableFixedPathsMethod(&reason) == host::FixedPathsMethod::kNone) GTEST_SKIP() << reason;
}

void HookDesk::InstallShop(std::map<std::string, std::string> files) const {
  AddPlatformFile("framework/Json.dll");
  RunExpecting(0, {"install", MakePackage("component", ManifestText("org.example.component", "1", CobaMetadata()),
                                          {{"shared/res/Part.dll", "c"}})});
  files.insert({{"bin/Json.dll", "x"}, {"bin/Part.dll", "y"}});
  RunExpecting(0, {"install", MakePackage("shop", ManifestText("org.example.shop", "1"), files)});
}

void MachineDesk::SetUp() {
  const std::string obstacle = machine::ObstacleToEmptied(ORVELBOX_PROGRAM);
  if (!obstacle.empty()) GTEST_SKIP() << "no namespace for another machine: " << obstacle;
}

}  // namespace e2e
