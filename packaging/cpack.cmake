# The Debian package, built by scripts/package (cpack -G DEB in the build
# folder): wavetrace-pro_<version>_<arch>.deb with what `cmake --install`
# installs under /usr, its Depends found by dpkg-shlibdeps.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME wavetrace-pro)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(WAVETRACE_MAINTAINER "Wavetrace Pro developers" CACHE STRING "The package's Maintainer field")
set(CPACK_PACKAGE_CONTACT "${WAVETRACE_MAINTAINER}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SECTION comm)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "serial-port terminal and data acquisition
Wavetrace Pro finds the machine's serial ports (USB adapters by name,
Bluetooth and GPS ports, stable COM numbers), opens one with a chosen line
setting and shows what arrives as text or as numbers in a radix. It sends
typed strings and files, records to log files, relays received data to a
TCP or UDP server and runs unattended from scripts; a port scan finds a
device's line setting, and a built-in simulated device gives live data
without hardware.
.
This package holds wavetrace, the Qt window laid out for small touch panels
and scaled up on desktops, and wavetrace-cli, the same program without a
window for terminals, SSH sessions and scripts.")
# Prints how to get at the serial ports; it never changes groups itself.
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/postinst)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
