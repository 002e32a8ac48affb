#!/usr/bin/env bash
# Runs the test suites of the configurations built under <build> and prints
# one summary: each suite's counts, then "Summary: N passed, N failed".
#   run-suites.sh <build> <fuzz seconds per target> [fuzz]
# With "fuzz" only the fuzz targets run.
set -uo pipefail
build=$(realpath "$1")
fuzz_seconds=$2
only=${3:-all}
logs=$build/test-logs
mkdir -p "$logs"
passed=0 failed=0 skipped=0
lines=()

# Sums the counts of every GoogleTest program ("[  PASSED  ] 12 tests.")
# and script suite ("12 passed, 0 failed") in a CTest log, where each line
# carries its test's number in front ("3: ").
count() {
  local kind=$1 log=$2 word
  word=$(tr '[:upper:]' '[:lower:]' <<<"$kind")
  {
    grep -oE "^([0-9]+: )?\[ +$kind +\] [0-9]+ tests?" "$log" | grep -oE '[0-9]+ test' | grep -oE '[0-9]+'
    grep -oE "^([0-9]+: )?[0-9]+ passed, [0-9]+ failed$" "$log" | grep -oE "[0-9]+ $word" | grep -oE '[0-9]+'
  } | awk '{ sum += $1 } END { print sum + 0 }'
}

# The tests of one configuration through CTest; the counts come from their
# output.
run_gtest_suite() {
  local name=$1 dir=$2 log=$logs/$1.log
  ctest --test-dir "$dir" -V --timeout 900 >"$log" 2>&1
  local status=$?
  local p f s
  p=$(count PASSED "$log"); f=$(count FAILED "$log"); s=$(count SKIPPED "$log")
  p=${p:-0} f=${f:-0} s=${s:-0}
  if [ "$status" -ne 0 ] && [ "$f" -eq 0 ]; then f=1; fi  # a test crashed or never ran
  if [ "$p" -eq 0 ] && [ "$f" -eq 0 ]; then f=1; fi
  passed=$((passed + p)) failed=$((failed + f)) skipped=$((skipped + s))
  lines+=("$(printf '%-22s %5d passed %3d failed %3d skipped   (%s)' "$name" "$p" "$f" "$s" "$log")")
}

# A script that prints "N passed, N failed" as its last line.
run_script_suite() {
  local name=$1 log=$logs/$1.log
  shift
  "$@" >"$log" 2>&1
  local status=$?
  local p f
  p=$(count PASSED "$log"); f=$(count FAILED "$log")
  if [ "$status" -ne 0 ] && [ "$f" -eq 0 ]; then f=1; fi
  if [ "$p" -eq 0 ] && [ "$f" -eq 0 ]; then f=1; fi
  passed=$((passed + p)) failed=$((failed + f))
  lines+=("$(printf '%-22s %5d passed %3d failed %3d skipped   (%s)' "$name" "$p" "$f" 0 "$log")")
}

# Each fuzz target replays every input that ever made it fail
# (tests/fuzz/regressions/<target>/), then runs for a while from its seed
# corpus (tests/fuzz/corpus/<target>/, copied so that the run's finds stay in
# the build tree): passes when it finds nothing.
root=$(cd "$(dirname "$0")/.." && pwd)
fuzz_dir=$root/tests/fuzz
run_fuzz_targets() {
  local target name log corpus regressions
  for target in "$build"/fuzz/tests/fuzz/*_fuzz; do
    name=$(basename "$target")
    log=$logs/$name.log
    corpus=$build/fuzz/corpus/$name
    rm -rf "$corpus" && mkdir -p "$corpus"
    if [ -d "$fuzz_dir/corpus/$name" ]; then cp "$fuzz_dir/corpus/$name"/* "$corpus"/; fi
    regressions=()
    if [ -d "$fuzz_dir/regressions/$name" ]; then
      regressions=("$fuzz_dir/regressions/$name"/*)
    fi
    if (cd "$logs" && { [ ${#regressions[@]} -eq 0 ] || "$target" "${regressions[@]}"; } &&
        "$target" -max_total_time="$fuzz_seconds" -print_final_stats=1 \
         -malloc_limit_mb=8192 "$corpus") >"$log" 2>&1; then
      passed=$((passed + 1))
      lines+=("$(printf '%-22s    ok  %d regressions replayed; %s' "$name" "${#regressions[@]}" \
                 "$(grep -oE 'Done [0-9]+ runs' "$log")")")
    else
      failed=$((failed + 1))
      lines+=("$(printf '%-22s FAILED (%s)' "$name" "$log")")
    fi
  done
}

if [ "$only" = all ]; then
  run_gtest_suite engine-native "$build/native"
  run_gtest_suite engine-asan "$build/asan"
  run_gtest_suite wine-x64 "$build/win64"
  # No 32-bit Wine here: the x86 build is checked for its exports only.
  exports=$(i686-w64-mingw32-objdump -p "$build/win32/encode/ocx/FileEncoder.ocx" 2>/dev/null |
    sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/p' | grep -oE 'Dll[A-Za-z]+' | tr '\n' ' ')
  if [ "$exports" = "DllCanUnloadNow DllGetClassObject DllInstall DllRegisterServer DllUnregisterServer " ] &&
     [ -f "$build/win32/tests/engine/engine_tests.exe" ]; then
    passed=$((passed + 1))
    lines+=("$(printf '%-22s    ok  built; the control exports %s' x86 "$exports")")
  else
    failed=$((failed + 1))
    lines+=("$(printf '%-22s FAILED (exports: %s)' x86 "$exports")")
  fi
  # The x86 packages cannot be installed here: their tables are checked.
  version=$(sed -n 's/^project(FileEncoder VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
  for scope in perMachine perUser; do
    package="$build/win32/installer/FileEncoder-$version-x86$([ $scope = perUser ] && echo -user).msi"
    log="$logs/x86-msi-$scope.log"
    if /usr/bin/python3 "$root/tests/install/check_msi_tables.py" "$package" x86 $scope "$version" \
         >"$log" 2>&1; then
      passed=$((passed + 1))
      lines+=("$(printf '%-22s    ok  %s' "x86-msi-$scope" "$(basename "$package")")")
    else
      failed=$((failed + 1))
      lines+=("$(printf '%-22s FAILED (%s)' "x86-msi-$scope" "$log")")
    fi
  done
  run_script_suite debian-package "$root/tests/package/check-package.sh" "$build" "$build/package"
  run_script_suite docs "$root/tests/docs/check-docs.sh" "$build"
fi
run_fuzz_targets

echo
printf '%s\n' "${lines[@]}"
echo "Summary: $passed passed, $failed failed, $skipped skipped"
[ "$failed" -eq 0 ]
