# SPDX-License-Identifier: MIT
# What every target of this project is compiled with, as one interface target, so that a project
# which adds this one as a subdirectory keeps its own settings.
add_library(screencapture_options INTERFACE)
target_compile_features(screencapture_options INTERFACE cxx_std_17)
target_compile_options(screencapture_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow)

if(SCREENCAPTURE_WERROR)
    target_compile_options(screencapture_options INTERFACE -Werror)
endif()

if(SCREENCAPTURE_SANITIZE)
    set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_options(screencapture_options INTERFACE ${sanitizers})
    target_link_options(screencapture_options INTERFACE ${sanitizers})
endif()

if(SCREENCAPTURE_COVERAGE)
    # The library does not export what counts.
    target_link_options(screencapture_options INTERFACE --coverage LINKER:--exclude-libs,libgcov.a)
endif()

if(SCREENCAPTURE_BUILD_FUZZERS)
    target_compile_options(screencapture_options INTERFACE -fsanitize=fuzzer-no-link)
    target_compile_definitions(screencapture_options INTERFACE _GLIBCXX_ASSERTIONS)
endif()
