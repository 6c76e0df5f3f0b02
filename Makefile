# Everything that is done with this project from a shell. `make help` lists it.
JOBS ?= $(shell nproc)
PREFIX ?= /usr/local
BUILD = cmake --build build/$(1) -j$(JOBS)
CONFIGURE = cmake --preset $(1) -DCMAKE_INSTALL_PREFIX=$(PREFIX) >/dev/null

.PHONY: help run test bench asan tsan fuzz api-diff docs install check format deps bench-deps clean

help: ## lists the targets
	@grep -hE '^[a-z-]+:.*##' $(MAKEFILE_LIST) | sed -E 's/:.*## /\t/' | expand -t 14

run: deps ## builds, counts the words of this machine's documentation and sums its packages up
	@$(call CONFIGURE,release)
	@$(call BUILD,release) --target orv
	build/release/tools/orv/orv words --top 20 /usr/share/common-licenses /usr/share/doc
	build/release/tools/orv/orv packages
	build/release/tools/orv/orv packages --where "Installed-Size > 100000 and not Section = libdevel"
	build/release/tools/orv/orv packages --set bash.Installed-Size=1

test: deps ## builds and runs all tests, and checks that every source and test is listed and every header compiles alone
	@$(call CONFIGURE,dev)
	scripts/unlisted.sh
	$(call BUILD,dev)
	$(call BUILD,dev) --target header-check
	ctest --test-dir build/dev --output-on-failure -j$(JOBS)

bench: deps bench-deps ## measures against the peer libraries and prints one table
	@$(call CONFIGURE,release)
	$(call BUILD,release)
	bench/object/declare.py
	bench/table.py build/release/bench/*/bench_*

asan: deps ## runs the tests under the address and undefined-behaviour sanitizers
	@$(call CONFIGURE,asan)
	$(call BUILD,asan)
	ctest --test-dir build/asan --output-on-failure -j$(JOBS)

tsan: deps ## runs the tests under the thread sanitizer
	@$(call CONFIGURE,tsan)
	$(call BUILD,tsan)
	ctest --test-dir build/tsan --output-on-failure -j$(JOBS)

FUZZ_SECONDS ?= 10
fuzz: deps ## runs each fuzzer on its corpus for FUZZ_SECONDS
	@$(call CONFIGURE,fuzz)
	$(call BUILD,fuzz)
	tests/fuzz/run.sh build/fuzz $(FUZZ_SECONDS)

api-diff: ## shows how the public interface differs from the listing in docs/api.txt
	@$(call CONFIGURE,dev)
	@$(call BUILD,dev) --target orvcore orv >/dev/null
	@scripts/api-diff.sh build/dev

docs: deps ## makes the reference of the public interface in docs/api
	scripts/install-deps.sh docs
	doxygen -q docs/Doxyfile
	@echo docs/api/html/index.html

install: deps ## installs the library, its headers, orv and the CMake and pkg-config files under PREFIX
	@$(call CONFIGURE,release)
	$(call BUILD,release) --target orvcore orv
	cmake --install build/release
	@[ -n "$$DESTDIR" ] || [ $$(id -u) -ne 0 ] || ldconfig

check: ## clang-tidy over the library
	@$(call CONFIGURE,fuzz)
	run-clang-tidy -quiet -p build/fuzz '$(CURDIR)/(toolkit|core|text|object|value|module|tools)/.*\.cpp'

format: ## clang-format over all sources
	git ls-files '*.h' '*.cpp' | xargs clang-format -i

deps:
	@scripts/install-deps.sh build
bench-deps:
	@scripts/install-deps.sh bench

clean: ## removes what was built
	rm -rf build docs/api
