# The front door: each target sets up what it needs and does its work through CMake.

JOBS ?= $(shell nproc)
MAKEFLAGS += --no-print-directory

.PHONY: demo test python check fuzz bench pages templates compare docs package format clean

# How long each fuzz target runs.
FUZZ_SECONDS ?= 60

demo: build/release/configured
	cmake --build build/release -j $(JOBS) --target demo
	build/release/examples/demo examples/demo/signup.html

test: build/dev/configured
	cmake --build build/dev -j $(JOBS)
	ctest --preset dev

# The Python module: PYTHONPATH=build/python python3
python: build/python/configured
	cmake --build build/python -j $(JOBS) --target qo_python

# What the tests alone do not see: sanitizers, the second compiler, later standards of
# C++, other projects that use the libraries, a short fuzz run, the API reference, types, the format.
check:
	scripts/install_packages.sh check
	$(MAKE) build/asan/configured build/tsan/configured build/clang/configured
	cmake --build build/asan -j $(JOBS)
	ctest --preset asan
	cmake --build build/tsan -j $(JOBS) --target thread_tests default_host_tests
	ctest --preset tsan -R "thread_tests|default_host_tests"
	cmake --build build/clang -j $(JOBS)
	ctest --preset clang
	JOBS=$(JOBS) tests/consumers/check_consumers.sh "$(CURDIR)" build/consumers
	$(MAKE) fuzz FUZZ_SECONDS=10
	$(MAKE) docs
	cd src/python && /usr/bin/python3 -m mypy --strict --cache-dir ../../build/mypy qo/__init__.pyi ../../examples/python
	scripts/format.sh --check

fuzz:
	scripts/install_packages.sh check
	$(MAKE) build/fuzz/configured
	cmake --build build/fuzz -j $(JOBS)
	scripts/fuzz.sh $(FUZZ_SECONDS)

# Measures for some five minutes, best on an idle machine, and writes docs/performance.md.
bench:
	scripts/install_packages.sh bench compare
	npm install --silent --prefix build/compare parse5 cheerio
	$(MAKE) build/bench/configured
	cmake --build build/bench -j $(JOBS)
	scripts/unpack_bench_pages.py build/bench/pages
	scripts/run_benchmark.py

# Some 11,000 templates and pages of many makers, in build/pages.
pages:
	scripts/install_packages.sh bench
	scripts/fetch_pages.py build/pages

# Templates of languages that have a compiler, in build/templates.
templates:
	scripts/install_packages.sh compare
	scripts/fetch_templates.py build/templates

# Trees beside parse5's, selectors beside Chromium's and cheerio's, on real pages; edits of templates beside what
# their compilers read.
compare: pages templates build/dev/configured
	scripts/install_packages.sh compare
	npm install --silent --prefix build/compare parse5 cheerio \
	  svelte @vue/compiler-sfc @angular/compiler @astrojs/compiler @babel/parser nunjucks handlebars ejs twig php-parser
	cmake --build build/dev -j $(JOBS)
	scripts/compare_trees.mjs build/pages/documentation
	scripts/compare_selectors.mjs build/pages/documentation
	scripts/compare_edits.mjs build/templates

# The API reference, in build/docs/html.
docs:
	scripts/install_packages.sh docs
	mkdir -p build/docs
	doxygen docs/Doxyfile

# Debian packages of libraries, development files, tool and Python module, in build/package.
package: build/package/configured
	scripts/install_packages.sh package
	cmake --build build/package -j $(JOBS)
	cd build/package && cpack
	ls build/package/*.deb

format:
	scripts/install_packages.sh check
	scripts/format.sh

build/%/configured:
	scripts/install_packages.sh build
	cmake --preset $*
	touch $@

clean:
	rm -rf build
