# SPDX-License-Identifier: AGPL-3.0-or-later
# JUCE 8 comes from Debian's source package, prepared by tools/setup.sh.
set(ONDRIVEL_DEPS_DIR "${CMAKE_SOURCE_DIR}/third_party" CACHE PATH "Prepared third-party sources")
if(NOT EXISTS "${ONDRIVEL_DEPS_DIR}/juce/CMakeLists.txt")
  message(FATAL_ERROR "JUCE not found in ${ONDRIVEL_DEPS_DIR}/juce: run tools/setup.sh first")
endif()
add_subdirectory("${ONDRIVEL_DEPS_DIR}/juce" juce EXCLUDE_FROM_ALL)
