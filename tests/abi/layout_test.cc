// Sizes, members and vtable slots of the classes that tools create and derive from, in the headers and the built
// library.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <link.h>

#include <cstddef>
#include <new>
#include <stdexcept>
#include <string>

#include "morvath/destination_paths.h"
#include "morvath/metadata_utils.h"
#include "util/log.h"
#include "util/privilege_checker.h"

namespace {

// FunctionEntryExitTracker as it was released.
struct ReleasedTracker {
  std::string signature;
  std::string fileName;
  std::string filePath;
  int line;
  std::string label;
};

static_assert(sizeof(int) == 4, "a tracker's line has 32 bits");
static_assert(sizeof(FunctionEntryExitTracker) == sizeof(ReleasedTracker), "tools reserve a tracker's released size");
static_assert(alignof(FunctionEntryExitTracker) == alignof(ReleasedTracker), "tools align a tracker as released");
static_assert(sizeof(Metadata) == 2 * sizeof(void*), "tools lay out an entry as two pointers");
static_assert(offsetof(Metadata, key) == 0 && offsetof(Metadata, value) == sizeof(void*), "the key comes first");
static_assert(offsetof(PrivilegeSearch, found) == 0, "the search begins with its result");
static_assert(offsetof(PrivilegeSearch, privilege) == sizeof(void*), "the privilege that is searched for comes second");
static_assert(sizeof(AotPathManager) == sizeof(void*), "a path manager is its table's pointer alone");
static_assert(sizeof(AppApiPath) == sizeof(void*), "a path manager is its table's pointer alone");
static_assert(sizeof(CoBAComponentPath) == sizeof(void*), "a path manager is its table's pointer alone");
static_assert(sizeof(DpcPath) == sizeof(void*), "a path manager is its table's pointer alone");

constexpr const char* kBase = "14AotPathManager";

class Layout : public testing::Test {
 protected:
  Layout() : library_(dlopen(MORVATH_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
    if (library_ == nullptr) throw std::runtime_error(dlerror());
    // The library must not log to a real device.
    unsetenv("ORVELBOX_DEVICE");
    unsetenv("ORVEL_TRACE");
  }
  ~Layout() override { dlclose(library_); }

  void* Find(const std::string& name) const {
    void* address = dlsym(library_, name.c_str());
    if (address == nullptr) throw std::runtime_error(dlerror());
    return address;
  }

  // The number of pointers in the table at `address`.
  static std::size_t Length(const void* address) {
    Dl_info info{};
    void* symbol = nullptr;
    if (dladdr1(address, &info, &symbol, RTLD_DL_SYMENT) == 0 || symbol == nullptr) return 0;
    return static_cast<const ElfW(Sym)*>(symbol)->st_size / sizeof(void*);
  }

  // `type` is the mangled class name: its length, then the name. `answer` is the function in its last slot.
  void ExpectReleasedTable(const std::string& type, const void* answer) const {
    void** const table = static_cast<void**>(Find("_ZTV" + type));
    EXPECT_EQ(Length(table), 5u) << type << ": virtual functions were added or lost; tools know three slots";
    EXPECT_EQ(table[0], nullptr) << type << ": the object no longer begins with its AotPathManager";
    EXPECT_EQ(table[1], Find("_ZTI" + type)) << type << ": the type information is not where tools look for it";
    EXPECT_THAT(table[2], DestructorOf(type, "D1Ev")) << type << ": slot 0 is not the destructor";
    EXPECT_THAT(table[3], DestructorOf(type, "D0Ev")) << type << ": slot 1 is not the deleting destructor";
    EXPECT_EQ(table[4], answer) << type << ": slot 2 is not GetDestinationPath()";
  }

 private:
  // The abstract base's own table destroys no object, so some compilers leave those slots empty.
  testing::Matcher<const void*> DestructorOf(const std::string& type, const std::string& kind) const {
    const testing::Matcher<const void*> destructor = testing::Eq(Find("_ZN" + type + kind));
    return type == kBase ? testing::AnyOf(testing::IsNull(), destructor) : destructor;
  }

  void* library_;
};

TEST_F(Layout, the_base_of_the_path_managers_has_its_slots_in_order) {
  ExpectReleasedTable(kBase, dlsym(RTLD_DEFAULT, "__cxa_pure_virtual"));
}

TEST_F(Layout, every_path_manager_has_its_slots_in_order) {
  for (const std::string type : {"10AppApiPath", "17CoBAComponentPath", "7DpcPath"}) {
    ExpectReleasedTable(type, Find("_ZN" + type + "18GetDestinationPathB5cxx11Ev"));
  }
}

TEST_F(Layout, a_tracker_holds_its_members_in_order) {
  using Construct = void (*)(void*, const char*, const char*, int);
  using Destroy = void (*)(void*);
  alignas(FunctionEntryExitTracker) unsigned char storage[sizeof(FunctionEntryExitTracker)];
  reinterpret_cast<Construct>(Find("_ZN24FunctionEntryExitTrackerC1EPKcS1_i"))(storage, "f()", "/a/log.cc", 42);
  const ReleasedTracker& tracker = *std::launder(reinterpret_cast<const ReleasedTracker*>(storage));
  EXPECT_EQ(tracker.signature, "f()");
  EXPECT_EQ(tracker.fileName, "log.cc");
  EXPECT_EQ(tracker.filePath, "/a/log.cc");
  EXPECT_EQ(tracker.line, 42);
  EXPECT_EQ(tracker.label, "log.cc(42) f()");
  reinterpret_cast<Destroy>(Find("_ZN24FunctionEntryExitTrackerD1Ev"))(storage);
}

}  // namespace
