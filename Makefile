# The short way to everything. Each target installs what it needs (scripts/install-deps) and builds with the CMake
# preset of its purpose below build/; CONTRIBUTING.md tells how to go on by hand.

SHELL := /bin/bash
JOBS ?= $(shell nproc)
CCACHE := $(shell command -v ccache)
CONFIGURE := cmake $(if $(CCACHE),-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
SECONDS_PER_TARGET ?= 300
HOURS ?= 8
SOURCES = git ls-files -z -- '*.h' '*.cpp'

.PHONY: help demo test test-sanitizers test-threads coverage bench fuzz fuzz-night format tidy docs package check-package clean

help: ## this list
	@grep -E '^[a-z-]+:.*## ' $(MAKEFILE_LIST) | sed -E 's/^([a-z-]+):.*## /\1\t/' | expand -t 18

demo: ## migrate the documents of samples/ to drawings in out/
	scripts/install-deps --build
	$(CONFIGURE) --preset release
	cmake --build --preset release --parallel $(JOBS)
	scripts/demo build/release/tools/ktannot/ktannot

test: ## build everything and run all tests
	scripts/install-deps --build --tests
	$(CONFIGURE) --preset dev
	cmake --build --preset dev --parallel $(JOBS)
	ctest --preset dev --parallel $(JOBS)

test-sanitizers: ## the same with AddressSanitizer and UndefinedBehaviorSanitizer
	scripts/install-deps --build --tests
	$(CONFIGURE) --preset asan
	cmake --build --preset asan --parallel $(JOBS)
	ctest --preset asan --parallel $(JOBS)

test-threads: ## run the tool's tests with ThreadSanitizer
	scripts/install-deps --build --tests
	$(CONFIGURE) --preset tsan
	cmake --build --preset tsan --parallel $(JOBS)
	ctest --preset tsan --parallel $(JOBS)

coverage: ## which branches of the readers and of escaping the tests take: build/coverage/report/index.html
	scripts/install-deps --build --tests --development
	$(CONFIGURE) --preset coverage
	cmake --build --preset coverage --parallel $(JOBS)
	find build/coverage -name '*.gcda' -delete
	ctest --preset coverage --parallel $(JOBS)
	mkdir -p build/coverage/report
	gcovr --print-summary --branches --html-details build/coverage/report/index.html build/coverage

bench: ## run the benchmarks, each beside its peers
	scripts/install-deps --build --benchmarks
	$(CONFIGURE) --preset bench
	cmake --build --preset bench --parallel $(JOBS)
	for benchmark in build/bench/benchmarks/*/*Benchmark; do $$benchmark || exit 1; done

fuzz: ## fuzz every target for SECONDS_PER_TARGET (300); fuzz/LOG.md tells what they did
	scripts/install-deps --build --development
	$(CONFIGURE) --preset fuzz
	cmake --build --preset fuzz --parallel $(JOBS)
	JOBS=$(JOBS) scripts/fuzz build/fuzz $(SECONDS_PER_TARGET)

fuzz-night: ## fuzz all targets for HOURS (8) together
	$(MAKE) fuzz SECONDS_PER_TARGET=$$(($(HOURS) * 3600 * $(JOBS) / $(words $(wildcard fuzz/seeds/*))))

format: ## lay out all sources with clang-format
	scripts/install-deps --development
	$(SOURCES) | xargs -0 clang-format -i

tidy: ## run clang-tidy over all sources
	scripts/install-deps --build --tests --development
	$(CONFIGURE) --preset dev -DCMAKE_EXPORT_COMPILE_COMMANDS=ON
	cmake --build --preset dev --parallel $(JOBS)
	git ls-files -z -- 'document/*.cpp' 'library/*.cpp' 'legacy/*.cpp' 'migration/*.cpp' 'math/*.cpp' 'platform/*.cpp' 'tools/*.cpp' | \
	    xargs -0 -n 1 -P $(JOBS) clang-tidy --quiet -p build/dev \
	        --extra-arg=-enable-trivial-auto-var-init-zero-knowing-it-will-be-removed-from-clang

docs: ## write the reference of the public headers to build/docs/documentation/html/
	scripts/install-deps --build --packaging
	cmake --preset docs
	cmake --build --preset docs --target documentation

package: ## make the Debian packages in build/package/
	scripts/install-deps --build --packaging
	scripts/make-packages build/package

check-package: ## make them, let Debian's checkers judge them, and make them again elsewhere: they must be equal
	scripts/install-deps --build --packaging
	scripts/make-packages --check build/package
	scripts/make-packages --twice build/package

clean: ## remove what the targets above made
	rm -rf build out
