#!/bin/sh
# valgrind.sh BUILD: runs the tests of the readers, the inputs of the fuzzers, and a hundred frames of
# the scene under valgrind. It sees what the sanitizers do not: the system's libraries reading past our buffers, and
# decisions on memory that was never written.
# BUILD is a build folder with tests, made without sanitizers. The exit status is 1 when something
# was found, which is printed. What the system's own libraries do to themselves is listed, with
# reasons, in tests/support/valgrind.supp.
set -eu
here=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "$1" && pwd)
log=$(mktemp -d)
trap 'rm -rf "$log"' EXIT
export ALSOFT_DRIVERS=null LIBGL_ALWAYS_SOFTWARE=1

# Death tests are left out, since valgrind would follow each of their hundreds of processes, and what
# repeats the same at length. The fuzzers' inputs reach the same ends in one process.
tests="
    src-image/BasicImageTest
    src-image/ImageJPEGTest
    src-image/ImageJPEGWriteTest
    src-image/ImagePNGTest
    src-sound/OggDecodingTest
    src-cluster/TileConfigTest
    src-cluster/TileDescriptionTest
    kelpix/MoCapTest
    tools/osc/OscPacketTest
    tools/osc/OscRequestTest
    src-core/ObjAPI/ObjTextTest
    src-core/ObjAPI/ObjReaderTest
    src-core/ObjAPI/ObjLibraryTest
    src-core/ObjAPI/ObjHazardTest
    src-core/ObjAPI/ObjMapTest
    src-core/TextureTest
    src-core/ShaderTest
    src-core/FreeTypeTest
    src-core/FreeTypePrintTest
    kelpix/SceneFramesTest"

status=0
# look NAME COMMAND...
look() {
    echo "== valgrind $1"
    shift
    if ! "$here/../cmake/with-display.sh" valgrind --quiet --error-exitcode=9 --num-callers=40 \
        --suppressions="$here/support/valgrind.supp" "$@" >"$log/output" 2>&1; then
        cat "$log/output"
        status=1
    fi
}

for test in $tests; do
    look "$test" "$build/tests/$test" \
        --gtest_filter='-*DeathTest*:*Random*:*WithoutBound' --gtest_brief=1
done
for inputs in "$here"/../fuzz/corpus/*; do
    target=fuzz-$(basename "$inputs")
    look "$target" "$build/fuzz/$target" "$inputs"
done
exit "$status"
