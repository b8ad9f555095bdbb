// A device for a test.
#include "tests/integration/desk.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "platform/host/json.h"
#include "tests/support/child.h"
#include "tests/support/files.h"
#include "tests/support/manifests.h"
#include "tests/support/standard_error.h"
#include "tests/support/uris.h"

// Replaces the C library's function: forcing all data of the machine to disk is not tested here, and may take long.
#pragma GCC visibility push(default)
extern "C" void sync() noexcept {}
#pragma GCC visibility pop

std::string Desk::Register(const std::string& id, const std::vector<std::string>& privileges,
                           const std::vector<host::MetadataEntry>& metadata) const {
  host::Application application;
  application.id = id + ".app";
  application.kind = "ui-application";
  application.type = "dotnet-inhouse";
  application.metadata = metadata;
  host::Package package;
  package.id = id;
  package.version = "1.0";
  package.type = "opk";
  package.root = std::string(host::kUserArea) + "/apps/" + id;
  package.main_app_id = application.id;
  package.applications = {application};
  package.privileges = privileges;
  host::PackageStore(device_.Database(), host::PackageStore::Mode::kReadWrite).Put(package);
  std::filesystem::create_directories(package.root);
  return package.root;
}

std::string Desk::RegisterCoba(const std::string& id) const { return Register(id, {}, {{support::kCobaKey, "true"}}); }

std::vector<host::LogRecord> Desk::Log() const {
  std::vector<host::LogRecord> records;
  for (const std::string& line : support::Lines(support::ReadFile(device_.Log()))) {
    if (auto record = host::ParseLogRecord(line)) records.push_back(*record);
  }
  return records;
}

std::vector<std::string> Desk::LogTexts(const std::string& part) const {
  std::vector<std::string> texts;
  for (const host::LogRecord& record : Log()) {
    if (record.text.find(part) != std::string::npos) texts.push_back(record.text);
  }
  return texts;
}

LoaderRecord Desk::Loader() const {
  LoaderRecord record;
  if (!support::IsThere(device_.LoaderRecord())) return record;
  const auto json = host::ParseJson(support::ReadFile(device_.LoaderRecord()));
  record.starts = json.at("starts");
  record.tpa = json.at("TPA").get<std::vector<std::string>>();
  record.coba = json.at("CoBA").get<std::vector<std::string>>();
  record.error = json.at("error").is_null() ? "" : json.at("error");
  return record;
}

int Desk::Send(const LoadedPlugin& plugin, const std::string& event, const std::string& id, std::string* text) {
  int result = 0;
  const support::Document manifest = support::DotnetManifest();
  const std::string error = support::StandardErrorOf([&] { result = plugin.Event(event, manifest.get(), id.c_str()); });
  if (text != nullptr) *text = error;
  return result;
}

namespace {

// Whoever judges readers of logs names a directory for those of all cases, each with the device that it is the log of.
void KeepDevice(const host::Device& device) {
  static int number = 0;
  const char* directory = std::getenv("KEPT_LOGS");
  if (directory == nullptr || std::filesystem::is_empty(device.Log())) return;
  const std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
  const std::filesystem::path kept = std::filesystem::path(directory) / (name + std::to_string(++number));
  std::filesystem::copy(device.directory, kept,
                        std::filesystem::copy_options::recursive | std::filesystem::copy_options::copy_symlinks);
}

}  // namespace

void OnDesk(const std::function<void(const Desk&)>& body, const host::DeviceConfig& config) {
  const support::TempDir directory;
  const host::Device device = host::CreateDevice(directory / "device", config);
  support::WithFixedPaths(device.Root(), [&] {
    setenv(host::kDeviceVariable, device.directory.c_str(), 1);
    body(Desk(device));
  });
  KeepDevice(device);
}
