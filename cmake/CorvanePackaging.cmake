# `cpack -G DEB` in the build directory makes corvane_<version>_<arch>.deb from what
# `cmake --install` puts in place, installed under /usr.
set(CPACK_PACKAGE_NAME corvane)
set(CPACK_PACKAGE_VENDOR "The Corvane developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Move and click the mouse pointer with hot keys")
set(CPACK_PACKAGE_HOMEPAGE_URL https://corvane.org/)
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The Corvane developers <maintainers@corvane.org>")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# Below the summary line, which CPack puts first.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Corvane drives the mouse pointer from the keyboard. Each action of its list ties
a system-wide hot key to one pointer action: move a few pixels in one of eight
directions (accelerating while the key is held), jump to the centre, an edge or
a corner of the monitor or to the next monitor, narrow down a screen section
with a full-screen overlay, click or right-click. The actions are also offered
in the menu of a tray icon. Corvane needs an X11 session.")
# The libraries come from dpkg-shlibdeps; what Qt loads as plugins it cannot see: the xcb
# platform plugin, and the SVG plugins that draw the icons.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, libqt6svg6")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-translations-l10n")

include(CPack)
