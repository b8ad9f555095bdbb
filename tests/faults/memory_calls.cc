// Allocations that can fail: this program's operator new, which libstdc++ and the plug-in also use, and libxml2's
// functions when they are set.
#include <libxml/xmlmemory.h>

#include <cstdlib>
#include <cstring>

#include "tests/faults/fault_points.h"
#include "tests/support/own_new.h"

namespace faults {
namespace {

bool Fails(const char* call) { return Meet(kMemory, call, nullptr) == Verdict::kFail; }

void* Allocate(std::size_t size) { return Fails("xmlMalloc") ? nullptr : std::malloc(size); }

void* Reallocate(void* memory, std::size_t size) { return Fails("xmlRealloc") ? nullptr : std::realloc(memory, size); }

char* Duplicate(const char* text) { return Fails("xmlMemStrdup") ? nullptr : strdup(text); }

}  // namespace

bool MakeXmlAllocationsFail() { return xmlMemSetup(std::free, Allocate, Reallocate, Duplicate) == 0; }

}  // namespace faults

bool support::AllocationFails() { return faults::Fails("operator new"); }
