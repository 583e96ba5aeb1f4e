# SPDX-License-Identifier: MIT
# Sourced by the test beside it. How each command and each block of the documents is checked, as far
# as a test can: what is named here is run, or what is said beside it is done instead.

# check_command COMMAND: its comment cut off, and its continuation lines joined.
check_command() {
    case $1 in
        ./run) runs_on_a_bare_machine ;;
        # The suites themselves.
        ./test | './test all') is_suite dev && is_suite asan && is_suite dev-qt6 ;;
        # Too long to be run here; that they can be read, and understand what they are given.
        'tools/fuzz 600') bash -n tools/fuzz ;;
        'ctest --preset '*' -L '*)
            is_suite "$(cut -d ' ' -f 3 <<<"$1")" && grep -rq "label_long(.* ${1##* })" tests/hardening ;;
        'tests/desktops/table build/dev') bash -n tests/desktops/table ;;
        tools/mutate*) run "$1 --list" ;;
        ./bench*) ./bench --help >/dev/null && has_options bench "$1" ;;
        tools/install-packages | 'tools/install-packages packaging' | 'tools/install-packages qt6' | 'tools/install-packages memory') run "$1" ;;
        './test NAME') is_suite dev-qt6 && is_suite asan-qt6 && is_suite dev-clang && is_suite release ;;
        './test asan') is_suite asan ;;
        # What ./run and ./test leave.
        build/release) [ -x build/release/host/capture-host ] ;;
        build/dev) is_suite dev ;;

        # ./run has built build/release; the other builds are planned, but not done again.
        'cmake --preset '*BENCHMARKS=ON) has_benchmark_library || return 0; run "$1" ;;
        'cmake --build --preset release --target bench'*) has_benchmark_library || return 0; run "$1 -- -n" ;;
        'build/release/benchmarks/bench_'*) has_benchmark_library || return 0; is_built_as "${1#build/release/}" ;;
        'cmake --build --preset '*) run "$1 -- -n" ;;
        'cmake --preset '*) run "$1" ;;
        'ctest --preset dev') run "$1 -N" ;;
        'ctest --preset dev -R '*) run "$1 -N | tee listed" && grep -q 'Total Tests: [1-9]' listed ;;
        # The packages are made, installed and removed by a test of their own, in the same way.
        'cpack --config build/package/CPackConfig.cmake -B build/packages')
            [ -s build/package/CPackConfig.cmake ] && grep -q '^cpack --config ' tests/install/packages ;;
        'sudo apt install ./build/packages/*.deb') grep -q 'install \./\*\.deb' tests/install/packages ;;
        build/dev/tests) [ -d "$build/tests" ] ;;
        'tools/with-display '*) run "${1//build\/dev/$build}" ;;

        # The library itself, then programs that use it, some of which have its sources in a folder.
        'cmake -S . -B build'* | 'cmake --build build-qt6' | 'cmake --install build'*) run_in_place "$1" ;;
        'cmake --build build') if [ -L "$place/screencapture" ]; then build_beside_sources; else run_in_place "$1"; fi ;;
        'export '*) eval "$1" ;;
        'g++ -std=c++17 -fPIC main.cpp '* | make) run_in_place "$1" ;;
        # Where several versions of Qt are installed, this one.
        qmake) QT_SELECT=5 run_in_place "$1" ;;
        build/yourapp | ./yourapp) takes_capture "$1" ;;

        'doxygen docs/Doxyfile') run "$1" && [ -s build/api/html/index.html ] ;;
        build/api/html/index.html) [ -s "$1" ] ;;
        'lupdate -locations none '*) PATH=$PATH:/usr/lib/qt5/bin run "$1" ;;
        'capture-host --once --output shot.png' | 'capture-host --once --delay 2 --output shot.png') takes_capture $1 ;;
        'capture-host --help') run "$1" ;;
        'capture-host --once') capture-host --help | grep -- --once ;;
        *) return 1 ;;
    esac
}

# check_block DOCUMENT LANGUAGE FILE
check_block() {
    case "$1 $2 $(head -1 "$3")" in
        # A whole program, which the ways to link it are tried with.
        'README.md cpp #include <QApplication>') cp "$3" "$scratch/main.cpp" ;;
        'README.md cmake '*) route "$3" CMakeLists.txt ;;
        'README.md cpp hide();') stands_in docs/embedding.md "$3" ;;
        'docs/installing.md cmake '*)
            if grep -q find_package "$3"; then route "$3" CMakeLists.txt && builds_and_runs
            else route_from_sources "$3"; fi ;;
        'docs/installing.md qmake '*) route "$3" yourapp.pro ;;

        'docs/embedding.md cpp #include <QApplication>') mkdir -p "$scratch/embedding" && cp "$3" "$scratch/embedding/main.cpp" ;;
        'docs/embedding.md cmake '*) route "$3" CMakeLists.txt "$scratch/embedding/main.cpp" && builds_and_runs --window ;;
        'docs/embedding.md cpp #include <QDir>') statements_hold "$3" 'QDir(directory).exists()' ;;
        'docs/embedding.md ini [pen_color]') settings_file_is "$3" ;;
        'docs/embedding.md cpp #include <QCoreApplication>') speaks_french "$3" ;;
        'docs/base-library.md cpp #include <myfs.h>') base_fragment_runs "$3" ;;
        'docs/using.md text screenCaptureWnd() '*) names_the_states "$3" ;;

        'ScreenCaptureWnd.h cpp '*) stands_in docs/embedding.md "$3" ;;
        'ScreenCaptureTool.h cpp '*) statements_hold "$3" 'QDir(dir).exists()' ScreenCaptureTool.h QDir QStandardPaths ;;
        'code_convert.h cpp '*)
            statements_hold "$3" '(wide.size() == 4 && (gbk.empty() || gbk == "caf\xA8\xA6"))' code_convert.h ;;
        'myfs.h cpp myfs::path ini'*) statements_hold "$3" true myfs.h ;;
        'myfs.h cpp myfs::filestream log'*) log_is_written "$3" ;;
        *) return 1 ;;
    esac
}
