// Reading information files, and rejecting other files; the answers about removals.

#include "orvelbox/history/why.h"
#include "tests/orvelbox/frame.h"
#include "tests/orvelbox/history/told_log.h"
#include "tests/support/removal_texts.h"

namespace orvelbox {
namespace {

TEST(InformationFile, names_the_copy_that_decided) {
  EXPECT_EQ(OriginIn(support::InformationText("/p/X.dll", "/a/X.dll"), "/a/X.dll"), "/p/X.dll");
}

TEST(InformationFile, other_texts_are_none) {
  const std::string good = support::InformationText("/p/X.dll", "/a/X.dll");
  for (const std::string& text :
       {std::string(), good.substr(1), good.substr(0, good.size() - 1), good + "more\n",
        support::InformationText("/p/X.dll", "/a/Y.dll"), support::InformationText("", "/a/X.dll")}) {
    EXPECT_FALSE(OriginIn(text, "/a/X.dll")) << text;
  }
}

constexpr const char* kRoot = "/opt/usr/apps/a";

WhyQuestion Question(const std::string& path = "") {
  WhyQuestion question;
  question.package.id = "org.a";
  question.package.version = "1";
  question.package.root = kRoot;
  question.path = path;
  return question;
}

CheckedDll Dll(const std::string& path, Verdict verdict, std::string_view reason, const std::string& origin = "") {
  CheckedDll dll;
  dll.path = path;
  dll.verdict = verdict;
  dll.reason = reason;
  dll.origin = origin;
  return dll;
}

CheckedPackage Today(std::vector<CheckedDll> dlls) {
  CheckedPackage today;
  today.root = kRoot;
  today.dotnet = true;
  today.dlls = std::move(dlls);
  return today;
}

Removal Removed(const std::string& name) {
  Removal removal;
  removal.dll = kRoot + name;
  removal.origin = "/p" + name;
  removal.removed = removal.information_file = removal.origin_there = true;
  return removal;
}

constexpr const char* kBegin = "org.a 1 (/opt/usr/apps/a)";

TEST(Why, removals_are_told_with_notes) {
  std::vector<Removal> all = {Removed("/1"), Removed("/2"), Removed("/3"), Removed("/4"), Removed("/5")};
  all[0].time = "noon";
  all[1].removed = false;
  all[1].stays = true;
  all[2].removed = false;
  all[3].information_file = false;
  all[4].origin_there = false;
  EXPECT_THAT(
      DescribeWhy(Question(), {all, 0}, Today({Dll("Own.dll", Verdict::kKept, "")})),
      ElementsAre(kBegin, "    WHAT      DLL  WHEN  BECAUSE OF  NOTE", "    removed   1    noon  /p/1",
                  "    reported  2          /p/2        kept, the copy that decided lies in the read-write area",
                  "    reported  3          /p/3        there, the log does not tell that it was removed",
                  "    removed   4          /p/4        in an install before this one: there is no information "
                  "file any more",
                  "    removed   5          /p/5        the copy that decided is gone since; an install now "
                  "would keep the DLL"));
}

TEST(Why, dlls_that_are_asked_for_and_there_are_told_with_reasons) {
  const CheckedPackage today =
      Today({Dll("bin/1", Verdict::kRemoved, "", "/p/1"), Dll("bin/2", Verdict::kReportedOnly, "", "/p/2"),
             Dll("bin/3", Verdict::kKept, "because"), Dll("bin/4", Verdict::kKept, ""),
             Dll("lib/5", Verdict::kKept, ""), Dll("bin/6", Verdict::kRemoved, "", "/p/6")});
  Removal reported = Removed("/bin/6");
  reported.removed = false;
  reported.stays = true;
  EXPECT_THAT(
      DescribeWhy(Question(std::string(kRoot) + "/bin"), {{Removed("/bin/1"), reported}, 0}, today),
      ElementsAre(kBegin, "    WHAT      DLL    BECAUSE OF  NOTE", "    removed   bin/1  /p/bin/1",
                  "    reported  bin/6  /p/bin/6    kept, the copy that decided lies in the read-write area",
                  "    there     bin/1  /p/1        an install now would remove it",
                  "    there     bin/2  /p/2        an install now would report it, and keep it (read-write area)",
                  "    there     bin/3              because",
                  "    there     bin/4              no catalogue holds its name"));
  CheckedPackage native = Today({Dll("5", Verdict::kKept, "")});
  native.dotnet = false;
  EXPECT_THAT(DescribeWhy(Question(std::string(kRoot) + "/5"), {}, native),
              Contains("    there  5    the plug-in leaves the package alone: it has no application of a \"dotnet-\" "
                       "type"));
}

TEST(Why, where_nothing_is_known_that_is_said) {
  EXPECT_THAT(DescribeWhy(Question(), {}, {}),
              ElementsAre(kBegin, "    nothing was removed from the package, and nothing reported"));
  EXPECT_THAT(DescribeWhy(Question(), {{}, 8}, {}),
              ElementsAre(kBegin, "    nothing is known to be removed from the package, or reported",
                          "    the log was read up to line 7, it holds more than can be told at once"));
  EXPECT_THAT(DescribeWhy(Question(std::string(kRoot) + "/bin/No.dll"), {}, {}),
              ElementsAre(kBegin,
                          "    nothing is known of bin/No.dll: no information file, no line in the log, and no DLL "
                          "there that it could have been"));
}

TEST(Why, json_holds_every_fact) {
  Removal with_time = Removed("/1");
  with_time.time = "noon";
  Removal reported;
  reported.dll = std::string(kRoot) + "/2";
  reported.origin = "/p/2";
  const CheckedPackage today = Today({Dll("3", Verdict::kRemoved, "", "/p/3"), Dll("4", Verdict::kKept, "")});
  EXPECT_EQ(WhyJson(Question(kRoot), {{with_time, reported}, 0}, today),
            R"({"id":"org.a","version":"1","root":"/opt/usr/apps/a","dlls":[{"path":"1","fate":"removed",)"
            R"("time":"noon","origin":"/p/1","origin_there":true,"information_file":true},{"path":"2",)"
            R"("fate":"reported","time":null,"origin":"/p/2","origin_there":false,"information_file":false},)"
            R"({"path":"3","fate":"there","origin":"/p/3","reason":"an install now would remove it"},)"
            R"({"path":"4","fate":"there","origin":null,"reason":"no catalogue holds its name"}]})");
  EXPECT_EQ(WhyJson(Question(), {{}, 8}, today),
            R"({"id":"org.a","version":"1","root":"/opt/usr/apps/a","dlls":[],"unread_from":8})");
}

class RemovalsTest : public DirectoryTest {
 protected:
  void WriteInformation(const std::string& dll, const std::string& origin) const {
    WriteFile(device_.OnDesk(dll + "_deleted"), support::InformationText(origin, dll));
  }
  // The removals, each as "DLL ORIGIN" and what is true of it.
  Lines Known(const std::string& path = "") const {
    Lines lines;
    for (const Removal& removal : RemovalsFor(device_, Question(path)).all) {
      lines.push_back(removal.dll + " " + removal.origin + " " + removal.time + (removal.removed ? " removed" : "") +
                      (removal.stays ? " stays" : "") + (removal.information_file ? " file" : "") +
                      (removal.origin_there ? " there" : ""));
    }
    return lines;
  }

  const host::Device device_ = host::CreateDevice(dir_ / "device");
};

TEST_F(RemovalsTest, information_files_tell_of_removals) {
  const std::string root = kRoot;
  WriteFile(device_.OnDesk("/p/A.dll"));
  WriteInformation(root + "/A.dll", "/p/A.dll");
  WriteInformation(root + "/lib/B.dll", "/p/B.dll");
  WriteInformation("/opt/usr/apps/ab/C.dll", "/p/C.dll");
  WriteFile(device_.OnDesk(root + "/D.dll_deleted"), "text");
  WriteInformation(root + "/E.dll", "/" + std::string(65536, 'x'));
  WriteFile(device_.OnDesk(root + "/text"), support::InformationText("/p/F.dll", root + "/F.dll"));
  fs::create_symlink("text", device_.OnDesk(root + "/F.dll_deleted"));
  EXPECT_THAT(Known(),
              ElementsAre(root + "/A.dll /p/A.dll  removed file there", root + "/lib/B.dll /p/B.dll  removed file"));
  EXPECT_THAT(Known(root + "/lib"), ElementsAre(root + "/lib/B.dll /p/B.dll  removed file"));
}

TEST_F(RemovalsTest, the_log_adds_what_became_of_duplicates) {
  const std::string root = kRoot;
  ToldLog log("7");
  log.Enter("INSTALL").Enter("gac").Duplicate("/q/A.dll", root + "/A.dll").Duplicate("/q/B.dll", root + "/B.dll");
  log.Duplicate("/q/C.dll", root + "/C.dll", true).Duplicate("/q/D.dll", root + "/D.dll");
  log.Exit("gac").Exit("INSTALL");
  log.Enter("INSTALL").Enter("gac").Duplicate("/q/E.dll", "/opt/usr/apps/b/E.dll").Exit("gac").Exit("INSTALL");
  std::string text;
  for (const std::string& line : log.lines()) text += line + "\n";
  WriteFile(device_.Log(), text);
  WriteInformation(root + "/A.dll", "/p/A.dll");
  WriteInformation(root + "/B.dll", "/q/B.dll");
  WriteFile(device_.OnDesk(root + "/C.dll"));
  WriteFile(device_.OnDesk(root + "/D.dll"));
  const std::string time = "2026-11-21T08:00:00.123Z";
  EXPECT_THAT(Known(),
              ElementsAre(root + "/A.dll /p/A.dll  removed file", root + "/B.dll /q/B.dll " + time + " removed file",
                          root + "/C.dll /q/C.dll " + time + " stays", root + "/D.dll /q/D.dll " + time));
}

TEST_F(RemovalsTest, a_question_is_about_a_package_or_a_path_in_it) {
  host::PackageStore store(device_.Database(), host::PackageStore::Mode::kReadWrite);
  store.Put(Question().package);
  const auto asked = [&](const std::string& text) {
    const WhyQuestion question = ReadQuestion(device_, store, text);
    return question.package.id + " " + question.path;
  };
  const std::string root = kRoot;
  for (const std::string& text : {std::string("org.a"), root, root + "/", device_.OnDesk(root).string()}) {
    EXPECT_EQ(asked(text), "org.a ") << text;
  }
  for (const std::string path : {"/bin/A.dll", "/bin/A.dll_deleted", "/lib/../bin//A.dll", "/bin/A.dll/"}) {
    EXPECT_EQ(asked(root + path), "org.a " + root + "/bin/A.dll");
    EXPECT_EQ(asked(device_.OnDesk(root).string() + path), "org.a " + root + "/bin/A.dll");
  }
  EXPECT_EQ(ErrorOf([&] { asked("org.b"); }), "org.b: not installed; see what is with: orvelbox list");
  EXPECT_EQ(ErrorOf([&] { asked(root + "b/A.dll"); }),
            root + "b/A.dll: belongs to no installed package; see what is with: orvelbox list");
}

}  // namespace
}  // namespace orvelbox
