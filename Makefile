# A thin front over the presets of CMakePresets.json.
#
#   make demo      install what is missing, build, run the example on real data: CSV and plot in demo-output/
#   make test      install what is missing, build, run every test but the long ones
#   make long      the tests that take minutes each
#   make bench     the benchmarks, with the ratio to the plain reference each
#   make sanitize  the tests under the address, undefined and thread sanitizers
#   make fuzz      each fuzz target for a minute
#   make coverage  line and branch coverage of src/
#   make format    format all sources;  make check-format  only tell
#   make clang     build with clang++
#   make deps      install what is missing (Debian packages)

.PHONY: all deps build test long demo bench sanitize fuzz coverage format check-format clang tidy clean
SOURCES = $(shell git ls-files '*.cpp' '*.h' '*.c')
CTEST = ctest --output-on-failure --parallel 2 --label-exclude long

all: build

deps:
	@cmake/deps.sh

build: deps
	cmake --preset release
	cmake --build --preset release

test: build
	cd build/release && $(CTEST)

long: build
	cd build/release && ctest --output-on-failure --label-regex long

demo: build
	examples/demo.sh build/release demo-output

bench: build
	bench/run.sh build/release

sanitize: deps
	cmake --preset asan
	cmake --build --preset asan
	cd build/asan && UBSAN_OPTIONS=print_stacktrace=1 $(CTEST)
	cmake --preset tsan
	cmake --build --preset tsan
	cd build/tsan && $(CTEST)

fuzz: deps
	fuzz/run.sh 60

coverage: deps
	cmake --preset coverage
	cmake --build --preset coverage
	cd build/coverage && $(CTEST)
	gcovr --root . --filter src/ --exclude-throw-branches --print-summary build/coverage

format:
	@clang-format -i $(SOURCES)

check-format:
	@clang-format --dry-run -Werror $(SOURCES)

tidy: deps
	cmake --preset dev
	run-clang-tidy -quiet -p build/dev 'src/.*'

clang: deps
	cmake -S . -B build/clang -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
	  -DKZB_BUILD_TESTS=OFF -DKZB_BUILD_BENCH=OFF
	cmake --build build/clang

clean:
	rm -rf build demo-output
