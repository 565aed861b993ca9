# Front door: `make demo` and `make test` each do all the set-up they need on Debian 12.
BUILD_DIR ?= build
ASAN_BUILD_DIR ?= build-asan
BENCH_BUILD_DIR ?= build-bench
FUZZ_BUILD_DIR ?= build-fuzz
JOBS ?= $(shell nproc)
CTEST_ARGS ?=

TOOL := $(BUILD_DIR)/tool/corvekit
DEMO_ROOT := $(BUILD_DIR)/demo

.PHONY: all setup build demo test test-asan bench fuzz clean

all: build

setup:
	@./scripts/setup.sh

$(BUILD_DIR)/build.ninja: | setup
	cmake --preset default -B $(BUILD_DIR)

build: setup $(BUILD_DIR)/build.ninja
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
# user's own settings are neither read nor written.
demo: build
	@./scripts/demo.sh $(TOOL) $(DEMO_ROOT)

clean:
	rm -rf $(BUILD_DIR) $(ASAN_BUILD_DIR) $(BENCH_BUILD_DIR) $(FUZZ_BUILD_DIR)
