// Lets a file mention released functions and objects by their exact types, so that the names which the compiler makes
// of them are the undefined symbols of its object file.
#ifndef TESTS_ABI_PROTOTYPES_H_
#define TESTS_ABI_PROTOTYPES_H_

namespace abi_guard {

inline const volatile void* volatile last_mentioned;

// Mentions `entity`; compiles only when its type, results included, is exactly `Type`.
template <typename Type>
void Mention(Type& entity) {
  last_mentioned = reinterpret_cast<const volatile void*>(&entity);
}

}  // namespace abi_guard

#endif
