// The pass's walk over a package, and the policy without side effects, compared with isUniqueDll called for each file.
#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>

#include "morvath/platform_utils.h"
#include "plugin/assembly_cache.h"
#include "plugin/catalogues.h"
#include "plugin/duplicate_policy.h"
#include "plugin/duplicates.h"
#include "tests/support/interposed.h"
#include "tests/support/unit_case.h"
#include "util/platform_utils/directory_walk.h"

namespace unit {
namespace {

// All observable results of a walk.
struct Outcome {
  int result;
  Texts log;
  std::string standard_error;
  Texts left;
};

constexpr unsigned int kLevels = 10;

using Walk = std::function<int(const std::string& root)>;

int OfferEachToIsUniqueDll(const std::string& root) {
  int result = 0;
  const auto offer = [&](const std::string& path, const std::string& name) {
    if (isUniqueDll(path, name) == 0) result = -1;
  };
  scanFilesInDirExcludeSymlink(root, offer, kLevels);
  return result;
}

Texts LinesOf(const Platform& platform) {
  Texts lines;
  for (const Event& event : platform.journal) {
    lines.push_back(event.kind == Event::Kind::kLog ? event.log.function + ": " + event.log.text : event.text);
  }
  return lines;
}

Texts Everything(const fs::path& root) {
  Texts paths;
  std::error_code unreachable;
  const auto options = fs::directory_options::skip_permission_denied;
  for (fs::recursive_directory_iterator entry(root, options, unreachable), end; entry != end;
       entry.increment(unreachable)) {
    paths.push_back(entry->path().string());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

Outcome OutcomeOf(const std::string& root, const Walk& walk) {
  Outcome outcome;
  doubles::Current().journal.clear();
  outcome.standard_error = StandardErrorOf([&] { outcome.result = walk(root); });
  outcome.log = LinesOf(doubles::Current());
  outcome.left = Everything(root);
  return outcome;
}

void PutCatalogues(const std::string& package) {
  coreFX = {{"A.dll", "/usr/share/dotnet.orvel/netcoreapp/A.dll"}, {"notes.json", "/n"}};
  orvelFX = {{"A.dll", "/second"}, {"P.dll", "/usr/share/dotnet.orvel/d.pc/P.dll"}};
  coBA = {{"C.dll", "/opt/usr/globalapps/coba/C.dll"}};
  appLib = {{"L.dll", package + "/lib/L.dll"}, {"D.dll", "/x"}};
}

struct Circumstances {
  fs::path place = "pkg";  // the package's path below a temporary directory
  bool as_root = true;
  std::ptrdiff_t failed_lstats = 0;  // how many files cannot be examined
};

// Creates the package twice at the same path and walks it both ways. It has at least one duplicate.
void ExpectSameOutcome(const std::function<void(const fs::path& root)>& make, const Circumstances& circumstances = {}) {
  const TempDir root;
  const auto outcome = [&](const Walk& walk) {
    const fs::path package = root.path() / circumstances.place;
    fs::remove_all(package);
    make(package);
    Outcome found = OutcomeOf(package.string(), walk);
    for (const fs::directory_entry& entry : fs::directory_iterator(package)) {
      if (entry.is_directory()) fs::permissions(entry, fs::perms::owner_all);
    }
    return found;
  };
  Fresh([&](Platform&) {
    if (!circumstances.as_root) {
      fs::permissions(root.path(), fs::perms::all);
      ASSERT_TRUE(support::GiveUpPrivileges());
    }
    PutCatalogues(root / circumstances.place.string());
    const Outcome one_by_one = outcome(OfferEachToIsUniqueDll);
    const Outcome all_at_once = outcome(RemoveDuplicates);
    EXPECT_EQ(-1, one_by_one.result);
    const auto tells_of_lstat = [](const std::string& line) { return line.find("lstat error.") != std::string::npos; };
    EXPECT_EQ(circumstances.failed_lstats, std::count_if(one_by_one.log.begin(), one_by_one.log.end(), tells_of_lstat));
    EXPECT_EQ(one_by_one.result, all_at_once.result);
    EXPECT_EQ(one_by_one.log, all_at_once.log);
    EXPECT_EQ(one_by_one.standard_error, all_at_once.standard_error);
    EXPECT_EQ(one_by_one.left, all_at_once.left);
  });
}

void MakePackage(const fs::path& root) {
  for (const char* file : {"A.dll", "bin/A.dll", "bin/A.DLL", "bin/.dll", "dll", "lib/L.dll", "bin/L.dll", "C.dll",
                           "P.dll", "d.pc/A.dll", "d.pc/D.dll", "D.dll", "notes.json", "U.dll", "x/.sac_symlink/A.dll",
                           "1/2/3/4/5/6/7/8/9/A.dll", "1/2/3/4/5/6/7/8/9/10/A.dll"}) {
    WriteFile(root / file);
  }
}

TEST(DuplicateWalk, a_walk_ends_as_if_each_file_had_been_judged_alone) { ExpectSameOutcome(MakePackage); }

TEST(DuplicateWalk, links_are_found_out_as_by_one) {
  ExpectSameOutcome([](const fs::path& root) {
    MakePackage(root);
    fs::create_directories(root / "links");
    fs::create_symlink("../A.dll", root / "links/A.dll");
    fs::create_symlink("../bin", root / "links/D.dll");
    fs::create_symlink("nowhere", root / "links/C.dll");
  });
}

TEST(DuplicateWalk, a_directory_that_may_be_listed_but_not_searched_gives_the_lines_of_failed_lstats) {
  ExpectSameOutcome(
      [](const fs::path& root) {
        WriteFile(root / "A.dll");
        WriteFile(root / "closed/A.dll");
        WriteFile(root / "closed/U.dll");
        fs::permissions(root / "closed", fs::perms::owner_read);
      },
      {"pkg", false, 2});
}

TEST(DuplicateWalk, without_entry_types_every_file_is_examined) {
  ExpectSameOutcome([](const fs::path& root) {
    MakePackage(root);
    interposed::Now().entry_types_unknown = true;
  });
}

// Creates nested directories below `root`, one by one because no call accepts the whole path, until the path is
// `length` bytes long. The last one has a DLL that is catalogued and one that is not.
void MakeLongPath(const fs::path& root, std::size_t length) {
  const fs::path before = fs::current_path();
  std::size_t reached = root.string().size();
  fs::create_directories(root);
  fs::current_path(root);
  while (reached < length) {
    const std::size_t left = length - reached - 1;
    const std::string name(left <= 250 ? left : std::min<std::size_t>(left - 2, 250), 'd');  // never leaves only a "/"
    fs::create_directory(name);
    fs::current_path(name);
    reached += name.size() + 1;
  }
  for (const char* file : {"./A.dll", "./U.dll"}) WriteFile(file);
  fs::current_path(before);
}

TEST(DuplicateWalk, paths_that_no_call_takes_give_the_lines_of_failed_lstats) {
  // The walk ends before paths get that long, unless the root itself is long.
  const std::string level(200, 'r');
  const fs::path place = fs::path(level) / level / level / level / level / level / level / level / level / level;
  // Directories that can be listed by path; with "/A.dll" appended, the path just fits or is too long.
  for (const int short_of_it : {8, 7, 6, 3, 2, 1}) {
    SCOPED_TRACE(short_of_it);
    const std::size_t length = static_cast<std::size_t>(PATH_MAX - short_of_it);
    const auto make = [&](const fs::path& root) {
      WriteFile(root / "A.dll");
      MakeLongPath(root, length);
    };
    ExpectSameOutcome(make, {place, true, length + std::strlen("/A.dll") < PATH_MAX ? 0 : 2});
  }
}

}  // namespace
}  // namespace unit
