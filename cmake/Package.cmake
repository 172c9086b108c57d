# SPDX-License-Identifier: AGPL-3.0-or-later
# `make package`: a Debian package with the VST3 in /usr/lib/vst3, the LV2 in /usr/lib/lv2 and the
# program in /usr/bin, each with its factory presets and pictures. The program finds its own in
# /usr/share/ondrivel (core/BundleResources). Dependencies come from dpkg-shlibdeps.
set(ONDRIVEL_STANDALONE_RESOURCES "${CMAKE_BINARY_DIR}/ondrivel_artefacts/${CMAKE_BUILD_TYPE}/Standalone/Resources")
install(DIRECTORY "${ONDRIVEL_BUNDLE}" DESTINATION lib/vst3 USE_SOURCE_PERMISSIONS)
install(DIRECTORY "${ONDRIVEL_LV2_BUNDLE}" DESTINATION lib/lv2 USE_SOURCE_PERMISSIONS)
install(PROGRAMS "${ONDRIVEL_PROGRAM}" DESTINATION bin)
install(DIRECTORY "${ONDRIVEL_STANDALONE_RESOURCES}/" DESTINATION share/ondrivel)
install(FILES "${CMAKE_SOURCE_DIR}/resources/desktop/ondrivel.desktop" DESTINATION share/applications)
# The icon is the art tool's knob face.
install(FILES "${CMAKE_SOURCE_DIR}/resources/art/knob_face.png" DESTINATION share/pixmaps RENAME ondrivel.png)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ondrivel)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_VENDOR "Velkaro")
set(CPACK_PACKAGE_CONTACT "Velkaro <https://ondrivel.example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "polyphonic phase-modulation synthesiser (VST3, LV2, standalone)")
set(CPACK_PACKAGE_DESCRIPTION "Eight two-operator phase-modulation voices feed an octaver, flanger, block\n delay, tilt equaliser and reverb, with a library of presets, as a VST3 and\n an LV2 instrument and as a program of its own playing through ALSA or JACK.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://ondrivel.example.org")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_STRIP_FILES ON)
include(CPack)
