# SPDX-License-Identifier: AGPL-3.0-or-later
# The editor's embedded art and font, the two background pictures in the bundle, and the two
# editor tools: the art generator (run by hand) and the snapshot writer.
set(ONDRIVEL_PANEL_FONT "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf" CACHE FILEPATH
    "TrueType font embedded as the panel's typeface (fonts-dejavu-core)")
if(NOT EXISTS "${ONDRIVEL_PANEL_FONT}")
  message(FATAL_ERROR "Panel font ${ONDRIVEL_PANEL_FONT} not found: run tools/setup.sh")
endif()
# A fixed name, so that the embedded symbol does not depend on the font's file name.
configure_file("${ONDRIVEL_PANEL_FONT}" "${CMAKE_BINARY_DIR}/editor-data/PanelFont.ttf" COPYONLY)

set(ONDRIVEL_ART ${CMAKE_SOURCE_DIR}/resources/art)
juce_add_binary_data(ondrivel_editor_data
  HEADER_NAME EditorData.h
  NAMESPACE EditorData
  SOURCES
    ${ONDRIVEL_ART}/panel.png
    ${ONDRIVEL_ART}/knob_face.png
    ${ONDRIVEL_ART}/module_switch.png
    ${ONDRIVEL_ART}/octave_switch.png
    ${ONDRIVEL_ART}/reverse_switch.png
    ${ONDRIVEL_ART}/pre_switch.png
    ${ONDRIVEL_ART}/tap_button.png
    ${ONDRIVEL_ART}/brand_bar.png
    ${ONDRIVEL_ART}/undo.path
    ${ONDRIVEL_ART}/redo.path
    ${ONDRIVEL_ART}/link.path
    ${CMAKE_BINARY_DIR}/editor-data/PanelFont.ttf)
target_link_libraries(ondrivel PRIVATE ondrivel_editor_data)

# The background pictures live as files in the bundle's resources folder, beside the code.
add_custom_command(TARGET ondrivel_VST3 POST_BUILD
  COMMAND ${CMAKE_COMMAND} -E make_directory "$<TARGET_FILE_DIR:ondrivel_VST3>/../Resources"
  COMMAND ${CMAKE_COMMAND} -E copy_if_different ${ONDRIVEL_ART}/picture_key.png ${ONDRIVEL_ART}/plain_key.png
          "$<TARGET_FILE_DIR:ondrivel_VST3>/../Resources/"
  VERBATIM)

# Redraws resources/art from tools/art: `cmake --build build --target ondrivel-art && build/ondrivel-art resources/art <font>`.
add_executable(ondrivel-art EXCLUDE_FROM_ALL ${CMAKE_SOURCE_DIR}/tools/art/ArtGenerator.cpp ${CMAKE_SOURCE_DIR}/tools/art/PanelArt.cpp)
target_include_directories(ondrivel-art PRIVATE ${CMAKE_SOURCE_DIR})
target_compile_definitions(ondrivel-art PRIVATE JUCE_USE_CURL=0 JUCE_WEB_BROWSER=0 JUCE_STANDALONE_APPLICATION=1)
target_link_libraries(ondrivel-art PRIVATE juce::juce_graphics juce::pkgconfig_JUCE_IMG_LINUX_DEPS)

# Writes PNG snapshots of the editor without a screen, for looking at the panel.
add_executable(ondrivel-snapshot EXCLUDE_FROM_ALL ${CMAKE_SOURCE_DIR}/tools/snapshot/Snapshot.cpp)
target_link_libraries(ondrivel-snapshot PRIVATE ondrivel)
target_include_directories(ondrivel-snapshot PRIVATE $<TARGET_PROPERTY:ondrivel,INCLUDE_DIRECTORIES>)
target_compile_definitions(ondrivel-snapshot PRIVATE $<TARGET_PROPERTY:ondrivel,COMPILE_DEFINITIONS>)
target_compile_options(ondrivel-snapshot PRIVATE $<TARGET_PROPERTY:ondrivel,COMPILE_OPTIONS>)
