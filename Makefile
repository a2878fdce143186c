# The front door. Each target installs what it needs, builds, and runs; see README.md.
.PHONY: all demo test bench asan format format-check tidy clean

all:
	@scripts/install-dependencies
	@cmake --preset release --log-level=WARNING
	@cmake --build --preset release

demo: all
	@scripts/demo build/release out

test: all
	@scripts/check-format
	@ctest --preset release

asan:
	@scripts/install-dependencies
	@cmake --preset asan --log-level=WARNING
	@cmake --build --preset asan
	@ctest --preset asan

bench:
	@scripts/install-dependencies libbenchmark-dev libpixman-1-dev
	@cmake --preset bench --log-level=WARNING
	@cmake --build --preset bench
	@scripts/bench build/bench

format:
	@scripts/check-format --fix

format-check:
	@scripts/check-format

clean:
	rm -rf build out
