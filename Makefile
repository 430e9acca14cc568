# A thin wrapper over CMake. `make run` and `make test` install whatever
# Debian packages are missing first, so both work on a fresh machine.
BUILD ?= build
JOBS  ?= $(shell nproc)
CMAKE_FLAGS ?=
ifdef CI
CMAKE_FLAGS += -DQV_WERROR=ON
endif

.PHONY: all deps configure build run test bench clean

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

clean:
	@rm -rf $(BUILD)
