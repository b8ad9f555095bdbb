// Reads the state of a process.
#include "tests/faults/guest_watch.h"

#include <dirent.h>
#include <fcntl.h>
#include <libxml/globals.h>
#include <libxml/parser.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlmemory.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace guest_watch {
namespace {

// The bytes of a trivially copyable value, or of a function's address.
template <typename Value>
std::string Bytes(const Value& value) {
  const auto* bytes = reinterpret_cast<const unsigned char*>(&value);
  std::ostringstream text;
  for (std::size_t i = 0; i < sizeof value; ++i) text << std::hex << static_cast<int>(bytes[i]) << ' ';
  return text.str();
}

void ReadSignals(ProcessState& seen) {
  for (int signal = 1; signal < NSIG; ++signal) {
    struct sigaction action {};
    if (sigaction(signal, nullptr, &action) != 0) continue;
    seen["signal " + std::to_string(signal)] = Bytes(action.sa_handler) + std::to_string(action.sa_flags);
  }
  sigset_t mask;
  sigemptyset(&mask);
  pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  for (int signal = 1; signal < NSIG; ++signal) seen["signal mask"] += sigismember(&mask, signal) == 1 ? '1' : '0';
}

mode_t Umask() {
  const mode_t mask = umask(0);
  umask(mask);
  return mask;
}

std::string Environment() {
  std::string all;
  for (char** variable = environ; *variable != nullptr; ++variable) all.append(*variable).append("\n");
  return all;
}

void ReadLimitsAndTimers(ProcessState& seen) {
  for (int resource = 0; resource < static_cast<int>(RLIMIT_NLIMITS); ++resource) {
    rlimit limit{};
    if (getrlimit(static_cast<__rlimit_resource>(resource), &limit) != 0) continue;
    seen["limit " + std::to_string(resource)] =
        std::to_string(limit.rlim_cur) + " of " + std::to_string(limit.rlim_max);
  }
  itimerval timer{};
  getitimer(ITIMER_REAL, &timer);
  seen["timer"] = Bytes(timer);
}

// Setting one of libxml2's defaults returns its old value.
template <typename Setter>
int DefaultOf(const Setter& set) {
  const int value = set(0);
  set(value);
  return value;
}

void ReadXmlState(ProcessState& seen) {
  seen["xml error handler"] = Bytes(xmlGenericError) + Bytes(xmlGenericErrorContext);
  seen["xml structured error handler"] = Bytes(xmlStructuredError) + Bytes(xmlStructuredErrorContext);
  seen["xml entity loader"] = Bytes(xmlGetExternalEntityLoader());
  seen["xml substitution of entities"] = std::to_string(DefaultOf(xmlSubstituteEntitiesDefault));
  seen["xml blanks"] = std::to_string(DefaultOf(xmlKeepBlanksDefault));
  seen["xml pedantry"] = std::to_string(DefaultOf(xmlPedanticParserDefault));
  seen["xml line numbers"] = std::to_string(DefaultOf(xmlLineNumbersDefault));
  seen["xml loading of DTDs"] = std::to_string(xmlLoadExtDtdDefaultValue);
  seen["xml validation"] = std::to_string(xmlDoValidityCheckingDefaultValue);
  seen["xml indentation"] = std::to_string(xmlIndentTreeOutput) + xmlTreeIndentString;
  xmlFreeFunc free_function = nullptr;
  xmlMallocFunc malloc_function = nullptr;
  xmlReallocFunc realloc_function = nullptr;
  xmlStrdupFunc strdup_function = nullptr;
  xmlMemGet(&free_function, &malloc_function, &realloc_function, &strdup_function);
  seen["xml memory"] = Bytes(free_function) + Bytes(malloc_function) + Bytes(realloc_function) + Bytes(strdup_function);
}

}  // namespace

ProcessState ReadState() {
  ProcessState seen;
  ReadSignals(seen);
  ReadLimitsAndTimers(seen);
  ReadXmlState(seen);
  seen["locale"] = std::setlocale(LC_ALL, nullptr);
  seen["locale of the thread"] = Bytes(uselocale(nullptr));
  seen["umask"] = std::to_string(Umask());
  seen["working directory"] = std::filesystem::current_path().string();
  seen["environment"] = Environment();
  return seen;
}

std::string Differences(const ProcessState& before, const ProcessState& after) {
  std::string text;
  for (const auto& [name, value] : before) {
    const auto now = after.find(name);
    if (now == after.end() || now->second != value) {
      text += name + ": " + value + " -> " + (now == after.end() ? "gone" : now->second) + "\n";
    }
  }
  return text;
}

int Threads() {
  int threads = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) ++threads;
  return threads;
}

std::set<int> InheritableDescriptors() {
  std::set<int> found;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    const int descriptor = std::atoi(entry.path().filename().c_str());
    const int flags = fcntl(descriptor, F_GETFD);
    if (flags >= 0 && (flags & FD_CLOEXEC) == 0) found.insert(descriptor);
  }
  return found;
}

}  // namespace guest_watch
