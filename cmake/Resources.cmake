# SPDX-License-Identifier: AGPL-3.0-or-later
# Installs the factory presets into the VST3 bundle's Contents/Resources/Presets, from where the plug-in
# copies them into an empty preset folder on first use. The folder is rebuilt at every build of the
# bundle (a few kilobytes), so a removed or renamed preset never lingers in it.
set(ONDRIVEL_BUNDLE_PRESETS
  "${CMAKE_BINARY_DIR}/ondrivel_artefacts/$<CONFIG>/VST3/ondrivel.vst3/Contents/Resources/Presets")

add_custom_target(ondrivel_factory_presets
  COMMAND ${CMAKE_COMMAND} -E rm -rf "${ONDRIVEL_BUNDLE_PRESETS}"
  COMMAND ${CMAKE_COMMAND} -E make_directory "${ONDRIVEL_BUNDLE_PRESETS}"
  COMMAND ${CMAKE_COMMAND} -E copy_directory "${CMAKE_SOURCE_DIR}/resources/presets" "${ONDRIVEL_BUNDLE_PRESETS}"
  COMMENT "Installing the factory presets into the VST3 bundle"
  VERBATIM)

if(TARGET ondrivel_VST3)
  add_dependencies(ondrivel_VST3 ondrivel_factory_presets)
endif()
