# A thin wrapper over CMake. `make run` and `make test` install whatever
# Debian packages are missing first, so both work on a fresh machine.
BUILD ?= build
JOBS  ?= $(shell nproc)
PREFIX ?= /usr/local
ASAN_BUILD ?= build-asan
FUZZ_BUILD ?= build-fuzz
FUZZ_SECONDS ?= 60
CMAKE_FLAGS ?=
ifdef CI
CMAKE_FLAGS += -DQV_WERROR=ON
endif

.PHONY: all deps configure build run test test-asan test-portable fuzz bench install clean

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

# The game's own work on SDL's dummy drivers, then, where an X server can be
# had (Xvfb, xdotool and a C compiler), the real game on one: time to the
# title, CPU, frames per second and memory, for each way of presenting.
bench: build
	@$(BUILD)/quelvarion_bench
	@if command -v Xvfb >/dev/null && command -v xdotool >/dev/null && command -v cc >/dev/null; then \
		python3 bench/desktop/desktop-bench.py $(BUILD)/quelvarion $(BUILD)/game; \
	else echo "desktop measurements left out: they need Xvfb, xdotool and cc"; fi

# The whole suite, soak test included, under AddressSanitizer and UndefinedBehaviorSanitizer.
test-asan: deps
	@cmake -S . -B $(ASAN_BUILD) -DQV_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug $(CMAKE_FLAGS) > /dev/null
	@cmake --build $(ASAN_BUILD) -j $(JOBS)
	@cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 ctest --output-on-failure -j $(JOBS)

# The game built with clang, with gcc for x86-64-v3 and for arm64 (run under
# QEMU) must play every kept replay exactly as recorded.
PORTABLE_BUILD ?= build-portable
test-portable: build
	@bash scripts/install-portable-deps.sh
	@bash scripts/test-portable.sh $(BUILD) $(PORTABLE_BUILD) $(JOBS)

# Runs every libFuzzer target for FUZZ_SECONDS each. Inputs that crash are
# written to $(FUZZ_BUILD)/findings; once fixed, keep them in fuzz/regressions.
fuzz: deps
	@cmake -S . -B $(FUZZ_BUILD) -DQV_FUZZ=ON -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ > /dev/null
	@cmake --build $(FUZZ_BUILD) -j $(JOBS) --target fuzzers quelvarion_game_data
	@bash scripts/run-fuzzers.sh $(FUZZ_BUILD) $(FUZZ_SECONDS)

install: build
	@cmake --install $(BUILD) --prefix $(PREFIX)

clean:
	@rm -rf $(BUILD)
