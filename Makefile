# The front door: each target sets up what it needs and does its work through CMake.

JOBS ?= $(shell nproc)
MAKEFLAGS += --no-print-directory

.PHONY: demo test check format clean

demo: build/release/configured
	cmake --build build/release -j $(JOBS) --target demo
	build/release/examples/demo examples/demo/signup.html

test: build/dev/configured
	cmake --build build/dev -j $(JOBS)
	ctest --preset dev

# What the tests alone do not see: sanitizers, the second compiler, the format of the sources.
check:
	scripts/install_packages.sh check
	$(MAKE) build/asan/configured build/clang/configured
	cmake --build build/asan -j $(JOBS)
	ctest --preset asan
	cmake --build build/clang -j $(JOBS)
	ctest --preset clang
	scripts/format.sh --check

format:
	scripts/install_packages.sh check
	scripts/format.sh

build/%/configured:
	scripts/install_packages.sh build
	cmake --preset $*
	touch $@

clean:
	rm -rf build
