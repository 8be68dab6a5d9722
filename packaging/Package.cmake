# The .deb. Built by scripts/package with the prefix /usr.
string(TIMESTAMP debian_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(revision 1)
if(newest_type STREQUAL "development")
    # Sorts before the release of the same version, so that the release replaces it.
    string(REPLACE "-" "" revision "0~${newest_date}")
endif()
set(maintainer "Orlune developers <noreply@orlune.app>")

set(documents ${CMAKE_INSTALL_DATADIR}/doc/orlune)
configure_file(deb/changelog.in debian-changelog @ONLY)
install_compressed(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${documents}/changelog)
install_compressed(${CMAKE_CURRENT_BINARY_DIR}/debian-changelog ${documents}/changelog.Debian)
install_data(doc/orlune deb/copyright)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orlune)
set(CPACK_PACKAGE_VENDOR "Orlune")
set(CPACK_STRIP_FILES ON)
# Installed for /usr but staged elsewhere: files that name the program get its final path.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${revision})
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${maintainer}")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "speak a prompt and have it typed at the cursor")
set(CPACK_PACKAGE_DESCRIPTION "\
Orlune turns what you say into text at the cursor of whatever program you
are working in. It streams the microphone live to Deepgram with your own
key, shows what it understood (goal, requirements, possible gap), and
pastes it when you agree.
.
It sits in the tray and listens while its shortcut is held, or from one
press to the next. A speech service on this machine recognises English
without a key and without a network.")

# dpkg-shlibdeps finds the libraries of the programs, but not these packages.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS ca-certificates)
string(JOIN ", " CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "default-dbus-session-bus | dbus-session-bus"
    "gnome-keyring | libkf6wallet-bin | libkf5wallet-bin | keepassxc"
    "pipewire-pulse | pulseaudio"
    fonts-inter
    xdg-utils
    pocketsphinx-en-us)
include(CPack)
