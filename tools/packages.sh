#!/bin/sh
# Sees to it that the distribution's packages for building (and, with "test", for testing; with "tidy", for tests/soak/tidy)
# are there.
#
#   tools/packages.sh [build|test|tidy]
#
# Says nothing when all are there; otherwise one line, and apt-get, as root or through sudo.
set -eu
PATH=$PATH:/usr/local/sbin:/usr/sbin:/sbin

wanted="g++ cmake ninja-build pkgconf python3-minimal python3
 libasio-dev libsimdjson-dev nlohmann-json3-dev libcli11-dev libspdlog-dev libssl-dev
 libssl3 libcap-ng0 libnuma1 libxdp1 libbpf1 libunbound8"
if [ "${1:-build}" = test ]; then
    wanted="$wanted libgtest-dev libgmock-dev clang-format-14 clang-14 libclang-rt-14-dev lld-14 llvm-14 openssl zsh"
elif [ "${1:-build}" = tidy ]; then
    wanted="$wanted clang-14 clang-tidy-14"
fi

is_installed() {
    dpkg-query -W -f='${db:Status-Abbrev}' "$1" 2>/dev/null | grep -q '^ii'
}

missing=
for package in $wanted; do
    is_installed "$package" || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

echo "installing:$missing"
if [ "$(id -u)" = 0 ]; then
    as_root=
elif command -v sudo >/dev/null 2>&1; then
    as_root=sudo
else
    echo "needs root, or sudo: apt-get install --no-install-recommends$missing" >&2
    exit 1
fi
log=$(mktemp)
trap 'rm -f "$log"' EXIT
install() {
    $as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -q --no-install-recommends $missing >"$log" 2>&1 </dev/null
}
# The lists of a fresh machine are empty or old.
install || { $as_root apt-get update -q >/dev/null 2>&1 || true; install; } || {
    cat "$log" >&2
    exit 1
}
