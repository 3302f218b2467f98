# The single entry point: `make demo` and `make test` install missing Debian
# packages (as root), configure, build, and run: the demo runs the example
# scenario through the tov program, the test target the whole suite.
PRESET ?= default
BUILD_DIR := build/$(PRESET)

.PHONY: all deps build demo test sanitize format clean

all: build

deps:
	@./scripts/install-deps.sh

build: deps
	cmake --preset $(PRESET)
	cmake --build --preset $(PRESET)

demo: build
	python3 scripts/demo.py --tov $(BUILD_DIR)/tools/tov

test: build
	ctest --preset $(PRESET)

sanitize:
	$(MAKE) test PRESET=sanitize

format:
	clang-format -i $$(git ls-files '*.h' '*.cpp')

clean:
	rm -rf build
