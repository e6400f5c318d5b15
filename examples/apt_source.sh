#!/bin/bash
# Fetches and unpacks the source of a Debian package without touching the system's apt: package
# lists, download and configuration live in DIR. The sources are the machine's own entries for
# Debian's archive, turned from "deb" into "deb-src".
# usage: apt_source.sh PACKAGE DIR      (the unpacked source is then DIR/source)
set -euo pipefail
unset CDPATH

package=$1
mkdir -p "$2"
dir=$(cd "$2" && pwd)

die() {
    echo "apt_source: $*" >&2
    exit 1
}

# One-line entries: deb [options] URI suite component...
list_entries() {
    local uri='[^[:space:]]*(debian[.]org/[^[:space:]]*|/debian(-security)?([.]list)?/?)'
    local start='^[[:space:]]*deb([[:space:]]+\[[^]]*\])?[[:space:]]+'
    local main='([^#]*[[:space:]])?main([[:space:]].*)?$'
    sed -nE "s%$start($uri)[[:space:]]+([^[:space:]]+)[[:space:]]+$main%deb-src\1 \2 \6 main%p" "$@"
}

# Paragraphs of fields: Types, URIs, Suites, Components, Signed-By, ...
deb822_entries() {
    awk -v RS= -v ORS='\n\n' '
        /(^|\n)Enabled:[ \t]*(no|false|off|0)/ { next }
        !/(^|\n)Types:([^\n]*[ \t])?deb([ \t\n]|$)/ { next }
        !/(^|\n)Components:([^\n]*[ \t])?main([ \t\n]|$)/ { next }
        /(^|\n)URIs:[^\n]*(debian[.]org\/|\/debian(-security)?([.]list)?\/?([ \t\n]|$))/ {
            sub(/(^|\n)Types:[^\n]*/, "\nTypes: deb-src")
            sub(/(^|\n)Components:[^\n]*/, "\nComponents: main")
            print
        }' "$@"
}

# The machine may use either form, or both.
write_sources() {
    rm -rf "$dir/sources"
    mkdir -p "$dir/sources"
    local etc=/etc/apt/sources.list
    list_entries "$etc" "$etc.d"/*.list 2>/dev/null >"$dir/sources/debian.list" || true
    deb822_entries "$etc.d"/*.sources 2>/dev/null >"$dir/sources/debian.sources" || true
    cat "$dir"/sources/* | grep -q deb-src || die "this machine's apt has no entry for Debian's archive"
}

# Read after the system's configuration. The hooks are cleared, as they act on the system's apt.
write_configuration() {
    mkdir -p "$dir"/{state/lists,cache/archives}/partial
    cat >"$dir/apt.conf" <<END
#clear APT::Update::Pre-Invoke;
#clear APT::Update::Post-Invoke;
#clear APT::Update::Post-Invoke-Success;
APT::Sandbox::User "root";
Acquire::http::Timeout "20";
Dir::Etc::sourcelist "/dev/null";
Dir::Etc::sourceparts "$dir/sources";
Dir::State "$dir/state";
Dir::State::lists "$dir/state/lists";
Dir::Cache "$dir/cache";
END
}

# An update that fails for one of several sources may still have brought what is needed.
download() {
    command -v apt-get >/dev/null || die "this machine has no apt"
    write_sources
    write_configuration
    rm -rf "$dir/download"
    mkdir "$dir/download"
    cd "$dir/download"
    apt-get -c "$dir/apt.conf" update || true
    apt-get -c "$dir/apt.conf" source --download-only "$package" ||
        die "apt could not fetch the source package of $package"
}

unpack() {
    rm -rf "$dir/source"
    dpkg-source -x "$dir"/download/*.dsc "$dir/source"
}

# What an earlier run fetched is used again, so that a second run needs no network.
if ! { [ -d "$dir/download" ] && unpack; }; then
    download
    unpack
fi
