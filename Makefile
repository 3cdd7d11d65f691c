# The front door; everything is CMake behind it (cmake --list-presets).
JOBS ?= $(shell nproc)
PRESET ?= release
PREFIX ?= /usr/local
DESTDIR ?=
BUILD := build/$(PRESET)

.DEFAULT_GOAL := help
.PHONY: help deps configure build demo test test-all bench coverage deb install format picture clean

help: ## this list
	@awk -F ':.*## ' '/^[a-z-]+:.*## / {printf "  make %-10s %s\n", $$1, $$2}' $(MAKEFILE_LIST)
	@echo "  PRESET=asan, JOBS=4, PREFIX=/usr change what they do; presets: cmake --list-presets"

deps:
	@scripts/install-deps build test

configure: deps
	@mkdir -p build && cmake --preset $(PRESET) >$(BUILD).log 2>&1 || { cat $(BUILD).log; exit 1; }

build: configure ## build the library, unwml and the tests in build/release
	@cmake --build --preset $(PRESET) -j $(JOBS)

demo: configure ## read a shipped deck
	@cmake --build --preset $(PRESET) -j $(JOBS) --target unwml
	@$(BUILD)/unwml/unwml examples/decks/harbour.wml

test: build ## build and run all tests
	@ctest --preset $(PRESET) -j $(JOBS)

test-all: build ## the tests that need more: browsers, viewers of Markdown, archives of others
	@scripts/install-deps test-all
	@tests/markdown/viewers_test.py $(BUILD)/unwml/unwml --all
	@npm install --silent --no-save --prefix $(BUILD)/npm axe-core@4
	@tests/html/browser_test.py $(BUILD)/unwml/unwml $(BUILD)/pages \
	  $(BUILD)/npm/node_modules/axe-core/axe.min.js
	@tests/archives/oracles.py $(BUILD)/tests/archives/list_documents $(BUILD)/oracles

bench: ## measure; prints the tables of docs/performance.md
	@scripts/install-deps build
	@scripts/install-deps bench || echo "make bench: what is missing is left out" >&2
	@cmake --preset bench >/dev/null && cmake --build --preset bench -j $(JOBS)
	@cmake --build --preset bench --target run_bench

coverage: deps ## lines and branches of the library that the tests reach
	@scripts/install-deps coverage
	@cmake --preset coverage >/dev/null && cmake --build --preset coverage -j $(JOBS)
	@ctest --preset coverage -j $(JOBS)
	@gcovr --root . --object-directory build/coverage --exclude 'build/' --exclude tests/ \
	  --exclude bench/ --exclude examples/ --print-summary

deb: ## build the Debian packages in dist/
	@scripts/install-deps build package
	@cmake --preset deb >/dev/null && cmake --build --preset deb -j $(JOBS)
	@cd build/deb && cpack

install: ## build what is installed, install it under PREFIX (/usr/local); DESTDIR is honoured
	@scripts/install-deps build
	@cmake --preset install >/dev/null && cmake --build --preset install -j $(JOBS)
	@cmake --install build/install --prefix $(PREFIX)
	@[ -n "$(DESTDIR)" ] || [ "$$(id -u)" != 0 ] || ldconfig

format: ## clang-format all sources
	@scripts/install-deps tool
	@scripts/format

picture: build ## draw docs/picture.svg
	@scripts/picture $(BUILD)/unwml/unwml examples/decks/harbour.wml >docs/picture.svg

clean: ## remove build/
	@rm -rf build
