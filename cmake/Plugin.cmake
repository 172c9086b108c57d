# SPDX-License-Identifier: AGPL-3.0-or-later
juce_add_plugin(ondrivel
  PRODUCT_NAME "ondrivel"
  COMPANY_NAME "Velkaro"
  COMPANY_WEBSITE "https://ondrivel.example.org"
  BUNDLE_ID "org.velkaro.ondrivel"
  PLUGIN_MANUFACTURER_CODE Velk
  PLUGIN_CODE Ondr
  IS_SYNTH TRUE
  NEEDS_MIDI_INPUT TRUE
  NEEDS_MIDI_OUTPUT FALSE
  IS_MIDI_EFFECT FALSE
  EDITOR_WANTS_KEYBOARD_FOCUS TRUE
  VST3_CATEGORIES Instrument Synth
  LV2URI "https://ondrivel.example.org/plugins/ondrivel"
  FORMATS VST3 LV2 Standalone
  COPY_PLUGIN_AFTER_BUILD FALSE)

# Every source of the engine, presets and editor goes into the shared code that the tests link too.
file(GLOB_RECURSE ONDRIVEL_SOURCES CONFIGURE_DEPENDS
  ${CMAKE_SOURCE_DIR}/core/*.cpp ${CMAKE_SOURCE_DIR}/voice/*.cpp ${CMAKE_SOURCE_DIR}/effects/*.cpp
  ${CMAKE_SOURCE_DIR}/presets/*.cpp ${CMAKE_SOURCE_DIR}/editor/*.cpp)
target_sources(ondrivel PRIVATE ${ONDRIVEL_SOURCES})
target_include_directories(ondrivel PUBLIC ${CMAKE_SOURCE_DIR})

include(${CMAKE_SOURCE_DIR}/cmake/Resources.cmake OPTIONAL)
include(${CMAKE_SOURCE_DIR}/cmake/EditorResources.cmake)

target_compile_definitions(ondrivel PUBLIC
  JUCE_WEB_BROWSER=0
  JUCE_USE_CURL=0
  JUCE_VST3_CAN_REPLACE_VST2=0
  JUCE_USE_FLAC=0
  JUCE_USE_OGGVORBIS=0
  JUCE_DISPLAY_SPLASH_SCREEN=0
  JUCE_MODAL_LOOPS_PERMITTED=1
  JUCE_JACK=1
  ONDRIVEL_VERSION_STRING="${PROJECT_VERSION}")

target_link_libraries(ondrivel
  PRIVATE
    juce::juce_audio_utils
    juce::juce_dsp
  PUBLIC
    juce::juce_recommended_warning_flags)
# The framework's recommended config flags would add -O3 after our -O2; the optimisation level is ours.

set(ONDRIVEL_BUNDLE "${CMAKE_BINARY_DIR}/ondrivel_artefacts/${CMAKE_BUILD_TYPE}/VST3/ondrivel.vst3")
set(ONDRIVEL_LV2_BUNDLE "${CMAKE_BINARY_DIR}/ondrivel_artefacts/${CMAKE_BUILD_TYPE}/LV2/ondrivel.lv2")
set(ONDRIVEL_LV2_URI "https://ondrivel.example.org/plugins/ondrivel")
set(ONDRIVEL_PROGRAM "${CMAKE_BINARY_DIR}/ondrivel_artefacts/${CMAKE_BUILD_TYPE}/Standalone/ondrivel")
include(${CMAKE_SOURCE_DIR}/cmake/Formats.cmake)
