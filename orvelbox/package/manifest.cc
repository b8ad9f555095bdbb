// What a manifest says, and what makes it one that cannot be installed.
#include "orvelbox/package/manifest.h"

#include <fcntl.h>
#include <libxml/parser.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <boost/algorithm/string/trim.hpp>
#include <cerrno>
#include <set>
#include <string_view>

#include "base/unique_fd.h"
#include "orvelbox/desk/xml.h"
#include "platform/host/device.h"
#include "platform/host/escape.h"
#include "platform/host/files.h"

namespace orvelbox {
namespace {

constexpr std::size_t kLongestName = 255;
// A parsed document takes some thirty times its text.
constexpr std::size_t kLargestManifest = 1 << 20;

struct FreeParser {
  void operator()(xmlParserCtxt* parser) const { xmlFreeParserCtxt(parser); }
};

std::string Attribute(const xmlNode* element, const char* name) {
  return ToString(XmlText(xmlGetNoNsProp(const_cast<xmlNode*>(element), ToXml(name))));
}

bool IsNamed(const xmlNode* node, const char* name) {
  const bool prefixed = node->ns != nullptr && node->ns->prefix != nullptr;
  return node->type == XML_ELEMENT_NODE && !prefixed && xmlStrEqual(node->name, ToXml(name)) == 1;
}

bool IsApplication(const xmlNode* node) {
  return IsNamed(node, "ui-application") || IsNamed(node, "service-application") || IsNamed(node, "widget-application");
}

std::string Trimmed(const std::string& text) {
  return boost::trim_copy_if(text, [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
}

host::Application DescribeApplication(const xmlNode* element) {
  host::Application application;
  application.id = Attribute(element, "appid");
  application.kind = reinterpret_cast<const char*>(element->name);
  application.type = Attribute(element, "type");
  application.exec = Attribute(element, "exec");
  for (const xmlNode* child = element->children; child != nullptr; child = child->next) {
    if (IsNamed(child, "metadata")) {
      application.metadata.push_back({Attribute(child, "key"), Attribute(child, "value")});
    }
  }
  return application;
}

void AddPrivileges(const xmlNode* element, std::vector<std::string>& privileges) {
  for (xmlNode* child = element->children; child != nullptr; child = child->next) {
    if (!IsNamed(child, "privilege")) continue;
    std::string uri = Trimmed(ToString(XmlText(xmlNodeGetContent(child))));
    if (!uri.empty()) privileges.push_back(std::move(uri));
  }
}

bool HasControlCharacter(std::string_view text) {
  while (!text.empty()) {
    const auto character = host::FirstCharacter(text);
    if (!character || host::IsControl(character->code)) return true;
    text.remove_prefix(character->size);
  }
  return false;
}

// Why `id` cannot name a package; empty when it can.
std::string ProblemOfPackageId(const std::string& id) {
  if (id.empty()) return "has no package id; give the <manifest> element a package=\"…\" attribute";
  const std::string way_out = "; choose another package id";
  const std::string subject = "package id \"" + id + "\" ";
  if (id.size() > kLongestName) return "the package id is longer than 255 bytes; choose a shorter one";
  if (HasControlCharacter(id)) return subject + "holds a control character" + way_out;
  if (id.find('/') != std::string::npos) return subject + "holds \"/\"" + way_out;
  if (id.front() == '.') return subject + "begins with \".\"" + way_out;
  if (id.find_first_of(":[]") != std::string::npos) {
    return subject + "holds \":\", \"[\" or \"]\", which structure the cache files" + way_out;
  }
  return "";
}

std::string ProblemOfApplications(const host::Package& package) {
  std::set<std::string> seen;
  for (const host::Application& application : package.applications) {
    if (application.id.empty()) return "a <" + application.kind + "> has no application id; give it an appid=\"…\"";
    const std::string subject = "application id \"" + application.id + "\" ";
    if (HasControlCharacter(application.id)) return subject + "holds a control character; choose another one";
    if (!seen.insert(application.id).second) return subject + "is there twice; give each application its own";
  }
  if (!package.main_app_id.empty() && seen.count(package.main_app_id) == 0) {
    return "mainapp=\"" + package.main_app_id + "\" is none of its applications; name one of them";
  }
  return "";
}

bool DeclaresEntities(const xmlDoc* document) {
  return document->intSubset != nullptr && document->intSubset->entities != nullptr;
}

// Keeps the parser's first complaint: the later ones only follow from it. `parser` is the xmlParserCtxt.
void KeepFirstError(void* parser, xmlErrorPtr error) {
  auto* kept = static_cast<std::string*>(static_cast<xmlParserCtxt*>(parser)->_private);
  if (error->level < XML_ERR_ERROR || !kept->empty()) return;
  const std::string message = error->message == nullptr ? "unreadable" : Trimmed(error->message);
  *kept = "line " + std::to_string(error->line) + ": " + message;
}

void RequireShort(std::uint64_t size, const std::string& file) {
  if (size <= kLargestManifest) return;
  throw host::DeviceError(file + ": larger than " + std::to_string(kLargestManifest) +
                          " bytes; leave out what describes no package");
}

[[noreturn]] void ThrowNoPackage(const std::string& package) {
  throw host::DeviceError(package + ": no " + kManifestName +
                          " in it, so it is no package; name the directory that holds the manifest");
}

UniqueFd OpenManifest(const std::filesystem::path& package_directory, const std::filesystem::path& file) {
  std::error_code ignored;
  if (!std::filesystem::is_directory(package_directory, ignored)) {
    throw host::DeviceError(package_directory.string() +
                            ": no such directory; name the directory or the archive of a package");
  }
  UniqueFd descriptor(open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!descriptor && errno == ENOENT) {
    ThrowNoPackage(package_directory.string());
  }
  struct stat status {};
  if (descriptor && fstat(descriptor.get(), &status) == 0 && S_ISREG(status.st_mode)) {
    RequireShort(static_cast<std::uint64_t>(status.st_size), file.string());
    return descriptor;
  }
  const std::string reason = descriptor || errno == ELOOP ? "no regular file" : host::ErrorText(errno);
  throw host::DeviceError(file.string() + ": cannot be read (" + reason + "); put a readable manifest file there");
}

XmlDocument ParseManifest(const std::string& text, const std::string& file) {
  RequireShort(text.size(), file);
  const std::unique_ptr<xmlParserCtxt, FreeParser> parser(xmlNewParserCtxt());
  if (!parser) throw std::bad_alloc();
  std::string first_error;
  parser->_private = &first_error;
  parser->sax->serror = KeepFirstError;
  XmlDocument document(xmlCtxtReadMemory(parser.get(), text.data(), static_cast<int>(text.size()), file.c_str(),
                                         nullptr, XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
  if (document) return document;
  throw host::DeviceError(file + ": not well-formed, " + first_error + "; mend the XML and try again");
}

Manifest ManifestOf(const std::string& text, const std::string& file) {
  Manifest manifest;
  manifest.document = ParseManifest(text, file);
  manifest.package = DescribePackage(manifest.document.get(), file);
  return manifest;
}

}  // namespace

host::Package DescribePackage(const xmlDoc* document, const std::string& file) {
  if (DeclaresEntities(document)) {
    throw host::DeviceError(file + ": declares entities; write their text out instead");
  }
  const xmlNode* root = xmlDocGetRootElement(document);
  if (root == nullptr || !IsNamed(root, "manifest")) {
    throw host::DeviceError(file + ": its root element is not <manifest>; see the README for a manifest to begin with");
  }
  host::Package package;
  package.id = Attribute(root, "package");
  package.version = Attribute(root, "version");
  package.type = Attribute(root, "type");
  package.main_app_id = Attribute(root, "mainapp");
  for (const xmlNode* child = root->children; child != nullptr; child = child->next) {
    if (IsApplication(child)) package.applications.push_back(DescribeApplication(child));
    if (IsNamed(child, "privileges")) AddPrivileges(child, package.privileges);
  }
  if (package.type.empty()) package.type = "opk";
  std::string problem = ProblemOfPackageId(package.id);
  if (problem.empty()) problem = ProblemOfApplications(package);
  if (!problem.empty()) throw host::DeviceError(file + ": " + problem);
  if (package.main_app_id.empty() && !package.applications.empty()) {
    package.main_app_id = package.applications.front().id;
  }
  return package;
}

Manifest ReadManifest(const std::filesystem::path& package_directory) {
  const std::filesystem::path file = package_directory / kManifestName;
  const UniqueFd descriptor = OpenManifest(package_directory, file);
  std::string text;
  if (const int error = host::ReadToEnd(descriptor.get(), text); error != 0) host::ThrowFileError(file, "read", error);
  return ManifestOf(text, file.string());
}

Manifest ReadManifest(const Archive& archive) {
  const auto entry = std::find_if(archive.entries().begin(), archive.entries().end(),
                                  [](const ArchiveEntry& one) { return one.path == kManifestName && !one.directory; });
  if (entry == archive.entries().end()) ThrowNoPackage(archive.name());
  std::string text;
  const std::string file = archive.name() + "/" + kManifestName;
  RequireShort(entry->size, file);
  ReadContent(archive, *entry, [&](std::string_view piece) { text += piece; });
  return ManifestOf(text, file);
}

host::Package PlacedAt(host::Package package, const std::string& root) {
  package.root = root;
  for (host::Application& application : package.applications) {
    const bool relative = !application.exec.empty() && application.exec.front() != '/';
    if (relative) application.exec = root + "/bin/" + application.exec;
  }
  return package;
}

}  // namespace orvelbox
