# The Debian package: scripts/package makes it. It holds what Install.cmake installs.

set(CPACK_GENERATOR DEB)
# Without it quotation marks are lost.
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_NAME sela-share)
set(CPACK_PACKAGE_VENDOR "The developers of Sela Share")
set(CPACK_PACKAGE_CONTACT "The developers of Sela Share <developers@sela.xyz>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "add photos, videos and audio to a private vault")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Hand photos, videos and audio to your private vault from any application: a
small card shows what you are adding, you unlock the vault, pick an album and
press Add.
.
This package holds the card, \"Add to Sela\" for the menus of file managers and
desktops, and sela-vault, the companion of the vault's main application.")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
# A package built on a later release replaces one built on an earlier release, as the libraries do.
file(STRINGS /etc/os-release release REGEX "^VERSION_ID=")
string(REGEX REPLACE "[^0-9.]" "" release "${release}")
set(CPACK_DEBIAN_PACKAGE_VERSION ${PROJECT_VERSION}+deb${release})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-roboto-unhinted, fonts-noto-core, qt6-wayland, python3:any")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "fonts-noto-cjk, python3-nautilus")
set(CPACK_STRIP_FILES ON)

# Files are installed for the prefix that they will have, which the service file of the message bus contains.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

include(CPack)
