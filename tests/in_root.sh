#!/bin/bash
# Runs a command in a clone of this checkout in a bare Debian root, where nothing is installed but
# what Debian's minimal base has. Needs root rights, debootstrap and this machine's own mirror.
# usage: in_root.sh SUITE COMMAND...      SUITE: bookworm (Debian 12), trixie (Debian 13), ...
# What BRING names below the checkout, for example build/packages, is brought along.
# The base is made once per suite below build/roots and copied for each run; the copy goes with it.
set -euo pipefail
unset CDPATH
suite=$1
shift
[ "$(id -u)" = 0 ] || { echo 'a bare root needs root rights' >&2 && exit 1; }
checkout=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
[[ $checkout != *[[:space:]]* ]] || { echo "debootstrap takes no path with a blank: check from a clone in another directory than '$checkout'" >&2 && exit 1; }
roots=$checkout/build/roots
base=$roots/$suite
root=$roots/run.$suite.$$

# The first entry of Debian's archive, in either form.
mirror() {
    sed -n 's/^URIs: *//p; s/^deb \(\[.*\] \)\{0,1\}\([^ ]*\) .*/\2/p' \
        /etc/apt/sources.list.d/*.sources /etc/apt/sources.list 2>/dev/null | sed q
}

make_base() {
    rm -rf "$base"
    mkdir -p "$roots"
    debootstrap --variant=minbase "$suite" "$base" "$(mirror)" >"$roots/$suite.log"
    cp -r /etc/apt/apt.conf.d/. "$base/etc/apt/apt.conf.d/"
    mkdir -p "$base/etc/ssl"
    cp -rL /etc/ssl/certs "$base/etc/ssl/" 2>/dev/null || true
    touch "$base.made"
}

# Nothing is removed while the machine's own directories are mounted there.
leave() {
    umount "$root/proc" "$root/dev" 2>/dev/null || true
    grep -q " $root/" /proc/mounts || rm -rf --one-file-system "$root"
}

[ -e "$base.made" ] || make_base
trap leave EXIT
cp -a "$base" "$root"
cp /etc/resolv.conf "$root/etc/"
mount -t proc proc "$root/proc"
mount --bind /dev "$root/dev"
mkdir -p "$root/home/a b"
git clone -q "$checkout" "$root/home/a b/clone"
if [ -n "${BRING:-}" ]; then
    mkdir -p "$root/home/a b/clone/$(dirname "$BRING")"
    cp -r "$checkout/$BRING" "$root/home/a b/clone/$BRING"
fi
mapfile -t proxies < <(env | grep -i '^[a-z]*_proxy=' || true)
chroot "$root" /usr/bin/env -i HOME=/home PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 \
    "${proxies[@]}" /bin/sh -c 'cd "/home/a b/clone" && exec "$@"' sh "$@" </dev/null
