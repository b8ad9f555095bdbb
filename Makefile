# The everyday commands. Each first installs missing packages. CMakePresets.json defines the builds.
.PHONY: build tests test test-heavy test-container test-places test-distributions test-devices demo \
  bench bench-compare bench-check bench-programs coverage mutation fuzz lint includes format sanitize valgrind clean \
  packages lint-packages package package-test reproducible package-tools pictures

JOBS ?= $(shell nproc)

# Warnings are errors only in our own builds (.ci/run): other compilers may be newer.
WERROR ?= OFF

build: packages
	cmake --preset release -DORVEL_WERROR=$(WERROR)
	cmake --build --preset release --parallel $(JOBS)

tests: build
	cmake --build --preset release --parallel $(JOBS) --target tests

test: tests
	ctest --preset release --parallel $(JOBS)

# The tests that take more than a few seconds each.
test-heavy: test-container test-places
	@scripts/install-packages.sh scripts/test-heavy-packages.txt
	ctest --preset heavy --parallel $(JOBS)

# The demo and the tests as in a container without special rights, as root and as an ordinary user.
test-container: tests
	scripts/test-container.sh build/release

# The core of the tests where a clock, a file mask, a locale or a path is unusual; PLACES selects some of them
# (scripts/test-places.sh).
PLACES ?=
test-places: tests
	@scripts/install-packages.sh scripts/test-places-packages.txt
	scripts/test-places.sh build/release $(PLACES)

# The demo and the tests in fresh Debian 12 and 13 root file systems, or in copies of the directories ROOTS, as root and
# as an ordinary user (needs root; about half an hour).
test-distributions:
	@scripts/install-packages.sh scripts/test-distributions-packages.txt
	scripts/test-distributions.sh $(ROOTS)

# Builds for the devices' processors and runs the tests under qemu (almost an hour).
test-devices: packages
	JOBS=$(JOBS) CMAKE_BUILD_PARALLEL_LEVEL=$(JOBS) scripts/test-devices.sh

demo: build
	scripts/demo.sh build/release

# The whole test suite under the address and undefined-behaviour sanitizers.
sanitize: packages
	cmake --preset sanitize
	cmake --build --preset sanitize --parallel $(JOBS)
	ctest --preset sanitize --parallel $(JOBS)

# The unit and integration tests under valgrind memcheck (about ten minutes).
valgrind: packages
	@scripts/install-packages.sh scripts/valgrind-packages.txt
	cmake --preset valgrind
	cmake --build --preset valgrind --parallel $(JOBS)
	ctest --preset valgrind --parallel $(JOBS)

# The code of plugin/ and util/ that the unit and hostile tests execute.
coverage: packages
	@scripts/install-packages.sh scripts/coverage-packages.txt
	cmake --preset coverage
	cmake --build --preset coverage --parallel $(JOBS) --target unit_tests hostile_tests
	scripts/coverage.sh build/coverage

# The changes to plugin/ and util/ that the unit and hostile tests detect, and a sample of those to the host platform and
# orvelbox that theirs do (some hours).
mutation: packages
	@scripts/install-packages.sh scripts/mutation-packages.txt
	scripts/mutation.py
	scripts/mutation.py --resume --only orvelbox platform/host --sample 600 --least 92

# The plug-in's costs compared with minimal programs that do the same work (about ten minutes), and with common tools
# that find duplicates by name.
bench: bench-programs
	bench/run.py build/release build/bench

bench-compare: bench-programs
	bench/compare.py build/release build/bench

# The costs of `orvelbox check` on a store of packages, compared with programs that list them (about five minutes).
bench-check: bench-programs
	bench/check.py build/release build/bench

bench-programs: packages
	@scripts/install-packages.sh scripts/bench-packages.txt
	cmake --preset release
	cmake --build --preset release --parallel $(JOBS) --target bench_programs

# The fuzzers, FUZZ_SECONDS or FUZZ_RUNS each; FUZZERS selects some of them (fuzz/README.md).
FUZZ_SECONDS ?= 60
FUZZ_RUNS ?=
FUZZERS ?=
fuzz: packages
	@scripts/install-packages.sh scripts/fuzz-packages.txt
	cmake --preset fuzz
	cmake --build --preset fuzz --parallel $(JOBS) --target fuzzers
	scripts/fuzz.sh build/fuzz $(if $(FUZZ_RUNS),-runs=$(FUZZ_RUNS),-max_total_time=$(FUZZ_SECONDS)) $(FUZZERS)

# The pictures in README.md and the manual page in docs/, out of what orvelbox prints.
pictures: build
	build/release/orvelbox/orvelbox_manual >docs/orvelbox.1
	scripts/pictures.sh build/release/orvelbox/orvelbox docs

# The Debian packages, in build/package/packages.
package: packages package-tools
	cmake --preset package
	cmake --build --preset package --parallel $(JOBS)
	scripts/package.sh build/package

# Installs and runs them in a root file system: a fresh one, or a copy of the directory ROOT (needs root).
package-test: package
	scripts/package-test.sh build/package/packages $(ROOT)

# Builds them twice in different folders and compares the bytes.
reproducible: packages package-tools
	scripts/reproducible.sh $(JOBS)

# Whether the product's headers include what they name, and no more.
includes: packages
	@scripts/install-packages.sh scripts/includes-packages.txt
	scripts/includes.sh

lint: packages lint-packages
	cmake --preset clang -DORVEL_WERROR=ON
	scripts/lint.sh build/clang

format: lint-packages
	git ls-files --cached --others --exclude-standard '*.cc' '*.h' | xargs clang-format -i

packages:
	@scripts/install-packages.sh scripts/packages.txt

package-tools:
	@scripts/install-packages.sh scripts/package-packages.txt

lint-packages:
	@scripts/install-packages.sh scripts/lint-packages.txt

clean:
	rm -rf build
