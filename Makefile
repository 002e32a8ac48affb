# FileEncoder: one command builds and tests everything (see README.md).
#   make test        install what is missing, build every configuration, run every suite
#   make demo        the control, registered under Wine, driven from examples/demo.vbs
#   make deb         Debian packages of the library, its -dev files and the tool (build/package)
#   make msi         Windows Installer packages of the control, x64 and x86, per machine and per user
#   make docs        the reference manual as HTML (build/docs)
#   make bench       throughput of the codecs, file operations and text filters (not part of make test)
#   make fuzz-smoke  each fuzz target for 30 s
#   make fuzz-long   each fuzz target for 10 minutes (before changes to a decoder land)
BUILD ?= build
JOBS ?= 2
FUZZ_SECONDS ?= 30
ROOT := $(CURDIR)
WINE_RUN := $(ROOT)/scripts/wine-run.sh
# The build uses Debian's Python, whose modules the bootstrap installs.
CMAKE := cmake -G Ninja -Wno-dev -DPython3_EXECUTABLE=/usr/bin/python3

.PHONY: test deb msi docs demo demo-engine bench fuzz-smoke fuzz-long bootstrap native asan win64 win32 fuzz clean

test: native asan win64 win32 fuzz deb msi docs
	@scripts/run-suites.sh $(BUILD) 3

demo: win64
	@scripts/wine-run.sh regsvr32 /s $(ROOT)/$(BUILD)/win64/encode/ocx/FileEncoder.ocx
	@scripts/wine-run.sh cscript //nologo "$$(winepath -w $(ROOT)/examples/demo.vbs 2>/dev/null)" | tr -d '\r'

demo-engine: native
	@$(BUILD)/native/examples/encode_demo

deb: bootstrap
	@$(CMAKE) -S . -B $(BUILD)/package -DCMAKE_BUILD_TYPE=Release -DFE_TESTS=OFF \
	  -DCMAKE_INSTALL_PREFIX=/usr >/dev/null
	@cmake --build $(BUILD)/package -j$(JOBS)
	@rm -f $(BUILD)/package/*.deb && cd $(BUILD)/package && cpack -G DEB >/dev/null
	@ls $(BUILD)/package/*.deb

msi: win64 win32
	@ls $(BUILD)/win64/installer/*.msi $(BUILD)/win32/installer/*.msi

docs: bootstrap
	@scripts/build-docs.sh $(BUILD)

bench: bootstrap
	@scripts/build-bench-peers.sh $(BUILD)
	@$(CMAKE) -S . -B $(BUILD)/bench -DCMAKE_BUILD_TYPE=Release -DFE_BENCH=ON >/dev/null
	@cmake --build $(BUILD)/bench -j$(JOBS) --target codec_bench file_bench secure_bench text_bench peer_bench
	@$(BUILD)/bench/bench/peer_bench
	@$(BUILD)/bench/bench/codec_bench --benchmark_counters_tabular=true
	@$(BUILD)/bench/bench/file_bench
	@$(BUILD)/bench/bench/secure_bench
	@$(BUILD)/bench/bench/text_bench --benchmark_counters_tabular=true

fuzz-smoke: fuzz
	@scripts/run-suites.sh $(BUILD) $(FUZZ_SECONDS) fuzz

fuzz-long: fuzz
	@scripts/run-suites.sh $(BUILD) 600 fuzz

bootstrap:
	@if [ "$$(id -u)" = 0 ]; then scripts/bootstrap.sh; \
	else echo "bootstrap: not root, assuming the packages of scripts/bootstrap.sh are installed"; fi
	@/usr/bin/python3 scripts/check-tools.py

native: bootstrap
	@$(CMAKE) -S . -B $(BUILD)/native -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
	@cmake --build $(BUILD)/native -j$(JOBS)

asan: bootstrap
	@$(CMAKE) -S . -B $(BUILD)/asan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DFE_SANITIZE=ON >/dev/null
	@cmake --build $(BUILD)/asan -j$(JOBS)

win64 win32: bootstrap
	@arch=$(if $(filter win64,$@),x64,x86); \
	scripts/build-windows-deps.sh $$arch $(BUILD)/deps/$$arch && \
	$(CMAKE) -S . -B $(BUILD)/$@ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DCMAKE_TOOLCHAIN_FILE=$(ROOT)/cmake/mingw-$$arch.cmake \
	  -DFE_WINDOWS_DEPS=$(ROOT)/$(BUILD)/deps/$$arch \
	  -DCMAKE_CROSSCOMPILING_EMULATOR=$(WINE_RUN) >/dev/null && \
	cmake --build $(BUILD)/$@ -j$(JOBS)

fuzz: bootstrap
	@$(CMAKE) -S . -B $(BUILD)/fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DFE_FUZZ=ON \
	  -DFE_LIBDEFLATE_SOURCE=$$(scripts/debian-source.sh libdeflate $(ROOT)/$(BUILD)/deps/sources) \
	  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ >/dev/null
	@cmake --build $(BUILD)/fuzz -j$(JOBS)

clean:
	rm -rf $(BUILD)
