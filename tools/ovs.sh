#!/bin/sh
# Prints the prefix below which the OVSDB server and the client vtep-ctl are found:
#
#   PREFIX/usr/sbin/ovsdb-server  PREFIX/usr/bin/{ovsdb-tool,ovsdb-client,ovs-appctl,vtep-ctl}
#   PREFIX/usr/share/openvswitch/vtep.ovsschema
#
#   tools/ovs.sh [CACHE]        CACHE is build/ovs unless told
#
# Takes VGW_OVS_PREFIX, an installed one, or the cache; else unpacks the distribution's packages into the cache. Unpacked
# and not installed, because installing them starts servers that nobody asked for.
set -eu
PATH=$PATH:/usr/local/sbin:/usr/sbin:/sbin
top=$(cd "$(dirname "$0")/.." && pwd)
cache=${1:-$top/build/ovs}

is_prefix() {
    [ -x "$1/usr/sbin/ovsdb-server" ] && [ -x "$1/usr/bin/vtep-ctl" ] && [ -x "$1/usr/bin/ovsdb-tool" ] &&
        [ -r "$1/usr/share/openvswitch/vtep.ovsschema" ]
}

for prefix in "${VGW_OVS_PREFIX:-}" / "$cache/root"; do
    if [ -n "$prefix" ] && is_prefix "$prefix"; then
        echo "$prefix"
        exit 0
    fi
done

packages="openvswitch-common openvswitch-vtep"
echo "unpacking into $cache: $packages" >&2
mkdir -p "$cache"
scratch=$(mktemp -d "$cache/download.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
download() {
    apt-get download -q -o APT::Sandbox::User=root $packages >apt.log 2>&1
}
update() {
    if [ "$(id -u)" = 0 ]; then apt-get update -q; else sudo apt-get update -q; fi >>apt.log 2>&1
}
download || { update && download; } || {
    cat apt.log >&2
    exit 1
}
mkdir root
for package in *.deb; do
    dpkg-deb -x "$package" root
done
if ! is_prefix "$scratch/root"; then
    echo "the packages $packages hold no ovsdb-server, vtep-ctl or vtep.ovsschema" >&2
    exit 1
fi
# Moved whole, so that one who looks meanwhile sees all of it or nothing.
mv -T "$scratch/root" "$cache/root" 2>/dev/null || is_prefix "$cache/root"
echo "$cache/root"
