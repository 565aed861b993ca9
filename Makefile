# Front door: `make demo` and `make test` each do all the set-up they need on Debian 12.
BUILD_DIR ?= build
ASAN_BUILD_DIR ?= build-asan
BENCH_BUILD_DIR ?= build-bench
FUZZ_BUILD_DIR ?= build-fuzz
JOBS ?= $(shell nproc)
CTEST_ARGS ?=
# `make install` copies the library, headers, CMake and pkg-config files and the tool below
# $(DESTDIR)$(PREFIX).
PREFIX ?= /usr/local
DESTDIR ?=

TOOL := $(BUILD_DIR)/tool/corvekit
DEMO_ROOT := $(BUILD_DIR)/demo
# The targets that an install or a package holds: the tool and the libraries it links.
INSTALLED_TARGETS := corvekit_tool

.PHONY: all setup configure build demo test test-asan bench fuzz clean install package \
	test-package abi-check abi-baseline

all: build

setup:
	@./scripts/setup.sh

$(BUILD_DIR)/build.ninja: | setup
	cmake --preset default -B $(BUILD_DIR)

configure: setup $(BUILD_DIR)/build.ninja

build: configure
	cmake --build $(BUILD_DIR) -j $(JOBS)

test: build
	ctest --test-dir $(BUILD_DIR) --output-on-failure -j $(JOBS) $(CTEST_ARGS)

# The whole suite under AddressSanitizer and UndefinedBehaviorSanitizer.
test-asan: setup
	cmake --preset asan -B $(ASAN_BUILD_DIR)
	cmake --build $(ASAN_BUILD_DIR) -j $(JOBS)
	ctest --test-dir $(ASAN_BUILD_DIR) --output-on-failure -j $(JOBS) $(CTEST_ARGS)

bench: setup
	cmake --preset bench -B $(BENCH_BUILD_DIR)
	cmake --build $(BENCH_BUILD_DIR) -j $(JOBS)
	./scripts/run-benchmarks.sh $(BENCH_BUILD_DIR)

fuzz: setup
	cmake --preset fuzz -B $(FUZZ_BUILD_DIR)
	cmake --build $(FUZZ_BUILD_DIR) -j $(JOBS)

# Runs the tool against the bundled sample installation, with a throw-away home so that the
# user's own settings are neither read nor written. Only the tool and its libraries are built.
demo: configure
	cmake --build $(BUILD_DIR) -j $(JOBS) --target corvekit_tool
	@./scripts/demo.sh $(TOOL) $(DEMO_ROOT)

install: configure
	cmake --build $(BUILD_DIR) -j $(JOBS) --target $(INSTALLED_TARGETS)
	DESTDIR="$(DESTDIR)" cmake --install $(BUILD_DIR) --prefix "$(PREFIX)"

# Debian packages in $(BUILD_DIR): libcorvekit1, libcorvekit-dev and corvekit-tools.
package: configure
	cmake --build $(BUILD_DIR) -j $(JOBS) --target $(INSTALLED_TARGETS)
	cd $(BUILD_DIR) && cpack -G DEB

# Builds the packages, checks them with lintian, unpacks them into a scratch root and builds
# and runs a consumer against that root.
test-package: package
	./scripts/test-package.sh $(BUILD_DIR)

# The ABI of libcorvekit against the committed baseline in abi/ (see docs/release.md).
abi-check: configure
	cmake --build $(BUILD_DIR) -j $(JOBS) --target corvekit
	./scripts/abi.sh check $(BUILD_DIR)

# Records the ABI of this build as the new baseline, for a change made on purpose.
abi-baseline: configure
	cmake --build $(BUILD_DIR) -j $(JOBS) --target corvekit
	./scripts/abi.sh baseline $(BUILD_DIR)

clean:
	rm -rf $(BUILD_DIR) $(ASAN_BUILD_DIR) $(BENCH_BUILD_DIR) $(FUZZ_BUILD_DIR)
