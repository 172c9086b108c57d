# SPDX-License-Identifier: AGPL-3.0-or-later
# Programs that link a JUCE static library get its include paths and definitions from it, so the
# framework's modules are compiled once per library, not once per program.
function(ondrivel_link_juce_library consumer lib)
  target_link_libraries(${consumer} PRIVATE ${lib})
  target_include_directories(${consumer} PRIVATE $<TARGET_PROPERTY:${lib},INCLUDE_DIRECTORIES>)
  target_compile_definitions(${consumer} PRIVATE $<TARGET_PROPERTY:${lib},COMPILE_DEFINITIONS>)
  target_compile_options(${consumer} PRIVATE $<TARGET_PROPERTY:${lib},COMPILE_OPTIONS>)
endfunction()

# A separate copy of the framework with VST3 hosting switched on: the renderer, the hosted tests and
# the benchmarks load the built bundle the way a DAW does.
file(GLOB ONDRIVEL_HOST_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tools/host/*.cpp)
if(NOT ONDRIVEL_HOST_SOURCES)
  return()
endif()
# The parameter table gives the tools the plug-in's parameter ids and ranges (a VST3 host sees only
# normalised values under numeric ids).
add_library(ondrivel_host STATIC ${ONDRIVEL_HOST_SOURCES} ${CMAKE_SOURCE_DIR}/core/ParameterTable.cpp
  ${CMAKE_SOURCE_DIR}/core/XmlText.cpp)
target_include_directories(ondrivel_host PUBLIC ${CMAKE_SOURCE_DIR}/tools/host ${CMAKE_SOURCE_DIR})
target_compile_definitions(ondrivel_host PUBLIC
  JUCE_PLUGINHOST_VST3=1
  JUCE_PLUGINHOST_LV2=1
  JUCE_WEB_BROWSER=0
  JUCE_USE_CURL=0
  JUCE_USE_FLAC=0
  JUCE_USE_OGGVORBIS=0
  JUCE_MODAL_LOOPS_PERMITTED=1
  JUCE_STANDALONE_APPLICATION=1
  JUCE_DISPLAY_SPLASH_SCREEN=0
  ONDRIVEL_DEFAULT_BUNDLE="${ONDRIVEL_BUNDLE}"
  ONDRIVEL_DEFAULT_LV2_BUNDLE="${ONDRIVEL_LV2_BUNDLE}")
target_link_libraries(ondrivel_host
  PRIVATE
    juce::juce_audio_utils)
# JUCE adds the system image libraries only to its own plug-in and app targets.
if(TARGET juce::pkgconfig_JUCE_IMG_LINUX_DEPS)
  target_link_libraries(ondrivel_host PRIVATE juce::pkgconfig_JUCE_IMG_LINUX_DEPS)
endif()

file(GLOB ONDRIVEL_RENDER_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tools/render/*.cpp)
add_executable(ondrivel-render ${ONDRIVEL_RENDER_SOURCES})
ondrivel_link_juce_library(ondrivel-render ondrivel_host)
add_dependencies(ondrivel-render ondrivel_VST3 ondrivel_LV2)
