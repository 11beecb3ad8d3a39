# The two set-up commands: `make demo` (the tarnvik tool on a sample camera card) and `make test`. Both install what is missing,
# configure and build; `make sanitize` runs the tests under ASan and UBSan.
BUILD ?= build
ASAN_BUILD ?= build-asan
FUZZ_BUILD ?= build-fuzz
FUZZ_SECONDS ?= 600
JOBS ?= $(shell nproc)
CMAKE_FLAGS ?=

.PHONY: deps configure build demo test sanitize fuzz-build fuzz-smoke fuzz bench clean

deps:
	./scripts/install-deps.sh

configure: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS)

build: configure
	cmake --build $(BUILD) -j $(JOBS)

demo: build
	./scripts/demo.sh $(BUILD)

test: build
	ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

sanitize: deps
	cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DTARNVIK_SANITIZE=ON -DTARNVIK_BUILD_BENCH=OFF $(CMAKE_FLAGS)
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
	  ctest --test-dir $(ASAN_BUILD) --output-on-failure -j $(JOBS) -LE install

# The libFuzzer harnesses (clang, ASan, UBSan). fuzz-smoke replays every seed corpus and a
# fixed number of mutations (CI runs it); fuzz runs each harness for FUZZ_SECONDS.
fuzz-build:
	./scripts/install-deps.sh --fuzz
	CC=clang CXX=clang++ cmake -S . -B $(FUZZ_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTARNVIK_FUZZ=ON \
	  -DTARNVIK_BUILD_TESTS=OFF -DTARNVIK_BUILD_BENCH=OFF -DTARNVIK_BUILD_EXAMPLES=OFF $(CMAKE_FLAGS)
	cmake --build $(FUZZ_BUILD) -j $(JOBS)

fuzz-smoke: fuzz-build
	ctest --test-dir $(FUZZ_BUILD) --output-on-failure -j $(JOBS) -L fuzz

fuzz: fuzz-build
	for harness in $(FUZZ_BUILD)/fuzz/*_fuzz; do \
	  name=$$(basename $$harness _fuzz); \
	  $$harness -max_total_time=$(FUZZ_SECONDS) -max_len=4096 -timeout=10 -rss_limit_mb=2048 \
	    $(FUZZ_BUILD)/fuzz/found/$$name fuzz/corpus/$$name || exit 1; \
	done

bench: build
	./bench/run.sh $(BUILD)

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(FUZZ_BUILD)
