# SPDX-License-Identifier: BSD-3-Clause
# The front door. Each target installs what it needs, builds, and runs; see README.md.
.PHONY: all demo farm frei0r frei0r-sheet session test bench bench-jobs bench-python notebooks asan asan-foreign-bytes tsan fuzz install package package-test wheel docs docs-check format tidy clean
PREFIX ?= /usr/local

all:
	@scripts/install-dependencies
	@cmake --preset release --log-level=WARNING
	@cmake --build --preset release

demo: all
	@scripts/demo build/release out

# A farm of two nodes on this machine, of which one dies: rendered there and here, compared. Needs root. The packages bring
# Slurm's and munge's own services onto the machine, and those of them that can start do; the script leaves them alone.
farm: all
	@scripts/install-dependencies slurm-wlm munge
	@scripts/farm build/release

# Effects in ffmpeg, melt and GStreamer, compared with vorto render.
frei0r: all
	@scripts/install-dependencies melt gstreamer1.0-tools gstreamer1.0-plugins-base gstreamer1.0-plugins-good \
	  gstreamer1.0-plugins-bad frei0r-plugins
	@scripts/frei0r build/release out/frei0r

test: all
	@scripts/check-format
	@cmake --build --preset release --target tests
	@ctest --preset release

# Every frei0r plug-in of the distribution as an effect: pictures in out/frei0r-*.jpg.
frei0r-sheet: all
	@scripts/install-dependencies frei0r-plugins python3
	@scripts/frei0r-sheet build/release out

# Somebody works with the inspector, on a screen of its own: pictures in out/session, and how long events took.
session: all
	@scripts/install-dependencies xvfb openbox libxcb-cursor0
	@cmake --build --preset release --target inspector-session
	@scripts/inspector-session build/release out/session

asan:
	@scripts/install-dependencies
	@cmake --preset asan --log-level=WARNING
	@cmake --build --preset asan --target all tests
	@ctest --preset asan

# The rooms that read foreign bytes alone, with the host that renders pictures.
asan-foreign-bytes:
	@scripts/install-dependencies
	@cmake --preset asan --log-level=WARNING
	@cmake --build --preset asan --target foreign-bytes-tests
	@ctest --preset asan -L foreign-bytes

# Hosts that render on several threads, under the thread sanitizer.
tsan:
	@scripts/install-dependencies
	@cmake --preset tsan --log-level=WARNING
	@cmake --build --preset tsan
	@ctest --preset tsan

bench:
	@scripts/install-dependencies libbenchmark-dev libpixman-1-dev libyuv-dev libopencv-core-dev libopencv-imgproc-dev \
	  libswscale-dev libssl-dev libplist-dev
	@cmake --preset bench --log-level=WARNING
	@cmake --build --preset bench
	@scripts/bench build/bench

# Whole commands beside those of other programs: processor time and memory. Sequences with one process and with two.
bench-jobs: all
	@scripts/install-dependencies ffmpeg imagemagick openimageio-tools
	@cmake --preset bench --log-level=WARNING
	@cmake --build --preset bench --target jobs
	@build/bench/bin/jobs build/release/bin/vorto Docs/Examples/Photos/coffee.png build/bench/jobs

# The same jobs in Python, with vorto and with other libraries: speed and lines of code.
bench-python: all
	@scripts/install-dependencies python3-pil python3-opencv python3-openimageio
	@PYTHONPATH=build/release/python /usr/bin/python3 -B Benchmarks/Python/compare.py Docs/Examples/Photos/coffee.png

# The notebooks of the documentation, run: what their cells print and show stands in them afterwards.
notebooks: all
	@PYTHONPATH=build/release/python scripts/run-notebook Docs/Notebooks/*.ipynb

fuzz:
	@scripts/install-dependencies clang libclang-rt-14-dev
	@scripts/fuzz build/fuzz

install: all
	@cmake --install build/release --prefix "$(DESTDIR)$(PREFIX)"
	@[ -n "$(DESTDIR)" ] || scripts/refresh-desktop "$(PREFIX)"

# Debian packages, into build/packages; package-test installs them into a Debian that never saw the project. Needs root.
package:
	@scripts/install-dependencies debhelper dh-python doxygen dpkg-dev lintian mandoc python3-markdown-it python3-pygments
	@scripts/build-packages build/packages

package-test: package
	@scripts/install-dependencies debootstrap
	@scripts/test-packages build/packages

# The site of the documentation, into build/docs/html; docs-check looks at every page of it in a browser.
docs: all
	@scripts/install-dependencies doxygen mandoc python3-markdown-it python3-pygments
	@cmake --build --preset release --target docs

docs-check: docs
	@scripts/install-dependencies chromium
	@scripts/check-site build/docs/html build/docs/check

# The Python module with the library and the effects, to be installed by pip without anything else of Vorto.
wheel: all
	@scripts/install-dependencies python3-pip python3-venv
	@rm -rf build/wheel
	@/usr/bin/python3 -m pip wheel --quiet --no-build-isolation --no-index --no-deps --wheel-dir build/wheel Bindings/Python
	@scripts/test-wheel build/wheel

format:
	@scripts/check-format --fix

tidy: all
	@scripts/install-dependencies clang-tidy
	@scripts/check-tidy build/release

clean:
	rm -rf build out
