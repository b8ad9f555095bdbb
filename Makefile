# The commands of everyday work. Each installs what is missing first; CMakePresets.json holds the builds.
.PHONY: build test demo lint format sanitize clean packages lint-packages

JOBS ?= $(shell nproc)

build: packages
	cmake --preset release
	cmake --build --preset release --parallel $(JOBS)

test: build
	ctest --preset release --parallel $(JOBS)

demo: build
	scripts/demo.sh build/release

# The whole test suite under the address and undefined-behaviour sanitizers.
sanitize: packages
	cmake --preset sanitize
	cmake --build --preset sanitize --parallel $(JOBS)
	ctest --preset sanitize --parallel $(JOBS)

lint: packages lint-packages
	cmake --preset clang
	scripts/lint.sh build/clang

format: lint-packages
	git ls-files --cached --others --exclude-standard '*.cc' '*.h' | xargs clang-format -i

packages:
	@scripts/install-packages.sh scripts/packages.txt

lint-packages:
	@scripts/install-packages.sh scripts/lint-packages.txt

clean:
	rm -rf build
