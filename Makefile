# A thin wrapper over CMake. `make run` and `make test` install whatever
# Debian packages are missing first, so both work on a fresh machine.
BUILD ?= build
JOBS  ?= $(shell nproc)
PREFIX ?= /usr/local
ASAN_BUILD ?= build-asan
CMAKE_FLAGS ?=
ifdef CI
CMAKE_FLAGS += -DQV_WERROR=ON
endif

.PHONY: all deps configure build run test test-asan bench install clean

all: build

deps:
	@bash scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD) $(CMAKE_FLAGS) > /dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS)

run: build
	@mkdir -p $(BUILD)/game && cd $(BUILD)/game && ../quelvarion

test: build
	@cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

bench: build
	@$(BUILD)/quelvarion_bench

# The whole suite, soak test included, under AddressSanitizer and UndefinedBehaviorSanitizer.
test-asan: deps
	@cmake -S . -B $(ASAN_BUILD) -DQV_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug $(CMAKE_FLAGS) > /dev/null
	@cmake --build $(ASAN_BUILD) -j $(JOBS)
	@cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 ctest --output-on-failure -j $(JOBS)

install: build
	@cmake --install $(BUILD) --prefix $(PREFIX)

clean:
	@rm -rf $(BUILD)
