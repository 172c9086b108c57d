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

# Vector kernels use xsimd (Debian's libxsimd-dev, headers only). The build stays at the x86-64
# baseline; each *Avx2.cpp file alone is built for AVX2 (never FMA) and is chosen at run time.
# Debian's package config names an optional xtl library that is not installed, so only the headers
# are taken from it.
find_path(XSIMD_INCLUDE_DIR xsimd/xsimd.hpp REQUIRED)
target_include_directories(ondrivel PRIVATE ${XSIMD_INCLUDE_DIR})
file(GLOB ONDRIVEL_AVX2_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/effects/*Avx2.cpp)
set_source_files_properties(${ONDRIVEL_AVX2_SOURCES} PROPERTIES COMPILE_OPTIONS "-mavx2")
# The sound's own files are built at -O3: the compiler may then vectorise and unroll their loops, and
# without fast-math it only puts independent elements side by side, each with its own operations,
# and never reorders a sum (the golden renders pin every output bit).
# Nothing reads the floating-point exception flags, so comparisons may be worked out for every
# element (-fno-trapping-math changes no value; it lets limits and selections become vector code).
# Nothing reads errno either: a square root is then the instruction alone, which runs as vectors too
# (-fno-math-errno changes no value; the square root is exact either way).
file(GLOB ONDRIVEL_DSP_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/effects/*.cpp ${CMAKE_SOURCE_DIR}/voice/*.cpp
  ${CMAKE_SOURCE_DIR}/core/KestruneAudioProcessor.cpp)
set_source_files_properties(${ONDRIVEL_DSP_SOURCES} PROPERTIES COMPILE_OPTIONS "-O3;-fno-trapping-math;-fno-math-errno")
set_source_files_properties(${ONDRIVEL_AVX2_SOURCES} PROPERTIES COMPILE_OPTIONS "-mavx2;-O3;-fno-trapping-math;-fno-math-errno")

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
