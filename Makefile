# make run   installs what is missing, builds, opens the project window on the bundled example
# make test  installs what is missing, builds, runs every test (Release, then sanitizers)
# make build builds everything into build/bin; make bench runs the benchmarks
# make example-project remakes the example project's line files and project file
# make fuzz  builds the fuzz targets with clang's libFuzzer and runs each FUZZ_SECONDS on its corpus

BUILD      ?= build
ASAN_BUILD ?= build-asan
JOBS       ?= $(shell nproc)
EXAMPLE    ?= examples/project/tempest_survey.qvj
FUZZ_BUILD ?= build-fuzz
FUZZ_SECONDS ?= 60

.PHONY: all deps configure build build-asan test test-release test-asan check-layers \
        check-format format run bench clean example-project fuzz

all: build

deps:
	@bash scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release >/dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS)

build-asan: deps
	@cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DTRENSIL_SANITIZE=ON \
	    -DTRENSIL_BENCH=OFF >/dev/null
	@cmake --build $(ASAN_BUILD) -j $(JOBS)

test: check-layers check-format test-release test-asan

test-release: build
	@cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

test-asan: build-asan
	@cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 \
	    UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 ctest --output-on-failure -j $(JOBS)

# src/ and cli/ never include Qt; only src/grid/ includes GDAL.
check-layers:
	@! grep -rn --include='*.h' --include='*.cpp' -E '#include *<Q' src cli \
	    || (echo "Qt header included outside gui/" && false)
	@! grep -rln --include='*.h' --include='*.cpp' -E '#include *[<"](gdal|ogr|cpl_)' src cli gui \
	    | grep -v '^src/grid/' || (echo "GDAL header included outside src/grid/" && false)

FORMATTED = $(shell git ls-files '*.cpp' '*.h' 2>/dev/null)
check-format:
	@clang-format --dry-run -Werror $(FORMATTED)

format:
	@clang-format -i $(FORMATTED)

run: build
	@bash scripts/run-example.sh $(BUILD) $(EXAMPLE)

example-project: configure
	@cmake --build $(BUILD) -j $(JOBS) --target trensil-cli
	@bash scripts/make-example-project.sh $(BUILD)

bench: build
	@for b in $(BUILD)/bin/bench_*; do echo "== $$b"; $$b || exit 1; done

# New inputs that libFuzzer finds go to $(FUZZ_BUILD)/found/, not into the corpus; a failing input
# is written to the current folder as crash-*, timeout-* or leak-*.
fuzz: deps
	@cmake -S . -B $(FUZZ_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
	    -DTRENSIL_LIBFUZZER=ON -DTRENSIL_GUI=OFF -DTRENSIL_BENCH=OFF >/dev/null
	@for f in fuzz/fuzz_*.cpp; do t=$$(basename $$f .cpp); \
	    cmake --build $(FUZZ_BUILD) -j $(JOBS) --target $$t >$(FUZZ_BUILD)/build.log 2>&1 \
	        || { tail -40 $(FUZZ_BUILD)/build.log; exit 1; }; \
	    mkdir -p $(FUZZ_BUILD)/found/$$t; echo "== $$t"; \
	    $(FUZZ_BUILD)/bin/$$t -max_total_time=$(FUZZ_SECONDS) -timeout=10 \
	        $(FUZZ_BUILD)/found/$$t fuzz/corpus/$$t >$(FUZZ_BUILD)/$$t.log 2>&1 \
	        || { tail -40 $(FUZZ_BUILD)/$$t.log; exit 1; }; tail -1 $(FUZZ_BUILD)/$$t.log; done

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(FUZZ_BUILD) out
