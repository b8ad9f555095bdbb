// The plug-in as the package manager uses it: loaded at run time, called by symbol names only.
#ifndef TESTS_SUPPORT_LOADED_PLUGIN_H_
#define TESTS_SUPPORT_LOADED_PLUGIN_H_

#include <libxml/tree.h>

#include <map>
#include <string>

// Mangled names of the symbols that tests use.
inline constexpr const char* kUninstallFlags = "_Z19cacheStateUninstallB5cxx11";
inline constexpr const char* kUpgradeFlags = "_Z15aotStateUpgradeB5cxx11";
inline constexpr const char* kCoreCatalogue = "_Z6coreFXB5cxx11";
inline constexpr const char* kFrameworkCatalogue = "_Z7orvelFXB5cxx11";
inline constexpr const char* kCobaCatalogue = "_Z4coBAB5cxx11";
inline constexpr const char* kLibraryCatalogue = "_Z6appLibB5cxx11";

class LoadedPlugin {
 public:
  // Loads the library. Throws a std::runtime_error with the dynamic linker's message on failure.
  LoadedPlugin();
  // Closes it.
  ~LoadedPlugin();
  LoadedPlugin(const LoadedPlugin&) = delete;
  LoadedPlugin& operator=(const LoadedPlugin&) = delete;

  // Calls the hook of the event, e.g. "INSTALL". Throws when there is none.
  int Event(const std::string& event, xmlDocPtr manifest, const char* id) const;

  // The exported object or function of that mangled name. Throws when there is none.
  template <typename T>
  T& Object(const std::string& name) const {
    return *static_cast<T*>(Symbol(name));
  }
  template <typename T>
  T* Function(const std::string& name) const {
    return reinterpret_cast<T*>(Symbol(name));
  }

  const std::map<std::string, bool>& Flags(const char* name) const { return Object<std::map<std::string, bool>>(name); }
  const std::map<std::string, std::string>& Catalogue(const char* name) const {
    return Object<std::map<std::string, std::string>>(name);
  }

  // Is the library in this process's memory?
  static bool IsInMemory();

 private:
  void* Symbol(const std::string& name) const;

  void* handle_;
};

#endif
