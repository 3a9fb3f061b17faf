#!/usr/bin/env bash
# Builds for Windows, in the windows root, what the module and its tests need there, from the suite's own sources.
#
#   make_libraries.sh FOLDER
#
#   FOLDER/qt        Qt with its TLS back-ends and the WebP plug-in, and Qt's files for CMake
#   FOLDER/openssl   for the tests: certificates, and a TLS back-end that can play the service
#   FOLDER/deflate   linked into the module
#   FOLDER/webp      linked into Qt's WebP plug-in
#   FOLDER/prefix    a fresh Windows user's home and registry for Wine
set -euo pipefail

readonly folder=$1
readonly machine=x86_64-w64-mingw32
readonly work=/var/tmp/windows-libraries
checkout=$(cd -- "${BASH_SOURCE[0]%/*}/../.." && pwd)
readonly own_toolchain=$checkout/cmake/windows-toolchain.cmake
# Or what is compiled with Qt's precompiled headers is never found in the compiler's cache.
export CCACHE_SLOPPINESS=pch_defines,time_macros

main() {
    mkdir -p "$work"
    build_deflate
    build_webp
    build_openssl
    build_qt
    build_image_formats
    gather_obs_headers
    make_prefix
}

# The source package's own tree, without the patches for Debian's own system.
unpack() { # NAME
    mkdir "$work/$1"
    tar --extract --strip-components 1 --directory "$work/$1" --file "$(echo /usr/src/"$1"_*.orig.tar.?z)"
}

with_cmake() { # NAME TOOLCHAIN OPTIONS...
    local name=$1 toolchain=$2
    shift 2
    cmake -S "$work/$name" -B "$work/$name-build" -G Ninja --toolchain "$toolchain" -DCMAKE_BUILD_TYPE=Release "$@"
    cmake --build "$work/$name-build"
    cmake --install "$work/$name-build"
    rm -rf "${work:?}/$name" "$work/$name-build"
}

build_deflate() {
    unpack libdeflate
    make -C "$work/libdeflate" CC="ccache $machine-gcc" AR="$machine-ar" DISABLE_ZLIB=1 libdeflatestatic.lib
    install -D --mode 644 --target-directory "$folder/deflate/include" "$work/libdeflate/libdeflate.h"
    install -D --mode 644 "$work/libdeflate/libdeflatestatic.lib" "$folder/deflate/lib/libdeflate.a"
    mkdir -p "$folder/deflate/lib/cmake/libdeflate"
    cat >"$folder/deflate/lib/cmake/libdeflate/libdeflate-config.cmake" <<'END'
get_filename_component(libdeflate_prefix "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)
add_library(libdeflate::libdeflate_static STATIC IMPORTED)
set_target_properties(
  libdeflate::libdeflate_static PROPERTIES IMPORTED_LOCATION "${libdeflate_prefix}/lib/libdeflate.a"
                                           INTERFACE_INCLUDE_DIRECTORIES "${libdeflate_prefix}/include")
END
    rm -rf "$work/libdeflate"
}

build_webp() {
    unpack libwebp
    with_cmake libwebp "$own_toolchain" -DCMAKE_INSTALL_PREFIX="$folder/webp" -DBUILD_SHARED_LIBS=OFF \
        -DWEBP_BUILD_{ANIM_UTILS,CWEBP,DWEBP,GIF2WEBP,IMG2WEBP,VWEBP,WEBPINFO,WEBPMUX,EXTRAS}=OFF
}

build_openssl() {
    unpack openssl
    (
        cd "$work/openssl"
        ./Configure mingw64 --cross-compile-prefix="$machine-" --prefix="$folder/openssl" --libdir=lib \
            no-apps no-docs no-engine no-legacy no-tests shared
        make -j "$(nproc)"
        make install_sw
    )
    rm -rf "$work/openssl"
}

# The packaged source lacks one third-party folder, hence no tablets; the platform plug-in wants OpenGL to compile.
build_qt() {
    unpack qt6-base
    with_cmake qt6-base "$own_toolchain" -DCMAKE_INSTALL_PREFIX="$folder/qt" -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR=/usr/lib/x86_64-linux-gnu/cmake \
        -DQT_GENERATE_SBOM=OFF -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF \
        -DFEATURE_tabletevent=OFF -DFEATURE_sql=OFF -DFEATURE_dbus=OFF -DFEATURE_vulkan=OFF -DFEATURE_printsupport=OFF \
        -DFEATURE_schannel=ON -DINPUT_openssl=runtime -DINPUT_opengl=desktop \
        -DFEATURE_system_zlib=OFF -DFEATURE_system_png=OFF -DFEATURE_system_jpeg=OFF -DFEATURE_pkg_config=OFF \
        -DOPENSSL_ROOT_DIR="$folder/openssl"
}

build_image_formats() {
    unpack qt6-imageformats
    with_cmake qt6-imageformats "$folder/qt/lib/cmake/Qt6/qt.toolchain.cmake" -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR=/usr/lib/x86_64-linux-gnu/cmake \
        -DCMAKE_PREFIX_PATH="$folder/webp" -DFEATURE_system_webp=ON -DINPUT_tiff=no -DINPUT_mng=no -DINPUT_jasper=no
}

# The same for every system, in a folder without the rest of this one's.
gather_obs_headers() {
    mkdir "$folder/obs-headers"
    cp -r /usr/include/obs /usr/include/simde "$folder/obs-headers"
}

# Without Wine's browser and .NET, which would ask to be downloaded.
make_prefix() {
    WINEPREFIX=$folder/prefix WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=' wineboot --init
    WINEPREFIX=$folder/prefix wineserver --wait
}

main
