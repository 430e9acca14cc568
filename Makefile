# A thin wrapper over CMake. Each target first makes sure what it needs is
# installed (scripts/install-deps.sh, by group): `make run` only what
# building and playing needs, `make test` the test tools as well.
BUILD ?= build
JOBS  ?= $(shell nproc)
PREFIX ?= /usr/local
ASAN_BUILD ?= build-asan
FUZZ_BUILD ?= build-fuzz
FUZZ_SECONDS ?= 60
COVERAGE_BUILD ?= build-coverage
CMAKE_FLAGS ?=
ifdef CI
CMAKE_FLAGS += -DQV_WERROR=ON
endif
MAKEFLAGS += --no-print-directory
DEPS = bash scripts/install-deps.sh
CONFIGURE = cmake -S . -B
# What playing and installing need: the program, its data and its icons.
GAME_TARGETS = --target quelvarion quelvarion_game_data quelvarion_icon

.PHONY: all deps configure build game run test test-asan test-portable fuzz bench coverage install clean

all: build

deps:
	@$(DEPS) play

configure: deps
	@$(CONFIGURE) $(BUILD) $(CMAKE_FLAGS) > /dev/null

# Everything this machine can build: the tests and benchmarks where their
# libraries are installed.
build: configure
	@cmake --build $(BUILD) -j $(JOBS)

game: configure
	@cmake --build $(BUILD) -j $(JOBS) $(GAME_TARGETS)

run: game
	@mkdir -p $(BUILD)/game && cd $(BUILD)/game && ../quelvarion

test:
	@$(DEPS) play test
	@$(CONFIGURE) $(BUILD) -DQV_TESTS=ON $(CMAKE_FLAGS) > /dev/null
	@cmake --build $(BUILD) -j $(JOBS)
	@cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

# The game's own work on SDL's dummy drivers, then, where an X server can be
# had (Xvfb, xdotool and a C compiler), the real game on one: time to the
# title, CPU, frames per second and memory, for each way of presenting.
bench:
	@$(DEPS) play test
	@$(CONFIGURE) $(BUILD) $(CMAKE_FLAGS) > /dev/null
	@cmake --build $(BUILD) -j $(JOBS) --target quelvarion_bench quelvarion
	@$(BUILD)/quelvarion_bench
	@if command -v Xvfb >/dev/null && command -v xdotool >/dev/null && command -v cc >/dev/null; then \
		python3 bench/desktop/desktop-bench.py $(BUILD)/quelvarion $(BUILD)/game; \
	else echo "desktop measurements left out: they need Xvfb, xdotool and cc"; fi
	@python3 bench/export-bench.py $(BUILD)/quelvarion $(BUILD)/game

# The whole suite, soak test included, under AddressSanitizer and UndefinedBehaviorSanitizer.
test-asan:
	@$(DEPS) play test
	@$(CONFIGURE) $(ASAN_BUILD) -DQV_SANITIZE=ON -DQV_TESTS=ON -DCMAKE_BUILD_TYPE=Debug $(CMAKE_FLAGS) > /dev/null
	@cmake --build $(ASAN_BUILD) -j $(JOBS)
	@cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 ctest --output-on-failure -j $(JOBS)

# How much of the game's code the unit tests run, line by line and branch by
# branch: a build of its own, instrumented, and gcovr's summary of src/ (the
# whole report in $(COVERAGE_BUILD)/coverage.txt).
coverage:
	@$(DEPS) play test coverage
	@$(CONFIGURE) $(COVERAGE_BUILD) -DQV_TESTS=ON -DCMAKE_BUILD_TYPE=Debug \
		-DCMAKE_CXX_FLAGS=--coverage -DCMAKE_C_FLAGS=--coverage $(CMAKE_FLAGS) > /dev/null
	@cmake --build $(COVERAGE_BUILD) -j $(JOBS) --target quelvarion_tests quelvarion_game_data
	@find $(COVERAGE_BUILD) -name '*.gcda' -delete
	@# Notes of test files since removed would stop gcovr, which looks for their sources.
	@find $(COVERAGE_BUILD)/CMakeFiles/quelvarion_tests.dir -name '*.gcno' | while read -r notes; do \
		source=$${notes#*/quelvarion_tests.dir/}; [ -e "$${source%.gcno}" ] || rm -f "$$notes"; done
	@cd $(COVERAGE_BUILD) && SDL_VIDEODRIVER=dummy SDL_AUDIODRIVER=dummy ./quelvarion_tests --gtest_brief=1
	@gcovr --root . --filter src/ --exclude-unreachable-branches --exclude-throw-branches \
		--txt $(COVERAGE_BUILD)/coverage.txt --print-summary $(COVERAGE_BUILD) | tail -3

# The game built with clang, with gcc for x86-64-v3 and for arm64 (run under
# QEMU) must play every kept replay exactly as recorded.
PORTABLE_BUILD ?= build-portable
test-portable: build
	@bash scripts/install-deps.sh portable
	@bash scripts/test-portable.sh $(BUILD) $(PORTABLE_BUILD) $(JOBS)

# Runs every libFuzzer target for FUZZ_SECONDS each and fails if any leaves
# a finding (a crash, a leak, a slow unit, a timeout or running out of
# memory) in $(FUZZ_BUILD)/findings; once fixed, keep it in fuzz/regressions.
fuzz:
	@$(DEPS) play fuzz
	@$(CONFIGURE) $(FUZZ_BUILD) -DQV_FUZZ=ON -DQV_TESTS=OFF -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ > /dev/null
	@cmake --build $(FUZZ_BUILD) -j $(JOBS) --target fuzzers quelvarion_game_data
	@bash scripts/run-fuzzers.sh $(FUZZ_BUILD) $(FUZZ_SECONDS)

install: game
	@cmake --install $(BUILD) --prefix $(PREFIX)

clean:
	@rm -rf $(BUILD)
