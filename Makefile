# SPDX-License-Identifier: AGPL-3.0-or-later
# `make` builds and installs the plug-in and renders the demo; `make test` builds and runs every test.
BUILD ?= build
JOBS ?= $(shell nproc)
VST3_DIR ?= $(HOME)/.vst3
LV2_DIR ?= $(HOME)/.lv2
BUNDLE = $(BUILD)/ondrivel_artefacts/Release/VST3/ondrivel.vst3
LV2_BUNDLE = $(BUILD)/ondrivel_artefacts/Release/LV2/ondrivel.lv2
CMAKE_FLAGS ?=
# Hosted editor tests open real windows: give them a virtual display where there is none.
WITH_DISPLAY = $(if $(DISPLAY),,$(if $(shell command -v xvfb-run),xvfb-run -a,))
# Lets ccache reuse objects between clones of the tree.
export CCACHE_BASEDIR := $(CURDIR)
# Debug builds (the sanitized one) would otherwise hash the directory and miss in every other clone.
export CCACHE_NOHASHDIR := 1

.PHONY: all setup configure build install demo package test test-sanitize fuzz bench soak clean

all: install demo

setup:
	@bash tools/setup.sh

configure: setup
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release $(CMAKE_FLAGS) >/dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS) --target ondrivel_VST3 ondrivel_LV2 ondrivel_Standalone ondrivel-render

install: build
	@mkdir -p $(VST3_DIR) $(LV2_DIR)
	@rm -rf $(VST3_DIR)/ondrivel.vst3 $(LV2_DIR)/ondrivel.lv2
	@cp -a $(BUNDLE) $(VST3_DIR)/ondrivel.vst3
	@cp -a $(LV2_BUNDLE) $(LV2_DIR)/ondrivel.lv2
	@echo "installed $(VST3_DIR)/ondrivel.vst3 and $(LV2_DIR)/ondrivel.lv2"
	@echo "the program: $(BUILD)/ondrivel_artefacts/Release/Standalone/ondrivel"

# A Debian package of all three (VST3, LV2, program) in $(BUILD); dependencies from dpkg-shlibdeps.
package: build
	@cd $(BUILD) && cpack -G DEB

demo: install
	@$(BUILD)/ondrivel-render --plugin $(VST3_DIR)/ondrivel.vst3 --out demo.wav --seconds 8 \
	  --notes 48:100:0:3.5,55:90:0:3.5,60:90:0:3.5,64:85:0.5:3,67:80:1:2.5,72:90:4:1.5,67:80:4.5:1,64:80:5:1,60:100:5.5:2.5

test: configure
	@cmake --build $(BUILD) -j $(JOBS)
	@cd $(BUILD) && $(WITH_DISPLAY) ctest --output-on-failure -j $(JOBS)
	@$(MAKE) --no-print-directory test-sanitize

# The engine tests (stress suite included) and the fuzz targets again, built with clang,
# AddressSanitizer and UndefinedBehaviorSanitizer in a build of their own; any report fails the run.
# The fuzz targets link libFuzzer and run a fixed number of inputs from a fixed seed.
SANITIZE_BUILD ?= $(BUILD)-sanitize
SANITIZE_ENV = ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1 \
  LSAN_OPTIONS=suppressions=$(CURDIR)/tests/sanitize/lsan.supp:print_suppressions=0 \
  UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1:suppressions=$(CURDIR)/tests/sanitize/ubsan.supp
SANITIZE_FLAGS = -DCMAKE_BUILD_TYPE=Release -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
  -DONDRIVEL_SANITIZE=ON -DONDRIVEL_LIBFUZZER=ON -DONDRIVEL_BENCH=OFF
test-sanitize: setup
	@cmake -S . -B $(SANITIZE_BUILD) $(SANITIZE_FLAGS) $(CMAKE_FLAGS) >/dev/null
	@cmake --build $(SANITIZE_BUILD) -j $(JOBS) --target ondrivel_engine_tests ondrivel_fuzz_targets
	@cd $(SANITIZE_BUILD) && $(SANITIZE_ENV) $(WITH_DISPLAY) ctest --output-on-failure -j $(JOBS) -L 'engine|fuzz'

# libFuzzer for as long as FUZZ_SECONDS per target, in the sanitized build, with a home folder of its
# own so that the library never sees the user's presets.
FUZZ_SECONDS ?= 60
fuzz: setup
	@cmake -S . -B $(SANITIZE_BUILD) $(SANITIZE_FLAGS) $(CMAKE_FLAGS) >/dev/null
	@cmake --build $(SANITIZE_BUILD) -j $(JOBS) --target ondrivel_fuzz_targets
	@for t in state preset; do mkdir -p $(SANITIZE_BUILD)/fuzz-$$t $(SANITIZE_BUILD)/test-home; \
	  (cd $(SANITIZE_BUILD)/tests/fuzz && HOME=$(abspath $(SANITIZE_BUILD))/test-home $(SANITIZE_ENV) \
	    ./ondrivel_fuzz_$$t -max_total_time=$(FUZZ_SECONDS) -timeout=60 -artifact_prefix=$(abspath $(SANITIZE_BUILD))/fuzz-$$t- \
	    $(abspath $(SANITIZE_BUILD))/fuzz-$$t $(CURDIR)/tests/fuzz/corpus/$$t) || exit 1; done

# Measures this tree's bundle against a build of BASE in the same run and prints one table (not
# part of CI); the baseline builds in $(BUILD)/bench-base.
BASE ?= 6e7e8d1
bench: configure
	@cmake --build $(BUILD) -j $(JOBS) --target ondrivel_VST3 ondrivel-bench
	@bash bench/bench.sh $(BUILD) $(BASE) $(JOBS)

# Ten minutes of audio per configuration (about an hour in all) through the bundle; not part of CI.
soak: configure
	@cmake --build $(BUILD) -j $(JOBS) --target ondrivel_VST3 ondrivel-bench
	@$(BUILD)/bench/ondrivel-bench soak --plugin $(BUNDLE)

clean:
	@rm -rf $(BUILD) $(SANITIZE_BUILD)
