# SPDX-License-Identifier: AGPL-3.0-or-later
# `make` builds and installs the plug-in and renders the demo; `make test` builds and runs every test.
BUILD ?= build
JOBS ?= $(shell nproc)
VST3_DIR ?= $(HOME)/.vst3
BUNDLE = $(BUILD)/ondrivel_artefacts/Release/VST3/ondrivel.vst3
CMAKE_FLAGS ?=
# Lets ccache reuse objects between clones of the tree.
export CCACHE_BASEDIR := $(CURDIR)

.PHONY: all setup configure build install demo test bench clean

all: install demo

setup:
	@bash tools/setup.sh

configure: setup
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release $(CMAKE_FLAGS) >/dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS) --target ondrivel_VST3 ondrivel-render

install: build
	@mkdir -p $(VST3_DIR)
	@rm -rf $(VST3_DIR)/ondrivel.vst3
	@cp -a $(BUNDLE) $(VST3_DIR)/ondrivel.vst3
	@echo "installed $(VST3_DIR)/ondrivel.vst3"

demo: install
	@$(BUILD)/ondrivel-render --plugin $(VST3_DIR)/ondrivel.vst3 --out demo.wav --seconds 8 \
	  --notes 48:100:0:3.5,55:90:0:3.5,60:90:0:3.5,64:85:0.5:3,67:80:1:2.5,72:90:4:1.5,67:80:4.5:1,64:80:5:1,60:100:5.5:2.5

test: configure
	@cmake --build $(BUILD) -j $(JOBS)
	@cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

bench: configure
	@cmake --build $(BUILD) -j $(JOBS) --target ondrivel_bench
	@$(BUILD)/bench/ondrivel_bench

clean:
	@rm -rf $(BUILD)
