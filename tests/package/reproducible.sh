#!/bin/sh
# reproducible.sh [SOURCES]: builds the packages twice and compares them byte for byte. The second build is
# in another folder, at another date, under another time zone, locale, umask, home and search path, with a
# variable more in its environment, from files that others may write; and, as root, by another user. The
# exit status is 1 when the packages differ, and diffoscope tells in what.
# Not varied: the order of directories (needs FUSE) and the name of the host (needs a namespace), which
# containers lack; the version of the kernel, which reprotest draws at random; the number of processors,
# since the first build would take twice as long on one of two. reprotest runs both builds without
# randomized addresses, which a container has to allow (setarch -R).
set -eu
sources=${1-$(cd "$(dirname "$0")/../.." && pwd)}
work=$(mktemp -d "${TMPDIR:-/tmp}/kelpix-reproducible.XXXXXX")
trap 'rm -rf "$work"' EXIT
chmod a+rx "$work"

# Sorts letters in an order of its own and has a comma in its numbers.
mkdir "$work/locales"
localedef -i et_EE -f UTF-8 "$work/locales/et_EE.UTF-8"
export LOCPATH="$work/locales"

# What a clone or an archive holds, and no build folder.
mkdir "$work/sources"
tar -C "$sources" --exclude=./build --exclude=./.git -c . | tar -C "$work/sources" -x --no-same-owner

# The commands of README.md. A compiler cache would bring the objects of the first build to the second.
cat >"$work/sources/make-packages" <<'END'
set -e
export CCACHE_DISABLE=1
cmake --preset release >cmake.log || { cat cmake.log; exit 1; }
cmake --build --preset release
cd build/release
cpack
END
# reprotest itself changes the user by a way of calling sudo that sudo no longer has.
build='if [ "$(umask)" = 0022 ]; then
    sh make-packages
else
    chmod -R g+w .
    if [ "$(id -u)" -eq 0 ]; then
        chown -R nobody .
        setpriv --reuid nobody --regid nogroup --clear-groups sh make-packages
    else
        sh make-packages
    fi
fi'

reprotest --min-cpus 9999 \
    --variations environment,build_path,time.faketimes=+400days,home,locales,exec_path,timezone,umask \
    --source-root "$work/sources" "$build" 'build/release/packages/*.deb'
