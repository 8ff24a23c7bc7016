#!/usr/bin/env bash
# liborbel.so exports its two C entry points and nothing else.
set -euo pipefail
lib=$1
actual=$(nm -D --defined-only "$lib" | awk '{print $NF}' | sort)
expected=$(printf '%s\n' orbel_CreateObject orbel_GetInfo)
if [ "$actual" != "$expected" ]; then
  echo "liborbel.so exports differ from the two entry points:"
  diff <(echo "$expected") <(echo "$actual") || true
  exit 1
fi
