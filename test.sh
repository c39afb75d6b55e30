#!/usr/bin/env bash
# Builds with warnings as errors and runs every test. The last line says how many passed and failed.
#   usage: ./test.sh [--quick | --only STEP | --coverage]
#   --quick     leaves out the sanitizers, valgrind, clang-tidy, Windows and fuzzing
#   --coverage  instead of all this: which lines and branches of the library the tests reach; fails below 95 % of lines
#   STEP        release   all tests, and those of the installed package, built for release by g++
#               headers   the public headers, each on its own, with every compiler
#               format    the format of every C++ file
#               tidy      clang-tidy over every C++ file but tests and fuzz programs
#               valgrind  small runs of the C interface, an example and the program under valgrind
#               asan      the tests under AddressSanitizer and UndefinedBehaviorSanitizer, built by clang++
#               tsan      the tests under ThreadSanitizer, built by g++
#               wine      the tests of the library, built for Windows and run under Wine
#               fuzz      a minute of made-up calls and files for each fuzz program; FUZZ_SECONDS sets another time
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
readonly root
readonly allSteps=(release headers format tidy valgrind asan tsan wine fuzz)
passed=0 failed=0 skipped=0
launcher=() # a command that starts what runs the tests

usageError()
{
    echo "test.sh: $1; usage: ./test.sh [--quick | --only $(IFS="|" && echo "${allSteps[*]}") | --coverage]" >&2
    exit 2
}

stepFailed()
{
    echo "test.sh: $1" >&2
    failed=$((failed + 1))
}

# An attribute of the test suite in a report of ctest.
#   $1  the report
#   $2  the attribute
countIn()
{
    sed -n "s/^[[:space:]]*$2=\"\([0-9]*\)\".*/\1/p" "$1" | head -n 1
}

# Configures a build folder with all options but those given.
configure()
{
    local build=$1
    shift
    cmake -S "$root" -B "$build" -G Ninja --log-level=WARNING -DCORVANE_WARNINGS_AS_ERRORS=ON -DCORVANE_BUILD_APPS=ON \
        -DCORVANE_BUILD_TESTS=ON "$@" >/dev/null
}

configureRelease()
{
    configure "$1" -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=g++ -DCORVANE_BUILD_BENCH=ON
}

# Runs tests of a build folder and adds ctest's own counts to the totals.
#   $1       the build folder
#   $2 ...   options for ctest
runTests()
{
    local build=$1 report=$1/report.xml
    shift
    rm -f "$report"
    "${launcher[@]}" ctest --test-dir "$build" --parallel 2 --output-on-failure --no-tests=error \
        --output-junit "$report" "$@"
    local result=$?
    if [ ! -s "$report" ]; then
        stepFailed "ctest left no report in $build"
        return
    fi
    local tests failures left notRun
    tests=$(countIn "$report" tests)
    left=$(($(grep -c '<skipped message="SKIP_' "$report") + $(countIn "$report" disabled)))
    notRun=$(($(countIn "$report" skipped) + $(countIn "$report" disabled) - left)) # a program that was not built
    failures=$(($(countIn "$report" failures) + notRun))
    passed=$((passed + tests - failures - left))
    failed=$((failed + failures))
    skipped=$((skipped + left))
    if [ $result -ne 0 ] && [ $failures -eq 0 ]; then
        stepFailed "ctest failed in $build"
    fi
}

step_release()
{
    local build=$root/build/test-release
    if ! { configureRelease "$build" && cmake --build "$build" --parallel "$(nproc)"; }; then
        stepFailed "the release build failed"
        return
    fi
    runTests "$build" --label-exclude 'headers|valgrind'
}

step_headers()
{
    local build=$root/build/test-release
    if ! configureRelease "$build"; then
        stepFailed "the release build cannot be configured"
        return
    fi
    runTests "$build" --label-regex headers
}

# Every file counts as a test.
step_tidy()
{
    local build=$root/build/test-tidy
    if ! configure "$build" -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=clang++ -DCORVANE_BUILD_BENCH=ON \
        -DCMAKE_EXPORT_COMPILE_COMMANDS=ON; then
        stepFailed "the build that clang-tidy reads cannot be configured"
        return
    fi
    "$root/scripts/check_tidy.sh" "$build" || echo "test.sh: clang-tidy asks for changes; see above" >&2
    passed=$((passed + $(wc -l <"$build/tidy/passed")))
    failed=$((failed + $(wc -l <"$build/tidy/failed")))
    [ -s "$build/tidy/passed" ] || stepFailed "clang-tidy did not run"
}

step_format()
{
    if "$root/scripts/check_format.sh"; then
        passed=$((passed + 1))
    else
        stepFailed "the format is not that of .clang-format; run: clang-format -i FILE"
    fi
}

step_valgrind()
{
    local build=$root/build/test-release
    if ! { configureRelease "$build" &&
        cmake --build "$build" --parallel "$(nproc)" --target corvane_program c_interface_in_c mpr_planes; }; then
        stepFailed "the programs for valgrind could not be built"
        return
    fi
    runTests "$build" --label-regex valgrind
}

# Builds with a sanitizer, assertions on, and runs all tests but those of the installed package.
#   $1  the compiler
#   $2  the sanitizers
#   $3  the build folder
sanitized()
{
    local compiler=$1 sanitizers=$2 build=$3
    # clang++ puts the sanitizer's runtime into programs only, so libraries are linked with its names left open.
    local linking=-Wl,-z,undefs
    local flags="-O1 -g -fno-omit-frame-pointer -fsanitize=$sanitizers -fno-sanitize-recover=all"
    if ! { configure "$build" -DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$flags" \
        -DCMAKE_CXX_STANDARD_LIBRARIES="$linking" &&
        "${launcher[@]}" cmake --build "$build" --parallel "$(nproc)"; }; then
        stepFailed "the build with -fsanitize=$sanitizers failed"
        return
    fi
    runTests "$build" --label-exclude 'package|headers|valgrind'
}

step_asan()
{
    export ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1 UBSAN_OPTIONS=print_stacktrace=1
    export LSAN_OPTIONS=suppressions=$root/tests/leaks_of_libraries.supp:print_suppressions=0
    sanitized clang++ address,undefined "$root/build/test-asan"
}

step_tsan()
{
    export TSAN_OPTIONS=halt_on_error=1
    # ThreadSanitizer cannot place its shadow memory where the kernel randomises addresses by more than 28 bits. The
    # build runs test programs too: it asks them for their tests.
    local plainAddresses=(setarch "$(uname -m)" --addr-no-randomize)
    "${plainAddresses[@]}" true 2>/dev/null && launcher=("${plainAddresses[@]}")
    sanitized g++ thread "$root/build/test-tsan"
    launcher=()
}

step_fuzz()
{
    local build=$root/build/test-fuzz
    local flags="-O1 -g -fno-omit-frame-pointer -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all"
    export ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1 UBSAN_OPTIONS=print_stacktrace=1
    export LSAN_OPTIONS=suppressions=$root/tests/leaks_of_libraries.supp:print_suppressions=0
    if ! { configure "$build" -DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_FLAGS="$flags" \
        -DCMAKE_CXX_STANDARD_LIBRARIES=-Wl,-z,undefs -DCORVANE_BUILD_TESTS=OFF -DCORVANE_BUILD_FUZZ=ON \
        -DCORVANE_FUZZ_SECONDS="${FUZZ_SECONDS:-60}" && cmake --build "$build" --parallel "$(nproc)"; }; then
        stepFailed "the fuzz programs could not be built"
        return
    fi
    runTests "$build" --label-regex fuzz
}

step_coverage()
{
    local build=$root/build/test-coverage
    local flags="-O1 -DNDEBUG -fprofile-instr-generate -fcoverage-mapping"
    rm -rf "$build/profiles"
    export LLVM_PROFILE_FILE=$build/profiles/%4m.profraw
    if ! { configure "$build" -DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_FLAGS="$flags" &&
        cmake --build "$build" --parallel "$(nproc)"; }; then
        stepFailed "the build that counts what runs failed"
        return
    fi
    runTests "$build" --label-exclude 'package|headers|valgrind'
    if "$root/scripts/coverage.sh" "$build"; then
        passed=$((passed + 1))
    else
        stepFailed "the tests do not reach enough of the library"
    fi
}

# Runs whole programs of tests and adds the counts in GoogleTest's own reports to the totals.
#   $1  the build folder
runTestPrograms()
{
    local build=$1 program report tests failures left total=0
    rm -f "$build"/gtest/*.xml
    ctest --test-dir "$build" --parallel 2 --output-on-failure --no-tests=error --label-regex gtest
    local result=$?
    while IFS= read -r program; do
        report=$build/gtest/$program.xml
        if [ ! -s "$report" ]; then
            stepFailed "$program left no report in $build" # it stopped half way
            total=1
            continue
        fi
        tests=$(sed -n 's/^<testsuites.* tests="\([0-9]*\)".*/\1/p' "$report")
        failures=$(sed -n 's/^<testsuites.* failures="\([0-9]*\)".*/\1/p' "$report")
        left=$(grep -c -e '<skipped' -e 'status="notrun"' "$report")
        passed=$((passed + tests - failures - left))
        failed=$((failed + failures))
        skipped=$((skipped + left))
        total=$((total + failures))
    done < <(ctest --test-dir "$build" --show-only --label-regex gtest | sed -n 's/^ *Test *#[0-9]*: //p')
    if [ $result -ne 0 ] && [ $total -eq 0 ]; then
        stepFailed "ctest failed in $build"
    fi
}

step_wine()
{
    local build=$root/build/test-windows
    if ! { "$root/scripts/install_packages.sh" wine && configure "$build" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw.cmake" -DCORVANE_BUILD_APPS=OFF &&
        cmake --build "$build" --parallel "$(nproc)"; }; then
        stepFailed "the build for Windows failed"
        return
    fi
    runTests "$build" --label-exclude gtest
    runTestPrograms "$build"
}

steps=("${allSteps[@]}")
case ${1:-} in
'') ;;
-h | --help)
    sed -n '2,14s/^# \{0,3\}//p' "${BASH_SOURCE[0]}"
    exit 0
    ;;
--quick)
    [ $# -eq 1 ] || usageError "--quick stands alone"
    steps=(release headers format)
    ;;
--coverage)
    [ $# -eq 1 ] || usageError "--coverage stands alone"
    steps=(coverage)
    ;;
--only)
    [ $# -eq 2 ] || usageError "--only needs one step"
    [[ " ${allSteps[*]} " == *" $2 "* ]] || usageError "there is no step '$2'"
    steps=("$2")
    ;;
*) usageError "unknown option '$1'" ;;
esac

if "$root/scripts/install_packages.sh" build apps test; then
    for step in "${steps[@]}"; do
        echo "== $step"
        "step_$step"
    done
else
    stepFailed "the packages for building and testing are not there"
fi

[ $((passed + failed)) -gt 0 ] || stepFailed "no test ran"
summary="$passed passed, $failed failed"
[ $skipped -eq 0 ] || summary="$summary, $skipped skipped"
echo "$summary"
[ $failed -eq 0 ]
