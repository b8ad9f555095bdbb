// Roots to take the fixed paths from, and what a child process must see of them.
#ifndef TESTS_HOST_ROOTS_H_
#define TESTS_HOST_ROOTS_H_

#include <filesystem>
#include <functional>

namespace roots {

// Makes a root with one file in each directory that belongs at a fixed path.
void LayOutRoot(const std::filesystem::path& root);

// Runs `body` with the fixed paths of `root` and hands on its failures.
void RunThere(const std::filesystem::path& root, const std::function<void()>& body);

// Expects those files at the fixed paths.
void ExpectDeviceAtFixedPaths();

}  // namespace roots

#endif
