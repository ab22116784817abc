# What the Debian package says of itself; packaging/build-deb makes it. The libraries that the programs are linked with are
# found by dpkg-shlibdeps; what they call by name is listed here.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kestrum)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${KESTRUM_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "lecture recorder for LibreOffice Impress")
set(CPACK_PACKAGE_DESCRIPTION
    "Kestrum records a lecture while it is given: slides, screen, pointer and voice.
Every slide change becomes an entry of an index at which a player can start.
The result is one file beside the presentation that any video player opens;
published, it is a folder with a web page that works without a server.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
                                                WORLD_EXECUTE)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "ffmpeg, libreoffice-impress, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "pulseaudio | pipewire-pulse, zenity | kdialog | libnotify-bin")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "pipewire, xdg-desktop-portal, xwayland") # what a Wayland session needs
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/packaging/debian/postinst")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

include(CPack)
