# The front door. `make run` and `make test` do all the set-up on a fresh Debian 12 machine.
#
# TARVEX_INSTANCES names the folder with the instance collections (default ../shared/instances); tests that need
# it skip when it is not there. PREFIX and DESTDIR say where `make install` goes.
PREFIX ?= /usr/local
JOBS ?= $(shell nproc)
TARVEX_INSTANCES ?= $(abspath ../shared/instances)
export TARVEX_INSTANCES
# Our own text, for the formatter and the linter.
CODE = $(shell git ls-files '*.cpp' '*.h' '*.c')

.PHONY: all run test bench fuzz install docs format format-check lint asan tsan clean

all: build/release/stamp

build/%/stamp: FORCE
	@cmake --preset $* $(if $(wildcard build/$*/build.ninja),>/dev/null)
	@cmake --build --preset $* -j $(JOBS)

.PHONY: FORCE
FORCE:

run: setup-run
	@$(MAKE) --no-print-directory build/release/stamp
	build/release/bin/tarvex --solution examples/bakery.mps

test: setup-test
	@$(MAKE) --no-print-directory build/test/stamp
	ctest --preset test -j $(JOBS)

asan tsan: setup-test
	@$(MAKE) --no-print-directory build/$@/stamp
	ctest --preset $@ -j $(JOBS)

bench: setup-bench
	@$(MAKE) --no-print-directory build/bench/stamp
	bench/run $(BENCH)

# Each fuzz target for FUZZ_TIME seconds.
FUZZ_TIME ?= 60
fuzz: setup-fuzz
	@$(MAKE) --no-print-directory build/fuzz/stamp
	tests/fuzz/run build/fuzz $(FUZZ_TIME)

install: setup-run
	@$(MAKE) --no-print-directory build/release/stamp
	cmake --install build/release --prefix $(PREFIX)

# The pages that are made from tables of the library.
docs: setup-test
	@$(MAKE) --no-print-directory build/test/stamp
	for page in parameters attributes; do \
	    build/test/bin/$${page}_page >docs/$$page.md.new && mv docs/$$page.md.new docs/$$page.md || exit 1; \
	done

format: setup-lint
	clang-format-14 -i $(CODE)

format-check: setup-lint
	clang-format-14 --dry-run -Werror $(CODE)

# Everything again with clang, then clang-tidy over library and command line.
lint: setup-lint
	@$(MAKE) --no-print-directory build/clang/stamp
	git ls-files 'src/*.cpp' 'cli/*.cpp' | xargs -P $(JOBS) -n 4 clang-tidy-14 -p build/clang --quiet

setup-%:
	@tools/setup $*

clean:
	rm -rf build
