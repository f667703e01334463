# Two commands do all the set-up on a fresh Debian machine:
#   make demo   installs what is missing, builds, renders every symbology into out/
#   make test   installs what is missing, builds, runs every test through ctest
BUILD_DIR ?= build
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
CMAKE_FLAGS ?=

FUZZ_SECONDS ?= 60

.PHONY: all deps build test demo bench fuzz-build fuzz fuzz-long fuzz-merge sanitize tsan format-check install clean

all: build

deps:
	@bash scripts/install-deps.sh

build: deps
	cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBARCODE_ORV_BUILD_TESTS=ON $(CMAKE_FLAGS)
	cmake --build $(BUILD_DIR) -j $(JOBS)

test: build
	cd $(BUILD_DIR) && ctest --output-on-failure -j $(JOBS)

# Only what the library, the tool and the gallery's reader need: no test packages or suites.
demo:
	@bash scripts/install-deps.sh demo
	cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBARCODE_ORV_BUILD_TESTS=OFF $(CMAKE_FLAGS)
	cmake --build $(BUILD_DIR) -j $(JOBS) --target barcode-orv barcode-orv-read
	bash scripts/make-gallery.sh $(BUILD_DIR)/barcode-orv out

# Medians of five runs each, so the ratios printed at the end of bench_draw are steady.
BENCH_FLAGS ?= --benchmark_repetitions=5 --benchmark_report_aggregates_only=true --benchmark_min_time=0.2

bench: deps
	cmake -S . -B $(BUILD_DIR)-bench -DCMAKE_BUILD_TYPE=Release -DBARCODE_ORV_BUILD_TESTS=OFF -DBARCODE_ORV_BUILD_BENCH=ON
	cmake --build $(BUILD_DIR)-bench -j $(JOBS)
	for program in $(BUILD_DIR)-bench/bench_*; do $$program $(BENCH_FLAGS); done

sanitize: deps
	cmake -S . -B $(BUILD_DIR)-asan -DCMAKE_BUILD_TYPE=Debug -DBARCODE_ORV_SANITIZE=ON $(CMAKE_FLAGS)
	cmake --build $(BUILD_DIR)-asan -j $(JOBS)
	cd $(BUILD_DIR)-asan && ctest --output-on-failure -j $(JOBS)

# The thread-safety suite under ThreadSanitizer.
tsan: deps
	cmake -S . -B $(BUILD_DIR)-tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBARCODE_ORV_TSAN=ON \
	  -DBARCODE_ORV_BUILD_TOOLS=OFF $(CMAKE_FLAGS)
	cmake --build $(BUILD_DIR)-tsan -j $(JOBS) --target test_threads
	BARCODE_ORV_QUIET=1 TSAN_OPTIONS="halt_on_error=1" $(BUILD_DIR)-tsan/test_threads

fuzz-build: deps
	CC=clang CXX=clang++ cmake -S . -B $(BUILD_DIR)-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DBARCODE_ORV_BUILD_FUZZ=ON -DBARCODE_ORV_BUILD_TESTS=OFF -DBARCODE_ORV_BUILD_TOOLS=OFF
	cmake --build $(BUILD_DIR)-fuzz -j $(JOBS) --target fuzz_c_interface

# CI's run: a minute from the kept corpus; a unit slower than 2 s or a process past 1 GB fails it.
fuzz: fuzz-build
	bash scripts/run-fuzz.sh $(BUILD_DIR)-fuzz/fuzz_c_interface $(FUZZ_SECONDS)

# After a change to parsing or layout: an hour on one core.
fuzz-long: fuzz-build
	bash scripts/run-fuzz.sh $(BUILD_DIR)-fuzz/fuzz_c_interface 3600

# Minimises the kept corpus together with what the runs found (libFuzzer -merge=1).
fuzz-merge: fuzz-build
	bash scripts/merge-fuzz-corpus.sh $(BUILD_DIR)-fuzz/fuzz_c_interface

format-check: deps
	clang-format --dry-run -Werror src/*/*.cpp src/*/*.h include/*.h tools/*.cpp tests/*.cpp tests/support/* tests/host/*.c tests/consumer/*.cpp bench/*.cpp fuzz/*.cpp

install: build
	cmake --install $(BUILD_DIR)

clean:
	rm -rf $(BUILD_DIR) $(BUILD_DIR)-bench $(BUILD_DIR)-asan $(BUILD_DIR)-tsan $(BUILD_DIR)-fuzz out
