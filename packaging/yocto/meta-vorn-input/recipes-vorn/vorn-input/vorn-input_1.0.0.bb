SUMMARY = "Input library of an audio player"
DESCRIPTION = "Turns evdev records of keys and switches into logical commands on one bus"
# The owner has chosen no licence.
LICENSE = "CLOSED"

DEPENDS = "log4cplus qtbase"

# The layer is part of the sources.
inherit cmake_qt5 externalsrc pkgconfig
EXTERNALSRC = "${@os.path.realpath(d.getVar('THISDIR') + '/../../../../..')}"
EXTERNALSRC_BUILD = "${WORKDIR}/build"

# The distribution's own flags harden.
EXTRA_OECMAKE = " \
    -DVORN_INPUT_BUILD_EXAMPLES=OFF \
    -DVORN_INPUT_BUILD_TESTS=OFF \
    -DVORN_INPUT_HARDENING=OFF \
    -DVORN_INPUT_INSTALL=ON \
"

# The maker's libvorn_api.so in the sysroot, and the recipe that it comes from; without it, a stand-in
# is built that only lets programs run.
VORN_INPUT_API_LIBRARY ?= ""
VORN_INPUT_API_RECIPE ?= ""
DEPENDS += "${VORN_INPUT_API_RECIPE}"
EXTRA_OECMAKE += "${@'-DVORN_INPUT_API_LIBRARY=' + d.getVar('VORN_INPUT_API_LIBRARY') if d.getVar('VORN_INPUT_API_LIBRARY') else ''}"

# The simulator works with glibc only. The tools need all three.
PACKAGECONFIG ??= "profile"
PACKAGECONFIG[profile] = "-DVORN_INPUT_BUILD_PROFILE=ON,-DVORN_INPUT_BUILD_PROFILE=OFF,libevdev tomlplusplus"
PACKAGECONFIG[sim] = "-DVORN_INPUT_BUILD_SIM=ON,-DVORN_INPUT_BUILD_SIM=OFF"
PACKAGECONFIG[tools] = "-DVORN_INPUT_BUILD_TOOLS=ON,-DVORN_INPUT_BUILD_TOOLS=OFF,cli11 libevdev tomlplusplus zlib"

PACKAGES =+ "${PN}-api ${PN}-tools"

FILES:${PN} = "${libdir}/libvorn_input.so.* ${libdir}/libvorn_profile.so.*"
FILES:${PN}-api = "${libdir}/libvorn_api.so.*"
FILES:${PN}-dev = " \
    ${includedir}/vorn \
    ${libdir}/cmake/vorn_input \
    ${libdir}/lib*.so \
    ${libdir}/pkgconfig \
"
FILES:${PN}-staticdev = "${libdir}/lib*.a"
FILES:${PN}-tools = " \
    ${bindir}/vorn-input \
    ${datadir}/bash-completion \
    ${datadir}/vorn-input \
    ${datadir}/zsh \
    ${libdir}/vorn-input \
    ${mandir}/man1/vorn-input.1 \
"

# So that a package of the maker's takes its place.
RPROVIDES:${PN}-api = "vorn-api-abi-1"
RCONFLICTS:${PN}-api = "vorn-api-abi-1"
RREPLACES:${PN}-api = "vorn-api-abi-1"
