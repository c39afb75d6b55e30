#!/usr/bin/env bash
# Compiles every public header on its own, without a warning, with every compiler that hosts use.
#   usage: check_headers.sh SOURCE_DIR
set -uo pipefail
include=$1/include
status=0

# A compiler that is missing is a failure where everything was to be installed.
compile()
{
    local description=$1 compiler=$2
    shift 2
    if ! command -v "$compiler" >/dev/null; then
        echo "$description: $compiler is not installed" >&2
        [ "${CI:-}" != true ] || status=1
        return
    fi
    local header standard count=0
    while IFS= read -r header; do
        for standard in c++17 c++20; do
            if ! "$compiler" "$@" -std=$standard -Wall -Wextra -Werror -I"$include" -fsyntax-only -x c++ - \
                <<<"#include <${header#"$include"/}>"; then
                echo "$description, $standard: ${header#"$include"/} does not compile on its own" >&2
                status=1
            fi
            count=$((count + 1))
        done
    done < <(find "$include" -name '*.h')
    echo "$description: $count compilations"
    [ $count -gt 0 ] || status=1
}

# The C interface, as strict C99.
compileAsC()
{
    local compiler=$1 header
    if ! command -v "$compiler" >/dev/null; then
        echo "$compiler is not installed" >&2
        [ "${CI:-}" != true ] || status=1
        return
    fi
    for header in "$include"/corvane/corvane_c*.h "$include"/corvane/Records.h; do
        if ! "$compiler" -std=c99 -pedantic -Wall -Wextra -Werror -I"$include" -fsyntax-only -x c - \
            <<<"#include <${header#"$include"/}>"; then
            echo "$compiler, C99: ${header#"$include"/} does not compile on its own" >&2
            status=1
        fi
    done
}

compile "g++" g++
compile "clang++" clang++
compile "clang++ for Windows" clang++ --target=x86_64-pc-windows-msvc -nostdlibinc
compileAsC gcc
compileAsC clang
exit $status
