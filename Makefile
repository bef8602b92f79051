# The two commands of the README:
#   make run    installs what is missing, builds, and runs the main job
#   make test   installs what is missing, builds and runs every test (dev and asan)

MELODEX := build/release/tools/melodex/melodex
EXAMPLE := build/release/examples/melodex_example

.PHONY: all run test test-dev test-asan bootstrap release bench format clean

all: release

bootstrap:
	@scripts/bootstrap

release: bootstrap
	cmake --preset release
	cmake --build --preset release

run: release
	$(MELODEX) --version
	$(EXAMPLE) examples/data/hymn.ini examples/data/lines-utf16.txt

test: test-dev test-asan

test-dev: bootstrap
	cmake --preset dev
	cmake --build --preset dev
	ctest --preset dev

test-asan: bootstrap
	cmake --preset asan
	cmake --build --preset asan
	ctest --preset asan

bench: release
	@for b in build/release/bench/*_bench; do echo "== $$b"; $$b; done

format:
	git ls-files '*.h' '*.cpp' | xargs clang-format -i

clean:
	rm -rf build
