# A thin door to the presets in CMakePresets.json and to scripts/. Every goal installs first what it needs.
.NOTPARALLEL:
.PHONY: build setup demo test fuzz soak bench package lint clean

build: setup
	scripts/build.sh native
	scripts/build.sh windows-x86
	scripts/build.sh windows-x64

setup:
	scripts/setup.sh all

# VIDEO=path enhances that file, anything ffmpeg reads.
demo:
	scripts/setup.sh native
	scripts/build.sh native clarivex
	scripts/demo.sh

test: setup
	scripts/test.sh native asan tsan windows-x86 windows-x64

# SECONDS=... is how long each fuzzer runs; without clang, which setup.sh then cannot install, by the project's own driver
fuzz:
	scripts/setup.sh fuzz || scripts/setup.sh native
	scripts/fuzz.sh $(SECONDS)

# Films for hours of frames with memory, files and threads watched, and FRAMES=... how many; what starts threads under the
# thread sanitizer, again and again
soak: setup
	scripts/build.sh native clarivex_soak
	build/native/clarivex_soak $(or $(FRAMES),200000)
	scripts/build.sh tsan clarivex_tests
	TSAN_OPTIONS=halt_on_error=1 build/tsan/clarivex_tests --gtest_filter='*Threads*' --gtest_repeat=20 --gtest_brief=1

# Writes docs/figures.md and README's table of figures; bench/compare prints the same and writes nothing. With ARGS=... the
# program of benches runs instead, with these arguments, such as ARGS=--benchmark_filter=frame
bench:
	scripts/setup.sh native
	scripts/build.sh native clarivex clarivex_bench enhance_raw gstclarivex
	$(if $(ARGS),build/native/clarivex_bench $(ARGS),bench/keep_figures)

# Makes build/clarivex-VERSION-windows.zip, with both DLLs, the command line, and how to install them, the same as an installer,
# build/clarivex-VERSION-setup.exe, which is tried under Wine, and the Debian packages clarivex, libclarivex1, libclarivex-dev and
# gstreamer1.0-clarivex (build/NAME_VERSION_amd64.deb), which are installed, tried and removed in a folder of their own
package: setup
	scripts/setup.sh package
	scripts/build.sh windows-x86 clarivex WMP_CVX clarivex_video
	scripts/build.sh windows-x64 WMP_CVX clarivex_video
	scripts/package.sh
	scripts/build.sh windows-x86 fake_registrar without_rights
	scripts/build.sh windows-x64 fake_registrar
	scripts/package_setup.sh
	scripts/build.sh native clarivex packed clarivex_shared gstclarivex clarivex_player
	scripts/package_deb.sh

# QUICK=1 leaves out clang-tidy
lint:
	scripts/setup.sh $(if $(QUICK),format,lint)
	scripts/lint.sh $(if $(QUICK),--quick)

clean:
	rm -rf build demo
