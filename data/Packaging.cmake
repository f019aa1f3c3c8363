# SPDX-FileCopyrightText: 2026 The Stowly developers
#
# SPDX-License-Identifier: MIT

# A Debian package through CPack: scripts/package builds it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME stowly)
set(CPACK_PACKAGE_VENDOR "The Stowly developers")
# Debian wants a mail address here and we have none to publish: the reserved top-level
# domain .invalid (RFC 6761) says so without pointing at anybody.
set(CPACK_PACKAGE_CONTACT "The Stowly developers <maintainers@stowly.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "minimize, hide, close or quit all other apps from the tray")
set(CPACK_PACKAGE_DESCRIPTION "Stowly puts an icon in the system tray whose panel acts on all other open
apps at once: minimize their windows, hide them, ask them to close or force
quit them. It lists the open apps with their state and memory use and acts
on one of them, and offers the same actions on the command line for
scripts and keyboard shortcuts.")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION x11)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# No Homepage field: the project has no public web address yet.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# dpkg-shlibdeps sees only linked libraries. The QML modules the views import, the
# Fusion style they pick and the X11 platform plugin are loaded at run time. The views'
# font, Inter (SIL Open Font License 1.1), is found through fontconfig by family name.
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "qml6-module-qtquick, qml6-module-qtquick-controls, qml6-module-qtquick-templates, qml6-module-qtquick-layouts, qml6-module-qtquick-window, qml6-module-qtqml, qml6-module-qtqml-models, qml6-module-qtqml-workerscript, libqt6svg6, fonts-inter")
# Directories the package shares with the system are owned by root with 0755.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
include(CPack)
