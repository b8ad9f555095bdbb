// Refers to released functions and objects by their exact types, so that their mangled names are undefined symbols of
// the object file.
#ifndef TESTS_ABI_PROTOTYPES_H_
#define TESTS_ABI_PROTOTYPES_H_

namespace abi_guard {

inline const volatile void* volatile last_mentioned;

// Refers to `entity`. Compiles only if its type, including the result type, is exactly `Type`.
template <typename Type>
void Mention(Type& entity) {
  last_mentioned = reinterpret_cast<const volatile void*>(&entity);
}

}  // namespace abi_guard

#endif
