// What `check` finds out about a package, and its formats for people and for programs. Found in package_checker.
#ifndef ORVEL_ORVELBOX_CHECK_RESULT_H_
#define ORVEL_ORVELBOX_CHECK_RESULT_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "orvelbox/assembly/version.h"
#include "orvelbox/desk/output.h"
#include "plugin/duplicate_policy.h"

namespace orvelbox {

// One copy of a DLL, as far as it is at hand.
struct DllCopy {
  std::optional<std::uint64_t> size;
  std::optional<AssemblyVersion> version;  // of a real assembly
};

struct CheckedDll {
  std::string path;  // below the package's root
  Verdict verdict = Verdict::kKept;
  std::string_view reason;  // why it is kept although something speaks for a duplicate: a literal; may be empty
  std::string origin;       // the catalogued copy that decides, as a path of the device; empty when there is none
  DllCopy own;              // of a duplicate: the package's copy and the catalogued one
  DllCopy provided;

  bool IsDuplicate() const { return verdict != Verdict::kKept; }
  // The package's copy is the newer one; by its name it goes all the same.
  bool IsNewer() const { return own.version && provided.version && *own.version > *provided.version; }
};

struct CheckedPackage {
  std::string name;     // as asked for
  std::string problem;  // why it could not be checked; empty otherwise, and only then the rest counts
  std::string id;
  std::string version;
  std::string root;              // where it would stand on the device
  bool dotnet = false;           // the plug-in deals with it at all
  bool debugging = false;        // its install fails when it has duplicates
  std::vector<CheckedDll> dlls;  // all of them, ordered by path
};

// How grave it is what was found: because of an error the install would fail.
enum class Level { kNone, kWarning, kError };
Level LevelOf(const CheckedPackage& package);

// "kept", "reported" or "removed".
const char* ToString(Verdict verdict);

// Of a package that is no `dotnet` one.
inline constexpr const char* kLeftAlone =
    "the plug-in leaves the package alone: it has no application of a \"dotnet-\" type";

// How many DLLs of the package have the verdict, and how many are duplicates.
std::size_t CountOf(const CheckedPackage& package, Verdict verdict);
std::size_t CountDuplicates(const CheckedPackage& package);

// All about a package that could be checked, in words and a table.
void DescribeCheck(const CheckedPackage& package, const TakeLine& take);

// What is said of one duplicate of the package, in one line.
std::string MessageAbout(const CheckedPackage& package, const CheckedDll& dll);

// The file to point at: a DLL in a directory, or the archive that it lies in.
std::string FileOf(const CheckedPackage& package, const CheckedDll& dll);

// The lines for the duplicates of `package` that a copy outside of it makes duplicates, to be put inside of <Project>.
// None when there are none.
void WriteProjectLines(const CheckedPackage& package, const TakeLine& take);

// Everything as one line of JSON, handed to `take` in parts.
using TakePart = std::function<void(std::string_view part)>;
void WriteJson(const CheckedPackage& package, const TakePart& take);

// A line for each duplicate, or for what keeps the package from being checked, in the form that MSBuild and those who
// read its logs take for a warning or an error.
void WriteMsbuild(const CheckedPackage& package, const TakeLine& take);

// A log in SARIF 2.1.0, which code review tools read, with one run: a result per duplicate, a notification per package
// that could not be checked. Results are said as they come, so that none is kept.
class SarifLog {
 public:
  // `say` takes the log line by line.
  explicit SarifLog(TakeLine say) : say_(std::move(say)) {}

  void Add(const CheckedPackage& package);
  void End();

 private:
  void Begin();

  TakeLine say_;
  bool begun_ = false;
  bool first_ = true;  // result of all
  std::string notifications_;
};

}  // namespace orvelbox

#endif
