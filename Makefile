# One word for each everyday command; `make help` lists them.

JOBS         ?= $(shell nproc)
PREFIX       ?= /usr/local
DESTDIR      ?=
# Program that `make run` shows.
EXAMPLE      ?= examples/beam_deflection.vxp
# Program whose drawing `make run` writes, and where.
DRAWING      ?= examples/truss_drawing.vxp
PICTURE      ?= build/truss_drawing.svg
# Length of `make fuzz` for each target.
FUZZ_SECONDS ?= 60
# More arguments for the micro-benchmarks, for instance --benchmark_filter=Scanner.
BENCH_ARGS   ?=
# Script that times Vexa beside other systems; it is given --vexa and the program's path.
VEXA_COMPARE ?=

VEXA := build/release/bin/vexa

.DEFAULT_GOAL := help
.PHONY: help packages packages-dev build run pictures test debug sanitize fuzz bench \
        accuracy format lint install clean

help: ## list these commands
	@sed -n 's/^\([a-z-]*\):.*## /\1 /p' $(MAKEFILE_LIST) | \
	  while read -r name text; do printf '  make %-13s %s\n' "$$name" "$$text"; done

packages: ## install the packages that building and running need
	@packaging/install_packages.sh packaging/packages.txt

packages-dev: packages ## install also those for layout, checks, fuzzing and benchmarks
	@packaging/install_packages.sh packaging/packages-dev.txt

build: packages ## build the program, build/release/bin/vexa
	@cmake --preset release >/dev/null
	@cmake --build --preset release --parallel $(JOBS) --target vexa

run: build ## build, run an example (EXAMPLE=path for another) and draw a picture
	@$(VEXA) run $(EXAMPLE)
	@$(VEXA) run $(DRAWING) --drawing $(PICTURE) >/dev/null
	@echo && echo "A picture that $(DRAWING) has drawn: $(PICTURE)"

pictures: build ## draw the pictures of the documents anew
	@for picture in docs/pictures/*.svg; do \
	  $(VEXA) run "examples/$$(basename "$$picture" .svg).vxp" --drawing "$$picture" >/dev/null; \
	done

test: packages ## build and run all tests
	@cmake --preset release >/dev/null
	@cmake --build --preset release --parallel $(JOBS)
	@ctest --preset release --parallel 2

debug: packages ## the same without optimisation and with assertions
	@cmake --preset debug >/dev/null
	@cmake --build --preset debug --parallel $(JOBS)
	@ctest --preset debug --parallel 2

sanitize: packages ## the same with addresses and undefined behaviour checked
	@cmake --preset sanitized >/dev/null
	@cmake --build --preset sanitized --parallel $(JOBS)
	@ctest --preset sanitized --parallel 2

fuzz: packages-dev ## feed random programs to each fuzz target (FUZZ_SECONDS=60)
	@cmake --preset fuzz >/dev/null
	@cmake --build --preset fuzz --parallel $(JOBS) --target fuzz_targets
	@fuzz/run_targets.sh build/fuzz/bin $(FUZZ_SECONDS)

bench: packages-dev ## time the interpreter and the numerics
	@cmake --preset release >/dev/null
	@cmake --build --preset release --parallel $(JOBS) --target benchmarks
	@bench/run_benchmarks.sh build/release/bin "$(VEXA_COMPARE)" $(BENCH_ARGS)

accuracy: packages ## print the worst error of each function that has reference values
	@cmake --preset release >/dev/null
	@cmake --build --preset release --parallel $(JOBS) --target vexa_accuracy
	@build/release/bin/vexa_accuracy

format: packages-dev ## lay out all sources
	@.ci/list_sources.sh | xargs -r clang-format -i

lint: packages-dev ## check layout, style and common mistakes
	@.ci/lint

install: build ## copy program and examples to $(DESTDIR)$(PREFIX)
	@DESTDIR=$(DESTDIR) cmake --install build/release --prefix $(PREFIX) --strip

clean: ## remove everything that was built
	@rm -rf build
