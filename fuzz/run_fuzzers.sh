#!/bin/sh
# Runs every fuzz target of a build directory for SECONDS seconds each and
# fails when any of them finds a crash, a leak or a sanitizer error.
# Usage: fuzz/run_fuzzers.sh BUILD_DIR SECONDS
set -eu
fail() { echo "$1" >&2; exit 2; }
[ "$#" -eq 2 ] || fail "usage: $0 BUILD_DIR SECONDS"
build_dir=$1 seconds=$2
targets=$(find "$build_dir/fuzz" -maxdepth 1 -type f -name '*_fuzz' -perm -u+x 2>/dev/null | sort)
[ -n "$targets" ] || fail "no fuzz targets in $build_dir/fuzz (configure with clang and -DWAVETRACE_FUZZ=ON)"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
for target in $targets; do
  name=$(basename "$target")
  mkdir -p "$work/$name" "$build_dir/fuzz/artifacts"
  echo "== $name for ${seconds}s"
  if "$target" -max_total_time="$seconds" -timeout=60 -rss_limit_mb=4096 \
      -artifact_prefix="$build_dir/fuzz/artifacts/$name-" "$work/$name" >"$work/$name.log" 2>&1; then
    tail -n 1 "$work/$name.log"
  else
    echo "!! $name failed; log:" >&2
    tail -n 40 "$work/$name.log" >&2
    failed=1
  fi
done
exit "$failed"
