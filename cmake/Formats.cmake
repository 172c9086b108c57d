# SPDX-License-Identifier: AGPL-3.0-or-later
# The LV2 bundle and the standalone program beside the VST3. Both find their factory presets and
# background pictures in a "Resources" folder beside their binary (see core/BundleResources), filled
# here before they are linked, as the VST3 bundle's is.
# Debian's copy of the framework defines a fallback URI (the bare product name, which the LV2 wrapper
# rejects) before the generated JuceLV2Defines.h is read; a definition on the command line wins.
target_compile_definitions(ondrivel PUBLIC JucePlugin_LV2URI="${ONDRIVEL_LV2_URI}")

set(ONDRIVEL_ARTEFACTS "${CMAKE_BINARY_DIR}/ondrivel_artefacts/$<CONFIG>")
foreach(format LV2 Standalone)
  if(NOT TARGET ondrivel_${format})
    continue()
  endif()
  if(format STREQUAL "LV2")
    set(resources "${ONDRIVEL_ARTEFACTS}/LV2/ondrivel.lv2/Resources")
  else()
    set(resources "${ONDRIVEL_ARTEFACTS}/Standalone/Resources")
  endif()
  add_custom_target(ondrivel_${format}_resources
    COMMAND ${CMAKE_COMMAND} -E rm -rf "${resources}"
    COMMAND ${CMAKE_COMMAND} -E make_directory "${resources}/Presets"
    COMMAND ${CMAKE_COMMAND} -E copy_directory "${CMAKE_SOURCE_DIR}/resources/presets" "${resources}/Presets"
    COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_SOURCE_DIR}/resources/art/picture_key.png
            ${CMAKE_SOURCE_DIR}/resources/art/plain_key.png "${resources}/"
    COMMENT "Installing the factory presets and pictures for the ${format}"
    VERBATIM)
  add_dependencies(ondrivel_${format} ondrivel_${format}_resources)
endforeach()

if(TARGET ondrivel_LV2)
  add_custom_command(TARGET ondrivel_LV2 POST_BUILD
    COMMAND ${CMAKE_COMMAND} -DBUNDLE=$<TARGET_FILE_DIR:ondrivel_LV2> -P ${CMAKE_SOURCE_DIR}/cmake/Lv2Turtle.cmake
    VERBATIM)
endif()

# The program's own application: it refuses to start without a display and tells the user when no
# audio device could be opened.
if(TARGET ondrivel_Standalone)
  target_sources(ondrivel_Standalone PRIVATE
    ${CMAKE_SOURCE_DIR}/standalone/StandaloneApp.cpp ${CMAKE_SOURCE_DIR}/standalone/StandaloneWindow.cpp)
  target_compile_definitions(ondrivel_Standalone PRIVATE JUCE_USE_CUSTOM_PLUGIN_STANDALONE_APP=1)
endif()
