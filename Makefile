# The single entry point: `make demo` and `make test` install missing Debian
# packages (as root), configure, build, and run: the demo runs the example
# scenario through the tov program and, when Graphviz is installed, draws the
# lifecycle of a Part's Status as SVG; the test target runs the whole suite.
# `make tsan` runs the thread tests and tov batch's workers under
# ThreadSanitizer; `make fuzz` runs
# every fuzz target for FUZZ_SECONDS.
# `make bench` runs the benchmark with the ratios that tell how costs scale,
# then `make bench-serve`: tov serve over HTTP against nginx's floor.
PRESET ?= default
BUILD_DIR := build/$(PRESET)
# The test programs that `make unit` runs directly, relative to the build folder.
UNIT_TESTS := tests/tov_tests tests/tov_thread_tests
# The same sanitizer settings as the test presets.
SANITIZER_ENV := ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 \
	UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1

FUZZ_SECONDS ?= 60

.PHONY: all deps configure build demo test unit sanitize format lint tsan fuzz bench bench-serve clean

all: build

deps:
	@./scripts/install-deps.sh

configure: deps
	cmake --preset $(PRESET)

build: configure
	cmake --build --preset $(PRESET)

# The demo builds only the program it runs, and Graphviz is among the packages
# installed, so its picture is always drawn.
demo: configure
	cmake --build --preset $(PRESET) --target tov_program
	python3 scripts/demo.py --tov $(BUILD_DIR)/tools/tov
	@if command -v dot >/dev/null; then \
	  $(BUILD_DIR)/tools/tov graph --rules examples/rules.json --dm examples/datamodel.json \
	    --type Part --attribute Status | dot -Tsvg -o $(BUILD_DIR)/part-status.svg && \
	  echo "The lifecycle of a Part's Status: $(BUILD_DIR)/part-status.svg"; \
	else \
	  echo "Graphviz (dot) is not installed: no lifecycle diagram drawn"; \
	fi

test: build
	ctest --preset $(PRESET)

# The one-second loop: the test programs themselves, without ctest starting one
# process per test case.
unit: build
	@set -e; for test in $(UNIT_TESTS); do \
		echo "$(BUILD_DIR)/$$test"; $(SANITIZER_ENV) $(BUILD_DIR)/$$test --gtest_brief=1; \
	done

# The benchmark and the memory measure, always on the optimized default build.
bench:
	$(MAKE) build PRESET=default
	python3 bench/ratios.py --build-dir build/default
	$(MAKE) bench-serve

# tov serve's requests per second and latency with wrk, beside nginx answering
# a fixed body on the same machine (SERVE_BENCH_SECONDS per run).
SERVE_BENCH_SECONDS ?= 10
bench-serve:
	$(MAKE) build PRESET=default
	python3 bench/serve_bench.py --build-dir build/default --duration $(SERVE_BENCH_SECONDS)

sanitize:
	$(MAKE) test PRESET=sanitize

tsan:
	$(MAKE) test PRESET=tsan

# ctest's own limit must leave the fuzzers their time, and time to stop.
fuzz:
	$(MAKE) build PRESET=fuzz
	FUZZ_SECONDS=$(FUZZ_SECONDS) ctest --preset fuzz --timeout $$(($(FUZZ_SECONDS) + 300))

format:
	clang-format -i $$(git ls-files '*.h' '*.cpp' '*.c')

# Formatting, the one-way layers of src/, and clang-tidy over every translation
# unit of the default build (src/, tools/, tests/, bench/, and the JNI glue in java/).
lint: deps
	cmake --preset default
	clang-format --dry-run -Werror $$(git ls-files '*.h' '*.cpp' '*.c')
	python3 scripts/check_layers.py
	run-clang-tidy -p build/default -quiet -j $$(nproc) '^$(CURDIR)/(src|tools|tests|bench|java)/' > build/clang-tidy.log 2>&1 \
		|| { grep -E 'error:|warning:' build/clang-tidy.log | sort -u; exit 1; }
	@echo "clang-tidy: clean"

clean:
	rm -rf build
