# The two set-up commands of the README: `make run` and `make test`.
# `make test SANITIZE=1` builds with AddressSanitizer and UndefinedBehaviorSanitizer.

SANITIZE ?= 0
BUILD_TYPE ?= RelWithDebInfo
ifeq ($(SANITIZE),1)
  BUILD_DIR ?= build-sanitize
  CMAKE_FLAGS = -DVARNIS_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug
else
  BUILD_DIR ?= build
  CMAKE_FLAGS = -DCMAKE_BUILD_TYPE=$(BUILD_TYPE)
endif
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
PREFIX ?= /usr/local

.PHONY: all deps configure build run test bench install clean format fuzz

all: build

deps:
	@bash scripts/install-deps

$(BUILD_DIR)/build.ninja:
	cmake -S . -B $(BUILD_DIR) -G Ninja $(CMAKE_FLAGS) -DCMAKE_INSTALL_PREFIX=$(PREFIX)

configure: deps $(BUILD_DIR)/build.ninja

build: configure
	cmake --build $(BUILD_DIR) -j $(JOBS)

run: build
	$(BUILD_DIR)/src/varnis $(ARGS)

test: build
	cd $(BUILD_DIR) && ctest --output-on-failure --timeout 600 -j $(JOBS)

bench: build
	@for b in $(BUILD_DIR)/bench/bench_*; do [ -x "$$b" ] && "$$b"; done

# libFuzzer targets, built with clang in build-fuzz; never part of `make test` or CI.
fuzz:
	@JOBS=$(JOBS) bash fuzz/run.sh

install: build
	cmake --install $(BUILD_DIR)

format:
	clang-format -i $$(git ls-files 'src/*.cpp' 'src/*.h' 'tests/*.cpp' 'tests/*.h' 'bench/*.cpp' 'bench/*.h' 'fuzz/*.cpp' 'fuzz/*.h')

clean:
	rm -rf build build-sanitize build-fuzz
