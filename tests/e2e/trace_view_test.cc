// Recording and drawing traces of operations.
#include "tests/support/orvelbox_desk.h"

namespace e2e {
namespace {

class TraceE2e : public HookDesk {
 protected:
  std::string Package() const { return MakePackage("a", ManifestText("org.example.a", "1")); }
  std::string Trace() const { return dir_ / "trace.json"; }
};

TEST_F(TraceE2e, every_operation_is_drawn_in_a_process_of_its_own) {
  RunExpecting(0, {"--trace", Trace(), "install", Package()});
  RunExpecting(0, {"--trace", Trace(), "uninstall", "org.example.a"});
  const std::string out = RunExpecting(0, {"trace", Trace()}).out;
  const std::size_t second = out.find("\nprocess ");
  ASSERT_NE(second, std::string::npos) << out;
  EXPECT_THAT(out.substr(0, second), HasSubstr("PKGMGR_PARSER_PLUGIN_INSTALL"));
  EXPECT_THAT(out.substr(0, second), Not(HasSubstr("PKGMGR_PARSER_PLUGIN_UNINSTALL")));
  EXPECT_THAT(out.substr(second), HasSubstr("PKGMGR_PARSER_PLUGIN_UNINSTALL"));
  EXPECT_THAT(out, Not(HasSubstr("#>"))) << "all spans have ended";
}

TEST_F(TraceE2e, a_picture_or_a_page_is_written_as_the_name_says) {
  RunExpecting(0, {"--trace", Trace(), "install", Package()});
  EXPECT_THAT(RunExpecting(0, {"trace", Trace(), "--output", dir_ / "t.svg"}).out, IsEmpty());
  RunExpecting(0, {"trace", Trace(), "--output", dir_ / "t.html"});
  EXPECT_THAT(support::ReadFile(dir_ / "t.svg"), testing::StartsWith("<svg "));
  EXPECT_THAT(support::ReadFile(dir_ / "t.html"), testing::StartsWith("<!DOCTYPE html>"));
}

class TraceComplaints : public Desk {
 protected:
  std::string ErrorOf(int status, const std::vector<std::string>& arguments) const {
    const auto before = DeviceState();
    const std::string error = RunExpecting(status, arguments).err;
    EXPECT_EQ(DeviceState(), before);
    return error;
  }
};

TEST_F(TraceComplaints, a_file_that_cannot_be_a_trace_stops_the_operation) {
  const std::string package = MakePackage("a", ManifestText("org.example.a", "1"));
  support::WriteFile(dir_ / "letter.txt", "Dear reader");
  EXPECT_EQ(ErrorOf(1, {"--trace", dir_ / "letter.txt", "install", package}),
            "orvelbox: " + (dir_ / "letter.txt") + ": is there and no trace; name another file with --trace\n");
  EXPECT_EQ(support::ReadFile(dir_ / "letter.txt"), "Dear reader");
  for (const std::string& place : {dir_ / "none/t.json", dir_.path().string()}) {
    EXPECT_EQ(ErrorOf(1, {"--trace", place, "install", package}),
              "orvelbox: " + place + ": no trace can be written there; name another file with --trace\n");
  }
}

TEST_F(TraceComplaints, a_picture_of_another_kind_is_refused) {
  EXPECT_THAT(ErrorOf(2, {"trace", "t.json", "--output", "t.png"}),
              HasSubstr("orvelbox: --output: t.png must end in .svg or .html\n"));
}

TEST_F(TraceComplaints, a_file_that_is_missing_or_no_trace_is_named) {
  support::WriteFile(dir_ / "letter.txt", "Dear reader");
  EXPECT_THAT(ErrorOf(1, {"trace", dir_ / "letter.txt"}), HasSubstr("letter.txt: no trace; write one with: orvelbox"));
  EXPECT_THAT(ErrorOf(1, {"trace", dir_ / "none.json"}), HasSubstr("none.json: cannot "));
}

TEST_F(TraceComplaints, a_picture_that_cannot_be_written_is_told) {
  support::WriteFile(dir_ / "t.json", "[]");
  EXPECT_THAT(ErrorOf(1, {"trace", dir_ / "t.json", "--output", dir_ / "none/t.svg"}),
              HasSubstr("none/t.svg: cannot be written; name another\n"));
}

}  // namespace
}  // namespace e2e
