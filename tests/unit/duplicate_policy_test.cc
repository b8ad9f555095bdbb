// The decisions of the policy for given catalogues.
#include "plugin/duplicate_policy.h"

#include "plugin/catalogues.h"
#include "tests/support/unit_case.h"

namespace unit {
namespace {

struct ForetoldRow {
  const char* path;
  const char* name;
  Verdict verdict;
  std::string origin;  // empty: none
  Exemption exemption;
};

TEST(DuplicatePolicy, names_the_first_catalogued_copy_of_the_catalogues_it_is_given_and_what_exempts_a_file) {
  Catalogue core = {{"A.dll", "/core/A.dll"}, {"notes.json", "/n"}};
  Catalogue framework = {{"A.dll", "/second"}, {"P.dll", "/usr/d.pc/P.dll"}};
  Catalogue components = {{"C.dll", "/opt/usr/globalapps/coba/C.dll"}, {"P.dll", "/second"}};
  Catalogue library = {{"C.dll", "/second"}, {"L.dll", "/pkg/lib/L.dll"}};
  const ForetoldRow rows[] = {
      {"/pkg/A.dll", "A.dll", Verdict::kRemoved, "/core/A.dll", Exemption::kNone},
      {"/pkg/d.pc/A.dll", "A.dll", Verdict::kKept, "/core/A.dll", Exemption::kOnDpcPath},
      {"/pkg/P.dll", "P.dll", Verdict::kKept, "/usr/d.pc/P.dll", Exemption::kOriginOnDpcPath},
      {"/pkg/d.pc/P.dll", "P.dll", Verdict::kKept, "/usr/d.pc/P.dll", Exemption::kOriginOnDpcPath},
      {"/pkg/C.dll", "C.dll", Verdict::kReportedOnly, "/opt/usr/globalapps/coba/C.dll", Exemption::kNone},
      {"/pkg/lib/L.dll", "L.dll", Verdict::kKept, "/pkg/lib/L.dll", Exemption::kSamePath},
      {"/pkg/L.dll", "L.dll", Verdict::kRemoved, "/pkg/lib/L.dll", Exemption::kNone},
      {"/pkg/U.dll", "U.dll", Verdict::kKept, "", Exemption::kNone},
      {"/pkg/notes.json", "notes.json", Verdict::kKept, "", Exemption::kNone},
  };
  Fresh([&](Platform& platform) {
    coreFX = {{"U.dll", "/not/asked"}, {"A.dll", "/not/asked"}};
    for (const ForetoldRow& row : rows) {
      const Judgement judgement = Foretell({&core, &framework, &components, &library}, row.path, row.name);
      EXPECT_EQ(row.verdict, judgement.verdict) << row.path;
      EXPECT_EQ(row.exemption, judgement.exemption) << row.path;
      EXPECT_EQ(row.origin, judgement.origin == nullptr ? "" : *judgement.origin) << row.path;
    }
    EXPECT_TRUE(platform.Messages().empty());
  });
}

}  // namespace
}  // namespace unit
