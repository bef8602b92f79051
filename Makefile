# The two commands of the README:
#   make run    installs what is missing, builds, and runs the main job
#   make test   installs what is missing, builds and runs every test (dev and asan)
#               and runs each fuzz harness for 15 seconds

MELODEX := build/release/tools/melodex/melodex
EXAMPLE := build/release/examples/melodex_example

.PHONY: all run test test-dev test-asan test-fuzz fuzz fuzz-build bootstrap release bench format clean

all: release

bootstrap:
	@scripts/bootstrap

release: bootstrap
	cmake --preset release
	cmake --build --preset release

# The main job: import the sample hymns into the song library of the
# configured data folder (~/.local/share/Cantorix unless the settings say
# otherwise), list the library and show a song with its chords. A second run
# finds every sample already imported and says so.
run: release
	@$(MELODEX) --version
	@echo; echo "== Importing samples/ into the song library"
	@$(MELODEX) library import samples
	@echo; echo "== The library"
	@$(MELODEX) library list
	@echo; echo "== A song with its chords"
	@$(MELODEX) library show "Amazing Grace"
	@echo; echo "== The sample service"
	@$(MELODEX) set show "samples/Sunday Service.set"
	@echo; echo "== A tour of the library's classes (examples/example.cpp)"
	@$(EXAMPLE) examples/data/hymn.ini examples/data/lines-utf16.txt

test: test-dev test-asan test-fuzz

test-dev: bootstrap
	cmake --preset dev
	cmake --build --preset dev
	ctest --preset dev

test-asan: bootstrap
	cmake --preset asan
	cmake --build --preset asan
	ctest --preset asan

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
