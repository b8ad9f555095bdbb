// The plug-in, loaded.
#include "tests/support/loaded_plugin.h"

#include <dlfcn.h>

#include <stdexcept>

LoadedPlugin::LoadedPlugin() : handle_(dlopen(MORVATH_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) throw std::runtime_error(dlerror());
}

LoadedPlugin::~LoadedPlugin() { dlclose(handle_); }

void* LoadedPlugin::Symbol(const std::string& name) const {
  void* symbol = dlsym(handle_, name.c_str());
  if (symbol == nullptr) throw std::runtime_error(dlerror());
  return symbol;
}

int LoadedPlugin::Event(const std::string& event, xmlDocPtr manifest, const char* id) const {
  return Function<int(xmlDocPtr, const char*)>("PKGMGR_PARSER_PLUGIN_" + event)(manifest, id);
}

bool LoadedPlugin::IsInMemory() {
  void* handle = dlopen(MORVATH_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
  if (handle == nullptr) return false;
  dlclose(handle);
  return true;
}
