#!/bin/bash
# In a bare Debian root, as root: installs the packages of build/packages, builds and reports examples/hello
# with them, as lltcov run and as CMake package, and removes them: what is left is what was there before.
# usage: in_bare_root.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
clone=$PWD

files() { find / -xdev \( -path /proc -o -path "$clone" -o -path /home -o -path /tmp -o -path /var \) -prune -o -print | sort; }
# hits: the lines of hello that ran, and all
hits() { lltcov status | awk '/^total/ { print $4 }'; }
expect() { [ "$2" = "$3" ] || { echo "FAILED $1: '$2' expected, '$3' found" >&2 && exit 1; }; }

export DEBIAN_FRONTEND=noninteractive
apt-get update
apt-get install -y --no-install-recommends g++ make cmake pkgconf lcov
files >/tmp/before
apt-get install -y --no-install-recommends ./build/packages/lltwrapper_*.deb ./build/packages/lltwrapper-dev_*.deb

cp -r examples/hello /tmp/hello && cd /tmp/hello
lltcov run -- make
make test
expect 'lines by lltcov run' 167/188 "$(hits)"
lltcov report
[ -s .lltcov/html/index.html ]
lltcov doctor

lltcov clean --all
cmake -S . -B out -DCMAKE_PROJECT_INCLUDE=/usr/share/cmake/lltwrapper/lltwrapper-project.cmake
cmake --build out
(cd out && ctest)
expect 'lines by CMake' 167/188 "$(hits)"
expect 'the runtime' "-I/usr/share/pkgconfig/../../include" "$(pkg-config --cflags lltcov_rt | sed 's/ *$//')"
man --version >/dev/null 2>&1 || zcat /usr/share/man/man1/lltcov.1.gz | grep -q '^\.Nm lltcov'

cd "$clone"
apt-get purge -y lltwrapper lltwrapper-dev
files >/tmp/after
diff /tmp/before /tmp/after
echo 'installed, used and removed'
