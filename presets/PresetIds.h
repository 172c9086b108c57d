// SPDX-License-Identifier: AGPL-3.0-or-later
// Names shared by the preset files, the state tree and the preset panels. Plain literals, not
// framework objects: globals of class type would be built during static initialisation, before
// the framework's own singletons exist in some link orders.
#pragma once

namespace velkaro::PresetIds
{
inline constexpr const char* program = "PROGRAM";
inline constexpr const char* notes = "NOTES";
inline constexpr const char* name = "NAME";
inline constexpr const char* type = "TYPE";
inline constexpr const char* author = "AUTHOR";
inline constexpr const char* text = "TEXT";

inline constexpr const char* defaultName = "[init]";
inline constexpr const char* fileSuffix = ".xml";
} // namespace velkaro::PresetIds
