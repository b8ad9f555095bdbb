// Allocations that can be made to fail: this program's operator new, which libstdc++ and the plug-in use too, and
// libxml2's functions once they are set.
#include <libxml/xmlmemory.h>

#include <cstdlib>
#include <cstring>
#include <new>

#include "tests/faults/fault_points.h"

namespace faults {
namespace {

bool Fails(const char* call) { return Meet(kMemory, call, nullptr) == Verdict::kFail; }

void* Allocate(std::size_t size) { return Fails("xmlMalloc") ? nullptr : std::malloc(size); }

void* Reallocate(void* memory, std::size_t size) { return Fails("xmlRealloc") ? nullptr : std::realloc(memory, size); }

char* Duplicate(const char* text) { return Fails("xmlMemStrdup") ? nullptr : strdup(text); }

}  // namespace

bool MakeXmlAllocationsFail() { return xmlMemSetup(std::free, Allocate, Reallocate, Duplicate) == 0; }

}  // namespace faults

#pragma GCC visibility push(default)

void* operator new(std::size_t size) {
  void* memory = faults::Fails("operator new") ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

// A sanitizer's own form would hand out memory that the operator delete below cannot take back.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void operator delete(void* memory) noexcept { std::free(memory); }

void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

#pragma GCC visibility pop
