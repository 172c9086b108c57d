# SPDX-License-Identifier: AGPL-3.0-or-later
# Steinberg's validator, built from Debian's vst3sdk source package, checks the built bundle.
set(ONDRIVEL_VST3SDK "${ONDRIVEL_DEPS_DIR}/vst3sdk")
if(NOT EXISTS "${ONDRIVEL_VST3SDK}/CMakeLists.txt")
  message(WARNING "VST3 SDK not found in ${ONDRIVEL_VST3SDK}: validator tests are skipped")
  return()
endif()

include(ExternalProject)
ExternalProject_Add(vst3_validator
  SOURCE_DIR "${ONDRIVEL_VST3SDK}"
  BINARY_DIR "${CMAKE_BINARY_DIR}/vst3sdk-build"
  CMAKE_ARGS
    -DCMAKE_BUILD_TYPE=Release
    -DSMTG_ENABLE_VSTGUI_SUPPORT=OFF
    -DSMTG_ENABLE_VST3_PLUGIN_EXAMPLES=OFF
    -DSMTG_ENABLE_VST3_HOSTING_EXAMPLES=ON
    -DSMTG_RUN_VST_VALIDATOR=OFF
    -DSMTG_CREATE_PLUGIN_LINK=OFF
    -DCMAKE_C_COMPILER_LAUNCHER=${CCACHE_PROGRAM}
    -DCMAKE_CXX_COMPILER_LAUNCHER=${CCACHE_PROGRAM}
  BUILD_COMMAND ${CMAKE_COMMAND} --build . --target validator --config Release
  INSTALL_COMMAND ""
  BUILD_BYPRODUCTS "${CMAKE_BINARY_DIR}/vst3sdk-build/bin/Release/validator")

set(ONDRIVEL_VALIDATOR "${CMAKE_BINARY_DIR}/vst3sdk-build/bin/Release/validator")
add_custom_target(validator_ready ALL DEPENDS vst3_validator ondrivel_VST3)

add_test(NAME vst3_validator COMMAND ${CMAKE_SOURCE_DIR}/tests/run_validator.sh ${ONDRIVEL_VALIDATOR} ${ONDRIVEL_BUNDLE})
add_test(NAME vst3_validator_extensive COMMAND ${CMAKE_SOURCE_DIR}/tests/run_validator.sh ${ONDRIVEL_VALIDATOR} ${ONDRIVEL_BUNDLE} -e)
set_tests_properties(vst3_validator vst3_validator_extensive PROPERTIES TIMEOUT 600)
