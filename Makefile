# The two commands of the README:
#   make run    installs what is missing, builds, and runs the main job
#   make test   installs what is missing, builds and runs every test (dev, asan,
#               the presentation tests under ThreadSanitizer) and runs each fuzz
#               harness for 15 seconds

MELODEX := build/run/tools/melodex/melodex
EXAMPLE := build/run/examples/melodex_example
# The main job's own data folder, inside the build tree: make run never
# touches your song library. Point the program at your own with
# "melodex --data DIR ..." or leave --data out for the configured folders.
DEMO := build/run/demo-data

.PHONY: all run test test-dev test-asan test-tsan test-fuzz fuzz fuzz-build bootstrap release run-build bench format clean

all: release

bootstrap:
	@scripts/bootstrap

release: bootstrap
	cmake --preset release
	cmake --build --preset release

# Only what the main job runs: the programs and the example, no tests and no
# benchmarks.
run-build: bootstrap
	cmake --preset run
	cmake --build --preset run

# The main job: import the sample hymns into a demo song library, list it,
# show a song with its chords and the sample set, and print the set. A second run finds every
# sample already imported and says so.
run: run-build
	@$(MELODEX) --version
	@echo; echo "== Importing samples/ into the demo library in $(DEMO)"
	@$(MELODEX) --data $(DEMO) library import samples
	@echo; echo "== The library"
	@$(MELODEX) --data $(DEMO) library list
	@echo; echo "== A song with its chords"
	@$(MELODEX) --data $(DEMO) library show "Amazing Grace"
	@echo; echo "== The sample service"
	@$(MELODEX) --data $(DEMO) set show "samples/Sunday Service.set"
	@$(MELODEX) --data $(DEMO) set render "samples/Sunday Service.set" --out $(DEMO)/sunday-service.pdf
	@echo; echo "== A tour of the library's classes (examples/example.cpp)"
	@$(EXAMPLE) examples/data/hymn.ini examples/data/lines-utf16.txt
	@echo; echo "== The sample Bible (samples/bible), installed once, and a passage"
	@$(MELODEX) --data $(DEMO) bible show "King James Version" "Gen 1:1" >/dev/null 2>&1 || \
		$(MELODEX) --data $(DEMO) bible import "samples/bible/King James Version"
	@$(MELODEX) --data $(DEMO) bible list
	@$(MELODEX) --data $(DEMO) bible show "King James Version" "John 3:16-18; Jude 3"

test: test-dev test-asan test-tsan test-fuzz

test-dev: bootstrap
	cmake --preset dev
	cmake --build --preset dev
	ctest --preset dev

test-asan: bootstrap
	cmake --preset asan
	cmake --build --preset asan
	ctest --preset asan

# Only the presentation runtime runs threads of its own; its tests (and the
# display server they start) are all this build makes.
test-tsan: bootstrap
	cmake --preset tsan
	cmake --build --preset tsan
	ctest --preset tsan

# The fuzz harnesses of tests/fuzz, built with clang under AddressSanitizer
# and UndefinedBehaviorSanitizer (library and harnesses only). CI runs each
# for 15 seconds and fails on any finding; `make fuzz` runs each for
# FUZZ_SECONDS.
FUZZ_SECONDS ?= 60

fuzz-build: bootstrap
	cmake --preset fuzz
	cmake --build --preset fuzz

test-fuzz: fuzz-build
	scripts/fuzz 15

fuzz: fuzz-build
	scripts/fuzz $(FUZZ_SECONDS)

bench: release
	@for b in build/release/bench/*_bench; do echo "== $$b"; $$b; done

format:
	git ls-files '*.h' '*.cpp' | xargs clang-format -i

clean:
	rm -rf build
